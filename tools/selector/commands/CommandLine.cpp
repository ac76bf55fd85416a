// SPDX-License-Identifier: MIT
// Parses the arguments of a subcommand.
#include "CommandLine.h"

#include "Duration.h"
#include "NearMiss.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int longestInterval = 3600000; // milliseconds
constexpr double leastPart = 1e-6; // of a millisecond
constexpr double longestTimeout = 86400; // seconds

// A value such as -5 is not an option, though the parser would take it for one.
const QChar numberMark(0xE000);

QStringList withMarkedNumbers(const QStringList &arguments)
{
    QStringList result;
    for (const QString &argument : arguments) {
        // A text that begins with the mark gets a second one, so that it keeps its own.
        const bool needsMark = isNumber(argument) || argument.startsWith(numberMark);
        result.append(needsMark ? numberMark + argument : argument);
    }
    return result;
}

QStringList unmarked(QStringList texts)
{
    for (QString &text : texts) {
        text = text.startsWith(numberMark) ? text.mid(1) : text;
    }
    return texts;
}

// "a, b or c"
QString choice(const QStringList &names)
{
    return QStringList(names.mid(0, names.size() - 1)).join(QLatin1String(", "))
        + QStringLiteral(" or ") + names.constLast();
}

bool chooseFormat(const QVector<Option> &options, CommandLine &line, QString &error)
{
    const auto format = std::find_if(options.begin(), options.end(), [](const Option &option) {
        return option.name() == QLatin1String("format");
    });
    // In the order of Format.
    const QStringList names = QString::fromLatin1(format->words).split(QLatin1Char(' '));
    const QString name
        = line.has("format") ? line.text("format") : names.at(line.has("json") ? 1 : 0);
    if (line.has("json") && name != names.at(1)) {
        error = QStringLiteral("-j and --format %1 exclude each other").arg(name);
    } else if (!names.contains(name)) {
        error = QStringLiteral("--format must be %1, not \"%2\"").arg(choice(names), name);
    } else if (line.has("quiet") && (line.has("format") || line.has("json"))) {
        error = QStringLiteral("--quiet and --format exclude each other");
    } else {
        line.format = static_cast<Format>(names.indexOf(name));
        return true;
    }
    return false;
}

// What the option takes in place of a text that is not even a time; empty when it is one.
QString wantedTime(const Option &option, const QString &value, double &milliseconds)
{
    const bool seconds = option.kind == Option::Seconds;
    const auto time = millisecondsFromText(value, seconds ? millisecondsPerSecond : 1);
    milliseconds = time.value_or(0);
    return time ? QString()
                : QStringLiteral("a number of %1, or one with its unit: ms, s, min, h or d")
                      .arg(seconds ? QStringLiteral("seconds") : QStringLiteral("milliseconds"));
}

// Numbers get the form in which they are kept.
bool accept(const Option &option, QString &value, QString &error)
{
    bool ok = true;
    double number = 0;
    QString range;
    switch (option.kind) {
    case Option::Text:
        return true;
    case Option::Name:
    case Option::File: // a script that fills in an empty variable should hear of it
        if (value.isEmpty()) {
            error = QStringLiteral("--%1 must not be empty").arg(option.name());
        }
        return !value.isEmpty();
    case Option::Seconds:
        range = wantedTime(option, value, number);
        if (range.isEmpty()) {
            number = number <= longestTimeout * millisecondsPerSecond ? number : 0;
            range = QStringLiteral("above 0 and at most %1 seconds").arg(longestTimeout);
        }
        break;
    case Option::Milliseconds:
        range = wantedTime(option, value, number);
        if (range.isEmpty()) {
            // 1.001 s are not quite 1001 ms in binary digits.
            const bool whole = std::fabs(number - std::round(number)) < leastPart;
            number = number <= longestInterval && whole ? std::round(number) : 0;
            range = QStringLiteral("1 to %1").arg(longestInterval);
        }
        break;
    case Option::Count:
        number = value.toInt(&ok);
        range = QStringLiteral("1 to %1").arg(std::numeric_limits<int>::max());
    }
    if (!ok || !(number > 0) || qRound(number) < 1) {
        error = QStringLiteral("--%1 must be %2, not \"%3\"").arg(option.name(), range, value);
        return false;
    }
    value = QString::number(qRound(number));
    return true;
}

// The parser's reason, and which option was probably meant.
QString withOption(const QCommandLineParser &parser, const QVector<Option> &options)
{
    QString reason = parser.errorText();
    const QString unknown = parser.unknownOptionNames().value(0);
    QStringList known;
    for (const Option &option : options) {
        known.append(QStringLiteral("--") + option.name());
    }
    const QString hint
        = unknown.size() > 1 ? didYouMean(QStringLiteral("--") + unknown, known) : QString();
    if (!hint.isEmpty()) {
        reason.chop(reason.endsWith(QLatin1Char('.')) ? 1 : 0);
        reason += QStringLiteral("; ") + hint;
    }
    return reason;
}

} // namespace

bool isNumber(const QString &argument)
{
    static const QRegularExpression number(QStringLiteral("^-(\\.?[0-9]|inf)"),
                                           QRegularExpression::CaseInsensitiveOption);
    return number.match(argument).hasMatch();
}

bool CommandLine::has(const char *option) const
{
    return given.contains(QLatin1String(option));
}

QStringList CommandLine::texts(const char *option) const
{
    return given.value(QLatin1String(option));
}

QString CommandLine::text(const char *option) const
{
    const QStringList all = texts(option);
    return all.isEmpty() ? QString() : all.constLast();
}

int CommandLine::number(const char *option, int otherwise) const
{
    return has(option) ? text(option).toInt() : otherwise;
}

bool parseCommandLine(const QStringList &arguments, const QVector<Option> &options,
                      CommandLine &line, QString &error)
{
    const QVector<Option> all = commonOptions(options) + options;
    QCommandLineParser parser;
    for (const Option &option : all) {
        QStringList names{option.letter(), option.name()};
        names.removeAll(QString());
        parser.addOption({names, QString(), option.value()});
    }
    if (!parser.parse(QStringList{QStringLiteral("selector")} + withMarkedNumbers(arguments))) {
        error = withOption(parser, all);
        return false;
    }
    CommandLine parsed;
    parsed.arguments = unmarked(parser.positionalArguments());
    for (const Option &option : all) {
        if (parser.isSet(option.name())) {
            QStringList values = unmarked(parser.values(option.name()));
            if (option.kind >= Option::Count) {
                values = QStringList(values.last()); // a script's default may stand before it
            }
            parsed.given.insert(option.name(), values);
        }
    }
    const auto isGood = [&](const Option &option) {
        const auto values = parsed.given.find(option.name());
        return values == parsed.given.end()
            || std::all_of(values->begin(), values->end(),
                           [&](QString &value) { return accept(option, value, error); });
    };
    if (!chooseFormat(all, parsed, error) || !std::all_of(all.begin(), all.end(), isGood)) {
        return false;
    }
    line = parsed;
    return true;
}
