// SPDX-License-Identifier: MIT
// How many fetches follow a burst of announcements that come while a client fetches: counted.
#include "Burst.h"

#include "ChangingService.h"
#include "SelectorHandlerProcessValue.h"

#include <QDBusReply>
#include <QEventLoop>
#include <QRegularExpression>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <unistd.h>

namespace {

const QString connectionName = QStringLiteral("burst");
const QString member = QStringLiteral("ProcessDataDescriptionChanged");
constexpr int quietTime = 100; // milliseconds; a fetch that comes later is none of the burst

QString published(const ChangingService &source)
{
    QDBusMessage call = QDBusMessage::createMethodCall(source.busName(), source.path(),
                                                       ChangingService::interface(),
                                                       QStringLiteral("GetProcessDataDescription"));
    call << QStringLiteral("1") << QString();
    return QDBusReply<QString>(QDBusConnection::sessionBus().call(call)).value();
}

QString renamed(QString description, const QString &module)
{
    static const QRegularExpression names(QStringLiteral(R"re("(module|object)":"[^"]*")re"));
    return description.replace(names, QStringLiteral(R"("\1":"%1")").arg(module));
}

// The last fetch is followed by a time without any.
void waitUntilQuiet(const BurstService &service)
{
    QEventLoop loop;
    QTimer timer;
    int before = -1;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (service.fetches() == before) {
            loop.quit();
        }
        before = service.fetches();
    });
    timer.start(quietTime);
    loop.exec();
}

// The first announcement is fetched; that fetch is answered after all others were sent.
void fetchesOfABurst(benchmark::State &state)
{
    const ChangingService source;
    const QString module = QStringLiteral("Burst%1").arg(getpid());
    BurstService service(module, renamed(published(source), module));
    SelectorHandlerProcessValue handler({QStringLiteral("processdata://%1/%1/1/leaf0").arg(module)},
                                        nullptr);
    int told = 0;
    QObject::connect(
        &handler,
        qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged),
        [&told] { ++told; });
    for (auto _ : state) {
        service.arm(int(state.range(0)));
        service.announce();
        waitUntilQuiet(service);
    }
    if (told == 0) {
        state.SkipWithError("the client was never told");
    }
    state.counters["fetches"] = service.fetches();
    state.counters["told"] = told;
}

} // namespace

BENCHMARK(fetchesOfABurst)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Iterations(1)
    ->Repetitions(11)
    ->ComputeStatistics("max",
                        [](const std::vector<double> &values) {
                            return *std::max_element(values.begin(), values.end());
                        })
    ->Unit(benchmark::kMillisecond);

BurstService::BurstService(const QString &module, const QString &description)
    : path(QStringLiteral("/com/orvalis/ProcessData/") + module)
    , description(description)
    , connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName))
{
    moveToThread(&thread);
    thread.start();
    if (!connection.registerVirtualObject(path, this)
        || !connection.registerService(QStringLiteral("com.orvalis.ProcessData.") + module)) {
        qFatal("the bursting service does not start");
    }
}

BurstService::~BurstService()
{
    QDBusConnection::disconnectFromBus(connectionName);
    thread.quit();
    thread.wait();
}

void BurstService::arm(int announcements)
{
    count = 0;
    armed = announcements;
}

void BurstService::announce()
{
    connection.send(announcement());
}

QString BurstService::introspect(const QString &path) const
{
    Q_UNUSED(path)
    return QString();
}

bool BurstService::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (message.member() != QLatin1String("GetProcessDataDescription")) {
        return false;
    }
    ++count;
    for (int left = armed.exchange(0); left > 0; --left) {
        connection.send(announcement());
    }
    return connection.send(message.createReply(nextDescription()));
}

QString BurstService::nextDescription()
{
    static const QRegularExpression session(QStringLiteral(R"("session":\d+)"));
    QString next = description;
    return next.replace(session, QStringLiteral("\"session\":%1").arg(++version));
}

QDBusMessage BurstService::announcement() const
{
    QDBusMessage signal = QDBusMessage::createSignal(path, ChangingService::interface(), member);
    signal << QStringLiteral("1");
    return signal;
}
