// SPDX-License-Identifier: MIT
// A connection with which a process serves: who answers a call, and when the answer goes out.
#include "ServingConnection.h"

#include "BusErrors.h"
#include "BusNames.h"

#include <QScopedValueRollback>

#include <dbus/dbus.h>

namespace {

const QLatin1String limitsExceeded(DBUS_ERROR_LIMITS_EXCEEDED);
const QLatin1String unknownObject(DBUS_ERROR_UNKNOWN_OBJECT);

// An answer is made once less than this is on its way out; so at most one large one is.
constexpr qint64 mostOutgoing = 256 << 10;

// Refusals that are made while nothing else can go out.
constexpr int mostRefusals = 2048;

constexpr int longestName = 120; // of others, in a text of ours

QString quoted(const QString &text)
{
    return Wire::shortened(text, longestName);
}

BusAnswer noObject(const ServedCall &call)
{
    return BusAnswer::error(unknownObject,
                            QStringLiteral("No object at %1").arg(quoted(call.path())));
}

const char standardInterfaces[] = R"(  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="xml_data" type="s" direction="out"/>
    </method>
  </interface>
)";
}

// Calls stay what they are, small, until their turn has come.
void ServingConnection::handleCall(const WireMessage &message)
{
    const ServedCall call(message,
                          [self = QPointer<ServingConnection>(this)](const WireMessage &late,
                                                                     const BusAnswer &answer) {
                              if (!self.isNull()) {
                                  self->sendAnswer(late, answer);
                              }
                          });
    const qint64 limit = largestCall(call);
    const qint64 size = Wire::size(message, limit);
    const bool tooLarge = size > limit;
    if (!tooLarge && !call.wantsAnswer()) {
        answer(call); // what it asks for may still be done
        return;
    }
    if (!tooLarge && queue.add(call, size)) {
        answerWaiting();
        return;
    }
    if (call.wantsAnswer() && refusals < mostRefusals && queue.mayRefuse(call.sender())) {
        ++refusals;
        const QString reason = tooLarge
            ? QStringLiteral("A call to this service holds at most %1 bytes").arg(limit)
            : QStringLiteral("Too many calls are waiting; call again once they were answered");
        socket.send(Wire::reply(message, BusAnswer::error(limitsExceeded, reason)));
    }
}

void ServingConnection::answerWaiting()
{
    if (answering) {
        return; // an object that answers may use the bus itself
    }
    const QScopedValueRollback<bool> guard(answering, true);
    while (socket.isOpen() && socket.outgoingBytes() < mostOutgoing) {
        refusals = 0;
        const auto call
            = queue.takeNext([this](const ServedCall &next) { return answerSize(next); });
        if (!call.has_value()) {
            break;
        }
        sendAnswer(call->message(), answer(*call));
    }
    askCallers();
}

void ServingConnection::sendAnswer(const WireMessage &call, const BusAnswer &answer)
{
    if (answer.kind == BusAnswer::Kind::Withheld
        || dbus_message_get_no_reply(call.get()) != FALSE) {
        return;
    }
    const WireMessage message = Wire::reply(call, answer);
    socket.send(message);
    queue.sent(QString::fromUtf8(dbus_message_get_sender(call.get())), Wire::size(answer.content));
}

// Messages keep their order, so who answers this has read what was sent before. Bus libraries answer
// it by themselves. A system bus passes it on as the installed policies say; where it does not, only
// the bytes in this process are bounded.
void ServingConnection::askCallers()
{
    const QStringList callers = queue.takeCallersToAsk();
    for (const QString &caller : callers) {
        call(Wire::call(caller, QStringLiteral("/"), QStringLiteral(DBUS_INTERFACE_PEER),
                        QStringLiteral("Ping")),
             noTimeLimit, this, [this, caller](const WireMessage &answer) {
                 const BusErrors::Kind error = BusErrors::kindOf(Wire::errorName(answer));
                 if (error == BusErrors::Kind::TimedOut
                     || error == BusErrors::Kind::ServiceMissing) {
                     queue.gone(caller);
                 } else {
                     queue.answered(caller);
                 }
                 answerWaiting();
             });
    }
}

