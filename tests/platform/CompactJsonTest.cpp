// SPDX-License-Identifier: MIT
// The compact writer gives Qt's text, and the digits that Qt's writer would lose.
#include "CompactJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

namespace {

QByteArray writtenByQt(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonValue randomNumber(QRandomGenerator &random)
{
    const double whole = double(random.bounded(2000001)) - 1000000;
    switch (random.bounded(4)) {
    case 0:
        return whole;
    case 1:
        return whole / 64;
    case 2:
        return whole * 18014398509481.984; // up to 2^64
    default:
        return std::ldexp(random.generateDouble(), int(random.bounded(2000)) - 1000);
    }
}

QString randomText(QRandomGenerator &random)
{
    QString text;
    for (int i = int(random.bounded(12)); i > 0; --i) {
        const quint32 highest = random.bounded(3) == 0 ? 0xd7ff : 0x7f;
        text += QChar(random.bounded(highest + 1));
    }
    return text;
}

} // namespace

class CompactJsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindOfValueIsWrittenAsQtDoes_data();
    void everyKindOfValueIsWrittenAsQtDoes();
    void wholeNumbersKeepTheirDigits();
    void aByteOrderMarkIsKept();
    void randomObjectsAreReadAsTheyWereWritten();
};

void CompactJsonTest::everyKindOfValueIsWrittenAsQtDoes_data()
{
    constexpr double exact = 9007199254740992.0; // 2^53
    QTest::addColumn<QJsonObject>("object");
    QTest::newRow("nothing") << QJsonObject();
    QTest::newRow("words") << QJsonObject{{"a", true}, {"b", false}, {"c", QJsonValue::Null}};
    QTest::newRow("whole numbers")
        << QJsonObject{{"a", 0}, {"b", -0.0}, {"c", -7}, {"d", 1000000}, {"e", exact - 1}};
    QTest::newRow("other numbers") << QJsonObject{{"a", 0.1},
                                                  {"b", 1e300},
                                                  {"c", 1e-7},
                                                  {"d", std::numeric_limits<double>::infinity()},
                                                  {"e", std::numeric_limits<double>::quiet_NaN()}};
    QTest::newRow("nested") << QJsonObject{{"a", QJsonArray{1, "x", QJsonObject{{"b", 2}}}},
                                           {"c", QJsonObject{{"d", QJsonArray()}}},
                                           {"e", QJsonArray{QJsonArray(), QJsonObject()}}};
    QTest::newRow("brackets in texts") << QJsonObject{{"{", "["}, {"[", QJsonArray{"[", "{"}}};
    QTest::newRow("long") << QJsonObject{{QString(3000, 'k'), QString(5000, 'v')}};
    QString characters;
    for (int i = 0; i < 0x300; ++i) {
        characters += QChar(i);
    }
    QTest::newRow("escaped") << QJsonObject{{characters, characters}};
    for (const char *const text : {"", " ", "\"", "\\", "/", "\x1f", "\x7f", "m\xc3\xa9"}) {
        QTest::newRow(text) << QJsonObject{{text, text}};
    }
    QTest::newRow("surrogates") << QJsonObject{{"a", QString(QChar(0xd83d)) + QChar(0xde00)},
                                               {"b", QString(QChar(0xd83d))},
                                               {"c", QString(QChar(0xde00)) + 'x'}};
}

void CompactJsonTest::everyKindOfValueIsWrittenAsQtDoes()
{
    QFETCH(QJsonObject, object);

    QCOMPARE(compactJson(object), writtenByQt(object));
}

void CompactJsonTest::wholeNumbersKeepTheirDigits()
{
    const QByteArray text(R"({"a":9007199254740993,"b":[9223372036854775807],)"
                          R"("c":-9223372036854775808,"d":1.5})");

    QCOMPARE(compactJson(QJsonDocument::fromJson(text).object()), text);
}

void CompactJsonTest::aByteOrderMarkIsKept()
{
    const QString marked = QString(2, QChar(0xfeff)) + QString::fromUtf8("°");
    const QJsonObject object{{"a", marked}, {"b", QJsonArray{marked}}};

    const QJsonObject read = QJsonDocument::fromJson(compactJson(object)).object();

    QCOMPARE(read.value("a").toString(), marked);
    QCOMPARE(read.value("b").toArray().first().toString(), marked);
}

void CompactJsonTest::randomObjectsAreReadAsTheyWereWritten()
{
    QRandomGenerator random(20);
    for (int round = 0; round < 5000; ++round) {
        QJsonObject object;
        for (int i = int(random.bounded(8)); i > 0; --i) {
            const bool isNumber = random.bounded(2) == 0;
            object.insert(randomText(random),
                          isNumber ? randomNumber(random) : QJsonValue(randomText(random)));
        }
        const QJsonObject read = QJsonDocument::fromJson(compactJson(object)).object();
        QCOMPARE(read, object);
        for (auto member = object.begin(); member != object.end(); ++member) {
            QCOMPARE(read.value(member.key()).toVariant(), member.value().toVariant());
        }
    }
}

QTEST_GUILESS_MAIN(CompactJsonTest)

#include "CompactJsonTest.moc"
