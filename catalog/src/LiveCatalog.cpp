// SPDX-License-Identifier: MIT
// Asks again for what events speak of, and compares.
#include "LiveCatalog.h"

#include "DBusProcessDescriptionConnector.h"

#include <QElapsedTimer>

#include <algorithm>
#include <functional>
#include <utility>

using ProcessDataAccess::Result;
using ProcessDataAccess::SystemEvent;

namespace {

// Milliseconds.
constexpr int firstRetry = 1000;
constexpr int longestRetry = 60000;

SelectorPattern everything()
{
    SelectorPattern pattern;
    pattern.below = true;
    return pattern;
}

bool anyOf(const QVector<SelectorPattern> &patterns, bool (SelectorPattern::*question)() const)
{
    return std::any_of(patterns.begin(), patterns.end(), std::mem_fn(question));
}

QMap<QString, QStringList> typesByModule(const QVector<Module> &modules)
{
    QMap<QString, QStringList> types;
    for (const Module &module : modules) {
        types[module.name] += module.selectorTypes;
    }
    return types;
}

// A service that has its name but does not serve its objects yet answers with an error.
bool isWorthARetry(const CatalogAnswer &answer)
{
    return answer.result == Result::TimedOut || answer.result == Result::ServiceFailed;
}

} // namespace

LiveCatalog::LiveCatalog(const QVector<SelectorPattern> &patterns, QObject *parent)
    : QObject(parent)
    , patterns(patterns.isEmpty() ? QVector<SelectorPattern>{everything()} : patterns)
    , turn(this)
    , retry(this)
    , needsModules(anyOf(this->patterns, &SelectorPattern::needsModules))
    , needsObjects(anyOf(this->patterns, &SelectorPattern::needsObjects))
{
    known.setObjectHook(
        [this](const QString &module, const QString &object) { listen(module, object); });
    qRegisterMetaType<QVector<SourceName>>("QVector<SourceName>");
    turn.setSingleShot(true);
    turn.setInterval(0);
    retry.setSingleShot(true);
    retry.setInterval(firstRetry);
    connect(&turn, &QTimer::timeout, this, &LiveCatalog::update);
    connect(&retry, &QTimer::timeout, this, [this] {
        retry.setInterval(std::min(2 * retry.interval(), longestRetry));
        known.forgetFailures();
        update();
    });
}

LiveCatalog::~LiveCatalog()
{
    watch.reset();
}

CatalogAnswer LiveCatalog::start()
{
    if (!watch) {
        // Called in a thread of the platform.
        watch = ProcessDataAccess::watchSystem([this](const SystemEvent &event) {
            QMetaObject::invokeMethod(
                this, [this, event] { note(event); }, Qt::QueuedConnection);
        });
    }
    known.forgetAll();
    present = look();
    return askModules();
}

CatalogAnswer LiveCatalog::askModules()
{
    return needsModules ? known.askModules() : CatalogAnswer();
}

QVector<SourceName> LiveCatalog::sources() const
{
    QVector<SourceName> names;
    names.reserve(present.size());
    for (auto source = present.begin(); source != present.end(); ++source) {
        names.append(source.key());
    }
    return names;
}

void LiveCatalog::note(const SystemEvent &event)
{
    switch (event.kind) {
    case SystemEvent::ServiceAppeared:
    case SystemEvent::ServiceLost:
        noteModule(event.module);
        break;
    case SystemEvent::ProvidersChanged:
        modulesMayDiffer = true;
        break;
    case SystemEvent::BusLost:
        busIsLost = true;
        break;
    case SystemEvent::BusFound:
        busIsLost = false;
        known.forgetAll();
        break;
    }
    lookSoon();
}

// One that is under way is not put off: whoever announces without end would put it off for ever.
void LiveCatalog::lookSoon()
{
    if (!turn.isActive()) {
        turn.start();
    }
}

void LiveCatalog::noteModule(const QString &module)
{
    const bool wanted
        = std::any_of(patterns.begin(), patterns.end(), [&module](const SelectorPattern &pattern) {
              return pattern.matchesModule(module);
          });
    if (wanted) {
        known.forgetModule(module);
    }
    // Without a registry the modules are those that run.
    modulesMayDiffer = modulesMayDiffer || (needsModules && !known.note().isEmpty());
}

// A module that is registered with other selectors than before has other sources.
void LiveCatalog::compareModules()
{
    if (!needsObjects) {
        return;
    }
    const QMap<QString, QStringList> before = typesByModule(known.modules());
    known.forgetModules();
    if (!known.askModules().isOk()) {
        known.forgetAllNames(); // which of them differ will not be told any more
        return;
    }
    const QMap<QString, QStringList> now = typesByModule(known.modules());
    for (auto module = now.begin(); module != now.end(); ++module) {
        if (!before.contains(module.key()) || before.value(module.key()) != *module) {
            known.forgetNames(module.key());
        }
    }
}

