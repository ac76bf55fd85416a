// SPDX-License-Identifier: MIT
// Values asked for over D-Bus: one by a property, many by a map.
#include "DBusPeer.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QSocketNotifier>

#include <cstdio>

namespace {

const QString serviceName = QStringLiteral("org.example.Values");
const QString path = QStringLiteral("/values");

class Values : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return QString(); }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() == QLatin1String("Get")) {
            return connection.send(
                message.createReply(QVariant::fromValue(QDBusVariant(QVariant(value++)))));
        }
        QVariantMap map;
        for (int i = 0; i < message.arguments().value(0).toInt(); ++i) {
            map.insert(QStringLiteral("leaf%1").arg(i), value + i);
        }
        return connection.send(message.createReply(QVariant(map)));
    }

private:
    double value = 0;
};

QDBusMessage asked(const QString &interface, const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName, path, interface, method);
    call.setArguments(arguments);
    QDBusMessage reply = QDBusConnection::sessionBus().call(call);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        qFatal("no reply: %s", qPrintable(reply.errorMessage()));
    }
    return reply;
}

} // namespace

DBusPeer::DBusPeer(int mapSize)
    : mapSize(mapSize)
{
    service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    service.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--service")});
    if (!service.waitForReadyRead()) {
        qFatal("the D-Bus service does not start");
    }
}

DBusPeer::~DBusPeer()
{
    service.closeWriteChannel();
    service.waitForFinished();
}

double DBusPeer::get()
{
    const QDBusMessage reply
        = asked(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                {QStringLiteral("org.example.Values1"), QStringLiteral("Value")});
    return reply.arguments().at(0).value<QDBusVariant>().variant().toDouble();
}

QVariantMap DBusPeer::getMap()
{
    const QDBusMessage reply
        = asked(QStringLiteral("org.example.Values1"), QStringLiteral("GetMap"), {mapSize});
    return qdbus_cast<QVariantMap>(reply.arguments().at(0));
}

int DBusPeer::serve()
{
    Values values;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerVirtualObject(path, &values) || !bus.registerService(serviceName)) {
        return 1;
    }
    const QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    std::puts("ready");
    static_cast<void>(std::fflush(stdout));
    return QCoreApplication::exec();
}
