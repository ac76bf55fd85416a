// SPDX-License-Identifier: MIT
// Announcements and replies from other threads, and clients in other threads.
#include "SelectorHandlerProcessValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <functional>
#include <thread>

namespace {

void inAnotherThread(const std::function<void()> &work)
{
    std::thread(work).join();
}

const auto descriptionSignal
    = QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::processDataDescriptionChanged);
const auto propertySignal
    = QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::propertyChanged);

} // namespace

class ThreadDeliveryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The first two: nothing in this process has asked for the types yet.
    void aQueuedConnectionByPointerToMemberRegistersTheType()
    {
        QCOMPARE(QMetaType::type("QVector<int>"), int(QMetaType::UnknownType));
        UnlikePlatform platform;
        SelectorHandlerProcessValue handler(QVector<QString>(), nullptr);
        QVERIFY(connect(
            &handler, descriptionSignal, this, [] {}, Qt::QueuedConnection));
        QVERIFY(QMetaType::type("QVector<int>") != int(QMetaType::UnknownType));
    }

    void anErrorsTypeIsRegisteredWhenTheMetaObjectIsAsked()
    {
        const QMetaObject &metaObject = SelectorSharedMemoryHandler::staticMetaObject;
        {
            UnlikePlatform platform;
            ScriptedSource &script = platform.source("boiler", "sensors", "1");
            SelectorSharedMemoryHandler handler("k", "boiler", "sensors", "1", nullptr);
            script.announceDescription();
            script.reply(0).fail(ErrorContainer(1, "direct"));
        }
        QCOMPARE(QMetaType::type("ErrorContainer"), int(QMetaType::UnknownType));

        const QMetaMethod slot = metaObject.method(metaObject.methodOffset() + 5);
        QCOMPARE(slot.parameterTypes(), QList<QByteArray>{"ErrorContainer"});
        const int type = slot.parameterType(0);

        QVERIFY(type != QMetaType::UnknownType);
        QCOMPARE(QMetaType::typeName(type), "ErrorContainer");
        QCOMPARE(metaObject.method(metaObject.methodOffset() + 7).parameterType(0), type);
    }

    void announcementsFromAnotherThreadWaitForTheEventLoop()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1");
        SelectorSharedMemoryHandler handler("k", "boiler", "sensors", "1", nullptr);
        const WarningLog warnings;

        inAnotherThread([&] { script.announceDescription(); });
        QCOMPARE(script.replyCount(), 0);
        QTRY_COMPARE(script.replyCount(), 1);
        inAnotherThread([&] { script.announceProperties(); });
        QCOMPARE(script.replyCount(), 1);
        QTRY_COMPARE(script.replyCount(), 2);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void repliesFromAnotherThreadWaitForTheEventLoop()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1");
        SelectorSharedMemoryHandler handler("k", "boiler", "sensors", "1", nullptr);
        QSignalSpy descriptions(&handler, SIGNAL(processDataDescriptionChanged(QString)));
        const WarningLog warnings;
        script.announceDescription();

        inAnotherThread([&] { script.reply(0).finish("new"); });
        QCOMPARE(descriptions.size(), 0);
        QTRY_COMPARE(descriptions.size(), 1);

        inAnotherThread([&] { script.reply(0).fail(ErrorContainer(9, "far away")); });
        QCOMPARE(warnings.texts(), QStringList());
        QTRY_COMPARE(warnings.texts(), QStringList{"DBus error ErrorContainer(9, \"far away\")"});
    }

    void startupReadyFromAnotherThreadRefreshesInTheHandlersThread()
    {
        UnlikePlatform platform;
        ScriptedSource &script
            = platform.source("boiler", "sensors", "1").leaf("a", 1).interfaceInvalid();
        SelectorHandlerProcessValue handler(nullptr);
        handler.setSelectorUrls({on("a")});
        script.interfaceInvalid(false);
        QThread *emittedIn = nullptr;
        connect(
            &handler, descriptionSignal, this, [&] { emittedIn = QThread::currentThread(); },
            Qt::DirectConnection);

        inAnotherThread([&] { platform.announceStartupReady(); });

        QCOMPARE(emittedIn, nullptr);
        QTRY_COMPARE(emittedIn, QThread::currentThread());
    }

    void aClientInAnotherThreadGetsItsListThere_data()
    {
        QTest::addColumn<bool>("properties");
        QTest::addColumn<Qt::ConnectionType>("connectionType");
        QTest::newRow("description, queued") << false << Qt::QueuedConnection;
        QTest::newRow("properties, queued") << true << Qt::QueuedConnection;
        QTest::newRow("description, automatic") << false << Qt::AutoConnection;
        QTest::newRow("properties, automatic") << true << Qt::AutoConnection;
    }

    void aClientInAnotherThreadGetsItsListThere()
    {
        QFETCH(bool, properties);
        QFETCH(Qt::ConnectionType, connectionType);
        qRegisterMetaType<QVector<int>>("QVector<int>"); // an automatic connection does not
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({off("a"), on("a")}, nullptr);
        const WarningLog warnings;
        QThread thread;
        QObject client;
        client.moveToThread(&thread);
        thread.start();
        QSemaphore delivered;
        QVector<int> list;
        QThread *deliveredIn = nullptr;
        ProcessValue value(ProcessDataDefinitions::NoValue);
        const auto take = [&](const QVector<int> &indexList) {
            list = indexList;
            deliveredIn = QThread::currentThread();
            value = handler.getValue(indexList.at(0));
            delivered.release();
        };
        connect(&handler, properties ? propertySignal : descriptionSignal, &client, take,
                connectionType);
        script.at("a").property("unit", "K");

        properties ? script.changeProperties() : script.changeDescription();

        const bool came = delivered.tryAcquire(1, 20000);
        thread.quit();
        thread.wait();
        QVERIFY(came);
        QCOMPARE(list, QVector<int>{1});
        QCOMPARE(deliveredIn, &thread);
        QCOMPARE(value.getValue(), QVariant(1));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aHandlerThatWasMadeInAnotherThreadWorksThere()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
        QThread thread;
        QObject context;
        context.moveToThread(&thread);
        thread.start();
        SelectorHandlerProcessValue *handler = nullptr;
        QThread *signalledIn = nullptr;
        QSemaphore signalled;
        QMetaObject::invokeMethod(
            &context,
            [&] {
                handler = new SelectorHandlerProcessValue({on("a")}, nullptr);
                connect(handler, descriptionSignal, handler, [&] {
                    signalledIn = QThread::currentThread();
                    signalled.release();
                });
            },
            Qt::BlockingQueuedConnection);
        script.at("a").property("unit", "K");

        script.announceDescription(); // from here: queued into the other thread
        QMetaObject::invokeMethod(
            &context, [] {}, Qt::BlockingQueuedConnection);
        script.reply(0).finish(script.description());

        const bool came = signalled.tryAcquire(1, 20000);
        QMetaObject::invokeMethod(
            &context, [&] { delete handler; }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
        QVERIFY(came);
        QCOMPARE(signalledIn, &thread);
    }
};

QTEST_GUILESS_MAIN(ThreadDeliveryTest)
#include "ThreadDeliveryTest.moc"
