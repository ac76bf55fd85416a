// SPDX-License-Identifier: MIT
// Which runs of positions can be read.
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

#include <limits>

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

} // namespace

class ReadRangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRunOutsideTheListIsRefused_data();
    void aRunOutsideTheListIsRefused();
    void aRunInsideTheListIsRead_data();
    void aRunInsideTheListIsRead();
    void aHandlerWithoutSelectorsReadsNothing();
    void oneIndexOutsideTheListReadsAsTheErrorValue_data();
    void oneIndexOutsideTheListReadsAsTheErrorValue();
};

void ReadRangeTest::aRunOutsideTheListIsRefused_data()
{
    QTest::addColumn<int>("startIndex");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("expected");

    const QString maximum = " Index is not valid. Max possible index: 3";
    const auto past = [&maximum](const QString &last) {
        return QStringList{"Access to Index Max index " + last + maximum};
    };
    QTest::newRow("three past the end") << 2 << 5 << past("6");
    QTest::newRow("one past the end") << 0 << 5 << past("4");
    QTest::newRow("starting at the end") << 4 << 1 << past("4");
    QTest::newRow("the last index and one more") << 3 << 2 << past("4");
    QTest::newRow("the greatest start") << intMax << 1 << past("2147483647");
    QTest::newRow("the greatest count") << 0 << intMax << past("2147483646");
    QTest::newRow("the greatest count from 1") << 1 << intMax << past("2147483647");
    QTest::newRow("a sum that exceeds an int") << 2 << intMax << past("2147483648");
    QTest::newRow("both greatest") << intMax << intMax << past("4294967293");
    QTest::newRow("no count") << 0 << 0 << QStringList();
    QTest::newRow("no count past the end") << 5 << 0 << QStringList();
    QTest::newRow("a negative count") << 0 << -1 << QStringList();
    QTest::newRow("the least count") << 0 << intMin << QStringList();
    QTest::newRow("a negative start") << -1 << 1 << QStringList();
    QTest::newRow("a negative start and a run past the end") << -1 << 9 << QStringList();
    QTest::newRow("the least start") << intMin << 1 << QStringList();
    QTest::newRow("the least start and the greatest count") << intMin << intMax << QStringList();
    QTest::newRow("both least") << intMin << intMin << QStringList();
    QTest::newRow("the greatest start and the least count") << intMax << intMin << QStringList();
}

void ReadRangeTest::aRunOutsideTheListIsRefused()
{
    QFETCH(int, startIndex);
    QFETCH(int, count);
    QFETCH(QStringList, expected);
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler(QVector<QString>(4, on("inlet")), nullptr);
    const WarningLog warnings;
    platform.forgetCalls();

    const QVector<ProcessValue> values = handler.getValues(startIndex, count);

    QCOMPARE(values.size(), 0);
    QCOMPARE(platform.calls(), QStringList());
    QCOMPARE(warnings.texts(), expected);
}

void ReadRangeTest::aRunInsideTheListIsRead_data()
{
    QTest::addColumn<int>("startIndex");
    QTest::addColumn<int>("count");

    QTest::newRow("first only") << 0 << 1;
    QTest::newRow("last only") << 3 << 1;
    QTest::newRow("ending at the last") << 2 << 2;
    QTest::newRow("all") << 0 << 4;
}

void ReadRangeTest::aRunInsideTheListIsRead()
{
    QFETCH(int, startIndex);
    QFETCH(int, count);
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler(QVector<QString>(4, on("inlet")), nullptr);
    const WarningLog warnings;

    const QVector<ProcessValue> values = handler.getValues(startIndex, count);

    QCOMPARE(values.size(), count);
    for (const ProcessValue &value : values) {
        QCOMPARE(value.getValue(), QVariant(21.5));
    }
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadRangeTest::aHandlerWithoutSelectorsReadsNothing()
{
    UnlikePlatform platform;
    SelectorHandlerProcessValue handler(QVector<QString>(), nullptr);
    WarningLog warnings;

    QCOMPARE(handler.getValues().size(), 0);
    QCOMPARE(warnings.texts(), QStringList());

    QVERIFY(isErrorValue(handler.getValue(0)));
    QCOMPARE(warnings.texts(),
             QStringList{"Access to Index Max index 0 Index is not valid. "
                         "Max possible index: -1"});
}

void ReadRangeTest::oneIndexOutsideTheListReadsAsTheErrorValue_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("before the first is silent") << -1 << QStringList();
    QTest::newRow("the least is silent") << intMin << QStringList();
    QTest::newRow("one past the end is refused with one warning")
        << 4
        << QStringList{"Access to Index Max index 4 Index is not valid. Max possible index: 3"};
    QTest::newRow("the greatest is refused with its true number")
        << intMax
        << QStringList{"Access to Index Max index 2147483647 Index is not valid. "
                       "Max possible index: 3"};
}

void ReadRangeTest::oneIndexOutsideTheListReadsAsTheErrorValue()
{
    QFETCH(int, index);
    QFETCH(QStringList, expected);
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler(QVector<QString>(4, on("inlet")), nullptr);
    const WarningLog warnings;

    QVERIFY(isErrorValue(handler.getValue(index)));
    QCOMPARE(warnings.texts(), expected);
}

QTEST_GUILESS_MAIN(ReadRangeTest)
#include "ReadRangeTest.moc"
