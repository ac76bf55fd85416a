// SPDX-License-Identifier: MIT
// Asks the bus, the registry, the services and shared memory.
#include "SystemState.h"

#include "ModuleList.h"

#include <algorithm>

namespace {

ModuleState &moduleOf(const QString &name, QVector<ModuleState> &modules)
{
    auto found = std::lower_bound(
        modules.begin(), modules.end(), name,
        [](const ModuleState &module, const QString &other) { return module.name < other; });
    if (found == modules.end() || found->name != name) {
        ModuleState added;
        added.name = name;
        found = modules.insert(found, added);
    }
    return *found;
}

void askRegistry(SystemState &state)
{
    state.registry = ask([&state](QString &error) {
        return ProcessDataAccess::fetchProviderList(state.providerList, error);
    });
    const QVector<Module> registered = modulesOfList(state.providerList);
    for (const Module &one : registered) {
        if (one.name.isNull()) {
            ++state.unreadableProviders;
            continue;
        }
        ModuleState &module = moduleOf(one.name, state.modules);
        module.registered = true;
        module.selectorTypes += one.selectorTypes;
    }
}

Answer askObject(const ModuleState &module, const QString &object, QVector<Examination> &sources)
{
    QStringList instances;
    Answer answer = ask([&](QString &error) {
        return ProcessDataAccess::fetchInstances(module.name, object, instances, error);
    });
    for (const QString &instance : qAsConst(instances)) {
        Examination source;
        source.source = {module.name, object, instance};
        source.owner = module.owner;
        answer = examineListed(source);
        if (!answer.isOk()) {
            break;
        }
        sources.append(source);
    }
    return answer;
}

void askModule(ModuleState &module, QVector<Examination> &sources)
{
    module.answer = ask([&](QString &error) {
        return PlatformDetails::fetchOwner(module.name, module.owner, error);
    });
    QStringList objects;
    if (module.answer.isOk()) {
        module.answer = ask([&](QString &error) {
            return ProcessDataAccess::fetchObjects(module.name, objects, error);
        });
    }
    for (const QString &object : qAsConst(objects)) {
        const Answer answer = askObject(module, object, sources);
        if (!answer.isOk()) {
            module.answer = answer;
        }
        if (answer.result == ProcessDataAccess::Result::TimedOut) {
            return;
        }
    }
    module.complete = module.answer.isOk();
}

void keepOnly(const QStringList &only, QVector<ModuleState> &modules)
{
    if (only.isEmpty()) {
        return;
    }
    modules.erase(
        std::remove_if(modules.begin(), modules.end(),
                       [&](const ModuleState &module) { return !only.contains(module.name); }),
        modules.end());
    for (const QString &name : only) {
        moduleOf(name, modules);
    }
}

} // namespace

SystemState examineSystem(const QStringList &only)
{
    SystemState state;
    // Files first: a buffer that is made meanwhile has no description among those fetched here.
    state.buffers = PlatformDetails::listBuffers(only);
    state.bus = ask(
        [&state](QString &error) { return PlatformDetails::fetchServices(state.services, error); });
    if (!state.bus.isOk()) {
        return state;
    }
    for (const QString &name : qAsConst(state.services.modules)) {
        moduleOf(name, state.modules).onBus = true;
    }
    if (state.hasRegistry()) {
        askRegistry(state);
    }
    if (state.services.statusManager) {
        state.status = ask(
            [&state](QString &error) { return PlatformDetails::fetchReady(state.ready, error); });
    }
    keepOnly(only, state.modules);
    for (ModuleState &module : state.modules) {
        if (!state.services.listed) {
            QString error;
            module.onBus = ProcessDataAccess::isServed(module.name, error)
                != ProcessDataAccess::Result::ServiceMissing;
        }
        if (module.onBus) {
            askModule(module, state.sources);
        }
    }
    state.buffers->lookAgain();
    return state;
}
