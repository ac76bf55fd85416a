// SPDX-License-Identifier: MIT
// What each kind of row says, in each format.
#include "Entries.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

const qint64 noon = 1767268800123456789; // 2026-01-01 12:00:00.123 UTC
const QJsonObject speed{{"type", "float64"}, {"unit", "1/min"}, {"maximum", 3000}};

QString jsonOf(const Entry &entry)
{
    return QString::fromUtf8(QJsonDocument(entry.json).toJson(QJsonDocument::Compact));
}

QString csvOf(const Entry &entry, const QVector<Column> &columns)
{
    const QString text = render({QString(), columns, {entry}}, {Format::Csv, false, false, false});
    return text.chopped(1).replace('\n', '|');
}

ProcessValue value(const QVariant &content,
                   ProcessDataDefinitions::ErrorTypes errorType = ProcessDataDefinitions::NoError)
{
    return ProcessValue(content, errorType, noon);
}

} // namespace

Q_DECLARE_METATYPE(ReadResult *)

class EntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readRowsAreAsDocumented_data();
    void readRowsAreAsDocumented();
    void writeRowsAreAsDocumented_data();
    void writeRowsAreAsDocumented();
    void propertyRowsAreAsDocumented_data();
    void propertyRowsAreAsDocumented();
    void aLeafRowNamesAccess();
    void peopleSeeFewerDigits();
    void aMistypedPropertyIsAskedFor();
    void aLabelStandsInPlaceOfTheUrlForPeople();
};

void EntriesTest::initTestCase()
{
    qputenv("TZ", "UTC-2"); // two hours east of UTC
    tzset();
}

void EntriesTest::readRowsAreAsDocumented_data()
{
    QTest::addColumn<ReadResult *>("result");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("csv");
    QTest::addColumn<QString>("json");
    static QVector<ReadResult> results; // rows hold pointers: the type has no default value
    results.reserve(16);
    const auto row = [](const char *name, const ReadResult &result, Entry::State state,
                        const char *csv, const char *json) {
        results.append(result);
        QTest::newRow(name) << &results.last() << int(state) << QString::fromUtf8(csv)
                            << QString::fromUtf8(json);
    };
    const ProcessValue none(ProcessDataDefinitions::NoValue);

    row("a good number", {"u", value(1450.5), speed, {}}, Entry::Good,
        "u,1450.5,1/min,NoError,2026-01-01T14:00:00.123+02:00,,",
        R"({"errorType":"NoError","status":"ok","time":"2026-01-01T14:00:00.123+02:00",)"
        R"("timestampNs":"1767268800123456789","type":"float64","unit":"1/min","url":"u","value":1450.5})");
    row("a good string", {"u", value("a,b"), {{"type", "string"}}, {}}, Entry::Good,
        "u,\"a,b\",,NoError,2026-01-01T14:00:00.123+02:00,,",
        R"({"errorType":"NoError","status":"ok","time":"2026-01-01T14:00:00.123+02:00",)"
        R"("timestampNs":"1767268800123456789","type":"string","url":"u","value":"a,b"})");
    row("never published", {"u", ProcessValue(ProcessDataDefinitions::NotInitialized), speed, {}},
        Entry::Doubtful, "u,,1/min,NotInitialized,,never published so far,",
        R"({"errorType":"NotInitialized","reason":"never published so far","status":"doubtful",)"
        R"("type":"float64","unit":"1/min","url":"u","value":null})");
    row("the publisher is gone",
        {"u", value(1, ProcessDataDefinitions::SourceLost), {{"type", "int8"}}, {}},
        Entry::Doubtful,
        "u,1,,SourceLost,2026-01-01T14:00:00.123+02:00,\"the publisher is gone, this is its last value\",",
        R"({"errorType":"SourceLost","reason":"the publisher is gone, this is its last value",)"
        R"("status":"doubtful","time":"2026-01-01T14:00:00.123+02:00",)"
        R"("timestampNs":"1767268800123456789","type":"int8","url":"u","value":1})");
    row("a device fault",
        {"u", value(false, ProcessDataDefinitions::DeviceFault), {{"type", "bool"}}, {}},
        Entry::Doubtful,
        "u,false,,DeviceFault,2026-01-01T14:00:00.123+02:00,the publisher reports a fault of the device,",
        R"({"errorType":"DeviceFault","reason":"the publisher reports a fault of the device",)"
        R"("status":"doubtful","time":"2026-01-01T14:00:00.123+02:00",)"
        R"("timestampNs":"1767268800123456789","type":"bool","url":"u","value":false})");
    row("no such leaf", {"u", none, {}, {Finding::NoSuchLeaf, "why"}}, Entry::Failed,
        "u,,,NoValue,,why,",
        R"({"code":"noSuchLeaf","errorType":"NoValue","reason":"why","status":"failed","url":"u","value":null})");
    row("no value for no known reason", {"u", none, {}, {}}, Entry::Failed,
        "u,,,NoValue,,no value was obtained,",
        R"({"errorType":"NoValue","reason":"no value was obtained","status":"failed","url":"u","value":null})");
    row("deactivated", {"u?deactivated", none, {}, {Finding::Deactivated, "deactivated"}},
        Entry::Skipped, "u?deactivated,,,NoValue,,deactivated,",
        R"({"code":"deactivated","errorType":"NoValue","reason":"deactivated","status":"skipped",)"
        R"("url":"u?deactivated","value":null})");
}

