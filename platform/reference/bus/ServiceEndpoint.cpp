// SPDX-License-Identifier: MIT
// The serving side of the bus: a connection of its own, a name, and the objects behind it.
#include "ServiceEndpoint.h"

#include "BusCall.h"
#include "BusErrors.h"
#include "BusLog.h"
#include "BusNames.h"

#include <QDBusError>
#include <QDBusVirtualObject>

#include <utility>

namespace {

constexpr uint doNotQueue = 4; // flag of RequestName
constexpr uint nowOwner = 1; // its answers
constexpr uint alreadyOwner = 4;

// Milliseconds between two attempts to take a name that another process holds after a restart.
constexpr int nameRetryDelay = 1000;

QDBusMessage daemonCall(const QString &member)
{
    return QDBusMessage::createMethodCall(BusNames::daemonService(), BusNames::daemonPath(),
                                          BusNames::daemonInterface(), member);
}

// By the policies that are installed with this library.
QString whoMayOwn(const QString &serviceName)
{
    return BusNames::moduleOfService(serviceName)
        ? QStringLiteral("; its bus policy lets root and members of the group "
                         "processdata-publisher do that")
        : QStringLiteral("; its bus policy lets root do that");
}
}

ServiceEndpoint::ServiceEndpoint(const BusChoice &choice, QString serviceName, QObject *parent)
    : QObject(parent)
    , link(choice, this)
    , serviceName(std::move(serviceName))
    , nameTimer(this)
{
    nameTimer.setSingleShot(true);
    nameTimer.setInterval(nameRetryDelay);
    QObject::connect(&nameTimer, &QTimer::timeout, this, &ServiceEndpoint::handleRestored);
    QObject::connect(&link, &BusLink::lost, this, &ServiceEndpoint::handleLost);
    QObject::connect(&link, &BusLink::restored, this, &ServiceEndpoint::handleRestored);
}

ServiceEndpoint::~ServiceEndpoint()
{
    stop();
}

void ServiceEndpoint::exportObject(const QString &path, QDBusVirtualObject *object)
{
    objects.insert(path, object);
    link.exportObject(path, object);
}

void ServiceEndpoint::withdrawObject(const QString &path)
{
    objects.remove(path);
    link.withdrawObject(path);
}

bool ServiceEndpoint::start(QString &error)
{
    QString reason;
    if (!link.open(reason)) {
        error = QStringLiteral("Cannot connect to %1: %2").arg(link.bus().label(), reason);
        return false;
    }
    if (!takeName(error)) {
        link.close();
        return false;
    }
    available = true;
    Q_EMIT becameAvailable();
    return true;
}

void ServiceEndpoint::stop()
{
    nameTimer.stop();
    if (available && link.isConnected()) {
        QDBusMessage call = daemonCall(QStringLiteral("ReleaseName"));
        call << serviceName;
        BusCall::wait(link.connection(), call, callTimeLimit());
    }
    available = false;
    link.close();
}

// The objects come first, so that whoever sees the name finds them.
bool ServiceEndpoint::takeName(QString &error)
{
    QDBusConnection connection = link.connection();
    for (auto it = objects.cbegin(); it != objects.cend(); ++it) {
        link.exportObject(it.key(), it.value());
    }
    QDBusMessage call = daemonCall(QStringLiteral("RequestName"));
    call << serviceName << doNotQueue;
    const QDBusMessage answer = BusCall::wait(connection, call, callTimeLimit());
    if (answer.type() != QDBusMessage::ReplyMessage) {
        const QDBusError reason(answer);
        error = QStringLiteral("Cannot own %1 on %2: %3 (%4)")
                    .arg(serviceName, link.bus().label(), reason.message(), reason.name());
        if (BusErrors::isDenied(answer)) {
            error += whoMayOwn(serviceName);
        }
        return false;
    }
    const uint result = answer.arguments().value(0).toUInt();
    if (result != nowOwner && result != alreadyOwner) {
        error = QStringLiteral("Cannot own %1 on %2: another process owns it")
                    .arg(serviceName, link.bus().label());
        return false;
    }
    return true;
}

void ServiceEndpoint::sendSignal(const QString &path, const QString &interface,
                                 const QString &member, const QVariantList &arguments)
{
    if (!available) {
        return; // all is announced when the name is owned again
    }
    QDBusMessage signal = QDBusMessage::createSignal(path, interface, member);
    signal.setArguments(arguments);
    link.connection().send(signal);
}

void ServiceEndpoint::handleLost()
{
    nameTimer.stop();
    if (available) {
        available = false;
        Q_EMIT becameUnavailable();
    }
}

void ServiceEndpoint::handleRestored()
{
    QString error;
    if (!takeName(error)) {
        if (!warned) {
            qCWarning(busLog).noquote() << error << "- trying again";
        }
        warned = true;
        nameTimer.start();
        return;
    }
    warned = false;
    available = true;
    Q_EMIT becameAvailable();
}
