// SPDX-License-Identifier: MIT
// Setting a list up without D-Bus against the floor: one source, many sources, one large source.
#include "InProcessBus.h"
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"
#include "SetUpFloor.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include <unistd.h>

namespace {

constexpr int leavesOfASource = 1000;

struct Sources
{
    Sources(int sourceCount, int leafCount)
    {
        for (int i = 0; i < sourceCount; ++i) {
            all.push_back(std::make_unique<InProcessSource>(
                QStringLiteral("SetUp%1").arg(getpid()),
                QStringLiteral("%1x%2").arg(leafCount).arg(i), leafCount));
            urls += all.back()->urls();
        }
    }

    std::vector<std::unique_ptr<InProcessSource>> all;
    QVector<QString> urls;
};

const Sources &sourcesOf(int sourceCount, int leafCount)
{
    static const Sources one(1, leavesOfASource);
    static const Sources large(1, 10 * leavesOfASource);
    if (sourceCount == 1) {
        return leafCount == leavesOfASource ? one : large;
    }
    static const Sources hundred(100, leavesOfASource);
    return hundred;
}

void floorSetUp(benchmark::State &state)
{
    const Sources &sources = sourcesOf(1, leavesOfASource);
    const QByteArray description = sources.all.front()->description();
    for (auto _ : state) {
        benchmark::DoNotOptimize(setUpFloor(description, sources.urls));
    }
    state.SetItemsProcessed(state.iterations() * sources.urls.size());
}

void handlerSetUp(benchmark::State &state)
{
    const Sources &sources = sourcesOf(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        const SelectorHandlerProcessValue handler(sources.urls, nullptr);
        benchmark::DoNotOptimize(&handler);
    }
    state.SetItemsProcessed(state.iterations() * sources.urls.size());
}

} // namespace

BENCHMARK(floorSetUp);
BENCHMARK(handlerSetUp)->Args({1, leavesOfASource})->Args({1, 10 * leavesOfASource});
BENCHMARK(handlerSetUp)->Args({100, leavesOfASource});
BENCHMARK_MAIN();
