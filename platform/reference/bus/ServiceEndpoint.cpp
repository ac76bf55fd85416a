// SPDX-License-Identifier: MIT
// The serving side of the bus: a name, and the objects behind it.
#include "ServiceEndpoint.h"

#include "BusLog.h"
#include "BusNames.h"

#include <algorithm>
#include <utility>

namespace {

// Milliseconds between two attempts to take a name that another process holds after a restart.
constexpr int nameRetryDelay = 1000;

// By the policies that are installed with this library.
QString whoMayOwn(const QString &serviceName)
{
    return BusNames::moduleOfService(serviceName)
        ? QStringLiteral("; its bus policy lets root and members of the group "
                         "processdata-publisher do that")
        : QStringLiteral("; its bus policy lets root do that");
}
}

ServiceEndpoint::ServiceEndpoint(const BusChoice &choice, QString serviceName, qint64 largestCall,
                                 ServingConnections *shared, QObject *parent)
    : QObject(parent)
    , choice(choice)
    , serviceName(std::move(serviceName))
    , served{largestCall}
    , shared(shared)
    , nameTimer(this)
{
    nameTimer.setSingleShot(true);
    nameTimer.setInterval(nameRetryDelay);
    QObject::connect(&nameTimer, &QTimer::timeout, this, &ServiceEndpoint::handleRestored);
}

ServiceEndpoint::~ServiceEndpoint()
{
    stop();
}

bool ServiceEndpoint::start(QString &error)
{
    if (!connectAndTakeName(error)) {
        return false;
    }
    QObject::connect(serving.data(), &ServingConnection::lost, this, &ServiceEndpoint::handleLost);
    QObject::connect(serving.data(), &ServingConnection::restored, this,
                     &ServiceEndpoint::handleRestored);
    available = true;
    Q_EMIT becameAvailable();
    return true;
}

// Those that stand, then a new one.
QVector<QSharedPointer<ServingConnection>> ServiceEndpoint::candidates() const
{
    QVector<QSharedPointer<ServingConnection>> result;
    if (shared != nullptr) {
        shared->erase(std::remove_if(shared->begin(), shared->end(),
                                     [](const auto &each) { return each.isNull(); }),
                      shared->end());
        for (const QWeakPointer<ServingConnection> &each : qAsConst(*shared)) {
            const QSharedPointer<ServingConnection> connection = each.toStrongRef();
            if (connection != nullptr && connection->bus().key() == choice.key()) {
                result += connection;
            }
        }
    }
    result += QSharedPointer<ServingConnection>::create(choice);
    return result;
}

// The objects come first, so that whoever sees the name finds them.
bool ServiceEndpoint::connectAndTakeName(QString &error)
{
    const QVector<QSharedPointer<ServingConnection>> all = candidates();
    for (const QSharedPointer<ServingConnection> &candidate : all) {
        QString reason;
        if (!candidate->open(reason)) {
            error = QStringLiteral("Cannot connect to %1: %2").arg(choice.label(), reason);
            return false;
        }
        candidate->addService(serviceName, served);
        const ServingConnection::NameResult result = candidate->takeName(serviceName, reason);
        if (result == ServingConnection::NameResult::Owned) {
            serving = candidate;
            if (shared != nullptr && !shared->contains(candidate)) {
                *shared += candidate;
            }
            return true;
        }
        candidate->removeService(serviceName);
        error = notOwned(reason);
        if (result != ServingConnection::NameResult::Full) {
            return false;
        }
    }
    return false;
}

void ServiceEndpoint::stop()
{
    nameTimer.stop();
    if (serving == nullptr) {
        return;
    }
    serving->disconnect(this);
    if (available && serving->isOpen()) {
        serving->releaseName(serviceName);
    }
    available = false;
    serving->removeService(serviceName);
    serving.reset();
}

QString ServiceEndpoint::notOwned(const QString &reason) const
{
    QString text
        = QStringLiteral("Cannot own %1 on %2: %3").arg(serviceName, choice.label(), reason);
    if (reason.contains(QLatin1String("(org.freedesktop.DBus.Error.AccessDenied)"))) {
        text += whoMayOwn(serviceName);
    }
    return text;
}

void ServiceEndpoint::sendSignal(const QString &path, const QString &interface,
                                 const QString &member, const QVariantList &arguments)
{
    if (available) { // else all is announced when the name is owned again
        serving->send(Wire::signal(path, interface, member, arguments));
    }
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
    QString reason;
    if (serving->takeName(serviceName, reason) != ServingConnection::NameResult::Owned) {
        if (!warned && serving->isOpen()) {
            qCWarning(busLog).noquote() << notOwned(reason) << "- trying again";
        }
        warned = warned || serving->isOpen();
        nameTimer.start();
        return;
    }
    warned = false;
    available = true;
    Q_EMIT becameAvailable();
}
