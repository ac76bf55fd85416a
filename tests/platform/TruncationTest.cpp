// SPDX-License-Identifier: MIT
// A buffer that is cut short under its readers.
#include "BufferSource.h"

#include <QLoggingCategory>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int capacity = 20000; // several pages
// Stands for an application's own handler: tells by its way to end that it was called.
void endByAnotherSignal(int)
{
    static_cast<void>(raise(SIGUSR1));
}

struct LargeSource : BufferSource
{
    LargeSource()
        : BufferSource({leaf("near", "float64"), leaf("text", "string", {{"capacity", capacity}}),
                        leaf("far", "float64")})
    {
        publish(0, ProcessValue(QVariant(1.0)));
        publish(2, ProcessValue(QVariant(2.0)));
    }
    ~LargeSource() // whole again for its publisher, which no guard protects
    {
        QFile target(file());
        if (!content.isEmpty() && target.open(QIODevice::ReadWrite)) {
            target.write(content);
        }
    }
    bool cut(off_t size)
    {
        QFile original(file());
        if (!original.open(QIODevice::ReadOnly)) {
            return false;
        }
        content = original.readAll();
        return truncate(file().toUtf8().constData(), size) == 0;
    }
    QByteArray content;
};

// An access beyond the end of a file of no concern to us.
void touchForeignHole()
{
    const int file = memfd_create("foreign", MFD_CLOEXEC);
    auto *base = static_cast<volatile char *>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    base[0] = 1;
}

// How a child ends that does this.
template <typename Deed> int statusOf(Deed deed)
{
    const pid_t child = fork();
    if (child == 0) {
        deed();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

}

class TruncationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aBufferCutShortReadsAsLostEverywhere_data();
    void aBufferCutShortReadsAsLostEverywhere();
    void aWriteToABufferCutShortIsRefused();
    void aBufferCutShortWhileThreadsReadCostsNobodyItsLife();
    void anotherSourceIsReadOn();
    void otherFaultsGoToTheHandlerBefore();
};

void TruncationTest::initTestCase()
{
    std::signal(SIGBUS, endByAnotherSignal); // before the first buffer is attached
    QLoggingCategory::setFilterRules("processdata.memory=false");
}

void TruncationTest::aBufferCutShortReadsAsLostEverywhere_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("to nothing") << 0;
    QTest::newRow("within the second page") << 5000;
    QTest::newRow("to one page") << 4096;
}

void TruncationTest::aBufferCutShortReadsAsLostEverywhere()
{
    QFETCH(int, size);
    LargeSource source;
    const BufferClient client(source.text());
    QCOMPARE(readLeaf(client.leaf(source.url("far"))).getValue(), QVariant(2.0));
    QVERIFY(source.cut(size));

    for (const char *name : {"far", "near", "text"}) {
        const ProcessValue value = readLeaf(client.leaf(source.url(name)));
        QCOMPARE(int(value.getErrorType()), int(ProcessDataDefinitions::SourceLost));
        QVERIFY(value.getValue().toString().isEmpty());
    }
    QVERIFY(!client.manager->isBufferValid());
}

void TruncationTest::aWriteToABufferCutShortIsRefused()
{
    LargeSource source;
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("far"));
    QVERIFY(leaf->setValue(ProcessValue(QVariant(3.0))));
    QVERIFY(source.cut(0));
    QVERIFY(!leaf->setValue(ProcessValue(QVariant(4.0))));
    QVERIFY(!leaf->setValue(ProcessValue(QVariant(5.0))));
}

void TruncationTest::aBufferCutShortWhileThreadsReadCostsNobodyItsLife()
{
    for (int round = 0; round < 50; ++round) {
        LargeSource source;
        const BufferClient client(source.text());
        const auto readUntilLost = [&] {
            const auto leaf = client.leaf(source.url("far"));
            while (readLeaf(leaf).getErrorType() != ProcessDataDefinitions::SourceLost) { }
        };
        std::thread first(readUntilLost);
        std::thread second(readUntilLost);
        const bool cut = source.cut(4096);
        first.join();
        second.join();
        QVERIFY(cut);
    }
}

void TruncationTest::anotherSourceIsReadOn()
{
    LargeSource other;
    LargeSource source; // fixed first
    const BufferClient client(source.text());
    const BufferClient otherClient(other.text());
    QVERIFY(source.cut(0));
    QCOMPARE(int(readLeaf(client.leaf(source.url("far"))).getErrorType()),
             int(ProcessDataDefinitions::SourceLost));
    QCOMPARE(readLeaf(otherClient.leaf(other.url("far"))).getValue(), QVariant(2.0));
    QVERIFY(otherClient.manager->isBufferValid());
}

void TruncationTest::otherFaultsGoToTheHandlerBefore()
{
    LargeSource source;
    const BufferClient client(source.text());
    const int status = statusOf([] {
        std::signal(SIGUSR1, SIG_DFL);
        touchForeignHole();
    });
    QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGUSR1,
             qPrintable(QString::number(status, 16)));
}

QTEST_GUILESS_MAIN(TruncationTest)
#include "TruncationTest.moc"
