// SPDX-License-Identifier: MIT
// The publisher's side of a shared-memory buffer: create, publish, see client writes, retire.
#ifndef PUBLISHEDBUFFER_H
#define PUBLISHEDBUFFER_H

#include "ProcessDataDescription.h"
#include "ProcessValue.h"

#include <QPair>
#include <QString>
#include <QVector>

#include <memory>

class PublishedBufferPrivate;

/// One generation of one instance's buffer, made and owned by its publisher.
///
/// Threads: one at a time; other threads and processes read and write the same memory.
class PublishedBuffer
{
public:
    /// Removes what dead publishers of the instance left, lays the leaves out and creates the
    /// buffer.
    ///
    /// @param description  in: leaves without offsets; out: offsets and buffer filled in. Left
    ///                     alone on failure.
    /// @param error        receives one sentence that names what is wrong and errno's text
    /// @returns the active buffer; null on failure, with nothing left behind
    static std::unique_ptr<PublishedBuffer> create(ProcessDataDescription &description,
                                                   QString &error);

    /// Retires the buffer if that was not done yet.
    ~PublishedBuffer();
    PublishedBuffer(const PublishedBuffer &) = delete;
    PublishedBuffer &operator=(const PublishedBuffer &) = delete;

    /// Writes values under one lock; checks all before the first is written.
    ///
    /// @param values  leaf (position in the description) and value; an invalid QVariant keeps the
    ///                stored value and only sets error type and time
    bool publish(const QVector<QPair<int, ProcessValue>> &values, QString &error);

    /// What the buffer holds for a leaf now.
    ProcessValue value(int leaf) const;

    /// Copies value, error type and time of a leaf of another buffer as they are.
    bool carryOver(int leaf, const PublishedBuffer &from, int fromLeaf);

    /// Leaves that somebody else wrote since the last call, in ascending order.
    QVector<int> takeClientWrites();

    /// Takes changed limits and other properties of the same layout.
    void setLeafDescriptions(const QVector<LeafDescription> &leaves);

    /// Makes the revision differ for whoever looks at it: to be called when a changed description is
    /// served and before it is announced.
    void countChange();

    /// What the next countChange() raises the revision to; the description that is served then names
    /// it.
    quint32 nextRevision() const;

    /// Marks the buffer as retired, gives up the liveness lock and removes the name. Readers that
    /// are attached keep the last values.
    void retire();

private:
    explicit PublishedBuffer(std::unique_ptr<PublishedBufferPrivate> state);
    const std::unique_ptr<PublishedBufferPrivate> d;
};

#endif
