// SPDX-License-Identifier: MIT
// A publisher that ends, cleanly or not, and comes back; a bus that does.
#include "BusTestMain.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QTest>

class RestartTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void valuesMoveAgainAfterTheirPublisherRestarts_data();
    void valuesMoveAgainAfterTheirPublisherRestarts();
    void aLostSourceKeepsItsLastValueAndSaysSo_data();
    void aLostSourceKeepsItsLastValueAndSaysSo();
    void onlyTheSelectorsOfTheRestartedPublisherAreReported();
    void aCrashedPublishersBufferIsRemovedByItsSuccessor();
    void announcementsArriveAgainAfterTheBusRestarted();
};

namespace {

const QJsonObject pump
    = description({leaf("speed", "float64"), leaf("running", "bool"), leaf("setpoint", "int32")});

const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));
const char *const propertyChanged = SIGNAL(propertyChanged(QVector<int>));

void addEndings()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("after a clean end") << false;
    QTest::newRow("after SIGKILL") << true;
}

bool end(PublisherProcess &publisher, bool killed)
{
    if (!killed) {
        return publisher.quit();
    }
    publisher.process().kill();
    return true;
}

} // namespace

void RestartTest::valuesMoveAgainAfterTheirPublisherRestarts_data()
{
    addEndings();
}

void RestartTest::valuesMoveAgainAfterTheirPublisherRestarts()
{
    QFETCH(const bool, killed);
    PublisherProcess before;
    VERIFY_COMMAND(before.serve(module, pump));
    SelectorHandlerProcessValue handler({selectorUrl(module, "speed"),
                                         selectorUrl(module, "running"),
                                         selectorUrl(module, "setpoint")},
                                        nullptr);
    QSignalSpy descriptions(&handler, changed);
    QSignalSpy properties(&handler, propertyChanged);
    VERIFY_COMMAND(before.publish("speed", 1.0));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(1.0));

    QVERIFY(end(before, killed));
    PublisherProcess after;
    VERIFY_COMMAND(after.serve(module, pump));
    VERIFY_COMMAND(after.publish("speed", 2.0));

    QTRY_COMPARE(handler.getValue(0).getValue(), QVariant(2.0));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    VERIFY_COMMAND(after.publish("speed", 3.0));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(3.0));
    QVERIFY(handler.setValue(ProcessValue(QVariant(44)), 2));
    QCOMPARE(after.waitForWrite("setpoint"), QByteArray("44"));
    // The next signal is the next change's: the restart was told exactly once.
    VERIFY_COMMAND(after.replaceDescription(description(
        {leaf("speed", "float64"), leaf("running", "bool"), leaf("setpoint", "int16")})));
    QTRY_COMPARE(indexLists(descriptions), IndexLists({{0, 1, 2}, {2}}));
    QCOMPARE(indexLists(properties), IndexLists());
}

void RestartTest::aLostSourceKeepsItsLastValueAndSaysSo_data()
{
    addEndings();
}

void RestartTest::aLostSourceKeepsItsLastValueAndSaysSo()
{
    QFETCH(const bool, killed);
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 9.5));
    SelectorHandlerProcessValue handler({selectorUrl(module, "speed")}, nullptr);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);

    QVERIFY(end(publisher, killed));

    // The buffer itself tells: nothing was fetched, and no announcement is needed.
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(9.5));
}

void RestartTest::onlyTheSelectorsOfTheRestartedPublisherAreReported()
{
    PublisherProcess steady;
    PublisherProcess before;
    VERIFY_COMMAND(steady.serve(module + "a", pump));
    VERIFY_COMMAND(before.serve(module + "b", pump));
    SelectorHandlerProcessValue handler(
        {selectorUrl(module + "a", "speed"), selectorUrl(module + "b", "speed"),
         selectorUrl(module + "a", "running"), selectorUrl(module + "b", "running")},
        nullptr);
    QSignalSpy spy(&handler, changed);

    before.process().kill();
    PublisherProcess after;
    VERIFY_COMMAND(after.serve(module + "b", pump));

    QTRY_COMPARE(indexLists(spy), IndexLists({{1, 3}}));
    VERIFY_COMMAND(steady.publish("speed", 6.0));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(6.0));
}

void RestartTest::aCrashedPublishersBufferIsRemovedByItsSuccessor()
{
    PublisherProcess before;
    VERIFY_COMMAND(before.serve(module, pump));
    before.process().kill();
    const QStringList left = buffersOf(module);
    QCOMPARE(left.size(), 1);

    PublisherProcess after;
    VERIFY_COMMAND(after.serve(module, pump));
    QCOMPARE(buffersOf(module).size(), 1);
    QVERIFY(buffersOf(module) != left);

    QVERIFY(after.quit());
    QCOMPARE(buffersOf(module), QStringList());
}

void RestartTest::announcementsArriveAgainAfterTheBusRestarted()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    SelectorHandlerProcessValue handler({selectorUrl(module, "speed")}, nullptr);
    QSignalSpy descriptions(&handler, changed);
    QSignalSpy properties(&handler, propertyChanged);

    bus->stop();
    VERIFY_COMMAND(publisher.publish("speed", 4.0));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(4.0)); // values need no bus
    QVERIFY2(bus->start(), bus->report().constData());

    // The publisher is back on the bus when a client that starts now is served.
    QTRY_VERIFY_WITH_TIMEOUT(SelectorHandlerProcessValue({selectorUrl(module, "speed")}, nullptr)
                                     .getValue(0)
                                     .getErrorType()
                                 == ProcessDataDefinitions::NoError,
                             20000);
    const QJsonObject withUnit = description({leaf("speed", "float64", {{"unit", "1/min"}}),
                                              leaf("running", "bool"), leaf("setpoint", "int32")});
    VERIFY_COMMAND(publisher.replaceProperties(withUnit));
    QTRY_COMPARE_WITH_TIMEOUT(handler.getProperty("unit", 0), QVariant("1/min"), 20000);
    QCOMPARE(indexLists(descriptions).size() + indexLists(properties).size(), 1);
}

BUS_TEST_MAIN(RestartTest)
#include "RestartTest.moc"
