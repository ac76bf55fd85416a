// SPDX-License-Identifier: MIT
// What a platform may show of its services and buffers beyond what every platform's access offers.
//
// The bodies are in buffers/: one of the reference platform, one of all others.
#ifndef PLATFORMDETAILS_H
#define PLATFORMDETAILS_H

#include "DoctorFinding.h"
#include "ProcessDataAccess.h"
#include "Step.h"

#include <QJsonArray>

struct SystemState;

/// Threads: any. Whatever asks a service or the bus blocks, at most for the platform's time limit,
/// and runs no event loop.
namespace PlatformDetails {

/// Who serves a module.
struct Owner
{
    QString service; ///< as people look for it: the name on the bus, or the module's
    QString connection; ///< its owner's own name on the bus
    quint32 processId = 0; ///< 0: not known
    quint32 userId = 0; ///< 0 also where it is not known
};

/// The service itself is not asked.
///
/// @param owner  receives the service's name in any case, the rest on success
ProcessDataAccess::Result fetchOwner(const QString &module, Owner &owner, QString &errorMessage);

QString ownerText(const Owner &owner);

struct Services
{
    bool listed = true; ///< whether the platform lists the modules that are served
    QStringList modules; ///< sorted
    bool managersShown = true; ///< whether the platform shows the system's two managers
    bool statusManager = false; ///< whether the system status manager is there
    bool informationManager = false; ///< whether the system information manager is there
};

ProcessDataAccess::Result fetchServices(Services &services, QString &errorMessage);

/// Whether the system has finished starting up, as its status manager says.
ProcessDataAccess::Result fetchReady(bool &ready, QString &errorMessage);

/// How far a client gets on its way into the buffer that a description names.
struct Buffer
{
    Step end = Step::Description; ///< the step that failed; Leaf: none
    QString problem; ///< why; empty when nothing is wrong
    QString path; ///< of its file; empty: not shown
    QString permission; ///< owner, group and mode
    QString remedy; ///< what gives this process the permission that it lacks; empty: not known
    quint64 generation = 0;
    quint64 size = 0; ///< bytes
    int leafCount = 0; ///< of the description
    bool writable = true; ///< false: this process surely may not write
};

Buffer inspectBuffer(const QString &description);

/// What is said of each step that is all right, from Description to Liveness.
QStringList bufferTexts(const Buffer &buffer);

/// Layout of buffers that this platform makes and reads; 0: not shown.
int bufferLayout();

/// All buffers of the system, used or left over.
class BufferList
{
public:
    BufferList() = default;
    virtual ~BufferList() = default;
    BufferList(const BufferList &) = delete;
    BufferList &operator=(const BufferList &) = delete;

    /// A buffer may have lived when it was listed and be replaced by now; only what stands counts.
    virtual void lookAgain() = 0;

    /// What is wrong with those that no source describes, and with the permissions of all.
    virtual QVector<DoctorFinding> check(const SystemState &state) const = 0;

    /// For a report of a fault.
    virtual QJsonArray report() const = 0;
};

/// @param only  modules to look at; empty: all
/// @returns never null
std::shared_ptr<BufferList> listBuffers(const QStringList &only);

/// Removes buffers whose publishers are proved dead. Looks at buffers alone: neither bus nor
/// services are needed.
///
/// @param only    modules to look at; empty: all
/// @param really  remove; otherwise only report
QVector<DoctorFinding> cleanLeftovers(const QStringList &only, bool really);

} // namespace PlatformDetails

#endif
