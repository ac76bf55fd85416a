// SPDX-License-Identifier: MIT
// Values become payload bytes and come back, without loss or not at all.
#include "ValueCodec.h"

#include <QtTest>

#include <cmath>
#include <limits>

Q_DECLARE_METATYPE(ValueType)

namespace {

LeafDescription leafOf(ValueType type, quint32 capacity = 8)
{
    LeafDescription leaf;
    leaf.path = "leaf";
    leaf.type = type;
    leaf.capacity = capacity;
    return leaf;
}

constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class ValueCodecTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueComesBackAsItsTypeTellsIt_data();
    void aValueComesBackAsItsTypeTellsIt();
    void aValueThatDoesNotFitIsRefusedWithItsReason_data();
    void aValueThatDoesNotFitIsRefusedWithItsReason();
    void everyWholeNumberNearALimitComesBackExactlyOrNotAtAll_data();
    void everyWholeNumberNearALimitComesBackExactlyOrNotAtAll();
    void zeroKeepsItsSign();
    void limitsBelongToTheRange();
    void aValueOutsideTheLimitsIsRefused();
    void nanHasNoPlaceBetweenLimitsButComesBackWithoutThem();
    void largeUnsignedLimitsAreExact();
    void capacityCountsBytes();
    void aPayloadOfWrongLengthIsNoValue();
    void typeNamesAreTheOnesOfDescriptions();
};

void ValueCodecTest::aValueComesBackAsItsTypeTellsIt_data()
{
    QTest::addColumn<ValueType>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("stored");
    const auto row = [](const char *name, ValueType type, const QVariant &value,
                        const QVariant &stored) { QTest::newRow(name) << type << value << stored; };
    row("bool", ValueType::Bool, true, true);
    row("bool of one", ValueType::Bool, 1, true);
    row("bool of 0.0", ValueType::Bool, 0.0, false);
    row("bool of text", ValueType::Bool, "false", false);
    row("int8 lowest", ValueType::Int8, -128, -128);
    row("int8 highest", ValueType::Int8, 127, 127);
    row("int16 lowest", ValueType::Int16, -32768, -32768);
    row("int16 highest", ValueType::Int16, 32767, 32767);
    row("int32 lowest", ValueType::Int32, std::numeric_limits<int>::min(),
        std::numeric_limits<int>::min());
    row("int32 highest", ValueType::Int32, std::numeric_limits<int>::max(),
        std::numeric_limits<int>::max());
    row("int32 of a bool", ValueType::Int32, true, 1);
    row("int32 of a whole double", ValueType::Int32, -5.0, -5);
    row("int32 of text", ValueType::Int32, "-12", -12);
    row("int32 of text with an exponent", ValueType::Int32, "1e3", 1000);
    row("int64 lowest", ValueType::Int64, std::numeric_limits<qlonglong>::min(),
        std::numeric_limits<qlonglong>::min());
    row("int64 highest", ValueType::Int64, std::numeric_limits<qlonglong>::max(),
        std::numeric_limits<qlonglong>::max());
    row("int64 past 2^53", ValueType::Int64, Q_INT64_C(9007199254740993),
        Q_INT64_C(9007199254740993));
    row("uint8 highest", ValueType::UInt8, 255, 255U);
    row("uint16 highest", ValueType::UInt16, 65535, 65535U);
    row("uint32 highest", ValueType::UInt32, 4294967295U, 4294967295U);
    row("uint64 highest", ValueType::UInt64, std::numeric_limits<qulonglong>::max(),
        std::numeric_limits<qulonglong>::max());
    row("uint64 of text", ValueType::UInt64, "18446744073709551615",
        std::numeric_limits<qulonglong>::max());
    row("float32 rounds to what it can tell", ValueType::Float32, 0.1, 0.1F);
    row("float32 of a whole number", ValueType::Float32, 16777216, 16777216.0F);
    row("float32 highest, rounded up", ValueType::Float32, 3.4028235e38,
        std::numeric_limits<float>::max());
    row("float32 of text", ValueType::Float32, "16777216", 16777216.0F);
    row("float32 infinite", ValueType::Float32, infinity, std::numeric_limits<float>::infinity());
    row("float64", ValueType::Float64, 0.1, 0.1);
    row("float64 smallest", ValueType::Float64, std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::denorm_min());
    row("float64 of a whole number", ValueType::Float64, Q_INT64_C(9007199254740992),
        9007199254740992.0);
    row("float64 of text", ValueType::Float64, "-2.5e-3", -2.5e-3);
    row("string", ValueType::String, QString::fromUtf8("äöü°"), QString::fromUtf8("äöü°"));
    row("empty string", ValueType::String, "", "");
    row("string with a zero", ValueType::String, QString(QChar(0)) + "x", QString(QChar(0)) + "x");
    const QString mark{QChar(QChar::ByteOrderMark)};
    row("string that begins with a byte-order mark", ValueType::String, mark + "x", mark + "x");
    row("string of two", ValueType::String, mark + mark, mark + mark);
    row("string of bytes that begin with one", ValueType::String, QByteArray("\xef\xbb\xbfx"),
        mark + "x");
    row("string of a number", ValueType::String, 42, "42");
    row("bytes", ValueType::Bytes, QByteArray("\0\xff", 2), QByteArray("\0\xff", 2));
    row("bytes of text", ValueType::Bytes, QString::fromUtf8("°"), QByteArray("\xc2\xb0"));
}

