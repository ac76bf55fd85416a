// SPDX-License-Identifier: MIT
// selector snapshot: descriptions and values of sources into files.
#include "CatalogFindings.h"
#include "Command.h"
#include "Entries.h"
#include "ExactJson.h"
#include "ExitCode.h"
#include "InterruptExit.h"
#include "LeafType.h"
#include "LiveLeaves.h"
#include "OutputFile.h"
#include "Snapshot.h"
#include "ValueText.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace {

struct ChosenSource
{
    QString place; ///< for people
    SourceName name;
    Finding finding; ///< why it is not known
    SelectorPattern chosen; ///< leaves of it
};

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

QHash<QString, QJsonValue> goodValues(const SourceName &source,
                                      const QVector<DescribedLeaf> &leaves)
{
    const QVector<LeafValue> values = valuesOf(source, leaves);
    QHash<QString, QJsonValue> result;
    for (int i = 0; i < values.size(); ++i) {
        const QJsonValue json = valueToJson(values.at(i).value);
        if (values.at(i).isGood() && canBePlayed(leaves.at(i).properties, json)) {
            result.insert(leaves.at(i).path, json);
        }
    }
    return result;
}

using Places = QVector<SelectorPattern>;

// The places by their sources: all that any of them means goes into the source's one file.
QMap<SourceName, Places> placesBySource(const QVector<ChosenSource> &sources)
{
    QMap<SourceName, Places> places;
    for (const ChosenSource &one : sources) {
        if (one.finding.isNone()) {
            places[one.name].append(one.chosen);
        }
    }
    return places;
}

QVector<DescribedLeaf> leavesOf(const QVector<DescribedLeaf> &all, const Places &places)
{
    QVector<DescribedLeaf> leaves;
    std::copy_if(
        all.begin(), all.end(), std::back_inserter(leaves), [&places](const DescribedLeaf &leaf) {
            return std::any_of(places.begin(), places.end(), [&leaf](const SelectorPattern &place) {
                return place.matchesLeaf(leaf.path);
            });
        });
    return leaves;
}

SavedSource save(const ChosenSource &one, const Places &places, const QDir &directory)
{
    SavedSource saved;
    const SourceName &name = one.name;
    const Examination source = examine(name);
    saved.finding = source.reason;
    if (!saved.finding.isNone()) {
        return saved;
    }
    const QVector<DescribedLeaf> all = leavesBelow(source.description, QString());
    if (leavesOf(all, {one.chosen}).isEmpty() && !one.chosen.path.isEmpty()) {
        saved.finding = {Finding::NoSuchLeaf,
                         QStringLiteral("%1 has no leaf at or below \"%2\"")
                             .arg(name.toString(), one.chosen.pathText())};
        return saved;
    }
    const QVector<DescribedLeaf> leaves = leavesOf(all, places);
    const QHash<QString, QJsonValue> values = goodValues(name, leaves);
    saved.leaves = leaves.size();
    saved.values = values.size();
    saved.file = directory.filePath(snapshotFileName(name));
    const QByteArray text
        = exactText(snapshotOf(rewritableObject(source.description.toUtf8()), values, places));
    QString problem;
    if (!writeWholeFile(saved.file, text, problem)) {
        saved.finding = {Finding::NotWritten, QStringLiteral("%1: %2").arg(saved.file, problem)};
    }
    return saved;
}

Entry snapshotEntry(const QString &place, const SavedSource &saved)
{
    Entry entry = entryOf(place, saved.finding);
    entry.json.insert(QStringLiteral("source"), entry.subject);
    if (saved.finding.isNone()) {
        entry.json.insert(QStringLiteral("file"), saved.file);
        entry.json.insert(QStringLiteral("leaves"), saved.leaves);
        entry.json.insert(QStringLiteral("values"), saved.values);
        entry.rows.append({entry.subject, saved.file, QString::number(saved.leaves),
                           QString::number(saved.values), QString()});
    } else {
        entry.rows.append({entry.subject, QString(), QString(), QString(), saved.finding.text});
    }
    return entry;
}

