// SPDX-License-Identifier: MIT
// Looks the script up.
#include "Script.h"

#include "SelectorUrlParser.h"

namespace {

Script *scriptInForce = nullptr;

} // namespace

Script *Script::current()
{
    return scriptInForce;
}

void Script::enter(Script *script)
{
    scriptInForce = script;
}

const ScriptedNames &Script::names()
{
    static const ScriptedNames unlessTold;
    return scriptInForce != nullptr ? scriptInForce->chosenNames : unlessTold;
}

ScriptedUrl Script::parsed(const QString &text)
{
    const int query = text.indexOf(QLatin1Char('?'));
    const SelectorUrlParts parts = parseSelectorUrl(text.left(query));
    ScriptedUrl result;
    result.url = text;
    result.deactivated = query >= 0 && text.midRef(query) == names().deactivatedQuery;
    result.valid = parts.valid && (query < 0 || result.deactivated);
    if (result.valid) {
        result.scheme = parts.scheme;
        result.moduleName = parts.source.module;
        result.objectName = parts.source.object;
        result.instance = parts.source.instance;
        result.path = parts.path;
    }
    return result;
}

ScriptedUrl Script::answersFor(const QString &text)
{
    if (scriptInForce != nullptr) {
        const auto known = scriptInForce->urls.constFind(text);
        if (known != scriptInForce->urls.constEnd()) {
            return *known;
        }
    }
    return parsed(text);
}

QSharedPointer<ServiceScript> Script::service(const QString &moduleName, const QString &objectName)
{
    if (scriptInForce == nullptr) {
        return {};
    }
    QSharedPointer<ServiceScript> &entry = scriptInForce->services[keyOf({moduleName, objectName})];
    if (entry.isNull()) {
        entry = QSharedPointer<ServiceScript>::create();
    }
    return entry;
}

QSharedPointer<SourceScript> Script::find(const QString &moduleName, const QString &objectName,
                                          const QString &instance)
{
    if (scriptInForce == nullptr) {
        return {};
    }
    const auto found = scriptInForce->sources.constFind(keyOf({moduleName, objectName, instance}));
    return found == scriptInForce->sources.constEnd() ? QSharedPointer<SourceScript>()
                                                      : SourceScript::of(*found);
}

QVector<QSharedPointer<SourceScript>>
Script::instancesOf(const QSharedPointer<ServiceScript> &service)
{
    QVector<QSharedPointer<SourceScript>> result;
    if (scriptInForce != nullptr) {
        for (const ScriptedSource &source : qAsConst(scriptInForce->sources)) {
            if (SourceScript::of(source)->service == service) {
                result.append(SourceScript::of(source));
            }
        }
    }
    return result;
}

void Script::describes(const QVariant &description, const SourceScript &source)
{
    if (scriptInForce != nullptr && description.isValid()) {
        scriptInForce->sourceOfDescription.insert(
            description.toString(), keyOf({source.moduleName, source.objectName, source.instance}));
    }
}

QSharedPointer<SourceScript> Script::describedBy(const QVariant &description)
{
    if (scriptInForce == nullptr) {
        return {};
    }
    const QString key = scriptInForce->sourceOfDescription.value(description.toString());
    const auto found = scriptInForce->sources.constFind(key);
    return found == scriptInForce->sources.constEnd() ? QSharedPointer<SourceScript>()
                                                      : SourceScript::of(*found);
}
