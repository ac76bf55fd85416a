// SPDX-License-Identifier: MIT
// The steps from a source's owner to its buffer.
#include "Examination.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "Counted.h"
#include "NearMiss.h"

using ProcessDataAccess::Result;

namespace {

// Also for a source in whose way nothing stands: then both findings are None.
void conclude(Examination &found, Step step, const Finding &cause, const Finding &reason)
{
    found.end = step;
    found.cause = cause;
    found.reason = reason;
}

void failUnanswered(Examination &found, Step step, const Answer &answer)
{
    const QString silent
        = QStringLiteral("the service of module %1 gives no answer").arg(found.source.module);
    conclude(found, step, unanswered(answer, found.owner.service),
             unanswered({answer.result, silent}));
    if (answer.result == Result::BusNotReachable) {
        found.cause.code = Finding::BusOutOfReach;
    }
}

bool findOwner(Examination &found)
{
    const QString &module = found.source.module;
    const Answer answer = ask(
        [&](QString &error) { return PlatformDetails::fetchOwner(module, found.owner, error); });
    if (answer.result == Result::ServiceMissing) {
        conclude(found, Step::Owner,
                 {Finding::ServiceMissing, answer.error,
                  QStringLiteral("start the service of module \"%1\"").arg(module)},
                 {Finding::ServiceMissing,
                  QStringLiteral("the service of module %1 is not running").arg(module)});
    } else if (!answer.isOk()) {
        failUnanswered(found, Step::Owner, answer);
    }
    return answer.isOk();
}

// Whether the service that was asked for names has this one, or there is nobody to ask.
bool isListed(const QString &name, const QStringList &names, const Answer &answer,
              Examination &found, const QString &problem, const QString &advice)
{
    if (answer.result == Result::NotSupported) {
        return true;
    }
    if (!answer.isOk()) {
        failUnanswered(found, Step::Object, answer);
        return false;
    }
    const Finding missing{Finding::NoSuchInstance, problem, advice + quotedList(names)};
    if (!names.contains(name)) {
        conclude(found, Step::Object, missing, missing);
        return false;
    }
    return true;
}

// Which name is wrong, when a service gives no description.
bool findNames(Examination &found)
{
    const SourceName &source = found.source;
    QStringList names;
    Answer answer = ask([&](QString &error) {
        return ProcessDataAccess::fetchObjects(source.module, names, error);
    });
    if (!isListed(
            source.object, names, answer, found,
            QStringLiteral("module %1 has no object \"%2\"").arg(source.module, source.object),
            QStringLiteral("its objects: "))) {
        return false;
    }
    answer = ask([&](QString &error) {
        return ProcessDataAccess::fetchInstances(source.module, source.object, names, error);
    });
    return isListed(source.instance, names, answer, found,
                    QStringLiteral("object %1/%2 has no instance \"%3\"")
                        .arg(source.module, source.object, source.instance),
                    QStringLiteral("its instances: "));
}

Finding causeOf(const PlatformDetails::Buffer &buffer, const QString &service)
{
    switch (buffer.end) {
    case Step::Description:
        return {Finding::BadDescription, buffer.problem,
                QStringLiteral("the service serves what clients refuse: fix its description")};
    case Step::File:
        return {Finding::BufferMissing, QStringLiteral("%1: %2").arg(buffer.path, buffer.problem),
                QStringLiteral("something removed it: restart the service %1").arg(service)};
    case Step::Permission:
        return {Finding::Denied, QStringLiteral("%1 (%2)").arg(buffer.problem, buffer.permission),
                buffer.remedy};
    case Step::Layout:
        return {Finding::NotReadable, buffer.problem,
                QStringLiteral("buffer and description do not belong together: try again, and "
                               "restart the service %1 if it stays")
                    .arg(service)};
    case Step::Liveness:
        return {Finding::PublisherDead,
                buffer.problem + QStringLiteral("; reads give the last values as SourceLost"),
                QStringLiteral("restart the service %1").arg(service)};
    default:
        break;
    }
    return {};
}

} // namespace

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

Finding textFinding(const SelectorUrlParts &parts)
{
    if (parts.deactivated) {
        return {Finding::Deactivated, QStringLiteral("deactivated")};
    }
    const QString scheme
        = ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData();
    if (!parts.valid) {
        return {Finding::InvalidUrl,
                QStringLiteral("no valid selector URL (%1://MODULE/OBJECT/INSTANCE/…/LEAF)")
                    .arg(scheme)};
    }
    if (parts.scheme != scheme) {
        return {Finding::WrongScheme,
                QStringLiteral("the scheme is \"%1\", not \"%2\"").arg(parts.scheme, scheme)};
    }
    return {};
}

