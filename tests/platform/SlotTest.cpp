// SPDX-License-Identifier: MIT
// One slot: which copy is read, what broken content costs, and that a value is never torn.
#include "SlotValue.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

// Memory of a slot, laid out as in a buffer.
template <size_t Size> struct alignas(64) SlotMemory
{
    char bytes[Size] = {};
    quint32 *sequence() { return reinterpret_cast<quint32 *>(bytes); }
};

constexpr quint32 numberSize = 8;
constexpr quint32 textCapacity = 200;
constexpr int enough = 1000; // changes that a reader must see to have met a running writer
constexpr std::chrono::seconds readingLimit{30};

SlotHead head(quint32 status, quint32 length, qint64 timestamp)
{
    return {status, length, timestamp};
}

void writeNumber(char *slot, quint64 number, quint32 status = 0, qint64 timestamp = 1)
{
    writeSlot(slot, numberSize, head(status, sizeof(number), timestamp),
              reinterpret_cast<const char *>(&number));
}

QVariant numberOf(ValueType type, quint32 size, const NumberCopy &copy)
{
    ProcessValue value(ProcessDataDefinitions::NoValue);
    setFromNumber(value, type, size, copy, ProcessDataDefinitions::NoError);
    return value.getValue();
}

}

class SlotTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theClockGoesOnAfterJanuary2038();
    void theLastWriteIsRead();
    void aWriteLeavesTheOtherCopyAlone();
    void theSequenceWrapsAround();
    void aTextOfAnyLengthUpToTheCapacityIsReadBack_data();
    void aTextOfAnyLengthUpToTheCapacityIsReadBack();
    void aLengthBeyondTheCapacityIsCutDown();
    void aSlotWithoutValueReadsAsAnInvalidValue();
    void anUnknownStatusMeansThatNoValueWasObtained();
    void aNumberOfAWrongLengthReadsAsAnInvalidValue();
    void aNumberReplacesWhatAValueHeldBefore();
    void aReaderGivesUpOnAWriterThatNeverStops();
    void numbersAreDecodedAsByTheCodec_data();
    void numbersAreDecodedAsByTheCodec();
    void numbersAreNeverTorn();
    void textsAreNeverTorn();
};

void SlotTest::theClockGoesOnAfterJanuary2038()
{
    QCOMPARE(sizeof(timespec::tv_sec), sizeof(qint64)); // also where a word has 32 bits
}

void SlotTest::theLastWriteIsRead()
{
    SlotMemory<64> slot;
    for (quint64 number = 1; number < 5; ++number) {
        writeNumber(slot.bytes, number, quint32(number), qint64(100 + number));

        NumberCopy copy;
        QVERIFY(readNumberSlot(slot.bytes, copy));
        QCOMPARE(numberIn<quint64>(copy), number);
        QCOMPARE(copy.head.status, quint32(number));
        QCOMPARE(copy.head.timestamp, qint64(100 + number));
        QCOMPARE(*slot.sequence(), quint32(number));
    }
}

void SlotTest::aWriteLeavesTheOtherCopyAlone()
{
    SlotMemory<64> slot;
    writeNumber(slot.bytes, 1);
    const QByteArray valid(slot.bytes + slotCopyOffset(1, numberSize), sizeof(NumberCopy));

    writeNumber(slot.bytes, 2);

    QCOMPARE(QByteArray(slot.bytes + slotCopyOffset(1, numberSize), sizeof(NumberCopy)), valid);
}

void SlotTest::theSequenceWrapsAround()
{
    SlotMemory<64> slot;
    *slot.sequence() = 0xfffffffe;
    for (quint64 number = 1; number < 5; ++number) {
        writeNumber(slot.bytes, number);

        NumberCopy copy;
        QVERIFY(readNumberSlot(slot.bytes, copy));
        QCOMPARE(numberIn<quint64>(copy), number);
    }
    QCOMPARE(*slot.sequence(), quint32(2));
}

void SlotTest::aTextOfAnyLengthUpToTheCapacityIsReadBack_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {0, 1, 7, 8, 9, 15, 16, 17, 199, 200}) {
        QTest::addRow("%d bytes", length) << length;
    }
}