QVector<const ServedService *> ServingConnection::servicesOf(const ServedCall &call) const
{
    const QString name = call.service();
    if (const ServedService *const named = services.value(name)) {
        return {named};
    }
    return name.startsWith(QLatin1Char(':'))
        ? QVector<const ServedService *>(services.cbegin(), services.cend())
        : QVector<const ServedService *>();
}

QVector<ServedObject *> ServingConnection::objectsOf(const ServedCall &call) const
{
    QVector<ServedObject *> result;
    const QString path = call.path();
    const QVector<const ServedService *> called = servicesOf(call);
    for (const ServedService *service : called) {
        if (ServedObject *const object = service->objects.value(path)) {
            result += object;
        }
    }
    return result;
}

QStringList ServingConnection::childrenOf(const ServedCall &call) const
{
    QString parent = call.path();
    if (!parent.endsWith(QLatin1Char('/'))) {
        parent += QLatin1Char('/');
    }
    QStringList result;
    const QVector<const ServedService *> called = servicesOf(call);
    for (const ServedService *service : called) {
        for (auto it = service->objects.lowerBound(parent);
             it != service->objects.cend() && it.key().startsWith(parent); ++it) {
            const QString child = it.key().mid(parent.size()).section(QLatin1Char('/'), 0, 0);
            if (result.isEmpty() || result.constLast() != child) {
                result += child;
            }
        }
    }
    result.removeDuplicates();
    return result;
}

qint64 ServingConnection::largestCall(const ServedCall &call) const
{
    qint64 largest = 0;
    const QVector<const ServedService *> called = servicesOf(call);
    for (const ServedService *service : called) {
        largest = qMax(largest, service->largestCall);
    }
    return largest;
}

qint64 ServingConnection::answerSize(const ServedCall &call) const
{
    qint64 size = 0;
    const QVector<ServedObject *> objects = objectsOf(call);
    for (const ServedObject *object : objects) {
        size = qMax(size, object->answerSize(call));
    }
    return size;
}

BusAnswer ServingConnection::answer(const ServedCall &call) const
{
    const QVector<ServedObject *> objects = objectsOf(call);
    if (objects.size() > 1) {
        return BusAnswer::error(unknownObject,
                                QStringLiteral("Several services of this connection have an "
                                               "object at %1; call one by its name")
                                    .arg(quoted(call.path())));
    }
    ServedObject *const object = objects.value(0);
    if (object != nullptr) {
        BusAnswer own = object->answer(call);
        if (own.kind != BusAnswer::Kind::NotMine) {
            return own;
        }
    }
    const QStringList children = childrenOf(call);
    if (object == nullptr && children.isEmpty()) {
        return noObject(call);
    }
    return answerStandard(call, object, children);
}

BusAnswer ServingConnection::answerStandard(const ServedCall &call, const ServedObject *object,
                                            const QStringList &children) const
{
    if (call.isFor(QStringLiteral(DBUS_INTERFACE_INTROSPECTABLE), "Introspect")) {
        QString xml = QStringLiteral(DBUS_INTROSPECT_1_0_XML_DOCTYPE_DECL_NODE "<node>\n");
        xml += object == nullptr ? QString() : object->introspection();
        xml += QLatin1String(standardInterfaces);
        for (const QString &child : children) {
            xml += QStringLiteral("  <node name=\"%1\"/>\n").arg(child);
        }
        return BusAnswer::values({xml + QLatin1String("</node>\n")});
    }
    if (object == nullptr) {
        return noObject(call);
    }
    if (call.interface() == BusNames::propertiesInterface()) {
        return BusAnswer::error(QStringLiteral(DBUS_ERROR_UNKNOWN_PROPERTY),
                                QStringLiteral("This object has no properties"));
    }
    return BusAnswer::error(QStringLiteral(DBUS_ERROR_UNKNOWN_METHOD),
                            QStringLiteral("No method %1 of interface \"%2\" here")
                                .arg(call.member(), call.interface()));
}
