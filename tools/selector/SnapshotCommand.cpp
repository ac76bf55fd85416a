// SPDX-License-Identifier: MIT
// selector snapshot: descriptions and values of sources into files.
#include "Command.h"
#include "Diagnosis.h"
#include "Entries.h"
#include "ExitCode.h"
#include "InterruptExit.h"
#include "LeafType.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "SelectorUrlBuilder.h"
#include "Snapshot.h"
#include "SourceList.h"
#include "ValueText.h"

#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>

namespace {

struct SavedSource
{
    QString file;
    int leaves = 0;
    int values = 0;
    Finding finding;
};

// Only what a simulator can publish again is kept.
bool canBePlayed(const QJsonObject &properties, const QJsonValue &json)
{
    const auto type = leafType(properties.value(QLatin1String("type")).toString());
    QVariant value;
    QString problem;
    return type && valueFromJson(*type, json, value, problem)
        && checkLimits(*type, properties, value, problem);
}

QHash<QString, QJsonValue> currentValues(const SourceName &name,
                                         const QVector<DescribedLeaf> &leaves)
{
    QVector<QString> urls;
    for (const DescribedLeaf &leaf : leaves) {
        urls.append(selectorUrl(name.module, name.object, name.instance, leaf.path));
    }
    SelectorHandlerProcessValue handler(urls, nullptr);
    const QVector<ProcessValue> values = handler.getValues();
    QHash<QString, QJsonValue> result;
    for (int i = 0; i < values.size(); ++i) {
        const QJsonValue json = valueToJson(values.at(i).getValue());
        if (values.at(i).getErrorType() == ProcessDataDefinitions::NoError
            && canBePlayed(leaves.at(i).properties, json)) {
            result.insert(leaves.at(i).path, json);
        }
    }
    return result;
}

SavedSource save(const SourceName &name, const QDir &directory)
{
    SavedSource saved;
    QSharedPointer<SelectorSharedMemoryHandler> source;
    saved.finding = Diagnosis::explainSource(name.module, name.object, name.instance, source);
    if (saved.finding.code != Finding::None) {
        return saved;
    }
    const QJsonObject document
        = QJsonDocument::fromJson(source->getProcessDescription().toString().toUtf8()).object();
    const QVector<DescribedLeaf> leaves = leavesBelow(document, QString());
    const QHash<QString, QJsonValue> values = currentValues(name, leaves);
    saved.leaves = leaves.size();
    saved.values = values.size();
    saved.file = directory.filePath(snapshotFileName(name.module, name.object, name.instance));
    const QByteArray text = QJsonDocument(snapshotOf(document, values)).toJson();
    const InterruptHold hold; // its temporary file would stay
    QSaveFile file(saved.file);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        saved.finding
            = {Finding::NotWritten, QStringLiteral("%1: %2").arg(saved.file, file.errorString())};
    }
    return saved;
}

Entry snapshotEntry(const SourceName &name, const SavedSource &saved)
{
    Entry entry;
    entry.subject = name.place();
    entry.state = stateOf(saved.finding);
    entry.reason = saved.finding.text;
    entry.failure = saved.finding.exitCode();
    entry.json = {{QStringLiteral("source"), entry.subject},
                  {QStringLiteral("status"), stateName(entry.state)}};
    if (saved.finding.code == Finding::None) {
        entry.json.insert(QStringLiteral("file"), saved.file);
        entry.json.insert(QStringLiteral("leaves"), saved.leaves);
        entry.json.insert(QStringLiteral("values"), saved.values);
        entry.rows.append({entry.subject, saved.file, QString::number(saved.leaves),
                           QString::number(saved.values), QString()});
    } else {
        entry.json.insert(QStringLiteral("code"), saved.finding.codeName());
        entry.json.insert(QStringLiteral("reason"), saved.finding.text);
        entry.rows.append({entry.subject, QString(), QString(), QString(), saved.finding.text});
    }
    return entry;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<BrowsePlace> places;
    for (const QString &text : line.arguments) {
        BrowsePlace place;
        if (!parseBrowsePlace(text, place, usage)) {
            return ExitUsage;
        }
        places.append(place);
    }
    if (line.output.isEmpty()) {
        usage = QStringLiteral("--output DIRECTORY is wanted.");
        return ExitUsage;
    }
    if (!QDir().mkpath(line.output)) {
        usage = QStringLiteral("%1: the directory cannot be made").arg(line.output);
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    QVector<SourceName> sources;
    Finding finding;
    const QVector<BrowsePlace> chosen = places.isEmpty() ? QVector<BrowsePlace>{{}} : places;
    for (const BrowsePlace &place : chosen) {
        if (!listSources(place, sources, finding)) {
            console.err << "selector: " << printable(finding.text) << '\n';
            console.err.flush();
            return finding.exitCode() == ExitSomeFailed ? ExitNotReachable : finding.exitCode();
        }
    }
    Report report{QStringLiteral("selector.snapshot/1"),
                  {{QStringLiteral("source")},
                   {QStringLiteral("file")},
                   {QStringLiteral("leaves"), true},
                   {QStringLiteral("values"), true},
                   {QStringLiteral("note")}},
                  {}};
    for (const SourceName &source : qAsConst(sources)) {
        if (wasInterrupted()) {
            break;
        }
        SavedSource saved;
        saved.finding = source.finding;
        report.entries.append(snapshotEntry(
            source,
            source.finding.code == Finding::None ? save(source, QDir(line.output)) : saved));
    }
    return printReport(report, console);
}

} // namespace

Command snapshotCommand()
{
    return {
        QStringLiteral("snapshot"), QStringLiteral("keep descriptions and values in files"),
        QStringLiteral(
            "Usage: selector snapshot [OPTIONS] --output DIRECTORY [PLACE]...\n"
            "Writes one description file for each source, with each current value as a value that\n"
            "stands still: process-data-simulator plays the files back, selector check and diff\n"
            "compare with them. PLACE is MODULE[/OBJECT[/INSTANCE]]; without one, all registered\n"
            "modules. Values that are not good or cannot be played are left out.\n"
            "\n"
            "Options:\n"
            "  -o, --output DIRECTORY  made where missing; files of the same sources are replaced\n"
            "  --timeout S      seconds for all calls together; else 2 for each call\n")
            + commonOptionsHelp()
            + QStringLiteral("\nExample: selector snapshot --output released PumpStation\n"),
        OptionOutput, run};
}
