// SPDX-License-Identifier: MIT
// Life of the handler: construction, replacement of the list, destruction, lock.
#include "Internals.h"
#include "ProcessDataValue.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "SystemStatusManagerDBusConnector.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

class SelectorListLifeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHandlerWithoutAListConnectsToTheStatusManager()
    {
        UnlikePlatform platform;
        const WarningLog warnings;
        QObject parent;

        SelectorHandlerProcessValue handler(&parent);

        QCOMPARE(platform.calls(),
                 QStringList{"SystemStatusManagerDBusConnector"
                             "::createAndConnect()"});
        QCOMPARE(platform.alive("SystemStatusManagerDBusConnector"), 1);
        QCOMPARE(handler.parent(), &parent);
        QCOMPARE(recordsOf(handler).size(), 0);
        QCOMPARE(sourcesOf(handler).size(), 0);
        QVERIFY(isLockFree(handler));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aMissingStatusManagerIsReportedAndTheHandlerWorks()
    {
        UnlikePlatform platform;
        platform.statusManagerMissing();
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler(nullptr);
        QCOMPARE(warnings.texts(), QStringList{"Invalid pointer to connector!"});

        handler.setSelectorUrls({on("a")});
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1));
        platform.announceStartupReady();
        QCOMPARE(warnings.texts().size(), 1);
    }

    void aHandlerWithAListMakesNoConnectionToTheStatusManager()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        QObject parent;
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a")}, &parent);

        QCOMPARE(platform.calls({"SystemStatusManagerDBusConnector"}), QStringList());
        QVERIFY((handler.*memberOf(SelectorHandlerProcessValue_statusManagerConnector())).isNull());
        QCOMPARE(handler.parent(), &parent);
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void anEmptyListDropsEverything()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({on("a"), off("a"), "bad"}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        handler.setSelectorUrls({});

        QCOMPARE(recordsOf(handler).size(), 0);
        QCOMPARE(sourcesOf(handler).size(), 0);
        for (const char *name : {"SelectorUrlHandler", "DBusProcessDescriptionConnector",
                                 "ProcessDataManager", "ConfigurationAndProcessDataBase",
                                 "ProcessDataValue", "ConfigurationAndProcessDataParser"}) {
            QCOMPARE(platform.alive(name), 0);
        }
        QVERIFY(isLockFree(handler));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void recordsGoBeforeSources()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        platform.forgetCalls();

        handler.setSelectorUrls({});

        QCOMPARE(platform.calls(),
                 (QStringList{"~SelectorUrlHandler[scripted://boiler/sensors/1/a]",
                              "~ConfigurationAndProcessDataBase[1]", "~ProcessDataValue[a#1]",
                              "~ProcessDataManager[1]", "~SharedMemory[1]",
                              "~DBusProcessDescriptionConnector[boiler/sensors]"}));
    }

    void theSameListAgainBuildsEverySourceAnew()
    {
        UnlikePlatform platform;
        ScriptedSource &source = platform.source("boiler", "sensors", "1").leaf("a", 1);
        const QVector<QString> urls{on("a")};
        SelectorHandlerProcessValue handler(urls, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        handler.setSelectorUrls(urls);

        const QStringList calls = platform.calls(
            {"SelectorUrlHandler", "DBusProcessDescriptionConnector", "ProcessDataManager"});
        const int ended = calls.indexOf("~DBusProcessDescriptionConnector[boiler/sensors]");
        const int made = calls.indexOf(
            "DBusProcessDescriptionConnector::createAndConnect('boiler', 'sensors')");
        QVERIFY(ended >= 0 && made > ended);
        QCOMPARE(platform.alive("DBusProcessDescriptionConnector"), 1);
        QCOMPARE(platform.alive("ProcessDataManager"), 1);
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1));
        source.announceDescription(); // the ended source asks for nothing
        QCOMPARE(source.replyCount(), 1);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void anotherListReplacesTheFirst()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        platform.source("pump", "drive", "2").leaf("speed", 1500);
        SelectorHandlerProcessValue handler({on("a"), on("a"), on("a")}, nullptr);
        const WarningLog warnings;

        handler.setSelectorUrls({"scripted://pump/drive/2/speed", off("a")});

        QCOMPARE(recordsOf(handler).size(), 2);
        QCOMPARE(sourcesOf(handler).keys(), QStringList{"pump_drive_2"});
        QCOMPARE(sourcesOf(handler).first()->getConnectedLeafIndexList(), QVector<int>{0});
        QCOMPARE(handler.getValue(0).getValue(), QVariant(1500));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theCallHoldsTheLockThroughoutAndSignalsNothing()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QSignalSpy descriptions(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)));
        QSignalSpy properties(&handler, SIGNAL(propertyChanged(QVector<int>)));
        QStringList free;
        const QStringList operations{"SelectorUrlHandler::~",
                                     "DBusProcessDescriptionConnector::~",
                                     "ProcessDataManager::~",
                                     "SelectorUrlHandler::SelectorUrlHandler",
                                     "DBusProcessDescriptionConnector::createAndConnect",
                                     "DBusProcessDescriptionConnector::isDBusInterfaceValid",
                                     "DBusProcessDescriptionConnector::getProcessDataDescription",
                                     "ProcessDataManager::createProcessDataFromJson",
                                     "ConfigurationAndProcessDataBase::getLeafProcessDataValue",
                                     "ConfigurationAndProcessDataParser::frameToByteArray",
                                     "ProcessDataValue::readLeafProperty"};
        int hooks = 0;
        for (const QString &operation : operations) {
            platform.during(operation, [&handler, &free, &hooks, operation] {
                ++hooks;
                if (isLockFree(handler)) {
                    free.append(operation);
                }
            });
        }

        handler.setSelectorUrls({on("a")});

        QCOMPARE(hooks, operations.size());
        QCOMPARE(free, QStringList());
        QVERIFY(isLockFree(handler));
        QCOMPARE(descriptions.size() + properties.size(), 0);
        for (const QString &operation : operations) {
            platform.during(operation, {});
        }
    }

    void theSourceIsConnectedAndFiledBeforeItsInterfaceIsAsked()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler(nullptr);
        QStringList keys;
        QVector<int> positions;
        platform.during("DBusProcessDescriptionConnector::isDBusInterfaceValid", [&] {
            keys = sourcesOf(handler).keys();
            positions = sourcesOf(handler).first()->getConnectedLeafIndexList();
        });

        handler.setSelectorUrls({off("a"), on("a")});

        QCOMPARE(keys, QStringList{"boiler_sensors_1"});
        QCOMPARE(positions, QVector<int>{1});
        platform.during("DBusProcessDescriptionConnector::isDBusInterfaceValid", {});
    }

    void destructionReleasesRecordsThenSourcesThenTheStatusManager()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        auto handler = std::make_unique<SelectorHandlerProcessValue>(nullptr);
        handler->setSelectorUrls({on("a")});
        const WarningLog warnings;
        platform.forgetCalls();

        handler.reset();

        QCOMPARE(platform.calls(),
                 (QStringList{"~SelectorUrlHandler[scripted://boiler/sensors/1/a]",
                              "~ConfigurationAndProcessDataBase[1]", "~ProcessDataValue[a#1]",
                              "~ProcessDataManager[1]", "~SharedMemory[1]",
                              "~DBusProcessDescriptionConnector[boiler/sensors]",
                              "~SystemStatusManagerDBusConnector"}));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aParentEndsItsHandler()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a", 1);
        {
            QObject parent;
            new SelectorHandlerProcessValue({on("a")}, &parent);
            QCOMPARE(platform.alive("DBusProcessDescriptionConnector"), 1);
        }
        QCOMPARE(platform.alive("DBusProcessDescriptionConnector"), 0);
    }

    void manySelectorsOfManySourcesKeepTheirPlaces()
    {
        UnlikePlatform platform;
        QVector<QString> urls;
        for (int i = 0; i < 300; ++i) {
            const QString instance = QString::number(i % 30);
            platform.source("m", "o", instance).leaf(QString::number(i), i);
            urls.append("scripted://m/o/" + instance + "/" + QString::number(i));
        }
        SelectorHandlerProcessValue handler(urls, nullptr);
        const QVector<ProcessValue> values = handler.getValues();
        QCOMPARE(values.size(), 300);
        for (int i = 0; i < 300; ++i) {
            QCOMPARE(values.at(i).getValue(), QVariant(i));
        }
        QCOMPARE(sourcesOf(handler).size(), 30);
    }
};

QTEST_GUILESS_MAIN(SelectorListLifeTest)
#include "SelectorListLifeTest.moc"
