// SPDX-License-Identifier: MIT
// Descriptions of great size, and numbers at the edge of what JSON can tell.
#include "DescriptionSamples.h"
#include "ProcessDataDescription.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

QJsonObject nested(int levels)
{
    QJsonArray elements{leaf("leaf", 192)};
    for (int i = 1; i < levels; ++i) {
        elements = {QJsonObject{{"name", "g"}, {"elements", elements}}};
    }
    return document(elements);
}

QByteArray templateOf(const QByteArray &elements)
{
    return R"({"format": "process-data-description/1", "elements": [)" + elements + "]}";
}

QByteArray groupWithLeaf(const QByteArray &group, const QByteArray &leaves)
{
    return R"({"name": ")" + group + R"(", "elements": [)" + leaves + "]}";
}

// As a client gets it: published descriptions are written anew by the publisher.
QByteArray served(const QByteArray &templateText)
{
    const QJsonArray elements
        = QJsonDocument::fromJson(templateText).object().value("elements").toArray();
    return QJsonDocument(document({with(elements.at(0).toObject(), "offset", 192)})).toJson();
}

} // namespace

class DescriptionLimitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sixtyFourLevelsAreReadAndOneMoreIsNot();
    void aValueNestedDeeperThanJsonsReaderTakesIsRefused();
    void textOfMoreThan64MiBIsRefused();
    void aMillionLeavesAreReadAndOneMoreIsNot();
    void aPathAsLongAsAUrlIsReadAndOneCharacterMoreIsNot();
    void pathsThatTogetherFillTheMemoryAreRefused();
    void aNameThatNoUrlCanSpellIsRefused_data();
    void aNameThatNoUrlCanSpellIsRefused();
    void aHugeValueIsShortenedInItsMessage();
    void theEndsOfATypesRangeSurviveServing_data();
    void theEndsOfATypesRangeSurviveServing();
};

void DescriptionLimitsTest::sixtyFourLevelsAreReadAndOneMoreIsNot()
{
    QString error;

    QVERIFY2(parseDescription(nested(64), DescriptionForm::Published, error), qPrintable(error));
    QVERIFY(!parseDescription(nested(65), DescriptionForm::Published, error));
    QVERIFY2(error.endsWith(": more than 64 levels"), qPrintable(error));
}

void DescriptionLimitsTest::aValueNestedDeeperThanJsonsReaderTakesIsRefused()
{
    QJsonArray value;
    for (int i = 0; i < 1022; ++i) {
        value = QJsonArray{QJsonValue(value)};
    }
    QString error;

    QVERIFY(!parseDescription(withLeaf("vendor", value), DescriptionForm::Published, error));

    QVERIFY2(error.startsWith("description: no JSON: too deeply nested"), qPrintable(error));
}

void DescriptionLimitsTest::textOfMoreThan64MiBIsRefused()
{
    const QByteArray start(R"({"format": "process-data-description/1", "elements": []})");
    const int limit = 64 * 1024 * 1024;
    QString error;

    QVERIFY(parseDescription(start + QByteArray(limit - start.size(), ' '),
                             DescriptionForm::Template, error));
    QVERIFY(!parseDescription(start + QByteArray(limit - start.size() + 1, ' '),
                              DescriptionForm::Template, error));
    QCOMPARE(error, "description: 67108865 bytes of text, at most 67108864 are taken");
}

void DescriptionLimitsTest::aMillionLeavesAreReadAndOneMoreIsNot()
{
    QByteArray text(R"({"format": "process-data-description/1", "elements": [)");
    for (int i = 0; i < 1000000; ++i) {
        text += "{\"name\":\"" + QByteArray::number(i, 36) + "\",\"type\":\"bool\"},";
    }
    QString error;

    QVERIFY2(parseDescription(text.left(text.size() - 1) + "]}", DescriptionForm::Template, error),
             qPrintable(error));
    QVERIFY(!parseDescription(text + "{\"name\":\"-\",\"type\":\"bool\"}]}",
                              DescriptionForm::Template, error));
    QCOMPARE(error, "description: more than 1000000 leaves");
}

