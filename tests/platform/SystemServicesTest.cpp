// SPDX-License-Identifier: MIT
// The system services for development machines, asked over the bus.
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "ProviderListClient.h"
#include "ProviderRegistryService.h"
#include "SystemStatusManagerDBusConnector.h"
#include "SystemStatusService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

namespace {

const QString registryName("com.orvalis.SystemInformationManager");
const QString registryPath("/com/orvalis/SystemInformationManager");
const QString registryInterface("com.orvalis.SystemInformationManager1");

// A connection of its own that calls the registry while the test's event loop answers.
class Caller
{
public:
    Caller()
        : name(QString("caller-%1").arg(++count))
        , connection(QDBusConnection::connectToBus(qEnvironmentVariable("PROCESSDATA_BUS"), name))
    {
    }
    ~Caller() { end(); }
    Caller(const Caller &) = delete;
    Caller &operator=(const Caller &) = delete;

    void end()
    {
        connection = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

    QDBusMessage call(const QString &member, const QVariantList &arguments = {},
                      const QString &service = registryName, const QString &path = registryPath,
                      const QString &interface = registryInterface)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, member);
        message.setArguments(arguments);
        return connection.call(message, QDBus::BlockWithGui, 5000);
    }

    QString list() { return call("GetRegisteredProviderList").arguments().value(0).toString(); }

private:
    static int count;
    const QString name;
    QDBusConnection connection;
};

int Caller::count = 0;

struct Query
{
    BusQueryResult result = BusQueryResult::Ok;
    QString json;
    QString error;
};

// Blocks a thread of its own, for the registry answers in the test's.
Query queryProviders()
{
    Query query;
    const QScopedPointer<QThread> thread(QThread::create(
        [&] { query.result = fetchRegisteredProviderList(query.json, query.error); }));
    thread->start();
    if (!QTest::qWaitFor([&] { return thread->isFinished(); }, 10000)) {
        query.error = "no answer";
    }
    thread->wait();
    return query;
}
}

class SystemServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }

    void providersAreListedInTheOrderInWhichTheyRegistered();
    void aProviderMayReplaceItsDataAndKeepsItsPlace();
    void additionalDataMustBeAJsonObject_data();
    void additionalDataMustBeAJsonObject();
    void onlyItsOwnConnectionChangesOrRemovesAProvider();
    void aProviderWhoseConnectionEndsIsDropped();
    void callsOfTheWrongFormAreRefused();
    void theListIsFetchedByTools();
    void aToolIsToldWhatIsMissing();
    void aNameIsOwnedOnce();
    void theStatusManagerTellsOfTheStartUpOnItsEdgeOnly();
    void theStatusManagerAnswersForItsProperty();
    void bothServicesComeBackWithTheBus();

private:
    PrivateBus bus;
};

