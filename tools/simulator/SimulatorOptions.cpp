// SPDX-License-Identifier: MIT
// Parsing of the simulator's command line.
#include "SimulatorOptions.h"

#include <QCommandLineParser>

namespace {

constexpr int longestInterval = 60000; // milliseconds

struct Parser
{
    Parser()
    {
        parser.addPositionalArgument(QStringLiteral("FILE"), QString(), QStringLiteral("FILE..."));
        parser.addOptions({interval, services, scenario, control, verbose, help, version});
    }

    const QCommandLineOption interval{QStringLiteral("interval"), QString(), QStringLiteral("MS")};
    const QCommandLineOption services{QStringLiteral("system-services")};
    const QCommandLineOption scenario{QStringLiteral("scenario"), QString(),
                                      QStringLiteral("FILE")};
    const QCommandLineOption control{QStringLiteral("control")};
    const QCommandLineOption verbose{QStringLiteral("verbose")};
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}};
    const QCommandLineOption version{QStringLiteral("version")};
    QCommandLineParser parser;
};

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
    if (line.parser.isSet(line.interval)) {
        bool ok = false;
        const QString text = line.parser.value(line.interval);
        parsed.interval = text.toInt(&ok);
        if (!ok || parsed.interval < 1 || parsed.interval > longestInterval) {
            error = QStringLiteral("--interval must be 1 to %1 milliseconds, not \"%2\"")
                        .arg(longestInterval)
                        .arg(text);
            return false;
        }
    }
    const bool informs = parsed.help || parsed.version;
    if (!informs && parsed.fileNames.isEmpty() && !parsed.systemServices) {
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
        "  --verbose          also print what clients write, and the libraries' messages\n"
        "  -h, --help         print this and exit\n"
        "  --version          print the version and exit\n"
        "\n"
        "Exit codes: 0 ended by a signal, 1 a file was refused or output could not be written,\n"
        "2 wrong usage, 3 the bus is out of reach.\n"
        "Environment: PROCESSDATA_BUS is system (default), session or a bus address.\n");
}
