// SPDX-License-Identifier: MIT
// Values of every type from publisher to client and back, and writes that are refused.
#include "BufferSource.h"
#include "MessageLog.h"

#include <QtTest>

#include <limits>

namespace {

template <typename Number> void addLimits(const char *type)
{
    using Limits = std::numeric_limits<Number>;
    for (const Number number : {Limits::lowest(), Number(0), Number(1), Limits::max()}) {
        QTest::addRow("%s %s", type, qPrintable(QVariant::fromValue(number).toString()))
            << QString(type) << QVariant::fromValue(number);
    }
}

QVariant typed(const QVariant &value, int type)
{
    QVariant result = value;
    return result.convert(type) ? result : QVariant();
}

}

class ManagerValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueOfEveryTypeGoesBothWays_data();
    void aValueOfEveryTypeGoesBothWays();
    void aWriteTakesTheGivenTimeOrTheCurrentOne();
    void aWriteThatDoesNotFitLeavesTheStoredValue_data();
    void aWriteThatDoesNotFitLeavesTheStoredValue();
    void aReadOnlyLeafRefusesItself();
    void aLeafThatWasNeverPublishedIsNotInitialized();
};

void ManagerValuesTest::aValueOfEveryTypeGoesBothWays_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("bool true") << "bool" << QVariant(true);
    QTest::newRow("bool false") << "bool" << QVariant(false);
    addLimits<qint8>("int8");
    addLimits<qint16>("int16");
    addLimits<qint32>("int32");
    addLimits<qint64>("int64");
    addLimits<quint8>("uint8");
    addLimits<quint16>("uint16");
    addLimits<quint32>("uint32");
    addLimits<quint64>("uint64");
    addLimits<float>("float32");
    addLimits<double>("float64");
    QTest::newRow("a text") << "string" << QVariant(QString::fromUtf8("Überdruck"));
    QTest::newRow("an empty text") << "string" << QVariant(QString(""));
    QTest::newRow("a text of all bytes") << "string" << QVariant(QString(40, 'x'));
    QTest::newRow("bytes with zeros") << "bytes" << QVariant(QByteArray("a\0b\0", 4));
    QTest::newRow("all bytes") << "bytes" << QVariant(QByteArray(40, '\xff'));
}

void ManagerValuesTest::aValueOfEveryTypeGoesBothWays()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    const bool variable = type == "string" || type == "bytes";
    const QJsonObject more = variable ? QJsonObject{{"capacity", 40}} : QJsonObject{};
    BufferSource source(
        {leaf("before", "float64"), leaf("leaf", type, more), leaf("after", "float64")});
    QVERIFY2(source.buffer, qPrintable(source.error));
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("leaf"));
    QVERIFY(leaf);

    QVERIFY2(source.publish(1, ProcessValue(value, ProcessDataDefinitions::OutOfRange, 99)),
             qPrintable(source.error));
    const ProcessValue read = readLeaf(leaf);
    QCOMPARE(typed(read.getValue(), value.userType()), value);
    QCOMPARE(read.getErrorType(), ProcessDataDefinitions::OutOfRange);
    QCOMPARE(read.getTimestamp(), qint64(99));

    QVERIFY(leaf->setValue(ProcessValue(value, ProcessDataDefinitions::DeviceFault, 100)));
    const ProcessValue seen = source.buffer->value(1);
    QCOMPARE(typed(seen.getValue(), value.userType()), value);
    QCOMPARE(seen.getValue().userType(), read.getValue().userType());
    QCOMPARE(seen.getErrorType(), ProcessDataDefinitions::DeviceFault);
    QCOMPARE(seen.getTimestamp(), qint64(100));

    for (const char *other : {"before", "after"}) { // neighbours stay as they were
        QCOMPARE(readLeaf(client.leaf(source.url(other))).getErrorType(),
                 ProcessDataDefinitions::NotInitialized);
    }
}

void ManagerValuesTest::aWriteTakesTheGivenTimeOrTheCurrentOne()
{
    const BufferSource source({leaf("leaf", "float64")});
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("leaf"));
    QVERIFY(leaf->setValue(ProcessValue(QVariant(1.0), ProcessDataDefinitions::NoError, -5)));
    QCOMPARE(readLeaf(leaf).getTimestamp(), qint64(-5));

    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1'000'000;
    QVERIFY(leaf->setValue(ProcessValue(QVariant(1.0))));
    const qint64 after = (QDateTime::currentMSecsSinceEpoch() + 1) * 1'000'000;
    QVERIFY(readLeaf(leaf).getTimestamp() >= before && readLeaf(leaf).getTimestamp() <= after);
}

void ManagerValuesTest::aWriteThatDoesNotFitLeavesTheStoredValue_data()
{
    QTest::addColumn<QString>("leaf");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("no value") << "number" << QVariant();
    QTest::newRow("above the maximum") << "number" << QVariant(101);
    QTest::newRow("below the minimum") << "number" << QVariant(-1);
    QTest::newRow("a fraction") << "number" << QVariant(1.5);
    QTest::newRow("no number") << "number" << QVariant("one");
    QTest::newRow("not a number") << "number" << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("too long") << "text" << QVariant("123456789");
}

void ManagerValuesTest::aWriteThatDoesNotFitLeavesTheStoredValue()
{
    QFETCH(QString, leaf);
    QFETCH(QVariant, value);
    BufferSource source({::leaf("number", "int16", {{"minimum", 0}, {"maximum", 100}}),
                         ::leaf("text", "string", {{"capacity", 8}})});
    QVERIFY(source.publish(0, ProcessValue(QVariant(7))));
    QVERIFY(source.publish(1, ProcessValue(QVariant("seven"))));
    const BufferClient client(source.text());
    const ProcessValue before = readLeaf(client.leaf(source.url(leaf)));
    const MessageLog warnings;

    QVERIFY(!client.leaf(source.url(leaf))->setValue(ProcessValue(value)));

    const ProcessValue after = readLeaf(client.leaf(source.url(leaf)));
    QCOMPARE(after.getValue(), before.getValue());
    QCOMPARE(after.getTimestamp(), before.getTimestamp());
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());
    QCOMPARE(warnings.texts().size(), 1);
    QVERIFY(warnings.texts().at(0).startsWith("processdata.memory: Leaf " + leaf
                                              + " was not written: "));
}

void ManagerValuesTest::aReadOnlyLeafRefusesItself()
{
    BufferSource source({leaf("leaf", "float64", {{"readOnly", true}}), leaf("other", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    const BufferClient client(source.text());
    const MessageLog warnings;
    QVERIFY(!client.leaf(source.url("leaf"))->setValue(ProcessValue(QVariant(2.0))));
    QCOMPARE(warnings.texts(),
             QStringList("processdata.memory: Leaf leaf was not written: it is read-only"));
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(1.0));
}

void ManagerValuesTest::aLeafThatWasNeverPublishedIsNotInitialized()
{
    const BufferSource source(
        {leaf("number", "float64"), leaf("text", "string", {{"capacity", 8}})});
    const BufferClient client(source.text());
    for (const char *leaf : {"number", "text"}) {
        ProcessValue value(QVariant(17), ProcessDataDefinitions::NoError, 5);
        QVERIFY(client.leaf(source.url(leaf))->getValue(value, false));
        QCOMPARE(value.getValue(), QVariant());
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::NotInitialized);
        QCOMPARE(value.getTimestamp(), qint64(0));
    }
}

QTEST_GUILESS_MAIN(ManagerValuesTest)
#include "ManagerValuesTest.moc"
