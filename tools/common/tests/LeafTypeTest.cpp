// SPDX-License-Identifier: MIT
// What text and JSON become for each type of leaf, and what is refused.
#include "LeafType.h"
#include "ValueText.h"

#include <QJsonDocument>
#include <QtTest>

#include <cmath>

class LeafTypeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOfEachTypeConverts_data();
    void textOfEachTypeConverts();
    void whatIsPrintedIsRead_data();
    void whatIsPrintedIsRead();
    void textThatDoesNotParseIsRefused_data();
    void textThatDoesNotParseIsRefused();
    void jsonKeepsItsType_data();
    void jsonKeepsItsType();
    void numbersAreRoundedAndHeldInTheType_data();
    void numbersAreRoundedAndHeldInTheType();
    void limitsAreNamedWhenBroken_data();
    void limitsAreNamedWhenBroken();
    void limitsAreComparedInTheLeafsType_data();
    void limitsAreComparedInTheLeafsType();
    void anUnknownTypeIsNone();
};

void LeafTypeTest::textOfEachTypeConverts_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("true") << "bool"
                          << "true" << QVariant(true);
    QTest::newRow("one is true") << "bool"
                                 << "1" << QVariant(true);
    QTest::newRow("off is false") << "bool"
                                  << "OFF" << QVariant(false);
    QTest::newRow("smallest int8") << "int8"
                                   << "-128" << QVariant(-128);
    QTest::newRow("largest int8") << "int8"
                                  << "127" << QVariant(127);
    QTest::newRow("hexadecimal") << "uint16"
                                 << "0xFFff" << QVariant(65535U);
    QTest::newRow("a leading zero is not octal") << "int32"
                                                 << "010" << QVariant(10);
    QTest::newRow("a plus sign") << "uint8"
                                 << "+7" << QVariant(7U);
    QTest::newRow("smallest int64")
        << "int64"
        << "-9223372036854775808" << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("largest uint64")
        << "uint64"
        << "18446744073709551615" << QVariant(std::numeric_limits<qulonglong>::max());
    QTest::newRow("float64") << "float64"
                             << "-2.5e3" << QVariant(-2500.0);
    QTest::newRow("float32 stays a float") << "float32"
                                           << "0.1" << QVariant(0.1F);
    QTest::newRow("what reading prints of the largest float32")
        << "float32"
        << "3.4028235e+38" << QVariant(std::numeric_limits<float>::max());
    QTest::newRow("what people type of it")
        << "float32"
        << "-3.4028235e38" << QVariant(std::numeric_limits<float>::lowest());
    QTest::newRow("infinity") << "float64"
                              << "Infinity" << QVariant(std::numeric_limits<double>::infinity());
    QTest::newRow("negative infinity")
        << "float32"
        << "-Infinity" << QVariant(-std::numeric_limits<float>::infinity());
    QTest::newRow("string as it is") << "string"
                                     << " a b " << QVariant(QString(" a b "));
    QTest::newRow("an empty string") << "string"
                                     << "" << QVariant(QString(""));
    QTest::newRow("bytes") << "bytes"
                           << "0x00fF" << QVariant(QByteArray("\x00\xff", 2));
    QTest::newRow("no bytes") << "bytes"
                              << "0x" << QVariant(QByteArray(""));
}

void LeafTypeTest::textOfEachTypeConverts()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    QVariant value;
    QString error;

    QVERIFY2(valueFromText(*leafType(type), text, value, error), qPrintable(error));

    QCOMPARE(value.userType(), expected.userType());
    QCOMPARE(value, expected);
    QCOMPARE(error, QString());
}

void LeafTypeTest::whatIsPrintedIsRead_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    const auto rows = [](const char *type, const QVector<double> &numbers) {
        const bool isFloat = qstrcmp(type, "float32") == 0;
        for (const double number : numbers) {
            QTest::addRow("%s %g", type, number)
                << type << (isFloat ? QVariant(float(number)) : QVariant(number));
        }
    };
    using Float = std::numeric_limits<float>;
    using Double = std::numeric_limits<double>;
    rows("float32",
         {Float::max(), Float::lowest(), Float::min(), Float::denorm_min(), 0.1F, 16777216.0, -0.0,
          0.0, Float::infinity(), -Float::infinity(), Float::quiet_NaN()});
    rows("float64",
         {Double::max(), Double::lowest(), Double::denorm_min(), 0.1, -0.0, 0.0, Double::infinity(),
          -Double::infinity(), Double::quiet_NaN()});
    QTest::newRow("int64") << "int64" << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("uint64") << "uint64" << QVariant(std::numeric_limits<qulonglong>::max());
}

