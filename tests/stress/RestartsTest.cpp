// SPDX-License-Identifier: MIT
// A client that stays up while its publisher is killed, its bus ends or its service hangs, again and
// again.
#include "BusTestMain.h"
#include "Footprint.h"
#include "MessageLog.h"
#include "Rounds.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QScopedPointer>
#include <QTest>

#include <functional>
#include <numeric>

class RestartsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whatAProcessHoldsIsSeenToGrow();
    void valuesMoveAfterEachDeathOfTheirPublisher();
    void announcementsArriveAfterEachRestartOfTheBus();
    void aHungServiceIsUsedAgainEachTimeItComesBack();

private:
    QVector<QString> urls() const;
    QVector<int> allIndices() const;
    void bringUp(QScopedPointer<PublisherProcess> &publisher);
    void requireMovingValues(PublisherProcess &publisher, SelectorHandlerProcessValue &handler,
                             int round);
    void repeat(const char *what, int rounds, int warmUp, const std::function<void(int)> &deed);
};

namespace {

constexpr int timeLimit = 20000; // milliseconds, for what takes a fraction of a second
constexpr int leafCount = 200; // so that a tree that is kept by mistake shows after a few rounds

QJsonObject pump(int round = 0)
{
    QJsonArray elements;
    for (int i = 0; i < leafCount; ++i) {
        elements += leaf(QString("leaf%1").arg(i), i % 2 == 0 ? "float64" : "int32",
                         {{"unit", QString("round %1").arg(round)}});
    }
    elements += leaf("name", "string", {{"capacity", 32}});
    return description(elements);
}

const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));
const char *const propertyChanged = SIGNAL(propertyChanged(QVector<int>));

} // namespace

void RestartsTest::initTestCase()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "400");
    QLoggingCategory::setFilterRules("processdata.*=false"); // each round would tell the same
}

QVector<QString> RestartsTest::urls() const
{
    QVector<QString> result;
    for (int i = 0; i < leafCount; ++i) {
        result += selectorUrl(module, QString("leaf%1").arg(i));
    }
    return result;
}

QVector<int> RestartsTest::allIndices() const
{
    QVector<int> indices(leafCount);
    std::iota(indices.begin(), indices.end(), 0);
    return indices;
}

void RestartsTest::bringUp(QScopedPointer<PublisherProcess> &publisher)
{
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(module, pump()));
}

// Two changes in a row: the second shows that the first was not what an older buffer held.
void RestartsTest::requireMovingValues(PublisherProcess &publisher,
                                       SelectorHandlerProcessValue &handler, int round)
{
    for (const double value : {round + 0.25, round + 0.5}) {
        VERIFY_COMMAND(publisher.publish("leaf0", value));
        const ProcessValue read = handler.getValue(0);
        QCOMPARE(read.getValue(), QVariant(value));
        QCOMPARE(read.getErrorType(), ProcessDataDefinitions::NoError);
    }
    VERIFY_COMMAND(publisher.publish("leaf199", round));
    QCOMPARE(handler.getValue(leafCount - 1).getValue(), QVariant(round));
}

// What this process holds must not grow once it is warm.
void RestartsTest::repeat(const char *what, int rounds, int warmUp,
                          const std::function<void(int)> &deed)
{
    Footprint warm;
    for (int round = 1; round <= rounds && !QTest::currentTestFailed(); ++round) {
        deed(round);
        if (round == warmUp) {
            warm = Footprint::now();
        }
    }
    QVERIFY(!QTest::currentTestFailed());
    const Footprint end = Footprint::now();
    qInfo("%d %s, 0 failures; after %d: %s; after %d: %s", rounds, what, warmUp,
          warm.text().constData(), rounds, end.text().constData());
    const QByteArray growth = end.growthSince(warm);
    QVERIFY2(growth.isEmpty(), growth.constData());
}

// What the other tests find nothing with must find something.
void RestartsTest::whatAProcessHoldsIsSeenToGrow()
{
    const Footprint before = Footprint::now();
    QVERIFY(before.descriptors > 0 && before.threads > 0);
    QCOMPARE(Footprint::now().growthSince(before), QByteArray());

    const QByteArray memory(8 * 1024 * 1024, 'x');
    QFile file("/proc/self/stat");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray growth = Footprint::now().growthSince(before);

    QVERIFY2(growth.contains("descriptors"), growth);
    if (before.heap != 0) { // else AddressSanitizer counts
        QVERIFY2(growth.contains("heap") && growth.contains("resident memory"), growth);
    }
}

