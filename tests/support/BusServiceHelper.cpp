// SPDX-License-Identifier: MIT
// A service that does on the bus exactly what a test orders, one order a line, words separated by
// tabs.
//
// own NAME | unown NAME           takes or gives back a bus name
// export PATH                     answers at a path
// set INSTANCE TEXT | drop INSTANCE
// once INSTANCE TEXT              answers one fetch with this instead; several wait in line
// mode ok|number|two|large|silent|twice
//                                 how fetches are answered
// flush                           answers what was kept silent
// signal PATH INTERFACE MEMBER [ARGUMENT [COUNT]]
// storm PATH MEMBER COUNT N        announces COUNT times, instances 1 to N in turn, and serves
//                                 fetches meanwhile; answers with the milliseconds that it took.
//                                 "@" in a description is the number of the instance's last
//                                 announcement, or 0
// ready true|false                the property that Get answers
// unready                         announces that it is false
// count                           answers the number of fetches
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QMap>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <unistd.h>

namespace {

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Service : public QDBusVirtualObject
{
public:
    explicit Service(const QDBusConnection &connection)
        : connection(connection)
    {
        QObject::connect(&stormTimer, &QTimer::timeout, [this] { sendSlice(); });
    }

    QString introspect(const QString &) const override { return QString(); }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        if (message.member() == "Get") {
            return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(ready))));
        }
        if (message.member() == "GetProcessDataDescription") {
            ++fetches;
        }
        if (mode == "silent") {
            kept += message;
            return true;
        }
        return answer(message);
    }

    /// @returns the answer; null when it follows later
    QString order(const QStringList &words)
    {
        const QString verb = words.value(0);
        const QString first = words.value(1);
        if (verb == "own") {
            return connection.registerService(first) ? "ok" : "failed";
        }
        if (verb == "unown") {
            return connection.unregisterService(first) ? "ok" : "failed";
        }
        if (verb == "export") {
            return connection.registerVirtualObject(first, this) ? "ok" : "failed";
        }
        if (verb == "signal") {
            return sendSignals(words);
        }
        if (verb == "storm") {
            beginStorm(words);
            return QString();
        }
        if (verb == "unready") {
            QDBusMessage message = QDBusMessage::createSignal("/com/orvalis/SystemStatusManager",
                                                              "org.freedesktop.DBus.Properties",
                                                              "PropertiesChanged");
            message << "com.orvalis.SystemStatusManager1" << QVariantMap{{"Ready", false}}
                    << QStringList();
            return connection.send(message) ? "ok" : "failed";
        }
        if (verb == "count") {
            return QString::number(fetches);
        }
        return set(verb, first, words.value(2));
    }

private:
    bool answer(const QDBusMessage &message)
    {
        if (message.member() == "ListInstances") {
            return connection.send(message.createReply(QVariant(QStringList(descriptions.keys()))));
        }
        const QString instance = message.arguments().value(0).toString();
        if (mode == "number") {
            return connection.send(message.createReply(42));
        }
        if (mode == "two") {
            return connection.send(message.createReply(QVariantList{"one", "two"}));
        }
        if (mode == "large") {
            return connection.send(message.createReply(QString(64 * 1024 * 1024 + 1, 'x')));
        }
        if (!descriptions.contains(instance)) {
            return connection.send(
                message.createErrorReply("com.orvalis.Error.UnknownInstance", "no such instance"));
        }
        const QString revision = QString::number(revisions.value(instance));
        const QString served = answersInLine[instance].isEmpty()
            ? descriptions.value(instance)
            : answersInLine[instance].takeFirst();
        const QString text = QString(served).replace('@', revision);
        if (mode == "twice") {
            connection.send(message.createReply(text));
            return connection.send(message.createReply(QString("the second answer")));
        }
        return connection.send(message.createReply(text));
    }

    void beginStorm(const QStringList &words)
    {
        stormSignal = QDBusMessage::createSignal(words.value(1), "com.orvalis.ProcessDescription1",
                                                 words.value(2));
        stormLeft = words.value(3).toInt();
        stormInstances = words.value(4).toInt();
        stormClock.start();
        stormTimer.start(0);
    }

    // Between two of them come the fetches that clients have sent.
    void sendSlice()
    {
        constexpr int slice = 20;
        for (int i = 0; i < slice && stormLeft > 0; ++i, --stormLeft) {
            const QString instance = QString::number(stormLeft % stormInstances + 1);
            ++revisions[instance];
            stormSignal.setArguments({instance});
            connection.send(stormSignal);
        }
        if (stormLeft == 0) {
            stormTimer.stop();
            say(QString::number(stormClock.elapsed()));
        }
    }

    QString set(const QString &verb, const QString &first, const QString &second)
    {
        if (verb == "set") {
            descriptions.insert(first, second);
        } else if (verb == "once") {
            answersInLine[first].append(second);
        } else if (verb == "drop") {
            descriptions.remove(first);
        } else if (verb == "mode") {
            mode = first;
        } else if (verb == "ready") {
            ready = first == "true";
        } else if (verb == "flush") {
            mode = "ok";
            for (const QDBusMessage &message : qAsConst(kept)) {
                answer(message);
            }
            kept.clear();
        } else {
            return "unknown order " + verb;
        }
        return "ok";
    }

    QString sendSignals(const QStringList &words)
    {
        const int count = words.size() > 5 ? words.at(5).toInt() : 1;
        for (int i = 0; i < count; ++i) {
            QDBusMessage message
                = QDBusMessage::createSignal(words.value(1), words.value(2), words.value(3));
            if (words.size() > 4) {
                message << words.at(4);
            }
            connection.send(message);
        }
        connection.interface()->isServiceRegistered("x.y"); // the daemon has them all now
        return "ok";
    }

    QDBusConnection connection;
    QMap<QString, QString> descriptions;
    QMap<QString, QStringList> answersInLine;
    QList<QDBusMessage> kept;
    QString mode = "ok";
    bool ready = false;
    int fetches = 0;
    QMap<QString, int> revisions;
    QDBusMessage stormSignal;
    QElapsedTimer stormClock;
    QTimer stormTimer;
    int stormLeft = 0;
    int stormInstances = 1;
};
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QDBusConnection connection
        = QDBusConnection::connectToBus(qEnvironmentVariable("PROCESSDATA_BUS"), "helper");
    if (!connection.isConnected()) {
        std::fprintf(stderr, "no bus\n");
        return 1;
    }
    Service service(connection);
    QByteArray input;
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        char bytes[4096];
        const ssize_t size = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (size <= 0) {
            QCoreApplication::exit(0);
            return;
        }
        input.append(bytes, static_cast<int>(size));
        for (int end = input.indexOf('\n'); end >= 0; end = input.indexOf('\n')) {
            const QString line = QString::fromUtf8(input.left(end));
            input.remove(0, end + 1);
            const QString answer = service.order(line.split('\t'));
            if (!answer.isNull()) {
                say(answer);
            }
        }
    });
    return QCoreApplication::exec();
}
