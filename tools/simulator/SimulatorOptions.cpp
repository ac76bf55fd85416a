// SPDX-License-Identifier: MIT
// Parsing of the simulator's command line.
#include "SimulatorOptions.h"

#include <QCommandLineParser>

#include <cmath>

namespace {

constexpr int longestInterval = 60000; // milliseconds
constexpr double longestTimeout = 86400; // seconds
constexpr int secondsToMilliseconds = 1000;

struct Parser
{
    Parser()
    {
        parser.addPositionalArgument(QStringLiteral("FILE"), QString(), QStringLiteral("FILE..."));
        parser.addOptions(
            {interval, services, scenario, control, run, timeout, verbose, help, version});
    }

    const QCommandLineOption interval{QStringLiteral("interval"), QString(), QStringLiteral("MS")};
    const QCommandLineOption services{QStringLiteral("system-services")};
    const QCommandLineOption scenario{QStringLiteral("scenario"), QString(),
                                      QStringLiteral("FILE")};
    const QCommandLineOption control{QStringLiteral("control")};
    const QCommandLineOption run{QStringLiteral("run"), QString(), QStringLiteral("STEP")};
    const QCommandLineOption timeout{QStringLiteral("timeout"), QString(), QStringLiteral("S")};
    const QCommandLineOption verbose{QStringLiteral("verbose")};
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}};
    const QCommandLineOption version{QStringLiteral("version")};
    QCommandLineParser parser;
};

bool readInterval(const Parser &line, SimulatorOptions &options, QString &error)
{
    if (!line.parser.isSet(line.interval)) {
        return true;
    }
    bool ok = false;
    const QString text = line.parser.value(line.interval);
    options.interval = text.toInt(&ok);
    if (!ok || options.interval < 1 || options.interval > longestInterval) {
        error = QStringLiteral("--interval must be 1 to %1 milliseconds, not \"%2\"")
                    .arg(longestInterval)
                    .arg(text);
        return false;
    }
    return true;
}

// Whoever makes others run steps publishes nothing.
bool readRun(const Parser &line, SimulatorOptions &options, QString &error)
{
    options.run = line.parser.values(line.run);
    if (!line.parser.isSet(line.timeout)) {
        options.timeout = 0;
    } else if (options.run.isEmpty()) {
        error = QStringLiteral("--timeout goes with --run");
        return false;
    } else {
        bool ok = false;
        const QString text = line.parser.value(line.timeout);
        const double seconds = text.toDouble(&ok);
        if (!ok || !(seconds > 0) || seconds > longestTimeout) {
            error = QStringLiteral("--timeout must be above 0 and at most %1 seconds, not \"%2\"")
                        .arg(longestTimeout)
                        .arg(text);
            return false;
        }
        options.timeout = int(std::ceil(seconds * secondsToMilliseconds));
    }
    if (options.run.isEmpty()) {
        return true;
    }
    for (const QCommandLineOption &other :
         {line.interval, line.services, line.scenario, line.control, line.verbose}) {
        if (line.parser.isSet(other)) {
            error = QStringLiteral("--%1 does not go with --run, which talks to a simulator that "
                                   "runs already")
                        .arg(other.names().constFirst());
            return false;
        }
    }
    if (!options.fileNames.isEmpty()) {
        error = QStringLiteral("Unexpected \"%1\": --run talks to a simulator that runs already; "
                               "quote a step with blanks as one argument")
                    .arg(options.fileNames.constFirst());
        return false;
    }
    return true;
}

} // namespace

bool parseSimulatorOptions(const QStringList &arguments, SimulatorOptions &options, QString &error)
{
    Parser line;
    if (!line.parser.parse(arguments)) {
        error = line.parser.errorText();
        return false;
    }
    SimulatorOptions parsed;
    parsed.help = line.parser.isSet(line.help);
    parsed.version = line.parser.isSet(line.version);
    parsed.systemServices = line.parser.isSet(line.services);
    parsed.scenario = line.parser.value(line.scenario);
    parsed.control = line.parser.isSet(line.control) || line.parser.isSet(line.scenario);
    parsed.verbose = line.parser.isSet(line.verbose);
    parsed.fileNames = line.parser.positionalArguments();
    if (line.parser.isSet(line.scenario) && parsed.scenario.isEmpty()) {
        error = QStringLiteral("--scenario takes the name of a file");
        return false;
    }
    if (!readInterval(line, parsed, error) || !readRun(line, parsed, error)) {
        return false;
    }
    const bool informs = parsed.help || parsed.version;
    const bool publishes = parsed.run.isEmpty();
    if (!informs && publishes && parsed.fileNames.isEmpty() && !parsed.systemServices) {
        error = QStringLiteral("No description file given.");
        return false;
    }
    options = parsed;
    return true;
}

QString simulatorHelp()
{
    return QStringLiteral(
        "Usage: process-data-simulator [OPTIONS] FILE...\n"
        "       process-data-simulator --run STEP[,STEP...] [--timeout S]\n"
        "Publishes the description in each FILE (*.pdd) and moves its leaves.\n"
        "\n"
        "Prints the line \"ready\" when everything is published, re-reads files that change\n"
        "and ends on SIGINT or SIGTERM.\n"
        "\n"
        "Options:\n"
        "  --interval MS      milliseconds between two steps of the values (100)\n"
        "  --system-services  also play the system status manager and the provider registry\n"
        "  --scenario FILE    make the faults that FILE times, and serve them over D-Bus\n"
        "  --control          serve faults over D-Bus without a scenario\n"
        "  --run STEPS        make faults in the simulator that runs on this bus with --control or\n"
        "                     --scenario: FAULT [PLACE] [KEY=VALUE]... as in a scenario, such as\n"
        "                     'vanish PumpStation,return PumpStation', or step NAME\n"
        "  --timeout S        with --run: seconds for all steps together; else 2 for each\n"
        "  --verbose          also print what clients write, and the libraries' messages\n"
        "  -h, --help         print this and exit\n"
        "  --version          print the version and exit\n"
        "\n"
        "Exit codes: 0 ended by a signal, 1 a file was refused or output could not be written,\n"
        "2 wrong usage, 3 the bus is out of reach. With --run: 0 all done, 1 a step failed or is\n"
        "refused, 2 wrong usage, 3 no bus, or no simulator that takes steps, 4 no answer in time,\n"
        "5 not permitted.\n"
        "Environment: PROCESSDATA_BUS is system (default), session or a bus address.\n");
}