void ValueCodecTest::aValueComesBackAsItsTypeTellsIt()
{
    QFETCH(ValueType, type);
    QFETCH(QVariant, value);
    QFETCH(QVariant, stored);
    QByteArray payload;
    QString error;

    QVERIFY2(encodeValue(leafOf(type), value, payload, error), qPrintable(error));
    const QVariant decoded = decodeValue(type, payload.constData(), quint32(payload.size()));

    QCOMPARE(decoded.userType(), stored.userType());
    QCOMPARE(decoded, stored);
    QCOMPARE(error, QString());
}

void ValueCodecTest::aValueThatDoesNotFitIsRefusedWithItsReason_data()
{
    QTest::addColumn<ValueType>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, ValueType type, const QVariant &value,
                        const char *message) { QTest::newRow(name) << type << value << message; };
    row("nothing", ValueType::Int32, QVariant(), "value  does not convert to int32: it is missing");
    row("a list", ValueType::Float64, QVariantList{1},
        "value  does not convert to float64: it is of type QVariantList");
    row("a list into text", ValueType::String, QVariantList(),
        "value  does not convert to string: it is of type QVariantList");
    row("a number into bytes", ValueType::Bytes, 5,
        "value 5 does not convert to bytes: it is of type int");
    row("two into bool", ValueType::Bool, 2,
        "value 2 does not convert to bool: it is neither false nor true");
    row("minus one into bool", ValueType::Bool, -1,
        "value -1 does not convert to bool: it is neither false nor true");
    row("other text into bool", ValueType::Bool, "yes",
        "value \"yes\" does not convert to bool: it is neither false nor true");
    row("int8 too low", ValueType::Int8, -129,
        "value -129 does not convert to int8: it is outside -128 to 127");
    row("int8 too high", ValueType::Int8, 128,
        "value 128 does not convert to int8: it is outside -128 to 127");
    row("uint8 negative", ValueType::UInt8, -1,
        "value -1 does not convert to uint8: it is outside 0 to 255");
    row("uint8 too high", ValueType::UInt8, 256,
        "value 256 does not convert to uint8: it is outside 0 to 255");
    row("int32 too high", ValueType::Int32, Q_INT64_C(2147483648),
        "value 2147483648 does not convert to int32: it is outside -2147483648 to 2147483647");
    row("int64 too high", ValueType::Int64, Q_UINT64_C(9223372036854775808),
        "value 9223372036854775808 does not convert to int64: it is outside -9223372036854775808 to 9223372036854775807");
    row("uint64 negative", ValueType::UInt64, Q_INT64_C(-1),
        "value -1 does not convert to uint64: it is outside 0 to 18446744073709551615");
    row("a fraction", ValueType::Int32, 3.5,
        "value 3.5 does not convert to int32: it has a fraction");
    row("text with a fraction", ValueType::Int32, "3.5",
        "value \"3.5\" does not convert to int32: it has a fraction");
    row("nan", ValueType::Int64, std::nan(""),
        "value nan does not convert to int64: it is not finite");
    row("infinite", ValueType::UInt64, infinity,
        "value inf does not convert to uint64: it is not finite");
    row("past 64 bits", ValueType::UInt64, 18446744073709551616.0,
        "value 18446744073709552000 does not convert to uint64: it has more than 64 bits");
    row("past 64 bits, negative", ValueType::Int64, -9223372036854777856.0,
        "value -9223372036854778000 does not convert to int64: it has more than 64 bits");
    row("negative number that a float rounds", ValueType::Float32, -16777217,
        "value -16777217 does not convert to float32: it has more digits than the type holds");
    row("text", ValueType::Int32, "12x",
        "value \"12x\" does not convert to int32: it is not a number");
    row("large text with a fraction part", ValueType::Int64, "9007199254740993.0",
        "value \"9007199254740993.0\" does not convert to int64: it is too large to be exact unless written in digits alone");
    row("digits that a double rounds", ValueType::Float64, "9007199254740993",
        "value \"9007199254740993\" does not convert to float64: it has more digits than the type holds");
    row("half a step past the highest float", ValueType::Float32, -3.4028235677973366e38,
        "value -3.4028235677973366e+38 does not convert to float32: it is larger than the type holds");
    row("empty text", ValueType::Float64, "",
        "value \"\" does not convert to float64: it is not a number");
    row("whole number that a float rounds", ValueType::Float32, 16777217,
        "value 16777217 does not convert to float32: it has more digits than the type holds");
    row("whole number that a double rounds", ValueType::Float64, Q_INT64_C(9007199254740993),
        "value 9007199254740993 does not convert to float64: it has more digits than the type holds");
    row("highest int64 into a double", ValueType::Float64, std::numeric_limits<qlonglong>::max(),
        "value 9223372036854775807 does not convert to float64: it has more digits than the type holds");
    row("too large for a float", ValueType::Float32, 3.5e38,
        "value 3.5e+38 does not convert to float32: it is larger than the type holds");
    row("bytes that are no text", ValueType::String, QByteArray("\xff"),
        "value 0xff does not convert to string: it is not valid Unicode text");
    row("unpaired surrogate", ValueType::String, QString(QChar(0xdc00)) + "", nullptr);
}

