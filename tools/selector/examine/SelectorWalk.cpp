// SPDX-License-Identifier: MIT
// The order of the steps, and those before a source's memory: text, bus, service.
#include "SelectorWalk.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "Counted.h"
#include "InstanceListClient.h"
#include "ServiceOwnerClient.h"
#include "SourceInspection.h"
#include "UserNames.h"

namespace {

QString quotedList(const QStringList &names)
{
    constexpr int shown = 8;
    QStringList quoted;
    const QStringList first = names.mid(0, shown);
    for (const QString &name : first) {
        quoted.append(QLatin1Char('"') + name + QLatin1Char('"'));
    }
    if (names.size() > shown) {
        quoted.append(QStringLiteral("%1 more").arg(names.size() - shown));
    }
    return quoted.isEmpty() ? QStringLiteral("none") : quoted.join(QLatin1String(", "));
}

} // namespace

SelectorWalk::SelectorWalk(const QString &url, const QStringList &properties)
    : url(url)
    , wantedProperties(properties)
    , parts(parseSelectorUrl(url))
{
    const auto add = [this](const char *name, const char *key) {
        way.append({QString::fromLatin1(name), QString::fromLatin1(key), WalkStep::NotReached,
                    QString(), QString()});
    };
    add("text", "text");
    add("scheme", "scheme");
    add("module", "module");
    add("bus", "bus");
    add("service owner", "serviceOwner");
    add("object", "object");
    add("description", "description");
    add("buffer file", "bufferFile");
    add("permission", "permission");
    add("layout", "layout");
    add("liveness", "liveness");
    add("leaf", "leaf");
    add("property", "property");
    add("value", "value");
}

void SelectorWalk::walk()
{
    static constexpr bool (SelectorWalk::*checks[])()
        = {&SelectorWalk::checkText,        &SelectorWalk::checkScheme,
           &SelectorWalk::checkModule,      &SelectorWalk::checkBus,
           &SelectorWalk::checkOwner,       &SelectorWalk::checkObject,
           &SelectorWalk::checkDescription, &SelectorWalk::checkBuffer,
           &SelectorWalk::checkPermission,  &SelectorWalk::checkLayout,
           &SelectorWalk::checkLiveness,    &SelectorWalk::checkLeaf,
           &SelectorWalk::checkProperty,    &SelectorWalk::checkValue};
    for (const auto check : checks) {
        if (!(this->*check)()) {
            return;
        }
        ++position;
    }
}

bool SelectorWalk::ok(const QString &finding)
{
    way[position].result = WalkStep::Ok;
    way[position].finding = finding;
    return true;
}

bool SelectorWalk::fail(const QString &finding, const QString &advice, ExitCode exitCode)
{
    way[position].result = WalkStep::Failed;
    way[position].finding = finding;
    way[position].advice = advice;
    code = exitCode;
    return false;
}

QString SelectorWalk::source() const
{
    return parts.source.toString();
}

bool SelectorWalk::failQuery(BusQueryResult result, const QString &error)
{
    switch (result) {
    case BusQueryResult::TimedOut:
        return fail(error,
                    QStringLiteral("the service hangs or is stopped: look at its log and state, "
                                   "restart it, or allow more with --timeout"),
                    ExitTimeLimit);
    case BusQueryResult::Denied:
        return fail(error,
                    QStringLiteral("the bus policy does not permit it: run as a user that it "
                                   "permits, or extend the policy"),
                    ExitDenied);
    case BusQueryResult::BusNotReachable:
        return fail(error, QStringLiteral("the bus went away: try again"), ExitNotReachable);
    case BusQueryResult::ServiceMissing:
        return fail(error, QStringLiteral("the service ended meanwhile: try again"));
    default:
        return fail(error, QStringLiteral("look at the log of %1").arg(service));
    }
}

bool SelectorWalk::checkText()
{
    if (!parts.valid && !parts.sourceNameRefused) {
        return fail(parts.problem,
                    QStringLiteral("write processdata://MODULE/OBJECT/INSTANCE/GROUP/LEAF, "
                                   "special characters percent-encoded"));
    }
    return ok(parts.deactivated ? QStringLiteral("well formed, deactivated: clients leave it out")
                                : QStringLiteral("well formed"));
}

