// SPDX-License-Identifier: MIT
// A buffer file whose bytes come from a fuzzer's input, and changes to it.
#include "FuzzBuffer.h"

#include "FuzzInput.h"

#include "BufferFiles.h"
#include "BufferName.h"
#include "Leftovers.h"
#include "SelectorUrlBuilder.h"
#include "SharedLock.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr quint64 generation = 7;
constexpr char leavesAndBuffer[] = R"({"format":"process-data-description/1",
    "module":"%1","object":"Object","instance":"1",
    "buffer":{"name":"%2","generation":7,"size":704,"ownerUid":%3},
    "elements":[{"name":"double","type":"float64","offset":192,"minimum":-5,"maximum":5},
        {"name":"flag","type":"bool","offset":256},
        {"name":"small","type":"int16","offset":320},
        {"name":"large","type":"uint64","offset":384},
        {"name":"text","type":"string","capacity":20,"offset":448},
        {"name":"bytes","type":"bytes","capacity":37,"offset":576}]})";

}

FuzzBuffer &FuzzBuffer::instance()
{
    static FuzzBuffer buffer;
    return buffer;
}

FuzzBuffer::FuzzBuffer()
{
    const QString module = QString("Fuzz%1").arg(getpid());
    prefix = bufferNamePrefix({module, "Object", "1"});
    const QString name = '/' + QString::fromUtf8(prefix) + QString::number(generation);
    path = sharedMemoryPath(name);
    text = QString(leavesAndBuffer).arg(module, name).arg(geteuid());
    QString error;
    const auto result = parseDescription(text.toUtf8(), DescriptionForm::Published, error);
    if (!result) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
    }
    FUZZ_REQUIRE(result.has_value());
    parsed = *result;
    bufferSize = size_t(parsed.buffer->size);
    for (const LeafDescription &leaf : parsed.leaves) {
        leafUrls.append(selectorUrl(module, "Object", "1", leaf.path));
    }
}

FuzzBuffer::~FuzzBuffer()
{
    remove();
}

void *FuzzBuffer::makeFile(const QByteArray &name, size_t size, int &file) const
{
    file = open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    FUZZ_REQUIRE(file != -1 && ftruncate(file, off_t(size)) == 0);
    void *mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    FUZZ_REQUIRE(mapped != MAP_FAILED);
    return mapped;
}

size_t FuzzBuffer::fillRecord(const uint8_t *data, size_t size, uint8_t flags)
{
    int file = -1;
    record = static_cast<LifeRecord *>(makeFile(path + lifeNameEnd, sizeof(LifeRecord), file));
    close(file);
    if ((flags & OwnRecord) != 0) {
        const size_t used = std::min(size, sizeof(LifeRecord));
        std::memcpy(static_cast<void *>(record), data, used);
        return used;
    }
    std::copy(std::begin(lifeMagic), std::end(lifeMagic), record->magic);
    record->layoutVersion = bufferLayoutVersion;
    record->recordSize = sizeof(LifeRecord);
    record->generation = generation;
    record->abiTag = bufferAbiTag;
    record->state = (flags & Retired) != 0 ? BufferRetired : BufferActive;
    constexpr quint32 ownerDied = 0x40000000;
    const quint32 word = (flags & Dead) != 0 ? ownerDied : 1;
    std::memcpy(record->lock.room, &word, sizeof(word));
    const QByteArray name = prefix + QByteArray::number(generation);
    std::copy(name.cbegin(), name.cend(), record->bufferName);
    return 0;
}

size_t FuzzBuffer::fill(const uint8_t *data, size_t size, uint8_t flags)
{
    remove();
    const size_t usedByRecord = fillRecord(data, size, flags);
    int file = -1;
    base = static_cast<char *>(makeFile(path, bufferSize, file));
    const size_t used = std::min(size - usedByRecord, bufferSize);
    std::memcpy(base, data + usedByRecord, used);
    if ((flags & SoundHeader) != 0) {
        BufferHeader input{};
        std::memcpy(&input, base, sizeof(input));
        repairHeader(input);
    }
    if ((flags & ShortFile) != 0) {
        FUZZ_REQUIRE(ftruncate(file, off_t(used)) == 0);
    }
    close(file);
    return usedByRecord + used;
}

void FuzzBuffer::repairHeader(const BufferHeader &input)
{
    BufferHeader sound{};
    std::copy(std::begin(bufferMagic), std::end(bufferMagic), sound.magic);
    sound.layoutVersion = bufferLayoutVersion;
    sound.headerSize = sizeof(BufferHeader);
    sound.bufferSize = bufferSize;
    sound.generation = generation;
    sound.slotCount = quint32(parsed.leaves.size());
    sound.abiTag = bufferAbiTag;
    FUZZ_REQUIRE(initializeSharedLock(sound.writersLock) == 0);
    std::memcpy(sound.writersLock.room, input.writersLock.room, sizeof(quint32));
    std::memcpy(base, &sound, sizeof(sound));
}

void FuzzBuffer::remove()
{
    if (base == nullptr) {
        return;
    }
    munmap(base, bufferSize);
    munmap(record, sizeof(LifeRecord));
    base = nullptr;
    BufferFile file;
    inspectBufferFile(QString::fromUtf8(path), file);
    inspectBufferFile(QString::fromUtf8(path + lifeNameEnd), file);
    removeLeftovers(prefix);
    unlink(path.constData());
    unlink((path + lifeNameEnd).constData());
}

bool FuzzChanges::applyNext()
{
    constexpr size_t headSize = 3;
    constexpr unsigned bitsOfByte = 8;
    if (left < headSize) {
        return false;
    }
    const FuzzBuffer &buffer = FuzzBuffer::instance();
    const size_t all = buffer.size() + sizeof(LifeRecord);
    const size_t position = (data[0] | unsigned(data[1]) << bitsOfByte) % all;
    const bool inBuffer = position < buffer.size();
    const size_t room = inBuffer ? buffer.size() - position : all - position;
    const size_t length = std::min({size_t(data[2]), left - headSize, room});
    char *life = reinterpret_cast<char *>(&buffer.life());
    std::memcpy(inBuffer ? buffer.memory() + position : life + position - buffer.size(),
                data + headSize, length);
    data += headSize + length;
    left -= headSize + length;
    return true;
}
