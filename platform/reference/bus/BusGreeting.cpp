// SPDX-License-Identifier: MIT
// What a bus daemon must hear from a connection that QtDBus opened without saying it.
#include "BusGreeting.h"

#include "BusCall.h"
#include "BusNames.h"
#include "BusSettings.h"

#include <QDBusMessage>

namespace {

QDBusMessage daemonCall(const QString &member)
{
    return QDBusMessage::createMethodCall(BusNames::daemonService(), BusNames::daemonPath(),
                                          BusNames::daemonInterface(), member);
}

void appendTo(QString &rule, const QString &key, QString value)
{
    if (!value.isEmpty()) {
        // Inside quotes nothing can be escaped: the apostrophe stands between two quoted pieces.
        value.replace(QLatin1Char('\''), QLatin1String("'\\''"));
        rule += QStringLiteral(",%1='%2'").arg(key, value);
    }
}

QString matchRule(const BusSignal &signal)
{
    QString rule = QStringLiteral("type='signal'");
    appendTo(rule, QStringLiteral("path"), signal.path);
    appendTo(rule, QStringLiteral("interface"), signal.interface);
    appendTo(rule, QStringLiteral("member"), signal.member);
    for (int i = 0; i < signal.firstArguments.size(); ++i) {
        appendTo(rule, QStringLiteral("arg%1").arg(i), signal.firstArguments.at(i));
    }
    return rule;
}
}

bool greetBus(const QDBusConnection &connection, QString &error)
{
    const QDBusMessage answer
        = BusCall::wait(connection, daemonCall(QStringLiteral("Hello")), callTimeLimit());
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return true;
    }
    error = answer.errorMessage();
    return false;
}

void requestSignal(const QDBusConnection &connection, const BusSignal &signal)
{
    QDBusMessage call = daemonCall(QStringLiteral("AddMatch"));
    call << matchRule(signal);
    connection.send(call);
}
