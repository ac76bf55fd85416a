// SPDX-License-Identifier: MIT
// selector apply: many values from a file.
#include "ApplyPlan.h"
#include "Command.h"
#include "ExitCode.h"
#include "InterruptExit.h"
#include "LiveLeaves.h"
#include "Selection.h"

namespace {

constexpr int mostUnasked = 10; // values

bool isWanted(const QVector<ApplyItem> &items, const CommandLine &line, const Console &console)
{
    const int count = valuesToWrite(items);
    return count <= mostUnasked || line.has("dry-run") || line.has("yes")
        || isConfirmed(QStringLiteral("selector: %1 values will be written. Go on?").arg(count),
                       console);
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (line.arguments.size() != 1) {
        usage = QStringLiteral("Expected one FILE.");
        return ExitUsage;
    }
    if (line.has("dry-run") && (line.has("verify") || line.has("rollback"))) {
        usage = QStringLiteral("--dry-run writes nothing that --verify or --rollback could treat.");
        return ExitUsage;
    }
    const QString &file = line.arguments.constFirst();
    QVector<ListLine> lines;
    QString problem;
    if (!readListFile(file, lines, usage)) {
        return ExitUsage;
    }
    if (!haveValues(lines, problem) || !haveNoPatterns(lines, problem)) {
        usage = QStringLiteral("%1: %2").arg(file, problem);
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    LiveLeaves leaves(lines);
    const QVector<CheckedLine> checked
        = checkLines(lines, [&leaves](int position, const SelectorUrlParts & /*parts*/) {
              return leaves.find(position);
          });
    QVector<ApplyItem> items;
    for (const CheckedLine &one : checked) {
        ApplyItem item;
        item.checked = one;
        items.append(item);
    }
    if (!isWanted(items, line, console)) {
        console.err << "selector: nothing was written\n";
        console.err.flush();
        return ExitSomeFailed;
    }
    // The values of a file: all, none, or as many as the report says.
    const InterruptHold hold;
    const QVector<ProcessValue> before = leaves.handler().getValues(); // the answer may take long
    for (int i = 0; i < items.size(); ++i) {
        items[i].before = before.at(i);
    }
    apply(items, {line.has("dry-run"), line.has("verify"), line.has("rollback")}, leaves.handler());
    Report report{QStringLiteral("selector.apply/1"), applyColumns(), {}};
    for (const ApplyItem &item : qAsConst(items)) {
        report.entries.append(applyEntry(item));
    }
    return printReport(report, console);
}

} // namespace

Command applyCommand()
{
    return {
        QStringLiteral("apply"),
        QStringLiteral("write many values from a file, all or none"),
        "Usage: selector apply [OPTIONS] FILE\n"
        "Writes the values of FILE (- is standard input): one [NAME=]SELECTOR, blanks and\n"
        "the value (the rest of the line) a line; lines that begin with # are left out. All lines are checked\n"
        "first, as selector check does; when one is wrong nothing is written. A write that\n"
        "fails all the same ends the writing. Each line gets its verdict: written, failed, left.\n",
        {{"--dry-run", "check only, and show what each leaf holds now"},
         {"--verify",
          "read all values back when they are written; another one is a\n"
          "failure, for example of a service that corrects what it is given",
          "So is one with an error type."},
         {"--rollback", "when anything fails, set back what was written, the last one first",
          "A leaf without a good value before cannot be set back. Clients may see the values in "
          "between: this is not a transaction."},
         {"--yes", "do not ask on a terminal before more than ten values are written",
          "Without a terminal nothing is asked."},
         timeoutOption},
        "\nExample: selector apply recipe.txt --verify --rollback\n",
        {Arguments::File, 1},
        run};
}
