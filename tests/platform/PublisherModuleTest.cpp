// SPDX-License-Identifier: MIT
// Publishers that share a module: name, registration, threads, queries and a restarted bus.
#include "BusTestMain.h"
#include "InstanceListClient.h"
#include "PrivateBus.h"
#include "ProviderRegistryService.h"
#include "PublisherSupport.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

class PublisherModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void selectorTypesOfAllPublishersAreRegisteredInTheirOrder();
    void aModuleIsRegisteredWhenTheRegistryComesLater();
    void theLastPublisherTakesTheRegistrationBack();
    void publishersOfManyThreadsShareOneModule();
    void objectsAndInstancesCanBeListed();
    void namesThatTheBusDoesNotAllowWork();
    void whatIsMissingIsToldApart();
    void allIsServedAnnouncedAndRegisteredAgainAfterABusRestart();
    void valuesGoOnWhileTheBusIsAway();

private:
    QSharedPointer<ProcessDataPublisher> publish(const QString &object, const QString &instance,
                                                 const QJsonObject &description = pumpDescription())
    {
        return ProcessDataPublisher::create(module, object, instance, description);
    }
    QString registered(const QString &entries) const
    {
        return QString(R"([{"additionalData":{"selectorTypeList":[%1]},"moduleName":"%2"}])")
            .arg(entries, module);
    }

    PrivateBus bus;
    QString module;
};

void PublisherModuleTest::init()
{
    QVERIFY(bus.start());
    module = uniqueModule();
    // The client's connection to the bus of the test before may not know yet that it is lost.
    QStringList names;
    QString error;
    QTRY_VERIFY_WITH_TIMEOUT(fetchObjects(module, names, error) == BusQueryResult::ServiceMissing,
                             20000);
}

void PublisherModuleTest::cleanup()
{
    QCOMPARE(buffersOf(module), QStringList());
    bus.stop();
}

void PublisherModuleTest::selectorTypesOfAllPublishersAreRegisteredInTheirOrder()
{
    const auto registry = ProviderRegistryService::create();
    const auto first = publish("Zone", "2");
    auto second
        = publish("Area", "1", describe(R"([{"name":"on","type":"bool","selectorType":"D"}])"));

    QTRY_COMPARE(registry->providerList(),
                 registered(R"("Zone/2/AnalogSelector","Zone/2/TextSelector","Area/1/D")"));
    QVERIFY(first->replaceDescription(describe(
        R"([{"name":"on","type":"bool","selectorType":"E"},{"name":"x","type":"bool"}])")));
    QTRY_COMPARE(registry->providerList(), registered(R"("Zone/2/E","Area/1/D")"));
    second.reset();

    QTRY_COMPARE(registry->providerList(), registered(R"("Zone/2/E")"));
}

void PublisherModuleTest::aModuleIsRegisteredWhenTheRegistryComesLater()
{
    const auto publisher = publish("Zone", "1");
    for (int round = 0; round < 3; ++round) {
        const auto registry = ProviderRegistryService::create();

        QTRY_COMPARE(registry->providerList(),
                     registered(R"("Zone/1/AnalogSelector","Zone/1/TextSelector")"));
    }
}

void PublisherModuleTest::theLastPublisherTakesTheRegistrationBack()
{
    const auto registry = ProviderRegistryService::create();
    auto publisher = publish("Zone", "1");
    QTRY_VERIFY(registry->providerList().contains(module));

    publisher.reset();

    QTRY_COMPARE(registry->providerList(), QString("[]"));
}

void PublisherModuleTest::publishersOfManyThreadsShareOneModule()
{
    constexpr int threadCount = 6;
    QVector<QThread *> threads;
    QAtomicInt good;
    for (int i = 0; i < threadCount; ++i) {
        threads += QThread::create([this, i, &good] {
            for (int round = 0; round < 10; ++round) {
                const auto publisher = publish("Zone", QString::number(i));
                TestClient client(module, "Zone", QString::number(i));
                if (publisher && publisher->publish("drive/speed", round) && client.attach()
                    && client.read("drive/speed").getValue() == round) {
                    good.ref();
                }
            }
        });
        threads.last()->start();
    }
    for (QThread *thread : qAsConst(threads)) {
        QVERIFY(thread->wait(60000));
        delete thread;
    }

    QCOMPARE(good.loadAcquire(), threadCount * 10);
}

