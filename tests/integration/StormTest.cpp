// SPDX-License-Identifier: MIT
// Storms of announcements: the client's event loop turns, it ends in the right state, and it
// fetches no more than its rules of change notification say.
#include "BusTestMain.h"
#include "ClassForm.h"
#include "DBusProcessDescriptionConnector.h"
#include "DBusReply.h"
#include "ProcessDataPublisher.h"
#include "ScriptedService.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorSharedMemoryHandler.h"
#include "SystemTest.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTest>
#include <QTimer>

struct SourcesOfHandler
{
    friend auto memberOf(SourcesOfHandler);
};
template struct Opens<SourcesOfHandler, &SelectorHandlerProcessValue::sharedMemoryHandlers>;

struct ConnectorOfSource
{
    friend auto memberOf(ConnectorOfSource);
};
template struct Opens<ConnectorOfSource, &SelectorSharedMemoryHandler::connector>;

namespace {

constexpr int waitLimit = 50000; // milliseconds: sanitized programs on a loaded machine

// What each source of a handler was told, and what it told its owner: every announcement of its own
// instance may cost an asynchronous fetch, every change told to the owner costs a blocking one.
struct Tally
{
    explicit Tally(SelectorHandlerProcessValue &handler)
    {
        auto &sources = handler.*memberOf(SourcesOfHandler());
        for (auto source = sources.begin(); source != sources.end(); ++source) {
            const QString instance = source.key().section('_', 2);
            const auto connector = (**source).*memberOf(ConnectorOfSource());
            const auto count = [this, instance](const QString &announced) {
                announcements += announced == instance ? 1 : 0;
            };
            QObject::connect(connector.data(),
                             &DBusProcessDescriptionConnector::processDataDescriptionChanged,
                             count);
            QObject::connect(connector.data(), &DBusProcessDescriptionConnector::propertyChanged,
                             count);
            QObject::connect(source->data(),
                             &SelectorSharedMemoryHandler::processDataDescriptionChanged,
                             [this] { ++changes; });
            QObject::connect(source->data(), &SelectorSharedMemoryHandler::propertyChanged,
                             [this] { ++propertyChanges; });
        }
    }

    int announcements = 0;
    int changes = 0;
    int propertyChanges = 0;
};

// Runs the event loop as an application does, and sees how it turns.
struct Loop
{
    explicit Loop(const int &work)
        : work(work)
    {
    }

    template <typename Condition> bool runUntil(Condition condition)
    {
        QEventLoop loop;
        QTimer everyTurn;
        bool met = false;
        total.start();
        sinceTurn.start();
        workBefore = work;
        QObject::connect(&everyTurn, &QTimer::timeout, [&] {
            noteTurn();
            met = condition();
            if (met || total.elapsed() > waitLimit) {
                loop.quit();
            }
        });
        everyTurn.start(0);
        loop.exec();
        return met;
    }

    void noteTurn()
    {
        ++turns;
        longest = qMax(longest, sinceTurn.restart());
        mostWork = qMax(mostWork, work - workBefore);
        workBefore = work;
    }

    const int &work; // grows while the loop turns
    QElapsedTimer total;
    QElapsedTimer sinceTurn;
    int turns = 0;
    qint64 longest = 0; // milliseconds
    int mostWork = 0; // in one turn
    int workBefore = 0;
};

} // namespace

class StormTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void anAnnouncementCostsOneFetchOfEachKind();
    void moreSourcesThanTheBusGrantsAnswersAreAllFetched();
    void aStormIsSurvived_data();
    void aStormIsSurvived();

private:
    bool serve(int instances);
    QVector<QString> urls(int instances) const;

    QSharedPointer<ProcessDataPublisher> publisher;
    QScopedPointer<ScriptedService> service;
};

