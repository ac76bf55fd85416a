// SPDX-License-Identifier: MIT
// Whole numbers past 2^53 in descriptions keep every digit: in judging, in properties, as text.
#include "ConfigurationAndProcessDataBase.h"
#include "ConfigurationAndProcessDataParser.h"
#include "DescriptionSamples.h"
#include "ProcessDataDescription.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "SelectorUrlBuilder.h"
#include "ValueCodec.h"

#include <QJsonDocument>
#include <QtTest>

#include <limits>

namespace {

std::optional<LeafDescription> leafWith(const QByteArray &type, const QByteArray &members,
                                        QString &error)
{
    const auto description = parseDescription(
        R"({"format": "process-data-description/1", "elements": [{"name": "a", "type": ")" + type
            + "\", " + members + "}]}",
        DescriptionForm::Template, error);
    return description ? std::make_optional(description->leaves.at(0)) : std::nullopt;
}

QByteArray rendered(const LeafDescription &leaf)
{
    QByteArray text;
    leaf.properties.render("1", text);
    return text;
}

bool isTaken(const LeafDescription &leaf, const QVariant &value)
{
    QByteArray payload;
    QString error;
    return encodeValue(leaf, value, payload, error);
}

} // namespace

class WholeNumbersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLimitIsJudgedShownAndComparedToItsLastDigit_data();
    void aLimitIsJudgedShownAndComparedToItsLastDigit();
    void anyPropertyKeepsItsDigits_data();
    void anyPropertyKeepsItsDigits();
    void aLimitThatItsTypeDoesNotHoldIsRefusedWithItsDigits_data();
    void aLimitThatItsTypeDoesNotHoldIsRefusedWithItsDigits();
    void aRealNumbersLimitMayBeTheNearestDouble();
    void clientsReadAndCompareTheDigits();
};

void WholeNumbersTest::aLimitIsJudgedShownAndComparedToItsLastDigit_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("limit");
    QTest::addColumn<QVariant>("value"); // the limit itself
    QTest::addColumn<QVariant>("past");
    const auto row
        = [](const char *type, const char *limit, const QVariant &value, const QVariant &past) {
              QTest::addRow("%s %s", type, limit)
                  << QByteArray(type) << QByteArray(limit) << value << past;
          };
    row("int64", "9007199254740993", Q_INT64_C(9007199254740993), Q_INT64_C(9007199254740994));
    row("int64", "9223372036854775806", Q_INT64_C(9223372036854775806),
        Q_INT64_C(9223372036854775807));
    row("int64", "-9007199254740993", Q_INT64_C(-9007199254740993), Q_INT64_C(-9007199254740992));
    row("uint64", "9007199254740993", Q_UINT64_C(9007199254740993), Q_UINT64_C(9007199254740994));
    row("uint64", "9223372036854775808", Q_UINT64_C(9223372036854775808),
        Q_UINT64_C(9223372036854775809));
    row("uint64", "18446744073709551614", Q_UINT64_C(18446744073709551614),
        Q_UINT64_C(18446744073709551615));
}

void WholeNumbersTest::aLimitIsJudgedShownAndComparedToItsLastDigit()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, limit);
    QFETCH(QVariant, value);
    QFETCH(QVariant, past);
    QString error;

    const auto leaf = leafWith(type, "\"maximum\": " + limit, error);
    const auto other = leafWith(type, "\"maximum\": " + past.toString().toLatin1(), error);
    QVERIFY2(leaf && other, qPrintable(error));

    QCOMPARE(leaf->maximum.toString(), QString(limit));
    QVERIFY(isTaken(*leaf, value));
    QVERIFY(!isTaken(*leaf, past));
    const QVariant property = leaf->properties.value("maximum");
    QCOMPARE(property.toString(), QString(limit));
    QVERIFY(property.userType() == QMetaType::LongLong
            || property.userType() == QMetaType::ULongLong);
    QCOMPARE(rendered(*leaf),
             R"({"maximum":)" + limit + R"(,"name":"a","session":1,"type":")" + type + "\"}");
    QVERIFY(rendered(*leaf) != rendered(*other));
}

