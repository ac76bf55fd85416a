// SPDX-License-Identifier: MIT
// Changed descriptions and properties, and the exact lists of selectors that clients are told.
#include "BusTestMain.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QTest>

class ChangeTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void exactlyTheLeavesThatChangedAreReported_data();
    void exactlyTheLeavesThatChangedAreReported();
    void aLeafThatComesAndGoesIsReportedEachTime();
    void valuesOfKeptLeavesCarryOver();
    void changedPropertiesAreReportedAsPropertiesOnly();
    void anotherInstancesChangeIsNotReported();
    void manyChangesInARowEndWithTheLastOne();
    void aWrittenValueReachesThePublisher();
    void aReadOnlyLeafIsNotWritten();

private:
    QVector<QString> urls() const;
    PublisherProcess &publisher() { return *running; }

    QScopedPointer<PublisherProcess> running;
};

namespace {

const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));
const char *const propertyChanged = SIGNAL(propertyChanged(QVector<int>));

const QJsonObject speed = leaf("speed", "float64");
const QJsonObject level = leaf("level", "float64", {{"unit", "m"}});
const QJsonObject pulses = leaf("pulses", "uint32");
const QJsonObject name = leaf("name", "string", {{"capacity", 32}, {"readOnly", true}});
const QJsonObject alarm = leaf("alarm", "bool");

QJsonObject group(const QString &groupName, const QJsonArray &elements)
{
    return {{"name", groupName}, {"elements", elements}};
}

} // namespace

void ChangeTest::init()
{
    SystemTest::init();
    running.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher().serve(module, description({speed, level, pulses, name})));
}

// "alarm" is not there at first; "speed" is asked for twice.
QVector<QString> ChangeTest::urls() const
{
    return {selectorUrl(module, "speed"),  selectorUrl(module, "level"),
            selectorUrl(module, "pulses"), selectorUrl(module, "name"),
            selectorUrl(module, "alarm"),  selectorUrl(module, "speed")};
}

void ChangeTest::exactlyTheLeavesThatChangedAreReported_data()
{
    QTest::addColumn<QJsonArray>("elements");
    QTest::addColumn<QVector<int>>("reported");

    const QJsonObject retyped = leaf("pulses", "uint64");
    const QJsonObject otherUnit = leaf("level", "float64", {{"unit", "cm"}});
    const QJsonObject writableName = leaf("name", "string", {{"capacity", 32}});
    QTest::newRow("a leaf that was added")
        << QJsonArray{speed, level, pulses, name, alarm} << QVector<int>{4};
    QTest::newRow("a leaf that was removed") << QJsonArray{speed, pulses, name} << QVector<int>{1};
    QTest::newRow("a leaf of another type, the others at other offsets")
        << QJsonArray{alarm, retyped, speed, level, name} << QVector<int>{2, 4};
    QTest::newRow("each of two selectors of one removed leaf")
        << QJsonArray{level, pulses, name} << QVector<int>{0, 5};
    QTest::newRow("a leaf that moved into a group, thus away")
        << QJsonArray{speed, group("tank", {level}), pulses, name} << QVector<int>{1};
    QTest::newRow("another unit") << QJsonArray{speed, otherUnit, pulses, name} << QVector<int>{1};
    QTest::newRow("a leaf that became writable")
        << QJsonArray{speed, level, pulses, writableName} << QVector<int>{3};
    QTest::newRow("added, removed and retyped at once, in the order of the list")
        << QJsonArray{alarm, retyped, speed, name} << QVector<int>{1, 2, 4};
}

void ChangeTest::exactlyTheLeavesThatChangedAreReported()
{
    QFETCH(const QJsonArray, elements);
    QFETCH(const QVector<int>, reported);
    SelectorHandlerProcessValue handler(urls(), nullptr);
    // Once refreshed, the missing leaf's text is settled: only real changes show from here.
    QSignalSpy descriptions(&handler, changed);
    VERIFY_COMMAND(publisher().replaceDescription(description({speed, level, pulses, name})));
    QTRY_COMPARE(indexLists(descriptions), IndexLists({{4}}));
    descriptions.clear();
    QSignalSpy properties(&handler, propertyChanged);

    VERIFY_COMMAND(publisher().replaceDescription(description(elements)));

    QTRY_COMPARE(indexLists(descriptions), IndexLists({reported}));
    QCOMPARE(indexLists(properties), IndexLists());
}

