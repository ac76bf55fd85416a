// SPDX-License-Identifier: MIT
// What a refresh does when the source, its leaves or its buffer are gone.
#include "ChangeClient.h"
#include "Internals.h"
#include "ProcessDataValue.h"
#include "Selectors.h"

#include <QtTest>

class FailedRefreshTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLeafThatVanishesIsReportedAndReadsAsTheErrorValue()
    {
        ChangeClient client({on("a"), on("b")});
        client.platform.nullNodesRenderAs("null");
        client.script.at("a").absent();

        client.script.changeDescription();

        QCOMPARE(indexLists(client.descriptions), IndexLists{{0}});
        QVERIFY(isErrorValue(client.handler.getValue(0)));
        QCOMPARE(client.handler.getPropertyAsJsonString(0), QString("null"));
        QVERIFY(!client.handler.setValue(valueOf(1), 0));
        QVERIFY(!client.handler.getProperty("unit", 0).isValid());
        QCOMPARE(client.warnings.texts(),
                 (QStringList{"Url isn't valid: \"scripted://boiler/sensors/1/a\"" + sourceFields(),
                              "Nullpointer access: SharedMemory not connected"}));
    }

    void anInvalidInterfaceIsReportedAndTheOldTreeStands()
    {
        ChangeClient client({on("a")});
        client.script.interfaceInvalid();
        client.script.at("a").property("unit", "K");

        client.script.changeDescription();

        QCOMPARE(client.warnings.texts(),
                 QStringList{"SharedMemory is not valid: \"boiler_sensors_1\""});
        QVERIFY(client.platform.calls().filter("getProcessDataDescription('").isEmpty());
        QCOMPARE(client.descriptions.size(), 0); // the leaf of the old tree is found again
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(1));
    }

    void withAnInvalidInterfaceAndNoTreeSelectorsStayWithoutLeaves()
    {
        UnlikePlatform platform;
        ScriptedSource &script
            = platform.source("boiler", "sensors", "1").leaf("a", 1).interfaceInvalid();
        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);
        QSignalSpy descriptions(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
        const WarningLog warnings;

        script.changeDescription();

        QCOMPARE(indexLists(descriptions), (IndexLists{{0, 1}}));
        QCOMPARE(warnings.texts(), QStringList{"SharedMemory is not valid: \"boiler_sensors_1\""});
        QVERIFY(isErrorValue(handler.getValue(0)));
    }

    void aFailedAttachIsReportedAndSelectorsAreResolvedAllTheSame()
    {
        ChangeClient client({on("a")});
        client.script.at("a").property("unit", "K");
        client.script.bufferInvalid();

        client.script.changeProperties();

        QCOMPARE(client.warnings.texts(),
                 (QStringList{"SharedMemory buffer not valid." + sourceFields(),
                              "Can't attach to SharedMemory: \"boiler_sensors_1\""}));
        QCOMPARE(indexLists(client.properties), IndexLists{{0}});
    }

    void anInvalidFetchKeepsTheOldTreeAndItsLeaves()
    {
        ChangeClient client({on("a")});
        client.script.announceDescription();
        const QVariant arrived = client.script.description();
        client.script.fetchesGive(QVariant());
        client.script.reply(0).finish(arrived);

        QCOMPARE(client.warnings.texts(),
                 QStringList{"Can't attach to SharedMemory: \"boiler_sensors_1\""});
        QCOMPARE(client.descriptions.size(), 0);
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant(1));
    }

    void aNullSourceIsReported()
    {
        ChangeClient client({on("a")});
        sourcesOf(client.handler).first().clear();

        client.announce("processDataDescriptionChanged", "boiler_sensors_1");
        client.announce("propertyChanged", "boiler_sensors_1");

        QCOMPARE(
            client.warnings.texts(),
            (QStringList{"Nullpointer access SelectorSharedMemoryHandler: \"boiler_sensors_1\"",
                         "Nullpointer access SelectorSharedMemoryHandler: \"boiler_sensors_1\""}));
        QCOMPARE(client.descriptions.size() + client.properties.size(), 0);
        QVERIFY(!recordsOf(client.handler).at(0).processDataLeaf.isNull());
    }

    void aPositionPastTheListIsSkipped()
    {
        ChangeClient client({on("a"), off("a")});
        const auto source = sourcesOf(client.handler).first();
        source->addConnectedLeafIndex(2);
        source->addConnectedLeafIndex(1);
        client.script.at("a").property("unit", "K");
        recordsOf(client.handler)[1].selectorUrlHandler.reset(new SelectorUrlHandler(on("b")));

        client.script.changeDescription();

        QCOMPARE(client.warnings.texts(),
                 QStringList{"Index 2 is not valid. Max possible index: 1 "
                             "\"boiler_sensors_1\""});
        QCOMPARE(indexLists(client.descriptions), (IndexLists{{0, 1}}));
    }
};

QTEST_GUILESS_MAIN(FailedRefreshTest)
#include "FailedRefreshTest.moc"