void SlotTest::aTextOfAnyLengthUpToTheCapacityIsReadBack()
{
    QFETCH(int, length);
    SlotMemory<512> slot;
    std::fill(std::begin(slot.bytes), std::end(slot.bytes), '\xee');
    *slot.sequence() = 0;
    QByteArray text;
    for (int i = 0; i < length; ++i) {
        text.append(char('a' + i % 26));
    }

    writeSlot(slot.bytes, textCapacity, head(0, quint32(length), 5), text.constData());

    SlotHead found{};
    QByteArray payload("stale");
    QVERIFY(readSlot(slot.bytes, textCapacity, found, payload));
    QCOMPARE(payload, text);
    QCOMPARE(found.length, quint32(length));
    QCOMPARE(found.timestamp, qint64(5));
    const quint64 end = slotCopyOffset(1, textCapacity) + slotCopySize(textCapacity);
    QCOMPARE(slot.bytes[end], '\xee'); // nothing behind the copy was touched
}

void SlotTest::aLengthBeyondTheCapacityIsCutDown()
{
    SlotMemory<512> slot;
    const SlotHead wrong = head(0, 0xfffffffe, 5);
    storeSlotWords(slot.bytes + slotCopyOffset(0, textCapacity), &wrong,
                   sizeof(wrong) / sizeof(SlotWord));

    SlotHead found{};
    QByteArray payload;
    QVERIFY(readSlot(slot.bytes, textCapacity, found, payload));
    QCOMPARE(found.length, textCapacity);
    QCOMPARE(payload, QByteArray(int(textCapacity), '\0'));
}

void SlotTest::aSlotWithoutValueReadsAsAnInvalidValue()
{
    ProcessValue value(QVariant(17));
    setFromSlot(value, ValueType::String,
                head(ProcessDataDefinitions::NotInitialized, slotWithoutValue, 0), QByteArray());
    QCOMPARE(value.getValue(), QVariant());
    QCOMPARE(value.getErrorType(), ProcessDataDefinitions::NotInitialized);

    setFromSlot(value, ValueType::String, head(ProcessDataDefinitions::NoError, 0, 0),
                QByteArray());
    QCOMPARE(value.getValue(), QVariant(QString("")));
}

void SlotTest::anUnknownStatusMeansThatNoValueWasObtained()
{
    QCOMPARE(errorTypeOf(5), ProcessDataDefinitions::OutOfRange);
    QCOMPARE(errorTypeOf(6), ProcessDataDefinitions::NoValue);
    QCOMPARE(errorTypeOf(0xffffffff), ProcessDataDefinitions::NoValue);
}

void SlotTest::aNumberOfAWrongLengthReadsAsAnInvalidValue()
{
    NumberCopy copy{};
    for (const quint32 length : {0U, 4U, 7U, 9U, 0xffffffffU}) {
        copy.head.length = length;
        QCOMPARE(numberOf(ValueType::Float64, 8, copy), QVariant());
    }
    copy.head.length = 8;
    QCOMPARE(numberOf(ValueType::Float64, 8, copy), QVariant(0.0));
    QCOMPARE(numberOf(ValueType::String, 8, copy), QVariant());
}

void SlotTest::aNumberReplacesWhatAValueHeldBefore()
{
    const NumberCopy copy{{quint32(ProcessDataDefinitions::DeviceFault), 8, 7}, {}};
    for (const QVariant &before :
         {QVariant(), QVariant(1.5), QVariant(3), QVariant(QString("text"))}) {
        ProcessValue value(before);
        setFromNumber(value, ValueType::Float64, 8, copy, ProcessDataDefinitions::DeviceFault);
        QCOMPARE(value.getValue(), QVariant(0.0));
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::DeviceFault);
        QCOMPARE(value.getTimestamp(), qint64(7));
    }
}

void SlotTest::aReaderGivesUpOnAWriterThatNeverStops()
{
    const auto slot = std::make_unique<SlotMemory<64>>();
    std::atomic<bool> stop{false};
    std::thread hostile([&] {
        while (!stop) {
            __atomic_fetch_add(slot->sequence(), 1, __ATOMIC_RELAXED);
        }
    });
    // Whether a try meets a change is a matter of timing; that each call comes back is what counts.
    int returned = 0;
    for (; returned < 10000; ++returned) {
        NumberCopy copy;
        SlotHead found{};
        QByteArray payload;
        readNumberSlot(slot->bytes, copy);
        readSlot(slot->bytes, numberSize, found, payload);
    }
    stop = true;
    hostile.join();
    QCOMPARE(returned, 10000);
}

