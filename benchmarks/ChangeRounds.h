// SPDX-License-Identifier: MIT
// Rounds of changes: a client, its service, and the time from announcement to slot.
#ifndef CHANGEROUNDS_H
#define CHANGEROUNDS_H

#include "Arrival.h"
#include "ChangingService.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <benchmark/benchmark.h>

/// A handler of all selectors of a service.
struct HandledService
{
    explicit HandledService(int sources)
        : service(sources)
        , handler(service.urls(), nullptr)
    {
    }

    ChangingService service;
    SelectorHandlerProcessValue handler;
};

namespace ChangeRounds {

/// Each repetition is one round, and all are interleaved: a report takes the median over all rounds,
/// which a few long ones, when somebody else needed the processors, do not move.
inline void apply(benchmark::internal::Benchmark *benchmark)
{
    constexpr int rounds = 201;
    benchmark->UseManualTime()->Iterations(1)->Repetitions(rounds)->Unit(benchmark::kMillisecond);
}

constexpr auto changed
    = qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged);

/// Changes once, so that no round is its client's first.
template <typename Sender, typename Signal>
void warmUp(ChangingService &service, Sender &sender, Signal signal)
{
    QEventLoop loop;
    QObject::connect(&sender, signal, &loop, &QEventLoop::quit);
    service.change();
    loop.exec();
}

inline void setTime(benchmark::State &state, Arrival::Clock::time_point end)
{
    const auto begin = Arrival::time();
    if (!begin) {
        state.SkipWithError("no announcement came out of a socket");
        return;
    }
    state.SetIterationTime(std::chrono::duration<double>(end - *begin).count());
}

inline void run(benchmark::State &state, HandledService &client)
{
    QEventLoop loop;
    int count = 0;
    Arrival::Clock::time_point end;
    QObject::connect(&client.handler, changed, &loop, [&](const QVector<int> &indices) {
        end = Arrival::Clock::now();
        count = indices.size();
        loop.quit();
    });
    for (auto _ : state) {
        Arrival::expect();
        client.service.change();
        loop.exec();
        setTime(state, end);
    }
    if (count != ChangingService::leafCount) {
        state.SkipWithError("not every selector was announced");
    }
}

/// The main function of a program with such rounds, which is its own service, too.
template <typename World> int main(int argc, char **argv, World *&world)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--service")) {
        return ChangingService::serve(arguments.value(2), arguments.value(3).toInt(),
                                      arguments.value(4).toInt());
    }
    World all;
    world = &all;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace ChangeRounds

#endif
