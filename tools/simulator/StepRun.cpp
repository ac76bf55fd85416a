// SPDX-License-Identifier: MIT
// Has a running simulator perform steps, one after the other.
#include "StepRun.h"

#include "ControlClient.h"
#include "ControlNames.h"
#include "ExitCode.h"
#include "FaultTable.h"
#include "PrintableText.h"
#include "ScenarioKeys.h"

#include <QJsonDocument>

namespace {

QByteArray jsonOf(const TypedStep &step)
{
    return QJsonDocument(step.step.json).toJson(QJsonDocument::Compact);
}

int exitCodeOf(const ControlAnswer &answer)
{
    switch (answer.kind) {
    case ControlAnswer::Done:
        return ExitAllGood;
    case ControlAnswer::Refused:
    case ControlAnswer::Gone:
        return ExitSomeFailed;
    case ControlAnswer::TimedOut:
        return ExitTimeLimit;
    case ControlAnswer::Denied:
        return ExitDenied;
    case ControlAnswer::NoSimulator:
    case ControlAnswer::NoBus:
        break;
    }
    return ExitNotReachable;
}

// A step of the simulator's scenario is fetched, so that it is known what it does.
ControlAnswer check(const ControlClient &client, TypedStep &step)
{
    if (step.scenarioStep.isEmpty()) {
        return client.ask(ControlNames::checkInline, QString::fromUtf8(jsonOf(step)));
    }
    ControlAnswer answer = client.ask(ControlNames::getStep, step.scenarioStep);
    if (answer.kind == ControlAnswer::Done) {
        const QJsonObject json = QJsonDocument::fromJson(answer.text.toUtf8()).object();
        step.step.name = step.scenarioStep;
        if (!readScenarioStep(json, step.step, answer.text)) {
            answer.kind = ControlAnswer::Refused;
        }
    }
    return answer;
}

int perform(const ControlClient &client, const TypedStep &step, QString &outcome)
{
    const ControlAnswer answer = step.scenarioStep.isEmpty()
        ? client.ask(ControlNames::runInline, QString::fromUtf8(jsonOf(step)))
        : client.ask(ControlNames::runStep, step.scenarioStep);
    if (answer.kind == ControlAnswer::Gone && endsSimulator(step.step)) {
        outcome = QStringLiteral("done, the simulator has ended");
        return ExitAllGood;
    }
    if (answer.kind == ControlAnswer::Done) {
        outcome = QStringLiteral("done");
        return ExitAllGood;
    }
    QString reason = answer.text;
    const QString name = QStringLiteral("step %1: ").arg(step.step.name);
    if (reason.startsWith(name)) {
        reason.remove(0, name.size()); // the line begins with it already
    }
    outcome = QStringLiteral("failed: ") + reason;
    return exitCodeOf(answer);
}

} // namespace

int runSteps(const QVector<TypedStep> &steps, const std::function<void(const QString &)> &print,
             QString &error)
{
    ControlClient client;
    if (!client.open(error)) {
        return ExitNotReachable;
    }
    QVector<TypedStep> checked = steps;
    for (int i = 0; i < checked.size(); ++i) {
        const ControlAnswer answer = check(client, checked[i]);
        if (answer.kind == ControlAnswer::NoSimulator) {
            error = answer.text;
        } else if (answer.kind != ControlAnswer::Done) {
            error = QStringLiteral("%1: %2").arg(stepLabel(i, steps.at(i).text), answer.text);
        }
        if (answer.kind != ControlAnswer::Done) {
            return exitCodeOf(answer);
        }
    }
    int result = ExitAllGood;
    for (const TypedStep &step : qAsConst(checked)) {
        QString outcome = QStringLiteral("not run");
        if (result == ExitAllGood) {
            result = perform(client, step, outcome);
        }
        print(printable(QStringLiteral("%1: %2").arg(step.text, outcome)));
    }
    return result;
}
