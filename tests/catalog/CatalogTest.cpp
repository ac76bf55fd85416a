// SPDX-License-Identifier: MIT
// What a catalog finds in a running system, and what it asks for it.
#include "Catalog.h"
#include "CallDeadline.h"
#include "CallMonitor.h"
#include "ScriptedService.h"
#include "SystemTest.h"

#include <QTest>

using ProcessDataAccess::Result;

class CatalogTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void leavesComeByTheirSourcesInTheOrderOfTheDescriptions();
    void onlyModulesThatThePatternCanMatchAreAsked();
    void namesThatAreSpeltOutAreNotLookedUp();
    void eachSourceIsFetchedOnce();
    void aHungServiceDoesNotSpoilTheOthers();
    void withoutARegistryTheModulesAreThoseThatRun();
    void whatMatchesNothingIsExplained_data();
    void whatMatchesNothingIsExplained();
    void whatIsForgottenIsAskedForAgain();
    void anInstanceMayHoldASlash();
    void aDescriptionThatIsNoObjectIsAFailure_data();
    void aDescriptionThatIsNoObjectIsAFailure();
    void whatFailedIsNotExplainedByNames();

private:
    static CatalogMatch matchOf(const QString &text);
    QStringList urlsOf(const QString &text) const;
    void bringUp();

    QScopedPointer<PublisherProcess> system;
    QScopedPointer<PublisherProcess> publisher;
    QString pump;
    QString tank;
};

namespace {

const QJsonObject drive{
    {"name", "drive"}, {"elements", QJsonArray{leaf("speed", "float64"), leaf("running", "bool")}}};

SelectorPattern parsed(const QString &text)
{
    SelectorPattern pattern;
    QString error;
    if (!SelectorPattern::parse(text, pattern, error)) {
        qFatal("%s", qPrintable(error));
    }
    return pattern;
}

} // namespace

void CatalogTest::init()
{
    SystemTest::init();
    pump = module + "Pump";
    tank = module + "Tank";
}

void CatalogTest::cleanup()
{
    setCallTimeLimit(0);
    publisher.reset();
    system.reset();
    SystemTest::cleanup();
}

// Two modules, three sources, and a registry that knows them.
void CatalogTest::bringUp()
{
    system.reset(new PublisherProcess);
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(system->start());
    VERIFY_COMMAND(system->playRegistry());
    VERIFY_COMMAND(publisher->start());
    VERIFY_COMMAND(publisher->create(tank, "Tank", "North", description({leaf("level", "int32")})));
    VERIFY_COMMAND(publisher->create(pump, "Pump", "2", description({leaf("*", "bool"), drive})));
    VERIFY_COMMAND(
        publisher->create(pump, "Pump", "1", description({drive, leaf("alarm", "bool")})));
    QTRY_COMPARE_WITH_TIMEOUT(Catalog().moduleNames(), QStringList({pump, tank}), 20000);
}

CatalogMatch CatalogTest::matchOf(const QString &text)
{
    return Catalog().match(parsed(text));
}

// Without what all begin with.
QStringList CatalogTest::urlsOf(const QString &text) const
{
    QStringList urls;
    const CatalogMatch match = matchOf(QString(text).replace("MODULE", module));
    for (const CatalogLeaf &found : match.leaves) {
        urls.append(found.url().remove("processdata://" + module));
    }
    for (const CatalogItem &item : match.failed) {
        urls.append("failed: " + item.toString() + ": " + item.answer.text);
    }
    return urls;
}

void CatalogTest::leavesComeByTheirSourcesInTheOrderOfTheDescriptions()
{
    bringUp();
    const QStringList first{"Pump/Pump/1/drive/speed", "Pump/Pump/1/drive/running",
                            "Pump/Pump/1/alarm"};
    const QStringList second{"Pump/Pump/2/%2A", "Pump/Pump/2/drive/speed",
                             "Pump/Pump/2/drive/running"};
    const QStringList north{"Tank/Tank/North/level"};

    QCOMPARE(urlsOf("**"), first + second + north);
    QCOMPARE(urlsOf("MODULEPump"), first + second);
    QCOMPARE(urlsOf("MODULE*/*/North"), north);
    QCOMPARE(urlsOf("processdata://MODULEPump/Pump/1"), first);
    QCOMPARE(urlsOf("MODULEPump/Pump/*/dr*"), first.mid(0, 2) + second.mid(1));
    QCOMPARE(urlsOf("MODULEPump/Pump/*/drive/s*d"), QStringList({first.at(0), second.at(1)}));
    QCOMPARE(urlsOf("MODULEPump/Pump/2/%2A"), QStringList({second.at(0)}));
    QCOMPARE(urlsOf("*/*/*/level"), north);
}