bool SelectorWalk::checkScheme()
{
    const QString wanted
        = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData();
    const QString scheme = url.section(QStringLiteral("://"), 0, 0);
    if (scheme != wanted) {
        return fail(QStringLiteral("the scheme is \"%1\"").arg(scheme),
                    QStringLiteral("process data has the scheme \"%1\"").arg(wanted));
    }
    return ok(scheme);
}

bool SelectorWalk::checkModule()
{
    if (!parts.valid) {
        return fail(parts.problem,
                    QStringLiteral("use the name that selector modules lists; module and object "
                                   "hold no \"_\""));
    }
    return ok(parts.source.module);
}

bool SelectorWalk::checkBus()
{
    ServicesOnBus services;
    QString error;
    const BusQueryResult result = fetchServices(services, error);
    if (result == BusQueryResult::BusNotReachable) {
        return fail(error,
                    QStringLiteral("start the bus, or choose the right one with PROCESSDATA_BUS"),
                    ExitNotReachable);
    }
    if (result != BusQueryResult::Ok) {
        return failQuery(result, error);
    }
    const QString choice = qEnvironmentVariable("PROCESSDATA_BUS");
    return ok(QStringLiteral("%1, %2 on it")
                  .arg(choice.isEmpty() ? QStringLiteral("system") : choice,
                       counted(services.modules.size(), "module", "modules")));
}

bool SelectorWalk::checkOwner()
{
    ServiceOwner owner;
    QString error;
    const BusQueryResult result = fetchServiceOwner(parts.source.module, owner, error);
    service = owner.service;
    if (result == BusQueryResult::ServiceMissing) {
        ServicesOnBus services;
        QString ignored;
        fetchServices(services, ignored);
        return fail(error,
                    QStringLiteral("start the service of module \"%1\"; running modules: %2")
                        .arg(parts.source.module, quotedList(services.modules)));
    }
    if (result != BusQueryResult::Ok) {
        return failQuery(result, error);
    }
    return ok(QStringLiteral("%1 is %2, process %3, user %4")
                  .arg(owner.service, owner.connection)
                  .arg(owner.processId)
                  .arg(UserNames::ofUser(owner.userId)));
}

bool SelectorWalk::checkObject()
{
    QStringList names;
    QString error;
    BusQueryResult result = fetchObjects(parts.source.module, names, error);
    if (result != BusQueryResult::Ok) {
        return failQuery(result, error);
    }
    if (!names.contains(parts.source.object)) {
        return fail(QStringLiteral("module %1 has no object \"%2\"")
                        .arg(parts.source.module, parts.source.object),
                    QStringLiteral("its objects: %1").arg(quotedList(names)));
    }
    result = fetchInstances(parts.source.module, parts.source.object, names, error);
    if (result != BusQueryResult::Ok) {
        return failQuery(result, error);
    }
    if (!names.contains(parts.source.instance)) {
        return fail(QStringLiteral("object %1/%2 has no instance \"%3\"")
                        .arg(parts.source.module, parts.source.object, parts.source.instance),
                    QStringLiteral("its instances: %1").arg(quotedList(names)));
    }
    return ok(QStringLiteral("object \"%1\", instance \"%2\"")
                  .arg(parts.source.object, parts.source.instance));
}

bool SelectorWalk::checkDescription()
{
    QString error;
    SourceInspection found;
    const BusQueryResult result = inspectSource(parts.source.module, parts.source.object,
                                                parts.source.instance, found, error);
    if (result != BusQueryResult::Ok) {
        return failQuery(result, error);
    }
    description = found.description;
    buffer = found.buffer;
    if (buffer.end == BufferInspection::Description) {
        return fail(buffer.problem,
                    QStringLiteral("the service serves what clients refuse: fix its description"));
    }
    return ok(QStringLiteral("%1, generation %2")
                  .arg(counted(buffer.leafCount, "leaf", "leaves"))
                  .arg(buffer.generation));
}
