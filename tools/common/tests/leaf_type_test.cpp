// SPDX-License-Identifier: MIT
// What text and JSON become for each type of leaf, and what is refused.
#include "LeafType.h"

#include <QJsonDocument>
#include <QtTest>

#include <cmath>

class LeafTypeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOfEachTypeConverts_data();
    void textOfEachTypeConverts();
    void textThatDoesNotParseIsRefused_data();
    void textThatDoesNotParseIsRefused();
    void jsonKeepsItsType_data();
    void jsonKeepsItsType();
    void numbersAreRoundedAndHeldInTheType_data();
    void numbersAreRoundedAndHeldInTheType();
    void limitsAreNamedWhenBroken_data();
    void limitsAreNamedWhenBroken();
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
                                << "is no integer, as int32 needs";
    QTest::newRow("no digits") << "int32"
                               << ""
                               << "is no integer, as int32 needs";
    QTest::newRow("only a sign") << "int32"
                                 << "-"
                                 << "is no integer, as int32 needs";
    QTest::newRow("trailing text") << "int32"
                                   << "5V"
                                   << "is no integer, as int32 needs";
    QTest::newRow("a number with a unit") << "float64"
                                          << "5 V"
                                          << "is no number, as float64 needs";
    QTest::newRow("too large for float32") << "float32"
                                           << "1e39"
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

void LeafTypeTest::anUnknownTypeIsNone()
{
    QVERIFY(!leafType("int128"));
    QVERIFY(!leafType(""));
    QVERIFY(!leafType("Bool"));
}

QTEST_APPLESS_MAIN(LeafTypeTest)
#include "leaf_type_test.moc"