void PublisherModuleTest::objectsAndInstancesCanBeListed()
{
    const auto first = publish("Zone", "2");
    const auto second = publish("Zone", "");
    const auto third = publish("Area 51", "1");
    QStringList names;
    QString error;

    QVERIFY2(fetchObjects(module, names, error) == BusQueryResult::Ok, qPrintable(error));
    QCOMPARE(names, (QStringList{"Area 51", "Zone"}));
    QVERIFY2(fetchInstances(module, "Zone", names, error) == BusQueryResult::Ok, qPrintable(error));
    QCOMPARE(names, (QStringList{"", "2"}));
    QVERIFY2(fetchInstances(module, "Area 51", names, error) == BusQueryResult::Ok,
             qPrintable(error));
    QCOMPARE(names, QStringList{"1"});
}

void PublisherModuleTest::namesThatTheBusDoesNotAllowWork()
{
    module = "7-" + module + QString::fromUtf8(" \xc3\xbc");
    const QString object("1.b-c");
    const QString instance = QString::fromUtf8("a_b/\xe2\x82\xac");

    const auto publisher = publish(object, instance);

    QVERIFY(!publisher.isNull());
    TestClient client(module, object, instance);
    QVERIFY(client.connector->getProcessDataDescription(instance, QString()).getValue().isValid());
}

void PublisherModuleTest::whatIsMissingIsToldApart()
{
    QStringList names{"untouched"};
    QString error;
    QVERIFY(fetchObjects(module, names, error) == BusQueryResult::ServiceMissing);
    QVERIFY2(error.startsWith("No service com.orvalis.ProcessData." + module), qPrintable(error));
    const auto publisher = publish("Zone", "1");
    QVERIFY(fetchInstances(module, "Other", names, error) == BusQueryResult::ServiceFailed);
    QVERIFY2(error.contains("/com/orvalis/ProcessData/Other"), qPrintable(error));
    bus.stop();
    QTRY_VERIFY(fetchObjects(module, names, error) == BusQueryResult::BusNotReachable);

    QCOMPARE(names, QStringList{"untouched"});
    QVERIFY(bus.start());
}

void PublisherModuleTest::allIsServedAnnouncedAndRegisteredAgainAfterABusRestart()
{
    const auto registry = ProviderRegistryService::create();
    const auto first = publish("Zone", "1");
    const auto second = publish("Zone", "2");
    TestClient client(module, "Zone", "1");
    QVERIFY(client.attach());
    QSignalSpy connected(first.data(), &ProcessDataPublisher::connectedChanged);
    QSignalSpy described(client.connector.data(),
                         &DBusProcessDescriptionConnector::processDataDescriptionChanged);

    bus.stop();
    QTRY_COMPARE(connected.size(), 1);
    QCOMPARE(connected.at(0).at(0).toBool(), false);
    QTRY_VERIFY(!client.connector->isDBusInterfaceValid());
    described.clear();
    QVERIFY(bus.start());

    QTRY_COMPARE(connected.size(), 2);
    QCOMPARE(connected.at(1).at(0).toBool(), true);
    QTRY_VERIFY(described.contains({QString("1")}));
    QTRY_VERIFY(described.contains({QString("2")}));
    QVERIFY2(client.attach(), qPrintable(client.error));
    QTRY_VERIFY(registry->providerList().contains("Zone/2/TextSelector"));
}

void PublisherModuleTest::valuesGoOnWhileTheBusIsAway()
{
    const auto publisher = publish("Zone", "1");
    TestClient client(module, "Zone", "1");
    QVERIFY(client.attach());
    bus.stop();

    QVERIFY(publisher->publish("drive/speed", 3));
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(3));
    QVERIFY(publisher->replaceDescription(pumpDescription())); // told when the bus is back

    QSignalSpy described(client.connector.data(),
                         &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    QVERIFY(bus.start());
    QTRY_VERIFY(described.contains({QString("1")}));
    // What was described may have been the first publishing, told late.
    QTRY_VERIFY2_WITH_TIMEOUT(client.attach(), qPrintable(client.error), 20000);
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(3));
}

BUS_TEST_MAIN(PublisherModuleTest)

#include "PublisherModuleTest.moc"
