// SPDX-License-Identifier: MIT
// The least that a client of a change does with Qt: signal, asynchronous fetch, parse, hash.
#ifndef CHANGEFLOOR_H
#define CHANGEFLOOR_H

#include "Arrival.h"
#include "ChangingService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

class ChangeFloor : public QObject
{
    Q_OBJECT

public:
    /// @param bystander  a service whose announcements are heard and left alone. The handler's
    ///                   connection hears all services: so each announcement reaches both
    ChangeFloor(const ChangingService &service, const ChangingService &bystander)
        : service(service)
    {
        listen(service, SLOT(fetch(QString)));
        listen(bystander, SLOT(ignore(QString)));
    }

    const QHash<QString, QJsonObject> &leaves() const { return all; }

    /// When the last change was taken in.
    Arrival::Clock::time_point end() const { return finished; }

Q_SIGNALS:
    void done();

private Q_SLOTS:
    void ignore(const QString &instance) { Q_UNUSED(instance) }

    void fetch(const QString &instance)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            service.busName(), service.path(), ChangingService::interface(),
            QStringLiteral("GetProcessDataDescription"));
        call << instance << QString();
        auto *watcher
            = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, watcher] { take(watcher); });
    }

private:
    void listen(const ChangingService &source, const char *slot)
    {
        QDBusConnection::sessionBus().connect(
            source.busName(), source.path(), ChangingService::interface(),
            QStringLiteral("ProcessDataDescriptionChanged"), this, slot);
    }

    void take(QDBusPendingCallWatcher *watcher)
    {
        const QDBusPendingReply<QString> reply = *watcher;
        all.clear();
        const QJsonArray elements = QJsonDocument::fromJson(reply.value().toUtf8())
                                        .object()
                                        .value(QLatin1String("elements"))
                                        .toArray();
        for (const QJsonValue &element : elements) {
            const QJsonObject leaf = element.toObject();
            all.insert(leaf.value(QLatin1String("name")).toString(), leaf);
        }
        finished = Arrival::Clock::now();
        watcher->deleteLater();
        Q_EMIT done();
    }

    const ChangingService &service;
    QHash<QString, QJsonObject> all;
    Arrival::Clock::time_point finished;
};

#endif
