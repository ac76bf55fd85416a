// SPDX-License-Identifier: MIT
// Changes the script of a source and emits its announcements.
#include "ScriptedSource.h"

#include "DBusProcessDescriptionConnector.h"
#include "Script.h"
#include "SourceScript.h"

#include <QUrl>

namespace {

const int fetchErrorCode = 1;

QString encoded(const QString &part)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(part));
}

using Announcement = void (DBusProcessDescriptionConnector::*)(const QString &);

void announce(const ServiceScript &service, Announcement announcement, const QString &instance)
{
    const auto connectors = service.connectors; // slots may end connectors
    for (const auto &connector : connectors) {
        if (connector != nullptr) {
            Q_EMIT(connector.data()->*announcement)(instance);
        }
    }
}

} // namespace

QString SourceScript::fetchProblem() const
{
    if (service->gone) {
        return QStringLiteral("the service is gone");
    }
    return fetchFails ? fetchError : QString();
}

int SourceScript::endRepliesFrom(int first)
{
    const QVector<ScriptedReply> begun = replies.mid(first); // slots may begin more
    for (ScriptedReply reply : begun) {
        const QString problem = fetchProblem();
        if (problem.isNull()) {
            reply.finish(description);
        } else {
            reply.fail(ErrorContainer(fetchErrorCode, problem));
        }
    }
    return begun.size();
}

ScriptedSource::ScriptedSource(const QSharedPointer<SourceScript> &script)
    : d(script)
{
}

ScriptedSource &ScriptedSource::leaf(const QString &path, const QVariant &value)
{
    d->leaves[path].holds(value);
    return *this;
}

ScriptedLeaf &ScriptedSource::at(const QString &path)
{
    const auto found = d->leaves.find(path);
    if (found == d->leaves.end()) {
        qFatal("ScriptedSource::at: %s has no leaf \"%s\"; add it with leaf() first",
               qPrintable(d->moduleName + QLatin1Char('/') + d->objectName + QLatin1Char('/')
                          + d->instance),
               qPrintable(path));
    }
    return *found;
}

QString ScriptedSource::urlOf(const QString &path) const
{
    QStringList parts{encoded(d->moduleName), encoded(d->objectName), encoded(d->instance)};
    const QStringList names = path.split(QLatin1Char('/'));
    for (const QString &name : names) {
        parts.append(encoded(name));
    }
    return Script::names().urlScheme + QStringLiteral("://") + parts.join(QLatin1Char('/'));
}

void ScriptedSource::disappears()
{
    d->service->gone = true;
    d->service->interfaceValid = false;
}

int ScriptedSource::returns()
{
    d->service->gone = false;
    d->service->interfaceValid = true;
    ++d->service->session;
    int fetches = 0;
    const auto instances = Script::instancesOf(d->service);
    for (const auto &instance : instances) {
        fetches += SourceScript::handleOf(instance).changeDescription();
    }
    return fetches;
}

int ScriptedSource::changeDescription()
{
    const int first = d->replies.size();
    announceDescription();
    return d->endRepliesFrom(first);
}

int ScriptedSource::changeProperties()
{
    const int first = d->replies.size();
    announceProperties();
    return d->endRepliesFrom(first);
}

ScriptedSource &ScriptedSource::fetchesFail(const QString &message)
{
    d->fetchFails = true;
    d->fetchError = message;
    return *this;
}

ScriptedSource &ScriptedSource::fetchesGive(const QVariant &newDescription)
{
    d->fetchFails = false;
    d->description = newDescription;
    Script::describes(newDescription, *d);
    return *this;
}

QVariant ScriptedSource::description() const
{
    return d->description;
}

ScriptedSource &ScriptedSource::connectorMissing(bool on)
{
    d->service->connectorMissing = on;
    return *this;
}

ScriptedSource &ScriptedSource::interfaceInvalid(bool on)
{
    d->service->interfaceValid = !on;
    return *this;
}

ScriptedSource &ScriptedSource::bufferInvalid(bool on)
{
    d->bufferValid = !on;
    return *this;
}

ScriptedSource &ScriptedSource::rootMissing(bool on)
{
    d->hasRoot = !on;
    return *this;
}

ScriptedSource &ScriptedSource::asynchronousCallsMissing(bool on)
{
    d->placesCalls = !on;
    return *this;
}

void ScriptedSource::announceDescription()
{
    announceDescription(d->instance);
}

void ScriptedSource::announceDescription(const QString &instanceName)
{
    announce(*d->service, &DBusProcessDescriptionConnector::processDataDescriptionChanged,
             instanceName);
}

void ScriptedSource::announceProperties()
{
    announceProperties(d->instance);
}

void ScriptedSource::announceProperties(const QString &instanceName)
{
    announce(*d->service, &DBusProcessDescriptionConnector::propertyChanged, instanceName);
}

ScriptedReply ScriptedSource::reply(int position) const
{
    return d->replies.value(position);
}

int ScriptedSource::replyCount() const
{
    return d->replies.size();
}
