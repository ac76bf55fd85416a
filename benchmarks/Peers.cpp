// SPDX-License-Identifier: MIT
// Reading by index beside other ways to get live values from another process.
//
// Needs DBUS_SESSION_BUS_ADDRESS to name a private bus.
#include "DBusPeer.h"
#include "IceoryxPeer.h"
#include "InProcessSource.h"
#include "LockedPeers.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <unistd.h>

namespace {

constexpr int manyValues = 1000;

struct Fixture
{
    Fixture()
        : source(QStringLiteral("Peers%1").arg(getpid()), QStringLiteral("1"), manyValues)
        , handler(source.urls(), nullptr)
    {
    }

    InProcessSource source;
    SelectorHandlerProcessValue handler;
    DBusPeer dbus{manyValues};
    QtSharedMemoryPeer qtMemory{manyValues};
    BoostPeer boost{manyValues};
    IceoryxPeer iceoryx;
};

Fixture *fixture = nullptr;

void handlerOne(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->handler.getValue(500));
    }
}

void handlerMany(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->handler.getValues(0, manyValues));
    }
}

void dbusGet(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->dbus.get());
    }
}

void dbusMap(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->dbus.getMap());
    }
}

void qtSharedMemoryOne(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->qtMemory.copyOne(500));
    }
}

void qtSharedMemoryMany(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->qtMemory.processValues());
    }
}

void boostMany(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->boost.processValues());
    }
}

void qtSharedMemoryRaw(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(fixture->qtMemory.copyAll());
    }
}

void iceoryxTake(benchmark::State &state)
{
    for (auto _ : state) {
        state.SetIterationTime(fixture->iceoryx.secondsOfTake());
    }
}

} // namespace

BENCHMARK(handlerOne)->UseRealTime();
BENCHMARK(handlerMany)->UseRealTime();
BENCHMARK(dbusGet)->UseRealTime();
BENCHMARK(dbusMap)->UseRealTime();
BENCHMARK(qtSharedMemoryOne)->UseRealTime();
BENCHMARK(qtSharedMemoryMany)->UseRealTime();
BENCHMARK(qtSharedMemoryRaw)->UseRealTime();
BENCHMARK(boostMany)->UseRealTime();
BENCHMARK(iceoryxTake)->UseManualTime()->Iterations(2000); // of 100 takes each

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == QLatin1String("--service")) {
        return DBusPeer::serve();
    }
    Fixture all;
    fixture = &all;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