Finding busFinding(const Answer &bus)
{
    if (bus.result == Result::BusNotReachable) {
        return {Finding::BusOutOfReach, bus.error,
                QStringLiteral("start the bus, or choose the right one with PROCESSDATA_BUS")};
    }
    return bus.isOk() ? Finding() : unanswered(bus);
}

QString busText(const PlatformDetails::Services &services)
{
    if (!services.listed) {
        return QStringLiteral("reachable; this platform does not list its modules");
    }
    const QString choice = qEnvironmentVariable("PROCESSDATA_BUS");
    return QStringLiteral("%1, %2 on it")
        .arg(choice.isEmpty() ? QStringLiteral("system") : choice,
             counted(services.modules.size(), "module", "modules"));
}

Answer examineListed(Examination &found)
{
    constexpr int attempts = 3;
    const SourceName &source = found.source;
    for (int i = 0; i < attempts && found.buffer.end != Step::Leaf; ++i) {
        QString description;
        Answer answer = ask([&](QString &error) {
            return ProcessDataAccess::fetchDescription(source.module, source.object,
                                                       source.instance, description, error);
        });
        if (!answer.isOk()) {
            return answer;
        }
        if (i > 0 && description == found.description) {
            break;
        }
        found.description = description;
        found.buffer = PlatformDetails::inspectBuffer(description);
    }
    const Finding cause = causeOf(found.buffer, found.owner.service);
    Finding reason = cause;
    if (!cause.isNone()) {
        reason = {
            cause.code == Finding::Denied ? Finding::Denied : Finding::NotReadable,
            QStringLiteral("cannot attach to %1: %2").arg(source.toString(), found.buffer.problem)};
    }
    conclude(found, found.buffer.end, cause, reason);
    return {};
}

Examination examine(const SourceName &source)
{
    Examination found;
    found.source = source;
    if (!findOwner(found)) {
        return found;
    }
    const Answer answer = examineListed(found);
    if (answer.result == Result::TimedOut) {
        failUnanswered(found, Step::Object, answer); // further questions would be refused unasked
    } else if (!answer.isOk() && findNames(found)) {
        failUnanswered(found, Step::Description, answer);
        found.reason
            = {Finding::ServiceFailed,
               QStringLiteral("the service gave no description of %1").arg(source.toString())};
    }
    return found;
}

const SelectorExaminer::Source &SelectorExaminer::sourceOf(const SourceName &name)
{
    auto source = sources.find(name);
    if (source == sources.end()) {
        source = sources.insert(name, {examine(name), {}});
        if (source->found.cause.isNone()) {
            const auto leaves = leavesBelow(source->found.description, QString());
            for (const DescribedLeaf &leaf : leaves) {
                source->paths.insert(leaf.path);
            }
        }
    }
    return *source;
}

Finding SelectorExaminer::explain(const QString &url)
{
    const SelectorUrlParts parts = parseSelectorUrl(url);
    Finding text = textFinding(parts);
    if (!text.isNone()) {
        return text;
    }
    const Source &source = sourceOf(parts.source);
    if (source.found.reason.isNone()
        && (parts.path.isNull() || !source.paths.contains(parts.path))) {
        return {Finding::NoSuchLeaf,
                QStringLiteral("%1 has no such leaf").arg(parts.source.toString())
                    + leafHint(source, parts.path)};
    }
    return source.found.reason;
}

// For the first few alone: looking through many leaves again and again takes longer than people
// wait.
QString SelectorExaminer::leafHint(const Source &source, const QString &path)
{
    constexpr int mostHints = 20;
    constexpr int mostLeaves = 10000;
    if (hints >= mostHints || source.paths.size() > mostLeaves) {
        return {};
    }
    ++hints;
    QStringList paths = source.paths.values();
    paths.sort();
    const QString hint = didYouMean(path, paths);
    return hint.isEmpty() ? QString() : QStringLiteral("; ") + hint;
}

Finding SelectorExaminer::explainRefusal(const QString &url)
{
    Finding finding = explain(url);
    if (!finding.isNone()) {
        return finding;
    }
    const PlatformDetails::Buffer &buffer = sourceOf(parseSelectorUrl(url).source).found.buffer;
    if (!buffer.writable) {
        return {Finding::Denied,
                QStringLiteral("this process may only read %1 (%2)")
                    .arg(buffer.path, buffer.permission),
                buffer.remedy};
    }
    return {};
}