void LeafTypeTest::whatIsPrintedIsRead()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QString error;
    for (const bool throughJson : {false, true}) {
        QVariant back;
        QVERIFY2(throughJson ? valueFromJson(*leafType(type), valueToJson(value), back, error)
                             : valueFromText(*leafType(type), valueToText(value), back, error),
                 qPrintable(error));
        QCOMPARE(back.userType(), value.userType());
        const double number = value.toDouble();
        QCOMPARE(std::isnan(back.toDouble()), std::isnan(number));
        QVERIFY(std::isnan(number) || back == value);
        QVERIFY(std::isnan(number) || std::signbit(back.toDouble()) == std::signbit(number));
    }
}

void LeafTypeTest::textThatDoesNotParseIsRefused_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("a word for bool") << "bool"
                                     << "yes"
                                     << "is neither true nor false, as bool needs";
    QTest::newRow("one past int8") << "int8"
                                   << "128"
                                   << "does not fit: int8 holds -128 to 127";
    QTest::newRow("one below int8") << "int8"
                                    << "-129"
                                    << "does not fit: int8 holds -128 to 127";
    QTest::newRow("negative unsigned") << "uint8"
                                       << "-1"
                                       << "does not fit: uint8 holds 0 to 255";
    QTest::newRow("one past uint64") << "uint64"
                                     << "18446744073709551616"
                                     << "does not fit: uint64 holds 0 to 18446744073709551615";
    QTest::newRow("a fraction") << "int32"
                                << "1.5"
                                << "is not an integer, as int32 needs";
    QTest::newRow("no digits") << "int32"
                               << ""
                               << "is not an integer, as int32 needs";
    QTest::newRow("only a sign") << "int32"
                                 << "-"
                                 << "is not an integer, as int32 needs";
    QTest::newRow("trailing text") << "int32"
                                   << "5V"
                                   << "is not an integer, as int32 needs";
    QTest::newRow("a number with a unit") << "float64"
                                          << "5 V"
                                          << "is not a number, as float64 needs";
    QTest::newRow("too large for float32") << "float32"
                                           << "1e39"
                                           << "does not fit into float32";
    QTest::newRow("just too large for float32") << "float32"
                                                << "3.4028235678e38"
                                                << "does not fit into float32";
    QTest::newRow("bytes without 0x")
        << "bytes"
        << "00ff"
        << "is not 0x and pairs of hexadecimal digits, as bytes needs";
    QTest::newRow("half a byte") << "bytes"
                                 << "0x0"
                                 << "is not 0x and pairs of hexadecimal digits, as bytes needs";
    QTest::newRow("no hexadecimal digit")
        << "bytes"
        << "0xgg"
        << "is not 0x and pairs of hexadecimal digits, as bytes needs";
}

void LeafTypeTest::textThatDoesNotParseIsRefused()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QVariant value = QStringLiteral("untouched");
    QString error;

    QVERIFY(!valueFromText(*leafType(type), text, value, error));

    QCOMPARE(error, expected);
    QCOMPARE(value.toString(), QStringLiteral("untouched"));
}

void LeafTypeTest::jsonKeepsItsType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("expected"); // invalid: refused

    QTest::newRow("number for float64") << "float64"
                                        << "[0.1]" << QVariant(0.1);
    QTest::newRow("whole number for int64") << "int64"
                                            << "[9007199254740993]" << QVariant(9007199254740993LL);
    QTest::newRow("number for uint8") << "uint8"
                                      << "[255]" << QVariant(255U);
    QTest::newRow("fraction for int8 is refused") << "int8"
                                                  << "[1.5]" << QVariant();
    QTest::newRow("number for bool is refused") << "bool"
                                                << "[1]" << QVariant();
    QTest::newRow("text for int8 is refused") << "int8"
                                              << "[\"1\"]" << QVariant();
    QTest::newRow("true for bool") << "bool"
                                   << "[true]" << QVariant(true);
    QTest::newRow("text for string") << "string"
                                     << "[\"a\"]" << QVariant(QString("a"));
    QTest::newRow("number for string is refused") << "string"
                                                  << "[1]" << QVariant();
    QTest::newRow("text for bytes") << "bytes"
                                    << "[\"0x01\"]" << QVariant(QByteArray("\x01"));
}

void LeafTypeTest::jsonKeepsItsType()
{
    QFETCH(QString, type);
    QFETCH(QString, json);
    QFETCH(QVariant, expected);
    const QJsonValue element = QJsonDocument::fromJson(json.toUtf8()).array().at(0);
    QVariant value;
    QString error;

    QCOMPARE(valueFromJson(*leafType(type), element, value, error), expected.isValid());

    QCOMPARE(value, expected);
    QCOMPARE(error.isEmpty(), expected.isValid());
}

