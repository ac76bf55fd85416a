// SPDX-License-Identifier: MIT
// An apply that is interrupted stops before the next value and still sets back what it wrote.
#include "ApplyPlan.h"
#include "InterruptExit.h"
#include "SelectorHandlerProcessValue.h"

#include <QtTest>

#include <csignal>

namespace {

// The user presses Ctrl-C while the second value is being written.
class InterruptedLeaves : public SelectorHandlerProcessValue
{
public:
    InterruptedLeaves()
        : SelectorHandlerProcessValue(QVector<QString>(), nullptr)
    {
    }

    bool setValue(const ProcessValue &value, int index) override
    {
        calls.append(QString("%1=%2").arg(index).arg(value.getValue().toInt()));
        if (calls.size() == 2) {
            ::raise(SIGINT);
        }
        return true;
    }

    QStringList calls;
};

} // namespace

class ApplyInterruptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writtenValuesAreSetBackBeforeTheEnd();
};

void ApplyInterruptTest::writtenValuesAreSetBackBeforeTheEnd()
{
    exitOnInterrupt();
    InterruptedLeaves leaves;
    QVector<ApplyItem> items;
    for (int i = 0; i < 3; ++i) {
        ApplyItem item;
        item.checked = {{i + 1, "u", "7", true}, {}, {{"type", "int32"}}, 7};
        item.before = ProcessValue(QVariant(i), ProcessDataDefinitions::NoError, 1);
        items.append(item);
    }

    apply(items, {false, false, true}, leaves);

    QVERIFY(wasInterrupted());
    QCOMPARE(leaves.calls, (QStringList{"0=7", "1=7", "1=1", "0=0"}));
    QCOMPARE(items.at(0).verdict, ApplyItem::Restored);
    QCOMPARE(items.at(1).verdict, ApplyItem::Restored);
    QCOMPARE(items.at(2).verdict, ApplyItem::Failed);
    QVERIFY(items.at(2).finding.text.startsWith("interrupted"));
}

QTEST_APPLESS_MAIN(ApplyInterruptTest)
#include "apply_interrupt_test.moc"