void StormTest::init()
{
    SystemTest::init();
    QString error;
    publisher = ProcessDataPublisher::create(
        module + "real", "Controller", "1",
        description({leaf("speed", "float64", {{"revision", "@"}})}), &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
    QVERIFY(publisher->publish("speed", 8.0));
    service.reset(new ScriptedService(module));
    QVERIFY(service->comeUp());
}

void StormTest::cleanup()
{
    service.reset();
    publisher.reset();
    SystemTest::cleanup();
}

// All instances share one buffer; each has a description of its own.
bool StormTest::serve(int instances)
{
    const auto connector
        = DBusProcessDescriptionConnector::createAndConnect(module + "real", "Controller");
    const QVariant text = connector->getProcessDataDescription("1", QString()).getValue();
    const QJsonObject served = QJsonDocument::fromJson(text.toString().toUtf8()).object();
    QList<QStringList> orders;
    for (int i = 1; i <= instances; ++i) {
        const QString instance = QString::number(i);
        const QByteArray line = oneLine(claimed(served, module, instance));
        orders += QStringList{"set", instance, QString::fromUtf8(line)};
    }
    return !served.isEmpty() && service->orderAll(orders);
}

QVector<QString> StormTest::urls(int instances) const
{
    QVector<QString> urls;
    for (int i = 1; i <= instances; ++i) {
        urls += selectorUrl(module, "speed", "Controller", QString::number(i));
    }
    return urls;
}

void StormTest::anAnnouncementCostsOneFetchOfEachKind()
{
    QVERIFY(serve(1));
    SelectorHandlerProcessValue handler(urls(1), nullptr);
    QCOMPARE(service->fetches(), 1);
    const Tally tally(handler);

    for (int i = 1; i <= 20; ++i) {
        QVERIFY(service->announce("1"));
        QTRY_COMPARE(tally.changes, i);
        QCOMPARE(service->fetches(), 1 + 2 * i);
    }
    QVERIFY(service->announce("2")); // of an instance that this client has not
    QVERIFY(service->announce("1", "PropertyChanged"));
    QTRY_COMPARE(tally.propertyChanges, 1);
    QCOMPARE(service->fetches(), 1 + 2 * 21);
    QCOMPARE(tally.changes, 20);
}

// As after the restart of a large publisher: by default a bus daemon lets one connection wait for
// 128 answers and refuses further calls.
void StormTest::moreSourcesThanTheBusGrantsAnswersAreAllFetched()
{
    constexpr int instances = 300;
    QVERIFY(serve(instances));
    SelectorHandlerProcessValue handler(urls(instances), nullptr);
    QCOMPARE(service->fetches(), instances);
    const Tally tally(handler);
    Loop loop(tally.announcements);

    service->beginStorm(instances, instances);

    QVERIFY(loop.runUntil([&] { return service->stormTime() >= 0; }));
    QVERIFY2(loop.runUntil([&] { return tally.changes == instances; }),
             QByteArray::number(tally.changes));
    QCOMPARE(service->fetches(), 3 * instances);
    for (int i = 0; i < instances; ++i) {
        QCOMPARE(handler.getProperty("revision", i), QVariant("1"));
    }
}

void StormTest::aStormIsSurvived_data()
{
    QTest::addColumn<int>("instances");
    QTest::addColumn<int>("sources");
    QTest::newRow("of one instance") << 1 << 1;
    QTest::newRow("of 100 instances") << 100 << 100;
    QTest::newRow("of 10,000 instances that hardly concern the client") << 10000 << 3;
}

void StormTest::aStormIsSurvived()
{
    QFETCH(int, instances);
    QFETCH(int, sources);
    constexpr int storm = 10000;
    QVERIFY(serve(sources));
    SelectorHandlerProcessValue handler(urls(sources), nullptr);
    QCOMPARE(service->fetches(), sources);
    const Tally tally(handler);
    Loop loop(tally.announcements);

    service->beginStorm(storm, instances);
    int took = -1;
    QVERIFY(loop.runUntil([&] { return (took = service->stormTime()) >= 0; }));
    const int turnsInStorm = loop.turns;
    // Behind all of the storm, one announcement that cannot be taken for one of it.
    QList<QStringList> fence;
    for (int i = 1; i <= sources; ++i) {
        fence += ScriptedService::announcement(QString::number(i), "PropertyChanged");
    }
    QVERIFY(service->orderAll(fence));
    QVERIFY2(loop.runUntil([&] { return tally.propertyChanges == sources; }),
             QByteArray::number(tally.propertyChanges));

    const int fetches = service->fetches() - sources;
    qInfo(
        "%d announcements in %d ms, %d told to %d sources, %d changes: %d fetches; the loop turned "
        "%d times meanwhile, its longest turn took %lld ms and told %d announcements",
        storm, took, tally.announcements, sources, tally.changes, fetches, turnsInStorm,
        loop.longest, loop.mostWork);
    const QString last = QString::number(storm / instances);
    for (int i = 0; i < sources; ++i) {
        QCOMPARE(handler.getProperty("revision", i), QVariant(last));
        QCOMPARE(handler.getValue(i).getValue(), QVariant(8.0));
    }
    const int changes = tally.changes + tally.propertyChanges;
    QVERIFY(fetches <= tally.announcements + changes);
    QVERIFY(fetches >= 2 * changes);
    // Whatever comes in, one turn of the loop does no more than is there when it begins.
    QVERIFY2(loop.mostWork <= 2 * sources, QByteArray::number(loop.mostWork));
}

BUS_TEST_MAIN(StormTest)
#include "StormTest.moc"
