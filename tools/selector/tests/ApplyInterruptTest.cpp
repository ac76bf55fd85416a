// SPDX-License-Identifier: MIT
// An apply that is interrupted stops before the next value and still sets back what it wrote.
#include "ApplyPlan.h"
#include "InterruptExit.h"
#include "SelectorHandlerProcessValue.h"

#include <QtTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The signal comes while the second value is being written.
class InterruptedLeaves : public SelectorHandlerProcessValue
{
public:
    explicit InterruptedLeaves(int signalNumber)
        : SelectorHandlerProcessValue(QVector<QString>(), nullptr)
        , signalNumber(signalNumber)
    {
    }

    bool setValue(const ProcessValue &value, int index) override
    {
        calls.append(QString("%1=%2").arg(index).arg(value.getValue().toInt()));
        if (calls.size() == 2) {
            ::raise(signalNumber);
        }
        return true;
    }

    QStringList calls;

private:
    const int signalNumber;
};

bool setsBack(int signalNumber)
{
    exitOnInterrupt();
    const InterruptHold hold;
    InterruptedLeaves leaves(signalNumber);
    QVector<ApplyItem> items;
    for (int i = 0; i < 3; ++i) {
        ApplyItem item;
        item.checked = {{i + 1, "u", "7", true}, {}, {{"type", "int32"}}, 7};
        item.before = ProcessValue(QVariant(i), ProcessDataDefinitions::NoError, 1);
        items.append(item);
    }

    apply(items, {false, false, true}, leaves);

    return wasInterrupted() && leaves.calls == QStringList{"0=7", "1=7", "1=1", "0=0"}
    && items.at(0).verdict == ApplyItem::Restored && items.at(1).verdict == ApplyItem::Restored
        && items.at(2).verdict == ApplyItem::Failed
        && items.at(2).finding.text.startsWith("interrupted");
}

} // namespace

class ApplyInterruptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writtenValuesAreSetBackBeforeTheEnd_data();
    void writtenValuesAreSetBackBeforeTheEnd();
};

void ApplyInterruptTest::writtenValuesAreSetBackBeforeTheEnd_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

void ApplyInterruptTest::writtenValuesAreSetBackBeforeTheEnd()
{
    QFETCH(const int, signalNumber);
    QFETCH(const int, exitCode);
    // In a process of its own: a signal that was noted stays so.
    const pid_t child = ::fork();
    QVERIFY(child != -1);
    if (child == 0) {
        ::_exit(setsBack(signalNumber) ? interruptExitCode() : 1);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY2(WIFEXITED(status), "the signal ended it half way through");
    QCOMPARE(WEXITSTATUS(status), exitCode);
}

QTEST_APPLESS_MAIN(ApplyInterruptTest)
#include "ApplyInterruptTest.moc"
