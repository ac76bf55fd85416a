// SPDX-License-Identifier: MIT
// A buffer file whose bytes come from a fuzzer's input, and changes to it.
#ifndef FUZZBUFFER_H
#define FUZZBUFFER_H

#include "LifeRecord.h"
#include "ProcessDataDescription.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// One file in shared memory for this process, and a sound description of it.
class FuzzBuffer
{
public:
    static FuzzBuffer &instance();
    FuzzBuffer(const FuzzBuffer &) = delete;
    FuzzBuffer &operator=(const FuzzBuffer &) = delete;

    /// What the bytes of an input are, and what the record of the publisher's life says.
    enum Flag : uint8_t {
        SoundHeader = 1, // only the lock's word of the header is the input's
        ShortFile = 4, // the file ends where the input does
        OwnRecord = 16, // the record is the input's, before the buffer; else it is a sound one
        Dead = 32,
        Retired = 64,
    };

    /// Makes the files anew.
    ///
    /// @returns the number of bytes of the input that went into them
    size_t fill(const uint8_t *data, size_t size, uint8_t flags);

    /// Lets the clean-up for publishers and the list for tools see the files, then removes them.
    void remove();

    BufferHeader &header() const { return *reinterpret_cast<BufferHeader *>(base); }
    char *memory() const { return base; }
    LifeRecord &life() const { return *record; }
    size_t size() const { return bufferSize; }
    QString description() const { return text; }
    const QVector<LeafDescription> &leaves() const { return parsed.leaves; }
    const QStringList &urls() const { return leafUrls; }

private:
    FuzzBuffer();
    ~FuzzBuffer();
    void repairHeader(const BufferHeader &input);
    size_t fillRecord(const uint8_t *data, size_t size, uint8_t flags);
    void *makeFile(const QByteArray &path, size_t size, int &file) const;

    ProcessDataDescription parsed;
    QByteArray prefix;
    QByteArray path;
    QString text;
    QStringList leafUrls;
    size_t bufferSize = 0;
    char *base = nullptr; // this side's mappings; the platform makes its own
    LifeRecord *record = nullptr;
};

/// Changes to the bytes of buffer and record, which follow one another, read from what an input has left: position (2 bytes), length (1
/// byte), content.
class FuzzChanges
{
public:
    FuzzChanges(const uint8_t *data, size_t size)
        : data(data)
        , left(size)
    {
    }

    /// @returns false when there is no further one
    bool applyNext();

private:
    const uint8_t *data;
    size_t left;
};

#endif
