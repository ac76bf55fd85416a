// SPDX-License-Identifier: MIT
// Parses the arguments of a subcommand.
#include "CommandLine.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace {

constexpr int longestInterval = 3600000; // milliseconds
constexpr double longestTimeout = 86400; // seconds
constexpr int millisecondsPerSecond = 1000;

// A value such as -5 is not an option, though the parser would take it for one.
const QChar numberMark(0xE000);

QStringList withMarkedNumbers(const QStringList &arguments)
{
    static const QRegularExpression number(QStringLiteral("^-(\\.?[0-9]|inf)"),
                                           QRegularExpression::CaseInsensitiveOption);
    QStringList result;
    for (const QString &argument : arguments) {
        // A text that begins with the mark gets a second one, so that it keeps its own.
        const bool needsMark = number.match(argument).hasMatch() || argument.startsWith(numberMark);
        result.append(needsMark ? numberMark + argument : argument);
    }
    return result;
}

QString unmarked(const QString &text)
{
    return text.startsWith(numberMark) ? text.mid(1) : text;
}

class Parser
{
public:
    explicit Parser(int options)
    {
        parser.addOptions({format, json, timeout, noLegend, verbose, help});
        add(options, OptionFile, file);
        add(options, OptionType, type);
        add(options, OptionProperty, property);
        add(options, OptionInterval, interval);
        add(options, OptionCount, count);
        add(options, OptionUntil, until);
        add(options, OptionTimestamps, timestamps);
        add(options, OptionChangesOnly, changesOnly);
        add(options, OptionPlot, plot);
        add(options, OptionAgainst, against);
        add(options, OptionOutput, output);
        add(options, OptionDryRun, dryRun);
        add(options, OptionVerify, verify);
        add(options, OptionRollback, rollback);
        add(options, OptionQuiet, quiet);
        add(options, OptionEscapes, escapes);
        for (const QCommandLineOption &option : {clean, yes, report, withValues}) {
            add(options, OptionDoctor, option);
        }
    }

    bool parse(const QStringList &arguments, CommandLine &line, QString &error)
    {
        if (!parser.parse(QStringList{QStringLiteral("selector")} + withMarkedNumbers(arguments))) {
            error = parser.errorText();
            return false;
        }
        line.help = isSet(help);
        line.verbose = isSet(verbose);
        line.noLegend = isSet(noLegend);
        line.quiet = isSet(quiet);
        line.escapes = isSet(escapes);
        line.hasType = isSet(type);
        line.hasUntil = isSet(until);
        line.until = value(until);
        line.hasAgainst = isSet(against);
        line.against = value(against);
        line.output = value(output);
        line.dryRun = isSet(dryRun);
        line.verify = isSet(verify);
        line.rollback = isSet(rollback);
        line.clean = isSet(clean);
        line.yes = isSet(yes);
        line.hasReport = isSet(report);
        line.report = value(report);
        line.withValues = isSet(withValues);
        line.timestamps = isSet(timestamps);
        line.changesOnly = isSet(changesOnly);
        line.plot = isSet(plot);
        line.type = value(type);
        line.file = value(file);
        const QStringList positional = parser.positionalArguments();
        for (const QString &argument : positional) {
            line.arguments.append(unmarked(argument));
        }
        if (isSet(property)) {
            line.properties = parser.values(property);
        }
        return readFormat(line, error) && readTimeout(line, error) && checkNames(error)
            && readNumber(interval, longestInterval, line.interval, error)
            && readNumber(count, std::numeric_limits<int>::max(), line.count, error);
    }

private:
    void add(int options, CommandOption wanted, const QCommandLineOption &option)
    {
        if ((options & wanted) != 0) {
            parser.addOption(option);
            known.append(option.names().constLast());
        }
    }

    // The parser warns when it is asked for an option that it was not given.
    bool isSet(const QCommandLineOption &option) const
    {
        const QString name = option.names().constLast();
        return (known.contains(name) || alwaysKnown.contains(name)) && parser.isSet(option);
    }

    QString value(const QCommandLineOption &option) const
    {
        return isSet(option) ? unmarked(parser.value(option)) : QString();
    }

    bool readFormat(CommandLine &line, QString &error) const
    {
        const QString name = value(format);
        if (isSet(json) && isSet(format) && name != QLatin1String("json")) {
            error = QStringLiteral("-j and --format %1 exclude each other").arg(name);
            return false;
        }
        if (isSet(json) || name == QLatin1String("json")) {
            line.format = Format::Json;
        } else if (name == QLatin1String("csv")) {
            line.format = Format::Csv;
        } else if (isSet(format) && name != QLatin1String("table")) {
            error = QStringLiteral("--format must be table, json or csv, not \"%1\"").arg(name);
            return false;
        }
        if (line.quiet && (isSet(format) || isSet(json))) {
            error = QStringLiteral("--quiet and --format exclude each other");
            return false;
        }
        return true;
    }

