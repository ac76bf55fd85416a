// SPDX-License-Identifier: MIT
// How values, error types and times are written for people and for programs.
#include "ValueText.h"

#include "ErrorTypeText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <cmath>
#include <limits>

class ValueTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void valuesAreWritten_data();
    void valuesAreWritten();
    void errorTypesHaveTheirNames();
    void timesAreLocal();
    void noTimeIsAnEmptyText();
};

void ValueTextTest::initTestCase()
{
    qputenv("TZ", "UTC-2"); // two hours east of UTC
    tzset();
}

void ValueTextTest::valuesAreWritten_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");

    QTest::newRow("nothing") << QVariant() << ""
                             << "[null]";
    QTest::newRow("bool") << QVariant(true) << "true"
                          << "[true]";
    QTest::newRow("int") << QVariant(-5) << "-5"
                         << "[-5]";
    QTest::newRow("largest exact integer") << QVariant(9007199254740991LL) << "9007199254740991"
                                           << "[9007199254740991]";
    QTest::newRow("beyond it a string") << QVariant(9007199254740992LL) << "9007199254740992"
                                        << "[\"9007199254740992\"]";
    QTest::newRow("smallest int64")
        << QVariant(std::numeric_limits<qlonglong>::min()) << "-9223372036854775808"
        << "[\"-9223372036854775808\"]";
    QTest::newRow("largest uint64")
        << QVariant(std::numeric_limits<qulonglong>::max()) << "18446744073709551615"
        << "[\"18446744073709551615\"]";
    QTest::newRow("double in its shortest form") << QVariant(0.1) << "0.1"
                                                 << "[0.1]";
    QTest::newRow("float in its shortest form") << QVariant(21.3F) << "21.3"
                                                << "[21.3]";
    QTest::newRow("float that needs nine digits") << QVariant(16777.2168F) << "16777.217"
                                                  << "[16777.217]";
    QTest::newRow("negative zero") << QVariant(-0.0) << "-0"
                                   << "[\"-0\"]";
    QTest::newRow("negative zero of 32 bits") << QVariant(-0.0F) << "-0"
                                              << "[\"-0\"]";
    QTest::newRow("not a number") << QVariant(std::nan("")) << "NaN"
                                  << "[\"NaN\"]";
    QTest::newRow("minus infinity")
        << QVariant(-std::numeric_limits<double>::infinity()) << "-Infinity"
        << "[\"-Infinity\"]";
    QTest::newRow("string") << QVariant(QString("a\nb")) << "a\nb"
                            << "[\"a\\nb\"]";
    QTest::newRow("bytes") << QVariant(QByteArray("\x00\xff", 2)) << "0x00ff"
                           << "[\"0x00ff\"]";
}

void ValueTextTest::valuesAreWritten()
{
    QFETCH(QVariant, value);
    QFETCH(QString, text);
    QFETCH(QString, json);

    QCOMPARE(valueToText(value), text);
    QCOMPARE(QString(QJsonDocument(QJsonArray{valueToJson(value)}).toJson(QJsonDocument::Compact)),
             json);
}

void ValueTextTest::errorTypesHaveTheirNames()
{
    const QStringList expected{"NoError",     "NotInitialized", "SourceLost", "NoValue",
                               "DeviceFault", "OutOfRange",     "ErrorType6"};
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(errorTypeName(ProcessDataAccess::ErrorType(i)), expected.at(i));
    }
}

void ValueTextTest::timesAreLocal()
{
    const qint64 noon = 1767268800123456789; // 2026-01-01 12:00:00.123 UTC
    QCOMPARE(timeToIsoText(noon), QString("2026-01-01T14:00:00.123+02:00"));
    QCOMPARE(timeToText(noon), QString("2026-01-01 14:00:00.123"));
}

void ValueTextTest::noTimeIsAnEmptyText()
{
    QCOMPARE(timeToIsoText(0), QString());
    QCOMPARE(timeToText(0), QString());
}

QTEST_APPLESS_MAIN(ValueTextTest)
#include "ValueTextTest.moc"
