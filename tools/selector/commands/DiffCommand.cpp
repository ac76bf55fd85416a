// SPDX-License-Identifier: MIT
// selector diff: what became of leaves between two snapshots.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LeafDifferences.h"
#include "SelectorUrlBuilder.h"
#include "Snapshot.h"

#include <QJsonArray>

namespace {

struct Pair
{
    int index = -1; ///< in a list of selectors
    QString url;
    QJsonObject before;
    QJsonObject after;
    QString label = {};
};

QVector<Pair> pairsOfList(const QVector<ListLine> &lines, const Snapshot &before,
                          const Snapshot &after)
{
    QVector<Pair> pairs;
    for (int i = 0; i < lines.size(); ++i) {
        const SelectorUrlParts parts = parseSelectorUrl(lines.at(i).url);
        if (textFinding(parts).isNone()) {
            pairs.append({i, lines.at(i).url, before.find(parts).properties,
                          after.find(parts).properties, lines.at(i).label});
        }
    }
    return pairs;
}

QVector<Pair> pairsOfAll(const Snapshot &before, const Snapshot &after)
{
    QVector<Pair> pairs;
    const auto collect = [&](const Snapshot &snapshot, bool onlyNew) {
        const auto &sources = snapshot.sources();
        for (auto source = sources.begin(); source != sources.end(); ++source) {
            const SourceName &name = source.key();
            for (const DescribedLeaf &leaf : source->leaves) {
                const QString url = selectorUrl(name.module, name.object, name.instance, leaf.path);
                const SelectorUrlParts parts = parseSelectorUrl(url);
                const Pair pair{-1, url, before.find(parts).properties,
                                after.find(parts).properties, QString()};
                if (!onlyNew || pair.before.isEmpty()) {
                    pairs.append(pair);
                }
            }
        }
    };
    collect(before, false);
    collect(after, true);
    return pairs;
}

Entry diffEntry(const Pair &pair, const QVector<LeafDifference> &differences)
{
    Entry entry;
    entry.subject = pair.url;
    QJsonArray changes;
    QStringList breaking;
    const QString index = pair.index < 0 ? QString() : QString::number(pair.index);
    for (const LeafDifference &difference : differences) {
        changes.append(QJsonObject{{QStringLiteral("what"), difference.what},
                                   {QStringLiteral("before"), difference.before},
                                   {QStringLiteral("after"), difference.after},
                                   {QStringLiteral("breaks"), difference.breaks}});
        entry.rows.append({index, selectorCell(pair.url, pair.label),
                           difference.breaks ? QStringLiteral("breaks") : QStringLiteral("differs"),
                           difference.what, difference.before, difference.after, pair.label});
        if (difference.breaks) {
            breaking.append(QStringLiteral("%1 %2 -> %3")
                                .arg(difference.what, difference.before, difference.after));
        }
    }
    entry.reason = breaking.join(QLatin1String(", "));
    entry.state = breaking.isEmpty() ? Entry::Good : Entry::Failed;
    entry.json = {{QStringLiteral("url"), pair.url},
                  {QStringLiteral("status"), stateName(entry.state)},
                  {QStringLiteral("changes"), changes}};
    insertLabel(pair.label, entry.json);
    if (pair.index >= 0) {
        entry.json.insert(QStringLiteral("index"), pair.index);
    }
    return entry;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (line.arguments.size() != 2) {
        usage = QStringLiteral("Expected two snapshots.");
        return ExitUsage;
    }
    Snapshot before;
    Snapshot after;
    QVector<ListLine> lines;
    if (!Snapshot::load(line.arguments.at(0), before, usage)
        || !Snapshot::load(line.arguments.at(1), after, usage)) {
        return ExitUsage;
    }
    const QStringList files = line.texts("file");
    for (const QString &file : files) {
        if (!readListFile(file, lines, usage)) {
            return ExitUsage;
        }
    }
    Report report{QStringLiteral("selector.diff/1"),
                  columnsOf("index> url result what before after label|"),
                  {}};
    const QVector<Pair> pairs
        = line.has("file") ? pairsOfList(lines, before, after) : pairsOfAll(before, after);
    for (const Pair &pair : pairs) {
        const QVector<LeafDifference> differences = leafDifferences(pair.before, pair.after);
        if (!differences.isEmpty()) {
            report.entries.append(diffEntry(pair, differences));
        }
    }
    return printReport(report, console);
}

} // namespace

Command diffCommand()
{
    return {QStringLiteral("diff"),
            QStringLiteral("compare two snapshots by meaning"),
            "Usage: selector diff [OPTIONS] BEFORE AFTER\n"
            "Lists the leaves that two snapshots (files or directories of selector snapshot)\n"
            "describe differently, and which of the differences break clients: a leaf that is\n"
            "gone, another type or unit, read-only now, a narrower range, a smaller capacity.\n"
            "Values, order and layout are not compared. No running system is needed.\n",
            {{"-f, --file FILE",
              "only the selectors of the list in FILE (- is standard input), each\n"
              "with its index (0 is the first)",
              "One selector a line; empty lines and lines that begin with # are left out.",
              Option::File},
             {"--timeout S", "without effect", "", Option::Seconds}},
            "Differences that break nothing count as good.\n"
            "\nExample: selector diff released/ now/ -f selectors.txt\n",
            {Arguments::File, 2},
            run};
}