void RestartsTest::valuesMoveAfterEachDeathOfTheirPublisher()
{
    const int rounds = roundsOr(20);
    QScopedPointer<PublisherProcess> publisher;
    bringUp(publisher);
    SelectorHandlerProcessValue handler(urls(), nullptr);
    QSignalSpy descriptions(&handler, changed);
    QSignalSpy properties(&handler, propertyChanged);
    repeat("deaths of a publisher", rounds, qMin(rounds / 4, 50), [&](int round) {
        requireMovingValues(*publisher, handler, -round);
        publisher->process().kill();
        QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
        QCOMPARE(handler.getValue(0).getValue(), QVariant(-round + 0.5));

        bringUp(publisher);

        // Exactly once: a second signal would stand in this round's list or in the next one's.
        QTRY_COMPARE_WITH_TIMEOUT(indexLists(descriptions), IndexLists({allIndices()}), timeLimit);
        descriptions.clear();
        QCOMPARE(indexLists(properties), IndexLists());
        requireMovingValues(*publisher, handler, round);
        QCOMPARE(buffersOf(module).size(), 1);
    });
    QVERIFY(publisher->quit());
    QCOMPARE(buffersOf(module), QStringList());
}

void RestartsTest::announcementsArriveAfterEachRestartOfTheBus()
{
    const int rounds = roundsOr(8);
    QScopedPointer<PublisherProcess> publisher;
    bringUp(publisher);
    SelectorHandlerProcessValue handler(urls(), nullptr);
    QSignalSpy descriptions(&handler, changed);
    QSignalSpy properties(&handler, propertyChanged);
    repeat("restarts of the bus", rounds, rounds / 4, [&](int round) {
        bus->stop();
        requireMovingValues(*publisher, handler, -round); // values need no bus
        QVERIFY2(bus->start(), bus->report().constData());
        VERIFY_COMMAND(publisher->replaceProperties(pump(round)));

        // Who comes back to the bus first is open: the announcement itself or the return of its
        // source tells the client. Either way each index is told once.
        const QString unit = QString("round %1").arg(round);
        QTRY_COMPARE_WITH_TIMEOUT(handler.getProperty("unit", 0), QVariant(unit), timeLimit);
        QCOMPARE(indexLists(descriptions) + indexLists(properties), IndexLists({allIndices()}));
        descriptions.clear();
        properties.clear();
        requireMovingValues(*publisher, handler, round);
        QCOMPARE(buffersOf(module).size(), 1);
    });
    QVERIFY(publisher->quit());
    QCOMPARE(buffersOf(module), QStringList());
}

void RestartsTest::aHungServiceIsUsedAgainEachTimeItComesBack()
{
    const int rounds = roundsOr(8);
    QScopedPointer<PublisherProcess> publisher;
    bringUp(publisher);
    SelectorHandlerProcessValue handler(urls(), nullptr);
    QSignalSpy descriptions(&handler, changed);
    repeat("hangs of a service", rounds, rounds / 4, [&](int round) {
        requireMovingValues(*publisher, handler, -round);
        publisher->process().suspend();
        {
            // It says that its source cannot be fetched, but not how often.
            const MessageLog warnings(MessageLog::LibraryWarnings);
            SelectorHandlerProcessValue late(urls(), nullptr);
            QSignalSpy lateDescriptions(&late, changed);
            QVERIFY(!warnings.texts().isEmpty());
            QCOMPARE(late.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);
            QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
            QCOMPARE(handler.getValue(0).getValue(), QVariant(-round + 0.5));

            publisher->process().resume();

            QTRY_COMPARE_WITH_TIMEOUT(indexLists(lateDescriptions), IndexLists({allIndices()}),
                                      timeLimit);
            requireMovingValues(*publisher, late, round);
        }
        requireMovingValues(*publisher, handler, round);
    });
    QCOMPARE(indexLists(descriptions), IndexLists()); // nothing changed for who was attached
    QVERIFY(publisher->quit());
    QCOMPARE(buffersOf(module), QStringList());
}

int main(int argc, char **argv)
{
    Footprint::prepare(argv);
    return runBusTest<RestartsTest>(argc, argv);
}

#include "RestartsTest.moc"
