// SPDX-License-Identifier: MIT
// Verdicts of an apply: nothing by halves.
#include "ApplyPlan.h"
#include "SelectorHandlerProcessValue.h"

#include <QtTest>

namespace {

// Leaves that hold integers and may refuse or change what is written.
class ScriptedLeaves : public SelectorHandlerProcessValue
{
public:
    explicit ScriptedLeaves(const QVector<int> &values)
        : SelectorHandlerProcessValue(QVector<QString>(), nullptr)
        , values(values)
    {
    }

    ProcessValue getValue(int index) override
    {
        return ProcessValue(QVariant(values.at(index)), ProcessDataDefinitions::NoError, 1);
    }

    bool setValue(const ProcessValue &value, int index) override
    {
        calls.append(QString("%1=%2").arg(index).arg(value.getValue().toInt()));
        if (refusing.contains(index)) {
            return false;
        }
        values[index] = value.getValue().toInt() + (correcting.contains(index) ? 1 : 0);
        return true;
    }

    QVector<int> values;
    QVector<int> refusing;
    QVector<int> correcting;
    QStringList calls;
};

QVector<ApplyItem> items(const QVector<int> &wanted, ScriptedLeaves &leaves)
{
    QVector<ApplyItem> result;
    for (int i = 0; i < wanted.size(); ++i) {
        ApplyItem item;
        item.checked = {{i + 1, QString("u%1").arg(i), QString::number(wanted.at(i)), true},
                        {},
                        {{"type", "int32"}, {"unit", "V"}},
                        wanted.at(i)};
        item.before = leaves.getValue(i);
        result.append(item);
    }
    return result;
}

QStringList verdicts(const QVector<ApplyItem> &items)
{
    QStringList result;
    for (const ApplyItem &item : items) {
        result.append(applyEntry(item).json.value("result").toString());
    }
    return result;
}

} // namespace

class ApplyPlanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allIsWrittenInOrder();
    void aDryRunWritesNothing();
    void valuesToWriteAreCounted();
    void numbersReadBackExactly_data();
    void numbersReadBackExactly();
    void oneWrongLineLeavesAllUnwritten();
    void aDeactivatedLineIsLeftOut();
    void aRefusedWriteEndsTheWriting();
    void aRefusedWriteSetsBackWhatWasWritten();
    void aCorrectedValueIsNoticedAndSetBack();
    void whatHadNoGoodValueCannotBeSetBack();
    void aRefusedRestorationIsTold();
    void rowsTellBeforeAndAfter();
};

void ApplyPlanTest::allIsWrittenInOrder()
{
    ScriptedLeaves leaves({1, 2});
    auto list = items({10, 20}, leaves);

    apply(list, {}, leaves);
    QCOMPARE(verdicts(list), (QStringList{"written", "written"}));
    QCOMPARE(leaves.calls, (QStringList{"0=10", "1=20"}));

    list = items({11, 21}, leaves);
    apply(list, {false, true, true}, leaves);
    QCOMPARE(verdicts(list), (QStringList{"verified", "verified"}));
    QCOMPARE(leaves.values, (QVector<int>{11, 21}));
}

void ApplyPlanTest::aDryRunWritesNothing()
{
    ScriptedLeaves leaves({1, 2});
    auto list = items({10, 20}, leaves);

    apply(list, {true, false, false}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"checked", "checked"}));
    QCOMPARE(leaves.calls, QStringList());
}

void ApplyPlanTest::valuesToWriteAreCounted()
{
    ScriptedLeaves leaves({1, 2, 3});
    auto list = items({10, 20, 30}, leaves);
    QCOMPARE(valuesToWrite(list), 3);
    list[0].checked.finding = {Finding::Deactivated, "deactivated"};
    QCOMPARE(valuesToWrite(list), 2);
    list[1].checked.finding = {Finding::ReadOnly, "the leaf is read-only"};
    QCOMPARE(valuesToWrite(list), 0);
}

void ApplyPlanTest::numbersReadBackExactly_data()
{
    QTest::addColumn<double>("written");
    QTest::addColumn<double>("now");
    QTest::addColumn<bool>("same");
    QTest::newRow("the same") << 0.1 << 0.1 << true;
    QTest::newRow("close") << 1200.0 << 1200.0000000001 << false;
    QTest::newRow("negative zero") << 0.0 << -0.0 << false;
    QTest::newRow("not a number twice") << qQNaN() << qQNaN() << true;
    QTest::newRow("not a number") << 1.0 << qQNaN() << false;
}

void ApplyPlanTest::numbersReadBackExactly()
{
    QFETCH(const double, written);
    QFETCH(const double, now);
    QFETCH(const bool, same);
    class Leaf : public ScriptedLeaves
    {
    public:
        explicit Leaf(double value)
            : ScriptedLeaves({0})
            , value(value)
        {
        }
        ProcessValue getValue(int /*index*/) override
        {
            return ProcessValue(QVariant(value), ProcessDataDefinitions::NoError, 1);
        }

    private:
        const double value;
    } leaf(now);
    QCOMPARE(readBack(leaf, 0, written).code, same ? Finding::None : Finding::NotVerified);
}

