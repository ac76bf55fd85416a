// SPDX-License-Identifier: MIT
// Process-data descriptions: what is read of them and what is refused.
#include "DescriptionSamples.h"
#include "ProcessDataDescription.h"

#include <QJsonDocument>
#include <QtTest>

class DescriptionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingThatADescriptionSaysIsRead();
    void aTemplateNeedsNoSourceAndNoBuffer();
    void limitsAreReadInTheLeafsType();
    void aBrokenRuleIsNamedWithItsPlace_data();
    void aBrokenRuleIsNamedWithItsPlace();
    void anOffsetAtTheEndOf63BitsDoesNotOverflow();
    void aBrokenTemplateIsNamedWithItsPlace_data();
    void aBrokenTemplateIsNamedWithItsPlace();
    void brokenTextIsRefused_data();
    void brokenTextIsRefused();
};

void DescriptionTest::everythingThatADescriptionSaysIsRead()
{
    const QJsonObject speed = with(with(leaf("speed", 256), "readOnly", true), "vendor", "kept");
    QString error;

    const auto description = parseDescription(
        document({with(with(leaf("name", 192, "string"), "capacity", 8), "unit",
                       QString::fromUtf8("°C")),
                  QJsonObject{{"name", "drive"}, {"elements", QJsonArray{speed}}}}),
        DescriptionForm::Published, error);

    QVERIFY2(description, qPrintable(error));
    QCOMPARE(description->source.toString(), QString("Pump/Controller/1"));
    QCOMPARE(description->session, quint64(5));
    QCOMPARE(description->buffer->name, "/processdata.Pump_Controller_1.7");
    QCOMPARE(description->buffer->generation, quint64(7));
    QCOMPARE(description->buffer->size, quint64(384));
    QCOMPARE(description->buffer->ownerUid, quint32(990));
    QCOMPARE(description->leaves.size(), 2);
    QCOMPARE(description->leaves.at(0).path, "name");
    QCOMPARE(description->leaves.at(0).capacity, quint32(8));
    QVERIFY(!description->leaves.at(0).readOnly);
    QCOMPARE(description->leaves.at(1).path, "drive/speed");
    QCOMPARE(description->leaves.at(1).offset, quint64(256));
    QVERIFY(description->leaves.at(1).readOnly);
    QCOMPARE(description->leaves.at(1).properties.toObject(), speed);
}

void DescriptionTest::aTemplateNeedsNoSourceAndNoBuffer()
{
    QString error;

    const auto description = parseDescription(QByteArray(R"({"format": "process-data-description/1",
                       "elements": [{"name": "a", "type": "bytes", "capacity": 1}]})"),
                                              DescriptionForm::Template, error);

    QVERIFY2(description, qPrintable(error));
    QVERIFY(!description->buffer);
    QCOMPARE(description->session, quint64(0));
    QCOMPARE(description->leaves.size(), 1);
}

void DescriptionTest::limitsAreReadInTheLeafsType()
{
    const auto limitOf = [](const char *type, const char *maximum) {
        QString error;
        const auto description = parseDescription(
            QByteArray(
                R"({"format": "process-data-description/1", "elements": [{"name": "a", "type": ")")
                + type + R"(", "maximum": )" + maximum + "}]}",
            DescriptionForm::Template, error);
        return description ? description->leaves.at(0).maximum : QVariant(error);
    };

    QCOMPARE(limitOf("int8", "127"), QVariant(127));
    QCOMPARE(limitOf("int64", "9223372036854775807"), QVariant(Q_INT64_C(9223372036854775807)));
    QCOMPARE(limitOf("int64", "9007199254740993"), QVariant(Q_INT64_C(9007199254740993)));
    QCOMPARE(limitOf("uint64", "18446744073709551615"), QVariant(Q_UINT64_C(18446744073709551615)));
    QCOMPARE(limitOf("float32", "0.5"), QVariant(0.5F));
    QCOMPARE(limitOf("float64", "1e300"), QVariant(1e300));
    QCOMPARE(limitOf("float64", "-2"), QVariant(-2.0));
}

