// SPDX-License-Identifier: MIT
// What tools and services need of a platform beyond the contract: to look into values, and to ask
// who publishes what.
//
// Each platform brings one body for it. The library itself needs none of this.
#ifndef PROCESSDATAACCESS_H
#define PROCESSDATAACCESS_H

#include "ProcessValue.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

namespace ProcessDataAccess {

/// How far a value can be trusted, whatever names a platform has for it.
enum class ErrorType {
    NoError, ///< current value of a running publisher
    NotInitialized, ///< never published since the buffer was made
    SourceLost, ///< the publisher is gone; the value is its last
    NoValue, ///< no value was obtained
    DeviceFault, ///< the publisher reports a fault of the device behind the value
    OutOfRange, ///< the publisher reports a value outside the device's range
};

/// How a question ended. What is asked for is there with Ok alone.
enum class Result {
    Ok,
    BusNotReachable, ///< no connection to the bus: the whole system is out of reach
    ServiceMissing, ///< the bus is there, but nobody serves what was asked for
    ServiceFailed, ///< the service answered with an error, or with something else than promised
    TimedOut, ///< no answer in time
    Denied, ///< the caller lacks the permission
    NotSupported, ///< the platform has no such list
};

/// @name Values
/// Every platform has these. Threads: any.
/// @{

/// The value itself; invalid when there is none.
QVariant valueOf(const ProcessValue &value);

ErrorType errorTypeOf(const ProcessValue &value);

/// Nanoseconds since 1970-01-01 00:00 UTC; 0 when the platform keeps no time.
qint64 timestampOf(const ProcessValue &value);

/// A value to write.
ProcessValue makeValue(const QVariant &value);
/// @}

/// @name Lists
/// A platform that cannot tell answers NotSupported. The calls block, at most for the platform's
/// time limit, and run no event loop.
///
/// Each receives what it asks for in its last parameter but one, and in errorMessage one sentence
/// that names what is wrong; of the two the other is left alone. Threads: any.
/// @{

/// The registered providers, as JSON text that ModuleData's functions of the library take.
Result fetchProviderList(QString &json, QString &errorMessage);

/// The modules whose services run, sorted; registered or not.
Result fetchRunningModules(QStringList &modules, QString &errorMessage);

/// A module's objects, sorted.
Result fetchObjects(const QString &module, QStringList &objects, QString &errorMessage);

/// An object's instances, sorted.
Result fetchInstances(const QString &module, const QString &object, QStringList &instances,
                      QString &errorMessage);

/// An instance's description as its service sends it.
Result fetchDescription(const QString &module, const QString &object, const QString &instance,
                        QString &description, QString &errorMessage);

/// Whether somebody serves a module; the service itself is not asked. With Ok it is served.
Result isServed(const QString &module, QString &errorMessage);
/// @}

/// @name Time limits
/// Of a platform without such limits these do nothing. Threads: any.
/// @{

/// From now on all calls of this process together may take so long, beside the limit of each.
///
/// @param milliseconds  above 0
void setCallDeadline(int milliseconds);

/// From now on each call may take so long.
///
/// @param milliseconds  0: as the platform has it
void setCallTimeLimit(int milliseconds);
/// @}

/// What a watch over the system hears of.
struct SystemEvent
{
    enum Kind {
        ServiceAppeared, ///< a module is served, or by another process than before
        ServiceLost, ///< nobody serves it any more
        ProvidersChanged, ///< the list of providers may differ
        BusLost, ///< nothing is heard until BusFound
        BusFound, ///< anything may have happened meanwhile
    };

    Kind kind;
    QString module; ///< of the first two
};

/// A watch ends when it is destroyed; then no call of its function runs, and none comes.
class SystemWatch
{
public:
    SystemWatch() = default;
    virtual ~SystemWatch() = default;
    SystemWatch(const SystemWatch &) = delete;
    SystemWatch &operator=(const SystemWatch &) = delete;
};

/// Tells of services that come and go and of changes in the list of providers. Costs no call while
/// nothing changes.
///
/// @param hear  called in a thread of the platform, one call at a time: it only queues
/// @returns null when the platform cannot tell
/// Threads: any.
std::unique_ptr<SystemWatch> watchSystem(const std::function<void(const SystemEvent &)> &hear);

} // namespace ProcessDataAccess

#endif
