// SPDX-License-Identifier: MIT
// The system around a client: a bus, publishers, and a service that answers as it likes.
#ifndef SOAKWORLD_H
#define SOAKWORLD_H

#include "PrivateBus.h"
#include "PublisherProcess.h"
#include "ScriptedService.h"

#include <QScopedPointer>
#include <QString>
#include <QStringList>

/// One publisher in a process of its own, and what a client must see of it in the end.
struct SoakSource
{
    enum State { Dead, Up, Hung };

    QString module;
    QScopedPointer<PublisherProcess> process;
    State state = Dead;
    int version = 0; // of its properties; stands in each leaf's unit
    int layout = 0; // see SoakWorld::description
    qint64 published = 0; // number of the last publication of this process; 0: none yet
};

/// Does what is asked with processes and bus. Throws std::runtime_error with the reason when
/// something does not do as it must.
class SoakWorld
{
public:
    static constexpr int sourceCount = 3;
    static constexpr int layoutCount = 3;

    SoakWorld();
    ~SoakWorld();
    SoakWorld(const SoakWorld &) = delete;
    SoakWorld &operator=(const SoakWorld &) = delete;

    void startBus();
    void stopBus();
    bool isBusUp() const { return busUp; }

    void start(int source); // of a dead one
    void kill(int source);
    void quit(int source); // of one that is up
    void hang(int source); // of one that is up
    void resume(int source); // of a hung one
    void publish(int source); // of one that is up
    void replaceProperties(int source);
    void replaceDescription(int source, int layout);
    void resetLayout(int source) { sources[source].layout = 0; } // of a dead one

    /// Lets the hostile service answer so from now on, and announce it.
    void answer(const QString &mode, const QString &description, int announcements);
    /// What a publisher is described with at the moment; empty when it does not answer.
    QString servedDescription(int source) const;

    const SoakSource &source(int number) const { return sources[number]; }
    QString hostileModule() const { return hostile; }
    QStringList leafNames(int source) const;
    QStringList buffers() const; // in shared memory

    /// What a leaf holds after a publication: tells which leaf of which source, and when.
    static qint64 valueOf(qint64 publication, int source, const QString &leaf);

    /// Number of a leaf name in such values.
    static int leafNumber(const QString &leaf);

private:
    QJsonObject description(const SoakSource &source) const;
    void startHostile();
    void order(const QStringList &words);

    const QString prefix;
    const QString hostile;
    PrivateBus bus;
    bool busUp = false;
    SoakSource sources[sourceCount];
    QScopedPointer<ScriptedService> hostileService;
    qint64 publications = 0;
};

#endif
