// SPDX-License-Identifier: MIT
// process-data-simulator: publishes description files with moving values.
#include "ExitCode.h"
#include "MessageLog.h"
#include "Simulator.h"
#include "SimulatorLog.h"
#include "SimulatorOptions.h"
#include "UnixSignals.h"

#include <QCoreApplication>

#include <cstdio>

Q_LOGGING_CATEGORY(simulator, "simulator", QtInfoMsg)

namespace {

void print(FILE *stream, const QString &text)
{
    static_cast<void>(std::fputs(text.toLocal8Bit().constData(), stream));
    static_cast<void>(std::fflush(stream));
}

int run(const SimulatorOptions &options)
{
    const UnixSignals
        signalsOfSystem; // before anything is published, so that nothing is left behind
    QObject::connect(&signalsOfSystem, &UnixSignals::received, qApp, &QCoreApplication::quit);
    Simulator all(options);
    QString error;
    const int result = all.start(error);
    if (result != ExitAllGood) {
        print(stderr, QStringLiteral("process-data-simulator: %1\n").arg(error));
        return result;
    }
    print(stdout, QStringLiteral("ready\n"));
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("process-data-simulator"));
    SimulatorOptions options;
    QString error;
    if (!parseSimulatorOptions(QCoreApplication::arguments(), options, error)) {
        print(stderr,
              QStringLiteral("process-data-simulator: %1\nTry process-data-simulator --help.\n")
                  .arg(error));
        return ExitUsage;
    }
    if (options.help) {
        print(stdout, simulatorHelp());
        return ExitAllGood;
    }
    if (options.version) {
        print(stdout, QStringLiteral("process-data-simulator " TOOLS_VERSION "\n"));
        return ExitAllGood;
    }
    MessageLog::install(QStringLiteral("process-data-simulator"), QStringLiteral("simulator"),
                        MessageLog::AllMessages);
    if (options.verbose) {
        QLoggingCategory::setFilterRules(QStringLiteral("simulator.debug=true"));
    }
    return run(options);
}