void ValueCodecTest::aValueThatDoesNotFitIsRefusedWithItsReason()
{
    QFETCH(ValueType, type);
    QFETCH(QVariant, value);
    QFETCH(QString, message);
    QByteArray payload("before");
    QString error;

    QVERIFY(!encodeValue(leafOf(type), value, payload, error));

    QCOMPARE(payload, QByteArray("before"));
    if (!message.isEmpty()) {
        QCOMPARE(error, message);
    }
    QVERIFY(!error.isEmpty());
}

void ValueCodecTest::everyWholeNumberNearALimitComesBackExactlyOrNotAtAll_data()
{
    QTest::addColumn<ValueType>("type");
    QTest::addColumn<int>("bits"); // whole numbers of so many bits fit, and one power of two more
    QTest::addColumn<bool>("hasSign");
    QTest::newRow("int8") << ValueType::Int8 << 7 << true;
    QTest::newRow("int16") << ValueType::Int16 << 15 << true;
    QTest::newRow("int32") << ValueType::Int32 << 31 << true;
    QTest::newRow("int64") << ValueType::Int64 << 63 << true;
    QTest::newRow("uint8") << ValueType::UInt8 << 8 << false;
    QTest::newRow("uint16") << ValueType::UInt16 << 16 << false;
    QTest::newRow("uint32") << ValueType::UInt32 << 32 << false;
}

void ValueCodecTest::everyWholeNumberNearALimitComesBackExactlyOrNotAtAll()
{
    QFETCH(ValueType, type);
    QFETCH(int, bits);
    QFETCH(bool, hasSign);
    const qint64 highest = qint64((Q_UINT64_C(1) << bits) - 1);
    const qint64 lowest = hasSign ? -highest - 1 : 0;
    const LeafDescription leaf = leafOf(type);

    for (int power = 0; power < 64; ++power) {
        for (int step = -2; step <= 2; ++step) {
            for (const bool negative : {false, true}) {
                const quint64 magnitude = (Q_UINT64_C(1) << power) + quint64(step);
                const qint64 number = qint64(negative ? 0 - magnitude : magnitude);
                for (const QVariant &value :
                     {QVariant(number), QVariant(QString::number(number))}) {
                    QByteArray payload;
                    QString error;
                    const bool fits = number >= lowest && number <= highest;
                    QCOMPARE(encodeValue(leaf, value, payload, error), fits);
                    QCOMPARE(error.isEmpty(), fits);
                    if (fits) {
                        QCOMPARE(decodeValue(type, payload.constData(), quint32(payload.size()))
                                     .toLongLong(),
                                 number);
                    }
                }
            }
        }
    }
}

void ValueCodecTest::zeroKeepsItsSign()
{
    for (const QVariant &zero : {QVariant(-0.0), QVariant("-0"), QVariant("-0.0")}) {
        QByteArray payload;
        QString error;

        QVERIFY(encodeValue(leafOf(ValueType::Float64), zero, payload, error));

        QVERIFY(std::signbit(
            decodeValue(ValueType::Float64, payload.constData(), quint32(payload.size()))
                .toDouble()));
    }
}

