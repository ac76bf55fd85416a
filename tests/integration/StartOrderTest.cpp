// SPDX-License-Identifier: MIT
// Client, publishers, system services and bus, started in any order.
#include "BusTestMain.h"
#include "MessageLog.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QDir>
#include <QTest>

class StartOrderTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aClientThatStartsAfterThePublisherReadsAtOnce();
    void aClientThatStartsFirstIsToldOnceWhenThePublisherComesUp();
    void twoPublishersServeOneListInItsOrder();
    void oneOfTwoPublishersMayComeLater();
    void aClientWithoutABusGetsItsValuesWithItsNextList();
    void theEndOfTheStartUpAttachesTheSourcesThatWereNotAttached();
    void aLateClientLearnsThatTheStartUpIsOver();
};

namespace {

const QJsonObject pump = description({leaf("speed", "float64"), leaf("running", "bool")});

const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));

// Makes a module's buffer unreachable while the object lives: its service answers, but nobody
// attaches. Nothing announces that it is back, so only the end of the start-up can make a client
// look again.
class HiddenBuffer
{
public:
    explicit HiddenBuffer(const QString &module)
        : path(sharedMemory.filePath(buffersOf(module).value(0)))
        , hidden(sharedMemory.rename(path, path + ".hidden"))
    {
    }
    ~HiddenBuffer() { sharedMemory.rename(path + ".hidden", path); }

private:
    QDir sharedMemory{"/dev/shm"};
    const QString path;

public:
    const bool hidden;
};

} // namespace

void StartOrderTest::aClientThatStartsAfterThePublisherReadsAtOnce()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 1450.5));
    const MessageLog warnings(MessageLog::LibraryWarnings);

    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "speed"), selectorUrl(module, "running")}, nullptr);

    QCOMPARE(handler.getValue(0).getValue(), QVariant(1450.5));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(handler.getValue(1).getErrorType(), ProcessDataDefinitions::NotInitialized);
    QCOMPARE(warnings.texts(), QStringList());
}

void StartOrderTest::aClientThatStartsFirstIsToldOnceWhenThePublisherComesUp()
{
    const QVector<QString> urls
        = {selectorUrl(module, "speed"), "not a selector", selectorUrl(module, "running")};
    SelectorHandlerProcessValue handler(urls, nullptr);
    QSignalSpy spy(&handler, changed);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 7.0));

    QTRY_COMPARE(handler.getValue(0).getValue(), QVariant(7.0));
    // What follows must be the next signal: nothing was told twice in between.
    VERIFY_COMMAND(publisher.replaceDescription(
        description({leaf("speed", "float64"), leaf("running", "uint8")})));
    QTRY_COMPARE(indexLists(spy), IndexLists({{0, 2}, {2}}));
}

void StartOrderTest::twoPublishersServeOneListInItsOrder()
{
    PublisherProcess first;
    PublisherProcess second;
    VERIFY_COMMAND(first.start());
    VERIFY_COMMAND(second.start());
    VERIFY_COMMAND(first.create(module + "a", "Controller", "1", pump));
    VERIFY_COMMAND(second.create(module + "b", "Controller", "1", pump));
    VERIFY_COMMAND(first.publish("speed", 1.0));
    VERIFY_COMMAND(second.publish("speed", 2.0));
    VERIFY_COMMAND(second.publish("running", true));

    SelectorHandlerProcessValue handler({selectorUrl(module + "b", "running"),
                                         selectorUrl(module + "a", "speed"),
                                         selectorUrl(module + "b", "speed")},
                                        nullptr);

    const QVector<ProcessValue> values = handler.getValues();
    QCOMPARE(values.size(), 3);
    QCOMPARE(values.at(0).getValue(), QVariant(true));
    QCOMPARE(values.at(1).getValue(), QVariant(1.0));
    QCOMPARE(values.at(2).getValue(), QVariant(2.0));
}

void StartOrderTest::oneOfTwoPublishersMayComeLater()
{
    PublisherProcess first;
    VERIFY_COMMAND(first.serve(module + "a", pump));
    SelectorHandlerProcessValue handler({selectorUrl(module + "b", "speed"),
                                         selectorUrl(module + "a", "speed"),
                                         selectorUrl(module + "b", "running")},
                                        nullptr);
    QSignalSpy spy(&handler, changed);

    PublisherProcess second;
    VERIFY_COMMAND(second.serve(module + "b", pump));

    QTRY_COMPARE(indexLists(spy), IndexLists({{0, 2}}));
    VERIFY_COMMAND(second.publish("speed", 3.5));
    QCOMPARE(handler.getValue(0).getValue(), QVariant(3.5));
}

void StartOrderTest::aClientWithoutABusGetsItsValuesWithItsNextList()
{
    bus->stop();
    const QVector<QString> urls{selectorUrl(module, "speed")};
    SelectorHandlerProcessValue handler(urls, nullptr);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);

    QVERIFY2(bus->start(), bus->report().constData());
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 12.0));
    handler.setSelectorUrls(urls);

    QCOMPARE(handler.getValue(0).getValue(), QVariant(12.0));
}

void StartOrderTest::theEndOfTheStartUpAttachesTheSourcesThatWereNotAttached()
{
    PublisherProcess system;
    VERIFY_COMMAND(system.start());
    VERIFY_COMMAND(system.playStatusManager());
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    VERIFY_COMMAND(publisher.publish("speed", 5.0));
    VERIFY_COMMAND(publisher.create(module + "b", "Controller", "1", pump));
    SelectorHandlerProcessValue handler(nullptr);
    {
        const HiddenBuffer buffer(module + '_');
        QVERIFY(buffer.hidden);
        handler.setSelectorUrls({selectorUrl(module + "b", "speed"), selectorUrl(module, "speed")});
    }
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NotInitialized);
    QCOMPARE(handler.getValue(1).getErrorType(), ProcessDataDefinitions::NoValue);
    QSignalSpy spy(&handler, changed);

    VERIFY_COMMAND(system.announceStartupReady());

    QTRY_COMPARE(indexLists(spy), IndexLists({{1}}));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(5.0));
}

void StartOrderTest::aLateClientLearnsThatTheStartUpIsOver()
{
    PublisherProcess system;
    VERIFY_COMMAND(system.start());
    VERIFY_COMMAND(system.playStatusManager());
    VERIFY_COMMAND(system.announceStartupReady());
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, pump));
    SelectorHandlerProcessValue handler(nullptr);
    QSignalSpy spy(&handler, changed);
    {
        const HiddenBuffer buffer(module + '_');
        QVERIFY(buffer.hidden);
        handler.setSelectorUrls({selectorUrl(module, "speed")});
    }

    QTRY_COMPARE(indexLists(spy), IndexLists({{0}}));
}

BUS_TEST_MAIN(StartOrderTest)
#include "StartOrderTest.moc"
