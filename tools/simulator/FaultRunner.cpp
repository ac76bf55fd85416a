// SPDX-License-Identifier: MIT
// Makes the faults of a scenario happen.
#include "FaultRunner.h"

#include "BufferFaults.h"
#include "FetchFaults.h"
#include "SimulatedSource.h"
#include "SimulatorLog.h"
#include "SpellingHint.h"

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace {

bool isForFetches(Fault fault)
{
    return fault == Fault::ReplyNormally || fault == Fault::ReplyLate || fault == Fault::ReplyNever
        || fault == Fault::ReplyError || fault == Fault::ReplyText || fault == Fault::ReplyHuge;
}

// Still JSON, and right but for its size.
QString padded(const QByteArray &description, int bytes)
{
    return QString::fromUtf8(description.leftJustified(bytes, ' '));
}

void setFetchFault(const ScenarioStep &step, const SimulatedSource &source)
{
    FetchFault fault;
    fault.delay = step.delay;
    fault.error = step.error;
    fault.text = step.text;
    fault.count = step.count;
    switch (step.fault) {
    case Fault::ReplyLate:
        fault.kind = FetchFault::Late;
        break;
    case Fault::ReplyNever:
        fault.kind = FetchFault::Never;
        break;
    case Fault::ReplyError:
        fault.kind = FetchFault::Error;
        break;
    case Fault::ReplyText:
        fault.kind = FetchFault::Text;
        break;
    case Fault::ReplyHuge:
        fault.kind = FetchFault::Text;
        fault.text = padded(source.served(), step.bytes);
        break;
    default:
        break;
    }
    FetchFaults::instance().set(step.source, fault);
}

} // namespace

bool FaultRunner::run(const ScenarioStep &step, QString &error)
{
    QString problem;
    if (!check(step, problem) || !make(step, problem)) {
        error = QStringLiteral("step %1: %2").arg(step.name, problem);
        return false;
    }
    qCInfo(simulator).noquote() << QStringLiteral("step %1: done").arg(step.name);
    return true;
}

bool FaultRunner::check(const ScenarioStep &step, QString &error) const
{
    QStringList modules;
    QStringList names;
    for (const auto &source : sources) {
        modules.append(source->source().module);
        names.append(source->source().toString());
    }
    if (!step.module.isEmpty() && !modules.contains(step.module)) {
        error
            = withHint(QStringLiteral("key \"module\": no file publishes \"%1\"").arg(step.module),
                       step.module, modules);
        return false;
    }
    if (!step.source.isEmpty() && !names.contains(step.source)) {
        error
            = withHint(QStringLiteral("key \"source\": no file publishes \"%1\"").arg(step.source),
                       step.source, names);
        return false;
    }
    if (step.leaf.isEmpty()) {
        return true;
    }
    const QStringList leaves = find(step.source)->leafPaths();
    if (!leaves.contains(step.leaf)) {
        error = withHint(
            QStringLiteral("key \"leaf\": %1 has no leaf \"%2\"").arg(step.source, step.leaf),
            step.leaf, leaves);
        return false;
    }
    return true;
}

bool FaultRunner::make(const ScenarioStep &step, QString &error)
{
    if (step.fault == Fault::Kill) {
        static_cast<void>(kill(getpid(), SIGKILL));
        return false;
    }
    return step.module.isEmpty() ? runOnSource(step, *find(step.source), error)
                                 : runOnModule(step, error);
}

bool FaultRunner::runOnModule(const ScenarioStep &step, QString &error)
{
    for (const auto &source : sources) {
        if (source->source().module != step.module) {
            continue;
        }
        if (step.fault == Fault::Vanish) {
            source->vanish();
        } else if (!source->comeBack(error)) {
            return false;
        }
    }
    return true;
}

bool FaultRunner::runOnSource(const ScenarioStep &step, SimulatedSource &source, QString &error)
{
    if (!source.isPublished()) {
        error = QStringLiteral("key \"source\": \"%1\" has vanished").arg(step.source);
        return false;
    }
    if (isForFetches(step.fault)) {
        setFetchFault(step, source);
        return true;
    }
    switch (step.fault) {
    case Fault::KillInWrite:
        return dieInWrite(source.served(), step.leaf, step.byClient, error);
    case Fault::Retype:
        return source.retype(step.leaf, step.type, step.capacity, error);
    case Fault::Storm:
        return source.announce(step.count, step.ofProperties, error);
    case Fault::Permissions:
        return changeBufferMode(source.served(), step.mode, error);
    default:
        return false;
    }
}

SimulatedSource *FaultRunner::find(const QString &source) const
{
    const auto found = std::find_if(sources.begin(), sources.end(), [&](const auto &candidate) {
        return candidate->source().toString() == source;
    });
    return found == sources.end() ? nullptr : found->get();
}
