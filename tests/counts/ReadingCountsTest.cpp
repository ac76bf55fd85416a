// SPDX-License-Identifier: MIT
// What reading and setting up cost, in exact counts: heap allocations, heap and system calls.
#include "InProcessBus.h"
#include "InProcessSource.h"
#include "SelectorHandlerProcessValue.h"

#include <QtTest>

#include <csignal>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <malloc.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
void *__libc_malloc(std::size_t size); // NOLINT(bugprone-reserved-identifier): glibc's own
}

namespace {

volatile bool countAllocations = false;
int allocations = 0;
volatile sig_atomic_t systemCalls = 0;

void countSystemCall(int)
{
    systemCalls = systemCalls + 1;
}

// From here on each system call of this thread but write, exit_group and the return from a handler
// is counted instead of made.
bool trapSystemCalls()
{
    sock_filter code[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_rt_sigreturn, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{sizeof(code) / sizeof(code[0]), code};
    struct sigaction action = {};
    action.sa_handler = countSystemCall;
    return sigaction(SIGSYS, &action, nullptr) == 0 && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

template <typename Function> int allocationsOf(Function function)
{
    function(); // warm: symbols are bound, thread-local caches exist
    allocations = 0;
    countAllocations = true;
    function();
    countAllocations = false;
    return allocations;
}

// Counted in a child: a filter cannot be taken off again.
template <typename Function> int systemCallsOf(Function function)
{
    const pid_t child = fork();
    if (child == 0) {
        function();
        if (!trapSystemCalls()) {
            _exit(255);
        }
        function();
        _exit(systemCalls < 200 ? systemCalls : 200);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)
        ? WEXITSTATUS(status)
        : -1;
}

QString uniqueModule()
{
    return QStringLiteral("Counts%1").arg(getpid());
}

} // namespace

extern "C" void *malloc(std::size_t size)
{
    if (countAllocations) {
        ++allocations;
    }
    return __libc_malloc(size);
}

class ReadingCountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theCountersCount();
    void aReadOfNumbersAllocatesOnceAndCallsTheKernelNever_data();
    void aReadOfNumbersAllocatesOnceAndCallsTheKernelNever();
    void aRefusedRangeCostsNothing();
    void settingUpAllocatesAFewTimesASelector();
    void aSelectorTakesLittleHeap();
    void settingUpFetchesEachSourceOnce();
    void aChangeFetchesTwice();
};

void ReadingCountsTest::theCountersCount()
{
    QCOMPARE(allocationsOf([] { QByteArray(100, 'x').detach(); }), 1);
    QCOMPARE(systemCallsOf([] { syscall(SYS_getppid); }), 1);
    QCOMPARE(systemCallsOf([] {}), 0);
}

void ReadingCountsTest::aReadOfNumbersAllocatesOnceAndCallsTheKernelNever_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("one") << 1;
    QTest::newRow("a thousand") << 1000;
}

void ReadingCountsTest::aReadOfNumbersAllocatesOnceAndCallsTheKernelNever()
{
    QFETCH(int, count);
    const InProcessSource source(uniqueModule(), QStringLiteral("1"), 1000);
    SelectorHandlerProcessValue handler(source.urls(), nullptr);
    QCOMPARE(handler.getValue(999).getValue(), QVariant(999.0));

    QCOMPARE(allocationsOf([&] { handler.getValues(0, count); }), 1);
    QCOMPARE(systemCallsOf([&] { handler.getValues(0, count); }), 0);
    QCOMPARE(allocationsOf([&] { handler.getValue(count - 1); }), 1);
    QCOMPARE(systemCallsOf([&] { handler.getValue(count - 1); }), 0);
}

void ReadingCountsTest::aRefusedRangeCostsNothing()
{
    const InProcessSource source(uniqueModule(), QStringLiteral("1"), 3);
    SelectorHandlerProcessValue handler(source.urls(), nullptr);

    // Refused without a warning: a message would allocate and be written.
    QCOMPARE(allocationsOf([&] { handler.getValues(-1, 2); }), 0);
    QCOMPARE(allocationsOf([&] { handler.getValues(0, 0); }), 0);
    QCOMPARE(systemCallsOf([&] { handler.getValues(-1, 2); }), 0);
    QCOMPARE(systemCallsOf([&] { handler.getValues(0, 0); }), 0);
}

void ReadingCountsTest::settingUpAllocatesAFewTimesASelector()
{
    constexpr int count = 1000;
    const InProcessSource source(uniqueModule(), QStringLiteral("1"), count);
    const QVector<QString> urls = source.urls();

    const int made
        = allocationsOf([&] { const SelectorHandlerProcessValue handler(urls, nullptr); });

    QVERIFY2(made <= 13 * count, qPrintable(QString::number(made)));
}

void ReadingCountsTest::aSelectorTakesLittleHeap()
{
    constexpr int count = 1000;
    const InProcessSource source(uniqueModule(), QStringLiteral("1"), count);
    const QVector<QString> urls = source.urls();
    SelectorHandlerProcessValue(urls, nullptr); // what is made once for a process is there
    const auto heap = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const size_t before = heap();

    const SelectorHandlerProcessValue handler(urls, nullptr);
    const size_t taken = heap() - before;

    QVERIFY2(taken <= 1150 * count, qPrintable(QString::number(taken)));
}

void ReadingCountsTest::settingUpFetchesEachSourceOnce()
{
    InProcessBus::clear();
    const InProcessSource one(uniqueModule(), QStringLiteral("1"), 10);
    const InProcessSource two(uniqueModule(), QStringLiteral("2"), 10);

    const SelectorHandlerProcessValue handler(one.urls() + two.urls() + one.urls(), nullptr);

    QCOMPARE(InProcessBus::blockingFetches(), 2);
    QCOMPARE(InProcessBus::asynchronousFetches(), 0);
}

void ReadingCountsTest::aChangeFetchesTwice()
{
    InProcessBus::clear();
    const InProcessSource one(uniqueModule(), QStringLiteral("1"), 10);
    const InProcessSource two(uniqueModule(), QStringLiteral("2"), 10);
    const SelectorHandlerProcessValue handler(one.urls() + two.urls(), nullptr);

    InProcessBus::announce(uniqueModule(), QStringLiteral("InProcess"), QStringLiteral("2"));
    QTRY_COMPARE(InProcessBus::blockingFetches(), 3);

    QCOMPARE(InProcessBus::asynchronousFetches(), 1);
}

QTEST_GUILESS_MAIN(ReadingCountsTest)
#include "ReadingCountsTest.moc"