void LiveCatalog::noteAnnouncement(const SourceName &source)
{
    const bool wanted
        = std::any_of(patterns.begin(), patterns.end(), [&source](const SelectorPattern &pattern) {
              return pattern.matchesSource(source);
          });
    if (!wanted) {
        return;
    }
    if (!known.knows(source)) {
        known.forgetNames(source.module); // its object may be new too
    }
    known.forgetSource(source);
    lookSoon();
}

void LiveCatalog::update()
{
    if (busIsLost) {
        return;
    }
    QElapsedTimer duration;
    duration.start();
    if (std::exchange(modulesMayDiffer, false)) {
        compareModules();
    }
    const QMap<SourceName, Seen> now = look();
    // The thread is free for as long as it was blocked, however often somebody announces.
    turn.setInterval(int(std::min<qint64>(duration.elapsed(), longestRetry)));
    tell(now);
}

QMap<SourceName, LiveCatalog::Seen> LiveCatalog::look()
{
    QMap<SourceName, Seen> now;
    const CatalogAnswer modules = askModules();
    bool mayAnswerLater = isWorthARetry(modules);
    if (needsObjects) { // what later lists are compared with
        mayAnswerLater = isWorthARetry(known.askModules()) || mayAnswerLater;
    }
    if (!modules.isOk()) {
        now = present;
    }
    for (const SelectorPattern &pattern : patterns) {
        const QVector<CatalogItem> all = known.items(pattern);
        for (const CatalogItem &item : all) {
            CatalogAnswer answer = item.answer;
            if (item.kind == CatalogItem::Source) {
                listen(item.name.module, item.name.object);
                const CatalogSource &source = known.source(item.name);
                answer = source.answer;
                const bool isGone = answer.result == Result::ServiceMissing
                    || (answer.result == Result::ServiceFailed && !known.mayHave(item.name));
                if (!isGone) {
                    now.insert(item.name, {answer, source.description});
                }
            } else if (!answer.isOk() && answer.result != Result::ServiceMissing) {
                keepUnanswered(item, now);
            }
            mayAnswerLater = mayAnswerLater || isWorthARetry(answer);
        }
    }
    tryAgainLater(mayAnswerLater);
    return now;
}

// Sources of a service that gives no answer are not lost: their values are read from memory.
void LiveCatalog::keepUnanswered(const CatalogItem &item, QMap<SourceName, Seen> &now) const
{
    for (auto source = present.begin(); source != present.end(); ++source) {
        const SourceName &name = source.key();
        const bool isIn = name.module == item.name.module
            && (item.kind == CatalogItem::Module || name.object == item.name.object);
        if (isIn) {
            now.insert(name, {item.answer, source->description});
        }
    }
}

void LiveCatalog::listen(const QString &module, const QString &object)
{
    auto &connector = connectors[{module, object}];
    if (!connector.isNull()) {
        return;
    }
    connector = DBusProcessDescriptionConnector::createAndConnect(module, object);
    if (connector.isNull()) {
        return;
    }
    const auto hear = [this, module, object](const QString &instance) {
        noteAnnouncement({module, object, instance});
    };
    connect(connector.data(), &DBusProcessDescriptionConnector::processDataDescriptionChanged, this,
            hear);
    connect(connector.data(), &DBusProcessDescriptionConnector::propertyChanged, this, hear);
}

void LiveCatalog::tell(const QMap<SourceName, Seen> &now)
{
    const QMap<SourceName, Seen> before = std::exchange(present, now);
    QVector<SourceName> appeared;
    QVector<SourceName> changed;
    QVector<SourceName> lost;
    for (auto source = now.begin(); source != now.end(); ++source) {
        const auto old = before.find(source.key());
        if (old == before.end()) {
            appeared.append(source.key());
        } else if (!(old->answer == source->answer) || old->description != source->description) {
            changed.append(source.key());
        }
    }
    for (auto source = before.begin(); source != before.end(); ++source) {
        if (!now.contains(source.key())) {
            lost.append(source.key());
        }
    }
    if (!lost.isEmpty()) {
        Q_EMIT sourcesLost(lost);
    }
    if (!appeared.isEmpty()) {
        Q_EMIT sourcesAppeared(appeared);
    }
    if (!changed.isEmpty()) {
        Q_EMIT sourcesChanged(changed);
    }
}

void LiveCatalog::tryAgainLater(bool wanted)
{
    if (!wanted) {
        retry.stop();
        retry.setInterval(firstRetry);
    } else if (!retry.isActive()) {
        retry.start();
    }
}
