// SPDX-License-Identifier: MIT
// The steps from a URL's text to its leaf.
#include "Diagnosis.h"

#include "BufferInspection.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "InstanceListClient.h"
#include "MessageLog.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlHandler.h"
#include "ServiceOwnerClient.h"

namespace {

QString place(const QString &module, const QString &object, const QString &instance)
{
    return QStringLiteral("%1/%2/%3").arg(module, object, instance);
}

// A client whose time is up does not learn of a service that runs, and takes it for missing.
Finding explainMissingService(const QString &module)
{
    ServiceOwner owner;
    QString error;
    const BusQueryResult result = fetchServiceOwner(module, owner, error);
    if (result == BusQueryResult::ServiceMissing) {
        return {Finding::ServiceMissing,
                QStringLiteral("the service of module %1 is not running").arg(module)};
    }
    return Diagnosis::explainQuery(
        result == BusQueryResult::Ok ? BusQueryResult::TimedOut : result,
        QStringLiteral("the service of module %1 gives no answer").arg(module));
}

Finding explainMissingDescription(const QString &module, const QString &object,
                                  const QString &instance)
{
    QStringList names;
    QString error;
    const auto silent = [&module](BusQueryResult result) {
        return Diagnosis::explainQuery(
            result, QStringLiteral("the service of module %1 gives no answer").arg(module));
    };
    BusQueryResult result = fetchObjects(module, names, error);
    if (result != BusQueryResult::Ok) {
        return silent(result);
    }
    if (!names.contains(object)) {
        return {Finding::NoSuchInstance,
                QStringLiteral("module %1 has no object \"%2\"").arg(module, object)};
    }
    result = fetchInstances(module, object, names, error);
    if (result != BusQueryResult::Ok) {
        return silent(result);
    }
    if (!names.contains(instance)) {
        return {
            Finding::NoSuchInstance,
            QStringLiteral("object %1/%2 has no instance \"%3\"").arg(module, object, instance)};
    }
    return {Finding::ServiceFailed,
            QStringLiteral("the service gave no description of %1")
                .arg(place(module, object, instance))};
}

Finding explainFailedAttach(const QString &module, const QString &object, const QString &instance,
                            const QString &description)
{
    const BufferInspection buffer = inspectBuffer(description);
    return {buffer.end == BufferInspection::Permission ? Finding::Denied : Finding::NotReadable,
            QStringLiteral("cannot attach to %1: %2")
                .arg(place(module, object, instance),
                     buffer.problem.isEmpty() ? QStringLiteral("its memory has only just appeared")
                                              : buffer.problem)};
}

} // namespace

Finding Diagnosis::explainQuery(BusQueryResult result, const QString &error)
{
    switch (result) {
    case BusQueryResult::TimedOut:
        return {Finding::TimeLimit, error};
    case BusQueryResult::Denied:
        return {Finding::Denied, error};
    case BusQueryResult::ServiceMissing:
        return {Finding::ServiceMissing, error};
    default:
        return {Finding::ServiceFailed, error};
    }
}

Finding Diagnosis::explainRefusal(const QString &url)
{
    Finding finding = explain(url);
    if (finding.code != Finding::None) {
        return finding;
    }
    const SelectorUrlHandler parsed(url);
    const auto &source
        = sources[place(parsed.getModuleName(), parsed.getObjectName(), parsed.getInstance())];
    const BufferInspection buffer
        = inspectBuffer(source.handler->getProcessDescription().toString());
    if (buffer.end >= BufferInspection::Liveness && !buffer.writable) {
        return {Finding::Denied,
                QStringLiteral("this process may only read %1 (%2)")
                    .arg(buffer.path, buffer.permission)};
    }
    return finding;
}

Finding Diagnosis::explainText(const SelectorUrlHandler &url)
{
    if (url.isSelectorDeactivated()) {
        return {Finding::Deactivated, QStringLiteral("deactivated")};
    }
    const QString scheme
        = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData();
    if (!url.isValid()) {
        return {Finding::InvalidUrl,
                QStringLiteral("no valid selector URL (%1://MODULE/OBJECT/INSTANCE/…/LEAF)")
                    .arg(scheme)};
    }
    if (url.getScheme() != scheme) {
        return {Finding::WrongScheme,
                QStringLiteral("the scheme is \"%1\", not \"%2\"").arg(url.getScheme(), scheme)};
    }
    return {};
}

Finding Diagnosis::explainSource(const QString &module, const QString &object,
                                 const QString &instance,
                                 QSharedPointer<SelectorSharedMemoryHandler> &handler)
{
    MessageLog::takeWarnings();
    handler.reset(new SelectorSharedMemoryHandler(place(module, object, instance), module, object,
                                                  instance, nullptr));
    if (!handler->isDBusInterfaceValid()) {
        return explainMissingService(module);
    }
    if (handler->attachToProcessBuffer()) {
        return {};
    }
    return handler->getProcessDescription().isValid()
        ? explainFailedAttach(module, object, instance, handler->getProcessDescription().toString())
        : explainMissingDescription(module, object, instance);
}

Finding Diagnosis::explain(const QString &url)
{
    const SelectorUrlHandler parsed(url);
    Finding text = explainText(parsed);
    if (text.code != Finding::None) {
        return text;
    }
    const QString key = place(parsed.getModuleName(), parsed.getObjectName(), parsed.getInstance());
    auto source = sources.find(key);
    if (source == sources.end()) {
        source = sources.insert(key, Source());
        source->finding = explainSource(parsed.getModuleName(), parsed.getObjectName(),
                                        parsed.getInstance(), source->handler);
    }
    if (source->finding.code != Finding::None) {
        return source->finding;
    }
    if (source->handler->getProcessDataLeaf(url).isNull()) {
        return {Finding::NoSuchLeaf, QStringLiteral("%1 has no such leaf").arg(key)};
    }
    return {};
}
