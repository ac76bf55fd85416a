// SPDX-License-Identifier: MIT
// Steps as a person types them: FAULT [PLACE] [KEY=VALUE]…, separated by commas.
#include "StepText.h"

#include "FaultTable.h"

#include <QJsonDocument>

namespace {

const QString doKey = QStringLiteral("do");
const QString stepWord = QStringLiteral("step");

struct Word
{
    QString key; ///< empty: it has none
    QString value;
};

struct SplitStep
{
    QString text;
    QVector<Word> words;
};

/// Takes a list of steps apart, character by character.
class Splitter
{
public:
    explicit Splitter(const QString &text)
        : text(text)
    {
    }

    /// @returns false when a quote is not closed: then the last step is the one that has it
    bool split(QVector<SplitStep> &steps)
    {
        for (position = 0; position < text.size(); ++position) {
            const QChar character = text.at(position);
            if (quoted) {
                takeQuoted(character);
            } else if (character == QLatin1Char(',')) {
                endStep(steps);
            } else {
                take(character);
            }
        }
        endStep(steps);
        return !quoted;
    }

private:
    void takeQuoted(QChar character)
    {
        const QChar next = position + 1 < text.size() ? text.at(position + 1) : QChar();
        const bool escapes = character == QLatin1Char('\\')
            && (next == QLatin1Char('"') || next == QLatin1Char('\\'));
        if (escapes) {
            word.value += next;
            ++position;
        } else if (character == QLatin1Char('"')) {
            quoted = false;
        } else {
            word.value += character;
        }
    }

    void take(QChar character)
    {
        if (character.isSpace()) {
            endWord();
        } else if (character == QLatin1Char('"')) {
            quoted = true;
            begun = true;
        } else if (character == QLatin1Char('=') && word.key.isEmpty() && begun) {
            word.key = word.value;
            word.value.clear();
        } else {
            word.value += character;
            begun = true;
        }
    }

    void endWord()
    {
        if (begun) {
            step.words.append(word);
        }
        word = Word();
        begun = false;
    }

    void endStep(QVector<SplitStep> &steps)
    {
        endWord();
        step.text = text.mid(stepBegin, position - stepBegin).trimmed();
        steps.append(step);
        step = SplitStep();
        stepBegin = position + 1;
    }

    const QString &text;
    int position = 0;
    int stepBegin = 0;
    SplitStep step;
    Word word;
    bool begun = false; // a word, perhaps an empty one in quotes
    bool quoted = false;
};

// A number where the key takes one and it is one; what is wrong with anything else says who reads it.
QJsonValue valueOf(const Word &word)
{
    bool isNumber = false;
    const double number = word.value.toDouble(&isNumber);
    return isNumber && takesNumber(word.key) ? QJsonValue(number) : QJsonValue(word.value);
}

bool insertWord(const Word &word, const QString &placeKey, QJsonObject &json, QString &error)
{
    const QString key = word.key.isEmpty() ? placeKey : word.key;
    const bool isTaken = json.contains(key);
    if (word.key.isEmpty() && (placeKey.isEmpty() || isTaken)) {
        error = QStringLiteral("unexpected \"%1\": KEY=VALUE is expected, and quotes around what "
                               "holds blanks")
                    .arg(word.value);
        return false;
    }
    if (isTaken) {
        error = QStringLiteral("key \"%1\" is given twice").arg(key);
        return false;
    }
    json.insert(key, valueOf(word));
    return true;
}

bool readNamed(const QVector<Word> &words, TypedStep &step, QString &error)
{
    if (words.size() != 2 || !words.at(1).key.isEmpty() || words.at(1).value.isEmpty()) {
        error = QStringLiteral("\"step\" takes the name of one step of the simulator's scenario");
        return false;
    }
    step.scenarioStep = words.at(1).value;
    return true;
}

bool readWords(const QVector<Word> &words, TypedStep &step, QString &error)
{
    if (words.isEmpty()) {
        error = QStringLiteral("it is empty");
        return false;
    }
    const Word &first = words.first();
    if (!first.key.isEmpty()) {
        error
            = QStringLiteral("it begins with the key \"%1\"; the fault comes first").arg(first.key);
        return false;
    }
    if (first.value == stepWord) {
        return readNamed(words, step, error);
    }
    QJsonObject json{{doKey, first.value}};
    if (!faults().contains(first.value)) {
        return parseScenarioStep(QJsonDocument(json).toJson(), step.step, error);
    }
    const QString placeKey = placeKeyOf(first.value);
    for (int i = 1; i < words.size(); ++i) {
        if (!insertWord(words.at(i), placeKey, json, error)) {
            return false;
        }
    }
    if (!json.contains(QStringLiteral("name"))) {
        json.insert(QStringLiteral("name"), step.text);
    }
    return parseScenarioStep(QJsonDocument(json).toJson(QJsonDocument::Compact), step.step, error);
}

} // namespace

bool parseSteps(const QString &text, QVector<TypedStep> &steps, QString &error)
{
    QVector<SplitStep> parts;
    const bool closed = Splitter(text).split(parts);
    for (int i = 0; i < parts.size(); ++i) {
        const SplitStep &part = parts.at(i);
        TypedStep step;
        step.text = part.text;
        QString problem;
        bool good = closed || i + 1 < parts.size();
        if (!good) {
            problem = QStringLiteral("a quote is not closed");
        } else {
            good = readWords(part.words, step, problem);
        }
        if (good && !steps.isEmpty() && endsSimulator(steps.last().step)) {
            problem = QStringLiteral("\"%1\" before it ends the simulator").arg(steps.last().text);
            good = false;
        }
        if (!good) {
            error = QStringLiteral("%1: %2").arg(stepLabel(steps.size(), part.text), problem);
            return false;
        }
        steps.append(step);
    }
    return true;
}

QString stepLabel(int index, const QString &text)
{
    return QStringLiteral("step %1, \"%2\"").arg(index + 1).arg(text);
}
