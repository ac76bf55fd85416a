// SPDX-License-Identifier: MIT
// The change of one source for a handler that has many.
//
// Needs PROCESSDATA_BUS and DBUS_SESSION_BUS_ADDRESS to name the same private bus.
#include "ChangeRounds.h"

#include <map>
#include <memory>

namespace {

// All clients live side by side, made when they are needed first.
struct World
{
    HandledService &withSources(int count)
    {
        auto &one = clients[count];
        if (one == nullptr) {
            one = std::make_unique<HandledService>(count);
            ChangeRounds::warmUp(one->service, one->handler, ChangeRounds::changed);
        }
        return *one;
    }

    std::map<int, std::unique_ptr<HandledService>> clients;
};

World *world = nullptr;

void changeOfOneAmong(benchmark::State &state)
{
    ChangeRounds::run(state, world->withSources(int(state.range(0))));
}

} // namespace

BENCHMARK(changeOfOneAmong)->Arg(1)->Arg(10)->Arg(100)->Apply(ChangeRounds::apply);

int main(int argc, char **argv)
{
    return ChangeRounds::main(argc, argv, world);
}
