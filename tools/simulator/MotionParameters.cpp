// SPDX-License-Identifier: MIT
// Typed, checked access to the keys of a "simulate" object.
#include "MotionParameters.h"

#include "SpellingHint.h"

#include <QJsonArray>

MotionParameters::MotionParameters(const LeafTemplate &leaf)
    : leaf(leaf)
{
}

double MotionParameters::number(const QString &key, double defaultValue)
{
    known.append(key);
    const QJsonValue json = leaf.simulate.value(key);
    if (json.isUndefined()) {
        return defaultValue;
    }
    if (!json.isDouble()) {
        fail(key, QStringLiteral("must be a number"));
        return defaultValue;
    }
    return json.toDouble();
}

double MotionParameters::requiredNumber(const QString &key)
{
    if (!contains(key)) {
        fail(key, QStringLiteral("is missing"));
    }
    return number(key, 0);
}

double MotionParameters::positive(const QString &key, std::optional<double> defaultValue)
{
    const double fallback = defaultValue.value_or(1);
    if (!defaultValue && !contains(key)) {
        known.append(key);
        fail(key, QStringLiteral("is missing"));
        return fallback;
    }
    const double result = number(key, fallback);
    if (!(result > 0)) {
        fail(key, QStringLiteral("must be above 0"));
        return fallback;
    }
    return result;
}

QString MotionParameters::requiredText(const QString &key)
{
    known.append(key);
    const QJsonValue json = leaf.simulate.value(key);
    if (!json.isString() || json.toString().isEmpty()) {
        fail(key, contains(key) ? QStringLiteral("must be a text") : QStringLiteral("is missing"));
    }
    return json.toString();
}

QVariant MotionParameters::value(const QString &key, const QJsonValue &json)
{
    QVariant result;
    QString problem;
    if (!valueFromJson(leaf.type, json, result, problem)
        || !checkLimits(leaf.type, leaf.properties, result, problem)) {
        fail(key, problem);
    }
    return result;
}

QVariant MotionParameters::requiredValue(const QString &key)
{
    known.append(key);
    if (!contains(key)) {
        fail(key, QStringLiteral("is missing"));
        return {};
    }
    return value(key, leaf.simulate.value(key));
}

QVector<QVariant> MotionParameters::requiredValues(const QString &key)
{
    known.append(key);
    QVector<QVariant> results;
    const QJsonValue json = leaf.simulate.value(key);
    const QJsonArray array = json.toArray();
    if (array.isEmpty()) {
        fail(key,
             json.isUndefined() ? QStringLiteral("is missing")
                                : QStringLiteral("must be an array with at least one value"));
    }
    for (int i = 0; i < array.size(); ++i) {
        results.append(value(QStringLiteral("%1[%2]").arg(key).arg(i), array.at(i)));
    }
    return results;
}

void MotionParameters::fail(const QString &key, const QString &problem)
{
    if (firstError.isEmpty()) {
        firstError = QStringLiteral("simulate.%1 %2").arg(key, problem);
    }
}

QString MotionParameters::error()
{
    const QStringList keys = leaf.simulate.keys();
    for (const QString &key : keys) {
        if (!known.contains(key)) {
            fail(key,
                 withHint(QStringLiteral("is unknown for kind \"%1\"")
                              .arg(leaf.simulate.value(QLatin1String("kind")).toString()),
                          key, known));
        }
    }
    return firstError;
}
