// SPDX-License-Identifier: MIT
// How the simulator's answers to fetches go out: as the faults in force say.
#include "FetchFaults.h"
#include "ProcessDescriptionObject.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>

// Takes the place of the publisher's own body, which always answers at once.
bool ProcessDescriptionObject::sendAnswer(const QDBusMessage &message,
                                          const QDBusConnection &connection)
{
    const QString instanceName = message.arguments().value(0).toString();
    const FetchFault fault = FetchFaults::instance().take(source + QLatin1Char('/') + instanceName);
    switch (fault.kind) {
    case FetchFault::Late:
        QTimer::singleShot(fault.delay, this,
                           [this, message, connection] { connection.send(answerFetch(message)); });
        return true;
    case FetchFault::Never:
        return true;
    case FetchFault::Error:
        return connection.send(message.createErrorReply(fault.error, fault.text));
    case FetchFault::Text:
        return connection.send(message.createReply(QVariant(fault.text)));
    case FetchFault::None:
        break;
    }
    return connection.send(answerFetch(message));
}
