// SPDX-License-Identifier: MIT
// Judges the answer to a fetch of a description.
#ifndef DESCRIPTIONREPLY_H
#define DESCRIPTIONREPLY_H

#include "ErrorContainer.h"
#include "PreparedDescription.h"

#include <QDBusMessage>
#include <QString>
#include <QVariant>

/// What a fetch came to: a value, or an error whose code is not 0.
struct DescriptionReply
{
    QVariant value; ///< the description's JSON text as a QString
    PreparedDescriptionPointer prepared; ///< the same, read and checked; null until somebody did
    ErrorContainer error; ///< its code is a QDBusError::ErrorType
};

/// The call that fetches the description of one instance. It starts no service.
QDBusMessage descriptionCall(const QString &service, const QString &path,
                             const QString &instanceName, const QString &reserved);

/// @param call    as descriptionCall() made it
/// @param answer  what came back: an error, anything but one string, or a text of more than 64 MiB
/// give an
///                error that names the service, its object and the instance
DescriptionReply judgeDescriptionReply(const QDBusMessage &call, const QDBusMessage &answer);

#endif
