// SPDX-License-Identifier: MIT
// selector read: current values.
#include "AgeText.h"
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "MaximumAge.h"
#include "Selection.h"
#include "SelectorList.h"

namespace {

constexpr int valueColumn = 1;

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> typed;
    if (!collectSelectors(line, LineForm::Url, typed, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    SelectorHandlerProcessValue handler(urlsOf(selection.lines()), nullptr);
    if (selection.expandGroups([&](int i) { return hasLeaf(handler, i); })) {
        handler.setSelectorUrls(urlsOf(selection.lines()));
    }
    const QVector<ListLine> &selectors = selection.lines();
    const QVector<ProcessValue> values = handler.getValues();
    SelectorExaminer examiner;
    const MaximumAge maximumAge(line.number("max-age"));
    const qint64 now = currentTime();
    Report report{QStringLiteral("selector.read/1"), readColumns(), {}, valueColumn};
    for (int i = 0; i < selectors.size(); ++i) {
        const QJsonObject properties = propertiesOf(handler, i);
        if (line.has("writable") && properties.value(QLatin1String("readOnly")).toBool()) {
            continue;
        }
        ReadResult result{selectors.at(i).url, values.at(i), properties, selection.finding(i),
                          selectors.at(i).label};
        if (!result.value.isMissing()) {
            result.finding = maximumAge.judge(result.value, now);
        } else if (result.finding.isNone()) {
            result.finding = examiner.explain(result.url);
        }
        report.entries.append(readEntry(result));
    }
    return printReport(report, console);
}

} // namespace

Command readCommand()
{
    return {
        QStringLiteral("read"),
        QStringLiteral("print current values"),
        "Usage: selector read [OPTIONS] [NAME=]SELECTOR...\n"
        "Prints the current value of each selector with unit, error type and local time. A\n"
        "SELECTOR is a URL, or one without processdata://; NAME stands in its place in the table.\n"
        "A group, a source or a pattern ('PumpStation/*/1/**') stands for all its leaves.\n",
        {{"--writable", "leave out leaves that are read-only"},
         {"--format FORMAT",
          "table (default), json, csv, or pairs: one selector and its value a\n"
          "line, as apply and write -f read them; -j is --format json",
          "FORMATS in selector(1) describes them.", Option::Text, "table json csv pairs"},
         urlFileOption,
         maximumAgeOption,
         quietOption,
         timeoutOption},
        "\nExample: selector read PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
