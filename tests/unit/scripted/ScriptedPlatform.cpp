// SPDX-License-Identifier: MIT
// Keeps the script: sources, URLs, descriptions.
#include "ScriptedPlatform.h"

#include "CallRecord.h"
#include "SystemStatusManagerDBusConnector.h"

namespace {

ScriptedPlatform *currentPlatform = nullptr;

QString keyOf(const QStringList &parts)
{
    return parts.join(QLatin1Char('\n'));
}

} // namespace

ScriptedPlatform::ScriptedPlatform()
{
    Q_ASSERT_X(currentPlatform == nullptr, "ScriptedPlatform", "another script is in force");
    CallRecord::instance().reset();
    currentPlatform = this;
}

ScriptedPlatform::~ScriptedPlatform()
{
    CallRecord::instance().reset();
    currentPlatform = nullptr;
}

ScriptedPlatform *ScriptedPlatform::current()
{
    return currentPlatform;
}

ScriptedSource &ScriptedPlatform::source(const QString &moduleName, const QString &objectName,
                                         const QString &instance)
{
    QSharedPointer<ScriptedSource> &entry = sources[keyOf({moduleName, objectName, instance})];
    if (entry.isNull()) {
        entry = QSharedPointer<ScriptedSource>::create(moduleName, objectName, instance,
                                                       service(moduleName, objectName));
        entry->fetchesGive(
            QStringLiteral("description of %1/%2/%3").arg(moduleName, objectName, instance));
    }
    return *entry;
}

ScriptedUrl &ScriptedPlatform::url(const QString &text)
{
    const auto known = urls.find(text);
    return known == urls.end() ? *urls.insert(text, parsed(text)) : *known;
}

ScriptedPlatform &ScriptedPlatform::statusManagerMissing(bool on)
{
    statusManager = !on;
    return *this;
}

void ScriptedPlatform::announceStartupReady()
{
    const auto connectors = statusManagers;
    for (const auto &connector : connectors) {
        if (connector != nullptr) {
            Q_EMIT connector->orvalisStartupReady();
        }
    }
}

void ScriptedPlatform::made(SystemStatusManagerDBusConnector *connector)
{
    statusManagers.append(connector);
}

ScriptedPlatform &ScriptedPlatform::nullNodesRenderAs(const QByteArray &bytes)
{
    nullRendering = bytes;
    return *this;
}

void ScriptedPlatform::during(const QString &operation, std::function<void()> hook)
{
    CallRecord::instance().during(operation, std::move(hook));
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

ScriptedUrl ScriptedPlatform::parsed(const QString &text)
{
    ScriptedUrl result;
    result.url = text;
    QString path = text;
    if (path.endsWith(QLatin1String("?off"))) {
        result.deactivated = true;
        path.chop(4);
    }
    const int colon = path.indexOf(QLatin1String("://"));
    const QStringList parts = path.mid(colon + 3).split(QLatin1Char('/'));
    result.valid = colon > 0 && parts.size() >= 4;
    if (colon > 0) {
        result.scheme = path.left(colon);
    }
    if (result.valid) {
        result.moduleName = parts.at(0);
        result.objectName = parts.at(1);
        result.instance = parts.at(2);
    }
    return result;
}

ScriptedUrl ScriptedPlatform::answersFor(const QString &text) const
{
    const auto known = urls.constFind(text);
    return known == urls.constEnd() ? parsed(text) : *known;
}

QSharedPointer<ScriptedService> ScriptedPlatform::service(const QString &moduleName,
                                                          const QString &objectName)
{
    QSharedPointer<ScriptedService> &entry = services[keyOf({moduleName, objectName})];
    if (entry.isNull()) {
        entry = QSharedPointer<ScriptedService>::create();
    }
    return entry;
}

QSharedPointer<ScriptedSource> ScriptedPlatform::find(const QString &moduleName,
                                                      const QString &objectName,
                                                      const QString &instance) const
{
    return sources.value(keyOf({moduleName, objectName, instance}));
}

void ScriptedPlatform::describes(const QVariant &description, const ScriptedSource *source)
{
    sourceOfDescription.insert(description.toString(),
                               keyOf({source->moduleName, source->objectName, source->instance}));
}

QSharedPointer<ScriptedSource> ScriptedPlatform::describedBy(const QVariant &description) const
{
    return sources.value(sourceOfDescription.value(description.toString()));
}
