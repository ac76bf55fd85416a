// SPDX-License-Identifier: MIT
// The first catalog of 100 sources with 100 leaves each, against their descriptions one after the other.
//
// Needs PROCESSDATA_BUS and DBUS_SESSION_BUS_ADDRESS to name the same private bus.
#include "Catalog.h"
#include "ChangingService.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int sources = 100;
constexpr int leaves = 100;

const ChangingService *service = nullptr;

// All that a pattern of everything takes: modules, objects, instances, descriptions, leaves.
void firstCatalog(benchmark::State &state)
{
    SelectorPattern everything;
    everything.below = true;
    for (auto _ : state) {
        Catalog catalog;
        const CatalogMatch match = catalog.match(everything);
        if (match.leaves.size() != sources * leaves) {
            state.SkipWithError("leaves are missing");
        }
    }
}

// What cannot be saved: each description fetched and read once.
void descriptionsAlone(benchmark::State &state)
{
    const QString &name = service->moduleName();
    for (auto _ : state) {
        int found = 0;
        for (int i = 1; i <= sources; ++i) {
            QString description;
            QString error;
            ProcessDataAccess::fetchDescription(name, name, QString::number(i), description, error);
            found += leavesBelow(QJsonDocument::fromJson(description.toUtf8()).object(), QString())
                         .size();
        }
        if (found != sources * leaves) {
            state.SkipWithError("leaves are missing");
        }
    }
}

} // namespace

BENCHMARK(firstCatalog)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(descriptionsAlone)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--service")) {
        return ChangingService::serve(arguments.value(2), arguments.value(3).toInt(),
                                      arguments.value(4).toInt());
    }
    const ChangingService all(sources, leaves);
    service = &all;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
