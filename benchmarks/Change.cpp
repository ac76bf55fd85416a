// SPDX-License-Identifier: MIT
// From the announcement of a new description to the client's slot, over a real bus: the handler
// against the least that Qt's own D-Bus and JSON can do.
//
// Needs PROCESSDATA_BUS and DBUS_SESSION_BUS_ADDRESS to name the same private bus.
#include "ChangeFloor.h"
#include "ChangeRounds.h"

#include <QThread>

#include <algorithm>

namespace {

// Both clients live side by side, each with a service of its own.
struct World
{
    World()
        : handled(1)
        , floor(floorService, handled.service)
    {
        ChangeRounds::warmUp(handled.service, handled.handler, ChangeRounds::changed);
        ChangeRounds::warmUp(floorService, floor, &ChangeFloor::done);
    }

    HandledService handled;
    ChangingService floorService;
    ChangeFloor floor;
};

World *world = nullptr;

void floorChange(benchmark::State &state)
{
    QEventLoop loop;
    QObject::connect(&world->floor, &ChangeFloor::done, &loop, &QEventLoop::quit);
    for (auto _ : state) {
        Arrival::expect();
        world->floorService.change();
        loop.exec();
        ChangeRounds::setTime(state, world->floor.end());
    }
    if (world->floor.leaves().size() != ChangingService::leafCount) {
        state.SkipWithError("the floor did not get all leaves");
    }
}

void handlerChange(benchmark::State &state)
{
    ChangeRounds::run(state, world->handled);
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
    ~Reader() override { stop(); }

    /// @returns seconds
    double stop()
    {
        requestInterruption();
        wait();
        return longest;
    }

protected:
    void run() override
    {
        while (!isInterruptionRequested()) {
            const auto begin = Arrival::Clock::now();
            benchmark::DoNotOptimize(handler.getValues(0, 1));
            const std::chrono::duration<double> time = Arrival::Clock::now() - begin;
            longest = std::max(longest, time.count());
            QThread::yieldCurrentThread();
        }
    }

private:
    SelectorHandlerProcessValue &handler;
    double longest = 0;
};

void handlerChangeWhileRead(benchmark::State &state)
{
    Reader reader(world->handled.handler);
    ChangeRounds::run(state, world->handled);
    state.counters["longest_read_us"] = reader.stop() * 1e6;
}

double maximum(const std::vector<double> &values)
{
    return *std::max_element(values.begin(), values.end());
}

} // namespace

BENCHMARK(floorChange)->Apply(ChangeRounds::apply);
BENCHMARK(handlerChange)->Apply(ChangeRounds::apply);
BENCHMARK(handlerChangeWhileRead)->Apply(ChangeRounds::apply)->ComputeStatistics("max", maximum);

int main(int argc, char **argv)
{
    return ChangeRounds::main(argc, argv, world);
}
