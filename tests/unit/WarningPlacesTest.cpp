// SPDX-License-Identifier: MIT
// Each warning names the function and file that found the failure.
#include "Internals.h"
#include "ProcessDataValue.h"
#include "SelectorHandlerConvenienceFunctions.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

#include <functional>

namespace {

struct Scene
{
    UnlikePlatform platform;
    ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
    SelectorHandlerProcessValue handler{{on("a"), off("a")}, nullptr};
    SelectorSharedMemoryHandler source{"k", "boiler", "sensors", "1", nullptr};

    void reply(bool properties, const QVariant &value)
    {
        properties ? script.announceProperties() : script.announceDescription();
        script.reply(script.replyCount() - 1).finish(value);
    }
    // The handler's own source was asked before the other one.
    void announcedToHandler()
    {
        script.announceDescription();
        script.reply(script.replyCount() - 2).finish("new");
    }
    void failure(bool properties)
    {
        properties ? script.announceProperties() : script.announceDescription();
        script.reply(script.replyCount() - 1).fail(ErrorContainer(1, "x"));
    }
};

using Failure = std::function<void(Scene &)>;
using Functions = SelectorHandlerConvenienceFunctions;

} // namespace

Q_DECLARE_METATYPE(Failure)

class WarningPlacesTest : public QObject
{
    Q_OBJECT

    static void handlerRows(const std::function<void(const char *, const char *, Failure)> &row)
    {
        row("SelectorHandlerProcessValue::SelectorHandlerProcessValue",
            "Invalid pointer to connector!", [](Scene &s) {
                s.platform.statusManagerMissing();
                SelectorHandlerProcessValue other(nullptr);
            });
        row("SelectorHandlerProcessValue::setSelectorUrls",
            "SelectorUrl not valid:", [](Scene &s) { s.handler.setSelectorUrls({"bad"}); });
        row("SelectorHandlerProcessValue::setSelectorUrls", "No processData scheme selected:",
            [](Scene &s) { s.handler.setSelectorUrls({"x://m/o/i/l"}); });
        row("SelectorHandlerProcessValue::checkSetGetValuesInternalData",
            "Access to Index Max index", [](Scene &s) { s.handler.getValues(0, 9); });
        row("SelectorHandlerProcessValue::getValuesInternal",
            "No SelectorUrlHander selected (Nullpointer)", [](Scene &s) {
                recordsOf(s.handler)[0].selectorUrlHandler.clear();
                s.handler.getValue(0);
            });
        row("SelectorHandlerProcessValue::setValuesInternal",
            "No SelectorUrlHander selected (Nullpointer)", [](Scene &s) {
                recordsOf(s.handler)[0].selectorUrlHandler.clear();
                s.handler.setValue(valueOf(1), 0);
            });
        row("SelectorHandlerProcessValue::getValueInternal",
            "No valid sharedMemory iterator. Index:", [](Scene &s) {
                recordsOf(s.handler)[0].sharedMemoryIterator = {};
                s.handler.getValue(0);
            });
        row("SelectorHandlerProcessValue::setValueInternal",
            "No valid sharedMemory iterator. Index:", [](Scene &s) {
                recordsOf(s.handler)[0].sharedMemoryIterator = {};
                s.handler.setValue(valueOf(1), 0);
            });
        row("SelectorHandlerProcessValue::getProperty", "Index -1 is not valid.",
            [](Scene &s) { s.handler.getProperty("unit", -1); });
        row("SelectorHandlerProcessValue::getProperty", "Nullpointer access: SharedMemory",
            [](Scene &s) { s.handler.getProperty("unit", 1); });
        row("SelectorHandlerProcessValue::getProperties", "Nullpointer access: SharedMemory",
            [](Scene &s) { s.handler.getProperties("unit"); });
        row("SelectorHandlerProcessValue::getPropertyAsJsonString", "Index 2 is not valid.",
            [](Scene &s) { s.handler.getPropertyAsJsonString(2); });
        row("SelectorHandlerProcessValue::setNewSharedMemoryData",
            "Nullpointer access SelectorSharedMemoryHandler:", [](Scene &s) {
                sourcesOf(s.handler).first().clear();
                QMetaObject::invokeMethod(&s.handler, "propertyChanged",
                                          Q_ARG(QString, "boiler_sensors_1"));
            });
        row("SelectorHandlerProcessValue::setNewSharedMemoryData",
            "SharedMemory is not valid:", [](Scene &s) {
                s.script.interfaceInvalid();
                s.announcedToHandler();
            });
        row("SelectorHandlerProcessValue::setNewSharedMemoryData",
            "Can't attach to SharedMemory:", [](Scene &s) {
                s.script.fetchesGive(QVariant());
                s.announcedToHandler();
            });
        row("SelectorHandlerProcessValue::setNewSharedMemoryData", "Index 7 is not valid.",
            [](Scene &s) {
                sourcesOf(s.handler).first()->addConnectedLeafIndex(7);
                s.announcedToHandler();
            });
        row("SelectorHandlerProcessValue::orvalisStartupReady", "Invalid pointer to connector!",
            [](Scene &s) { QMetaObject::invokeMethod(&s.handler, "orvalisStartupReady"); });
        row("SelectorHandlerProcessValue::orvalisStartupReady",
            "Nullpointer access SelectorSharedMemoryHandler \"", [](Scene &s) {
                SelectorHandlerProcessValue other(nullptr);
                other.setSelectorUrls({on("a")});
                sourcesOf(other).first().clear();
                s.platform.announceStartupReady();
            });
    }

