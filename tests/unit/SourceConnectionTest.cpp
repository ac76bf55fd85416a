// SPDX-License-Identifier: MIT
// One source: its connector, its lookups, its end.
#include "ProcessDataValue.h"
#include "ScriptedSourceHandler.h"
#include "Selectors.h"

#include <QtTest>

namespace {

const QString connectorClass = "DBusProcessDescriptionConnector";

} // namespace

class SourceConnectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makingASourceMakesItsConnectorAndNothingElse()
    {
        ScriptedSourceHandler source;

        SelectorSharedMemoryHandler &handler = source.make();

        QCOMPARE(source.platform.calls(),
                 QStringList{"DBusProcessDescriptionConnector"
                             "::createAndConnect('boiler', 'sensors')"});
        QVERIFY(!handler.getProcessDescription().isValid());
        QCOMPARE(handler.getConnectedLeafIndexList(), QVector<int>());
        QVERIFY(!handler.isProcessDataBufferValid());
        QVERIFY(handler.getProcessDataLeaf(on("inlet")).isNull());
        QCOMPARE(handler.parent(), nullptr);
        QCOMPARE(source.platform.calls().size(), 1);
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void aSourceIsOwnedByItsParent()
    {
        UnlikePlatform platform;
        QObject parent;
        const auto *handler
            = new SelectorSharedMemoryHandler("key", "boiler", "sensors", "1", &parent);
        QCOMPARE(handler->parent(), &parent);
        QCOMPARE(platform.alive(connectorClass), 1);
    }

    void withoutAConnectorEachOperationThatNeedsItWarns()
    {
        ScriptedSourceHandler source;
        source.script.connectorMissing();
        const QStringList warning{"Invalid pointer to connector!"};

        SelectorSharedMemoryHandler &handler = source.make();
        QCOMPARE(source.warnings.texts(), warning);

        source.warnings.clear();
        QVERIFY(!handler.isDBusInterfaceValid());
        QCOMPARE(source.warnings.texts(), warning);

        source.warnings.clear();
        QVERIFY(!handler.attachToProcessBuffer());
        QCOMPARE(source.warnings.texts(), warning);

        source.warnings.clear();
        QVERIFY(!handler.updateRootElement("1"));
        QCOMPARE(source.warnings.texts(), warning);

        source.warnings.clear();
        QVERIFY(!handler.isProcessDataBufferValid());
        QVERIFY(handler.getProcessDataLeaf(on("inlet")).isNull());
        QVERIFY(!handler.getProcessDescription().isValid());
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void theInterfacesStateIsTheConnectors()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.make();

        QVERIFY(handler.isDBusInterfaceValid());
        source.script.interfaceInvalid();
        QVERIFY(!handler.isDBusInterfaceValid());
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void aLeafIsLookedUpByTheUnchangedUrl()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.makeAttached();

        const auto leaf = handler.getProcessDataLeaf(on("inlet"));
        QVERIFY(!leaf.isNull());
        QCOMPARE(source.warnings.texts(), QStringList());
        QVERIFY(handler.getProcessDataLeaf(" Some%20\"text\" ").isNull());

        QCOMPARE(source.platform.calls(),
                 (QStringList{"ConfigurationAndProcessDataBase[1]"
                              "::getLeafProcessDataValue('scripted://boiler/sensors/1/inlet')",
                              "ConfigurationAndProcessDataBase[1]"
                              "::getLeafProcessDataValue(' Some%20\"text\" ')"}));
        QCOMPARE(source.warnings.texts(),
                 QStringList{"Url isn't valid: \" Some%20\\\"text\\\" \"" + sourceFields()});
    }

    void positionsAreKeptInOrderWithDuplicates()
    {
        ScriptedSourceHandler source;
        SelectorSharedMemoryHandler &handler = source.make();
        for (const int index : {5, -1, 5, 0}) {
            handler.addConnectedLeafIndex(index);
        }
        QVector<int> copy = handler.getConnectedLeafIndexList();
        QCOMPARE(copy, (QVector<int>{5, -1, 5, 0}));
        copy.clear();
        QCOMPARE(handler.getConnectedLeafIndexList().size(), 4);
        QVERIFY(handler.attachToProcessBuffer());
        QCOMPARE(handler.getConnectedLeafIndexList(), (QVector<int>{5, -1, 5, 0}));
    }

    void itsFieldsEndInReverseOrder()
    {
        ScriptedSourceHandler source;
        source.makeAttached();
        source.script.announceDescription();
        source.platform.forgetCalls();

        source.handler.reset();

        QCOMPARE(
            source.platform.calls(),
            (QStringList{"~DBusPendingReply[1]", "~ConfigurationAndProcessDataBase[1]",
                         "~ProcessDataValue[inlet#1]", "~ProcessDataManager[1]", "~SharedMemory[1]",
                         "~DBusProcessDescriptionConnector[boiler/sensors]"}));
        QCOMPARE(source.warnings.texts(), QStringList());
    }

    void aLeafThatIsHeldOutlivesItsSource()
    {
        ScriptedSourceHandler source;
        const auto leaf = source.makeAttached().getProcessDataLeaf(on("inlet"));
        source.handler.reset();
        QCOMPARE(source.platform.alive("ProcessDataValue"), 1);
        QVERIFY(!leaf.isNull());
    }
};

QTEST_GUILESS_MAIN(SourceConnectionTest)
#include "SourceConnectionTest.moc"
