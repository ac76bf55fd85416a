// SPDX-License-Identifier: MIT
// selector write: values from text.
#include "ApplyPlan.h"
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "Selection.h"
#include "SelectorList.h"

namespace {

WriteResult write(const ListLine &selector, int position, LiveLeaves &leaves)
{
    const FoundLeaf leaf = leaves.find(position);
    WriteResult result{selector.url,    {},           selector.value,
                       leaf.properties, leaf.finding, selector.label};
    result.before = goodValue(leaves.handler().getValue(position));
    if (result.finding.isNone()) {
        result.finding = checkValue(leaf.properties, result.text, result.value);
    }
    if (result.finding.isNone()) {
        result.finding = leaves.write(position, result.value);
    }
    return result;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> selectors;
    if (!collectSelectors(line, LineForm::UrlAndValue, selectors, usage)
        || !haveNoPatterns(selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    LiveLeaves leaves(selectors);
    QVector<WriteResult> results;
    for (int i = 0; i < selectors.size(); ++i) {
        results.append(write(selectors.at(i), i, leaves));
    }
    Report report{QStringLiteral("selector.write/1"), writeColumns(), {}};
    for (int i = 0; i < results.size(); ++i) {
        WriteResult &result = results[i];
        if (line.has("verify") && result.finding.isNone()) {
            result.finding = readBack(leaves.handler(), i, result.value);
            result.verified = result.finding.isNone();
        }
        report.entries.append(writeEntry(result));
    }
    return printReport(report, console);
}

} // namespace

Command writeCommand()
{
    return {
        QStringLiteral("write"),
        QStringLiteral("write values"),
        "Usage: selector write [OPTIONS] [NAME=]SELECTOR VALUE...\n"
        "       selector write [OPTIONS] [NAME=]SELECTOR=VALUE...\n"
        "Writes each value in the unit and type of its leaf, and shows what was there before.\n"
        "The first = behind a / begins the value; a = in a name is spelled %3D.\n"
        "\n"
        "Values: true, false, 1, 0, on, off for bool; decimal or 0x numbers, NaN, Infinity,\n"
        "-Infinity; strings as they are; bytes as 0x and hexadecimal digits. A negative number\n"
        "needs no special care. Text is UTF-8.\n",
        {{"-e, --escapes",
          "take \\\\, \\n, \\r, \\t, \\xHH, \\uHHHH and \\UHHHHHHHH in values for\n"
          "the characters that they stand for",
          "Values are spelled as read -q prints them: \\n, \\r and \\t are line feed, carriage "
          "return and tab, HH the number of a character in hexadecimal digits. \\c alone is an "
          "empty text."},
         {"--verify",
          "read all values back when they are written; another one is a\n"
          "failure, for example of a service that corrects what it is given",
          "So is one with an error type."},
         {"-f, --file FILE",
          "also read pairs from FILE (- is standard input): one selector, blanks\n"
          "and the value (the rest of the line) a line; lines that begin with\n"
          "# are left out; may be given several times",
          "Empty lines are left out too. A line that begins with -e and a blank spells its value as "
          "with --escapes. These pairs come after those on the command line.",
          Option::File},
         timeoutOption},
        "\nExample: selector write PumpStation/Pump/1/drive/setpoint 1200\n",
        {Arguments::UrlAndValue, Arguments::many},
        run};
}
