// SPDX-License-Identifier: MIT
// The refresh when the system has finished starting up.
#include "IndexLists.h"
#include "Internals.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString connectorClass = "DBusProcessDescriptionConnector";

QString url(const QString &module)
{
    return "scripted://" + module + "/o/1/leaf";
}

// Three sources that cannot be reached yet.
struct EarlyClient
{
    UnlikePlatform platform;
    QVector<ScriptedSource *> scripts;
    SelectorHandlerProcessValue handler;
    QSignalSpy descriptions{&handler, SIGNAL(processDataDescriptionChanged(QVector<int>))};
    QSignalSpy properties{&handler, SIGNAL(propertyChanged(QVector<int>))};
    WarningLog warnings;

    EarlyClient()
        : handler(nullptr)
    {
        for (const QString module : {"a", "b", "c"}) {
            scripts.append(&platform.source(module, "o", "1").leaf("leaf", module));
            scripts.last()->interfaceInvalid();
        }
        handler.setSelectorUrls({url("c"), url("a"), url("b"), url("a")});
        platform.forgetCalls();
        warnings.clear();
    }
    void bringUp()
    {
        for (ScriptedSource *script : scripts) {
            script->interfaceInvalid(false);
        }
    }
    IndexLists reported() const { return indexLists(descriptions); }
};

} // namespace

class StartupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sourcesThatWereNotReadyAreRefreshedInTheOrderOfTheirKeys()
    {
        EarlyClient client;
        client.bringUp();

        client.platform.announceStartupReady();

        QCOMPARE(client.reported(), (IndexLists{{1, 3}, {2}, {0}}));
        QCOMPARE(client.properties.size(), 0);
        QCOMPARE(client.handler.getValue(0).getValue(), QVariant("c"));
        QCOMPARE(client.handler.getValue(3).getValue(), QVariant("a"));
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void aSecondSignalHasNoEffect()
    {
        EarlyClient client;
        client.platform.announceStartupReady();
        QCOMPARE(client.warnings.texts(),
                 (QStringList{"SharedMemory is not valid: \"a_o_1\"",
                              "SharedMemory is not valid: \"b_o_1\"",
                              "SharedMemory is not valid: \"c_o_1\""}));
        client.bringUp();
        client.platform.forgetCalls();
        client.descriptions.clear();
        client.warnings.clear();

        client.platform.announceStartupReady();

        QCOMPARE(client.platform.calls(), QStringList());
        QCOMPARE(client.descriptions.size(), 0);
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void sourcesWhoseBufferIsValidAreLeftAlone()
    {
        EarlyClient client;
        client.scripts.at(1)->interfaceInvalid(false);
        client.handler.setSelectorUrls({url("a"), url("b"), url("c")});
        client.bringUp();
        client.scripts.at(1)->at("leaf").property("unit", "K");
        client.platform.forgetCalls();

        client.platform.announceStartupReady();

        QCOMPARE(client.reported(), (IndexLists{{0}, {2}}));
        QVERIFY(client.platform.calls({connectorClass}).filter("[b/o]").isEmpty());
        QCOMPARE(client.handler.getPropertyAsJsonString(1), QString(R"({"name":"leaf"})"));
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void aSourceWithATreeButAnInvalidBufferIsRefreshed()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("a", "o", "1").leaf("leaf", 1);
        SelectorHandlerProcessValue handler(nullptr);
        handler.setSelectorUrls({url("a")});
        script.bufferInvalid();
        platform.forgetCalls();
        const WarningLog warnings;

        platform.announceStartupReady();

        QCOMPARE(platform.calls({connectorClass}).filter("getProcessDataDescription('").size(), 1);
        QCOMPARE(warnings.texts(),
                 (QStringList{"SharedMemory buffer not valid. ModuleName: \"a\" ObjectName: \"o\" "
                              "InstanceName: \"1\"",
                              "Can't attach to SharedMemory: \"a_o_1\""}));
    }

    void aHandlerWithAListIsDeafToTheSignalButItsSlotStillRefreshes()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("a", "o", "1").leaf("leaf", 1).interfaceInvalid();
        SelectorHandlerProcessValue other(nullptr); // so that there is an emitter
        SelectorHandlerProcessValue handler({url("a")}, nullptr);
        QSignalSpy descriptions(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
        script.interfaceInvalid(false);
        platform.forgetCalls();
        const WarningLog warnings;

        platform.announceStartupReady();
        QCOMPARE(platform.calls(), QStringList());

        QVERIFY(QMetaObject::invokeMethod(&handler, "orvalisStartupReady"));
        QCOMPARE(warnings.texts(), QStringList{"Invalid pointer to connector!"});
        QCOMPARE(descriptions.size(), 1);
        QCOMPARE(descriptions.at(0).at(0).value<QVector<int>>(), QVector<int>{0});
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1));
    }

    void theSlotMayBeCalledAgain()
    {
        EarlyClient client;
        client.bringUp();
        client.platform.announceStartupReady();
        client.descriptions.clear();
        client.scripts.at(0)->bufferInvalid();
        client.scripts.at(0)->at("leaf").property("unit", "K");

        QVERIFY(QMetaObject::invokeMethod(&client.handler, "orvalisStartupReady"));

        QCOMPARE(client.reported(), (IndexLists{{1, 3}}));
    }

    void aNullSourceIsReportedAndTheOthersAreRefreshed()
    {
        EarlyClient client;
        client.bringUp();
        sourcesOf(client.handler)["b_o_1"].clear();

        client.platform.announceStartupReady();

        QCOMPARE(client.warnings.texts(),
                 QStringList{"Nullpointer access SelectorSharedMemoryHandler \"b_o_1\""});
        QCOMPARE(client.reported(), (IndexLists{{1, 3}, {0}}));
    }

    void withoutSourcesNothingHappens()
    {
        UnlikePlatform platform;
        SelectorHandlerProcessValue handler(nullptr);
        QSignalSpy descriptions(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
        const WarningLog warnings;
        platform.announceStartupReady();
        QCOMPARE(descriptions.size(), 0);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theLockIsFreeBetweenRefreshesAndWhileBuffersAreAsked()
    {
        EarlyClient client;
        client.bringUp();
        QVector<bool> whileFetched;
        QVector<bool> whileSignalled;
        client.platform.during(connectorClass + "::getProcessDataDescription",
                               [&] { whileFetched.append(isLockFree(client.handler)); });
        connect(&client.handler,
                QOverload<QVector<int>>::of(
                    &SelectorHandlerProcessValue::processDataDescriptionChanged),
                this, [&] {
                    whileSignalled.append(isLockFree(client.handler));
                    client.handler.getValues();
                });

        client.platform.announceStartupReady();

        QCOMPARE(whileFetched, QVector<bool>(3, false));
        QCOMPARE(whileSignalled, QVector<bool>(3, true));
    }

    void theSignalIsDisconnectedBeforeSourcesAreRefreshed()
    {
        EarlyClient client;
        int refreshes = 0;
        client.platform.during(connectorClass + "::isDBusInterfaceValid", [&] {
            ++refreshes;
            client.platform.announceStartupReady(); // must not come back into the slot
        });

        client.platform.announceStartupReady();

        QCOMPARE(refreshes, 3);
        client.platform.during(connectorClass + "::isDBusInterfaceValid", {});
    }
};

QTEST_GUILESS_MAIN(StartupTest)
#include "StartupTest.moc"
