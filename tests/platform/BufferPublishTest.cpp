// SPDX-License-Identifier: MIT
// What a publisher writes into its buffer and what it sees of its clients.
#include "BufferSource.h"

#include <QtTest>

#include <cmath>
#include <ctime>
#include <unistd.h>

namespace {

QJsonArray threeLeaves()
{
    return {leaf("level", "float64", {{"readOnly", true}, {"maximum", 100}}),
            leaf("count", "int32"), leaf("name", "string", {{"capacity", 20}})};
}

using Batch = QVector<QPair<int, ProcessValue>>;

}

class BufferPublishTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLeafThatWasNeverPublishedHoldsNoValue();
    void aBatchIsWrittenWithOneTime();
    void aGivenTimeAndErrorTypeAreKept();
    void aBatchWithOneBadValueWritesNothing_data();
    void aBatchWithOneBadValueWritesNothing();
    void anInvalidValueKeepsTheStoredOne();
    void laterEntriesOfABatchSeeEarlierOnes();
    void aClientsWriteIsReportedOnce();
    void ownWritesAreNotReported();
    void aClientsWriteThatIsCoveredByAnOwnOneIsReported();
    void aWriteBeforeTheSequenceWrapsIsReported();
    void valuesCarryOverAsTheyAre();
    void aValueThatDoesNotFitIsNotCarriedOver();
    void changedLimitsHoldFromThenOn();
};

void BufferPublishTest::aLeafThatWasNeverPublishedHoldsNoValue()
{
    const BufferSource source(threeLeaves());
    for (int leaf = 0; leaf < 3; ++leaf) {
        const ProcessValue value = source.buffer->value(leaf);
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::NotInitialized);
        QCOMPARE(value.getValue(), QVariant());
        QCOMPARE(value.getTimestamp(), qint64(0));
    }
    QCOMPARE(source.buffer->value(3).getErrorType(), ProcessDataDefinitions::NoValue);
    QCOMPARE(source.buffer->value(-1).getErrorType(), ProcessDataDefinitions::NoValue);
}

void BufferPublishTest::aBatchIsWrittenWithOneTime()
{
    BufferSource source(threeLeaves());
    const qint64 before = time(nullptr) * 1'000'000'000LL;
    QVERIFY(source.buffer->publish(
        {{0, ProcessValue(QVariant(12.5))}, {2, ProcessValue(QVariant("boiler"))}}, source.error));

    QCOMPARE(source.buffer->value(0).getValue(), QVariant(12.5));
    QCOMPARE(source.buffer->value(2).getValue(), QVariant("boiler"));
    QCOMPARE(source.buffer->value(0).getErrorType(), ProcessDataDefinitions::NoError);
    const qint64 time = source.buffer->value(0).getTimestamp();
    QCOMPARE(source.buffer->value(2).getTimestamp(), time);
    QVERIFY(time >= before && time < before + 60'000'000'000);
}

void BufferPublishTest::aGivenTimeAndErrorTypeAreKept()
{
    BufferSource source(threeLeaves());
    QVERIFY(source.publish(
        1, ProcessValue(QVariant(7), ProcessDataDefinitions::OutOfRange, 1234567890123456789)));
    QCOMPARE(source.buffer->value(1).getErrorType(), ProcessDataDefinitions::OutOfRange);
    QCOMPARE(source.buffer->value(1).getTimestamp(), qint64(1234567890123456789));
}

void BufferPublishTest::aBatchWithOneBadValueWritesNothing_data()
{
    QTest::addColumn<int>("leaf");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("above its maximum") << 0 << QVariant(100.5);
    QTest::newRow("too long") << 2 << QVariant(QString(21, 'x'));
    QTest::newRow("no number") << 1 << QVariant("many");
    QTest::newRow("no such leaf") << 3 << QVariant(1);
    QTest::newRow("a negative leaf") << -1 << QVariant(1);
}

void BufferPublishTest::aBatchWithOneBadValueWritesNothing()
{
    QFETCH(int, leaf);
    QFETCH(QVariant, value);
    BufferSource source(threeLeaves());

    QVERIFY(!source.buffer->publish({{1, ProcessValue(QVariant(5))}, {leaf, ProcessValue(value)}},
                                    source.error));

    QVERIFY(!source.error.isEmpty());
    QCOMPARE(source.buffer->value(1).getErrorType(), ProcessDataDefinitions::NotInitialized);
}

void BufferPublishTest::anInvalidValueKeepsTheStoredOne()
{
    BufferSource source(threeLeaves());
    QVERIFY(source.publish(0, ProcessValue(QVariant(12.5), ProcessDataDefinitions::NoError, 1)));
    QVERIFY(
        source.publish(2, ProcessValue(QVariant("boiler"), ProcessDataDefinitions::NoError, 1)));

    for (int leaf = 0; leaf < 3; ++leaf) {
        QVERIFY(
            source.publish(leaf, ProcessValue(QVariant(), ProcessDataDefinitions::DeviceFault, 2)));
        QCOMPARE(source.buffer->value(leaf).getErrorType(), ProcessDataDefinitions::DeviceFault);
        QCOMPARE(source.buffer->value(leaf).getTimestamp(), qint64(2));
    }
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(12.5));
    QCOMPARE(source.buffer->value(1).getValue(), QVariant());
    QCOMPARE(source.buffer->value(2).getValue(), QVariant("boiler"));
}

