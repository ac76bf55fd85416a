// SPDX-License-Identifier: MIT
// Reads scenarios: format, names, times.
#include "Scenario.h"

#include "ScenarioKeys.h"
#include "SpellingHint.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

const QString formatName = QStringLiteral("process-data-scenario/1");

bool parseObject(const QByteArray &json, QJsonObject &object, QString &error)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError) {
        error = QStringLiteral("line %1: %2")
                    .arg(json.left(problem.offset).count('\n') + 1)
                    .arg(problem.errorString());
        return false;
    }
    if (!document.isObject()) {
        error = QStringLiteral("line 1: a JSON object is expected");
        return false;
    }
    object = document.object();
    return true;
}

bool readSteps(const QJsonArray &array, Scenario &scenario, QString &error)
{
    for (int i = 0; i < array.size(); ++i) {
        ScenarioStep step;
        step.name = QString::number(i + 1);
        if (!array.at(i).isObject()) {
            error = QStringLiteral("step %1: a JSON object is expected").arg(i + 1);
            return false;
        }
        if (!readScenarioStep(array.at(i).toObject(), step, error)) {
            error = QStringLiteral("step %1: %2").arg(step.name, error);
            return false;
        }
        if (scenario.find(step.name) != nullptr) {
            error = QStringLiteral("step %1: key \"name\": \"%2\" is the name of an earlier step")
                        .arg(i + 1)
                        .arg(step.name);
            return false;
        }
        scenario.steps.append(step);
    }
    return true;
}

bool readScenario(const QJsonObject &object, Scenario &scenario, QString &error)
{
    const QStringList known{QStringLiteral("format"), QStringLiteral("steps"),
                            QStringLiteral("description"), QStringLiteral("license")};
    const QStringList present = object.keys();
    for (const QString &key : present) {
        if (!known.contains(key)) {
            error = withHint(QStringLiteral("unknown key \"%1\"").arg(key), key, known);
            return false;
        }
    }
    if (object.value(QLatin1String("format")) != formatName) {
        error = QStringLiteral("key \"format\": \"%1\" is expected").arg(formatName);
        return false;
    }
    const QJsonValue steps = object.value(QLatin1String("steps"));
    if (!steps.isArray()) {
        error = QStringLiteral("key \"steps\": an array of steps is expected");
        return false;
    }
    return readSteps(steps.toArray(), scenario, error);
}

} // namespace

const ScenarioStep *Scenario::find(const QString &name) const
{
    const auto found = std::find_if(steps.cbegin(), steps.cend(),
                                    [&](const ScenarioStep &step) { return step.name == name; });
    return found == steps.cend() ? nullptr : &*found;
}

QStringList Scenario::names() const
{
    QStringList result;
    for (const ScenarioStep &step : steps) {
        result.append(step.name);
    }
    return result;
}

bool parseScenario(const QString &fileName, const QByteArray &content, Scenario &result,
                   QString &error)
{
    QJsonObject object;
    Scenario scenario;
    QString problem;
    if (!parseObject(content, object, problem) || !readScenario(object, scenario, problem)) {
        error = QStringLiteral("%1: %2").arg(fileName, problem);
        return false;
    }
    result = scenario;
    return true;
}

bool parseScenarioStep(const QByteArray &json, ScenarioStep &result, QString &error)
{
    QJsonObject object;
    ScenarioStep step;
    step.name = QStringLiteral("inline");
    if (!parseObject(json, object, error) || !readScenarioStep(object, step, error)) {
        return false;
    }
    if (step.at >= 0) {
        error = QStringLiteral("key \"at\": a step that is run at once takes no time");
        return false;
    }
    result = step;
    return true;
}
