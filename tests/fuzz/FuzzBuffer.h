// SPDX-License-Identifier: MIT
// A buffer file whose bytes come from a fuzzer's input, and changes to it.
#ifndef FUZZBUFFER_H
#define FUZZBUFFER_H

#include "BufferLayout.h"
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

    /// Makes the file anew.
    ///
    /// @param soundHeader  keeps all of a right header but state and the locks' words
    /// @param shortFile    ends the file with the input, where that is shorter than the buffer
    /// @returns the number of bytes of the input that went into the file
    size_t fill(const uint8_t *data, size_t size, bool soundHeader, bool shortFile);

    /// Lets the clean-up for publishers see the file, then removes it.
    void remove();

    BufferHeader &header() const { return *reinterpret_cast<BufferHeader *>(base); }
    char *memory() const { return base; }
    size_t size() const { return bufferSize; }
    QString description() const { return text; }
    const QVector<LeafDescription> &leaves() const { return parsed.leaves; }
    const QStringList &urls() const { return leafUrls; }

private:
    FuzzBuffer();
    ~FuzzBuffer();
    void repairHeader(const BufferHeader &input);

    ProcessDataDescription parsed;
    QByteArray prefix;
    QByteArray path;
    QString text;
    QStringList leafUrls;
    size_t bufferSize = 0;
    char *base = nullptr; // this side's mapping; the platform makes its own
};

/// Changes to the buffer's bytes, read from what an input has left: position (2 bytes), length (1
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