void ValueCodecTest::limitsBelongToTheRange()
{
    LeafDescription leaf = leafOf(ValueType::Int32);
    leaf.minimum = -5;
    leaf.maximum = 5;
    QByteArray payload;
    QString error;

    QVERIFY(encodeValue(leaf, -5, payload, error));
    QVERIFY(encodeValue(leaf, 5, payload, error));
}

void ValueCodecTest::aValueOutsideTheLimitsIsRefused()
{
    LeafDescription leaf = leafOf(ValueType::Float32);
    leaf.minimum = -0.5F;
    leaf.maximum = 0.5F;
    QByteArray payload;
    QString error;

    QVERIFY(!encodeValue(leaf, -0.75, payload, error));
    QCOMPARE(error, "value -0.75 is below the minimum -0.5");
    QVERIFY(!encodeValue(leaf, 0.75, payload, error));
    QCOMPARE(error, "value 0.75 is above the maximum 0.5");
}

void ValueCodecTest::nanHasNoPlaceBetweenLimitsButComesBackWithoutThem()
{
    LeafDescription leaf = leafOf(ValueType::Float64);
    QByteArray payload;
    QString error;

    QVERIFY(encodeValue(leaf, std::nan(""), payload, error));
    QVERIFY(std::isnan(
        decodeValue(leaf.type, payload.constData(), quint32(payload.size())).toDouble()));
    leaf.maximum = 1.0;
    QVERIFY(!encodeValue(leaf, std::nan(""), payload, error));
    QCOMPARE(error, "value nan has no place between limits");
}

void ValueCodecTest::largeUnsignedLimitsAreExact()
{
    LeafDescription leaf = leafOf(ValueType::UInt64);
    leaf.maximum = Q_UINT64_C(18446744073709551614);
    QByteArray payload;
    QString error;

    QVERIFY(encodeValue(leaf, Q_UINT64_C(18446744073709551614), payload, error));
    QVERIFY(!encodeValue(leaf, Q_UINT64_C(18446744073709551615), payload, error));
}

void ValueCodecTest::capacityCountsBytes()
{
    QByteArray payload;
    QString error;

    QVERIFY(encodeValue(leafOf(ValueType::String, 4), QString::fromUtf8("°°"), payload, error));
    QVERIFY(!encodeValue(leafOf(ValueType::String, 3), QString::fromUtf8("°°"), payload, error));
    QCOMPARE(error, QString::fromUtf8("value \"°°\" takes 4 bytes, the leaf holds 3"));
    QVERIFY(encodeValue(leafOf(ValueType::Bytes, 2), QByteArray("ab"), payload, error));
    QVERIFY(!encodeValue(leafOf(ValueType::Bytes, 2), QByteArray("abc"), payload, error));
}

void ValueCodecTest::aPayloadOfWrongLengthIsNoValue()
{
    const char bytes[16] = {};
    const auto numbers
        = {ValueType::Bool,   ValueType::Int8,    ValueType::Int16,  ValueType::Int32,
           ValueType::Int64,  ValueType::UInt8,   ValueType::UInt16, ValueType::UInt32,
           ValueType::UInt64, ValueType::Float32, ValueType::Float64};

    for (const ValueType type : numbers) {
        const quint32 size = payloadSize(type, 0);
        QVERIFY(decodeValue(type, bytes, size).isValid());
        QVERIFY(!decodeValue(type, bytes, size - 1).isValid());
        QVERIFY(!decodeValue(type, bytes, size + 1).isValid());
    }
    for (const ValueType type : {ValueType::String, ValueType::Bytes}) {
        QVERIFY(!decodeValue(type, bytes, 0xffffffff).isValid());
    }
}

void ValueCodecTest::typeNamesAreTheOnesOfDescriptions()
{
    const QStringList names{"bool",   "int8",   "int16",   "int32",   "int64",  "uint8", "uint16",
                            "uint32", "uint64", "float32", "float64", "string", "bytes"};

    for (const QString &name : names) {
        QVERIFY(valueTypeFromName(name));
        QCOMPARE(valueTypeName(*valueTypeFromName(name)), name);
    }
    QVERIFY(!valueTypeFromName("Int8"));
    QVERIFY(!valueTypeFromName(""));
    QVERIFY(!valueTypeFromName("double"));
}

QTEST_APPLESS_MAIN(ValueCodecTest)
#include "ValueCodecTest.moc"