void DescriptionTest::aBrokenRuleIsNamedWithItsPlace_data()
{
    QTest::addColumn<QJsonObject>("document");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QJsonObject &document, const char *message) {
        QTest::newRow(name) << document << message;
    };
    const QJsonObject good = document({leaf("a", 192)});
    row("no format", without(good, "format"),
        "description: \"format\" must be a string, but is missing");
    row("other format", with(good, "format", "x/2"),
        "description: format \"x/2\" is not \"process-data-description/1\"");
    row("no module", without(good, "module"),
        "description: \"module\" must be a string, but is missing");
    row("empty module", with(good, "module", ""),
        "description: \"module\" is \"\", which is empty or holds \"_\" or a control character");
    row("object with underscore", with(good, "object", "a_b"),
        "description: \"object\" is \"a_b\", which is empty or holds \"_\" or a control character");
    row("instance of wrong type", with(good, "instance", 1),
        "description: \"instance\" must be a string, but is a number");
    row("instance with a control character", with(good, "instance", "\n"),
        "description: \"instance\" holds a control character");
    row("negative session", with(good, "session", -1),
        "description: \"session\" must be a whole number from 0 to 9223372036854775807, but is -1");
    row("no buffer", without(good, "buffer"),
        "description: \"buffer\" must be an object, but is missing");
    row("buffer of wrong type", with(good, "buffer", QJsonArray()),
        "description: \"buffer\" must be an object, but is an array");
    row("buffer name of wrong type", withBuffer("name", QJsonValue::Null),
        "buffer: \"name\" must be a string, but is null");
    row("buffer name without slash", withBuffer("name", "x"),
        "buffer: \"x\" is not the name of a shared-memory object");
    row("buffer name in a folder", withBuffer("name", "/../x"),
        "buffer: \"/../x\" is not the name of a shared-memory object");
    row("buffer name of a slash", withBuffer("name", "/"),
        "buffer: \"/\" is not the name of a shared-memory object");
    row("buffer name too long", withBuffer("name", "/" + QString(255, 'n')),
        "buffer: \"/nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn\u2026\" is not the name of a shared-memory object");
    row("buffer name with a control character", withBuffer("name", "/a\n"),
        "buffer: \"/a\n\" is not the name of a shared-memory object");
    row("generation zero", withBuffer("generation", 0),
        "buffer: \"generation\" must be a whole number from 1 to 9223372036854775807, but is 0");
    row("generation with a fraction", withBuffer("generation", 1.5),
        "buffer: \"generation\" must be a whole number from 1 to 9223372036854775807, but is 1.5");
    row("size below the header", withBuffer("size", 191),
        "buffer: \"size\" must be a whole number from 192 to 9223372036854775807, but is 191");
    row("size of wrong type", withBuffer("size", "384"),
        "buffer: \"size\" must be a whole number, but is a string");
    row("owner too large", withBuffer("ownerUid", 4294967296.0),
        "buffer: \"ownerUid\" must be a whole number from 0 to 4294967295, but is 4294967296");
    row("revision too large", withBuffer("revision", 4294967296.0),
        "buffer: \"revision\" must be a whole number from 0 to 4294967295, but is 4294967296");
    row("no elements", without(good, "elements"),
        "description: \"elements\" must be an array, but is missing");
    row("element of wrong type", document({1}),
        "description: an element must be an object, but is a number");
    row("no name", document({without(leaf("a", 192), "name")}),
        "an element of description: \"name\" must be a string, but is missing");
    row("empty name", document({leaf("", 192)}),
        "description: element name \"\" is empty or holds \"/\" or a control character");
    row("name with a slash", document({leaf("a/b", 192)}),
        "description: element name \"a/b\" is empty or holds \"/\" or a control character");
    row("name with a control character", document({leaf("a\t", 192)}),
        "description: element name \"a\t\" is empty or holds \"/\" or a control character");
    row("neither leaf nor group", document({QJsonObject{{"name", "a"}}}),
        "element \"a\" must have either \"type\" or \"elements\"");
    row("leaf and group", withLeaf("elements", QJsonArray()),
        "element \"a\" must have either \"type\" or \"elements\"");
    row("path given twice", document({leaf("a", 192), leaf("a", 256)}),
        "description: path \"a\" is given twice");
    row("elements of wrong type", document({QJsonObject{{"name", "g"}, {"elements", 1}}}),
        "group \"g\": \"elements\" must be an array, but is a number");
    row("bad leaf in a group",
        document({QJsonObject{{"name", "g"}, {"elements", QJsonArray{leaf("b", 192, "double")}}}}),
        "leaf \"g/b\": unknown type \"double\"");
    row("type of wrong type", withLeaf("type", 8),
        "leaf \"a\": \"type\" must be a string, but is a number");
    row("string without capacity", withLeaf("type", "string"),
        "leaf \"a\": \"capacity\" must be a whole number, but is missing");
    row("capacity zero", document({with(leaf("a", 192, "bytes"), "capacity", 0)}),
        "leaf \"a\": \"capacity\" must be a whole number from 1 to 16777216, but is 0");
    row("capacity too large", document({with(leaf("a", 192, "bytes"), "capacity", 16777217)}),
        "leaf \"a\": \"capacity\" must be a whole number from 1 to 16777216, but is 16777217");
    row("read-only of wrong type", withLeaf("readOnly", "yes"),
        "leaf \"a\": \"readOnly\" must be a boolean, but is a string");
    row("unit of wrong type", withLeaf("unit", 1),
        "leaf \"a\": \"unit\" must be a string, but is a number");
    row("description of wrong type", withLeaf("description", QJsonArray()),
        "leaf \"a\": \"description\" must be a string, but is an array");
    row("selector type of wrong type", withLeaf("selectorType", 1),
        "leaf \"a\": \"selectorType\" must be a string, but is a number");
    row("simulate of wrong type", withLeaf("simulate", true),
        "leaf \"a\": \"simulate\" must be an object, but is a boolean");
    row("minimum of wrong type", withLeaf("minimum", "1"),
        "leaf \"a\": \"minimum\" must be a number, but is a string");
    row("limit of a bool", document({with(leaf("a", 192, "bool"), "maximum", 1)}),
        "leaf \"a\": a leaf of type bool has no \"maximum\"");
    row("limit that its type cannot hold",
        document({with(leaf("a", 192, "uint8"), "maximum", 256)}),
        "leaf \"a\": \"maximum\" is 256, which does not convert to uint8: it is outside 0 to 255");
    row("limit with a fraction", document({with(leaf("a", 192, "int8"), "minimum", 0.5)}),
        "leaf \"a\": \"minimum\" is 0.5, which does not convert to int8: it has a fraction");
    row("limits in wrong order", document({with(with(leaf("a", 192), "minimum", 2), "maximum", 1)}),
        "leaf \"a\": minimum 2 is above maximum 1");
    row("no offset", document({without(leaf("a", 192), "offset")}),
        "leaf \"a\": \"offset\" must be a whole number, but is missing");
    row("offset in the header", document({leaf("a", 128)}),
        "leaf \"a\": \"offset\" must be a whole number from 192 to 9223372036854775807, but is 128");
    row("misaligned offset", document({leaf("a", 200)}),
        "leaf \"a\": offset 200 is not a multiple of 64");
    row("slot past the end", document({leaf("a", 384)}),
        "leaf \"a\": a slot of 64 bytes at offset 384 lies outside the buffer of 384 bytes");
    row("slot across the end", document({with(leaf("a", 320, "string"), "capacity", 100)}),
        "leaf \"a\": a slot of 256 bytes at offset 320 lies outside the buffer of 384 bytes");
    row("slots on top of each other", document({leaf("a", 192), leaf("b", 192)}),
        "leaf \"b\": its slot at offset 192 overlaps that of leaf \"a\"");
    row("slots that overlap",
        document({with(leaf("a", 192, "string"), "capacity", 20), leaf("b", 256)}),
        "leaf \"b\": its slot at offset 256 overlaps that of leaf \"a\"");
    row("slots that overlap, the later one first",
        document({leaf("b", 256), with(leaf("a", 192, "string"), "capacity", 20)}),
        "leaf \"b\": its slot at offset 256 overlaps that of leaf \"a\"");
}

