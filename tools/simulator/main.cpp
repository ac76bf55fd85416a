// SPDX-License-Identifier: MIT
// process-data-simulator: publishes description files with moving values.
#include "CallDeadline.h"
#include "ExitCode.h"
#include "InterruptExit.h"
#include "MessageLog.h"
#include "PrintableText.h"
#include "Simulator.h"
#include "SimulatorLog.h"
#include "SimulatorOptions.h"
#include "StandardStreams.h"
#include "StepRun.h"
#include "UnixSignals.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>

Q_LOGGING_CATEGORY(simulator, "simulator", QtInfoMsg)

namespace {

const QString tryHelp = QStringLiteral("\nTry process-data-simulator --help.");

void complain(const QString &text)
{
    const QString line = QStringLiteral("process-data-simulator: %1\n").arg(text);
    static_cast<void>(std::fputs(line.toLocal8Bit().constData(), stderr));
}

// What waits for a line that cannot be written would wait forever.
int print(const QString &text)
{
    if (std::fputs(text.toLocal8Bit().constData(), stdout) != EOF && std::fflush(stdout) == 0) {
        return ExitAllGood;
    }
    complain(QStringLiteral("standard output: ") + qt_error_string(errno));
    return ExitSomeFailed;
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
        complain(error);
        return result;
    }
    const int printed = print(QStringLiteral("ready\n"));
    return printed == ExitAllGood ? QCoreApplication::exec() : printed;
}

int runInOther(const SimulatorOptions &options)
{
    QVector<TypedStep> steps;
    QString error;
    for (const QString &text : options.run) {
        if (!parseSteps(text, steps, error)) {
            complain(printable(error) + tryHelp);
            return ExitUsage;
        }
    }
    if (options.timeout > 0) {
        setCallDeadline(options.timeout);
        setCallTimeLimit(options.timeout);
    }
    exitOnInterrupt();
    int printed = ExitAllGood;
    const int result = runSteps(
        steps,
        [&printed](const QString &line) {
            if (printed == ExitAllGood) { // one reason is enough
                printed = print(line + QLatin1Char('\n'));
            }
        },
        error);
    if (!error.isEmpty()) {
        complain(printable(error));
    }
    return result == ExitAllGood ? printed : result;
}

} // namespace

int main(int argc, char *argv[])
{
    reserveStandardStreams();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("process-data-simulator"));
    SimulatorOptions options;
    QString error;
    if (!parseSimulatorOptions(QCoreApplication::arguments(), options, error)) {
        complain(error + tryHelp);
        return ExitUsage;
    }
    if (options.help) {
        return print(simulatorHelp());
    }
    if (options.version) {
        return print(QStringLiteral("process-data-simulator " TOOLS_VERSION "\n"));
    }
    if (!options.run.isEmpty()) {
        MessageLog::install(QStringLiteral("process-data-simulator"), QStringLiteral("simulator"),
                            MessageLog::OwnMessages);
        return runInOther(options);
    }
    MessageLog::install(QStringLiteral("process-data-simulator"), QStringLiteral("simulator"),
                        MessageLog::AllMessages);
    if (options.verbose) {
        QLoggingCategory::setFilterRules(QStringLiteral("simulator.debug=true"));
    }
    return run(options);
}
