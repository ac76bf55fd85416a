// SPDX-License-Identifier: MIT
// The keys of one step and what they may hold.
#include "ScenarioKeys.h"

#include "FaultTable.h"
#include "SpellingHint.h"

#include <QRegularExpression>

#include <cmath>

namespace {

constexpr double longestTime = 86400; // seconds
constexpr int mostAnnouncements = 100000;
constexpr int largestReply = 120 * 1024 * 1024; // bytes; the bus takes 128 MiB
constexpr int largestCapacity = 1024 * 1024; // bytes
constexpr uint allModeBits = 0777;
constexpr int secondsToMilliseconds = 1000;

/// Reads keys one after the other; the first problem stands.
class KeyReader
{
public:
    KeyReader(const QJsonObject &object, QString &error)
        : object(object)
        , error(error)
    {
    }

    bool good() const { return !failed; }
    bool has(const char *key) const { return object.contains(QLatin1String(key)); }

    void text(const char *key, QString &result)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isUndefined()) {
            return;
        }
        if (!value.isString() || value.toString().isEmpty()) {
            refuse(key, QStringLiteral("a text that is not empty is expected"));
        } else {
            result = value.toString();
        }
    }

    void seconds(const char *key, int &milliseconds)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isUndefined()) {
            return;
        }
        const double number = value.toDouble(-1);
        if (number < 0 || number > longestTime) {
            refuse(key, QStringLiteral("0 to %1 seconds are expected").arg(longestTime));
        } else {
            milliseconds = static_cast<int>(std::lround(number * secondsToMilliseconds));
        }
    }

    void whole(const char *key, int highest, int &result)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isUndefined()) {
            return;
        }
        const int number = value.toInt(0); // 0 also for a fraction and another type
        if (number < 1 || number > highest) {
            refuse(key, QStringLiteral("a whole number from 1 to %1 is expected").arg(highest));
        } else {
            result = number;
        }
    }

    void choice(const char *key, const char *first, const char *second, bool &isSecond)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        isSecond = value == QLatin1String(second);
        if (!value.isUndefined() && !isSecond && value != QLatin1String(first)) {
            refuse(key,
                   QStringLiteral("\"%1\" or \"%2\" is expected")
                       .arg(QLatin1String(first), QLatin1String(second)));
        }
    }

    void mode(const char *key, uint &result)
    {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isUndefined()) {
            return;
        }
        bool ok = false;
        const uint number = value.toString().toUInt(&ok, 8);
        if (!ok || number > allModeBits) {
            refuse(key, QStringLiteral("an octal text from \"0\" to \"777\" is expected"));
        } else {
            result = number;
        }
    }

    void refuse(const char *key, const QString &why)
    {
        if (!failed) {
            error = QStringLiteral("key \"%1\": %2").arg(QLatin1String(key), why);
            failed = true;
        }
    }

private:
    const QJsonObject &object;
    QString &error;
    bool failed = false;
};

bool checkKeys(const QJsonObject &object, const FaultKeys &keys, const QString &what,
               QString &error)
{
    const QStringList present = object.keys();
    for (const QString &key : keys.required) {
        if (!object.contains(key)) {
            error = withLookAlike(
                QStringLiteral("key \"%1\" is missing: \"%2\" needs it").arg(key, what), key,
                present);
            return false;
        }
    }
    const QStringList known
        = QStringList{QStringLiteral("name"), QStringLiteral("at"), QStringLiteral("do")}
        + keys.required + keys.optional;
    for (const QString &key : present) {
        if (!known.contains(key)) {
            error = withHint(QStringLiteral("unknown key \"%1\" for \"%2\"").arg(key, what), key,
                             known);
            return false;
        }
    }
    return true;
}

void readPlace(KeyReader &reader, ScenarioStep &step)
{
    reader.text("source", step.source);
    reader.text("module", step.module);
    reader.text("leaf", step.leaf);
    const bool sourceHasParts = step.source.count(QLatin1Char('/')) >= 2;
    if (reader.has("source") && !sourceHasParts) {
        reader.refuse("source", QStringLiteral("MODULE/OBJECT/INSTANCE is expected"));
    }
}

void readParameters(KeyReader &reader, ScenarioStep &step)
{
    step.error = QStringLiteral("com.orvalis.ProcessData.Error.Simulated");
    reader.text("error", step.error);
    static const QRegularExpression busName(
        QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*(\\.[A-Za-z_][A-Za-z0-9_]*)+$"));
    if (!busName.match(step.error).hasMatch()) {
        reader.refuse("error",
                      QStringLiteral("a D-Bus error name such as com.example.Busy is expected"));
    }
    reader.text("text", step.text);
    reader.seconds("delay", step.delay);
    reader.whole("count", mostAnnouncements, step.count);
    reader.whole("bytes", largestReply, step.bytes);
    reader.text("type", step.type);
    reader.whole("capacity", largestCapacity, step.capacity);
    reader.choice("writer", "publisher", "client", step.byClient);
    reader.choice("change", "description", "properties", step.ofProperties);
    reader.mode("mode", step.mode);
}

} // namespace

bool readScenarioStep(const QJsonObject &object, ScenarioStep &step, QString &error)
{
    step.json = object;
    KeyReader reader(object, error);
    reader.text("name", step.name);
    QString what;
    reader.text("do", what);
    if (!reader.good()) {
        return false;
    }
    const auto fault = faults().constFind(what);
    if (fault == faults().constEnd()) {
        QStringList known = faults().keys();
        known.sort();
        reader.refuse(
            "do",
            withHint(
                QStringLiteral("\"%1\" is none of %2").arg(what, known.join(QStringLiteral(", "))),
                what, known));
        return false;
    }
    if (!checkKeys(object, *fault, what, error)) {
        return false;
    }
    step.fault = fault->fault;
    reader.seconds("at", step.at);
    readPlace(reader, step);
    readParameters(reader, step);
    return reader.good();
}
