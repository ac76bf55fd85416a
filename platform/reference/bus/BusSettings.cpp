// SPDX-License-Identifier: MIT
// Which bus is used and how long a call may take: the settings that the environment holds.
#include "BusSettings.h"

#include "BusLog.h"

#include <QMutex>
#include <QMutexLocker>

namespace {

constexpr int defaultTimeLimit = 2000;
constexpr int longestTimeLimit = 600000;

void warnOnce(const QString &text)
{
    static QMutex mutex;
    static QString lastText;
    const QMutexLocker lock(&mutex);
    if (lastText != text) {
        lastText = text;
        qCWarning(busLog) << "PROCESSDATA_DBUS_TIMEOUT_MS is" << text
                          << "and must be a number of milliseconds from 1 to" << longestTimeLimit
                          << "- using" << defaultTimeLimit;
    }
}
}

BusChoice BusChoice::fromEnvironment()
{
    const QString text = qEnvironmentVariable("PROCESSDATA_BUS");
    BusChoice choice;
    if (text == QLatin1String("session")) {
        choice.kind = Kind::Session;
        choice.address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    } else if (text.isEmpty() || text == QLatin1String("system")) {
        choice.address = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    } else {
        choice.kind = Kind::Address;
        choice.address = text;
    }
    return choice;
}

QDBusConnection BusChoice::connectTo(const QString &connectionName) const
{
    switch (kind) {
    case Kind::System:
        return QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName);
    case Kind::Session:
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    case Kind::Address:
        break;
    }
    return QDBusConnection::connectToBus(address, connectionName);
}

QString BusChoice::label() const
{
    const QString place = address.isEmpty() ? QString() : QStringLiteral(" at %1").arg(address);
    switch (kind) {
    case Kind::System:
        return QStringLiteral("the system bus") + place;
    case Kind::Session:
        return QStringLiteral("the session bus") + place;
    case Kind::Address:
        break;
    }
    return QStringLiteral("the bus") + place;
}

QString BusChoice::key() const
{
    return QString::number(static_cast<int>(kind)) + address;
}

int callTimeLimit()
{
    const QString text = qEnvironmentVariable("PROCESSDATA_DBUS_TIMEOUT_MS");
    if (text.isEmpty()) {
        return defaultTimeLimit;
    }
    bool isNumber = false;
    const int limit = text.toInt(&isNumber);
    if (!isNumber || limit < 1 || limit > longestTimeLimit) {
        warnOnce(text);
        return defaultTimeLimit;
    }
    return limit;
}