void ChangeTest::aLeafThatComesAndGoesIsReportedEachTime()
{
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "alarm")}, nullptr);
    QSignalSpy spy(&handler, changed);

    VERIFY_COMMAND(publisher().replaceDescription(description({speed, alarm})));
    VERIFY_COMMAND(publisher().publish("alarm", true));
    QTRY_COMPARE(indexLists(spy), IndexLists({{1}}));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(true));

    VERIFY_COMMAND(publisher().replaceDescription(description({speed})));
    QTRY_COMPARE(indexLists(spy), IndexLists({{1}, {1}}));
    QCOMPARE(handler.getValue(1).getErrorType(), ProcessDataDefinitions::NoValue);
}

void ChangeTest::valuesOfKeptLeavesCarryOver()
{
    SelectorHandlerProcessValue handler(urls(), nullptr);
    QSignalSpy spy(&handler, changed);
    VERIFY_COMMAND(publisher().publish("speed", 1234.5));
    VERIFY_COMMAND(publisher().publish("pulses", 77));

    VERIFY_COMMAND(publisher().replaceDescription(
        description({alarm, speed, leaf("pulses", "string", {{"capacity", 8}})})));

    QTRY_COMPARE(spy.size(), 1);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(1234.5));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(handler.getValue(2).getErrorType(), ProcessDataDefinitions::NotInitialized);
}

void ChangeTest::changedPropertiesAreReportedAsPropertiesOnly()
{
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "level")}, nullptr);
    QSignalSpy descriptions(&handler, changed);
    QSignalSpy properties(&handler, propertyChanged);
    VERIFY_COMMAND(publisher().publish("level", 2.5));

    VERIFY_COMMAND(publisher().replaceProperties(
        description({speed, leaf("level", "float64", {{"unit", "cm"}}), pulses, name})));

    QTRY_COMPARE(indexLists(properties), IndexLists({{1}}));
    QCOMPARE(indexLists(descriptions), IndexLists());
    QCOMPARE(handler.getProperty("unit", 1), QVariant("cm"));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(2.5));
}

void ChangeTest::anotherInstancesChangeIsNotReported()
{
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "speed", "Controller", "2")}, nullptr);
    VERIFY_COMMAND(publisher().create(module, "Controller", "2", description({speed})));
    QSignalSpy spy(&handler, changed);
    QTRY_COMPARE(indexLists(spy), IndexLists({{1}}));

    // Commands go to the instance that was made last, the second one.
    VERIFY_COMMAND(publisher().replaceDescription(description({leaf("speed", "int16")})));

    QTRY_COMPARE(indexLists(spy), IndexLists({{1}, {1}}));
}

void ChangeTest::manyChangesInARowEndWithTheLastOne()
{
    SelectorHandlerProcessValue handler({selectorUrl(module, "level")}, nullptr);
    for (int i = 0; i < 20; ++i) {
        const QString unit = QString("unit %1").arg(i);
        VERIFY_COMMAND(publisher().replaceDescription(
            description({leaf("level", "float64", {{"unit", unit}})})));
        VERIFY_COMMAND(publisher().publish("level", i));
    }

    QTRY_COMPARE(handler.getProperty("unit", 0), QVariant("unit 19"));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(19.0));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
}

void ChangeTest::aWrittenValueReachesThePublisher()
{
    SelectorHandlerProcessValue handler(urls(), nullptr);

    QVERIFY(handler.setValue(ProcessValue(QVariant(12.25)), 0));

    QCOMPARE(publisher().waitForWrite("speed"), QByteArray("12.25"));
    QCOMPARE(handler.getValue(5).getValue(), QVariant(12.25)); // the other selector of that leaf
}

void ChangeTest::aReadOnlyLeafIsNotWritten()
{
    VERIFY_COMMAND(publisher().publish("name", "north"));
    SelectorHandlerProcessValue handler(urls(), nullptr);

    QVERIFY(!handler.setValue(ProcessValue(QVariant("south")), 3));

    QCOMPARE(handler.getValue(3).getValue(), QVariant("north"));
}

BUS_TEST_MAIN(ChangeTest)
#include "ChangeTest.moc"
