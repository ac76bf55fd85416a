// SPDX-License-Identifier: MIT
// UTF-8 and JSON that are read without losing anything.
#include "ExactJson.h"
#include "Utf8Text.h"

#include <QJsonArray>
#include <QtTest>

class ExactTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textThatIsNotUtf8IsRefused_data();
    void textThatIsNotUtf8IsRefused();
    void aByteOrderMarkIsPartOfAText();
    void theLineThatIsNotUtf8IsNamed();
    void wideNumbersAreStringsOfTheirDigits();
    void whatWasReadToBeWrittenKeepsNumbersAndTexts();
};

void ExactTextTest::textThatIsNotUtf8IsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("Latin-1") << QByteArray("S\xfc"
                                           "d");
    QTest::newRow("a cut character") << QByteArray("a\xe2\x82");
    QTest::newRow("an overlong one") << QByteArray("\xc0\xaf");
    QTest::newRow("half a pair") << QByteArray("\xed\xa0\x80");
    QTest::newRow("past Unicode") << QByteArray("\xf4\x90\x80\x80");
}

void ExactTextTest::textThatIsNotUtf8IsRefused()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!textFromUtf8(bytes));
    QString error;
    QVERIFY(!fileTextFromUtf8(bytes, error));
    QCOMPARE(error, QString("line 1 is not UTF-8 text; convert the file"));
}

void ExactTextTest::aByteOrderMarkIsPartOfAText()
{
    const QByteArray twice("\xef\xbb\xbf\xef\xbb\xbf"
                           "a");
    QString error;
    QCOMPARE(textFromUtf8(twice), std::make_optional(QString(2, QChar(0xfeff)) + "a"));
    QCOMPARE(fileTextFromUtf8(twice, error), std::make_optional(QString(QChar(0xfeff)) + "a"));
}

void ExactTextTest::theLineThatIsNotUtf8IsNamed()
{
    QString error;
    QVERIFY(!fileTextFromUtf8("a\nb\r\n\xff\nc\xff", error));
    QCOMPARE(error, QString("line 3 is not UTF-8 text; convert the file"));
}

void ExactTextTest::wideNumbersAreStringsOfTheirDigits()
{
    const QJsonObject object = exactObject(
        R"({"a":9007199254740991,"b":9007199254740992,"c":-18446744073709551614,)"
        R"("d":"9007199254740993 \" 9007199254740993","e":[1e300,9223372036854775807],)"
        R"("f":0.12345678901234567,"g":{"9007199254740993":true}})");
    QCOMPARE(object.value("a"), QJsonValue(9007199254740991.0));
    QCOMPARE(object.value("b"), QJsonValue("9007199254740992"));
    QCOMPARE(object.value("c"), QJsonValue("-18446744073709551614"));
    QCOMPARE(object.value("d"), QJsonValue("9007199254740993 \" 9007199254740993"));
    QCOMPARE(object.value("e").toArray().at(1), QJsonValue("9223372036854775807"));
    QCOMPARE(object.value("f"), QJsonValue(0.12345678901234567));
    QVERIFY(object.value("g").toObject().contains("9007199254740993"));
    QVERIFY(exactObject("[1]").isEmpty() && exactObject("{\"a\\").isEmpty());
}

void ExactTextTest::whatWasReadToBeWrittenKeepsNumbersAndTexts()
{
    QJsonObject object = rewritableObject(
        R"({"a":18446744073709551614,"b":"18446744073709551614","c":[-9223372036854775807],)"
        R"("d":"\"18446744073709551614\\","e":5,"f":"\u00017"})");
    object.insert("e", 6);

    const QByteArray text = exactText(object);

    QVERIFY2(text.contains("\"a\": 18446744073709551614,"), text.constData());
    QVERIFY2(text.contains("\"b\": \"18446744073709551614\","), text.constData());
    QVERIFY2(text.contains(" -9223372036854775807\n"), text.constData());
    QVERIFY2(text.contains(R"("d": "\"18446744073709551614\\",)"), text.constData());
    QVERIFY2(text.contains("\"e\": 6,"), text.constData());
    QVERIFY2(text.contains(R"("f": "\u00017")"), text.constData());
}

QTEST_APPLESS_MAIN(ExactTextTest)
#include "ExactTextTest.moc"
