// SPDX-License-Identifier: MIT
// selector check: what would break in a selector list.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "NearMiss.h"
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

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (line.arguments.size() != 1) {
        usage = QStringLiteral("Expected one FILE.");
        return ExitUsage;
    }
    QVector<ListLine> lines;
    Snapshot snapshot;
    if (!readListFile(line.arguments.constFirst(), lines, usage)
        || (line.has("against") && !Snapshot::load(line.text("against"), snapshot, usage))) {
        return ExitUsage;
    }
    Report report{
        QStringLiteral("selector.check/1"), columnsOf("line> url result note label|"), {}};
    QVector<CheckedLine> checked;
    if (line.has("against")) {
        checked = checkLines(lines, [&snapshot](int /*position*/, const SelectorUrlParts &parts) {
            return snapshot.find(parts);
        });
        addHints(snapshot, checked);
    } else {
        if (!busIsReachable(console)) {
            return ExitNotReachable;
        }
        LiveLeaves leaves(lines);
        checked = checkLines(lines, [&leaves](int position, const SelectorUrlParts & /*parts*/) {
            return leaves.find(position);
        });
    }
    for (const CheckedLine &one : qAsConst(checked)) {
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