void BufferPublishTest::laterEntriesOfABatchSeeEarlierOnes()
{
    BufferSource source(threeLeaves());
    const Batch batch{{1, ProcessValue(QVariant(5))},
                      {1, ProcessValue(QVariant(), ProcessDataDefinitions::DeviceFault)}};
    QVERIFY(source.buffer->publish(batch, source.error));
    QCOMPARE(source.buffer->value(1).getValue(), QVariant(5));
    QCOMPARE(source.buffer->value(1).getErrorType(), ProcessDataDefinitions::DeviceFault);
}

void BufferPublishTest::aClientsWriteIsReportedOnce()
{
    BufferSource source(threeLeaves());
    const BufferClient client(source.text());
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());

    QVERIFY(client.leaf(source.url("name"))->setValue(ProcessValue(QVariant("a"))));
    QVERIFY(client.leaf(source.url("count"))->setValue(ProcessValue(QVariant(1))));
    QVERIFY(client.leaf(source.url("count"))->setValue(ProcessValue(QVariant(2))));

    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>({1, 2}));
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());
    QCOMPARE(source.buffer->value(1).getValue(), QVariant(2));
}

void BufferPublishTest::ownWritesAreNotReported()
{
    BufferSource source(threeLeaves());
    QVERIFY(source.publish(1, ProcessValue(QVariant(1))));
    QVERIFY(source.publish(1, ProcessValue(QVariant(2))));
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());
}

void BufferPublishTest::aClientsWriteThatIsCoveredByAnOwnOneIsReported()
{
    BufferSource source(threeLeaves());
    const BufferClient client(source.text());
    QVERIFY(client.leaf(source.url("count"))->setValue(ProcessValue(QVariant(1))));
    QVERIFY(source.publish(1, ProcessValue(QVariant(2))));

    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>({1}));
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());
}

void BufferPublishTest::aWriteBeforeTheSequenceWrapsIsReported()
{
    BufferSource source(threeLeaves());
    QFile file(source.file());
    QVERIFY(file.open(QIODevice::ReadWrite));
    const quint32 last = 0xffffffff;
    QVERIFY(file.seek(qint64(source.description.leaves.at(1).offset)));
    file.write(reinterpret_cast<const char *>(&last), sizeof(last));
    file.close();
    source.buffer->takeClientWrites();
    const BufferClient client(source.text());

    QVERIFY(
        client.leaf(source.url("count"))->setValue(ProcessValue(QVariant(9)))); // sequence 0 again

    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>({1}));
    QCOMPARE(readLeaf(client.leaf(source.url("count"))).getValue(), QVariant(9));
}

void BufferPublishTest::valuesCarryOverAsTheyAre()
{
    BufferSource old(threeLeaves());
    QVERIFY(old.publish(0, ProcessValue(QVariant(-0.0), ProcessDataDefinitions::DeviceFault, 77)));
    QVERIFY(old.publish(2, ProcessValue(QVariant(""), ProcessDataDefinitions::NoError, 78)));
    BufferSource next({threeLeaves().at(2), threeLeaves().at(1), threeLeaves().at(0)});

    QVERIFY(next.buffer->carryOver(2, *old.buffer, 0));
    QVERIFY(next.buffer->carryOver(1, *old.buffer, 1));
    QVERIFY(next.buffer->carryOver(0, *old.buffer, 2));

    QVERIFY(std::signbit(next.buffer->value(2).getValue().toDouble()));
    QCOMPARE(next.buffer->value(2).getErrorType(), ProcessDataDefinitions::DeviceFault);
    QCOMPARE(next.buffer->value(2).getTimestamp(), qint64(77));
    QCOMPARE(next.buffer->value(1).getErrorType(), ProcessDataDefinitions::NotInitialized);
    QCOMPARE(next.buffer->value(1).getValue(), QVariant());
    QCOMPARE(next.buffer->value(0).getValue(), QVariant(""));
    QCOMPARE(next.buffer->takeClientWrites(), QVector<int>());
}

void BufferPublishTest::aValueThatDoesNotFitIsNotCarriedOver()
{
    BufferSource old(threeLeaves());
    QVERIFY(old.publish(2, ProcessValue(QVariant("123456789"))));
    BufferSource next({leaf("name", "string", {{"capacity", 8}})});

    QVERIFY(!next.buffer->carryOver(0, *old.buffer, 2)); // too long
    QVERIFY(!next.buffer->carryOver(0, *old.buffer, 1)); // another type
    QVERIFY(!next.buffer->carryOver(1, *old.buffer, 2));
    QVERIFY(!next.buffer->carryOver(0, *old.buffer, 3));
    QCOMPARE(next.buffer->value(0).getErrorType(), ProcessDataDefinitions::NotInitialized);
}

void BufferPublishTest::changedLimitsHoldFromThenOn()
{
    BufferSource source(threeLeaves());
    QVector<LeafDescription> leaves = source.description.leaves;
    LeafDescription level = leaves.at(0);
    level.maximum = QVariant(200.0);
    level.offset = 0; // as in a description that was not laid out
    leaves.replace(0, level);
    QVERIFY(!source.publish(0, ProcessValue(QVariant(150.0))));

    source.buffer->setLeafDescriptions(leaves);

    QVERIFY2(source.publish(0, ProcessValue(QVariant(150.0))), qPrintable(source.error));
    QCOMPARE(readLeaf(BufferClient(source.text()).leaf(source.url("level"))).getValue(),
             QVariant(150.0));
}

QTEST_GUILESS_MAIN(BufferPublishTest)
#include "BufferPublishTest.moc"
