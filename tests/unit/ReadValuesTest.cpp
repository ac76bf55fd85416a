// SPDX-License-Identifier: MIT
// Reading values by position: places, leaves, warnings.
#include "Internals.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

namespace {

class CountingHandler : public SelectorHandlerProcessValue
{
public:
    using SelectorHandlerProcessValue::getValues;
    using SelectorHandlerProcessValue::SelectorHandlerProcessValue;
    QVector<ProcessValue> getValues(int startIndex, int count) override
    {
        asked.append({startIndex, count});
        lockWasFree = isLockFree(*this);
        return answer;
    }
    QVector<QPair<int, int>> asked;
    QVector<ProcessValue> answer;
    bool lockWasFree = false;
};

} // namespace

class ReadValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRunIsReadInListOrder();
    void aRunOfAnyLengthReadsEachOfItsSelectorsOnce();
    void allSelectorsAreReadWithoutARange();
    void aDeactivatedSelectorKeepsItsPlaceAndReadsAsTheErrorValue();
    void oneValueIsReadThroughTheVirtualRunRead();
    void anUnresolvedSelectorReadsAsTheErrorValueInSilence();
    void aLeafIsAskedWithTheErrorValueAndTheFlagFalse();
    void aLeafThatLeavesTheValueUntouchedReadsAsTheErrorValue();
    void aLeafsErrorTypeIsHandedOn();
    void aRecordWithoutUrlReadsAsTheErrorValueWithAWarning();
    void aLeafWithoutSourceReadsAsTheErrorValueWithAWarning();
    void aRecordWithoutUrlIsReportedBeforeItsLeafAndSourceAreLookedAt();
    void anUnresolvedSelectorWithoutSourceIsSilent();
    void aReadOnlySelectorReadsNormally();
    void theWorkingReadTellsWhetherAllSelectorsCouldBeRead_data();
    void theWorkingReadTellsWhetherAllSelectorsCouldBeRead();
    void theWorkingReadAppends();
    void theLockIsHeldWhileALeafIsAskedAndFreeAfterwards();
};

void ReadValuesTest::aRunIsReadInListOrder()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5).leaf("outlet", 20.0);
    platform.source("pump", "drive", "2").leaf("speed", 1500);
    SelectorHandlerProcessValue handler(
        {on("inlet"), "scripted://pump/drive/2/speed", on("outlet"), on("inlet")}, nullptr);
    const WarningLog warnings;
    platform.forgetCalls();

    const QVector<ProcessValue> values = handler.getValues(1, 3);

    QCOMPARE(values.size(), 3);
    QCOMPARE(values.at(0).getValue(), QVariant(1500));
    QCOMPARE(values.at(1).getValue(), QVariant(20.0));
    QCOMPARE(values.at(2).getValue(), QVariant(21.5));
    QCOMPARE(platform.calls({"ProcessDataValue"}),
             (QStringList{"ProcessDataValue[speed#2]::getValue({, 3}, false)",
                          "ProcessDataValue[outlet#1]::getValue({, 3}, false)",
                          "ProcessDataValue[inlet#1]::getValue({, 3}, false)"}));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::aRunOfAnyLengthReadsEachOfItsSelectorsOnce()
{
    constexpr int size = 20; // more than are asked for ahead, twice
    UnlikePlatform platform;
    auto &source = platform.source("boiler", "sensors", "1");
    QVector<QString> urls;
    for (int i = 0; i < size; ++i) {
        const QString name = QString("leaf%1").arg(i);
        source.leaf(name, i);
        urls.append(on(name));
    }
    SelectorHandlerProcessValue handler(urls, nullptr);

    for (int start = 0; start < size; ++start) {
        for (int count = 1; count <= size - start; ++count) {
            platform.forgetCalls();
            const QVector<ProcessValue> values = handler.getValues(start, count);
            QCOMPARE(values.size(), count);
            for (int i = 0; i < count; ++i) {
                QCOMPARE(values.at(i).getValue(), QVariant(start + i));
            }
            QCOMPARE(platform.calls({"ProcessDataValue"}).size(), count);
        }
    }
}

