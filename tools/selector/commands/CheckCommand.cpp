// SPDX-License-Identifier: MIT
// selector check: what would break in a selector list.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "NearMiss.h"
#include "Selection.h"
#include "Snapshot.h"

namespace {

Entry checkEntry(const CheckedLine &checked)
{
    const ListLine &line = checked.line;
    const Finding &finding = checked.finding;
    Entry entry = lineEntry(line, finding, stateOf(finding));
    if (line.hasValue) {
        entry.json.insert(QStringLiteral("value"), line.value);
    }
    entry.rows.append({QString::number(line.number), selectorCell(line.url, line.label),
                       finding.isNone() ? QStringLiteral("ok") : finding.codeName(), finding.text,
                       line.label});
    return entry;
}

// Which leaves of the snapshot were probably meant, for the first few lines that name none.
void addHints(const Snapshot &snapshot, QVector<CheckedLine> &checked)
{
    int hintsLeft = 20;
    for (CheckedLine &one : checked) {
        if (one.finding.code != Finding::NoSuchLeaf || hintsLeft-- <= 0) {
            continue;
        }
        const SelectorUrlParts parts = parseSelectorUrl(one.line.url);
        const QStringList paths = snapshot.sources().value(parts.source).byPath.keys();
        const QString hint = didYouMean(parts.path, paths);
        one.finding.text += hint.isEmpty() ? QString() : QStringLiteral("; ") + hint;
    }
}

QVector<CheckedLine> checkAgainst(const Snapshot &snapshot, const QVector<ListLine> &typed)
{
    Selection selection(typed, lookupIn(snapshot));
    selection.expandGroups([&](int position) {
        return snapshot.find(parseSelectorUrl(selection.lines().at(position).url)).finding.isNone();
    });
    QVector<CheckedLine> checked
        = checkLines(selection.lines(), [&](int position, const SelectorUrlParts &parts) {
              const Finding miss = selection.finding(position);
              return miss.isNone() ? snapshot.find(parts) : FoundLeaf{miss, {}};
          });
    addHints(snapshot, checked);
    return checked;
}

QVector<CheckedLine> checkLive(const QVector<ListLine> &typed)
{
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    const std::unique_ptr<LiveLeaves> leaves = findLeaves(selection);
    return checkLines(selection.lines(), [&](int position, const SelectorUrlParts & /*parts*/) {
        const Finding miss = selection.finding(position);
        return miss.isNone() ? leaves->find(position) : FoundLeaf{miss, {}};
    });
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (line.arguments.size() != 1) {
        usage = QStringLiteral("Expected one FILE.");
        return ExitUsage;
    }
    QVector<ListLine> typed;
    Snapshot snapshot;
    if (!readListFile(line.arguments.constFirst(), typed, usage)
        || (line.has("against") && !Snapshot::load(line.text("against"), snapshot, usage))) {
        return ExitUsage;
    }
    Report report{
        QStringLiteral("selector.check/1"), columnsOf("line> url result note label|"), {}};
    const bool against = line.has("against");
    if (!against && !busIsReachable(console)) {
        return ExitNotReachable;
    }
    const QVector<CheckedLine> checked = against ? checkAgainst(snapshot, typed) : checkLive(typed);
    for (const CheckedLine &one : checked) {
        report.entries.append(checkEntry(one));
    }
    return printReport(report, console);
}

} // namespace

Command checkCommand()
{
    return {
        QStringLiteral("check"),
        QStringLiteral("say what would break in a selector list"),
        "Usage: selector check [OPTIONS] FILE\n"
        "Says of each line of FILE (- is standard input) what would break: a URL that is none,\n"
        "a leaf that is not there, a deactivated selector, a leaf that an earlier line names.\n"
        "A line with a value behind the selector is meant to be written: a read-only leaf and a\n"
        "value that the leaf would refuse are found too. Nothing is written.\n",
        {{"--against SNAPSHOT",
          "ask a file or directory of selector snapshot instead of the\n"
          "running system",
          "The system need not be there then.", Option::File},
         timeoutOption},
        "\nExample: selector check selectors.txt --against released/\n",
        {Arguments::File, 1},
        run};
}