void LeafTypeTest::numbersAreRoundedAndHeldInTheType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<double>("number");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("rounded up") << "int16" << 1.5 << QVariant(2);
    QTest::newRow("rounded away from zero") << "int16" << -1.5 << QVariant(-2);
    QTest::newRow("above int8") << "int8" << 1000.0 << QVariant(127);
    QTest::newRow("below uint32") << "uint32" << -1.0 << QVariant(0U);
    QTest::newRow("half is true") << "bool" << 0.5 << QVariant(true);
    QTest::newRow("below half is false") << "bool" << 0.49 << QVariant(false);
    QTest::newRow("above int64 stays inside")
        << "int64" << 1e300 << QVariant(9223372036854774784LL);
    QTest::newRow("above uint64 stays inside")
        << "uint64" << 1e300 << QVariant(18446744073709549568ULL);
    QTest::newRow("above float32")
        << "float32" << 1e300 << QVariant(std::numeric_limits<float>::max());
}

void LeafTypeTest::numbersAreRoundedAndHeldInTheType()
{
    QFETCH(QString, type);
    QFETCH(double, number);
    QFETCH(QVariant, expected);

    QCOMPARE(valueFromNumber(*leafType(type), number), expected);
}

void LeafTypeTest::limitsAreNamedWhenBroken_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected"); // empty: kept

    QTest::newRow("at the minimum") << "float64" << QVariant(-10.0) << "";
    QTest::newRow("below the minimum")
        << "float64" << QVariant(-10.5) << "is below the minimum -10";
    QTest::newRow("at the maximum") << "int32" << QVariant(20) << "";
    QTest::newRow("above the maximum") << "int32" << QVariant(21) << "is above the maximum 20";
    QTest::newRow("a string that fits") << "string" << QVariant(QString("äb")) << "";
    QTest::newRow("a string counts in UTF-8 bytes")
        << "string" << QVariant(QString("ää")) << "has 4 bytes, more than the capacity 3";
    QTest::newRow("bytes that do not fit")
        << "bytes" << QVariant(QByteArray("1234")) << "has 4 bytes, more than the capacity 3";
    QTest::newRow("bool has no limits") << "bool" << QVariant(true) << "";
}

void LeafTypeTest::limitsAreNamedWhenBroken()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    const QJsonObject properties{{"minimum", -10}, {"maximum", 20}, {"capacity", 3}};
    QString error;

    QCOMPARE(checkLimits(*leafType(type), properties, value, error), expected.isEmpty());

    QCOMPARE(error, expected);
}

void LeafTypeTest::limitsAreComparedInTheLeafsType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QJsonValue>("maximum");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected"); // empty: kept

    QTest::newRow("float32, at its nearest")
        << "float32" << QJsonValue(0.1) << QVariant(0.1F) << "";
    QTest::newRow("int64 past 2^53, at it")
        << "int64" << QJsonValue("9007199254740993") << QVariant(9007199254740993LL) << "";
    QTest::newRow("int64 past 2^53, above")
        << "int64" << QJsonValue("9007199254740993") << QVariant(9007199254740994LL)
        << "is above the maximum 9007199254740993";
    QTest::newRow("uint64, at it") << "uint64" << QJsonValue("18446744073709551614")
                                   << QVariant(18446744073709551614ULL) << "";
    QTest::newRow("uint64, above")
        << "uint64" << QJsonValue("18446744073709551614") << QVariant(18446744073709551615ULL)
        << "is above the maximum 18446744073709551614";
    QTest::newRow("NaN") << "float64" << QJsonValue(1)
                         << QVariant(std::numeric_limits<double>::quiet_NaN())
                         << "has no place between limits";
    QTest::newRow("Infinity") << "float64" << QJsonValue(1)
                              << QVariant(std::numeric_limits<double>::infinity())
                              << "is above the maximum 1";
}

void LeafTypeTest::limitsAreComparedInTheLeafsType()
{
    QFETCH(QString, type);
    QFETCH(QJsonValue, maximum);
    QFETCH(QVariant, value);
    QFETCH(QString, expected);
    QString error;

    QCOMPARE(checkLimits(*leafType(type), {{"maximum", maximum}}, value, error),
             expected.isEmpty());

    QCOMPARE(error, expected);
}

void LeafTypeTest::anUnknownTypeIsNone()
{
    QVERIFY(!leafType("int128"));
    QVERIFY(!leafType(""));
    QVERIFY(!leafType("Bool"));
}

QTEST_APPLESS_MAIN(LeafTypeTest)
#include "LeafTypeTest.moc"
