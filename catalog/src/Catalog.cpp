// SPDX-License-Identifier: MIT
// Asks for modules, objects, instances and descriptions.
#include "Catalog.h"

#include "SelectorUrlBuilder.h"

#include <QJsonDocument>

#include <algorithm>

using ProcessDataAccess::Result;

namespace {

// Asks with a function that takes a place for the error.
template <typename Fetch> CatalogAnswer ask(const Fetch &fetch)
{
    CatalogAnswer answer;
    answer.result = fetch(answer.text);
    return answer;
}

template <typename Map> bool removeFailures(Map &map)
{
    bool any = false;
    for (auto it = map.begin(); it != map.end();) {
        const bool failed = !it->answer.isOk();
        any = any || failed;
        it = failed ? map.erase(it) : std::next(it);
    }
    return any;
}

QString noObjectText(const SourceName &source, const QJsonParseError &problem)
{
    const QString reason = problem.error == QJsonParseError::NoError
        ? QStringLiteral("it is something else")
        : problem.errorString();
    return QStringLiteral("%1: the description is no JSON object: %2")
        .arg(source.toString(), reason);
}

} // namespace

QString CatalogItem::toString() const
{
    switch (kind) {
    case Module:
        return name.module;
    case Object:
        return name.module + QLatin1Char('/') + name.object;
    case Source:
        break;
    }
    return name.toString();
}

QString CatalogLeaf::url() const
{
    return selectorUrl(source.module, source.object, source.instance, path);
}

const Catalog::Providers &Catalog::providers()
{
    if (list) {
        return *list;
    }
    list.emplace();
    list->answer = ask(
        [this](QString &error) { return ProcessDataAccess::fetchProviderList(list->json, error); });
    if (list->answer.isOk()) {
        list->modules = modulesOfList(list->json);
    } else if (list->answer.result == Result::ServiceMissing
               || list->answer.result == Result::NotSupported) {
        QStringList running;
        const QString reason = list->answer.text;
        list->answer = ask([&running](QString &error) {
            return ProcessDataAccess::fetchRunningModules(running, error);
        });
        for (const QString &name : qAsConst(running)) {
            list->modules.append({name, {}});
        }
        list->note = QStringLiteral("these are the modules whose services run; there is no list of "
                                    "providers: %1")
                         .arg(reason);
    }
    return *list;
}

CatalogAnswer Catalog::askModules()
{
    return providers().answer;
}

const QVector<Module> &Catalog::modules()
{
    return providers().modules;
}

const QString &Catalog::providerList()
{
    return providers().json;
}

const QString &Catalog::note()
{
    return providers().note;
}

QStringList Catalog::moduleNames()
{
    QStringList names;
    for (const Module &module : modules()) {
        if (!module.name.isNull()) {
            names.append(module.name);
        }
    }
    names.sort();
    names.removeDuplicates();
    return names;
}

const Catalog::Names &Catalog::objectsOf(const QString &module)
{
    auto known = objects.find(module);
    if (known == objects.end()) {
        known = objects.insert(module, {});
        known->answer = ask([&](QString &error) {
            return ProcessDataAccess::fetchObjects(module, known->names, error);
        });
    }
    return *known;
}

const Catalog::Names &Catalog::instancesOf(const QString &module, const QString &object)
{
    auto known = instances.find({module, object});
    if (known == instances.end()) {
        if (objectHook) {
            objectHook(module, object);
        }
        known = instances.insert({module, object}, {});
        known->answer = ask([&](QString &error) {
            return ProcessDataAccess::fetchInstances(module, object, known->names, error);
        });
    }
    return *known;
}

