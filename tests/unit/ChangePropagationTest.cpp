// SPDX-License-Identifier: MIT
// From a source's announcement to the list of the client's positions.
#include "ChangeClient.h"
#include "Internals.h"
#include "ProcessDataValue.h"
#include "Selectors.h"

#include <QtTest>

class ChangePropagationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnknownKeyIsDroppedInSilence()
    {
        ChangeClient client({on("a")});
        client.script.at("a").property("unit", "K");
        for (const char *slot : {"processDataDescriptionChanged", "propertyChanged"}) {
            for (const QString key :
                 {"", "boiler_sensors_2", "Boiler_sensors_1", "boiler_sensors_1 "}) {
                client.announce(slot, key);
            }
        }
        QCOMPARE(client.platform.calls(), QStringList());
        QCOMPARE(client.descriptions.size() + client.properties.size(), 0);
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void eachKindOfAnnouncementHasItsOwnSignal()
    {
        ChangeClient client({on("a"), on("b")});

        client.script.at("b").property("unit", "K");
        client.script.changeProperties();
        QCOMPARE(indexLists(client.properties), IndexLists{{1}});
        QCOMPARE(client.descriptions.size(), 0);

        client.script.at("a").property("unit", "K");
        client.script.changeDescription();
        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
        QCOMPARE(client.properties.size(), 1);
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void aPassAttachesAgainAndLooksUpEveryLeaf()
    {
        ChangeClient client({on("b"), off("a"), on("a")});

        client.script.changeDescription();

        const QString connector = "DBusProcessDescriptionConnector[boiler/sensors]::";
        const QString root = "ConfigurationAndProcessDataBase[2]::getLeafProcessDataValue(";
        QCOMPARE(
            client.platform.calls({"DBusProcessDescriptionConnector",
                                   "ConfigurationAndProcessDataBase",
                                   "ConfigurationAndProcessDataParser", "DBusPendingReply"}),
            (QStringList{
                connector + "getProcessDataDescriptionAsynchron('1', '')",
                "DBusPendingReply[1]::getReply()", connector + "isDBusInterfaceValid()",
                connector + "getProcessDataDescription('1', '')",
                "~ConfigurationAndProcessDataBase[1]", root + "'scripted://boiler/sensors/1/b')",
                "ConfigurationAndProcessDataParser"
                "::ConfigurationAndProcessDataParser()",
                "ConfigurationAndProcessDataParser"
                "::frameToByteArray(b#2, '', Compact)",
                "~ConfigurationAndProcessDataParser", root + "'scripted://boiler/sensors/1/a')",
                "ConfigurationAndProcessDataParser"
                "::ConfigurationAndProcessDataParser()",
                "ConfigurationAndProcessDataParser"
                "::frameToByteArray(a#2, '', Compact)",
                "~ConfigurationAndProcessDataParser"}));
        QCOMPARE(client.platform.alive("ProcessDataValue"), 2); // those of the old tree are gone
        QCOMPARE(client.descriptions.size(), 0);
    }

    void withoutAChangedTextNothingIsSignalled()
    {
        ChangeClient client({on("a")});
        client.script.at("a").holds(99); // a value is no property

        client.script.changeDescription();
        client.script.changeProperties();
        QCOMPARE(client.descriptions.size() + client.properties.size(), 0);
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(99));

        client.script.at("a").property("unit", "K");
        client.script.changeDescription();
        client.script.changeDescription();
        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void positionsAreListedInTheOrderOfTheSource()
    {
        ChangeClient client({on("b"), off("a"), on("a"), on("b")});
        client.script.at("a").property("unit", "K");
        client.script.at("b").property("unit", "K");

        client.script.changeDescription();

        QCOMPARE(indexLists(client.descriptions), (IndexLists{{0, 2, 3}}));
        QCOMPARE(client.handler.getPropertyAsJsonString(3), QString(R"({"name":"b","unit":"K"})"));
    }

    void aPositionThatIsConnectedTwiceIsReportedOnce()
    {
        ChangeClient client({on("a")});
        sourcesOf(client.handler).first()->addConnectedLeafIndex(0);
        client.script.at("a").property("unit", "K");
        client.script.changeDescription();
        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
    }

    void onlyTheAnnouncedSourceIsRefreshed()
    {
        ChangeClient client({on("a"), "scripted://pump/drive/1/speed"});
        ScriptedSource &pump = client.platform.source("pump", "drive", "1").leaf("speed", 3);
        client.script.at("a").property("unit", "K");
        pump.at("speed").property("unit", "1/min");

        pump.changeDescription();

        QCOMPARE(indexLists(client.descriptions), IndexLists{{1}});
        QCOMPARE(client.handler.getPropertyAsJsonString(0), QString(R"({"name":"a"})"));
    }

    void aSelectorThatIsResolvedForTheFirstTimeIsReported()
    {
        ChangeClient client({on("late"), on("a")});
        client.script.leaf("late", 5);

        client.script.changeDescription();

        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(5));
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void aFirstRefreshReportsAlsoWhatIsStillMissing()
    {
        // The text of a missing leaf is not that of a selector that was never resolved.
        ChangeClient client({on("no")});
        client.script.changeDescription();
        client.script.changeDescription();
        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
        QCOMPARE(client.handler.getPropertyAsJsonString(0), QString());
        QCOMPARE(
            client.warnings.texts(),
            (QStringList{"Url isn't valid: \"scripted://boiler/sensors/1/no\"" + sourceFields(),
                         "Url isn't valid: \"scripted://boiler/sensors/1/no\"" + sourceFields()}));
    }

    void theReadOnlyFlagIsNotRefreshed()
    {
        ChangeClient client({on("a"), on("b")});
        client.script.at("a").readOnly();
        client.script.changeDescription(); // now read-only, but known as writable
        QVERIFY(client.handler.setValue(valueOf(5), 0));

        client.handler.setSelectorUrls({on("a")});
        QVERIFY(!client.handler.setValue(valueOf(6), 0));
        client.script.at("a").readOnly(false);
        client.script.changeDescription();
        QCOMPARE(client.descriptions.size(), 2);
        QVERIFY(!client.handler.setValue(valueOf(6), 0));
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void theLockIsHeldDuringThePassAndFreeWhenItIsSignalled()
    {
        ChangeClient client({on("a")});
        QVector<bool> duringPass;
        QVector<bool> duringSignal;
        const auto note = [&] { duringPass.append(isLockFree(client.handler)); };
        client.platform.during("DBusProcessDescriptionConnector::isDBusInterfaceValid", note);
        client.platform.during("ConfigurationAndProcessDataParser::frameToByteArray", note);
        const auto noteFree = [&] { duringSignal.append(isLockFree(client.handler)); };
        connect(&client.handler,
                QOverload<QVector<int>>::of(
                    &SelectorHandlerProcessValue::processDataDescriptionChanged),
                this, noteFree);
        connect(&client.handler,
                QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::propertyChanged), this,
                noteFree);

        client.script.at("a").property("unit", "K");
        client.script.changeDescription();
        client.script.at("a").property("unit", "C");
        client.script.changeProperties();

        QCOMPARE(duringPass, QVector<bool>(4, false));
        QCOMPARE(duringSignal, QVector<bool>(2, true));
        QVERIFY(isLockFree(client.handler));
    }
};

QTEST_GUILESS_MAIN(ChangePropagationTest)
#include "ChangePropagationTest.moc"