void SlotTest::numbersAreDecodedAsByTheCodec_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<quint32>("size");
    QTest::addColumn<QByteArray>("bytes");
    for (const char *type : {"bool", "int8", "int16", "int32", "int64", "uint8", "uint16", "uint32",
                             "uint64", "float32", "float64"}) {
        const quint32 size = payloadSize(*valueTypeFromName(type), 0);
        for (const QByteArray &bytes :
             {QByteArray(8, '\0'), QByteArray(8, '\x7f'), QByteArray(8, '\x80'),
              QByteArray("\x01\x02\x03\x04\x05\x06\x07\x08", 8)}) {
            QTest::addRow("%s %s", type, bytes.toHex().constData()) << type << size << bytes;
        }
    }
}

void SlotTest::numbersAreDecodedAsByTheCodec()
{
    QFETCH(QString, type);
    QFETCH(quint32, size);
    QFETCH(QByteArray, bytes);
    NumberCopy copy{head(0, size, 0), {}};
    std::copy(bytes.cbegin(), bytes.cend(), copy.payload);
    const ValueType valueType = *valueTypeFromName(type);

    const QVariant expected = decodeValue(valueType, bytes.constData(), size);
    const QVariant found = numberOf(valueType, size, copy);

    QVERIFY(expected.isValid());
    QCOMPARE(found.userType(), expected.userType());
    QCOMPARE(found, expected);
}

void SlotTest::numbersAreNeverTorn()
{
    constexpr int reads = 2'000'000;
    const auto slot = std::make_unique<SlotMemory<64>>();
    writeNumber(slot->bytes, 0, 0, 0);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (quint64 number = 1; !stop; ++number) {
            writeNumber(slot->bytes, number * 3, quint32(number), qint64(number * 7));
        }
    });
    int torn = 0;
    int read = 0;
    int distinct = 0;
    quint64 last = 0;
    const QDeadlineTimer limit(readingLimit);
    for (int i = 0; (i < reads || distinct < enough) && !limit.hasExpired(); ++i) {
        NumberCopy copy;
        if (!readNumberSlot(slot->bytes, copy)) {
            continue;
        }
        ++read;
        const quint64 number = numberIn<quint64>(copy) / 3;
        torn += numberIn<quint64>(copy) % 3 == 0 && copy.head.status == quint32(number)
                && copy.head.timestamp == qint64(number * 7) && number >= last
            ? 0
            : 1;
        distinct += number != last ? 1 : 0;
        last = number;
    }
    stop = true;
    writer.join();
    QCOMPARE(torn, 0);
    QVERIFY2(read > reads / 2, qPrintable(QString::number(read)));
    QVERIFY2(distinct >= enough, qPrintable(QString::number(distinct)));
}

void SlotTest::textsAreNeverTorn()
{
    constexpr int reads = 200'000;
    const auto slot = std::make_unique<SlotMemory<512>>();
    writeSlot(slot->bytes, textCapacity, head(0, 0, 0), "");
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (quint32 i = 1; !stop; ++i) {
            const quint32 length = i % (textCapacity + 1);
            const QByteArray text(int(length), char('a' + i % 26));
            writeSlot(slot->bytes, textCapacity, head(i % 26, length, qint64(i)), text.constData());
        }
    });
    int torn = 0;
    int distinct = 0;
    qint64 last = 0;
    const QDeadlineTimer limit(readingLimit);
    for (int i = 0; (i < reads || distinct < enough) && !limit.hasExpired(); ++i) {
        SlotHead found{};
        QByteArray payload;
        if (!readSlot(slot->bytes, textCapacity, found, payload)) {
            continue;
        }
        const quint32 number = quint32(found.timestamp);
        const QByteArray expected(int(number % (textCapacity + 1)), char('a' + number % 26));
        torn += payload == expected && found.status == number % 26 ? 0 : 1;
        distinct += found.timestamp != last ? 1 : 0;
        last = found.timestamp;
    }
    stop = true;
    writer.join();
    QCOMPARE(torn, 0);
    QVERIFY2(distinct >= enough, qPrintable(QString::number(distinct)));
}

QTEST_APPLESS_MAIN(SlotTest)
#include "SlotTest.moc"
