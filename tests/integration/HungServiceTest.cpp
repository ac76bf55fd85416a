// SPDX-License-Identifier: MIT
// A service that stops answering: clients wait a bounded time, and are served again afterwards.
#include "BusTestMain.h"
#include "MessageLog.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QElapsedTimer>
#include <QTest>

class HungServiceTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aClientReturnsWithinTheTimeLimitAndSaysWhy();
    void valuesAreReadAndWrittenWithoutTheService();
    void aClientIsServedOnceTheServiceAnswersAgain();
    void otherSourcesAreServedMeanwhile();

private:
    QScopedPointer<PublisherProcess> publisher;
};

namespace {

const int timeLimit = 500; // milliseconds
const QJsonObject pump = description({leaf("speed", "float64"), leaf("setpoint", "int32")});
const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));

} // namespace

void HungServiceTest::initTestCase()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", QByteArray::number(timeLimit));
}

void HungServiceTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(module, pump));
    VERIFY_COMMAND(publisher->publish("speed", 8.0));
}

void HungServiceTest::aClientReturnsWithinTheTimeLimitAndSaysWhy()
{
    publisher->process().suspend();
    const MessageLog warnings(MessageLog::LibraryWarnings);
    QElapsedTimer timer;
    timer.start();

    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "setpoint")}, nullptr);

    const qint64 elapsed = timer.elapsed();
    QVERIFY2(elapsed >= timeLimit / 2, "the service was not hung, or not waited for");
    QVERIFY2(elapsed < 4 * timeLimit, QByteArray::number(elapsed).constData());
    QCOMPARE(warnings.texts().size(), 1);
    const QString source
        = QString("ModuleName: \"%1\" ObjectName: \"Controller\" InstanceName: \"1\"").arg(module);
    QVERIFY2(warnings.texts().at(0).startsWith("Read processDataDescription error. " + source),
             qPrintable(warnings.texts().at(0)));
    QVERIFY2(warnings.texts().at(0).contains(
                 ": no answer came in time (org.freedesktop.DBus.Error.NoReply)"),
             qPrintable(warnings.texts().at(0)));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);
}

void HungServiceTest::valuesAreReadAndWrittenWithoutTheService()
{
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "setpoint")}, nullptr);
    publisher->process().suspend();

    QCOMPARE(handler.getValue(0).getValue(), QVariant(8.0));
    QVERIFY(handler.setValue(ProcessValue(QVariant(17)), 1));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(17));

    publisher->process().resume();
    QCOMPARE(publisher->waitForWrite("setpoint"), QByteArray("17"));
}

void HungServiceTest::aClientIsServedOnceTheServiceAnswersAgain()
{
    publisher->process().suspend();
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "setpoint")}, nullptr);
    QSignalSpy spy(&handler, changed);

    publisher->process().resume();

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0, 1}}), 20000);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(8.0));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
}

void HungServiceTest::otherSourcesAreServedMeanwhile()
{
    PublisherProcess other;
    VERIFY_COMMAND(other.serve(module + "b", pump));
    VERIFY_COMMAND(other.publish("speed", 3.0));
    publisher->process().suspend();

    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module + "b", "speed")}, nullptr);
    QSignalSpy spy(&handler, changed);

    QCOMPARE(handler.getValue(1).getValue(), QVariant(3.0));
    VERIFY_COMMAND(other.replaceDescription(
        description({leaf("speed", "float32"), leaf("setpoint", "int32")})));
    QTRY_COMPARE(indexLists(spy), IndexLists({{1}}));
}

BUS_TEST_MAIN(HungServiceTest)
#include "HungServiceTest.moc"