void DescriptionLimitsTest::aPathAsLongAsAUrlIsReadAndOneCharacterMoreIsNot()
{
    const QByteArray leaf = R"({"name": "leaf", "type": "bool"})";
    const QByteArray group(4096 - 5, 'g');
    QString error;

    QVERIFY2(
        parseDescription(templateOf(groupWithLeaf(group, leaf)), DescriptionForm::Template, error),
        qPrintable(error));
    QVERIFY(!parseDescription(templateOf(groupWithLeaf(group + 'g', leaf)),
                              DescriptionForm::Template, error));
    QVERIFY2(error.endsWith(": element \"leaf\" has a path of more than 4096 characters"),
             qPrintable(error));
}

void DescriptionLimitsTest::pathsThatTogetherFillTheMemoryAreRefused()
{
    QByteArray leaves;
    for (int i = 0; i < 40000; ++i) {
        leaves += R"({"name": "l)" + QByteArray::number(i) + R"(", "type": "bool"},)";
    }
    leaves.chop(1);
    QString error;

    QVERIFY(!parseDescription(templateOf(groupWithLeaf(QByteArray(4000, 'g'), leaves)),
                              DescriptionForm::Template, error));

    QCOMPARE(error, "description: all paths together have more than 134217728 characters");
}

void DescriptionLimitsTest::aNameThatNoUrlCanSpellIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray lone("\\ud800");
    QTest::newRow("element") << templateOf(R"({"name": ")" + lone + R"(", "type": "bool"})");
    QTest::newRow("group") << templateOf(groupWithLeaf(lone, ""));
    for (const char *key : {"module", "object", "instance"}) {
        QTest::newRow(key) << templateOf("").replace(
            "{\"format", QByteArray("{\"") + key + "\": \"" + lone + "\", \"format");
    }
}

void DescriptionLimitsTest::aNameThatNoUrlCanSpellIsRefused()
{
    QFETCH(QByteArray, text);
    QString error;

    QVERIFY(!parseDescription(text, DescriptionForm::Template, error));

    QVERIFY2(error.contains("control character"), qPrintable(error));
}

void DescriptionLimitsTest::aHugeValueIsShortenedInItsMessage()
{
    const QString huge(100000, 'x');
    for (const QJsonObject &description :
         {with(document({}), "format", huge), with(document({}), "module", huge + "_"),
          withBuffer("name", huge), withLeaf("type", huge), withLeaf("name", huge)}) {
        QString error;

        QVERIFY(!parseDescription(description, DescriptionForm::Published, error));

        QVERIFY2(error.size() < 250, qPrintable(error.left(250)));
    }
}

void DescriptionLimitsTest::theEndsOfATypesRangeSurviveServing_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("limit");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *type, const char *limit, const QVariant &value) {
        QTest::addRow("%s %s", type, limit) << QByteArray(type) << QByteArray(limit) << value;
    };
    row("int64", "9223372036854775807", std::numeric_limits<qlonglong>::max());
    row("int64", "-9223372036854775808", std::numeric_limits<qlonglong>::min());
    row("uint64", "18446744073709551615", std::numeric_limits<qulonglong>::max());
    row("int64", "9007199254740992", Q_INT64_C(9007199254740992));
    row("float32", "3.4028235e38", std::numeric_limits<float>::max());
    row("float32", "-0.1", -0.1F);
    row("float64", "1.7976931348623157e308", std::numeric_limits<double>::max());
}

void DescriptionLimitsTest::theEndsOfATypesRangeSurviveServing()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, limit);
    QFETCH(QVariant, value);
    const QByteArray text
        = templateOf(R"({"name": "a", "type": ")" + type + R"(", "maximum": )" + limit + "}");
    QString error;

    const auto published = parseDescription(text, DescriptionForm::Template, error);
    const auto received = parseDescription(served(text), DescriptionForm::Published, error);

    QVERIFY2(published && received, qPrintable(error));
    QCOMPARE(published->leaves.at(0).maximum, value);
    QCOMPARE(received->leaves.at(0).maximum, value);
    QCOMPARE(received->leaves.at(0).maximum.userType(), value.userType());
}

QTEST_APPLESS_MAIN(DescriptionLimitsTest)
#include "DescriptionLimitsTest.moc"
