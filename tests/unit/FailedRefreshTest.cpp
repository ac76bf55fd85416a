// SPDX-License-Identifier: MIT
// What a refresh does when the source, its leaves or its buffer are gone.
#include "Internals.h"
#include "ProcessDataValue.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString fields = " ModuleName: \"boiler\" ObjectName: \"sensors\" InstanceName: \"1\"";

QList<QVector<int>> listsOf(const QSignalSpy &spy)
{
    QList<QVector<int>> lists;
    for (const QVariantList &arguments : spy) {
        lists.append(arguments.at(0).value<QVector<int>>());
    }
    return lists;
}

struct Client
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1).leaf("b", 2);
    SelectorHandlerProcessValue handler;
    QSignalSpy descriptions{&handler, SIGNAL(processDataDescriptionChanged(QVector<int>))};
    QSignalSpy properties{&handler, SIGNAL(propertyChanged(QVector<int>))};
    WarningLog warnings;

    explicit Client(const QVector<QString> &urls)
        : handler(urls, nullptr)
    {
        platform.forgetCalls();
        warnings.clear();
    }
    void announce(const char *slot, const QString &key)
    {
        QVERIFY(QMetaObject::invokeMethod(&handler, slot, Q_ARG(QString, key)));
    }
};

} // namespace

class FailedRefreshTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLeafThatVanishesIsReportedAndReadsAsTheErrorValue()
    {
        Client client({on("a"), on("b")});
        client.platform.nullNodesRenderAs("null");
        client.script.at("a").absent();

        client.script.changeDescription();

        QCOMPARE(listsOf(client.descriptions), QList<QVector<int>>{{0}});
        QVERIFY(isErrorValue(client.handler.getValue(0)));
        QCOMPARE(client.handler.getPropertyAsJsonString(0), QString("null"));
        QVERIFY(!client.handler.setValue(valueOf(1), 0));
        QVERIFY(!client.handler.getProperty("unit", 0).isValid());
        QCOMPARE(client.warnings.texts(),
                 (QStringList{"Url isn't valid: \"scripted://boiler/sensors/1/a\"" + fields,
                              "Nullpointer access: SharedMemory not connected"}));
    }

    void anInvalidInterfaceIsReportedAndTheOldTreeStands()
    {
        Client client({on("a")});
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

        QCOMPARE(listsOf(descriptions), (QList<QVector<int>>{{0, 1}}));
        QCOMPARE(warnings.texts(), QStringList{"SharedMemory is not valid: \"boiler_sensors_1\""});
        QVERIFY(isErrorValue(handler.getValue(0)));
    }

    void aFailedAttachIsReportedAndSelectorsAreResolvedAllTheSame()
    {
        Client client({on("a")});
        client.script.at("a").property("unit", "K");
        client.script.bufferInvalid();

        client.script.changeProperties();

        QCOMPARE(client.warnings.texts(),
                 (QStringList{"SharedMemory buffer not valid." + fields,
                              "Can't attach to SharedMemory: \"boiler_sensors_1\""}));
        QCOMPARE(listsOf(client.properties), QList<QVector<int>>{{0}});
    }

    void anInvalidFetchKeepsTheOldTreeAndItsLeaves()
    {
        Client client({on("a")});
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
        Client client({on("a")});
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
        Client client({on("a"), off("a")});
        const auto source = sourcesOf(client.handler).first();
        source->addConnectedLeafIndex(2);
        source->addConnectedLeafIndex(1);
        client.script.at("a").property("unit", "K");
        recordsOf(client.handler)[1].selectorUrlHandler.reset(new SelectorUrlHandler(on("b")));

        client.script.changeDescription();

        QCOMPARE(client.warnings.texts(),
                 QStringList{"Index 2 is not valid. Max possible index: 1 "
                             "\"boiler_sensors_1\""});
        QCOMPARE(listsOf(client.descriptions), (QList<QVector<int>>{{0, 1}}));
    }
};

QTEST_GUILESS_MAIN(FailedRefreshTest)
#include "FailedRefreshTest.moc"
