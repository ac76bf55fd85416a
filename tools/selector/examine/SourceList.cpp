// SPDX-License-Identifier: MIT
// Asks modules for their objects and instances.
#include "SourceList.h"

#include "Diagnosis.h"
#include "InstanceListClient.h"
#include "ModuleList.h"
#include "ProviderListClient.h"

namespace {

void addInstances(const QString &module, const QString &object, QVector<SourceName> &sources)
{
    QStringList instances;
    QString error;
    const BusQueryResult result = fetchInstances(module, object, instances, error);
    if (result != BusQueryResult::Ok) {
        sources.append({module, object, QString(), Diagnosis::explainQuery(result, error)});
    }
    for (const QString &instance : qAsConst(instances)) {
        sources.append({module, object, instance, {}});
    }
}

void addObjects(const QString &module, QVector<SourceName> &sources)
{
    QStringList objects;
    QString error;
    const BusQueryResult result = fetchObjects(module, objects, error);
    if (result != BusQueryResult::Ok) {
        sources.append({module, QString(), QString(), Diagnosis::explainQuery(result, error)});
    }
    for (const QString &object : qAsConst(objects)) {
        addInstances(module, object, sources);
    }
}

} // namespace

QString SourceName::place() const
{
    return QStringLiteral("%1/%2/%3").arg(module, object, instance);
}

bool listSources(const BrowsePlace &place, QVector<SourceName> &sources, Finding &finding)
{
    switch (place.level) {
    case BrowsePlace::Instance:
        sources.append({place.module, place.object, place.instance, {}});
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
    QString list;
    QString error;
    const BusQueryResult result = fetchRegisteredProviderList(list, error);
    if (result != BusQueryResult::Ok) {
        finding = Diagnosis::explainQuery(result, error);
        return false;
    }
    const QVector<Module> modules = modulesOfList(list);
    for (const Module &module : modules) {
        if (!module.name.isNull()) {
            addObjects(module.name, sources);
        }
    }
    return true;
}
