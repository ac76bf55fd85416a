// SPDX-License-Identifier: MIT
// A live catalog follows services, instances and descriptions, and rests when nothing changes.
#include "LiveCatalog.h"
#include "CallDeadline.h"
#include "CallMonitor.h"
#include "ScriptedService.h"
#include "SystemTest.h"

#include <QTest>

class LiveCatalogTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sourcesComeGoAndChange();
    void aNewInstanceOfAKnownObjectIsFound();
    void aNewObjectIsFoundByItsRegistration_data();
    void aNewObjectIsFoundByItsRegistration();
    void anAnnouncementOfTheSameIsNoChange();
    void nothingIsAskedWhileNothingChanges();
    void modulesThatAreNotFollowedAreNotAsked();
    void withoutARegistryServicesAreFollowed();
    void theBusRestarts();
    void aServiceThatHungIsAskedAgain();
    void aServiceThatServesItsObjectsLateIsAskedAgain_data();
    void aServiceThatServesItsObjectsLateIsAskedAgain();
    void aSpeltOutSourceThatNobodyHasIsNotThere();
    void whatCannotBeComparedIsAskedForAgain();

private:
    void begin(const QString &pattern);
    QByteArray create(const QString &object, const QString &instance, const QJsonObject &element);

    QScopedPointer<PublisherProcess> system;
    QScopedPointer<PublisherProcess> publisher;
    QScopedPointer<LiveCatalog> live;
    QStringList told;
};

namespace {

const QJsonObject speed = leaf("speed", "float64");

} // namespace

void LiveCatalogTest::init()
{
    SystemTest::init();
    system.reset(new PublisherProcess);
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(system->start());
    VERIFY_COMMAND(system->playRegistry());
    VERIFY_COMMAND(publisher->start());
    told.clear();
}

void LiveCatalogTest::cleanup()
{
    setCallTimeLimit(0);
    live.reset();
    publisher.reset();
    system.reset();
    SystemTest::cleanup();
}

void LiveCatalogTest::begin(const QString &pattern)
{
    SelectorPattern parsed;
    QString error;
    QVERIFY2(SelectorPattern::parse(QString(pattern).replace("MODULE", module), parsed, error),
             qPrintable(error));
    live.reset(new LiveCatalog({parsed}));
    const auto note = [this](const QString &what) {
        return [this, what](const QVector<SourceName> &sources) {
            for (const SourceName &source : sources) {
                told.append(what + source.toString().remove(module + '/'));
            }
        };
    };
    connect(live.data(), &LiveCatalog::sourcesAppeared, this, note("came "));
    connect(live.data(), &LiveCatalog::sourcesLost, this, note("went "));
    connect(live.data(), &LiveCatalog::sourcesChanged, this, note("changed "));
    const CatalogAnswer answer = live->start();
    QVERIFY2(answer.isOk(), qPrintable(answer.text));
    QVERIFY(live->isFollowing());
}

QByteArray LiveCatalogTest::create(const QString &object, const QString &instance,
                                   const QJsonObject &element)
{
    return publisher->create(module, object, instance, description({element}));
}

void LiveCatalogTest::sourcesComeGoAndChange()
{
    begin("**");
    QVERIFY(live->sources().isEmpty());

    VERIFY_COMMAND(create("Pump", "1", speed));
    QTRY_COMPARE(told, QStringList({"came Pump/1"}));
    QCOMPARE(live->sources(), QVector<SourceName>({{module, "Pump", "1"}}));

    VERIFY_COMMAND(publisher->replaceDescription(description({speed, leaf("on", "bool")})));
    QTRY_COMPARE(told, QStringList({"came Pump/1", "changed Pump/1"}));
    QCOMPARE(live->catalog().source({module, "Pump", "1"}).leaves.size(), 2);

    QVERIFY(publisher->quit());
    QTRY_COMPARE(told, QStringList({"came Pump/1", "changed Pump/1", "went Pump/1"}));
    QVERIFY(live->sources().isEmpty());
}

