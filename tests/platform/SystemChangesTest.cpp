// SPDX-License-Identifier: MIT
// A watch over the system hears of services, of the list of providers and of the bus.
#include "SystemChanges.h"
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "ScriptedService.h"
#include "ServiceOwnerClient.h"

#include <QMutex>
#include <QtTest>

namespace {

const QString registry("com.orvalis.SystemInformationManager");
const QString registryPath("/com/orvalis/SystemInformationManager");
const QString registryInterface("com.orvalis.SystemInformationManager1");

QStringList providerListSignal()
{
    return {"signal", registryPath, registryInterface, "ProviderListChanged"};
}

// What a watch heard so far, each as its kind and module.
class Heard
{
public:
    Heard()
    {
        QString error;
        watch = SystemChanges::watch([this](const SystemChange &change) { note(change); }, error);
    }

    bool begun() const { return watch != nullptr; }
    void end() { watch.reset(); }
    QStringList texts() const
    {
        const QMutexLocker lock(&mutex);
        return list;
    }
    void clear()
    {
        const QMutexLocker lock(&mutex);
        list.clear();
    }

private:
    void note(const SystemChange &change)
    {
        static const QMap<int, QString> names{{SystemChange::ServiceAppeared, "appeared "},
                                              {SystemChange::ServiceLost, "lost "},
                                              {SystemChange::ProvidersChanged, "providers"},
                                              {SystemChange::BusLost, "bus lost"},
                                              {SystemChange::BusFound, "bus found"}};
        const QMutexLocker lock(&mutex);
        list.append(names.value(change.kind) + change.module);
    }

    mutable QMutex mutex;
    QStringList list;
    std::unique_ptr<SystemChanges> watch;
};
}

class SystemChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A bus of each test's own: a connection that comes back would say so to the next one.
    void init()
    {
        bus.reset(new PrivateBus);
        QVERIFY(bus->start());
    }
    void cleanup() { bus.reset(); }

    void servicesOfModulesComeAndGo();
    void onlyTheRegistrySaysThatItsListChanged();
    void aRegistryThatIsThereIsToldOnceItIsHeard();
    void theBusGoesAndComesAndChangesAreHeardAgain();
    void theBusIsFoundByACallToo();
    void anEndedWatchHearsNothing();
    void withoutABusThereIsNoWatch();

private:
    QScopedPointer<PrivateBus> bus;
};

void SystemChangesTest::servicesOfModulesComeAndGo()
{
    Heard heard;
    QVERIFY(heard.begun());
    ScriptedService service("Pump_20x");

    QVERIFY(service.order({"own", "com.example.Other"}) == "ok");
    QVERIFY(service.comeUp());
    QVERIFY(service.order({"unown", "com.orvalis.ProcessData.Pump_20x"}) == "ok");

    QTRY_COMPARE(heard.texts(), QStringList({"appeared Pump x", "lost Pump x"}));
}

void SystemChangesTest::onlyTheRegistrySaysThatItsListChanged()
{
    ScriptedService manager;
    ScriptedService other("Other");
    QVERIFY(manager.order({"own", registry}) == "ok");
    Heard heard;
    QTRY_COMPARE(heard.texts(), QStringList({"providers"}));
    heard.clear();

    QVERIFY(other.order(providerListSignal()) == "ok");
    QVERIFY(other.comeUp()); // whatever it said before has been heard by then
    QTRY_COMPARE(heard.texts(), QStringList({"appeared Other"}));
    QVERIFY(manager.order(providerListSignal()) == "ok");
    QTRY_COMPARE(heard.texts(), QStringList({"appeared Other", "providers"}));
    QVERIFY(manager.order({"unown", registry}) == "ok");
    QTRY_COMPARE(heard.texts(), QStringList({"appeared Other", "providers", "providers"}));
}

void SystemChangesTest::aRegistryThatIsThereIsToldOnceItIsHeard()
{
    ScriptedService manager;
    QVERIFY(manager.order({"own", registry}) == "ok");

    Heard first;
    QTRY_COMPARE(first.texts(), QStringList({"providers"}));
    Heard second;
    QTRY_COMPARE(second.texts(), QStringList({"providers"}));
}

void SystemChangesTest::theBusGoesAndComesAndChangesAreHeardAgain()
{
    Heard heard;
    QVERIFY(heard.begun());
    bus->stop();
    QTRY_COMPARE(heard.texts(), QStringList({"bus lost"}));
    QVERIFY(bus->start());
    QTRY_COMPARE(heard.texts(), QStringList({"bus lost", "bus found"}));

    // That it appears may be told twice, as an owner that changed and as one that was found.
    ScriptedService manager;
    constexpr int signalCount = 5;
    QVERIFY(manager.order({"own", registry}) == "ok");
    for (int i = 0; i < signalCount; ++i) {
        QVERIFY(manager.order(providerListSignal()) == "ok");
    }
    QTRY_VERIFY(heard.texts().count("providers") > signalCount);
}

void SystemChangesTest::theBusIsFoundByACallToo()
{
    Heard heard;
    QVERIFY(heard.begun());
    bus->stop();
    QTRY_COMPARE(heard.texts(), QStringList({"bus lost"}));

    const auto call = [] {
        ServiceOwner owner;
        QString error;
        fetchServiceOwner("Pump", owner, error);
    };
    QVERIFY(bus->start());
    call();

    QTRY_VERIFY(heard.texts().contains("bus found"));
    ScriptedService service;
    QVERIFY(service.comeUp());
    QTRY_VERIFY(heard.texts().contains("appeared Pump"));
}

void SystemChangesTest::anEndedWatchHearsNothing()
{
    Heard ended;
    Heard heard;
    QVERIFY(ended.begun() && heard.begun());
    ended.end();
    ScriptedService service;
    QVERIFY(service.comeUp());

    QTRY_COMPARE(heard.texts(), QStringList({"appeared Pump"}));
    QCOMPARE(ended.texts(), QStringList());
}

void SystemChangesTest::withoutABusThereIsNoWatch()
{
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere");
    QString error;

    const auto watch = SystemChanges::watch([](const SystemChange &) {}, error);

    QVERIFY(watch == nullptr);
    QVERIFY2(error.contains("unix:path=/nowhere"), qPrintable(error));
}

BUS_TEST_MAIN(SystemChangesTest)

#include "SystemChangesTest.moc"
