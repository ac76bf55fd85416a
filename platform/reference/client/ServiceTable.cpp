// SPDX-License-Identifier: MIT
// Who owns which service, who listens to it, and which services hang.
#include "ServiceTable.h"

#include <QStringList>
#include <QVarLengthArray>

#include <utility>

bool ServiceTable::addListener(const QString &service, const QString &path,
                               ServiceListener *listener)
{
    listenersByPath.insert(path, Listening{service, listener});
    const auto entry = entries.constFind(service);
    if (entry == entries.constEnd()) {
        entries.insert(service, Entry());
        return true;
    }
    if (!entry->owner.isEmpty()) {
        listener->servicePresent(ServiceListener::Presence::Found, entry->owner);
    }
    return false;
}

void ServiceTable::removeListener(const QString &path, ServiceListener *listener)
{
    auto it = listenersByPath.find(path);
    while (it != listenersByPath.end() && it.key() == path) {
        it = it->listener == listener ? listenersByPath.erase(it) : std::next(it);
    }
}

bool ServiceTable::isKnown(const QString &service) const
{
    return entries.value(service).known;
}

bool ServiceTable::hasOwner(const QString &service) const
{
    return !entries.value(service).owner.isEmpty();
}

QString ServiceTable::ownerOf(const QString &service) const
{
    return entries.value(service).owner;
}

void ServiceTable::setGivenUp(const QString &service)
{
    const auto entry = entries.find(service);
    if (entry != entries.end() && !entry->known) {
        entry->givenUp = true;
    }
}

void ServiceTable::ownerChanged(const QString &service, const QString &owner)
{
    const auto entry = entries.find(service);
    if (entry != entries.end()) {
        becomeKnown(service, *entry, owner, ServiceListener::Presence::Appeared);
    }
}

void ServiceTable::ownerAnswered(const QString &service, const QString &owner)
{
    const auto entry = entries.find(service);
    if (entry != entries.end() && !entry->known) {
        const bool missedSomething = entry->givenUp || entry->askedAgain;
        becomeKnown(service, *entry, owner,
                    missedSomething ? ServiceListener::Presence::FoundAgain
                                    : ServiceListener::Presence::Found);
    }
}

void ServiceTable::becomeKnown(const QString &service, Entry &entry, const QString &owner,
                               ServiceListener::Presence presence)
{
    entry.known = true;
    entry.givenUp = false;
    entry.probe = 0;
    entry.owner = owner;
    const QVector<Signal> held = std::exchange(entry.held, QVector<Signal>());
    if (owner.isEmpty()) {
        return;
    }
    forEachListener(service,
                    [&](ServiceListener *listener) { listener->servicePresent(presence, owner); });
    for (const Signal &signal : held) {
        if (signal.sender == owner) {
            deliver(service, signal);
        }
    }
}

void ServiceTable::busLost()
{
    for (Entry &entry : entries) {
        entry = Entry();
        entry.known = true;
        entry.askedAgain = true;
    }
}

void ServiceTable::busRestored()
{
    for (Entry &entry : entries) {
        entry.known = false;
    }
}

void ServiceTable::signalReceived(const QString &sender, const QString &path, const QString &member,
                                  const QString &argument)
{
    QStringList served; // several connectors of one service listen to the same path
    for (auto it = listenersByPath.constFind(path);
         it != listenersByPath.constEnd() && it.key() == path; ++it) {
        if (served.contains(it->service)) {
            continue;
        }
        served += it->service;
        Entry &entry = entries[it->service];
        const Signal signal{sender, path, member, argument};
        if (!entry.known) {
            entry.held += signal;
        } else if (entry.owner == sender) {
            deliver(it->service, signal);
        }
    }
}

// A client has a listener for each instance of an object, and all hear of each: the one that has
// asked for the instance does not wait for them.
void ServiceTable::deliver(const QString &service, const Signal &signal)
{
    QVarLengthArray<ServiceListener *, 16> others;
    for (auto it = listenersByPath.constFind(signal.path);
         it != listenersByPath.constEnd() && it.key() == signal.path; ++it) {
        if (it->service != service) {
            continue;
        }
        if (it->listener->hasAskedFor(signal.argument)) {
            it->listener->signalReceived(signal.member, signal.argument);
        } else {
            others.append(it->listener);
        }
    }
    for (ServiceListener *const listener : others) {
        listener->signalReceived(signal.member, signal.argument);
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

bool ServiceTable::isHung(const QString &service) const
{
    return entries.value(service).probe != 0;
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
    if (answered) {
        forEachListener(service,
                        [](ServiceListener *listener) { listener->serviceAnswersAgain(); });
    }
}

template <typename Function>
void ServiceTable::forEachListener(const QString &service, Function function)
{
    for (const Listening &listening : std::as_const(listenersByPath)) {
        if (listening.service == service) {
            function(listening.listener);
        }
    }
}
