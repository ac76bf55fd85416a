// SPDX-License-Identifier: MIT
// The files in shared memory.
#include "ReferenceBuffers.h"
#include "SystemState.h"
#include "UserNames.h"

#include <algorithm>
#include <unistd.h>

namespace {

constexpr quint32 groupReads = 040;

// A record without its buffer is that source's too: what it lacks is reported there.
bool isDescribed(const QString &path, const SystemState &state)
{
    return std::any_of(state.sources.begin(), state.sources.end(), [&](const Examination &source) {
        return source.buffer.path == path || source.buffer.path + QStringLiteral(".life") == path;
    });
}

// A buffer of a module whose sources could not all be asked for may well be described.
bool mayBeDescribed(const BufferFile &file, const SystemState &state)
{
    return std::any_of(state.modules.begin(), state.modules.end(), [&](const ModuleState &module) {
        return module.onBus && !module.complete && isNamedAfter(file, module.name);
    });
}

// What is wrong with a file that no source describes.
Finding stateFinding(const BufferFile &file, const SystemState &state)
{
    switch (file.state) {
    case BufferFile::Live:
        if (!state.bus.isOk() || mayBeDescribed(file, state)) {
            return {};
        }
        return {Finding::NotDescribed,
                QStringLiteral("its publisher lives, but no service on this bus describes it"),
                QStringLiteral("its publisher is on another bus or has lost this one; restart it")};
    case BufferFile::Retired:
    case BufferFile::Dead:
        return {Finding::Leftover, leftoverText(file),
                QStringLiteral("selector doctor --clean --yes removes it; its publisher does so "
                               "too when it starts again")};
    case BufferFile::OtherLayout:
        return {Finding::OtherLayout,
                QStringLiteral("layout version %1, this system has %2")
                    .arg(file.layoutVersion)
                    .arg(ownBufferLayoutVersion()),
                QStringLiteral("install publishers and clients of one release; remove the file "
                               "when nothing runs that made it")};
    case BufferFile::NoBuffer:
        return {Finding::NotABuffer,
                QStringLiteral("it is named like a buffer, but %1").arg(file.problem),
                QStringLiteral("find out who made it, and remove it by hand")};
    case BufferFile::Unreadable:
        return {
            Finding::Denied,
            QStringLiteral("it cannot be examined: %1 (%2)").arg(file.problem, permissionOf(file)),
            remedyFor(file, groupReads)};
    }
    return {};
}

Finding opennessFinding(const BufferFile &file)
{
    constexpr quint32 others = 07;
    if ((file.mode & others) == 0 || file.state == BufferFile::NoBuffer) {
        return {};
    }
    return {Finding::OpenToAll,
            QStringLiteral("every user of the machine may use it (%1)").arg(permissionOf(file)),
            QStringLiteral("chmod o= it, and find out who opened it: publishers do not")};
}

// One warning for each file with which something is wrong; else that all is well.
template <typename Judge>
QVector<DoctorFinding> checkFiles(const QString &check, const QVector<BufferFile> &files,
                                  const QString &good, const Judge &judge)
{
    QVector<DoctorFinding> findings;
    for (const BufferFile &file : files) {
        const Finding finding = judge(file);
        if (!finding.isNone()) {
            findings.append(DoctorFinding::warning(check, file.path, finding));
        }
    }
    return findings.isEmpty() ? QVector<DoctorFinding>{DoctorFinding::good(check, good)} : findings;
}

} // namespace

QString leftoverText(const BufferFile &file)
{
    return (file.state == BufferFile::Dead
                ? QStringLiteral("its publisher died, %1 bytes are left")
                : QStringLiteral("its publisher has retired it, %1 bytes are left"))
        .arg(file.size);
}

QString permissionOf(const BufferFile &file)
{
    constexpr int octal = 8;
    return QStringLiteral("owner %1, group %2, mode %3")
        .arg(UserNames::ofUser(file.ownerUid), UserNames::ofGroup(file.groupId))
        .arg(file.mode, 4, octal, QLatin1Char('0'));
}

QString remedyFor(const BufferFile &file, quint32 wanted)
{
    const QString owner = UserNames::ofUser(file.ownerUid);
    if (file.groupId == 0 || (file.mode & wanted) != wanted) {
        return QStringLiteral("run as user %1 or as root").arg(owner);
    }
    return QStringLiteral("sudo usermod -aG %1 %2, then log in again")
        .arg(UserNames::ofGroup(file.groupId), UserNames::ofUser(::geteuid()));
}

void ReferenceBuffers::lookAgain()
{
    QVector<BufferFile> standing;
    for (const BufferFile &file : qAsConst(files)) {
        BufferFile now;
        if (inspectBufferFile(file.path, now)) {
            standing.append(now);
        }
    }
    files = standing;
}

QVector<DoctorFinding> ReferenceBuffers::check(const SystemState &state) const
{
    const QString check = QStringLiteral("buffers");
    if (!error.isEmpty()) {
        return {DoctorFinding::error(
            check, {},
            {Finding::Denied, error,
             QStringLiteral("mount shared memory, or run as a user that may list it")})};
    }
    return checkFiles(check, files,
                      QStringLiteral("%1 in shared memory, none left over").arg(files.size()),
                      [&state](const BufferFile &file) {
                          return isDescribed(file.path, state) ? Finding()
                                                               : stateFinding(file, state);
                      })
        + checkFiles(QStringLiteral("permissions"), files,
                     QStringLiteral("no buffer is open to every user"), opennessFinding);
}
