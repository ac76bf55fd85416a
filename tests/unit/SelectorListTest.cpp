// SPDX-License-Identifier: MIT
// The list of selectors: one record for each URL, one source for each key.
#include "Internals.h"
#include "ProcessDataValue.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

namespace {

const QString emptyObject = "{\n}\n";

QStringList keysOf(SelectorHandlerProcessValue &handler)
{
    return sourcesOf(handler).keys();
}

} // namespace

class SelectorListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnusableUrlGetsARecordWithoutSource_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("invalid") << "no\turl" << QStringList{"SelectorUrl not valid: \"no\\turl\""};
        QTest::newRow("empty") << "" << QStringList{"SelectorUrl not valid: \"\""};
        QTest::newRow("another scheme")
            << "other://m/o/i/leaf"
            << QStringList{"No processData scheme selected: \"other\" \"other://m/o/i/leaf\""};
        QTest::newRow("another case of the scheme")
            << "Scripted://m/o/i/leaf"
            << QStringList{
                   "No processData scheme selected: \"Scripted\" \"Scripted://m/o/i/leaf\""};
        QTest::newRow("deactivated") << "scripted://m/o/i/leaf?off" << QStringList();
        QTest::newRow("deactivated with another scheme")
            << "other://m/o/i/leaf?off" << QStringList();
        QTest::newRow("deactivated and invalid") << "nonsense?off" << QStringList();
    }

    void anUnusableUrlGetsARecordWithoutSource()
    {
        QFETCH(QString, url);
        QFETCH(QStringList, expected);
        UnlikePlatform platform;
        platform.source("m", "o", "i").leaf("leaf", 1);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({url}, nullptr);

        QCOMPARE(warnings.texts(), expected);
        QCOMPARE(recordsOf(handler).size(), 1);
        const auto record = recordsOf(handler).at(0);
        QVERIFY(record.processDataLeaf.isNull());
        QVERIFY(!record.selectorUrlHandler.isNull());
        QCOMPARE(record.propertiesAsJsonString, emptyObject);
        QVERIFY(record.sharedMemoryIterator == decltype(record.sharedMemoryIterator)());
        QVERIFY(!record.readOnly);
        QCOMPARE(keysOf(handler), QStringList());
        QVERIFY(platform.calls({"DBusProcessDescriptionConnector"}).isEmpty());
    }

    void theNamesOfASourceAreAskedForInTheOrderInWhichTheyFormItsKey()
    {
        UnlikePlatform platform;
        platform.source("m", "o", "i").leaf("leaf", 1);

        const SelectorHandlerProcessValue handler({"scripted://m/o/i/leaf"}, nullptr);

        QStringList names;
        const QStringList calls = platform.calls({"SelectorUrlHandler"});
        for (const QString &call : calls) {
            const QString name = call.section("::", -1);
            if (name == "getModuleName()" || name == "getObjectName()" || name == "getInstance()") {
                names.append(name);
            }
        }
        // Once for the key, once for the source that is new.
        QCOMPARE(names,
                 (QStringList{"getModuleName()", "getObjectName()", "getInstance()",
                              "getModuleName()", "getObjectName()", "getInstance()"}));
    }

    void warningsGiveTheClientsTextOfAnInvalidUrlAndTheWholeUrlOfAForeignOne()
    {
        UnlikePlatform platform;
        platform.url("client's text").url = "inner text";
        platform.url("client's text").valid = false;
        platform.url("short") = {"the whole url", "foreign", "m", "o", "i", true, false};
        const WarningLog warnings;

        const SelectorHandlerProcessValue handler({"client's text", "short"}, nullptr);

        QCOMPARE(warnings.texts(),
                 (QStringList{"SelectorUrl not valid: \"client's text\"",
                              "No processData scheme selected: \"foreign\" \"the whole url\""}));
    }

    void aDeactivatedUrlIsAskedNothingElse()
    {
        UnlikePlatform platform;
        const SelectorHandlerProcessValue handler({off("a")}, nullptr);
        QCOMPARE(platform.calls(),
                 (QStringList{
                     "SelectorUrlHandler::SelectorUrlHandler('scripted://boiler/sensors/1/a?off')",
                     "SelectorUrlHandler[scripted://boiler/sensors/1/a?off]"
                     "::isSelectorDeactivated()"}));
    }

    void positionsStayAlignedPastAnInvalidUrl()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("c", 3);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a"), "bad", on("c")}, nullptr);

        QCOMPARE(recordsOf(handler).size(), 3);
        QVERIFY(recordsOf(handler).at(1).processDataLeaf.isNull());
        QCOMPARE(handler.getValue(2).getValue(), QVariant(3));
        QCOMPARE(sourcesOf(handler).first()->getConnectedLeafIndexList(), (QVector<int>{0, 2}));
        QCOMPARE(warnings.texts(), QStringList{"SelectorUrl not valid: \"bad\""});
    }

    void theFirstUrlOfASourceAttachesItAndLaterOnesUseWhatThereIs()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("b", 2);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a"), on("b")}, nullptr);

        const QString connector = "DBusProcessDescriptionConnector[boiler/sensors]::";
        const QString root = "ConfigurationAndProcessDataBase[1]::getLeafProcessDataValue(";
        QCOMPARE(
            platform.calls({"DBusProcessDescriptionConnector", "ProcessDataManager",
                            "ConfigurationAndProcessDataBase", "ProcessDataValue"}),
            (QStringList{
                "DBusProcessDescriptionConnector::createAndConnect('boiler', 'sensors')",
                connector + "isDBusInterfaceValid()",
                connector + "getProcessDataDescription('1', '')",
                "ProcessDataManager[1]::ProcessDataManager()",
                "ProcessDataManager[1]::createProcessDataFromJson("
                "'description of boiler/sensors/1', 'script', 1)",
                "ProcessDataManager[1]::isBufferValid()", root + "'scripted://boiler/sensors/1/a')",
                "ProcessDataValue[a#1]::readLeafProperty('is-read-only')",
                connector + "isDBusInterfaceValid()", root + "'scripted://boiler/sensors/1/b')",
                "ProcessDataValue[b#1]::readLeafProperty('is-read-only')"}));
        QCOMPARE(keysOf(handler), QStringList{"boiler_sensors_1"});
        QCOMPARE(sourcesOf(handler).first()->getConnectedLeafIndexList(), (QVector<int>{0, 1}));
        QVERIFY(recordsOf(handler).at(0).sharedMemoryIterator == sourcesOf(handler).begin());
        QVERIFY(recordsOf(handler).at(1).sharedMemoryIterator == sourcesOf(handler).begin());
        QCOMPARE(sourcesOf(handler).first()->parent(), nullptr);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aLeafIsLookedUpByTheUrlThatTheParserGives()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        platform.url("alias") = {on("a"), "scripted", "boiler", "sensors", "1", true, false};
        SelectorHandlerProcessValue handler({"alias", "alias"}, nullptr);
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1));
        QCOMPARE(handler.getValue(1).getValue(), QVariant(1));
    }

    void theSameUrlTwiceSharesOneLeaf()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);

        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);

        QCOMPARE(recordsOf(handler).size(), 2);
        QCOMPARE(sourcesOf(handler).size(), 1);
        QVERIFY(!recordsOf(handler).at(0).processDataLeaf.isNull());
        QCOMPARE(recordsOf(handler).at(0).processDataLeaf,
                 recordsOf(handler).at(1).processDataLeaf);
        QVERIFY(recordsOf(handler).at(0).selectorUrlHandler
                != recordsOf(handler).at(1).selectorUrlHandler);
        QCOMPARE(platform.alive("SelectorUrlHandler"), 2);
    }

    void sourcesAreKeptByKeyInOrder()
    {
        UnlikePlatform platform;
        platform.url("odd") = {"odd", "scripted", " m_x ", "", "I/1", true, false};
        WarningLog warnings;

        SelectorHandlerProcessValue handler({"scripted://b/o/2/x", "scripted://b/o//x",
                                             "scripted://a/o/1/x", "odd", "scripted://b/o/1/x",
                                             "scripted://b/O/1/x", "scripted://b/o//y"},
                                            nullptr);

        QCOMPARE(keysOf(handler),
                 (QStringList{" m_x __I/1", "a_o_1", "b_O_1", "b_o_", "b_o_1", "b_o_2"}));
        QCOMPARE(sourcesOf(handler).value("b_o_")->getConnectedLeafIndexList(),
                 (QVector<int>{1, 6}));
        QCOMPARE(platform.calls({"DBusProcessDescriptionConnector"}).filter("createAndConnect"),
                 (QStringList{"DBusProcessDescriptionConnector::createAndConnect('b', 'o')",
                              "DBusProcessDescriptionConnector::createAndConnect('b', 'o')",
                              "DBusProcessDescriptionConnector::createAndConnect('a', 'o')",
                              "DBusProcessDescriptionConnector::createAndConnect(' m_x ', '')",
                              "DBusProcessDescriptionConnector::createAndConnect('b', 'o')",
                              "DBusProcessDescriptionConnector::createAndConnect('b', 'O')"}));
        QCOMPARE(platform.calls({"DBusProcessDescriptionConnector"}).filter("'I/1', ''").size(), 1);
    }

    void aSourceThatCannotBeReachedKeepsItsPositions_data()
    {
        QTest::addColumn<bool>("interfaceInvalid");
        QTest::addColumn<bool>("connectorMissing");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("interface invalid") << true << false << QStringList();
        QTest::newRow("connector missing")
            << false << true
            << QStringList{"Invalid pointer to connector!", "Invalid pointer to connector!",
                           "Invalid pointer to connector!"};
    }

    void aSourceThatCannotBeReachedKeepsItsPositions()
    {
        QFETCH(bool, interfaceInvalid);
        QFETCH(bool, connectorMissing);
        QFETCH(QStringList, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1")
            .leaf("a")
            .interfaceInvalid(interfaceInvalid)
            .connectorMissing(connectorMissing);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);

        QCOMPARE(sourcesOf(handler).first()->getConnectedLeafIndexList(), (QVector<int>{0, 1}));
        for (const auto &record : recordsOf(handler)) {
            QVERIFY(record.processDataLeaf.isNull());
            QVERIFY(record.sharedMemoryIterator == sourcesOf(handler).begin());
            QCOMPARE(record.propertiesAsJsonString, emptyObject);
            QVERIFY(!record.readOnly);
        }
        QVERIFY(platform.calls().filter("getProcessDataDescription").isEmpty());
        QCOMPARE(warnings.texts(), expected);
    }

    void aFailedAttachCostsTheFirstUrlItsLeafAndLaterOnesNothing()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1).bufferInvalid();
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);

        QVERIFY(recordsOf(handler).at(0).processDataLeaf.isNull());
        QVERIFY(!recordsOf(handler).at(1).processDataLeaf.isNull());
        QCOMPARE(platform.calls().filter("getProcessDataDescription('").size(), 1);
        QCOMPARE(warnings.texts(),
                 QStringList{"SharedMemory buffer not valid. ModuleName: \"boiler\" ObjectName: "
                             "\"sensors\" InstanceName: \"1\""});
    }

    void aUrlWithoutALeafIsReportedByItsSource()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("no"), on("a")}, nullptr);

        QVERIFY(recordsOf(handler).at(0).processDataLeaf.isNull());
        QCOMPARE(recordsOf(handler).at(0).propertiesAsJsonString, emptyObject);
        QVERIFY(recordsOf(handler).at(0).sharedMemoryIterator == sourcesOf(handler).begin());
        QCOMPARE(handler.getValue(1).getValue(), QVariant(1));
        QCOMPARE(warnings.texts(),
                 QStringList{"Url isn't valid: \"scripted://boiler/sensors/1/no\" ModuleName: "
                             "\"boiler\" ObjectName: \"sensors\" InstanceName: \"1\""});
    }
};

QTEST_GUILESS_MAIN(SelectorListTest)
#include "SelectorListTest.moc"
