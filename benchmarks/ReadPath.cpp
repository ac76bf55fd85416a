// SPDX-License-Identifier: MIT
// Reading by index against the floor: many values, one value, beside writers and other readers.
#include "BackgroundThread.h"
#include "ColdCache.h"
#include "Floor.h"
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"

#include <QMutex>
#include <QMutexLocker>

#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

namespace {

struct Fixture
{
    explicit Fixture(int leafCount)
        : source(QStringLiteral("Bench%1").arg(getpid()), QString::number(leafCount), leafCount)
        , handler(source.urls(), nullptr)
        , floor(source)
    {
    }

    InProcessSource source;
    SelectorHandlerProcessValue handler;
    Floor floor;
};

Fixture &fixtureOf(int leafCount)
{
    static Fixture thousand(1000);
    static Fixture tenThousand(10000);
    return leafCount == 1000 ? thousand : tenThousand;
}

void floorValues(benchmark::State &state)
{
    const int count = int(state.range(0));
    const Floor &floor = fixtureOf(count > 1000 ? count : 1000).floor;
    for (auto _ : state) {
        benchmark::DoNotOptimize(floor.read(0, count));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void handlerValues(benchmark::State &state)
{
    const int count = int(state.range(0));
    SelectorHandlerProcessValue &handler = fixtureOf(count > 1000 ? count : 1000).handler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(handler.getValues(0, count));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void handlerOneValue(benchmark::State &state)
{
    SelectorHandlerProcessValue &handler = fixtureOf(1000).handler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(handler.getValue(500));
    }
    state.SetItemsProcessed(state.iterations());
}

void readThousand(benchmark::State &state)
{
    SelectorHandlerProcessValue &handler = fixtureOf(1000).handler;
    for (auto _ : state) {
        benchmark::DoNotOptimize(handler.getValues(0, 1000));
    }
}

void besideNobody(benchmark::State &state)
{
    readThousand(state);
}

void publishAll(int round)
{
    for (int leaf = 0; leaf < 1000; ++leaf) {
        fixtureOf(1000).source.publish(leaf, leaf + round);
    }
}

void besideAFastWriter(benchmark::State &state)
{
    int round = 0;
    const BackgroundThread writer([&round] { publishAll(++round); });
    readThousand(state);
}

void besideAWriterOfOneKilohertz(benchmark::State &state)
{
    int round = 0;
    const BackgroundThread writer([&round] {
        fixtureOf(1000).source.publish(round % 1000, round);
        ++round;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    readThousand(state);
}

void oneValueBesideAnotherReader(benchmark::State &state)
{
    SelectorHandlerProcessValue &handler = fixtureOf(1000).handler;
    const BackgroundThread reader(
        [&handler] { benchmark::DoNotOptimize(handler.getValues(7, 1)); });
    for (auto _ : state) {
        benchmark::DoNotOptimize(handler.getValues(500, 1));
    }
}

// What two threads pay for the lock alone, with nothing done under it.
void lockBesideAnotherThread(benchmark::State &state)
{
    QMutex mutex;
    const BackgroundThread other([&mutex] { const QMutexLocker lock(&mutex); });
    for (auto _ : state) {
        const QMutexLocker lock(&mutex);
    }
}

template <typename Read> void readCold(benchmark::State &state, Read read)
{
    using Clock = std::chrono::steady_clock;
    fixtureOf(1000); // mapped before the memory is looked through
    const ColdCache cache;
    for (auto _ : state) {
        cache.flush();
        const auto begin = Clock::now();
        benchmark::DoNotOptimize(read());
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
}

void floorCold(benchmark::State &state)
{
    readCold(state, [] { return fixtureOf(1000).floor.read(0, 1000); });
}

void handlerCold(benchmark::State &state)
{
    readCold(state, [] { return fixtureOf(1000).handler.getValues(0, 1000); });
}

} // namespace

BENCHMARK(floorValues)->Arg(1)->Arg(1000)->Arg(10000);
BENCHMARK(handlerValues)->Arg(1)->Arg(1000)->Arg(10000);
BENCHMARK(handlerOneValue);
BENCHMARK(besideNobody);
BENCHMARK(besideAFastWriter);
BENCHMARK(besideAWriterOfOneKilohertz);
BENCHMARK(oneValueBesideAnotherReader)->UseRealTime();
BENCHMARK(lockBesideAnotherThread)->UseRealTime();
BENCHMARK(floorCold)->UseManualTime()->Iterations(30);
BENCHMARK(handlerCold)->UseManualTime()->Iterations(30);
BENCHMARK_MAIN();