void EntriesTest::readRowsAreAsDocumented()
{
    QFETCH(ReadResult *, result);
    QFETCH(int, state);
    QFETCH(QString, csv);
    QFETCH(QString, json);

    const Entry entry = readEntry(*result);

    QCOMPARE(int(entry.state), state);
    QCOMPARE(csvOf(entry, readColumns()), csv);
    QCOMPARE(jsonOf(entry), json);
    QCOMPARE(entry.rows.first().size(), readColumns().size());
    QCOMPARE(entry.reason.isEmpty(), state == Entry::Good);
}

void EntriesTest::writeRowsAreAsDocumented_data()
{
    QTest::addColumn<QVariant>("written");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("csv");
    QTest::addColumn<QString>("json");

    QTest::newRow("written")
        << QVariant(10.0) << int(Finding::None) << "u,10,1/min,written,,9.5,"
        << R"({"before":9.5,"status":"ok","type":"float64","unit":"1/min","url":"u","value":10})";
    QTest::newRow("refused by its text")
        << QVariant() << int(Finding::ValueRefused) << "u,1e1,1/min,failed,why,9.5,"
        << R"({"before":9.5,"code":"valueRefused","reason":"why","status":"failed","type":"float64","unit":"1/min","url":"u","value":"1e1"})";
    QTest::newRow("read-only")
        << QVariant() << int(Finding::ReadOnly) << "u,1e1,1/min,failed,why,9.5,"
        << R"({"before":9.5,"code":"readOnly","reason":"why","status":"failed","type":"float64","unit":"1/min","url":"u","value":"1e1"})";
    QTest::newRow("deactivated")
        << QVariant() << int(Finding::Deactivated) << "u,1e1,1/min,skipped,why,9.5,"
        << R"({"before":9.5,"code":"deactivated","reason":"why","status":"skipped","type":"float64","unit":"1/min","url":"u","value":"1e1"})";
}

void EntriesTest::writeRowsAreAsDocumented()
{
    QFETCH(QVariant, written);
    QFETCH(int, code);
    QFETCH(QString, csv);
    QFETCH(QString, json);
    const auto found = static_cast<Finding::Code>(code);

    const Entry entry = writeEntry(
        {"u", written, "1e1", speed, {found, found == Finding::None ? "" : "why"}, {}, 9.5});

    QCOMPARE(csvOf(entry, writeColumns()), csv);
    QCOMPARE(jsonOf(entry), json);
    QCOMPARE(entry.rows.first().size(), writeColumns().size());
}

void EntriesTest::propertyRowsAreAsDocumented_data()
{
    QTest::addColumn<QVariant>("unit");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("csv");
    QTest::addColumn<QString>("json");

    QTest::newRow("both there")
        << QVariant("bar") << int(Finding::None) << int(Entry::Good)
        << "u,minimum,-1.5,,|u,unit,bar,,"
        << R"({"properties":{"minimum":-1.5,"unit":"bar"},"status":"ok","url":"u"})";
    QTest::newRow("one missing")
        << QVariant() << int(Finding::None) << int(Entry::Failed)
        << "u,minimum,-1.5,,|u,unit,,the leaf has no such property,"
        << R"({"code":"noSuchProperty","properties":{"minimum":-1.5},"reason":"the leaf has no property \"unit\"","status":"failed","url":"u"})";
    QTest::newRow("no leaf")
        << QVariant() << int(Finding::ServiceMissing) << int(Entry::Failed) << "u,,,why,"
        << R"({"code":"serviceMissing","reason":"why","status":"failed","url":"u"})";
    QTest::newRow("an object is shown as JSON")
        << QVariant(QVariantMap{{"a", 1}}) << int(Finding::None) << int(Entry::Good)
        << "u,minimum,-1.5,,|u,unit,\"{\"\"a\"\":1}\",,"
        << R"({"properties":{"minimum":-1.5,"unit":{"a":1}},"status":"ok","url":"u"})";
}

