// SPDX-License-Identifier: MIT
// Values read by several threads while two processes write all of them as fast as they can.
#include "TornReads.h"
#include "ChildProcess.h"
#include "Rounds.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QtTest>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

namespace {

constexpr int readers = 2;
constexpr int enough = 1000; // changes that readers must meet from each writer

/// A writer in a process of its own.
class Writer : public ChildProcess
{
public:
    explicit Writer(const QStringList &arguments)
        : ChildProcess(QCoreApplication::applicationFilePath(), QStringList("writer") + arguments,
                       QProcess::ForwardedErrorChannel)
    {
        start();
    }
};

struct Outcome
{
    std::atomic<qint64> reads{0};
    std::atomic<qint64> torn{0};
    std::atomic<qint64> unread{0}; // writers kept at a value during every try
    std::atomic<qint64> changesOfPublisher{0}; // seen by a reader, at even times
    std::atomic<qint64> changesOfClient{0};
};

/// Reads until there were enough reads, and enough changes by whoever must make some.
void read(const BufferClient &client, const QString &module, qint64 reads, qint64 fromClient,
          qint64 fromPublisher, Outcome &outcome)
{
    QVector<QSharedPointer<ProcessDataValue>> leaves;
    for (int leaf = 0; leaf < tornLeafCount; ++leaf) {
        leaves += client.leaf(QString("processdata://%1/Tank/1/leaf%2").arg(module).arg(leaf));
    }
    constexpr int batch = 1024;
    qint64 last[tornLeafCount] = {};
    const QDeadlineTimer limit(std::chrono::minutes(60));
    while (!limit.hasExpired()
           && (outcome.reads < reads || outcome.changesOfClient < fromClient
               || outcome.changesOfPublisher < fromPublisher)) {
        qint64 changes[2] = {0, 0};
        qint64 torn = 0;
        qint64 read = 0;
        for (int i = 0; i < batch; ++i) {
            // Numbers most of the time: reading them is what takes the shortest time.
            const int leaf = i % 16 == 0 ? i / 16 % tornLeafCount : i % tornNumberCount;
            ProcessValue value(ProcessDataDefinitions::NoValue);
            if (leaves.at(leaf)->getValue(value, false)) {
                ++read;
                torn += belongsTogether(leaf, value) ? 0 : 1;
                changes[value.getTimestamp() % 2] += value.getTimestamp() != last[leaf] ? 1 : 0;
                last[leaf] = value.getTimestamp();
            }
        }
        outcome.reads += read;
        outcome.unread += batch - read;
        outcome.torn += torn;
        outcome.changesOfPublisher += changes[0];
        outcome.changesOfClient += changes[1];
        if (fromClient == 0 && outcome.torn > 0) {
            return; // all that the control wants to see
        }
    }
}

void readInThreads(const QString &text, const QString &module, qint64 reads, qint64 fromClient,
                   qint64 fromPublisher, Outcome &outcome)
{
    const BufferClient client(text);
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i) {
        threads.emplace_back(
            [&] { read(client, module, reads, fromClient, fromPublisher, outcome); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace

class TornReadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueStatusAndTimeOfEachReadBelongTogether();
    void aWriterThatBreaksTheRulesIsFoundOut();
};

void TornReadsTest::valueStatusAndTimeOfEachReadBelongTogether()
{
    const qint64 reads = 1'000'000LL * roundsOr(2);
    const QString module = uniqueModule();
    Writer publisher({"publish", module});
    const QString text = QString::fromUtf8(publisher.nextLine());
    QVERIFY2(text.startsWith('{'), qPrintable(text));
    Writer client({"write"});
    client.write(text.toUtf8());
    Outcome outcome;

    readInThreads(text, module, reads, enough, enough, outcome);

    qInfo("%lld reads, %lld torn; %lld values could not be read; readers met %lld changes by the "
          "publisher, %lld by a client",
          outcome.reads.load(), outcome.torn.load(), outcome.unread.load(),
          outcome.changesOfPublisher.load(), outcome.changesOfClient.load());
    QCOMPARE(outcome.torn.load(), qint64(0));
    QVERIFY(outcome.reads >= reads);
    QVERIFY(outcome.changesOfClient >= enough && outcome.changesOfPublisher >= enough);
    QVERIFY(client.finish());
    QVERIFY(publisher.finish());
    QCOMPARE(buffersOf(module), QStringList());
}

// What reads by the thousand million do not meet is there to be met.
void TornReadsTest::aWriterThatBreaksTheRulesIsFoundOut()
{
    const QString module = uniqueModule();
    BufferSource source(tornLeaves(), module);
    QVERIFY2(source.buffer, qPrintable(source.error));
    for (int leaf = 0; leaf < tornLeafCount; ++leaf) {
        QVERIFY(source.publish(leaf, tornValue(leaf, 2)));
    }
    Writer client({"tear"});
    client.write(QJsonDocument(source.document).toJson(QJsonDocument::Compact));
    Outcome outcome;

    readInThreads(source.text(), module, std::numeric_limits<qint64>::max(), 0, 0, outcome);

    QVERIFY(outcome.torn > 0);
    QVERIFY(client.finish());
}

int main(int argc, char **argv)
{
    QLoggingCategory::setFilterRules("processdata.*=false");
    if (argc > 2 && qstrcmp(argv[1], "writer") == 0) {
        return runWriter(argv[2], argc > 3 ? argv[3] : "");
    }
    const QCoreApplication application(argc, argv);
    TornReadsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "TornReadsTest.moc"
