// SPDX-License-Identifier: MIT
// The least that reading a list of process values can cost: what the library is measured against.
#ifndef FLOOR_H
#define FLOOR_H

#include "InProcessSource.h"
#include "ProcessValue.h"
#include "SlotValue.h"

#include <QFile>
#include <QVector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

/// Reads slots of a source without a handler: no lock, no leaf, no call into a library.
class Floor
{
public:
    explicit Floor(const InProcessSource &source)
    {
        const int file = shm_open(QFile::encodeName(source.bufferName()).constData(), O_RDONLY, 0);
        struct stat status = {};
        if (file < 0 || fstat(file, &status) != 0) {
            qFatal("cannot open the buffer");
        }
        size = size_t(status.st_size);
        memory = static_cast<const char *>(mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0));
        close(file);
        const QVector<quint64> offsets = source.offsets();
        slotPointers.reserve(offsets.size());
        for (const quint64 offset : offsets) {
            slotPointers.append(memory + offset);
        }
    }
    ~Floor() { munmap(const_cast<char *>(memory), size); }
    Floor(const Floor &) = delete;
    Floor &operator=(const Floor &) = delete;

    QVector<ProcessValue> read(int start, int count) const
    {
        QVector<ProcessValue> values;
        values.reserve(count);
        const char *const *slot = slotPointers.constData() + start;
        for (int i = 0; i < count; ++i) {
            NumberCopy copy;
            readNumberSlot(slot[i], copy);
            values.append(ProcessValue(QVariant(numberIn<double>(copy)),
                                       errorTypeOf(copy.head.status), copy.head.timestamp));
        }
        return values;
    }

private:
    const char *memory = nullptr;
    size_t size = 0;
    QVector<const char *> slotPointers;
};

#endif