const CatalogSource &Catalog::source(const SourceName &name)
{
    auto known = sources.find(name);
    if (known == sources.end()) {
        known = sources.insert(name, {});
        known->answer = ask([&](QString &error) {
            return ProcessDataAccess::fetchDescription(name.module, name.object, name.instance,
                                                       known->description, error);
        });
        QJsonParseError problem;
        const auto document = QJsonDocument::fromJson(known->description.toUtf8(), &problem);
        if (known->answer.isOk() && !document.isObject()) {
            known->answer = {Result::ServiceFailed, noObjectText(name, problem)};
        }
        known->leaves = leavesBelow(document.object(), QString());
    }
    return *known;
}

QVector<CatalogItem> Catalog::items(const SelectorPattern &pattern)
{
    const bool spelt = !pattern.needsModules();
    QVector<CatalogItem> found;
    const QStringList names = spelt ? QStringList(pattern.module.toString()) : moduleNames();
    for (const QString &module : names) {
        if (pattern.matchesModule(module)) {
            addModule(pattern, module, spelt, found);
        }
    }
    return found;
}

// Names are spelt out as long as no part before them has a star: only then they need not be looked
// up, and a service that does not have them is to say so.
void Catalog::addModule(const SelectorPattern &pattern, const QString &module, bool spelt,
                        QVector<CatalogItem> &found)
{
    const bool objectSpelt = spelt && !pattern.needsObjects();
    CatalogItem item{CatalogItem::Module, {module, {}, {}}, {}};
    if (objectSpelt) {
        found.append(item);
        addObject(pattern, module, pattern.object.toString(), true, found);
        return;
    }
    const Names known = objectsOf(module);
    item.answer = known.answer;
    found.append(item);
    for (const QString &object : known.names) {
        if (pattern.matchesObject(module, object)) {
            addObject(pattern, module, object, false, found);
        }
    }
}

void Catalog::addObject(const SelectorPattern &pattern, const QString &module,
                        const QString &object, bool spelt, QVector<CatalogItem> &found)
{
    CatalogItem item{CatalogItem::Object, {module, object, {}}, {}};
    if (spelt && pattern.level >= SelectorPattern::Source && pattern.instance.isName()) {
        found.append(item);
        found.append({CatalogItem::Source, {module, object, pattern.instance.toString()}, {}});
        return;
    }
    const Names known = instancesOf(module, object);
    item.answer = known.answer;
    found.append(item);
    for (const QString &instance : known.names) {
        const SourceName name{module, object, instance};
        if (pattern.matchesSource(name)) {
            found.append({CatalogItem::Source, name, {}});
        }
    }
}

void Catalog::forgetAll()
{
    list.reset();
    objects.clear();
    instances.clear();
    sources.clear();
}

void Catalog::forgetNames(const QString &module)
{
    objects.remove(module);
    for (auto it = instances.begin(); it != instances.end();) {
        it = it.key().first == module ? instances.erase(it) : std::next(it);
    }
}

void Catalog::forgetModule(const QString &module)
{
    forgetNames(module);
    for (auto it = sources.begin(); it != sources.end();) {
        it = it.key().module == module ? sources.erase(it) : std::next(it);
    }
}

void Catalog::forgetAllNames()
{
    objects.clear();
    instances.clear();
}

bool Catalog::forgetFailures()
{
    const bool listFailed = list && !list->answer.isOk();
    if (listFailed) {
        list.reset();
    }
    const bool objectsFailed = removeFailures(objects);
    const bool instancesFailed = removeFailures(instances);
    const bool sourcesFailed = removeFailures(sources);
    return listFailed || objectsFailed || instancesFailed || sourcesFailed;
}

bool Catalog::mayHave(const SourceName &name)
{
    const Names &known = instancesOf(name.module, name.object);
    const Result result = known.answer.result;
    const bool isTold = known.answer.isOk() || result == Result::ServiceMissing
        || result == Result::ServiceFailed;
    return !isTold || known.names.contains(name.instance);
}

bool Catalog::knows(const SourceName &name) const
{
    const auto known = instances.find({name.module, name.object});
    return known == instances.end() ? sources.contains(name) : known->names.contains(name.instance);
}