void LiveCatalogTest::aNewInstanceOfAKnownObjectIsFound()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin("MODULE/Pump");
    QCOMPARE(live->sources().size(), 1);

    VERIFY_COMMAND(create("Pump", "2", speed));
    QTRY_COMPARE(told, QStringList({"came Pump/2"}));
}

void LiveCatalogTest::aNewObjectIsFoundByItsRegistration_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("everything") << "**";
    QTest::newRow("a module") << "MODULE";
}

void LiveCatalogTest::aNewObjectIsFoundByItsRegistration()
{
    QFETCH(QString, pattern);
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin(pattern);

    VERIFY_COMMAND(
        create("Valve", "1", leaf("open", "bool", {{"selectorType", "DigitalSelector"}})));
    QTRY_COMPARE(told.value(told.size() - 1), QString("came Valve/1"));
}

void LiveCatalogTest::anAnnouncementOfTheSameIsNoChange()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin("MODULE");
    const QJsonObject hertz = leaf("speed", "float64", {{"unit", "Hz"}});
    const QJsonObject turns = leaf("speed", "float64", {{"unit", "1/min"}});

    VERIFY_COMMAND(publisher->replaceProperties(description({hertz})));
    QTRY_COMPARE(told, QStringList({"changed Pump/1"}));
    VERIFY_COMMAND(publisher->replaceProperties(description({hertz})));
    VERIFY_COMMAND(publisher->replaceProperties(description({turns})));
    QTRY_COMPARE(
        live->catalog().source({module, "Pump", "1"}).leaves.first().properties.value("unit"),
        QJsonValue("1/min"));
    QTRY_COMPARE(told.count("changed Pump/1"), 2);
}

void LiveCatalogTest::nothingIsAskedWhileNothingChanges()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin("**");
    VERIFY_COMMAND(publisher->publish("speed", 1));
    VERIFY_COMMAND(publisher->replaceDescription(description({speed, leaf("on", "bool")})));
    QTRY_COMPARE(told.value(told.size() - 1),
                 QString("changed Pump/1")); // all that was under way before is done
    CallMonitor monitor(bus->address());
    QVERIFY(monitor.start());
    monitor.calls();

    for (int i = 0; i < 100; ++i) {
        VERIFY_COMMAND(publisher->publish("speed", i));
    }
    QCOMPARE(live->sources().size(), 1);
    QCOMPARE(live->catalog().source({module, "Pump", "1"}).leaves.size(), 2);
    QCOMPARE(monitor.calls(), QStringList());

    VERIFY_COMMAND(publisher->replaceDescription(description({speed})));
    QTRY_COMPARE(told.count("changed Pump/1"), 2);
    QCOMPARE(monitor.calls(), QStringList({module + " GetProcessDataDescription"}));
}

void LiveCatalogTest::modulesThatAreNotFollowedAreNotAsked()
{
    begin("MODULE/Pump/*/speed");
    CallMonitor monitor(bus->address());
    QVERIFY(monitor.start());

    VERIFY_COMMAND(publisher->create(module + "Other", "Pump", "1", description({speed})));
    VERIFY_COMMAND(create("Pump", "1", speed));
    QTRY_COMPARE(told, QStringList({"came Pump/1"}));

    const QStringList calls = monitor.calls();
    QCOMPARE(calls.filter("Other"), QStringList());
    QCOMPARE(calls.filter("GetRegisteredProviderList"), QStringList());
    QVERIFY(calls.contains(module + " GetProcessDataDescription"));
}

void LiveCatalogTest::withoutARegistryServicesAreFollowed()
{
    QVERIFY(system->quit());
    begin("**");

    VERIFY_COMMAND(create("Pump", "1", speed));
    QTRY_COMPARE(told, QStringList({"came Pump/1"}));
    QVERIFY(publisher->quit());
    QTRY_COMPARE(told, QStringList({"came Pump/1", "went Pump/1"}));
}

