// SPDX-License-Identifier: MIT
// Attaching to a source: fetch, tree, buffer and what happens when one of them fails.
#include "ProcessDataValue.h"
#include "ScriptedSourceHandler.h"
#include "Selectors.h"

#include <QtTest>

namespace {

const QString connectorClass = "DBusProcessDescriptionConnector";
const QString managerClass = "ProcessDataManager";
const QString rootClass = "ConfigurationAndProcessDataBase";

} // namespace

class SourceAttachTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attachingFetchesBuildsAndChecks()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.make();
        source.platform.forgetCalls();

        QVERIFY(handler.attachToProcessBuffer());

        QCOMPARE(source.platform.calls({connectorClass, managerClass}),
                 (QStringList{"DBusProcessDescriptionConnector[boiler/sensors]"
                              "::getProcessDataDescription('1', '')",
                              "ProcessDataManager[1]::ProcessDataManager()",
                              "ProcessDataManager[1]::createProcessDataFromJson("
                              "'description of boiler/sensors/1', 'script', 1)",
                              "ProcessDataManager[1]::isBufferValid()"}));
        QCOMPARE(handler.getProcessDescription(), QVariant("description of boiler/sensors/1"));
        QVERIFY(handler.isProcessDataBufferValid());
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void attachingDoesNotAskForTheInterfaceFirst()
    {
        ScriptedSourceHandler source;
        source.script.interfaceInvalid();
        QVERIFY(source.make().attachToProcessBuffer());
        QVERIFY(!source.platform.calls().join(' ').contains("isDBusInterfaceValid"));
    }

    void attachingAgainReplacesTheManagerBeforeParsingAndTheTreeAfterwards()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();

        QVERIFY(handler.attachToProcessBuffer());

        QCOMPARE(source.platform.calls(
                     {connectorClass, managerClass, "SharedMemory", rootClass, "ProcessDataValue"}),
                 (QStringList{"DBusProcessDescriptionConnector[boiler/sensors]"
                              "::getProcessDataDescription('1', '')",
                              "ProcessDataManager[2]::ProcessDataManager()",
                              "~ProcessDataManager[1]", "~SharedMemory[1]",
                              "ProcessDataManager[2]::createProcessDataFromJson("
                              "'description of boiler/sensors/1', 'script', 1)",
                              "~ConfigurationAndProcessDataBase[1]", "~ProcessDataValue[inlet#1]",
                              "ProcessDataManager[2]::isBufferValid()"}));
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void aFirstFetchThatFailsLeavesNothing()
    {
        ScriptedSourceHandler source;
        source.script.fetchesFail("no such service");
        SelectorSharedMemoryHandler &handler = source.make();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(),
                 QStringList{"Read processDataDescription error." + sourceFields()
                             + " \"no such service\""});
        QVERIFY(!handler.getProcessDescription().isValid());
        QVERIFY(!handler.isProcessDataBufferValid());
        QCOMPARE(source.platform.alive(managerClass), 0);
        QCOMPARE(source.platform.alive(rootClass), 0);
    }

    void aLaterFetchThatFailsRebuildsFromTheStoredDescription()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();
        source.script.fetchesFail("time out");

        QVERIFY(handler.attachToProcessBuffer());

        QCOMPARE(
            source.warnings.texts(),
            QStringList{"Read processDataDescription error." + sourceFields() + " \"time out\""});
        QCOMPARE(handler.getProcessDescription(), QVariant("description of boiler/sensors/1"));
        QVERIFY(source.platform.calls({managerClass})
                    .contains("ProcessDataManager[2]::createProcessDataFromJson("
                              "'description of boiler/sensors/1', 'script', 1)"));

        source.script.bufferInvalid();
        source.warnings.clear();
        QVERIFY(!handler.attachToProcessBuffer());
        QCOMPARE(
            source.warnings.texts(),
            (QStringList{"Read processDataDescription error." + sourceFields() + " \"time out\"",
                         "SharedMemory buffer not valid." + sourceFields()}));
    }

    void aFetchWithoutADescriptionErasesTheStoredOneAndKeepsTheTree()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();
        const auto leaf = handler.getProcessDataLeaf(on("inlet"));
        source.script.fetchesGive(QVariant());

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(), QStringList());
        QVERIFY(!handler.getProcessDescription().isValid());
        QVERIFY(handler.isProcessDataBufferValid());
        QCOMPARE(handler.getProcessDataLeaf(on("inlet")), leaf);

        // Nothing is left to fall back to.
        source.script.fetchesFail("gone");
        source.platform.forgetCalls();
        QVERIFY(!handler.attachToProcessBuffer());
        QCOMPARE(source.warnings.texts(),
                 QStringList{"Read processDataDescription error." + sourceFields() + " \"gone\""});
        QCOMPARE(source.platform.calls({managerClass}), QStringList());
    }

    void aTreeWithAnInvalidBufferStaysAndFindsLeaves()
    {
        ScriptedSourceHandler source;
        source.script.bufferInvalid();
        SelectorSharedMemoryHandler &handler = source.make();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(),
                 QStringList{"SharedMemory buffer not valid." + sourceFields()});
        QVERIFY(!handler.isProcessDataBufferValid());
        QVERIFY(!handler.getProcessDataLeaf(on("inlet")).isNull());
        source.script.bufferInvalid(false);
        QVERIFY(handler.isProcessDataBufferValid()); // asked each time
    }

    void aMissingRootCannotBeAttachedTo()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();
        source.script.rootMissing();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(),
                 QStringList{"Can't attach to sharedMemory." + sourceFields()});
        QVERIFY(handler.isProcessDataBufferValid());
        QVERIFY(handler.getProcessDataLeaf(on("inlet")).isNull());
        QCOMPARE(source.warnings.texts().size(), 1);
        QCOMPARE(source.platform.alive(rootClass), 0);
    }

    void aMissingRootIsNoTopicWhenTheBufferIsInvalid()
    {
        ScriptedSourceHandler source;
        source.script.rootMissing().bufferInvalid();
        QVERIFY(!source.make().attachToProcessBuffer());
        QCOMPARE(source.warnings.texts(),
                 QStringList{"SharedMemory buffer not valid." + sourceFields()});
    }

    void updatingTheRootGoesByItsArgument()
    {
        ScriptedSourceHandler source;
        source.platform.source("boiler", "sensors", "2").leaf("other");
        SelectorSharedMemoryHandler &handler = source.make();
        source.platform.forgetCalls();

        QVERIFY(handler.updateRootElement("2"));
        QVERIFY(source.platform.calls({connectorClass})
                    .contains("DBusProcessDescriptionConnector[boiler/sensors]"
                              "::getProcessDataDescription('2', '')"));
        QCOMPARE(source.warnings.texts(), QStringList());

        const QString others
            = " ModuleName: \"boiler\" ObjectName: \"sensors\" InstanceName: \"2\"";
        source.platform.source("boiler", "sensors", "2").bufferInvalid();
        QVERIFY(!handler.updateRootElement("2"));
        QCOMPARE(source.warnings.texts(), QStringList{"SharedMemory buffer not valid." + others});

        source.warnings.clear();
        source.platform.source("boiler", "sensors", "2").bufferInvalid(false).fetchesFail("why");
        QVERIFY(handler.updateRootElement("2"));
        QCOMPARE(source.warnings.texts(),
                 QStringList{"Read processDataDescription error." + others + " \"why\""});
    }

    void updatingTheRootSucceedsWithoutARoot()
    {
        ScriptedSourceHandler source;
        source.script.rootMissing();
        QVERIFY(source.make().updateRootElement("1"));
        QCOMPARE(source.warnings.texts(), QStringList());
    }
};

QTEST_GUILESS_MAIN(SourceAttachTest)
#include "SourceAttachTest.moc"