void ReadValuesTest::allSelectorsAreReadWithoutARange()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5).leaf("outlet", 20.0);
    SelectorHandlerProcessValue handler({on("inlet"), off("inlet"), on("outlet")}, nullptr);
    const WarningLog warnings;

    const QVector<ProcessValue> values = handler.getValues();

    QCOMPARE(values.size(), 3);
    QCOMPARE(values.at(0).getValue(), QVariant(21.5));
    QVERIFY(isErrorValue(values.at(1)));
    QCOMPARE(values.at(2).getValue(), QVariant(20.0));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::aDeactivatedSelectorKeepsItsPlaceAndReadsAsTheErrorValue()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5).leaf("outlet", 20.0);
    SelectorHandlerProcessValue handler({on("inlet"), off("inlet"), on("outlet")}, nullptr);
    const WarningLog warnings;

    const QVector<ProcessValue> values = handler.getValues(0, 3);

    QCOMPARE(values.size(), 3);
    QCOMPARE(values.at(0).getValue(), QVariant(21.5));
    QVERIFY(isErrorValue(values.at(1)));
    QCOMPARE(values.at(2).getValue(), QVariant(20.0));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::oneValueIsReadThroughTheVirtualRunRead()
{
    UnlikePlatform platform;
    CountingHandler handler(QVector<QString>(), nullptr);
    handler.answer = {valueOf(1), valueOf(2)};
    const WarningLog warnings;

    QCOMPARE(handler.getValue(7).getValue(), QVariant(1));
    QCOMPARE(handler.asked, (QVector<QPair<int, int>>{{7, 1}}));
    QVERIFY(handler.lockWasFree);
    handler.answer.clear();
    QVERIFY(isErrorValue(handler.getValue(-3)));
    QCOMPARE(handler.asked.last(), qMakePair(-3, 1));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::anUnresolvedSelectorReadsAsTheErrorValueInSilence()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").interfaceInvalid().leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler({on("inlet"), "nonsense"}, nullptr);
    const WarningLog warnings;

    const QVector<ProcessValue> values = handler.getValues(0, 2);

    QCOMPARE(values.size(), 2);
    QVERIFY(isErrorValue(values.at(0)));
    QVERIFY(isErrorValue(values.at(1)));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::aLeafIsAskedWithTheErrorValueAndTheFlagFalse()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);
    platform.forgetCalls();

    QCOMPARE(handler.getValue(0).getValue(), QVariant(21.5));

    QCOMPARE(platform.calls(),
             (QStringList{"SelectorUrlHandler[scripted://boiler/sensors/1/inlet]"
                          "::isSelectorDeactivated()",
                          "ProcessDataValue[inlet#1]::getValue({, 3}, false)"}));
}

void ReadValuesTest::aLeafThatLeavesTheValueUntouchedReadsAsTheErrorValue()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5).at("inlet").refusesReads();
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);
    const WarningLog warnings;

    QVERIFY(isErrorValue(handler.getValue(0)));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::aLeafsErrorTypeIsHandedOn()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1")
        .leaf("inlet")
        .at("inlet")
        .holds(9.5, ProcessDataDefinitions::SourceLost);
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);

    const ProcessValue value = handler.getValue(0);

    QCOMPARE(value.getValue(), QVariant(9.5));
    QCOMPARE(value.getErrorType(), ProcessDataDefinitions::SourceLost);
}

void ReadValuesTest::aRecordWithoutUrlReadsAsTheErrorValueWithAWarning()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler(QVector<QString>(3, on("inlet")), nullptr);
    recordsOf(handler)[1].selectorUrlHandler.clear();
    const WarningLog warnings;

    const QVector<ProcessValue> values = handler.getValues();

    QCOMPARE(values.size(), 3);
    QCOMPARE(values.at(0).getValue(), QVariant(21.5));
    QVERIFY(isErrorValue(values.at(1)));
    QCOMPARE(values.at(2).getValue(), QVariant(21.5));
    QCOMPARE(warnings.texts(), QStringList{"No SelectorUrlHander selected (Nullpointer)"});
}

