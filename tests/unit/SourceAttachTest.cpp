// SPDX-License-Identifier: MIT
// Attaching to a source: fetch, tree, buffer and what happens when one of them fails.
#include "ProcessDataValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

namespace {

const QString connectorClass = "DBusProcessDescriptionConnector";
const QString managerClass = "ProcessDataManager";
const QString rootClass = "ConfigurationAndProcessDataBase";
const QString fields = " ModuleName: \"boiler\" ObjectName: \"sensors\" InstanceName: \"1\"";

struct Source
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    QScopedPointer<SelectorSharedMemoryHandler> handler;
    WarningLog warnings;

    SelectorSharedMemoryHandler &make()
    {
        handler.reset(
            new SelectorSharedMemoryHandler("the key", "boiler", "sensors", "1", nullptr));
        return *handler;
    }
    SelectorSharedMemoryHandler &makeAttached()
    {
        make().attachToProcessBuffer();
        platform.forgetCalls();
        warnings.clear();
        return *handler;
    }
};

} // namespace

class SourceAttachTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attachingFetchesBuildsAndChecks()
    {
        Source source;
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
        Source source;
        source.script.interfaceInvalid();
        QVERIFY(source.make().attachToProcessBuffer());
        QVERIFY(!source.platform.calls().join(' ').contains("isDBusInterfaceValid"));
    }

    void attachingAgainReplacesTheManagerBeforeParsingAndTheTreeAfterwards()
    {
        Source source;
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
        Source source;
        source.script.fetchesFail("no such service");
        SelectorSharedMemoryHandler &handler = source.make();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(
            source.warnings.texts(),
            QStringList{"Read processDataDescription error." + fields + " \"no such service\""});
        QVERIFY(!handler.getProcessDescription().isValid());
        QVERIFY(!handler.isProcessDataBufferValid());
        QCOMPARE(source.platform.alive(managerClass), 0);
        QCOMPARE(source.platform.alive(rootClass), 0);
    }

    void aLaterFetchThatFailsRebuildsFromTheStoredDescription()
    {
        Source source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();
        source.script.fetchesFail("time out");

        QVERIFY(handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(),
                 QStringList{"Read processDataDescription error." + fields + " \"time out\""});
        QCOMPARE(handler.getProcessDescription(), QVariant("description of boiler/sensors/1"));
        QVERIFY(source.platform.calls({managerClass})
                    .contains("ProcessDataManager[2]::createProcessDataFromJson("
                              "'description of boiler/sensors/1', 'script', 1)"));

        source.script.bufferInvalid();
        source.warnings.clear();
        QVERIFY(!handler.attachToProcessBuffer());
        QCOMPARE(source.warnings.texts(),
                 (QStringList{"Read processDataDescription error." + fields + " \"time out\"",
                              "SharedMemory buffer not valid." + fields}));
    }

    void aFetchWithoutADescriptionErasesTheStoredOneAndKeepsTheTree()
    {
        Source source;
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
                 QStringList{"Read processDataDescription error." + fields + " \"gone\""});
        QCOMPARE(source.platform.calls({managerClass}), QStringList());
    }

    void aTreeWithAnInvalidBufferStaysAndFindsLeaves()
    {
        Source source;
        source.script.bufferInvalid();
        SelectorSharedMemoryHandler &handler = source.make();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(), QStringList{"SharedMemory buffer not valid." + fields});
        QVERIFY(!handler.isProcessDataBufferValid());
        QVERIFY(!handler.getProcessDataLeaf(on("inlet")).isNull());
        source.script.bufferInvalid(false);
        QVERIFY(handler.isProcessDataBufferValid()); // asked each time
    }

    void aMissingRootCannotBeAttachedTo()
    {
        Source source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();
        source.script.rootMissing();

        QVERIFY(!handler.attachToProcessBuffer());

        QCOMPARE(source.warnings.texts(), QStringList{"Can't attach to sharedMemory." + fields});
        QVERIFY(handler.isProcessDataBufferValid());
        QVERIFY(handler.getProcessDataLeaf(on("inlet")).isNull());
        QCOMPARE(source.warnings.texts().size(), 1);
        QCOMPARE(source.platform.alive(rootClass), 0);
    }

    void aMissingRootIsNoTopicWhenTheBufferIsInvalid()
    {
        Source source;
        source.script.rootMissing().bufferInvalid();
        QVERIFY(!source.make().attachToProcessBuffer());
        QCOMPARE(source.warnings.texts(), QStringList{"SharedMemory buffer not valid." + fields});
    }

    void updatingTheRootGoesByItsArgument()
    {
        Source source;
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
        Source source;
        source.script.rootMissing();
        QVERIFY(source.make().updateRootElement("1"));
        QCOMPARE(source.warnings.texts(), QStringList());
    }
};

QTEST_GUILESS_MAIN(SourceAttachTest)
#include "SourceAttachTest.moc"
