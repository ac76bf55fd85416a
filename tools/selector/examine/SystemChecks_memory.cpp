// SPDX-License-Identifier: MIT
// Sources and their buffers.
#include "SystemChecks.h"

#include "Counted.h"
#include "SystemChecksParts.h"
#include "UserNames.h"

#include <algorithm>

namespace {

// A record without its buffer is that source's too: what it lacks is reported there.
const SourceState *describing(const QString &path, const SystemState &state)
{
    const auto found
        = std::find_if(state.sources.begin(), state.sources.end(), [&](const SourceState &source) {
              return source.buffer.path == path
                  || source.buffer.path + QStringLiteral(".life") == path;
          });
    return found == state.sources.end() ? nullptr : &*found;
}

// A buffer of a module whose sources could not all be asked for may well be described.
bool mayBeDescribed(const BufferFile &file, const SystemState &state)
{
    return std::any_of(state.modules.begin(), state.modules.end(), [&](const ModuleState &module) {
        return module.onBus && !module.complete && isNamedAfter(file, module.name);
    });
}

QString permissionOf(const BufferFile &file)
{
    constexpr int octal = 8;
    return QStringLiteral("owner %1, group %2, mode %3")
        .arg(UserNames::ofUser(file.ownerUid), UserNames::ofGroup(file.groupId))
        .arg(file.mode, 4, octal, QLatin1Char('0'));
}

QString serviceOf(const SourceState &source, const SystemState &state)
{
    const auto module
        = std::find_if(state.modules.begin(), state.modules.end(),
                       [&](const ModuleState &one) { return one.name == source.module; });
    return module == state.modules.end() ? source.module : module->owner.service;
}

void checkSource(const SourceState &source, const QString &service, Findings &findings)
{
    const BufferInspection &buffer = source.buffer;
    const QString place = source.place();
    const QString inFile = QStringLiteral("%1: %2").arg(buffer.path, buffer.problem);
    const QString restart = QStringLiteral("restart %1").arg(service);
    const QString check = QStringLiteral("sources");
    switch (buffer.end) {
    case BufferInspection::Description:
        findings.error(
            check, place, QStringLiteral("badDescription"), buffer.problem,
            QStringLiteral("clients refuse this description: fix it in %1").arg(service));
        break;
    case BufferInspection::File:
        findings.error(check, place, QStringLiteral("bufferMissing"), inFile,
                       QStringLiteral("something removed it: ") + restart);
        break;
    case BufferInspection::Permission:
        findings.add({check,
                      place,
                      DoctorFinding::Error,
                      QStringLiteral("denied"),
                      QStringLiteral("%1 (%2)").arg(inFile, buffer.permission),
                      QStringLiteral("run as a user in the buffer's group; a buffer of another "
                                     "owner than described is forged or left over"),
                      {},
                      ExitDenied});
        break;
    case BufferInspection::Layout:
        findings.error(check, place, QStringLiteral("notReadable"), inFile,
                       QStringLiteral("buffer and description do not belong together: ") + restart);
        break;
    case BufferInspection::Liveness:
        findings.error(check, place, QStringLiteral("publisherDead"), inFile,
                       QStringLiteral("reads give the last values as SourceLost: ") + restart);
        break;
    case BufferInspection::Complete:
        break;
    }
}

void checkState(const BufferFile &file, const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("buffers");
    switch (file.state) {
    case BufferFile::Live:
        if (state.bus.isOk() && !mayBeDescribed(file, state)) {
            findings.warning(check, file.path, QStringLiteral("notDescribed"),
                             QStringLiteral("its publisher lives, but no service on this bus "
                                            "describes it"),
                             QStringLiteral("its publisher is on another bus or has lost this one; "
                                            "restart it"));
        }
        break;
    case BufferFile::Retired:
    case BufferFile::Dead:
        findings.warning(check, file.path, QStringLiteral("leftover"), leftoverText(file),
                         QStringLiteral("selector doctor --clean --yes removes it; its publisher "
                                        "does so too when it starts again"));
        break;
    case BufferFile::OtherLayout:
        findings.warning(check, file.path, QStringLiteral("otherLayout"),
                         QStringLiteral("layout version %1, this system has %2")
                             .arg(file.layoutVersion)
                             .arg(ownBufferLayoutVersion()),
                         QStringLiteral("install publishers and clients of one release; remove "
                                        "the file when nothing runs that made it"));
        break;
    case BufferFile::NoBuffer:
        findings.warning(check, file.path, QStringLiteral("notABuffer"),
                         QStringLiteral("it is named like a buffer, but %1").arg(file.problem),
                         QStringLiteral("find out who made it, and remove it by hand"));
        break;
    case BufferFile::Unreadable:
        findings.add(
            {check,
             file.path,
             DoctorFinding::Warning,
             QStringLiteral("denied"),
             QStringLiteral("it cannot be examined: %1 (%2)").arg(file.problem, permissionOf(file)),
             QStringLiteral("run as root or as a member of its group"),
             {},
             ExitDenied});
        break;
    }
}

bool checkOpenness(const BufferFile &file, Findings &findings)
{
    constexpr quint32 others = 07;
    if ((file.mode & others) == 0 || file.state == BufferFile::NoBuffer) {
        return true;
    }
    findings.warning(
        QStringLiteral("permissions"), file.path, QStringLiteral("openToAll"),
        QStringLiteral("every user of the machine may use it (%1)").arg(permissionOf(file)),
        QStringLiteral("chmod o= it, and find out who opened it: publishers do not"));
    return false;
}

} // namespace

QString leftoverText(const BufferFile &file)
{
    return (file.state == BufferFile::Dead
                ? QStringLiteral("its publisher died, %1 bytes are left")
                : QStringLiteral("its publisher has retired it, %1 bytes are left"))
        .arg(file.size);
}

void checkSources(const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("sources");
    const int before = findings.list().size();
    for (const ModuleState &module : state.modules) {
        if (module.onBus && !module.answer.isOk()) {
            findings.unanswered(check, module.name, module.answer);
        }
    }
    int leaves = 0;
    for (const SourceState &source : state.sources) {
        leaves += source.buffer.leafCount;
        checkSource(source, serviceOf(source, state), findings);
    }
    if (findings.list().size() == before) {
        findings.good(check,
                      QStringLiteral("%1 with %2, buffers as described")
                          .arg(counted(state.sources.size(), "instance", "instances"),
                               counted(leaves, "leaf", "leaves")));
    }
}

void checkBuffers(const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("buffers");
    if (!state.filesError.isEmpty()) {
        findings.add({check,
                      {},
                      DoctorFinding::Error,
                      QStringLiteral("denied"),
                      state.filesError,
                      QStringLiteral("mount shared memory, or run as a user that may list it"),
                      {},
                      ExitDenied});
        return;
    }
    const int before = findings.list().size();
    for (const BufferFile &file : state.files) {
        if (describing(file.path, state) == nullptr) {
            checkState(file, state, findings);
        }
    }
    if (findings.list().size() == before) {
        findings.good(
            check, QStringLiteral("%1 in shared memory, none left over").arg(state.files.size()));
    }
    bool closed = true;
    for (const BufferFile &file : state.files) {
        closed = checkOpenness(file, findings) && closed;
    }
    if (closed) {
        findings.good(QStringLiteral("permissions"),
                      QStringLiteral("no buffer is open to every user"));
    }
}
