// SPDX-License-Identifier: MIT
// selector read: current values.
#include "Command.h"
#include "Entries.h"
#include "ExitCode.h"
#include "LiveLeaves.h"
#include "SelectorList.h"

namespace {

constexpr int valueColumn = 1;

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> selectors;
    if (!collectSelectors(line, LineForm::Url, selectors, usage)) {
        return ExitUsage;
    }
    if (!busIsReachable(console)) {
        return ExitNotReachable;
    }
    const QVector<QString> urls = urlsOf(selectors);
    SelectorHandlerProcessValue handler(urls, nullptr);
    const QVector<ProcessValue> values = handler.getValues();
    SelectorExaminer examiner;
    Report report{QStringLiteral("selector.read/1"), readColumns(), {}, valueColumn};
    for (int i = 0; i < urls.size(); ++i) {
        ReadResult result{
            urls.at(i), values.at(i), propertiesOf(handler, i), {}, selectors.at(i).label};
        if (result.value.isMissing()) {
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
        "SELECTOR is a URL, or one without processdata://; NAME stands in its place in the table.\n",
        {urlFileOption, quietOption, timeoutOption},
        "\nExample: selector read PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