void SystemServicesTest::providersAreListedInTheOrderInWhichTheyRegistered()
{
    const auto registry = ProviderRegistryService::create();
    QSignalSpy changed(registry.data(), &ProviderRegistryService::providerListChanged);
    Caller caller;
    QCOMPARE(caller.list(), QString("[]"));

    QCOMPARE(caller.call("RegisterProvider", {"Zebra", "{}"}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(caller.call("RegisterProvider", {"Ant", R"({"selectorTypeList":["a/1/X"]})"}).type(),
             QDBusMessage::ReplyMessage);

    const QString expected
        = R"([{"additionalData":{},"moduleName":"Zebra"},)"
          R"({"additionalData":{"selectorTypeList":["a/1/X"]},"moduleName":"Ant"}])";
    QCOMPARE(caller.list(), expected);
    QCOMPARE(registry->providerList(), expected);
    QCOMPARE(changed.size(), 2);
}

void SystemServicesTest::aProviderMayReplaceItsDataAndKeepsItsPlace()
{
    const auto registry = ProviderRegistryService::create();
    QSignalSpy changed(registry.data(), &ProviderRegistryService::providerListChanged);
    Caller caller;
    caller.call("RegisterProvider", {"A", "{}"});
    caller.call("RegisterProvider", {"B", "{}"});

    caller.call("RegisterProvider", {"A", R"({"k":1})"});
    caller.call("RegisterProvider", {"A", R"({ "k" : 1 })"}); // says the same

    QCOMPARE(registry->providerList(),
             QString(R"([{"additionalData":{"k":1},"moduleName":"A"},)"
                     R"({"additionalData":{},"moduleName":"B"}])"));
    QCOMPARE(changed.size(), 3);
}

void SystemServicesTest::additionalDataMustBeAJsonObject_data()
{
    QTest::addColumn<QString>("data");

    QTest::newRow("nothing") << "";
    QTest::newRow("an array") << "[]";
    QTest::newRow("a word") << "pump";
    QTest::newRow("an object cut off") << "{\"a\":";
}

void SystemServicesTest::additionalDataMustBeAJsonObject()
{
    QFETCH(QString, data);
    const auto registry = ProviderRegistryService::create();
    Caller caller;

    const QDBusMessage answer = caller.call("RegisterProvider", {"Pump", data});

    QCOMPARE(answer.errorName(), QString("org.freedesktop.DBus.Error.InvalidArgs"));
    QVERIFY2(answer.errorMessage().startsWith(
                 "the additional data of module \"Pump\" must be a JSON object: "),
             qPrintable(answer.errorMessage()));
    QCOMPARE(registry->providerList(), QString("[]"));
}

void SystemServicesTest::onlyItsOwnConnectionChangesOrRemovesAProvider()
{
    const auto registry = ProviderRegistryService::create();
    Caller owner;
    Caller other;
    owner.call("RegisterProvider", {"Pump", "{}"});

    QCOMPARE(other.call("RegisterProvider", {"Pump", "{\"k\":1}"}).errorMessage(),
             QString("module \"Pump\" is registered by another connection"));
    QCOMPARE(other.call("UnregisterProvider", {"Pump"}).errorMessage(),
             QString("module \"Pump\" is registered by another connection"));
    QVERIFY(registry->providerList().contains("Pump"));
    QCOMPARE(owner.call("UnregisterProvider", {"Pump"}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(registry->providerList(), QString("[]"));
    QCOMPARE(owner.call("UnregisterProvider", {"Pump"}).errorMessage(),
             QString("module \"Pump\" is not registered"));
}

void SystemServicesTest::aProviderWhoseConnectionEndsIsDropped()
{
    const auto registry = ProviderRegistryService::create();
    Caller stays;
    Caller goes;
    stays.call("RegisterProvider", {"Tank", "{}"});
    goes.call("RegisterProvider", {"Pump", "{}"});
    goes.call("RegisterProvider", {"Valve", "{}"});
    QSignalSpy changed(registry.data(), &ProviderRegistryService::providerListChanged);

    goes.end();

    QTRY_COMPARE(registry->providerList(),
                 QString(R"([{"additionalData":{},"moduleName":"Tank"}])"));
    QCOMPARE(changed.size(), 1);
}

void SystemServicesTest::callsOfTheWrongFormAreRefused()
{
    const auto registry = ProviderRegistryService::create();
    Caller caller;

    QCOMPARE(caller.call("RegisterProvider", {"Pump"}).errorName(),
             QString("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(caller.call("RegisterProvider", {1, 2}).errorName(),
             QString("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(caller.call("GetRegisteredProviderList", {"x"}).errorName(),
             QString("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(caller.call("RegisterProvider", {"", "{}"}).errorMessage(),
             QString("a provider's module name must not be empty"));
    QCOMPARE(caller.call("Nonsense").errorName(),
             QString("org.freedesktop.DBus.Error.UnknownMethod"));
}

void SystemServicesTest::theListIsFetchedByTools()
{
    const auto registry = ProviderRegistryService::create();
    Caller caller;
    caller.call("RegisterProvider", {"Pump", "{}"});

    const Query query = queryProviders();

    QVERIFY2(query.result == BusQueryResult::Ok, qPrintable(query.error));
    QCOMPARE(query.json, QString(R"([{"additionalData":{},"moduleName":"Pump"}])"));
}

void SystemServicesTest::aToolIsToldWhatIsMissing()
{
    const Query query = queryProviders();

    QVERIFY(query.result == BusQueryResult::ServiceMissing);
    QCOMPARE(query.error,
             "No service com.orvalis.SystemInformationManager on the bus at " + bus.address());

    const QByteArray address = qgetenv("PROCESSDATA_BUS");
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere");
    const Query withoutBus = queryProviders();
    qputenv("PROCESSDATA_BUS", address);

    QVERIFY(withoutBus.result == BusQueryResult::BusNotReachable);
    QVERIFY(withoutBus.error.startsWith("Cannot connect to the bus at unix:path=/nowhere: "));
}

void SystemServicesTest::aNameIsOwnedOnce()
{
    const auto first = SystemStatusService::create();
    QVERIFY(!first.isNull());
    QString error;

    QVERIFY(SystemStatusService::create(&error).isNull());

    QCOMPARE(error,
             "Cannot own com.orvalis.SystemStatusManager on the bus at " + bus.address()
                 + ": another process owns it");
}

void SystemServicesTest::theStatusManagerTellsOfTheStartUpOnItsEdgeOnly()
{
    const auto service = SystemStatusService::create();
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);
    QTRY_VERIFY(connector->isDBusInterfaceValid());

    service->setReady(true);
    QTRY_COMPARE(ready.size(), 1);
    service->setReady(true);
    service->setReady(false);
    service->setReady(true);

    QTRY_VERIFY(ready.size() > 1);
    QCOMPARE(ready.size(), 2);
    QVERIFY(service->isReady());
}

void SystemServicesTest::theStatusManagerAnswersForItsProperty()
{
    const auto service = SystemStatusService::create();
    Caller caller;
    const auto call = [&](const QString &member, const QVariantList &arguments) {
        return caller.call(member, arguments, "com.orvalis.SystemStatusManager",
                           "/com/orvalis/SystemStatusManager", "org.freedesktop.DBus.Properties");
    };
    const QString interface("com.orvalis.SystemStatusManager1");
    const auto get = [&] {
        return QDBusReply<QDBusVariant>(call("Get", {interface, "Ready"})).value().variant();
    };

    QCOMPARE(get(), QVariant(false));
    service->setReady(true);
    QCOMPARE(get(), QVariant(true));
    QCOMPARE(QDBusReply<QVariantMap>(call("GetAll", {interface})).value(),
             (QVariantMap{{"Ready", true}}));
    QCOMPARE(call("Get", {interface, "Other"}).errorName(),
             QString("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(
        call("Set", {interface, "Ready", QVariant::fromValue(QDBusVariant(false))}).errorName(),
        QString("org.freedesktop.DBus.Error.PropertyReadOnly"));
    QVERIFY(service->isReady());
}

void SystemServicesTest::bothServicesComeBackWithTheBus()
{
    const auto registry = ProviderRegistryService::create();
    const auto status = SystemStatusService::create();
    status->setReady(true);
    {
        Caller caller;
        caller.call("RegisterProvider", {"Pump", "{}"});
    }
    bus.stop();
    QTRY_COMPARE(registry->providerList(), QString("[]"));
    QVERIFY(bus.start());
    const auto connector = SystemStatusManagerDBusConnector::createAndConnect();
    QSignalSpy ready(connector.data(), &SystemStatusManagerDBusConnector::orvalisStartupReady);

    QTRY_COMPARE(ready.size(), 1);
    Caller caller;
    QTRY_COMPARE(caller.call("RegisterProvider", {"Tank", "{}"}).type(),
                 QDBusMessage::ReplyMessage);
    QCOMPARE(caller.list(), QString(R"([{"additionalData":{},"moduleName":"Tank"}])"));
    caller.end();
    QTRY_COMPARE(registry->providerList(), QString("[]")); // watches connections again
}

BUS_TEST_MAIN(SystemServicesTest)

#include "SystemServicesTest.moc"
