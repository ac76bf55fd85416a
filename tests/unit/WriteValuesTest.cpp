// SPDX-License-Identifier: MIT
// Writing values by position: range rule, which selectors are written, what the result says.
#include "Internals.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

#include <limits>

namespace {

constexpr int intMax = std::numeric_limits<int>::max();
constexpr int intMin = std::numeric_limits<int>::min();

// Positions of the list that most tests write to.
enum { Good, Deactivated, ReadOnly, Refusing, Unresolved, Invalid, Size };

QVector<QString> mixedList(UnlikePlatform &platform)
{
    ScriptedSource &source = platform.source("boiler", "sensors", "1");
    source.leaf("good").leaf("read-only").leaf("refusing");
    source.at("read-only").readOnly();
    source.at("refusing").refusesWrites();
    return {on("good"), off("good"), on("read-only"), on("refusing"), on("no"), "nonsense"};
}

} // namespace

class WriteValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueReachesItsLeafUnchanged()
    {
        UnlikePlatform platform;
        ScriptedSource &source = platform.source("boiler", "sensors", "1").leaf("a").leaf("b");
        SelectorHandlerProcessValue handler({on("a"), on("b")}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(handler.setValue(ProcessValue(7.5, ProcessDataDefinitions::DeviceFault, 42), 1));

        QCOMPARE(source.at("a").written().size(), 0);
        QCOMPARE(source.at("b").written().size(), 1);
        const ProcessValue written = source.at("b").written().at(0);
        QCOMPARE(written.getValue(), QVariant(7.5));
        QCOMPARE(written.getErrorType(), ProcessDataDefinitions::DeviceFault);
        QCOMPARE(written.getTimestamp(), 42);
        QCOMPARE(platform.calls(),
                 (QStringList{"SelectorUrlHandler[scripted://boiler/sensors/1/b]"
                              "::isSelectorDeactivated()",
                              "ProcessDataValue[b#1]::setValue({7.5, 4})"}));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aRunIsWrittenInListOrder()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").leaf("b").leaf("c");
        SelectorHandlerProcessValue handler({on("c"), on("b"), off("a"), on("a")}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(handler.setValues({valueOf(11), valueOf(12), valueOf(13)}, 1));

        QCOMPARE(platform.calls({"ProcessDataValue"}),
                 (QStringList{"ProcessDataValue[b#1]::setValue({11, 0})",
                              "ProcessDataValue[a#1]::setValue({13, 0})"}));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aRunOutsideTheListIsRefused_data()
    {
        QTest::addColumn<int>("startIndex");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("expected");

        const QString maximum = " Index is not valid. Max possible index: 1";
        const auto past = [&maximum](const QString &last) {
            return QStringList{"Access to Index Max index " + last + maximum};
        };
        QTest::newRow("one past the end") << 0 << 3 << past("2");
        QTest::newRow("the last and one more") << 1 << 2 << past("2");
        QTest::newRow("starting at the end") << 2 << 1 << past("2");
        QTest::newRow("the greatest start") << intMax << 1 << past("2147483647");
        QTest::newRow("a sum that exceeds an int") << intMax << 3 << past("2147483649");
        QTest::newRow("no values") << 0 << 0 << QStringList();
        QTest::newRow("no values past the end") << 9 << 0 << QStringList();
        QTest::newRow("a negative start") << -1 << 2 << QStringList();
        QTest::newRow("the least start") << intMin << 1 << QStringList();
    }

    void aRunOutsideTheListIsRefused()
    {
        QFETCH(int, startIndex);
        QFETCH(int, count);
        QFETCH(QStringList, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(!handler.setValues(QVector<ProcessValue>(count, valueOf(1)), startIndex));

        QCOMPARE(platform.calls(), QStringList());
        QCOMPARE(warnings.texts(), expected);
    }

    void oneIndexOutsideTheListIsRefused_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("past the end")
            << 1
            << QStringList{"Access to Index Max index 1 Index is not valid. Max possible index: 0"};
        QTest::newRow("the greatest") << intMax
                                      << QStringList{"Access to Index Max index 2147483647 Index "
                                                     "is not valid. Max possible index: 0"};
        QTest::newRow("negative") << -1 << QStringList();
    }

    void oneIndexOutsideTheListIsRefused()
    {
        QFETCH(int, index);
        QFETCH(QStringList, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(!handler.setValue(valueOf(1), index));

        QCOMPARE(platform.calls(), QStringList());
        QCOMPARE(warnings.texts(), expected);
    }

    void oneSelectorTellsItsOwnOutcome_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("expected");
        QTest::addColumn<int>("leafCalls");
        QTest::newRow("a writable leaf") << int(Good) << true << 1;
        QTest::newRow("a deactivated selector is skipped and true")
            << int(Deactivated) << true << 0;
        QTest::newRow("a read-only selector is never written") << int(ReadOnly) << false << 0;
        QTest::newRow("a leaf that refuses") << int(Refusing) << false << 1;
        QTest::newRow("a URL without a leaf") << int(Unresolved) << false << 0;
        QTest::newRow("an invalid URL") << int(Invalid) << false << 0;
    }

    void oneSelectorTellsItsOwnOutcome()
    {
        QFETCH(int, index);
        QFETCH(bool, expected);
        QFETCH(int, leafCalls);
        UnlikePlatform platform;
        WarningLog warnings;
        SelectorHandlerProcessValue handler(mixedList(platform), nullptr);
        warnings.clear();
        platform.forgetCalls();

        QCOMPARE(handler.setValue(valueOf(1), index), expected);

        QCOMPARE(platform.calls({"ProcessDataValue"}).size(), leafCalls);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theLastSelectorThatWasTriedDecides_data()
    {
        QTest::addColumn<QVector<int>>("positions");
        QTest::addColumn<bool>("expected");
        const auto row = [](const char *name, const QVector<int> &positions, bool expected) {
            QTest::newRow(name) << positions << expected;
        };
        row("a refused first is forgotten", {ReadOnly, Good, Good}, true);
        row("a deactivated last keeps a failure", {Good, ReadOnly, Deactivated}, false);
        row("a deactivated last keeps a success", {ReadOnly, Good, Deactivated}, true);
        row("a failing last decides", {Good, Good, Refusing}, false);
        row("an unresolved last decides", {Good, Unresolved}, false);
        row("only deactivated ones", {Deactivated, Deactivated}, true);
        row("a failing write in the middle is forgotten", {Good, Refusing, Good}, true);
    }

    void theLastSelectorThatWasTriedDecides()
    {
        QFETCH(QVector<int>, positions);
        QFETCH(bool, expected);
        UnlikePlatform platform;
        WarningLog warnings;
        const QVector<QString> all = mixedList(platform);
        QVector<QString> urls;
        for (const int position : positions) {
            urls.append(all.at(position));
        }
        SelectorHandlerProcessValue handler(urls, nullptr);
        warnings.clear();
        platform.forgetCalls();

        QCOMPARE(handler.setValues(QVector<ProcessValue>(urls.size(), valueOf(1)), 0), expected);

        const int tried = positions.count(Good) + positions.count(Refusing);
        QCOMPARE(platform.calls({"ProcessDataValue"}).size(), tried);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aRecordWithoutUrlIsNotWrittenAndReported()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").leaf("b");
        SelectorHandlerProcessValue handler({on("a"), on("b")}, nullptr);
        recordsOf(handler)[0].selectorUrlHandler.clear();
        WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(!handler.setValue(valueOf(1), 0));
        QCOMPARE(warnings.texts(), QStringList{"No SelectorUrlHander selected (Nullpointer)"});
        QCOMPARE(platform.calls(), QStringList());

        warnings.clear();
        QVERIFY(handler.setValues({valueOf(1), valueOf(2)}, 0)); // a later write succeeds
        QCOMPARE(warnings.texts(), QStringList{"No SelectorUrlHander selected (Nullpointer)"});
        QCOMPARE(platform.calls({"ProcessDataValue"}),
                 QStringList{"ProcessDataValue[b#1]::setValue({2, 0})"});

        recordsOf(handler)[1].selectorUrlHandler.clear();
        recordsOf(handler)[0].selectorUrlHandler.reset(new SelectorUrlHandler(on("a")));
        QVERIFY(!handler.setValues({valueOf(1), valueOf(2)}, 0));
    }

    void aLeafWithoutSourceIsNotWrittenAndReported()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").at("a").readOnly();
        SelectorHandlerProcessValue handler({on("a"), on("a")}, nullptr);
        recordsOf(handler)[1].sharedMemoryIterator = {};
        const WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(!handler.setValue(valueOf(1), 1)); // also before it is known as read-only

        QCOMPARE(platform.calls({"ProcessDataValue"}), QStringList());
        QCOMPARE(warnings.texts(), QStringList{"No valid sharedMemory iterator. Index: 1"});
    }

    void oneValueIsWrittenWithoutTheVirtualRunWrite()
    {
        class Handler : public SelectorHandlerProcessValue
        {
        public:
            using SelectorHandlerProcessValue::SelectorHandlerProcessValue;
            bool setValues(const QVector<ProcessValue> &, int) override
            {
                overrideCalled = true;
                return false;
            }
            bool overrideCalled = false;
        };
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        Handler handler({on("a")}, nullptr);

        QVERIFY(handler.setValue(valueOf(1), 0));
        QVERIFY(!handler.overrideCalled);
    }

    void theLockIsHeldWhileALeafIsWrittenAndFreeAfterwards()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QVector<bool> lockWasFree;
        platform.during("ProcessDataValue::setValue",
                        [&] { lockWasFree.append(isLockFree(handler)); });

        handler.setValue(valueOf(1), 0);
        handler.setValues({valueOf(1)}, 0);

        QCOMPARE(lockWasFree, (QVector<bool>{false, false}));
        QVERIFY(isLockFree(handler));
    }
};

QTEST_GUILESS_MAIN(WriteValuesTest)
#include "WriteValuesTest.moc"
