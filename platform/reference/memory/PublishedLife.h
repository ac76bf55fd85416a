// SPDX-License-Identifier: MIT
// The publisher's side of the record that tells whether it lives.
#ifndef PUBLISHEDLIFE_H
#define PUBLISHEDLIFE_H

#include "ForkedChild.h"
#include "LifeRecord.h"

#include <QByteArray>
#include <QString>

#include <memory>

/// One record, from before its buffer has a name until after that name is gone: whatever instruction
/// the publisher dies at, no buffer is without a record that tells of the death.
///
/// Threads: one at a time.
class PublishedLife
{
public:
    /// Makes the record and names it; the state is BufferBuilding.
    ///
    /// @param bufferPath  of the buffer that will be, ending in its generation
    /// @param reason      receives an errno value on failure: EEXIST when the name is taken
    /// @param error       receives one sentence on failure
    static std::unique_ptr<PublishedLife> create(const QByteArray &bufferPath, quint64 generation,
                                                 int &reason, QString &error);

    /// Gives up what was not given up yet; in a forked child, nothing.
    ~PublishedLife();
    PublishedLife(const PublishedLife &) = delete;
    PublishedLife &operator=(const PublishedLife &) = delete;

    /// Tells that the buffer has its name.
    void activate() { setBufferState(*record, BufferActive); }

    /// Tells of a change that is served now and announced next.
    void countChange();

    quint32 revision() const { return record->revision; }

    /// Tells that the buffer is given up.
    void retire();

    /// Comes after the name of the buffer is gone.
    void removeName();

private:
    PublishedLife(LifeRecord *record, QByteArray path);

    LifeRecord *const record;
    const QByteArray path;
    const HomeProcess home; // a forked child must not end its parent's life
    bool held = false;
    bool named = false;
};

#endif
