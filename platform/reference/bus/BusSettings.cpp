// SPDX-License-Identifier: MIT
// Which bus is used and how long a call may take: the settings that the environment holds.
#include "BusSettings.h"

#include "BusLog.h"
#include "CallDeadline.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <atomic>
#include <chrono>

namespace {

constexpr int defaultTimeLimit = 2000;
constexpr int longestTimeLimit = 600000;

std::atomic<qint64> callDeadline{0}; // milliseconds of the steady clock; 0: none
std::atomic<int> limitOfProgram{0}; // 0: the environment decides

qint64 steadyNow()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// At least 1: a call that is not even sent would be told apart from one without an answer.
int withinDeadline(int limit)
{
    const qint64 deadline = callDeadline.load();
    return deadline == 0 ? limit
                         : static_cast<int>(std::clamp<qint64>(deadline - steadyNow(), 1, limit));
}

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
    return QDBusConnection::connectToPeer(address, connectionName);
}

void BusChoice::disconnectFrom(const QString &connectionName)
{
    // Each closes only what is of its kind.
    QDBusConnection::disconnectFromBus(connectionName);
    QDBusConnection::disconnectFromPeer(connectionName);
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

void setCallDeadline(int milliseconds)
{
    callDeadline = steadyNow() + milliseconds;
}

void setCallTimeLimit(int milliseconds)
{
    limitOfProgram = milliseconds;
}

int callTimeLimit()
{
    if (const int limit = limitOfProgram) {
        return withinDeadline(limit);
    }
    const QString text = qEnvironmentVariable("PROCESSDATA_DBUS_TIMEOUT_MS");
    if (text.isEmpty()) {
        return withinDeadline(defaultTimeLimit);
    }
    bool isNumber = false;
    const int limit = text.toInt(&isNumber);
    if (!isNumber || limit < 1 || limit > longestTimeLimit) {
        warnOnce(text);
        return withinDeadline(defaultTimeLimit);
    }
    return withinDeadline(limit);
}
