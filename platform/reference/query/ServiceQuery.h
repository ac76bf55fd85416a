// SPDX-License-Identifier: MIT
// A blocking question to a service, as tools ask it.
#ifndef SERVICEQUERY_H
#define SERVICEQUERY_H

#include "BusQueryResult.h"

#include <QDBusMessage>
#include <QString>

/// Sends the call on the shared client connection and waits for the answer.
///
/// @param signature     that the answer must have
/// @param answer        receives it; left alone on failure
/// @param errorMessage  receives one sentence that names what is wrong; left alone on success
BusQueryResult queryService(const QDBusMessage &call, const QString &signature,
                            QDBusMessage &answer, QString &errorMessage);

#endif
