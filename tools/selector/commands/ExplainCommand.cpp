// SPDX-License-Identifier: MIT
// selector explain: why a selector does, or does not, lead to a value.
#include "Command.h"
#include "Entries.h"
#include "Explanation.h"
#include "SelectorText.h"

namespace {

Entry stepEntry(const SelectorText &selector, Step step, const Explanation &explanation)
{
    const QString name = QString::fromLatin1(stepNames[int(step)].name);
    const QString key = QString::fromLatin1(stepNames[int(step)].key);
    Entry entry;
    entry.subject = selector.url;
    entry.state = Entry::Skipped;
    QString text;
    QString advice;
    if (step < explanation.end()) {
        entry.state = Entry::Good;
        text = explanation.passed.at(int(step));
    } else if (step == explanation.end()) {
        entry.state = Entry::Failed;
        entry.failure = explanation.finding.exitCode();
        text = explanation.finding.text;
        advice = explanation.finding.advice;
        entry.reason = QStringLiteral("%1: %2; %3").arg(name, text, advice);
    }
    const QString result = stateName(entry.state);
    entry.json = {{QStringLiteral("url"), selector.url},
                  {QStringLiteral("step"), key},
                  {QStringLiteral("status"), result}};
    insertLabel(selector.label, entry.json);
    if (!text.isEmpty()) {
        entry.json.insert(QStringLiteral("finding"), text);
    }
    if (!advice.isEmpty()) {
        entry.json.insert(QStringLiteral("advice"), advice);
    }
    entry.rows.append({Cell(name, key), result, text, advice});
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
    const SelectorText selector = selectorText(line.arguments.constFirst());
    const Explanation explanation = explainSelector(selector.url, line.texts("property"));
    Report report{
        QStringLiteral("selector.explain/1"), columnsOf("step result finding advice"), {}};
    for (int step = 0; step < int(Step::None); ++step) {
        report.entries.append(stepEntry(selector, Step(step), explanation));
    }
    printReport(report, console);
    return explanation.finding.exitCode();
}

} // namespace

Command explainCommand()
{
    return {
        QStringLiteral("explain"),
        QStringLiteral("say why a selector does or does not work"),
        "Usage: selector explain [OPTIONS] SELECTOR\n"
        "Walks the way of the selector step by step: text, scheme, module, bus, service owner,\n"
        "object, description, buffer file, permission, layout, liveness, leaf, property, value.\n"
        "The first step that fails says what is wrong and what to do; the rest is skipped.\n",
        {{"--property NAME", "the leaf must have this property; may be given several times", "",
          Option::Name, knownProperties},
         timeoutOption},
        "\nExample: selector explain "
        "PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, 1},
        run};
}