void DescriptionTest::aBrokenRuleIsNamedWithItsPlace()
{
    QFETCH(QJsonObject, document);
    QFETCH(QString, message);
    QString error;

    QVERIFY(!parseDescription(document, DescriptionForm::Published, error));

    QCOMPARE(error, message);
}

void DescriptionTest::anOffsetAtTheEndOf63BitsDoesNotOverflow()
{
    QByteArray text = QJsonDocument(document({leaf("a", 192)})).toJson(QJsonDocument::Compact);
    text.replace("\"offset\":192", "\"offset\":9223372036854775744");
    QString error;

    QVERIFY(!parseDescription(text, DescriptionForm::Published, error));

    QCOMPARE(
        error,
        "leaf \"a\": a slot of 64 bytes at offset 9223372036854775744 lies outside the buffer of 384 "
        "bytes");
}

void DescriptionTest::aBrokenTemplateIsNamedWithItsPlace_data()
{
    QTest::addColumn<QJsonObject>("document");
    QTest::addColumn<QString>("message");
    const QJsonObject good = without(document({without(leaf("a", 192), "offset")}), "buffer");
    QTest::newRow("buffer") << document({}) << "description: \"buffer\" is the publisher's to add";
    QTest::newRow("offset") << without(document({leaf("a", 192)}), "buffer")
                            << "leaf \"a\": \"offset\" is the publisher's to add";
    QTest::newRow("module with underscore")
        << with(good, "module", "a_b")
        << "description: \"module\" is \"a_b\", which is empty or holds \"_\" or a control character";
    QTest::newRow("module of wrong type")
        << with(good, "module", 1) << "description: \"module\" must be a string, but is a number";
}

void DescriptionTest::aBrokenTemplateIsNamedWithItsPlace()
{
    QFETCH(QJsonObject, document);
    QString error;

    QVERIFY(!parseDescription(document, DescriptionForm::Template, error));

    QTEST(error, "message");
}

void DescriptionTest::brokenTextIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut") << QByteArray(R"({"format": "process-data-description/1", "elements": [)");
    QTest::newRow("array") << QByteArray("[]");
    QTest::newRow("something behind")
        << QByteArray(R"({"format": "process-data-description/1", "elements": []} x)");
    QTest::newRow("invalid UTF-8") << QByteArray(
        "{\"format\": \"process-data-description/1\", \"x\": \"\xff\", \"elements\": []}");
    QTest::newRow("nested past what JSON's reader takes") << QByteArray(100000, '[');
}

void DescriptionTest::brokenTextIsRefused()
{
    QFETCH(QByteArray, text);
    QString error;

    QVERIFY(!parseDescription(text, DescriptionForm::Template, error));

    QVERIFY2(error.startsWith("description: "), qPrintable(error));
}

QTEST_APPLESS_MAIN(DescriptionTest)
#include "DescriptionTest.moc"