void LiveCatalogTest::theBusRestarts()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin("**");
    QTRY_COMPARE(live->sources().size(), 1);
    told.clear();

    bus->stop();
    QVERIFY2(bus->start(), bus->report().constData());

    // It may be found before its service is back; then it went in between.
    VERIFY_COMMAND(publisher->replaceDescription(description({speed, leaf("on", "bool")})));
    const SourceName source{module, "Pump", "1"};
    QTRY_VERIFY(live->sources() == QVector<SourceName>{source}
                && live->catalog().source(source).leaves.size() == 2);
    QVERIFY(told.value(told.size() - 1) == "came Pump/1"
            || told.value(told.size() - 1) == "changed Pump/1");
}

void LiveCatalogTest::aServiceThatHungIsAskedAgain()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    publisher->process().suspend();
    setCallTimeLimit(100);
    begin("MODULE/Pump/1");
    const SourceName source{module, "Pump", "1"};
    QCOMPARE(live->sources(), QVector<SourceName>{source});
    QCOMPARE(int(live->catalog().source(source).answer.result),
             int(ProcessDataAccess::Result::TimedOut));

    publisher->process().resume();

    QTRY_COMPARE_WITH_TIMEOUT(told, QStringList({"changed Pump/1"}), 20000);
    QVERIFY(live->catalog().source(source).answer.isOk());
    QCOMPARE(live->catalog().source(source).leaves.size(), 1);
}

void LiveCatalogTest::aServiceThatServesItsObjectsLateIsAskedAgain_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("a source") << "MODULE/Controller/1";
    QTest::newRow("an object") << "MODULE/Controller";
}

void LiveCatalogTest::aServiceThatServesItsObjectsLateIsAskedAgain()
{
    QFETCH(QString, pattern);
    ScriptedService service(module);
    QVERIFY(service.order({"own", "com.orvalis.ProcessData." + module}) == "ok");
    begin(pattern);
    QVERIFY(live->sources().isEmpty());

    QVERIFY(service.serve("1", "{}"));

    QTRY_COMPARE_WITH_TIMEOUT(told, QStringList({"came Controller/1"}), 20000);
}

void LiveCatalogTest::aSpeltOutSourceThatNobodyHasIsNotThere()
{
    VERIFY_COMMAND(create("Pump", "1", speed));
    begin("MODULE/Pump/2");
    QCOMPARE(live->sources(), QVector<SourceName>());

    VERIFY_COMMAND(create("Pump", "2", speed));
    QTRY_COMPARE(told, QStringList({"came Pump/2"}));
    QCOMPARE(live->sources().size(), 1);
}

// The registry says that its list changed, and then gives no answer.
void LiveCatalogTest::whatCannotBeComparedIsAskedForAgain()
{
    QVERIFY(system->quit());
    VERIFY_COMMAND(create("Pump", "1", speed));
    const QString name("com.orvalis.SystemInformationManager");
    const QString path("/com/orvalis/SystemInformationManager");
    ScriptedService registry;
    QVERIFY(registry.orderAll(
        {{"export", path}, {"set", "", R"([{"moduleName":")" + module + R"("}])"}, {"own", name}}));
    begin("MODULE");
    QCOMPARE(live->catalog().moduleNames(), QStringList{module});

    setCallTimeLimit(100);
    QVERIFY(registry.order({"mode", "silent"}) == "ok");
    VERIFY_COMMAND(create("Valve", "1", speed));
    QVERIFY(registry.order({"signal", path, name + '1', "ProviderListChanged"}) == "ok");

    QTRY_COMPARE(told, QStringList({"came Valve/1"}));
}

QTEST_GUILESS_MAIN(LiveCatalogTest)
#include "LiveCatalogTest.moc"