void CatalogTest::onlyModulesThatThePatternCanMatchAreAsked()
{
    bringUp();
    CallMonitor monitor(bus->address());
    QVERIFY(monitor.start());

    QCOMPARE(matchOf(module + "P*/Pump/1/alarm").leaves.size(), 1);

    QCOMPARE(monitor.calls(),
             QStringList({" GetRegisteredProviderList", pump + " Introspect",
                          pump + " ListInstances", pump + " GetProcessDataDescription"}));
}

void CatalogTest::namesThatAreSpeltOutAreNotLookedUp()
{
    bringUp();
    CallMonitor monitor(bus->address());
    QVERIFY(monitor.start());

    QCOMPARE(matchOf(pump + "/Pump/1/drive").leaves.size(), 2);

    QCOMPARE(monitor.calls(), QStringList({pump + " GetProcessDataDescription"}));
}

void CatalogTest::eachSourceIsFetchedOnce()
{
    bringUp();
    CallMonitor monitor(bus->address());
    QVERIFY(monitor.start());
    Catalog catalog;

    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 7);
    QCOMPARE(catalog.match(parsed(pump + "/**")).leaves.size(), 6);
    QVERIFY(!catalog.match(parsed("*/*/*/nothing")).hint.isEmpty());
    QVERIFY(catalog.source({pump, "Pump", "1"}).answer.isOk());

    const QStringList calls = monitor.calls();
    QCOMPARE(calls.filter("GetProcessDataDescription").size(), 3);
    QCOMPARE(calls.filter("GetRegisteredProviderList").size(), 1);
    QCOMPARE(calls.filter("Introspect").size(), 2);
    QCOMPARE(calls.filter("ListInstances").size(), 2);
}

void CatalogTest::aHungServiceDoesNotSpoilTheOthers()
{
    bringUp();
    PublisherProcess hung;
    VERIFY_COMMAND(hung.start());
    VERIFY_COMMAND(hung.create(module + "Hung", "O", "1", description({leaf("a", "bool")})));
    QTRY_COMPARE_WITH_TIMEOUT(Catalog().moduleNames().size(), 3, 20000);
    hung.process().suspend();
    setCallTimeLimit(300);

    const CatalogMatch match = matchOf("**");

    QCOMPARE(match.leaves.size(), 7);
    QCOMPARE(match.failed.size(), 1);
    QCOMPARE(match.failed.first().toString(), module + "Hung");
    QCOMPARE(int(match.failed.first().answer.result), int(Result::TimedOut));
    QVERIFY(!match.failed.first().answer.text.isEmpty());
    QVERIFY(match.hint.isEmpty());
    hung.process().resume();
}

void CatalogTest::withoutARegistryTheModulesAreThoseThatRun()
{
    bringUp();
    QVERIFY(Catalog().note().isEmpty());
    QVERIFY(system->quit());
    Catalog catalog;

    QVERIFY(catalog.askModules().isOk());

    QCOMPARE(catalog.moduleNames(), QStringList({pump, tank}));
    QVERIFY2(catalog.note().contains("SystemInformationManager"), qPrintable(catalog.note()));
    QVERIFY(catalog.providerList().isEmpty());
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 7);
}

