// SPDX-License-Identifier: MIT
// Removes buffers whose publishers are proved dead.
#include "ReferenceBuffers.h"
#include "UserNames.h"

namespace {

void takeDenial(const BufferFile &file, const QString &text, DoctorFinding &finding)
{
    finding.finding
        = {Finding::Denied, text,
           QStringLiteral("run as user %1 or as root").arg(UserNames::ofUser(file.ownerUid))};
    finding.action = QStringLiteral("kept");
}

void remove(const BufferFile &file, DoctorFinding &finding)
{
    QString error;
    finding.action = QStringLiteral("kept");
    switch (removeLeftover(file, error)) {
    case BufferRemoval::Removed:
    case BufferRemoval::Gone:
        finding.severity = DoctorFinding::Good;
        finding.finding.code = Finding::None;
        finding.action = QStringLiteral("removed");
        break;
    case BufferRemoval::Kept:
        finding.finding.text = error;
        break;
    case BufferRemoval::Denied:
        takeDenial(file, error, finding);
        break;
    case BufferRemoval::Failed:
        finding.finding.text = error;
        finding.severity = DoctorFinding::Error;
        break;
    }
}

DoctorFinding cleaned(const BufferFile &file, bool really)
{
    DoctorFinding finding = DoctorFinding::warning(QStringLiteral("buffers"), file.path,
                                                   {Finding::Leftover, leftoverText(file)});
    if (really) {
        remove(file, finding);
    } else if (!mayRemove(file)) {
        takeDenial(file, finding.finding.text, finding);
    } else {
        finding.action = QStringLiteral("wouldRemove");
        finding.finding.advice = QStringLiteral("--clean --yes removes it");
    }
    return finding;
}

} // namespace

QVector<DoctorFinding> PlatformDetails::cleanLeftovers(const QStringList &only, bool really)
{
    QVector<BufferFile> files;
    QString error;
    const QString check = QStringLiteral("buffers");
    if (!listFiles(only, files, error)) {
        return {DoctorFinding::error(
            check, {}, {Finding::Denied, error, QStringLiteral("run as a user that may list it")})};
    }
    QVector<DoctorFinding> findings;
    for (const BufferFile &file : qAsConst(files)) {
        if (file.isLeftOver()) {
            findings.append(cleaned(file, really));
        } else if (file.state == BufferFile::Unreadable) {
            DoctorFinding finding = DoctorFinding::warning(check, file.path, {});
            takeDenial(file,
                       QStringLiteral("it cannot be determined whether its publisher lives: %1")
                           .arg(file.problem),
                       finding);
            findings.append(finding);
        }
    }
    if (findings.isEmpty()) {
        findings.append(DoctorFinding::good(check, QStringLiteral("nothing is left over")));
    }
    return findings;
}
