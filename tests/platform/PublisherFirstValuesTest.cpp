// SPDX-License-Identifier: MIT
// Values that a new buffer holds before any client hears of it.
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "PublisherSupport.h"

#include <QtTest>

class PublisherFirstValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void init() { module = uniqueModule(); }
    void cleanup() { QCOMPARE(buffersOf(module), QStringList()); }

    void theyAreThereBeforeTheInstanceIsServed();
    void theyAreThereBeforeAReplacementIsServed();
    void theyCannotReplaceWhatTheyBelongTo();
    void aRefusedDescriptionAsksForNone();

private:
    PrivateBus bus;
    QString module;
};

void PublisherFirstValuesTest::theyAreThereBeforeTheInstanceIsServed()
{
    TestClient client(module, "Controller", "1");
    bool servedTooEarly = true;

    const auto publisher = ProcessDataPublisher::create(
        module, "Controller", "1", pumpDescription(), [&](ProcessDataPublisher &to) {
            servedTooEarly = client.attach();
            QVERIFY(to.publish("drive/speed", 5));
        });

    QVERIFY(!publisher.isNull());
    QVERIFY(!servedTooEarly);
    QVERIFY2(client.attach(), qPrintable(client.error));
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(5));
    QCOMPARE(client.read("temperature").getErrorType(), ProcessDataDefinitions::NotInitialized);
}

void PublisherFirstValuesTest::theyAreThereBeforeAReplacementIsServed()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(!publisher.isNull() && publisher->publish("drive/speed", 5));
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());
    const QJsonObject before = client.document();
    QJsonObject servedMeanwhile;

    QVERIFY(publisher->replaceDescription(
        describe(R"([{"name":"drive","elements":[{"name":"speed","type":"int32"}]},
                     {"name":"temperature","type":"int16"}])"),
        [&](ProcessDataPublisher &to) {
            QVERIFY(client.attach());
            servedMeanwhile = client.document();
            QVERIFY(to.publish("temperature", to.value("drive/speed").getValue().toInt() + 1));
        }));

    QCOMPARE(servedMeanwhile, before);
    QVERIFY(client.attach());
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(5));
    QCOMPARE(client.read("temperature").getValue(), QVariant(6));
}

void PublisherFirstValuesTest::theyCannotReplaceWhatTheyBelongTo()
{
    const QJsonObject description = pumpDescription();
    QString replacing;
    QString changing;

    const auto publisher = ProcessDataPublisher::create(
        module, "Controller", "1", description, [&](ProcessDataPublisher &to) {
            QVERIFY(!to.replaceDescription(description, &replacing));
            QVERIFY(!to.replaceProperties(description, &changing));
        });

    QVERIFY(!publisher.isNull());
    QVERIFY2(replacing.contains(module) && replacing.contains("first values"),
             qPrintable(replacing));
    QVERIFY2(changing.contains(module) && changing.contains("first values"), qPrintable(changing));
    QVERIFY(publisher->replaceDescription(description));
    QVERIFY(publisher->replaceProperties(description));
}

void PublisherFirstValuesTest::aRefusedDescriptionAsksForNone()
{
    int asked = 0;
    const auto count = [&](ProcessDataPublisher &) { ++asked; };
    const QJsonObject bad = describe(R"([{"name":"a","type":"complex"}])");
    QString error;

    QVERIFY(ProcessDataPublisher::create(module, "Controller", "1", bad, count, &error).isNull());
    QVERIFY2(error.contains("complex"), qPrintable(error));
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(!publisher.isNull());
    QVERIFY(!publisher->replaceDescription(bad, count, &error));

    QCOMPARE(asked, 0);
}

BUS_TEST_MAIN(PublisherFirstValuesTest)

#include "PublisherFirstValuesTest.moc"