    // A script that fills in an empty variable should hear of it.
    bool checkNames(QString &error) const
    {
        for (const QCommandLineOption &option : {file, property, against, output, report}) {
            if (isSet(option) && parser.values(option).contains(QString())) {
                error = QStringLiteral("--%1 must not be empty").arg(option.names().constLast());
                return false;
            }
        }
        return true;
    }

    bool readTimeout(CommandLine &line, QString &error) const
    {
        if (!isSet(timeout)) {
            return true;
        }
        bool ok = false;
        const double seconds = value(timeout).toDouble(&ok);
        line.timeout
            = ok && seconds <= longestTimeout ? qRound(seconds * millisecondsPerSecond) : 0;
        if (line.timeout < 1) {
            error = QStringLiteral("--timeout must be above 0 and at most %1 seconds, not \"%2\"")
                        .arg(longestTimeout)
                        .arg(value(timeout));
            return false;
        }
        return true;
    }

    bool readNumber(const QCommandLineOption &option, int highest, int &number,
                    QString &error) const
    {
        if (!isSet(option)) {
            return true;
        }
        bool ok = false;
        const int parsed = value(option).toInt(&ok);
        if (!ok || parsed < 1 || parsed > highest) {
            error = QStringLiteral("--%1 must be 1 to %2, not \"%3\"")
                        .arg(option.names().constLast())
                        .arg(highest)
                        .arg(value(option));
            return false;
        }
        number = parsed;
        return true;
    }

    const QCommandLineOption format{QStringLiteral("format"), QString(), QStringLiteral("FORMAT")};
    const QCommandLineOption json{{QStringLiteral("j"), QStringLiteral("json")}};
    const QCommandLineOption timeout{QStringLiteral("timeout"), QString(), QStringLiteral("S")};
    const QCommandLineOption verbose{{QStringLiteral("v"), QStringLiteral("verbose")}};
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}};
    const QCommandLineOption file{
        {QStringLiteral("f"), QStringLiteral("file")}, QString(), QStringLiteral("FILE")};
    const QCommandLineOption type{QStringLiteral("type"), QString(), QStringLiteral("TYPE")};
    const QCommandLineOption property{QStringLiteral("property"), QString(),
                                      QStringLiteral("NAME")};
    const QCommandLineOption interval{QStringLiteral("interval"), QString(), QStringLiteral("MS")};
    const QCommandLineOption count{QStringLiteral("count"), QString(), QStringLiteral("N")};
    const QCommandLineOption until{QStringLiteral("until"), QString(), QStringLiteral("EXPR")};
    const QCommandLineOption timestamps{QStringLiteral("timestamps")};
    const QCommandLineOption changesOnly{QStringLiteral("changes-only")};
    const QCommandLineOption plot{QStringLiteral("plot")};
    const QCommandLineOption against{QStringLiteral("against"), QString(),
                                     QStringLiteral("SNAPSHOT")};
    const QCommandLineOption output{
        {QStringLiteral("o"), QStringLiteral("output")}, QString(), QStringLiteral("DIRECTORY")};
    const QCommandLineOption dryRun{QStringLiteral("dry-run")};
    const QCommandLineOption verify{QStringLiteral("verify")};
    const QCommandLineOption rollback{QStringLiteral("rollback")};
    const QCommandLineOption quiet{{QStringLiteral("q"), QStringLiteral("quiet")}};
    const QCommandLineOption escapes{{QStringLiteral("e"), QStringLiteral("escapes")}};
    const QCommandLineOption noLegend{QStringLiteral("no-legend")};
    const QCommandLineOption clean{QStringLiteral("clean")};
    const QCommandLineOption yes{QStringLiteral("yes")};
    const QCommandLineOption report{QStringLiteral("report"), QString(), QStringLiteral("FILE")};
    const QCommandLineOption withValues{QStringLiteral("with-values")};
    const QStringList alwaysKnown{QStringLiteral("format"),    QStringLiteral("json"),
                                  QStringLiteral("timeout"),   QStringLiteral("verbose"),
                                  QStringLiteral("no-legend"), QStringLiteral("help")};
    QStringList known;
    QCommandLineParser parser;
};

} // namespace

bool parseCommandLine(const QStringList &arguments, int options, CommandLine &line, QString &error)
{
    CommandLine parsed;
    if (!Parser(options).parse(arguments, parsed, error)) {
        return false;
    }
    line = parsed;
    return true;
}
