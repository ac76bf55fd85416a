// SPDX-License-Identifier: MIT
// The reference platform's services, who runs them, and the way into a buffer.
#include "BufferInspection.h"
#include "Counted.h"
#include "PlatformDetails.h"
#include "ReferenceBuffers.h"
#include "ReferenceResult.h"
#include "ServiceOwnerClient.h"
#include "SystemReadyClient.h"
#include "UserNames.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace PlatformDetails {

namespace {

Step stepOf(BufferInspection::Step step)
{
    switch (step) {
    case BufferInspection::Description:
        return Step::Description;
    case BufferInspection::File:
        return Step::File;
    case BufferInspection::Permission:
        return Step::Permission;
    case BufferInspection::Layout:
        return Step::Layout;
    case BufferInspection::Liveness:
        return Step::Liveness;
    case BufferInspection::Complete:
        break;
    }
    return Step::Leaf;
}

QString remedyFor(const BufferInspection &found)
{
    constexpr quint32 groupReads = 040;
    constexpr quint32 groupWrites = 020;
    BufferFile file;
    if (found.end < BufferInspection::Permission || !inspectBufferFile(found.path, file)) {
        return {};
    }
    const bool readable
        = ::faccessat(AT_FDCWD, QFile::encodeName(found.path).constData(), R_OK, AT_EACCESS) == 0;
    if (found.end == BufferInspection::Permission && readable) {
        return QStringLiteral("a buffer of another owner than the description names is forged or "
                              "left over: restart the service");
    }
    return ::remedyFor(file, found.end == BufferInspection::Permission ? groupReads : groupWrites);
}

} // namespace

ProcessDataAccess::Result fetchOwner(const QString &module, Owner &owner, QString &errorMessage)
{
    ServiceOwner found;
    const auto result = resultOf(fetchServiceOwner(module, found, errorMessage));
    owner = {found.service, found.connection, found.processId, found.userId};
    return result;
}

QString ownerText(const Owner &owner)
{
    return QStringLiteral("%1 is %2, process %3, user %4")
        .arg(owner.service, owner.connection)
        .arg(owner.processId)
        .arg(UserNames::ofUser(owner.userId));
}

ProcessDataAccess::Result fetchServices(Services &services, QString &errorMessage)
{
    ServicesOnBus found;
    const auto result = resultOf(::fetchServices(found, errorMessage));
    services = {true, found.modules, true, found.statusManager, found.informationManager};
    return result;
}

ProcessDataAccess::Result fetchReady(bool &ready, QString &errorMessage)
{
    return resultOf(fetchSystemReady(ready, errorMessage));
}

Buffer inspectBuffer(const QString &description)
{
    const BufferInspection found = ::inspectBuffer(description);
    Buffer buffer{stepOf(found.end), found.problem, found.path,      found.permission, {},
                  found.generation,  found.size,    found.leafCount, found.writable};
    if (!found.writable) {
        buffer.remedy = remedyFor(found);
    }
    return buffer;
}

QStringList bufferTexts(const Buffer &buffer)
{
    QString access;
    if (buffer.end > Step::Layout) {
        access = buffer.writable ? QStringLiteral(", this process may write")
                                 : QStringLiteral(", this process may only read");
    }
    return {QStringLiteral("%1, generation %2")
                .arg(counted(buffer.leafCount, "leaf", "leaves"))
                .arg(buffer.generation),
            QStringLiteral("%1, %2 bytes").arg(buffer.path).arg(buffer.size),
            buffer.permission + access, QStringLiteral("as described"),
            QStringLiteral("its publisher lives")};
}

int bufferLayout()
{
    return int(ownBufferLayoutVersion());
}

} // namespace PlatformDetails
