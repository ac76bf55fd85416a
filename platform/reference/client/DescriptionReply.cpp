// SPDX-License-Identifier: MIT
// Judges the answer to a fetch of a description.
#include "DescriptionReply.h"

#include "BusErrors.h"
#include "BusNames.h"

#include <QDBusError>

namespace {

constexpr int largestDescription = 64 * 1024 * 1024; // bytes of UTF-8

bool isTooLarge(const QString &text)
{
    constexpr int mostBytesOfUnit = 3; // a UTF-16 unit never takes more in UTF-8
    if (text.size() <= largestDescription / mostBytesOfUnit) {
        return false;
    }
    return text.size() > largestDescription || text.toUtf8().size() > largestDescription;
}

DescriptionReply failure(const QDBusMessage &call, QDBusError::ErrorType code,
                         const QString &reason)
{
    DescriptionReply reply;
    reply.error = ErrorContainer(
        code,
        QStringLiteral("%1 %2, instance \"%3\": %4")
            .arg(call.service(), call.path(), call.arguments().value(0).toString(), reason));
    return reply;
}
}

QDBusMessage descriptionCall(const QString &service, const QString &path,
                             const QString &instanceName, const QString &reserved)
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(service, path, BusNames::processDescriptionInterface(),
                                         QStringLiteral("GetProcessDataDescription"));
    call.setArguments({instanceName, reserved});
    call.setAutoStartService(false);
    return call;
}

DescriptionReply judgeDescriptionReply(const QDBusMessage &call, const QDBusMessage &answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return failure(call, QDBusError(answer).type(), BusErrors::text(answer));
    }
    if (answer.signature() != QLatin1String("s")) {
        return failure(call, QDBusError::InvalidSignature,
                       QStringLiteral("the answer must be one string, its type is \"%1\"")
                           .arg(answer.signature()));
    }
    const QString text = answer.arguments().at(0).toString();
    if (isTooLarge(text)) {
        return failure(call, QDBusError::LimitsExceeded,
                       QStringLiteral("the description is larger than 64 MiB"));
    }
    DescriptionReply reply;
    reply.value = text;
    return reply;
}
