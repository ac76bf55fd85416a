// SPDX-License-Identifier: MIT
// From the announcement of a new description to the client's slot, over a real bus: the handler
// against the least that Qt's own D-Bus and JSON can do.
//
// Needs PROCESSDATA_BUS and DBUS_SESSION_BUS_ADDRESS to name the same private bus.
#include "ChangingService.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEventLoop>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int rounds = 15;

double secondsBetween(Clock::time_point begin, Clock::time_point end)
{
    return std::chrono::duration<double>(end - begin).count();
}

// Takes the time of announcements in a thread of its own, which no client keeps busy.
class Announcements : public QObject
{
    Q_OBJECT

public:
    explicit Announcements(const ChangingService &service)
    {
        moveToThread(&thread);
        thread.start();
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                            QStringLiteral("announcements"));
        bus.connect(service.busName(), service.path(), service.interface(),
                    QStringLiteral("ProcessDataDescriptionChanged"), this, SLOT(take()));
    }
    ~Announcements() override
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("announcements"));
        thread.quit();
        thread.wait();
    }

    Clock::time_point last() const { return time; }

public Q_SLOTS:
    void take() { time = Clock::now(); }

private:
    QThread thread;
    std::atomic<Clock::time_point> time{Clock::time_point()};
};

// Signal, asynchronous fetch, parse, hash.
class Floor : public QObject
{
    Q_OBJECT

public:
    explicit Floor(const ChangingService &service)
        : service(service)
    {
        QDBusConnection::sessionBus().connect(
            service.busName(), service.path(), service.interface(),
            QStringLiteral("ProcessDataDescriptionChanged"), this, SLOT(fetch(QString)));
    }

    const QHash<QString, QJsonObject> &leaves() const { return all; }

Q_SIGNALS:
    void done();

public Q_SLOTS:
    void fetch(const QString &instance)
    {
        QDBusMessage call
            = QDBusMessage::createMethodCall(service.busName(), service.path(), service.interface(),
                                             QStringLiteral("GetProcessDataDescription"));
        call << instance << QString();
        auto *watcher
            = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, watcher] { take(watcher); });
    }

private:
    void take(QDBusPendingCallWatcher *watcher)
    {
        const QDBusPendingReply<QString> reply = *watcher;
        all.clear();
        const QJsonArray elements = QJsonDocument::fromJson(reply.value().toUtf8())
                                        .object()
                                        .value(QLatin1String("elements"))
                                        .toArray();
        for (const QJsonValue &element : elements) {
            const QJsonObject leaf = element.toObject();
            all.insert(leaf.value(QLatin1String("name")).toString(), leaf);
        }
        watcher->deleteLater();
        Q_EMIT done();
    }

    const ChangingService &service;
    QHash<QString, QJsonObject> all;
};

struct Fixture
{
    ChangingService service;
    Announcements announcements{service};
};

Fixture &fixture()
{
    static Fixture one;
    return one;
}

void floorChange(benchmark::State &state)
{
    Fixture &all = fixture();
    Floor client(all.service);
    QEventLoop loop;
    QObject::connect(&client, &Floor::done, &loop, &QEventLoop::quit);
    for (auto _ : state) {
        all.service.change();
        loop.exec();
        state.SetIterationTime(secondsBetween(all.announcements.last(), Clock::now()));
    }
    if (client.leaves().size() != ChangingService::leafCount) {
        state.SkipWithError("the floor did not get all leaves");
    }
}

// Reads one value again and again, and keeps the longest time that it took.
class Reader : public QThread
{
public:
    explicit Reader(SelectorHandlerProcessValue &handler)
        : handler(handler)
    {
        start();
    }
    ~Reader() override
    {
        requestInterruption();
        wait();
    }
    double takeLongest() { return longest.exchange(0); }

protected:
    void run() override
    {
        while (!isInterruptionRequested()) {
            const auto begin = Clock::now();
            benchmark::DoNotOptimize(handler.getValues(0, 1));
            longest = std::max(longest.load(), secondsBetween(begin, Clock::now()));
            QThread::yieldCurrentThread();
        }
    }

private:
    SelectorHandlerProcessValue &handler;
    std::atomic<double> longest{0};
};

void changes(benchmark::State &state, SelectorHandlerProcessValue &handler, Reader *reader)
{
    Fixture &all = fixture();
    QEventLoop loop;
    int changed = 0;
    QObject::connect(
        &handler,
        qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged), &loop,
        [&](const QVector<int> &indices) {
            changed = indices.size();
            loop.quit();
        });
    double longest = 0;
    for (auto _ : state) {
        if (reader != nullptr) {
            reader->takeLongest();
        }
        all.service.change();
        loop.exec();
        state.SetIterationTime(secondsBetween(all.announcements.last(), Clock::now()));
        longest = reader != nullptr ? std::max(longest, reader->takeLongest()) : 0;
    }
    if (changed != ChangingService::leafCount) {
        state.SkipWithError("not every selector was announced");
    }
    if (reader != nullptr) {
        state.counters["longest_read_us"] = longest * 1e6;
    }
}

void handlerChange(benchmark::State &state)
{
    SelectorHandlerProcessValue handler(fixture().service.urls(), nullptr);
    changes(state, handler, nullptr);
}

void handlerChangeWhileRead(benchmark::State &state)
{
    SelectorHandlerProcessValue handler(fixture().service.urls(), nullptr);
    Reader reader(handler);
    changes(state, handler, &reader);
}

} // namespace

BENCHMARK(floorChange)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);
BENCHMARK(handlerChange)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);
BENCHMARK(handlerChangeWhileRead)
    ->UseManualTime()
    ->Iterations(rounds)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == QLatin1String("--service")) {
        return ChangingService::serve(application.arguments().value(2));
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

#include "Change.moc"
