// SPDX-License-Identifier: MIT
// selector explain: why a selector does, or does not, lead to a value.
#include "Command.h"
#include "SelectorWalk.h"

namespace {

QString resultName(WalkStep::Result result)
{
    switch (result) {
    case WalkStep::Ok:
        return QStringLiteral("ok");
    case WalkStep::Failed:
        return QStringLiteral("failed");
    case WalkStep::NotReached:
        break;
    }
    return QStringLiteral("skipped");
}

Entry stepEntry(const QString &url, const WalkStep &step)
{
    Entry entry;
    entry.subject = url;
    entry.state = step.result == WalkStep::Ok ? Entry::Good
        : step.result == WalkStep::Failed     ? Entry::Failed
                                              : Entry::Skipped;
    const QString name = resultName(step.result);
    entry.json = {{QStringLiteral("url"), url},
                  {QStringLiteral("step"), step.key},
                  {QStringLiteral("status"), name}};
    if (!step.finding.isEmpty()) {
        entry.json.insert(QStringLiteral("finding"), step.finding);
    }
    if (!step.advice.isEmpty()) {
        entry.json.insert(QStringLiteral("advice"), step.advice);
        entry.reason = QStringLiteral("%1: %2; %3").arg(step.name, step.finding, step.advice);
    }
    entry.rows.append({Cell(step.name, step.key), name, step.finding, step.advice});
    return entry;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (line.arguments.size() != 1) {
        usage = line.arguments.isEmpty()
            ? QStringLiteral("No selector given.")
            : QStringLiteral("Unexpected argument %1.").arg(line.arguments.at(1));
        return ExitUsage;
    }
    const QString &url = line.arguments.constFirst();
    SelectorWalk walk(url, line.texts("property"));
    walk.walk();
    Report report{QStringLiteral("selector.explain/1"),
                  {{QStringLiteral("step")},
                   {QStringLiteral("result")},
                   {QStringLiteral("finding")},
                   {QStringLiteral("advice")}},
                  {}};
    for (const WalkStep &step : walk.steps()) {
        report.entries.append(stepEntry(url, step));
    }
    printReport(report, console);
    return walk.exitCode();
}

} // namespace

Command explainCommand()
{
    return {
        QStringLiteral("explain"),
        QStringLiteral("say why a selector does or does not work"),
        "Usage: selector explain [OPTIONS] URL\n"
        "Walks the way of the selector step by step: text, scheme, module, bus, service owner,\n"
        "object, description, buffer file, permission, layout, liveness, leaf, property, value.\n"
        "The first step that fails says what is wrong and what to do; the rest is skipped.\n",
        {{"--property NAME", "the leaf must have this property; may be given several times", "",
          Option::Name, knownProperties},
         timeoutOption},
        "\nExample: selector explain "
        "processdata://PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, 1},
        run};
}