// Of a place with stars only sources that have such leaves.
void choose(Catalog &catalog, const SelectorPattern &place, const QString &text,
            QVector<ChosenSource> &sources)
{
    const int before = sources.size();
    const QVector<CatalogItem> items = catalog.items(place);
    for (const CatalogItem &item : items) {
        if (item.kind != CatalogItem::Source) {
            if (!item.answer.isOk()) {
                sources.append({item.name.toString(), item.name, findingOf(item.answer), place});
            }
            continue;
        }
        const auto isChosen
            = [&place](const DescribedLeaf &leaf) { return place.matchesLeaf(leaf.path); };
        bool wanted = true;
        if (place.hasStars() && !place.path.isEmpty()) {
            const CatalogSource &source = catalog.source(item.name);
            wanted = !source.answer.isOk()
                || std::any_of(source.leaves.begin(), source.leaves.end(), isChosen);
        }
        if (wanted) {
            sources.append({item.name.toString(), item.name, {}, place});
        }
    }
    if (sources.size() == before && place.hasStars()) {
        sources.append({text, {}, missOf(catalog.match(place)), place});
    }
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<SelectorPattern> places;
    for (const QString &text : line.arguments) {
        SelectorPattern place;
        if (!SelectorPattern::parse(text, place, usage)) {
            return ExitUsage;
        }
        places.append(place);
    }
    const QString output = line.text("output");
    if (output.isEmpty()) {
        usage = QStringLiteral("Expected --output DIRECTORY.");
        return ExitUsage;
    }
    errno = 0;
    if (!QDir().mkpath(output)) {
        usage = QStringLiteral("%1: the directory cannot be made: %2")
                    .arg(output,
                         errno == 0 ? QStringLiteral("a file stands in its place")
                                    : qt_error_string(errno));
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    if (places.isEmpty()) {
        places.append(SelectorPattern());
    }
    Catalog catalog;
    QVector<ChosenSource> sources;
    for (int i = 0; i < places.size(); ++i) {
        ExitCode exitCode = ExitAllGood;
        const SelectorPattern &place = places.at(i);
        if (place.needsModules() && !askModules(catalog, console, exitCode)) {
            return exitCode;
        }
        choose(catalog, place, line.arguments.value(i), sources);
    }
    Report report{
        QStringLiteral("selector.snapshot/1"), columnsOf("source file leaves> values> note"), {}};
    const QMap<SourceName, Places> bySource = placesBySource(sources);
    for (const ChosenSource &one : qAsConst(sources)) {
        if (wasInterrupted()) {
            break;
        }
        SavedSource saved;
        saved.finding = one.finding;
        if (saved.finding.isNone()) {
            saved = save(one, bySource.value(one.name), QDir(output));
        }
        report.entries.append(snapshotEntry(one.place, saved));
    }
    return printReport(report, console);
}

} // namespace

Command snapshotCommand()
{
    return {
        QStringLiteral("snapshot"),
        QStringLiteral("keep descriptions and values in files"),
        "Usage: selector snapshot [OPTIONS] --output DIRECTORY [PLACE]...\n"
        "Writes one description file for each source, with each current value as a value that\n"
        "stands still: process-data-simulator plays the files back, selector check and diff\n"
        "compare with them. PLACE is MODULE[/OBJECT[/INSTANCE[/GROUP]]]; without one, all\n"
        "registered modules. Values that are not good or cannot be played are left out.\n",
        {{"-o, --output DIRECTORY", "made where missing; files of the same sources are replaced",
          "Each is replaced whole or not at all.", Option::File},
         timeoutOption},
        "\nExample: selector snapshot --output released PumpStation\n",
        {Arguments::Place, Arguments::many},
        run};
}
