// SPDX-License-Identifier: MIT
// Clients that do anything from within a change signal: nothing that was released is touched.
#include "Internals.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include <functional>

namespace {

const auto descriptionSignal
    = QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::processDataDescriptionChanged);
const auto propertySignal
    = QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::propertyChanged);

QString url(const QString &module)
{
    return "scripted://" + module + "/o/1/leaf";
}

// Sources a to d of which none is ready when the list is set.
struct Client
{
    UnlikePlatform platform;
    QVector<ScriptedSource *> scripts;
    QPointer<SelectorHandlerProcessValue> handler{new SelectorHandlerProcessValue(nullptr)};
    QVector<QVector<int>> lists;
    WarningLog warnings;
    std::function<void()> reaction;

    Client()
    {
        for (const QString module : {"a", "b", "c", "d"}) {
            scripts.append(&platform.source(module, "o", "1").leaf("leaf", module));
        }
        interfacesInvalid(true);
        handler->setSelectorUrls(allUrls());
        warnings.clear();
        const auto take = [this](const QVector<int> &list) {
            lists.append(list);
            if (reaction) {
                reaction();
            }
        };
        QObject::connect(handler, descriptionSignal, take);
        QObject::connect(handler, propertySignal, take);
    }
    ~Client() { delete handler; }
    void interfacesInvalid(bool on)
    {
        for (ScriptedSource *script : scripts) {
            script->interfaceInvalid(on);
        }
    }
    static QVector<QString> allUrls() { return {url("a"), url("b"), url("c"), url("d")}; }
    // Runs a reaction in the first signal only.
    void reactOnce(const std::function<void()> &once)
    {
        reaction = [this, once] {
            const auto current = once;
            reaction = nullptr;
            current();
        };
    }
};

using Reaction = std::function<void(Client &)>;

} // namespace

Q_DECLARE_METATYPE(Reaction)

class ReentrancyTest : public QObject
{
    Q_OBJECT

    static void addReactions()
    {
        QTest::addColumn<Reaction>("reaction");
        const auto row
            = [](const char *name, const Reaction &reaction) { QTest::newRow(name) << reaction; };
        row("reads values", [](Client &c) {
            QCOMPARE(c.handler->getValues().size(), 4);
            QCOMPARE(c.handler->getPropertiesAsJsonString().size(), 4);
            c.handler->setValue(valueOf(1), 0);
        });
        row("sets the same list", [](Client &c) { c.handler->setSelectorUrls(c.allUrls()); });
        row("sets the list backwards", [](Client &c) {
            c.handler->setSelectorUrls({url("d"), url("c"), url("b"), url("a")});
        });
        row("drops the sources to come", [](Client &c) { c.handler->setSelectorUrls({url("a")}); });
        row("drops the present source", [](Client &c) {
            c.handler->setSelectorUrls({url("c"), url("d")});
        });
        row("sets an empty list", [](Client &c) { c.handler->setSelectorUrls({}); });
        row("deletes the handler later", [](Client &c) { c.handler->deleteLater(); });
        row("deletes the handler later and runs the event loop", [](Client &c) {
            c.handler->deleteLater();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(c.handler.isNull());
        });
        row("deletes the handler at once", [](Client &c) { delete c.handler; });
        row("runs the event loop", [](Client &) { QCoreApplication::processEvents(); });
        row("lets the system start up once more",
            [](Client &c) { QMetaObject::invokeMethod(c.handler, "orvalisStartupReady"); });
        row("sees its own source announce again", [](Client &c) {
            c.scripts.at(0)->at("leaf").property("again", 1);
            c.scripts.at(0)->changeDescription();
        });
        row("sees another source announce", [](Client &c) {
            c.scripts.at(1)->at("leaf").property("again", 1);
            c.scripts.at(1)->changeProperties();
        });
    }

private Q_SLOTS:
    void duringTheStartupRefresh_data() { addReactions(); }
    void duringTheStartupRefresh()
    {
        QFETCH(Reaction, reaction);
        Client client;
        client.interfacesInvalid(false);
        client.reactOnce([&] { reaction(client); });

        client.platform.announceStartupReady();

        QVERIFY(!client.lists.isEmpty());
        QCOMPARE(client.lists.first(), QVector<int>{0});
        if (!client.handler.isNull()) {
            QVERIFY(isLockFree(*client.handler));
        }
    }

    void duringADescriptionChange_data() { addReactions(); }
    void duringADescriptionChange()
    {
        QFETCH(Reaction, reaction);
        Client client;
        client.interfacesInvalid(false);
        client.reactOnce([&] { reaction(client); });

        client.scripts.at(0)->changeDescription();

        QCOMPARE(client.lists.value(0), QVector<int>{0});
    }

    void duringAPropertyChange_data() { addReactions(); }
    void duringAPropertyChange()
    {
        QFETCH(Reaction, reaction);
        Client client;
        client.interfacesInvalid(false);
        client.reactOnce([&] { reaction(client); });

        client.scripts.at(0)->changeProperties();

        QCOMPARE(client.lists.value(0), QVector<int>{0});
    }