void EntriesTest::propertyRowsAreAsDocumented()
{
    QFETCH(QVariant, unit);
    QFETCH(int, code);
    QFETCH(int, state);
    QFETCH(QString, csv);
    QFETCH(QString, json);
    PropertiesResult result{"u", {{"minimum", -1.5}, {"unit", unit}}, {}};
    if (code != Finding::None) {
        result.finding = {static_cast<Finding::Code>(code), "why"};
    }

    const Entry entry = propertiesEntry(result);

    QCOMPARE(int(entry.state), state);
    QCOMPARE(csvOf(entry, propertiesColumns()), csv);
    QCOMPARE(jsonOf(entry), json);
}

void EntriesTest::aLeafRowNamesAccess()
{
    const Entry readOnly
        = leafEntry("u", "p", {{"type", "int8"}, {"readOnly", true}, {"unit", "V"}});
    QCOMPARE(csvOf(readOnly, leafColumns()), QString("u,int8,V,read-only,"));
    QCOMPARE(
        jsonOf(readOnly),
        QString(
            R"({"access":"read-only","path":"p","status":"ok","type":"int8","unit":"V","url":"u"})"));
    QCOMPARE(csvOf(leafEntry("u", "p", {{"type", "int8"}}), leafColumns()),
             QString("u,int8,,writable,"));
}

void EntriesTest::peopleSeeFewerDigits()
{
    const Cell cell = readEntry({"u", value(1404.8874733332314), speed, {}}).rows.first().at(1);
    QCOMPARE(cell.text, QString("1404.887473"));
    QCOMPARE(cell.machineText, QString("1404.8874733332314"));
}

void EntriesTest::aMistypedPropertyIsAskedFor()
{
    const Entry entry
        = propertiesEntry({"u", {{"unti", QVariant()}}, {}, {}, {"minimum", "unit", "type"}});
    QCOMPARE(csvOf(entry, propertiesColumns()),
             QString("u,unti,,\"the leaf has no such property; did you mean \"\"unit\"\"?\","));
    QCOMPARE(entry.reason, QString("the leaf has no property \"unti\"; did you mean \"unit\"?"));
}

void EntriesTest::aLabelStandsInPlaceOfTheUrlForPeople()
{
    const auto table = [](const Entry &entry, const QVector<Column> &columns) {
        return render({QString(), columns, {entry}}, {Format::Table});
    };
    const Entry read = readEntry({"u", value(true), {}, {}, "on"});
    QCOMPARE(csvOf(read, readColumns()),
             QString("u,true,,NoError,2026-01-01T14:00:00.123+02:00,,on"));
    QCOMPARE(read.json.value("label").toString(), QString("on"));
    QCOMPARE(read.json.value("url").toString(), QString("u"));
    QCOMPARE(table(read, readColumns()),
             QString("URL  VALUE  UNIT  ERROR    TIME                     NOTE\n"
                     "on    true  -     NoError  2026-01-01 14:00:00.123\n"));
    QCOMPARE(read.subject, QString("u"));

    const Entry write = writeEntry({"u", true, "1", {}, {}, "on", {}, true});
    QCOMPARE(csvOf(write, writeColumns()), QString("u,true,,verified,,,on"));
    QVERIFY(table(write, writeColumns()).contains("\non "));
    const Entry properties = propertiesEntry({"u", {{"unit", "bar"}}, {}, "on"});
    QCOMPARE(csvOf(properties, propertiesColumns()), QString("u,unit,bar,,on"));
    QVERIFY(table(properties, propertiesColumns()).contains("\non "));
    for (const Entry &entry : {write, properties}) {
        QCOMPARE(entry.json.value("label").toString(), QString("on"));
    }
}

QTEST_APPLESS_MAIN(EntriesTest)
#include "EntriesTest.moc"