    static void sourceRows(const std::function<void(const char *, const char *, Failure)> &row)
    {
        row("SelectorSharedMemoryHandler::SelectorSharedMemoryHandler",
            "Invalid pointer to connector!", [](Scene &s) {
                s.script.connectorMissing();
                SelectorSharedMemoryHandler other("k", "boiler", "sensors", "1", nullptr);
            });
        row("SelectorSharedMemoryHandler::updateRootElement", "Read processDataDescription error.",
            [](Scene &s) {
                s.script.fetchesFail("x");
                s.source.attachToProcessBuffer();
            });
        row("SelectorSharedMemoryHandler::updateRootElement", "SharedMemory buffer not valid.",
            [](Scene &s) {
                s.script.bufferInvalid();
                s.source.attachToProcessBuffer();
            });
        row("SelectorSharedMemoryHandler::attachToProcessBuffer", "Can't attach to sharedMemory.",
            [](Scene &s) {
                s.script.rootMissing();
                s.source.attachToProcessBuffer();
            });
        row("SelectorSharedMemoryHandler::getProcessDataLeaf", "Url isn't valid:", [](Scene &s) {
            s.source.attachToProcessBuffer();
            s.source.getProcessDataLeaf("no");
        });
        for (const bool properties : {false, true}) {
            const char *intern = properties
                ? "SelectorSharedMemoryHandler::propertyChangedIntern"
                : "SelectorSharedMemoryHandler::processDataDescriptionChangedIntern";
            row(intern, "Invalid Reply Pointer pointer for get dbug", [properties](Scene &s) {
                s.script.asynchronousCallsMissing();
                properties ? s.script.announceProperties() : s.script.announceDescription();
            });
            row(properties
                    ? "SelectorSharedMemoryHandler::propertyChangedHandleReplySuccess"
                    : "SelectorSharedMemoryHandler::processDataDescriptionChangedHandleReplySuccess",
                "Invalid Processdescription received",
                [properties](Scene &s) { s.reply(properties, QVariant()); });
            row(properties
                    ? "SelectorSharedMemoryHandler::propertyChangedHandleReplyError"
                    : "SelectorSharedMemoryHandler::processDataDescriptionChangedHandleReplyError",
                "DBus error", [properties](Scene &s) { s.failure(properties); });
        }
    }

    static void helperRows(const std::function<void(const char *, const char *, Failure)> &row)
    {
        row("SelectorHandlerConvenienceFunctions::getModuleNameFromJsonObjectModule",
            "Can't read the moduleName. Selector data:", [](Scene &) {
                Functions::getModuleNameFromJsonObjectModule(QJsonObject());
            });
        row("SelectorHandlerConvenienceFunctions::getModuleNameFromJsonObjectModule",
            "No string in moduleName.", [](Scene &) {
                Functions::getModuleNameFromJsonObjectModule(QJsonObject{{"name-of-module", true}});
            });
        row("SelectorHandlerConvenienceFunctions::getJsonObjectModuleList",
            "No object in selector data. Selector data:", [](Scene &) {
                Functions::getJsonObjectModuleList("[1]");
            });
        row("SelectorHandlerConvenienceFunctions::getModuleDataFromRegisteredProviderList",
            "Error on selector data struct. Url:", [](Scene &) {
                Functions::getModuleDataFromRegisteredProviderList("[{}]", "A");
            });
    }

private Q_SLOTS:
    void theFunctionThatFoundTheFailureIsNamed_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("literal");
        QTest::addColumn<Failure>("failure");
        const auto row = [](const char *function, const char *literal, const Failure &failure) {
            QTest::addRow("%s: %s", function, literal) << function << literal << failure;
        };
        handlerRows(row);
        sourceRows(row);
        helperRows(row);
    }

    void theFunctionThatFoundTheFailureIsNamed()
    {
        QFETCH(QString, function);
        QFETCH(QString, literal);
        QFETCH(Failure, failure);
        Scene scene;
        const WarningLog warnings;

        failure(scene);

        const QStringList texts = warnings.texts();
        int found = -1;
        for (int i = 0; i < texts.size(); ++i) {
            QVERIFY2(!texts.at(i).endsWith(']'), qPrintable(texts.at(i)));
            if (texts.at(i).startsWith(literal) && warnings.functions().at(i) == function) {
                found = i;
            }
        }
        QVERIFY2(found >= 0, qPrintable(texts.join('\n') + warnings.functions().join('\n')));
        const QString className = function.section("::", 0, 0);
        QVERIFY(warnings.files().at(found).startsWith("src/" + className));
    }

    void eachOperationWithoutAConnectorReportsItself()
    {
        Scene scene;
        scene.script.connectorMissing();
        const WarningLog warnings;
        SelectorSharedMemoryHandler other("k", "boiler", "sensors", "1", nullptr);
        other.isDBusInterfaceValid();
        other.attachToProcessBuffer();
        for (const char *slot : {"processDataDescriptionChangedIntern", "propertyChangedIntern"}) {
            QMetaObject::invokeMethod(&other, slot, Q_ARG(QString, "1"));
        }
        QCOMPARE(warnings.texts(),
                 (QStringList{"Invalid pointer to connector!", "Invalid pointer to connector!",
                              "Invalid pointer to connector!", "Invalid pointer to connector!",
                              "Invalid pointer to connector!"}));
        const QString prefix = "SelectorSharedMemoryHandler::";
        QCOMPARE(warnings.functions(),
                 (QStringList{prefix + "SelectorSharedMemoryHandler",
                              prefix + "isDBusInterfaceValid", prefix + "updateRootElement",
                              prefix + "processDataDescriptionChangedIntern",
                              prefix + "propertyChangedIntern"}));
    }
};

QTEST_GUILESS_MAIN(WarningPlacesTest)
#include "WarningPlacesTest.moc"
