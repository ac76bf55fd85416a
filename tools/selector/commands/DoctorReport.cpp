// SPDX-License-Identifier: MIT
// Everything that a person who fixes a fault wants to know, in one file.
#include "DoctorReport.h"

#include "DoctorEntries.h"
#include "ErrorTypeText.h"
#include "LiveLeaves.h"
#include "MessageLog.h"
#include "ValueText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSysInfo>

#include <unistd.h>

namespace {

QJsonArray valuesObject(const SourceName &source, const QVector<DescribedLeaf> &leaves)
{
    const QVector<LeafValue> values = valuesOf(source, leaves);
    QJsonArray result;
    for (int i = 0; i < values.size(); ++i) {
        const LeafValue &value = values.at(i);
        result.append(
            QJsonObject{{QStringLiteral("path"), leaves.at(i).path},
                        {QStringLiteral("value"), valueToJson(value.value)},
                        {QStringLiteral("errorType"), errorTypeName(value.errorType)},
                        {QStringLiteral("timestampNs"), QString::number(value.timestamp)}});
    }
    return result;
}

QString attachedName(Step end)
{
    return QLatin1String(end == Step::Leaf ? "complete" : stepNames[int(end)].key);
}

QJsonObject sourceObject(const Examination &source, bool withValues)
{
    const QJsonObject document = QJsonDocument::fromJson(source.description.toUtf8()).object();
    QJsonObject shown = document;
    if (shown.value(QLatin1String("elements")).isArray() && !withValues) {
        // A description that stems from a snapshot or simulation holds values as well.
        shown = withElements(document, [](const QString & /*path*/, QJsonObject &element) {
            element.remove(QLatin1String("simulate"));
            return true;
        });
    }
    QJsonObject result{{QStringLiteral("source"), source.source.toString()},
                       {QStringLiteral("description"), shown},
                       {QStringLiteral("file"), source.buffer.path},
                       {QStringLiteral("attached"), attachedName(source.buffer.end)},
                       {QStringLiteral("problem"), source.buffer.problem},
                       {QStringLiteral("permission"), source.buffer.permission},
                       {QStringLiteral("writable"), source.buffer.writable}};
    if (withValues && !document.isEmpty()) {
        result.insert(QStringLiteral("values"),
                      valuesObject(source.source, leavesBelow(document, QString())));
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
        {QStringLiteral("layoutVersion"), PlatformDetails::bufferLayout()},
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
             [withValues](const Examination &source) { return sourceObject(source, withValues); })},
        {QStringLiteral("buffers"), state.buffers->report()},
        {QStringLiteral("findings"),
         listOf(findings, [](const DoctorFinding &finding) { return doctorEntry(finding).json; })}};
    report.insert(QStringLiteral("warnings"),
                  QJsonArray::fromStringList(MessageLog::takeWarnings()));
    return report;
}