void ReadValuesTest::aLeafWithoutSourceReadsAsTheErrorValueWithAWarning()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler(QVector<QString>(2, on("inlet")), nullptr);
    recordsOf(handler)[1].sharedMemoryIterator = {};
    const WarningLog warnings;
    platform.forgetCalls();

    const QVector<ProcessValue> values = handler.getValues();

    QCOMPARE(values.size(), 2);
    QCOMPARE(values.at(0).getValue(), QVariant(21.5));
    QVERIFY(isErrorValue(values.at(1)));
    QCOMPARE(platform.calls({"ProcessDataValue"}).size(), 1);
    QCOMPARE(warnings.texts(), QStringList{"No valid sharedMemory iterator. Index: 1"});
}

void ReadValuesTest::aRecordWithoutUrlIsReportedBeforeItsLeafAndSourceAreLookedAt()
{
    UnlikePlatform platform;
    SelectorHandlerProcessValue handler({off("inlet")}, nullptr);
    recordsOf(handler)[0].selectorUrlHandler.clear();
    const WarningLog warnings;

    QVERIFY(isErrorValue(handler.getValue(0)));
    QCOMPARE(warnings.texts(), QStringList{"No SelectorUrlHander selected (Nullpointer)"});
}

void ReadValuesTest::anUnresolvedSelectorWithoutSourceIsSilent()
{
    UnlikePlatform platform;
    SelectorHandlerProcessValue handler({"nonsense"}, nullptr);
    const WarningLog warnings;

    QVERIFY(isErrorValue(handler.getValue(0)));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::aReadOnlySelectorReadsNormally()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5).at("inlet").readOnly();
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);
    const WarningLog warnings;

    QCOMPARE(handler.getValue(0).getValue(), QVariant(21.5));
    QCOMPARE(warnings.texts(), QStringList());
}

void ReadValuesTest::theWorkingReadTellsWhetherAllSelectorsCouldBeRead_data()
{
    QTest::addColumn<int>("startIndex");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("expected");

    // 0 good, 1 deactivated, 2 unresolved, 3 good, 4 without URL, 5 good, 6 without source, 7 good
    QTest::newRow("good") << 0 << 1 << true;
    QTest::newRow("a deactivated selector is no failure") << 0 << 2 << true;
    QTest::newRow("only a deactivated selector") << 1 << 1 << true;
    QTest::newRow("an unresolved selector is not forgotten") << 2 << 2 << false;
    QTest::newRow("a record without URL is not forgotten") << 4 << 2 << false;
    QTest::newRow("a leaf without source is not forgotten") << 6 << 2 << false;
    QTest::newRow("a refused range") << 7 << 2 << false;
}

void ReadValuesTest::theWorkingReadTellsWhetherAllSelectorsCouldBeRead()
{
    QFETCH(int, startIndex);
    QFETCH(int, count);
    QFETCH(bool, expected);
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    const QString inlet = on("inlet");
    SelectorHandlerProcessValue handler(
        {inlet, off("inlet"), on("no"), inlet, inlet, inlet, inlet, inlet}, nullptr);
    recordsOf(handler)[4].selectorUrlHandler.clear();
    recordsOf(handler)[6].sharedMemoryIterator = {};
    QVector<ProcessValue> values;

    QCOMPARE(readInternally(handler, startIndex, count, values), expected);
}

void ReadValuesTest::theWorkingReadAppends()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);
    QVector<ProcessValue> values{valueOf("before")};

    QVERIFY(readInternally(handler, 0, 1, values));

    QCOMPARE(values.size(), 2);
    QCOMPARE(values.at(0).getValue(), QVariant("before"));
    QCOMPARE(values.at(1).getValue(), QVariant(21.5));
}

void ReadValuesTest::theLockIsHeldWhileALeafIsAskedAndFreeAfterwards()
{
    UnlikePlatform platform;
    platform.source("boiler", "sensors", "1").leaf("inlet", 21.5);
    SelectorHandlerProcessValue handler({on("inlet")}, nullptr);
    QVector<bool> lockWasFree;
    platform.during("ProcessDataValue::getValue", [&] { lockWasFree.append(isLockFree(handler)); });

    handler.getValues();
    handler.getValues(0, 1);
    handler.getValue(0);

    QCOMPARE(lockWasFree, (QVector<bool>{false, false, false}));
    QVERIFY(isLockFree(handler));
}

QTEST_GUILESS_MAIN(ReadValuesTest)
#include "ReadValuesTest.moc"
