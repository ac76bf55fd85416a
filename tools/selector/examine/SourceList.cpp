// SPDX-License-Identifier: MIT
// Asks modules for their objects and instances.
#include "SourceList.h"

#include "ModuleList.h"

namespace {

void addInstances(const QString &module, const QString &object, QVector<ListedSource> &sources)
{
    QStringList instances;
    const Answer answer = ask([&](QString &error) {
        return ProcessDataAccess::fetchInstances(module, object, instances, error);
    });
    if (!answer.isOk()) {
        sources.append({{module, object, QString()}, unanswered(answer)});
    }
    for (const QString &instance : qAsConst(instances)) {
        sources.append(ListedSource{{module, object, instance}, {}});
    }
}

void addObjects(const QString &module, QVector<ListedSource> &sources)
{
    QStringList objects;
    const Answer answer = ask(
        [&](QString &error) { return ProcessDataAccess::fetchObjects(module, objects, error); });
    if (!answer.isOk()) {
        sources.append({{module, QString(), QString()}, unanswered(answer)});
    }
    for (const QString &object : qAsConst(objects)) {
        addInstances(module, object, sources);
    }
}

} // namespace

bool listSources(const BrowsePlace &place, QVector<ListedSource> &sources, Finding &finding)
{
    switch (place.level) {
    case BrowsePlace::Instance:
        sources.append(ListedSource{{place.module, place.object, place.instance}, {}});
        return true;
    case BrowsePlace::Object:
        addInstances(place.module, place.object, sources);
        return true;
    case BrowsePlace::Module:
        addObjects(place.module, sources);
        return true;
    case BrowsePlace::System:
        break;
    }
    QStringList modules;
    const Answer answer = fetchModuleNames(modules);
    if (!answer.isOk()) {
        finding = unanswered(answer);
    }
    for (const QString &module : qAsConst(modules)) {
        addObjects(module, sources);
    }
    return answer.isOk();
}
