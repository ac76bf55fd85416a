// SPDX-License-Identifier: MIT
// selector doctor: the state of the whole system.
#include "Command.h"
#include "DoctorEntries.h"
#include "DoctorReport.h"
#include "OutputFile.h"
#include "SystemChecks.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

bool checkUsage(const CommandLine &line, QString &usage)
{
    if (line.has("yes") && !line.has("clean")) {
        usage = QStringLiteral("--yes goes with --clean.");
    } else if (line.has("with-values") && !line.has("report")) {
        usage = QStringLiteral("--with-values goes with --report.");
    } else if (line.has("clean") && line.has("report")) {
        usage = QStringLiteral("--clean and --report exclude each other.");
    }
    for (const QString &module : line.arguments) {
        if (module.isEmpty() || module.contains(QLatin1Char('/'))) {
            usage = QStringLiteral("\"%1\" is not the name of a module.").arg(module);
        }
    }
    return usage.isEmpty();
}

DoctorFinding versions()
{
    const int layout = PlatformDetails::bufferLayout();
    return DoctorFinding::good(
        QStringLiteral("versions"),
        QStringLiteral("selector " TOOLS_VERSION "%1, Qt %2")
            .arg(layout == 0 ? QString() : QStringLiteral(", buffer layout %1").arg(layout),
                 QLatin1String(qVersion())));
}

DoctorFinding writeReport(const QString &name, const QJsonObject &report)
{
    const QString check = QStringLiteral("report");
    const QByteArray text = QJsonDocument(report).toJson();
    QString problem;
    if (!writeWholeFile(name, text, problem)) {
        return DoctorFinding::error(
            check, name,
            {Finding::NotWritten, problem,
             QStringLiteral("name a file in a folder that may be written and has space left")});
    }
    DoctorFinding finding
        = DoctorFinding::good(check, QStringLiteral("%1 bytes written").arg(text.size()));
    finding.subject = name;
    return finding;
}

int print(const QVector<DoctorFinding> &findings, const Console &console)
{
    Report report{QStringLiteral("selector.doctor/1"), doctorColumns(), {}};
    for (const DoctorFinding &finding : findings) {
        report.entries.append(doctorEntry(finding));
    }
    const int exitCode = printReport(report, console);
    const bool outOfReach
        = std::any_of(findings.begin(), findings.end(), [](const DoctorFinding &finding) {
              return finding.finding.exitCode() == ExitNotReachable;
          });
    return outOfReach ? int(ExitNotReachable) : exitCode;
}

int run(const CommandLine &line, const Console &console, QString &usage)
{
    if (!checkUsage(line, usage)) {
        return ExitUsage;
    }
    if (line.has("clean")) {
        return print(PlatformDetails::cleanLeftovers(line.arguments, line.has("yes")), console);
    }
    if (line.has("timeout")) {
        // One service that hangs must leave time for the others, or they would be blamed for it.
        constexpr int shares = 4;
        ProcessDataAccess::setCallTimeLimit(std::max(1, line.number("timeout") / shares));
    }
    const SystemState state = examineSystem(line.arguments);
    QVector<DoctorFinding> findings{versions()};
    findings += checkSystem(state);
    if (line.has("report")) {
        const QJsonObject report = doctorReport(state, findings, line.has("with-values"));
        findings.append(writeReport(line.text("report"), report));
    }
    return print(findings, console);
}

} // namespace

Command doctorCommand()
{
    return {
        QStringLiteral("doctor"),
        QStringLiteral("examine the whole system, and clean up after crashes"),
        "Usage: selector doctor [OPTIONS] [MODULE]...\n"
        "Examines bus, services, registry, sources, buffers in shared memory and permissions,\n"
        "of the whole system or of the modules alone, and compares what they say of each\n"
        "other. Each finding has a severity, what is wrong and what to do: an error keeps\n"
        "clients from values, a warning does not, or not yet.\n",
        {{"--clean",
          "instead list buffers whose publishers are proved dead; neither\n"
          "bus nor services are needed",
          "Buffers that their publisher has retired are listed too. The proof is the lock in the "
          "record beside the buffer, which the kernel marks and only the publisher may write; "
          "age does not count. Without --yes nothing is removed."},
         {"--yes", "with --clean, remove them; a live buffer is never touched",
          "Nor is one of a stopped publisher, or whatever cannot be proved dead: the proof is "
          "made again for each just before."},
         {"--report FILE",
          "also write all that was found into one JSON file, for the report\n"
          "of a fault; values are left out",
          "In it are versions, machine, environment, registry, services and their processes, "
          "descriptions, buffers, findings and warnings.",
          Option::File},
         {"--with-values", "with --report, current values too", "Those of every leaf."},
         {"--timeout S",
          "seconds for all calls together, a quarter of them at most for each\n"
          "call; else 2 for each call",
          timeoutOption.more, Option::Seconds}},
        "Doctor also: 0 nothing to complain about, 1 warnings or errors; with\n"
        "--clean 0 nothing is left over any more, 1 something is.\n"
        "\nExample: selector doctor PumpStation --report fault.json\n",
        {Arguments::Module, Arguments::many},
        run};
}
