// SPDX-License-Identifier: MIT
// Fuzzes shared-memory buffers: attached, read and written, changed between reads and during them.
#include "FuzzBuffer.h"
#include "FuzzInput.h"

#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"

#include <atomic>
#include <thread>

namespace {

// Meaning of the first byte of an input, beside FuzzBuffer's; the bytes of the files follow, and changes
// after them.
enum Flag : uint8_t {
    ChangeDuringReads = 2,
    Write = 8,
};
constexpr uint8_t soundHeader = FuzzBuffer::SoundHeader;
constexpr uint8_t shortFile = FuzzBuffer::ShortFile;
constexpr uint8_t ownRecord = FuzzBuffer::OwnRecord;

using Leaves = QVector<QSharedPointer<ProcessDataValue>>;

void requireSoundValue(const LeafDescription &leaf, const ProcessValue &value)
{
    FUZZ_REQUIRE(value.getErrorType() >= ProcessDataDefinitions::NoError
                 && value.getErrorType() <= ProcessDataDefinitions::OutOfRange);
    const QVariant content = value.getValue();
    if (leaf.type == ValueType::String && content.isValid()) {
        FUZZ_REQUIRE(content.userType() == QMetaType::QString
                     && content.toString().size() <= int(leaf.capacity));
    } else if (leaf.type == ValueType::Bytes && content.isValid()) {
        FUZZ_REQUIRE(content.userType() == QMetaType::QByteArray
                     && content.toByteArray().size() <= int(leaf.capacity));
    } else {
        FUZZ_REQUIRE(!content.isValid() || content.userType() < int(QMetaType::QChar)
                     || content.userType() == QMetaType::Float);
    }
}

void readAll(const Leaves &leaves)
{
    for (int i = 0; i < leaves.size(); ++i) {
        ProcessValue value(ProcessDataDefinitions::NoValue);
        if (leaves.at(i)->getValue(value, false)) {
            requireSoundValue(FuzzBuffer::instance().leaves().at(i), value);
        }
    }
}

// A held lock would only be waited for; other kinds of hostile locks are the input's.
void writeAll(const Leaves &leaves)
{
    constexpr quint32 ownerDied = 0x40000000;
    for (const auto &leaf : leaves) {
        const quint32 word = lockWord(FuzzBuffer::instance().header().writersLock);
        if (word == 0 || (word & ownerDied) != 0) {
            leaf->setValue(ProcessValue(QVariant(1)));
            leaf->setValue(ProcessValue(QVariant(QStringLiteral("written"))));
        }
    }
}

void changeDuringReads(const Leaves &leaves, const FuzzChanges &changes)
{
    constexpr int rounds = 20;
    std::atomic<bool> finished{false};
    std::thread changer([&] {
        for (int i = 0; i < rounds; ++i) {
            for (FuzzChanges left = changes; left.applyNext();) { }
        }
        finished = true;
    });
    while (!finished) {
        readAll(leaves);
    }
    changer.join();
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    dropWarnings();
    if (size == 0) {
        return 0;
    }
    FuzzBuffer &buffer = FuzzBuffer::instance();
    const uint8_t flags = data[0];
    const size_t used = buffer.fill(data + 1, size - 1, flags);
    {
        ProcessDataManager manager;
        const auto root = manager.createProcessDataFromJson(buffer.description(), "pdd",
                                                            ProcessDataManager::InitTypeAttach);
        FUZZ_REQUIRE(!root.isNull());
        Leaves leaves;
        for (const QString &url : buffer.urls()) {
            leaves.append(root->getLeafProcessDataValue(url));
            FUZZ_REQUIRE(!leaves.last().isNull());
        }
        ProcessValue value(ProcessDataDefinitions::NoValue);
        const bool attached = leaves.first()->getValue(value, false);
        FUZZ_REQUIRE(attached || (flags & (soundHeader | shortFile | ownRecord)) != soundHeader);
        readAll(leaves);
        if ((flags & shortFile) == 0) {
            FuzzChanges changes(data + 1 + used, size - 1 - used);
            const FuzzChanges all = changes;
            while (changes.applyNext()) {
                readAll(leaves);
                manager.isBufferValid();
            }
            if ((flags & Write) != 0) {
                writeAll(leaves);
                readAll(leaves);
            }
            if ((flags & ChangeDuringReads) != 0) {
                changeDuringReads(leaves, all);
            }
        }
    }
    buffer.remove();
    return 0;
}
