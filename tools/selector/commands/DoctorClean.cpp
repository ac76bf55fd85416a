// SPDX-License-Identifier: MIT
// Removes buffers whose publishers are proved dead.
#include "DoctorClean.h"

#include "SystemChecks.h"

namespace {

void takeDenial(DoctorFinding &finding)
{
    finding.code = QStringLiteral("denied");
    finding.action = QStringLiteral("kept");
    finding.advice = QStringLiteral("run as root or as the file's owner");
    finding.failure = ExitDenied;
}

void remove(const BufferFile &file, DoctorFinding &finding)
{
    QString error;
    switch (removeLeftover(file, error)) {
    case BufferRemoval::Removed:
    case BufferRemoval::Gone:
        finding.severity = DoctorFinding::Good;
        finding.failure = ExitAllGood;
        finding.code.clear();
        finding.action = QStringLiteral("removed");
        break;
    case BufferRemoval::Kept:
        finding.action = QStringLiteral("kept");
        finding.text = error;
        break;
    case BufferRemoval::Denied:
        takeDenial(finding);
        finding.text = error;
        break;
    case BufferRemoval::Failed:
        finding.action = QStringLiteral("kept");
        finding.text = error;
        finding.severity = DoctorFinding::Error;
        break;
    }
}

DoctorFinding cleaned(const BufferFile &file, bool really)
{
    DoctorFinding finding{QStringLiteral("buffers"),
                          file.path,
                          DoctorFinding::Warning,
                          QStringLiteral("leftover"),
                          leftoverText(file),
                          {},
                          {},
                          ExitSomeFailed};
    if (really) {
        remove(file, finding);
    } else if (!mayRemove(file)) {
        takeDenial(finding);
    } else {
        finding.action = QStringLiteral("wouldRemove");
        finding.advice = QStringLiteral("--clean --yes removes it");
    }
    return finding;
}

} // namespace

QVector<DoctorFinding> cleanLeftovers(const QStringList &only, bool really)
{
    QVector<BufferFile> files;
    QString error;
    const QString check = QStringLiteral("buffers");
    if (!listFiles(only, files, error)) {
        return {{check,
                 {},
                 DoctorFinding::Error,
                 QStringLiteral("denied"),
                 error,
                 QStringLiteral("run as a user that may list it"),
                 {},
                 ExitDenied}};
    }
    QVector<DoctorFinding> findings;
    for (const BufferFile &file : qAsConst(files)) {
        if (file.isLeftOver()) {
            findings.append(cleaned(file, really));
        } else if (file.state == BufferFile::Unreadable) {
            DoctorFinding finding{
                check,
                file.path,
                DoctorFinding::Warning,
                {},
                QStringLiteral("it cannot be determined whether its publisher lives: %1")
                    .arg(file.problem),
                {},
                {},
                ExitSomeFailed};
            takeDenial(finding);
            findings.append(finding);
        }
    }
    if (findings.isEmpty()) {
        findings.append({check,
                         {},
                         DoctorFinding::Good,
                         {},
                         QStringLiteral("nothing is left over"),
                         {},
                         {},
                         ExitAllGood});
    }
    return findings;
}
