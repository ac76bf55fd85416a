// SPDX-License-Identifier: MIT
// selector explain: why a selector does, or does not, lead to a value.
#include "Command.h"
#include "Entries.h"
#include "Explanation.h"
#include "Selection.h"
#include "SelectorList.h"

namespace {

Entry stepEntry(const ListLine &selector, Step step, const Explanation &explanation)
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
    entry.rows.append({Cell(name, key), result, text, advice, selector.url, selector.label});
    return entry;
}

// A pattern without a leaf has no steps to show.
Entry missEntry(const ListLine &selector, const Finding &miss)
{
    Explanation explanation;
    for (int i = 0; i < int(Step::Leaf); ++i) {
        explanation.passed.append(QString());
    }
    explanation.finding = miss;
    return stepEntry(selector, Step::Leaf, explanation);
}

Report emptyReport()
{
    return {QStringLiteral("selector.explain/1"),
            columnsOf("step result finding advice url| label|"),
            {}};
}

void addSteps(const ListLine &selector, const Finding &miss, const Explanation &explanation,
              Report &report)
{
    if (!miss.isNone()) {
        report.entries.append(missEntry(selector, miss));
        return;
    }
    for (int step = 0; step < int(Step::None); ++step) {
        report.entries.append(stepEntry(selector, Step(step), explanation));
    }
}

// A system out of reach says more than whatever is wrong with a text.
ExitCode gravest(ExitCode one, ExitCode other)
{
    return one == ExitNotReachable || other == ExitNotReachable ? ExitNotReachable
                                                                : graver(one, other);
}

void printHeading(const ListLine &selector, const Console &console)
{
    const QString name = selector.label.isEmpty() ? QString() : selector.label + QLatin1Char('=');
    console.out << asTitle(printable(name + selector.url), console.style.colour) << '\n';
}

QVector<Explanation> explainAll(const Selection &selection, const QStringList &properties)
{
    QVector<Explanation> explanations;
    for (int i = 0; i < selection.lines().size(); ++i) {
        const Finding miss = selection.finding(i);
        explanations.append(miss.isNone() ? explainSelector(selection.lines().at(i).url, properties)
                                          : Explanation{{}, miss});
    }
    return explanations;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    QVector<ListLine> typed;
    if (!collectSelectors(line, LineForm::Url, typed, usage)) {
        return ExitUsage;
    }
    const QStringList properties = line.texts("property");
    Catalog catalog;
    Selection selection(typed, lookupIn(catalog));
    QVector<Explanation> explanations = explainAll(selection, properties);
    // Only what is neither a leaf nor in the way to one may be a group.
    const auto isLeaf = [&explanations](int position) {
        const Finding::Code code = explanations.at(position).finding.code;
        return code != Finding::NoSuchLeaf && code != Finding::InvalidUrl;
    };
    if (selection.expandGroups(isLeaf)) {
        explanations = explainAll(selection, properties);
    }
    // In a table of all nobody could see which step is whose.
    const bool apart = console.style.format == Format::Table && explanations.size() > 1;
    Report report = emptyReport();
    ExitCode exitCode = ExitAllGood;
    for (int i = 0; i < explanations.size(); ++i) {
        const ListLine &selector = selection.lines().at(i);
        addSteps(selector, selection.finding(i), explanations.at(i), report);
        exitCode = gravest(exitCode, explanations.at(i).finding.exitCode());
        if (apart) {
            printHeading(selector, console);
            printReport(report, console);
            report = emptyReport();
        }
    }
    if (!apart) {
        printReport(report, console);
    }
    return exitCode;
}

} // namespace

Command explainCommand()
{
    return {
        QStringLiteral("explain"),
        QStringLiteral("say why a selector does or does not work"),
        "Usage: selector explain [OPTIONS] SELECTOR...\n"
        "Walks the way of each selector step by step: text, scheme, module, bus, service owner,\n"
        "object, description, buffer file, permission, layout, liveness, leaf, property, value.\n"
        "The first step that fails says what is wrong and what to do; the rest is skipped.\n",
        {{"--property NAME", "the leaf must have this property; may be given several times", "",
          Option::Name, knownProperties},
         urlFileOption,
         timeoutOption},
        "\nExample: selector explain "
        "PumpStation/Pump/1/drive/speed\n",
        {Arguments::Url, Arguments::many},
        run};
}