void CatalogTest::whatMatchesNothingIsExplained_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<int>("missing");
    QTest::addColumn<QString>("hint");
    const auto row = [](const char *pattern, CatalogMatch::Part missing, const char *hint) {
        QTest::newRow(pattern) << pattern << int(missing) << hint;
    };
    row("MODULEPmp/*", CatalogMatch::Module,
        R"(no module is called "MODULEPmp"; did you mean "MODULEPump"?)");
    row("Zzz*", CatalogMatch::Module,
        R"(no module matches "Zzz*"; there is "MODULEPump", "MODULETank")");
    row("MODULEPump/Pmup/*", CatalogMatch::Object,
        R"(no object is called "Pmup"; did you mean "Pump"?)");
    row("*/Tnak/*", CatalogMatch::Object, R"(no object is called "Tnak"; did you mean "Tank"?)");
    row("MODULEPump/Pump/7/*", CatalogMatch::Instance,
        R"(no instance is called "7"; there is "1", "2")");
    row("MODULETank/Tank/Nort", CatalogMatch::Instance,
        R"(no instance is called "Nort"; did you mean "North"?)");
    row("MODULEPump/Pump/*/drvie", CatalogMatch::Path,
        R"(no group or leaf is called "drvie"; did you mean "drive"?)");
    row("MODULEPump/Pump/*/drive/spede", CatalogMatch::Path,
        R"(no group or leaf is called "spede"; did you mean "speed"?)");
    row("MODULEPump/Pump/*/drive/x*", CatalogMatch::Path,
        R"(no group or leaf matches "x*"; there is "running", "speed")");
    row("MODULEPump/Pump/1/alarm/**", CatalogMatch::Path, "nothing is below it");
}

void CatalogTest::whatMatchesNothingIsExplained()
{
    QFETCH(QString, pattern);
    QFETCH(int, missing);
    QFETCH(QString, hint);
    bringUp();

    const CatalogMatch match = matchOf(pattern.replace("MODULE", module));

    QVERIFY(match.leaves.isEmpty());
    QCOMPARE(match.hint, hint.replace("MODULE", module));
    QCOMPARE(int(match.missing), missing);
}

void CatalogTest::whatIsForgottenIsAskedForAgain()
{
    bringUp();
    Catalog catalog;
    const SourceName first{pump, "Pump", "1"};
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 7);
    VERIFY_COMMAND(publisher->replaceDescription(description({leaf("only", "bool")})));
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 7);

    catalog.forgetSource(first);
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 5);
    VERIFY_COMMAND(publisher->create(pump, "Valve", "1", description({leaf("open", "bool")})));
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 5);
    catalog.forgetModule(pump);
    QCOMPARE(catalog.match(parsed("**")).leaves.size(), 6);
    QVERIFY(!catalog.forgetFailures());
}

void CatalogTest::anInstanceMayHoldASlash()
{
    bringUp();
    VERIFY_COMMAND(publisher->create(tank, "Level", QString::fromUtf8("Nord 1/ä"),
                                     description({leaf("level", "int32")})));

    QCOMPARE(urlsOf("MODULETank/Level/Nord%201%2F%C3%A4"),
             QStringList({"Tank/Level/Nord%201%2F%C3%A4/level"}));
}

void CatalogTest::aDescriptionThatIsNoObjectIsAFailure_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("an array") << "[1]"
                              << "it is something else";
    QTest::newRow("cut off") << "{"
                             << "unterminated object";
    QTest::newRow("nothing") << ""
                             << "illegal value";
}

void CatalogTest::aDescriptionThatIsNoObjectIsAFailure()
{
    QFETCH(QString, text);
    QFETCH(QString, reason);
    ScriptedService service(module);
    QVERIFY(service.serve("1", text));

    const CatalogMatch match = matchOf(module + "/Controller/1/*");

    QVERIFY(match.leaves.isEmpty());
    QCOMPARE(match.failed.size(), 1);
    QCOMPARE(int(match.failed.first().answer.result), int(Result::ServiceFailed));
    QCOMPARE(match.failed.first().answer.text,
             module + "/Controller/1: the description is no JSON object: " + reason);
    QCOMPARE(match.hint, QString());
}

void CatalogTest::whatFailedIsNotExplainedByNames()
{
    ScriptedService service(module);
    QVERIFY(service.serve("1", "[1]"));

    const CatalogMatch match = matchOf(module + "/Controller/*");

    QCOMPARE(match.failed.size(), 1);
    QCOMPARE(int(match.missing), int(CatalogMatch::None));
    QCOMPARE(match.hint, QString());
}

QTEST_GUILESS_MAIN(CatalogTest)
#include "CatalogTest.moc"
