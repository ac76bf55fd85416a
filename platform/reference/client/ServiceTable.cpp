// SPDX-License-Identifier: MIT
// Who owns which service, who listens to it for what, and what services that hang owe.
#include "ServiceTable.h"

#include <utility>

bool ServiceTable::addListener(ServiceListener *listener)
{
    listeners[listener->path] += Listening{listener, {}};
    const auto entry = entries.constFind(listener->service);
    if (entry == entries.constEnd()) {
        entries.insert(listener->service, Entry());
        return true;
    }
    if (!entry->owner.isEmpty()) {
        listener->hear({ServiceEvent::Kind::Found, entry->owner});
    }
    return false;
}

QVector<PreparedDescriptionPointer> ServiceTable::removeListener(const ServiceListener *listener)
{
    QVector<PreparedDescriptionPointer> expected;
    QVector<Listening> &present = listeners[listener->path];
    for (int i = present.size() - 1; i >= 0; --i) {
        if (present.at(i).listener == listener) {
            const Listening removed = present.takeAt(i);
            for (const Asked &asked : removed.asked) {
                expected += asked.expected;
            }
        }
    }
    if (present.isEmpty()) {
        listeners.remove(listener->path);
    }
    return expected;
}

ServiceTable::Listening *ServiceTable::find(const QString &path, const ServiceListener *listener)
{
    const auto present = listeners.find(path);
    if (present != listeners.end()) {
        for (Listening &each : *present) {
            if (each.listener == listener) {
                return &each;
            }
        }
    }
    return nullptr;
}

PreparedDescriptionPointer ServiceTable::noteAsked(const ServiceListener *listener,
                                                   const QString &instance)
{
    return find(listener->path, listener)->asked[instance].expected;
}

PreparedDescriptionPointer ServiceTable::expect(const ServiceListener *listener,
                                                const QString &instance,
                                                const PreparedDescriptionPointer &description)
{
    return std::exchange(find(listener->path, listener)->asked[instance].expected, description);
}

QStringList ServiceTable::askedBy(const ServiceListener *listener)
{
    return find(listener->path, listener)->asked.keys();
}

void ServiceTable::noteOwed(const QString &path, const ServiceListener *listener,
                            const QString &instance)
{
    if (Listening *const present = find(path, listener)) {
        present->asked[instance].owed = true;
    }
}

bool ServiceTable::isKnown(const QString &service) const
{
    const Awaits awaits = entries.value(service).awaits;
    return awaits == Awaits::Bus || awaits == Awaits::Changes;
}

void ServiceTable::setGivenUp(const QString &service)
{
    const auto entry = entries.find(service);
    if (entry != entries.end() && entry->awaits == Awaits::FirstAnswer) {
        entry->awaits = Awaits::LateAnswer;
    }
}

void ServiceTable::ownerChanged(const QString &service, const QString &owner)
{
    const auto entry = entries.find(service);
    if (entry != entries.end()) {
        becomeKnown(service, *entry, owner, ServiceEvent::Kind::Appeared);
    }
}

void ServiceTable::ownerAnswered(const QString &service, const QString &owner)
{
    const auto entry = entries.find(service);
    if (entry != entries.end() && !isKnown(service)) {
        becomeKnown(service, *entry, owner,
                    entry->awaits == Awaits::LateAnswer ? ServiceEvent::Kind::FoundAgain
                                                        : ServiceEvent::Kind::Found);
    }
}

void ServiceTable::becomeKnown(const QString &service, Entry &entry, const QString &owner,
                               ServiceEvent::Kind kind)
{
    const Entry before = std::exchange(entry, {Awaits::Changes, owner, {}, 0});
    if (owner.isEmpty()) {
        return;
    }
    forEachListening(service, [&](Listening &each) {
        for (Asked &asked : each.asked) {
            asked.owed = false; // by an earlier owner: settled by what this one says next
        }
        each.listener->hear({kind, owner});
    });
    for (const ServiceSignal &signal : before.held) {
        if (signal.sender == owner) {
            deliver(service, signal);
        }
    }
}

void ServiceTable::busLost()
{
    for (Entry &entry : entries) {
        entry = {Awaits::Bus, {}, {}, 0};
    }
}

void ServiceTable::busRestored()
{
    for (Entry &entry : entries) {
        if (entry.awaits != Awaits::FirstAnswer) {
            entry.awaits = Awaits::LateAnswer;
        }
    }
}

void ServiceTable::signalReceived(const ServiceSignal &signal)
{
    QStringList served; // several connectors of one service listen to the same path
    const QVector<Listening> present = listeners.value(signal.path);
    for (const Listening &each : present) {
        const QString &service = each.listener->service;
        if (served.contains(service)) {
            continue;
        }
        served += service;
        Entry &entry = entries[service];
        if (!isKnown(service)) {
            entry.held += signal;
        } else if (entry.owner == signal.sender) {
            deliver(service, signal);
        }
    }
}

// A client has a listener for each instance of an object, and all hear of each: the one that has
// asked for the instance does not wait for them.
void ServiceTable::deliver(const QString &service, const ServiceSignal &signal) const
{
    const QVector<Listening> present = listeners.value(signal.path);
    for (const bool asked : {true, false}) {
        for (const Listening &each : present) {
            if (each.listener->service == service
                && each.asked.contains(signal.argument) == asked) {
                each.listener->hear({ServiceEvent::Kind::Signal, signal.argument, signal.member});
            }
        }
    }
}

quint64 ServiceTable::setHung(const QString &service)
{
    const auto entry = entries.find(service);
    if (entry == entries.end() || entry->probe != 0 || entry->owner.isEmpty()) {
        return 0;
    }
    entry->probe = ++lastProbe;
    return entry->probe;
}

bool ServiceTable::isUnderWay(const QString &service, quint64 probe) const
{
    return entries.value(service).probe == probe;
}

void ServiceTable::probeEnded(const QString &service, quint64 probe, bool answered)
{
    const auto entry = entries.find(service);
    if (entry == entries.end() || entry->probe != probe) {
        return;
    }
    entry->probe = 0;
    if (!answered) {
        return;
    }
    forEachListening(service, [](Listening &each) {
        for (auto it = each.asked.begin(); it != each.asked.end(); ++it) {
            if (std::exchange(it->owed, false)) {
                each.listener->hear({ServiceEvent::Kind::AnswersAgain, it.key()});
            }
        }
    });
}

template <typename Function>
void ServiceTable::forEachListening(const QString &service, Function function)
{
    for (QVector<Listening> &present : listeners) {
        for (Listening &each : present) {
            if (each.listener->service == service) {
                function(each);
            }
        }
    }
}
