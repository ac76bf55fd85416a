// SPDX-License-Identifier: MIT
// selector check: what would break in a selector list.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "SelectorUrlHandler.h"
#include "Snapshot.h"

namespace {

Entry checkEntry(const CheckedLine &checked)
{
    Entry entry;
    entry.subject = QStringLiteral("line %1: %2").arg(checked.line.number).arg(checked.line.url);
    entry.reason = checked.finding.text;
    entry.failure = checked.finding.exitCode();
    entry.state
        = checked.finding.code == Finding::Duplicate ? Entry::Doubtful : stateOf(checked.finding);
    entry.json = {{QStringLiteral("line"), checked.line.number},
                  {QStringLiteral("url"), checked.line.url},
                  {QStringLiteral("status"), stateName(entry.state)}};
    if (checked.line.hasValue) {
        entry.json.insert(QStringLiteral("value"), checked.line.value);
    }
    if (checked.finding.code != Finding::None) {
        entry.json.insert(QStringLiteral("code"), checked.finding.codeName());
        entry.json.insert(QStringLiteral("reason"), checked.finding.text);
    }
    const QString result
        = checked.finding.code == Finding::None ? QStringLiteral("ok") : checked.finding.codeName();
    entry.rows.append(
        {QString::number(checked.line.number), checked.line.url, result, checked.finding.text});
    return entry;
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
    Report report{QStringLiteral("selector.check/1"),
                  {{QStringLiteral("line"), true},
                   {QStringLiteral("url")},
                   {QStringLiteral("result")},
                   {QStringLiteral("note")}},
                  {}};
    QVector<CheckedLine> checked;
    if (line.has("against")) {
        checked = checkLines(lines, [&snapshot](int /*position*/, const SelectorUrlHandler &url) {
            return snapshot.find(url);
        });
    } else {
        if (!busIsReachable(console)) {
            return ExitNotReachable;
        }
        LiveLeaves leaves(lines);
        checked = checkLines(lines, [&leaves](int position, const SelectorUrlHandler &url) {
            return leaves.find(position, url.getUrl());
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
        "A line with a value behind the URL is meant to be written: a read-only leaf and a\n"
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