    void theStartupRefreshGoesOnInANewListBehindTheKeyItHadReached()
    {
        Client client;
        client.interfacesInvalid(false);
        client.scripts.at(1)->interfaceInvalid(); // b stays away
        client.reactOnce([&] {
            client.interfacesInvalid(true);
            client.handler->setSelectorUrls({url("a"), url("c"), url("e"), url("b")});
            client.interfacesInvalid(false);
            client.platform.forgetCalls();
        });

        client.platform.announceStartupReady();

        // a reported, then the list was replaced; b and c of the new list follow, e has no service.
        QCOMPARE(client.lists.mid(0, 3), (QVector<QVector<int>>{{0}, {3}, {1}}));
        QVERIFY(client.platform.calls().filter("[a/o]::isDBusInterfaceValid").isEmpty());
    }

    void theStartupRefreshEndsWhenTheListIsEmptied()
    {
        Client client;
        client.interfacesInvalid(false);
        client.reactOnce([&] {
            client.handler->setSelectorUrls({});
            client.platform.forgetCalls();
        });
        client.platform.announceStartupReady();
        QCOMPARE(client.lists, QVector<QVector<int>>{{0}});
        QCOMPARE(client.platform.calls(), QStringList());
    }

    void aReplyThatIsReleasedByItsOwnSignalIsNotTouchedAgain_data()
    {
        QTest::addColumn<bool>("error");
        QTest::newRow("finished") << false;
        QTest::newRow("failed") << true;
    }

    void aReplyThatIsReleasedByItsOwnSignalIsNotTouchedAgain()
    {
        QFETCH(bool, error);
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("m", "o", "1");
        SelectorSharedMemoryHandler handler("k", "m", "o", "1", nullptr);
        script.announceDescription();
        QObject context;
        // Connected behind the library's slot and, for the key, within it.
        connect(script.reply(0).keep().data(), &DBusPendingReply::dBusServiceError, &context,
                [&] { script.announceProperties(); });
        connect(&handler, &SelectorSharedMemoryHandler::processDataDescriptionChanged, &context,
                [&] { script.announceProperties(); });

        error ? script.reply(0).fail(ErrorContainer(1, "x")) : script.reply(0).finish("new");

        QVERIFY(!script.reply(0).isAlive());
        QVERIFY(script.reply(1).isAlive());
    }

    void aSourceThatIsDestroyedByItsOwnSignalIsNotTouchedAgain_data()
    {
        QTest::addColumn<bool>("properties");
        QTest::newRow("description") << false;
        QTest::newRow("properties") << true;
    }

    void aSourceThatIsDestroyedByItsOwnSignalIsNotTouchedAgain()
    {
        QFETCH(bool, properties);
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("m", "o", "1");
        auto *handler = new SelectorSharedMemoryHandler(QString("key that is %1").arg("not shared"),
                                                        "m", "o", "1", nullptr);
        const QString *received = nullptr;
        QString copy;
        const auto end = [&](const QString &key) {
            received = &key;
            delete handler;
            copy = key; // the argument outlives the emitter
        };
        QObject context;
        connect(handler, &SelectorSharedMemoryHandler::processDataDescriptionChanged, &context,
                end);
        connect(handler, &SelectorSharedMemoryHandler::propertyChanged, &context, end);

        properties ? script.changeProperties() : script.changeDescription();

        QVERIFY(received != nullptr);
        QCOMPARE(copy, QString("key that is not shared"));
        QCOMPARE(platform.alive("DBusPendingReply"), 0);
        QCOMPARE(platform.alive("DBusProcessDescriptionConnector"), 0);
    }

    void anAnnouncementQueuedBeforeTheListWasReplacedIsDropped()
    {
        Client client;
        client.interfacesInvalid(false);
        client.handler->setSelectorUrls({url("a")});
        const bool queued
            = QMetaObject::invokeMethod(client.handler, "processDataDescriptionChanged",
                                        Qt::QueuedConnection, Q_ARG(QString, "a_o_1"))
            && QMetaObject::invokeMethod(client.handler, "propertyChanged", Qt::QueuedConnection,
                                         Q_ARG(QString, "a_o_1"));
        QVERIFY(queued);
        client.handler->setSelectorUrls({url("b")});
        client.scripts.at(0)->at("leaf").property("unit", "K");
        client.platform.forgetCalls();
        client.warnings.clear();
        QCoreApplication::processEvents();
        QCOMPARE(client.platform.calls(), QStringList());
        QCOMPARE(client.lists, QVector<QVector<int>>());
        QCOMPARE(client.warnings.texts(), QStringList());
    }

    void nothingIsLeftAliveAfterAllThat()
    {
        {
            Client client;
        }
        UnlikePlatform platform;
        for (const char *name :
             {"SelectorUrlHandler", "DBusProcessDescriptionConnector", "DBusPendingReply",
              "SystemStatusManagerDBusConnector", "ProcessDataManager", "SharedMemory",
              "ConfigurationAndProcessDataBase", "ProcessDataValue"}) {
            QCOMPARE(platform.alive(name), 0);
        }
    }
};

QTEST_GUILESS_MAIN(ReentrancyTest)
#include "ReentrancyTest.moc"
