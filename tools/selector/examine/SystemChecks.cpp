// SPDX-License-Identifier: MIT
// The bus, its services, the registry and the sources.
#include "SystemChecks.h"

#include "Counted.h"
#include "NearMiss.h"

namespace {

bool isNotSupported(const Answer &answer)
{
    return answer.result == ProcessDataAccess::Result::NotSupported;
}

void checkBus(const SystemState &state, QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("bus");
    findings.append(state.bus.isOk() ? DoctorFinding::good(check, busText(state.services))
                                     : DoctorFinding::error(check, {}, busFinding(state.bus)));
}

void checkManager(const QString &name, bool there, const Answer &answer, const QString &missing,
                  QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("services");
    if (!there) {
        findings.append(DoctorFinding::warning(
            check, name,
            {Finding::ServiceMissing, QStringLiteral("nobody owns this name: %1").arg(missing),
             QStringLiteral("start it; on a development machine process-data-simulator "
                            "--system-services plays it")}));
    } else if (!answer.isOk()) {
        findings.append(DoctorFinding::error(check, name, unanswered(answer)));
    }
}

void checkServices(const SystemState &state, QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("services");
    if (!state.services.managersShown) {
        findings.append(DoctorFinding::good(
            check,
            QStringLiteral("not examined: this platform does not show the system's services")));
        return;
    }
    const int before = findings.size();
    checkManager(QStringLiteral("com.orvalis.SystemInformationManager"),
                 state.services.informationManager, state.registry,
                 QStringLiteral("clients cannot list modules"), findings);
    const QString status = QStringLiteral("com.orvalis.SystemStatusManager");
    checkManager(status, state.services.statusManager, state.status,
                 QStringLiteral("clients are not notified when the system has started"), findings);
    if (state.services.statusManager && state.status.isOk() && !state.ready) {
        findings.append(DoctorFinding::warning(
            check, status,
            {Finding::NotReady, QStringLiteral("the system has not finished starting up"),
             QStringLiteral("wait; if it stays so, look for the service that the status manager "
                            "waits for")}));
    }
    if (findings.size() == before) {
        findings.append(DoctorFinding::good(
            check,
            QStringLiteral("status manager and information manager answer, the system is ready")));
    }
}

// Entries are OBJECT/INSTANCE/TYPE, and only the instance may hold a "/".
SourceName sourceOfType(const QString &module, const QString &type)
{
    return {module, type.section(QLatin1Char('/'), 0, 0), type.section(QLatin1Char('/'), 1, -2)};
}

void checkRegisteredTypes(const ModuleState &module, const SystemState &state,
                          QVector<DoctorFinding> &findings)
{
    if (!module.complete) {
        return;
    }
    QVector<SourceName> known;
    for (const Examination &source : state.sources) {
        known.append(source.source);
    }
    for (const QString &type : module.selectorTypes) {
        const SourceName source = sourceOfType(module.name, type);
        if (!known.contains(source)) {
            known.append(source); // each is missed once
            findings.append(DoctorFinding::error(
                QStringLiteral("registry"), source.toString(),
                {Finding::NoSuchInstance,
                 QStringLiteral("the registry offers \"%1\", but the service has no such instance")
                     .arg(type),
                 QStringLiteral("restart %1, so that it registers what it has")
                     .arg(module.owner.service)}));
        }
    }
}

// What to do about a module that nobody knows, and which one was probably meant.
QString unknownModuleAdvice(const QString &name, const SystemState &state)
{
    const QString hint = didYouMean(name, state.services.modules);
    return (hint.isEmpty() ? QString() : hint + QLatin1Char(' '))
        + QStringLiteral("start its service, or fix the name");
}

void checkModule(const ModuleState &module, const SystemState &state,
                 QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("registry");
    if (!module.registered && !module.onBus) {
        findings.append(DoctorFinding::error(
            check, module.name,
            {Finding::ServiceMissing,
             isNotSupported(state.registry) ? QStringLiteral("nobody serves it")
                 : state.registry.isOk()
                 ? QStringLiteral("neither on the bus nor registered")
                 : QStringLiteral("not on the bus; the registry did not answer"),
             unknownModuleAdvice(module.name, state)}));
    } else if (!module.onBus) {
        findings.append(DoctorFinding::error(
            check, module.name,
            {Finding::ServiceMissing,
             QStringLiteral("it is registered, but nobody owns its service's name"),
             QStringLiteral("start its service, or restart the program that registered it")}));
    } else if (!module.registered && state.registry.isOk()) {
        findings.append(DoctorFinding::warning(
            check, module.name,
            {Finding::NotRegistered,
             QStringLiteral("its service is on the bus, but not registered: lists of modules lack "
                            "it"),
             QStringLiteral("restart %1; it registers when it comes up")
                 .arg(module.owner.service)}));
    } else {
        checkRegisteredTypes(module, state, findings);
    }
}

void checkRegistry(const SystemState &state, QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("registry");
    const int before = findings.size();
    if (state.unreadableProviders > 0) {
        findings.append(DoctorFinding::warning(
            check, {},
            {Finding::BadEntry,
             QStringLiteral("%1 of its entries have no readable module name")
                 .arg(state.unreadableProviders),
             QStringLiteral("selector doctor --report keeps the list; fix the service that "
                            "registered them")}));
    }
    int registered = 0;
    for (const ModuleState &module : state.modules) {
        registered += module.registered ? 1 : 0;
        if (state.hasRegistry() || !module.onBus) {
            checkModule(module, state, findings);
        }
    }
    if (isNotSupported(state.registry)) {
        findings.append(
            DoctorFinding::good(check, QStringLiteral("not examined: ") + state.registry.error));
    }
    // A registry that did not answer is reported among the services.
    if (findings.size() == before && state.hasRegistry() && state.registry.isOk()) {
        findings.append(DoctorFinding::good(
            check,
            QStringLiteral("%1, as on the bus")
                .arg(counted(registered, "registered module", "registered modules"))));
    }
}

void checkSources(const SystemState &state, QVector<DoctorFinding> &findings)
{
    const QString check = QStringLiteral("sources");
    const int before = findings.size();
    for (const ModuleState &module : state.modules) {
        if (module.onBus && isNotSupported(module.answer)) {
            findings.append(
                DoctorFinding::good(check,
                                    QStringLiteral("%1 is served; its sources are not examined: %2")
                                        .arg(module.name, module.answer.error)));
        } else if (module.onBus && !module.answer.isOk()) {
            findings.append(DoctorFinding::error(check, module.name, unanswered(module.answer)));
        }
    }
    if (state.modules.isEmpty() && !state.services.listed) {
        findings.append(DoctorFinding::good(
            check,
            QStringLiteral("not examined: this platform does not list its modules; "
                           "selector doctor MODULE examines one")));
    }
    int leaves = 0;
    for (const Examination &source : state.sources) {
        leaves += source.buffer.leafCount;
        Finding cause = source.cause;
        if (source.end > Step::File && !cause.isNone()) {
            cause.text.prepend(source.buffer.path + QStringLiteral(": "));
        }
        if (!cause.isNone()) {
            findings.append(DoctorFinding::error(check, source.source.toString(), cause));
        }
    }
    if (findings.size() == before) {
        findings.append(
            DoctorFinding::good(check,
                                QStringLiteral("%1 with %2, buffers as described")
                                    .arg(counted(state.sources.size(), "instance", "instances"),
                                         counted(leaves, "leaf", "leaves"))));
    }
}

} // namespace

QVector<DoctorFinding> checkSystem(const SystemState &state)
{
    QVector<DoctorFinding> findings;
    checkBus(state, findings);
    if (state.bus.isOk()) {
        checkServices(state, findings);
        checkRegistry(state, findings);
        checkSources(state, findings);
    }
    return findings + state.buffers->check(state);
}
