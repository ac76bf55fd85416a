// SPDX-License-Identifier: MIT
// Everything that a person who fixes a fault wants to know, in one file.
#include "DoctorReport.h"

#include "DescriptionLeaves.h"
#include "DoctorEntries.h"
#include "MessageLog.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorUrlBuilder.h"
#include "ValueText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSysInfo>

#include <array>
#include <unistd.h>

namespace {

constexpr int octal = 8;

// A description that stems from a snapshot or simulation holds values as well.
QJsonArray withoutSimulation(const QJsonArray &elements, int level)
{
    constexpr int deepestLevel = 64;
    const QLatin1String below("elements");
    QJsonArray result;
    for (const QJsonValue &element : elements) {
        QJsonObject object = element.toObject();
        object.remove(QLatin1String("simulate"));
        if (object.value(below).isArray() && level < deepestLevel) {
            object.insert(below, withoutSimulation(object.value(below).toArray(), level + 1));
        }
        result.append(object);
    }
    return result;
}

QJsonArray valuesOf(const SourceState &source, const QJsonObject &document)
{
    QVector<QString> urls;
    const QVector<DescribedLeaf> leaves = leavesBelow(document, QString());
    for (const DescribedLeaf &leaf : leaves) {
        urls.append(selectorUrl(source.module, source.object, source.instance, leaf.path));
    }
    SelectorHandlerProcessValue handler(urls, nullptr);
    const QVector<ProcessValue> values = handler.getValues();
    QJsonArray result;
    for (int i = 0; i < values.size(); ++i) {
        const ProcessValue &value = values.at(i);
        result.append(
            QJsonObject{{QStringLiteral("path"), leaves.at(i).path},
                        {QStringLiteral("value"), valueToJson(value.getValue())},
                        {QStringLiteral("errorType"), errorTypeName(value.getErrorType())},
                        {QStringLiteral("timestampNs"), QString::number(value.getTimestamp())}});
    }
    return result;
}

QJsonObject sourceObject(const SourceState &source, bool withValues)
{
    static const std::array<const char *, 6> ends{"description", "bufferFile", "permission",
                                                  "layout",      "liveness",   "complete"};
    const QJsonObject document = QJsonDocument::fromJson(source.description.toUtf8()).object();
    QJsonObject shown = document;
    const QLatin1String elements("elements");
    if (shown.value(elements).isArray() && !withValues) {
        shown.insert(elements, withoutSimulation(shown.value(elements).toArray(), 1));
    }
    QJsonObject result{
        {QStringLiteral("source"), source.place()},
        {QStringLiteral("description"), shown},
        {QStringLiteral("file"), source.buffer.path},
        {QStringLiteral("attached"), QLatin1String(ends.at(size_t(source.buffer.end)))},
        {QStringLiteral("problem"), source.buffer.problem},
        {QStringLiteral("permission"), source.buffer.permission},
        {QStringLiteral("writable"), source.buffer.writable}};
    if (withValues && !document.isEmpty()) {
        result.insert(QStringLiteral("values"), valuesOf(source, document));
    }
    return result;
}

QJsonObject moduleObject(const ModuleState &module)
{
    return {{QStringLiteral("module"), module.name},
            {QStringLiteral("service"), module.owner.service},
            {QStringLiteral("onBus"), module.onBus},
            {QStringLiteral("registered"), module.registered},
            {QStringLiteral("selectorTypeList"), QJsonArray::fromStringList(module.selectorTypes)},
            {QStringLiteral("processId"), double(module.owner.processId)},
            {QStringLiteral("userId"), double(module.owner.userId)},
            {QStringLiteral("problem"), module.answer.error}};
}

QJsonObject fileObject(const BufferFile &file)
{
    static const std::array<const char *, 6> states{"live",        "retired",  "dead",
                                                    "otherLayout", "noBuffer", "unreadable"};
    return {{QStringLiteral("file"), file.path},
            {QStringLiteral("state"), QLatin1String(states.at(size_t(file.state)))},
            {QStringLiteral("problem"), file.problem},
            {QStringLiteral("layoutVersion"), double(file.layoutVersion)},
            {QStringLiteral("generation"), double(file.generation)},
            {QStringLiteral("size"), double(file.size)},
            {QStringLiteral("ownerUid"), double(file.ownerUid)},
            {QStringLiteral("groupId"), double(file.groupId)},
            {QStringLiteral("mode"), QString::number(file.mode, octal)}};
}

template <typename Items, typename Make> QJsonArray listOf(const Items &items, const Make &make)
{
    QJsonArray list;
    for (const auto &item : items) {
        list.append(make(item));
    }
    return list;
}

QJsonObject environment()
{
    QJsonObject result;
    for (const char *name : {"PROCESSDATA_BUS", "PROCESSDATA_DBUS_TIMEOUT_MS"}) {
        if (qEnvironmentVariableIsSet(name)) {
            result.insert(QLatin1String(name), qEnvironmentVariable(name));
        }
    }
    return result;
}

QJsonObject machine()
{
    return {{QStringLiteral("system"), QSysInfo::prettyProductName()},
            {QStringLiteral("kernel"),
             QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion()},
            {QStringLiteral("architecture"), QSysInfo::currentCpuArchitecture()},
            {QStringLiteral("qt"), QLatin1String(qVersion())},
            {QStringLiteral("userId"), double(::geteuid())},
            {QStringLiteral("groupId"), double(::getegid())}};
}

} // namespace

QJsonObject doctorReport(const SystemState &state, const QVector<DoctorFinding> &findings,
                         bool withValues)
{
    QJsonObject report{
        {QStringLiteral("schema"), QStringLiteral("selector.doctorReport/1")},
        {QStringLiteral("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
        {QStringLiteral("version"), QStringLiteral(TOOLS_VERSION)},
        {QStringLiteral("layoutVersion"), double(ownBufferLayoutVersion())},
        {QStringLiteral("machine"), machine()},
        {QStringLiteral("environment"), environment()},
        {QStringLiteral("busProblem"), state.bus.error},
        {QStringLiteral("statusManager"), state.services.statusManager},
        {QStringLiteral("informationManager"), state.services.informationManager},
        {QStringLiteral("ready"), state.ready},
        {QStringLiteral("providerList"), state.providerList},
        {QStringLiteral("modules"), listOf(state.modules, moduleObject)},
        {QStringLiteral("sources"),
         listOf(
             state.sources,
             [withValues](const SourceState &source) { return sourceObject(source, withValues); })},
        {QStringLiteral("buffers"), listOf(state.files, fileObject)},
        {QStringLiteral("findings"),
         listOf(findings, [](const DoctorFinding &finding) { return doctorEntry(finding).json; })}};
    report.insert(QStringLiteral("warnings"),
                  QJsonArray::fromStringList(MessageLog::takeWarnings()));
    return report;
}
