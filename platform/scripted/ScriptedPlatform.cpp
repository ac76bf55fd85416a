// SPDX-License-Identifier: MIT
// Keeps the script: sources, URLs, calls.
#include "ScriptedPlatform.h"

#include "CallRecord.h"
#include "Script.h"
#include "SystemStatusManagerDBusConnector.h"

ScriptedPlatform::ScriptedPlatform(const ScriptedNames &names)
    : d(new Script(names))
{
    if (Script::current() != nullptr) {
        qFatal("ScriptedPlatform: another one lives; there is one platform at a time");
    }
    CallRecord::instance().reset();
    Script::enter(d.data());
}

ScriptedPlatform::~ScriptedPlatform()
{
    CallRecord::instance().reset();
    Script::enter(nullptr);
}

ScriptedSource &ScriptedPlatform::source(const QString &moduleName, const QString &objectName,
                                         const QString &instance)
{
    const QString key = Script::keyOf({moduleName, objectName, instance});
    auto found = d->sources.find(key);
    if (found == d->sources.end()) {
        found = d->sources.insert(
            key,
            SourceScript::handleOf(QSharedPointer<SourceScript>::create(
                moduleName, objectName, instance, Script::service(moduleName, objectName))));
        found->fetchesGive(
            QStringLiteral("description of %1/%2/%3").arg(moduleName, objectName, instance));
    }
    return *found;
}

ScriptedPlatform &ScriptedPlatform::statusManagerMissing(bool on)
{
    d->statusManager = !on;
    return *this;
}

void ScriptedPlatform::announceStartupReady()
{
    const auto connectors = d->statusManagers;
    for (const auto &connector : connectors) {
        if (connector != nullptr) {
            Q_EMIT connector->orvalisStartupReady();
        }
    }
}

ScriptedUrl &ScriptedPlatform::url(const QString &text)
{
    const auto known = d->urls.find(text);
    return known == d->urls.end() ? *d->urls.insert(text, Script::parsed(text)) : *known;
}

ScriptedPlatform &ScriptedPlatform::nullNodesRenderAs(const QByteArray &bytes)
{
    d->nullRendering = bytes;
    return *this;
}

QStringList ScriptedPlatform::calls(const QStringList &classNames) const
{
    return CallRecord::instance().texts(classNames);
}

void ScriptedPlatform::forgetCalls()
{
    CallRecord::instance().forgetCalls();
}

void ScriptedPlatform::stopRecording()
{
    CallRecord::instance().setRecording(false);
}

int ScriptedPlatform::alive(const QString &className) const
{
    return CallRecord::instance().alive(className);
}

void ScriptedPlatform::during(const QString &operation, const std::function<void()> &hook)
{
    CallRecord::instance().during(operation, hook);
}
