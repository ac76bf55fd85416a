// SPDX-License-Identifier: MIT
// The bus, its services and the registry.
#include "SystemChecks.h"

#include "Counted.h"
#include "SystemChecksParts.h"

#include <algorithm>

namespace {

QString busName()
{
    const QString choice = qEnvironmentVariable("PROCESSDATA_BUS");
    return choice.isEmpty() ? QStringLiteral("system") : choice;
}

void checkBus(const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("bus");
    if (state.bus.isOk()) {
        findings.good(
            check,
            QStringLiteral("%1, %2 on it")
                .arg(busName(), counted(state.services.modules.size(), "module", "modules")));
    } else if (state.bus.result == BusQueryResult::BusNotReachable) {
        DoctorFinding finding{check,
                              {},
                              DoctorFinding::Error,
                              QStringLiteral("busOutOfReach"),
                              state.bus.error,
                              QStringLiteral("start the bus, or choose the right one with "
                                             "PROCESSDATA_BUS"),
                              {},
                              ExitNotReachable};
        findings.add(finding);
    } else {
        findings.unanswered(check, {}, state.bus);
    }
}

void checkManager(const QString &name, bool there, const Answer &answer, const QString &missing,
                  Findings &findings)
{
    const QString check = QStringLiteral("services");
    if (!there) {
        findings.warning(check, name, QStringLiteral("serviceMissing"),
                         QStringLiteral("nobody owns this name: %1").arg(missing),
                         QStringLiteral("start it; on a development machine "
                                        "process-data-simulator --system-services plays it"));
    } else if (!answer.isOk()) {
        findings.unanswered(check, name, answer);
    }
}

void checkServices(const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("services");
    const int before = findings.list().size();
    checkManager(QStringLiteral("com.orvalis.SystemInformationManager"),
                 state.services.informationManager, state.registry,
                 QStringLiteral("clients cannot list modules"), findings);
    const QString status = QStringLiteral("com.orvalis.SystemStatusManager");
    checkManager(status, state.services.statusManager, state.status,
                 QStringLiteral("clients are not notified when the system has started"), findings);
    if (state.services.statusManager && state.status.isOk() && !state.ready) {
        findings.warning(check, status, QStringLiteral("notReady"),
                         QStringLiteral("the system has not finished starting up"),
                         QStringLiteral("wait; if it stays so, look for the service that the "
                                        "status manager waits for"));
    }
    if (findings.list().size() == before) {
        findings.good(check,
                      QStringLiteral("status manager and information manager answer, the "
                                     "system is ready"));
    }
}

// Entries are OBJECT/INSTANCE/TYPE, and only the instance may hold a "/".
QString sourceOfType(const QString &module, const QString &type)
{
    const QString object = type.section(QLatin1Char('/'), 0, 0);
    const QString instance = type.section(QLatin1Char('/'), 1, -2);
    return QStringLiteral("%1/%2/%3").arg(module, object, instance);
}

void checkRegisteredTypes(const ModuleState &module, const SystemState &state, Findings &findings)
{
    QStringList told;
    for (const QString &type : module.selectorTypes) {
        const QString place = sourceOfType(module.name, type);
        const bool there
            = std::any_of(state.sources.begin(), state.sources.end(),
                          [&](const SourceState &source) { return source.place() == place; });
        if (!there && module.complete && !told.contains(place)) {
            told.append(place);
            findings.error(QStringLiteral("registry"), place, QStringLiteral("noSuchInstance"),
                           QStringLiteral("the registry offers \"%1\", but the service has no such "
                                          "instance")
                               .arg(type),
                           QStringLiteral("restart %1, so that it registers what it has")
                               .arg(module.owner.service));
        }
    }
}

void checkModule(const ModuleState &module, const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("registry");
    if (!module.registered && !module.onBus) {
        findings.error(check, module.name, QStringLiteral("serviceMissing"),
                       state.registry.isOk()
                           ? QStringLiteral("neither on the bus nor registered")
                           : QStringLiteral("not on the bus; the registry did not answer"),
                       QStringLiteral("start its service, or fix the name"));
    } else if (!module.onBus) {
        findings.error(
            check, module.name, QStringLiteral("serviceMissing"),
            QStringLiteral("it is registered, but nobody owns its service's name"),
            QStringLiteral("start its service, or restart the program that registered it"));
    } else if (!module.registered && state.registry.isOk()) {
        findings.warning(
            check, module.name, QStringLiteral("notRegistered"),
            QStringLiteral("its service is on the bus, but not registered: lists of "
                           "modules lack it"),
            QStringLiteral("restart %1; it registers when it comes up").arg(module.owner.service));
    } else {
        checkRegisteredTypes(module, state, findings);
    }
}

void checkRegistry(const SystemState &state, Findings &findings)
{
    const QString check = QStringLiteral("registry");
    const int before = findings.list().size();
    if (state.unreadableProviders > 0) {
        findings.warning(check, {}, QStringLiteral("badEntry"),
                         QStringLiteral("%1 of its entries have no readable module name")
                             .arg(state.unreadableProviders),
                         QStringLiteral("selector doctor --report keeps the list; fix the service "
                                        "that registered them"));
    }
    int registered = 0;
    for (const ModuleState &module : state.modules) {
        registered += module.registered ? 1 : 0;
        if (state.services.informationManager || !module.onBus) {
            checkModule(module, state, findings);
        }
    }
    // A registry that did not answer is reported among the services.
    if (findings.list().size() == before && state.services.informationManager
        && state.registry.isOk()) {
        findings.good(check,
                      QStringLiteral("%1, as on the bus")
                          .arg(counted(registered, "registered module", "registered modules")));
    }
}

} // namespace

QVector<DoctorFinding> checkSystem(const SystemState &state)
{
    Findings findings;
    checkBus(state, findings);
    if (state.bus.isOk()) {
        checkServices(state, findings);
        checkRegistry(state, findings);
        checkSources(state, findings);
    }
    checkBuffers(state, findings);
    return findings.list();
}
