// SPDX-License-Identifier: MIT
// Follows what the system publishes.
#ifndef LIVECATALOG_H
#define LIVECATALOG_H

#include "Catalog.h"

#include <QObject>
#include <QSharedPointer>
#include <QTimer>

#include <memory>

class DBusProcessDescriptionConnector;

/// Keeps a catalog up to date and tells which sources came, went and changed.
///
/// It hears of services, of the list of providers and of announcements, and asks again only for
/// what they speak of: no call is made while nothing changes. Who did not answer in time, or with an
/// error as long as it does not serve its objects yet, is asked again after a second, then after
/// longer and longer, at most a minute.
///
/// After a look at the system it rests for as long as that took, so that whoever announces without
/// end does not keep the thread busy.
///
/// Of a source that is neither announced nor registered with another selector type it learns
/// when its service next appears.
///
/// Threads: one with an event loop, which its calls block: each at most for the platform's time limit.
class LiveCatalog : public QObject
{
    Q_OBJECT

public:
    /// @param patterns  what to follow; none: everything
    explicit LiveCatalog(const QVector<SelectorPattern> &patterns = {}, QObject *parent = nullptr);
    ~LiveCatalog() override;

    /// Asks for all that the patterns mean and begins to follow it; tells nothing of what is there
    /// already. To be called again when there was no bus.
    ///
    /// @returns how the question for the modules ended, where one was needed
    CatalogAnswer start();

    /// Whether changes are heard; not before start(), nor on a platform that cannot tell.
    bool isFollowing() const { return watch != nullptr; }

    /// The sources that are there, sorted, also those whose description cannot be had. While the
    /// bus is away, or a service gives no answer, what was there stays.
    QVector<SourceName> sources() const;

    /// What is known. What it lacks is asked for; nothing is to be forgotten by hand.
    Catalog &catalog() { return known; }

Q_SIGNALS:
    void sourcesAppeared(const QVector<SourceName> &sources);
    void sourcesLost(const QVector<SourceName> &sources);

    /// Their descriptions differ from before, or can or cannot be had any more.
    void sourcesChanged(const QVector<SourceName> &sources);

private:
    struct Seen
    {
        CatalogAnswer answer;
        QString description;
    };

    void note(const ProcessDataAccess::SystemEvent &event);
    void noteModule(const QString &module);
    void noteAnnouncement(const SourceName &source);
    CatalogAnswer askModules();
    void lookSoon();
    void update();
    void compareModules();
    QMap<SourceName, Seen> look();
    void keepUnanswered(const CatalogItem &item, QMap<SourceName, Seen> &now) const;
    void listen(const QString &module, const QString &object);
    void tell(const QMap<SourceName, Seen> &now);
    void tryAgainLater(bool wanted);

    const QVector<SelectorPattern> patterns;
    Catalog known;
    QMap<SourceName, Seen> present;
    QMap<QPair<QString, QString>, QSharedPointer<DBusProcessDescriptionConnector>> connectors;
    QTimer turn; // gathers what comes at once
    QTimer retry;
    const bool needsModules; // any pattern that does not spell its module out
    const bool
        needsObjects; // any that does not spell its object out: the registry tells of new ones
    bool modulesMayDiffer = false;
    bool busIsLost = false;
    std::unique_ptr<ProcessDataAccess::SystemWatch> watch; // ends first: it calls this object
};

Q_DECLARE_METATYPE(SourceName)

#endif