void WholeNumbersTest::anyPropertyKeepsItsDigits_data()
{
    QTest::addColumn<QByteArray>("spelled");
    QTest::addColumn<QVariant>("value"); // invalid: not looked at
    QTest::newRow("an int64") << QByteArray("9007199254740993")
                              << QVariant(Q_INT64_C(9007199254740993));
    QTest::newRow("a negative one")
        << QByteArray("-9223372036854775808") << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("a uint64") << QByteArray("18446744073709551615")
                              << QVariant(std::numeric_limits<qulonglong>::max());
    QTest::newRow("more than 64 bits") << QByteArray("18446744073709551617") << QVariant();
    QTest::newRow("in an array") << QByteArray("[9007199254740993,-9007199254740993]")
                                 << QVariant();
    QTest::newRow("in an object") << QByteArray(R"({"a":[],"b":{"c":9223372036854775807}})")
                                  << QVariant();
}

void WholeNumbersTest::anyPropertyKeepsItsDigits()
{
    QFETCH(QByteArray, spelled);
    QFETCH(QVariant, value);
    QString error;

    const auto leaf = leafWith("bool", "\"x\": " + spelled, error);

    QVERIFY2(leaf, qPrintable(error));
    QCOMPARE(rendered(*leaf), R"({"name":"a","session":1,"type":"bool","x":)" + spelled + "}");
    if (value.isValid()) {
        QCOMPARE(leaf->properties.value("x"), value);
        QCOMPARE(leaf->properties.value("x").userType(), value.userType());
    }
}

void WholeNumbersTest::aLimitThatItsTypeDoesNotHoldIsRefusedWithItsDigits_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("limit");
    QTest::addColumn<QString>("message");
    QTest::newRow("int64") << QByteArray("int64") << QByteArray("18446744073709551613")
                           << "leaf \"a\": \"maximum\" is 18446744073709551613, which does not "
                              "convert to int64: it is outside -9223372036854775808 to "
                              "9223372036854775807";
    QTest::newRow("uint32") << QByteArray("uint32") << QByteArray("18446744073709551615")
                            << "leaf \"a\": \"maximum\" is 18446744073709551615, which does not "
                               "convert to uint32: it is outside 0 to 4294967295";
}

void WholeNumbersTest::aLimitThatItsTypeDoesNotHoldIsRefusedWithItsDigits()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, limit);
    QFETCH(QString, message);
    QString error;

    QVERIFY(!leafWith(type, "\"maximum\": " + limit, error));

    QCOMPARE(error, message);
}

void WholeNumbersTest::aRealNumbersLimitMayBeTheNearestDouble()
{
    QString error;
    const auto leaf = leafWith("float64", "\"maximum\": 18446744073709551615", error);
    QVERIFY2(leaf, qPrintable(error));
    QCOMPARE(leaf->maximum, QVariant(18446744073709551616.0));
}

void WholeNumbersTest::clientsReadAndCompareTheDigits()
{
    QByteArray text
        = QJsonDocument(document({leaf("a", 192, "uint64")})).toJson(QJsonDocument::Compact);
    text.replace("\"offset\":192", "\"maximum\":18446744073709551614,\"offset\":192");
    ProcessDataManager manager;

    const auto root
        = manager.createProcessDataFromJson(text, "pdd", ProcessDataManager::InitTypeNone);
    QVERIFY(!root.isNull());
    const auto found = root->getLeafProcessDataValue(selectorUrl("Pump", "Controller", "1", "a"));
    QVERIFY(!found.isNull());

    QCOMPARE(found->readLeafProperty("maximum"), QVariant(Q_UINT64_C(18446744073709551614)));
    QByteArray json;
    ConfigurationAndProcessDataParser().frameToByteArray(found, json, QJsonDocument::Compact);
    QVERIFY2(json.contains("\"maximum\":18446744073709551614,"), json.constData());
}

QTEST_APPLESS_MAIN(WholeNumbersTest)
#include "WholeNumbersTest.moc"