void ApplyPlanTest::oneWrongLineLeavesAllUnwritten()
{
    for (const bool dryRun : {false, true}) {
        ScriptedLeaves leaves({1, 2, 3});
        auto list = items({10, 20, 30}, leaves);
        list[1].checked.finding = {Finding::ReadOnly, "the leaf is read-only"};

        apply(list, {dryRun, false, !dryRun}, leaves);

        QCOMPARE(verdicts(list), (QStringList{"left", "failed", "left"}));
        QCOMPARE(list.at(1).finding.text, QString("the leaf is read-only"));
        QCOMPARE(leaves.calls, QStringList());
    }
}

void ApplyPlanTest::aDeactivatedLineIsLeftOut()
{
    ScriptedLeaves leaves({1, 2});
    auto list = items({10, 20}, leaves);
    list[0].checked.finding = {Finding::Deactivated, "deactivated"};

    apply(list, {}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"left", "written"}));
    QCOMPARE(list.at(0).finding.text, QString("deactivated"));
    QCOMPARE(leaves.calls, QStringList{"1=20"});
}

void ApplyPlanTest::aRefusedWriteEndsTheWriting()
{
    ScriptedLeaves leaves({1, 2, 3});
    leaves.refusing = {1};
    auto list = items({10, 20, 30}, leaves);

    apply(list, {false, true, false}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"written", "failed", "left"}));
    QCOMPARE(leaves.calls, (QStringList{"0=10", "1=20"}));
}

void ApplyPlanTest::aRefusedWriteSetsBackWhatWasWritten()
{
    ScriptedLeaves leaves({1, 2, 3});
    leaves.refusing = {2};
    auto list = items({10, 20, 30}, leaves);

    apply(list, {false, false, true}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"restored", "restored", "failed"}));
    QCOMPARE(leaves.calls, (QStringList{"0=10", "1=20", "2=30", "1=2", "0=1"}));
    QCOMPARE(leaves.values, (QVector<int>{1, 2, 3}));
}

void ApplyPlanTest::aCorrectedValueIsNoticedAndSetBack()
{
    ScriptedLeaves leaves({1, 2});
    leaves.correcting = {0};
    auto list = items({10, 20}, leaves);

    apply(list, {false, true, false}, leaves);
    QCOMPARE(verdicts(list), (QStringList{"failed", "verified"}));
    QCOMPARE(list.at(0).finding.text, QString("reads back as 11 (NoError)"));
    QCOMPARE(list.at(0).finding.codeName(), QString("notVerified"));

    leaves.values = {1, 2};
    leaves.calls.clear();
    list = items({10, 20}, leaves);
    apply(list, {false, true, true}, leaves);
    QCOMPARE(verdicts(list), (QStringList{"failed", "restored"}));
    QCOMPARE(list.at(0).finding.text, QString("reads back as 11 (NoError); set back"));
    QCOMPARE(leaves.calls, (QStringList{"0=10", "1=20", "1=2", "0=1"}));
}

void ApplyPlanTest::whatHadNoGoodValueCannotBeSetBack()
{
    ScriptedLeaves leaves({1, 2});
    leaves.refusing = {1};
    auto list = items({10, 20}, leaves);
    ApplyItem first = list.takeFirst();
    first.before = ProcessValue(ProcessDataDefinitions::NotInitialized);
    list.prepend(first);

    apply(list, {false, false, true}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"notRestored", "failed"}));
    QCOMPARE(list.at(0).finding.text, QString("not set back: it had no good value before"));
    QCOMPARE(leaves.calls, (QStringList{"0=10", "1=20"}));
}

void ApplyPlanTest::aRefusedRestorationIsTold()
{
    class RefusingRestoration : public ScriptedLeaves
    {
    public:
        using ScriptedLeaves::ScriptedLeaves;
        bool setValue(const ProcessValue &value, int index) override
        {
            return value.getValue().toInt() >= 10 && ScriptedLeaves::setValue(value, index);
        }
    };
    RefusingRestoration leaves({1, 2});
    leaves.correcting = {1};
    auto list = items({10, 20}, leaves);

    apply(list, {false, true, true}, leaves);

    QCOMPARE(verdicts(list), (QStringList{"notRestored", "notRestored"}));
    QVERIFY(list.at(0).finding.text.startsWith("the write was refused"));
}

void ApplyPlanTest::rowsTellBeforeAndAfter()
{
    ScriptedLeaves leaves({1});
    auto list = items({10}, leaves);
    apply(list, {false, true, false}, leaves);
    const Report report{"selector.apply/1", applyColumns(), {applyEntry(list.first())}};

    QCOMPARE(render(report, {Format::Csv, false, false}),
             QString("line,url,before,value,unit,result,note,label\n1,u0,1,10,V,verified,,\n"));
    QCOMPARE(render(report, {Format::Table, false, false}),
             QString("LINE  URL  BEFORE  VALUE  UNIT  RESULT    NOTE\n"
                     "   1  u0        1     10  V     verified\n"));
    QCOMPARE(render(report, {Format::Json, false, false}),
             QString(R"({"results":[{"before":1,"line":1,"result":"verified","status":"ok",)"
                     R"("unit":"V","url":"u0","value":10}],"schema":"selector.apply/1"})"
                     "\n"));
}

QTEST_GUILESS_MAIN(ApplyPlanTest)
#include "ApplyPlanTest.moc"
