// SPDX-License-Identifier: MIT
// Modules of one process share a connection, and are told apart by the name that a call was sent to.
#include "BusTestMain.h"
#include "InstanceListClient.h"
#include "ProcessDataPublisher.h"
#include "RudeCaller.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QSet>
#include <QTest>

class SharedConnectionTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SystemTest::init(); }
    void cleanup();
    void threeHundredModulesTakeOneConnection();
    void anotherConnectionIsMadeWhenTheBusGivesNoMoreNames();
    void objectsOfTheSameNameAreToldApart();
    void aModuleThatEndsLeavesTheOthersAndMayComeBack();
    void aChangeOfAnotherModuleLeavesAClientsValuesRight();

private:
    QString name(int number) const { return module + "M" + QString::number(number); }
    static QByteArray service(const QString &name)
    {
        return "com.orvalis.ProcessData." + name.toUtf8();
    }
    void publish(int count);
    QByteArray ownerOf(int number) const
    {
        return RudeCaller(bus->address()).ownerOf(service(name(number)));
    }
    // How many of them answer with their own description.
    int served() const;
    int owners() const;

    QVector<QSharedPointer<ProcessDataPublisher>> publishers;
};

void SharedConnectionTest::cleanup()
{
    publishers.clear();
    SystemTest::cleanup();
}

void SharedConnectionTest::publish(int count)
{
    for (int i = 0; i < count; ++i) {
        QString error;
        const auto publisher = ProcessDataPublisher::create(
            name(i), "Controller", "1", description({leaf("level", "int32")}), &error);
        QVERIFY2(publisher, qPrintable(error));
        QVERIFY(publisher->publish("level", i));
        publishers += publisher;
    }
}

int SharedConnectionTest::served() const
{
    RudeCaller caller(bus->address());
    int good = 0;
    for (int i = 0; i < publishers.size(); ++i) {
        const QByteArray own = "\"module\":\"" + name(i).toUtf8() + '"';
        good += caller.ask(RudeCaller::fetch(service(name(i)))).text.contains(own) ? 1 : 0;
    }
    return good;
}

int SharedConnectionTest::owners() const
{
    QSet<QByteArray> found;
    for (int i = 0; i < publishers.size(); ++i) {
        found += ownerOf(i);
    }
    return found.size();
}

void SharedConnectionTest::threeHundredModulesTakeOneConnection()
{
    constexpr int modules = 300;
    publish(modules);
    QCOMPARE(publishers.size(), modules);
    QCOMPARE(owners(), 1);
    QCOMPARE(served(), modules);
}

void SharedConnectionTest::anotherConnectionIsMadeWhenTheBusGivesNoMoreNames()
{
    bus->stop();
    bus->setLimit("max_names_per_connection", 10);
    QVERIFY(bus->start());
    publish(25);
    QCOMPARE(served(), 25);
    QCOMPARE(owners(), 3); // each has its own unique name besides

    bus->stop();
    QVERIFY(bus->start());
    QTRY_COMPARE_WITH_TIMEOUT(served(), 25, 20000);
}

void SharedConnectionTest::objectsOfTheSameNameAreToldApart()
{
    publish(2);
    const auto other
        = ProcessDataPublisher::create(name(1), "Other", "2", description({leaf("on", "bool")}));
    RudeCaller caller(bus->address());
    QCOMPARE(served(), 2);

    // The connection itself cannot say which one is meant.
    const RudeCaller::Answer both = caller.ask(RudeCaller::fetch(ownerOf(0)));
    QCOMPARE(both.error, QByteArray("org.freedesktop.DBus.Error.UnknownObject"));
    QVERIFY2(both.text.contains("call one by its name"), both.text);
    QCOMPARE(caller.ask(RudeCaller::list(ownerOf(0), "Other")).error, QByteArray());

    QStringList names;
    QString error;
    QVERIFY2(fetchObjects(name(0), names, error) == BusQueryResult::Ok, qPrintable(error));
    QCOMPARE(names, QStringList{"Controller"});
    QVERIFY2(fetchObjects(name(1), names, error) == BusQueryResult::Ok, qPrintable(error));
    QCOMPARE(names, (QStringList{"Controller", "Other"}));
}

void SharedConnectionTest::aModuleThatEndsLeavesTheOthersAndMayComeBack()
{
    publish(3);
    const QByteArray owner = ownerOf(1);
    publishers[0].reset();

    QCOMPARE(ownerOf(0),
             QByteArray("Could not get owner of name '" + service(name(0)) + "': no such name"));
    QCOMPARE(served(), 2);
    publishers[0] = ProcessDataPublisher::create(name(0), "Controller", "1",
                                                 description({leaf("level", "int32")}));
    QVERIFY(publishers[0]);
    QCOMPARE(served(), 3);
    QCOMPARE(ownerOf(0), owner);
}

void SharedConnectionTest::aChangeOfAnotherModuleLeavesAClientsValuesRight()
{
    publish(2);
    SelectorHandlerProcessValue handler(
        {selectorUrl(name(0), "level"), selectorUrl(name(1), "level")}, nullptr);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(0));
    QSignalSpy changes(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));

    QVERIFY(publishers[1]->replaceDescription(description({leaf("level", "int16")})));
    QVERIFY(publishers[1]->publish("level", 7));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{1}}), 20000);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(0));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(7));
}

BUS_TEST_MAIN(SharedConnectionTest)
#include "SharedConnectionTest.moc"
