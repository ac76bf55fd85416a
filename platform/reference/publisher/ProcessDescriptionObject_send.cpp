// SPDX-License-Identifier: MIT
// How answers to fetches go out: at once. The simulator has another body for this, so that it can
// lose, delay and spoil them.
#include "ProcessDescriptionObject.h"

#include <QDBusConnection>
#include <QDBusMessage>

bool ProcessDescriptionObject::sendAnswer(const QDBusMessage &message,
                                          const QDBusConnection &connection)
{
    return connection.send(answerFetch(message));
}
