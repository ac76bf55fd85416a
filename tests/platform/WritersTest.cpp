// SPDX-License-Identifier: MIT
// Several writers of one buffer: together, and when one of them dies or stops in the middle.
#include "BufferChild.h"
#include "BufferLayout.h"
#include "BufferSource.h"
#include "MessageLog.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

class WritersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWriterThatDiesWithTheLockIsInherited();
    void aWriterThatStopsWithTheLockCostsOthersARefusal();
    void aPublisherWaitsOnceForALockThatSomebodyKeeps();
    void aLockOfAnotherKindIsNotTouched();
    void noWriteOfSeveralThreadsIsLost();
    void noWriteOfSeveralProcessesIsLost();
    void aPublisherAtFullSpeedIsNeverReadTorn();
};

namespace {

quint32 sequenceOf(const BufferSource &source, int leaf)
{
    QFile file(source.file());
    quint32 sequence = 0;
    if (file.open(QIODevice::ReadOnly)
        && file.seek(qint64(source.description.leaves.at(leaf).offset))) {
        file.read(reinterpret_cast<char *>(&sequence), sizeof(sequence));
    }
    return sequence;
}

// A write that finds the lock taken for too long is refused, as on a machine under load.
bool writeUntilTaken(const ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer &leaf,
                     const ProcessValue &value)
{
    constexpr int tries = 100;
    for (int i = 0; i < tries; ++i) {
        if (leaf->setValue(value)) {
            return true;
        }
    }
    return false;
}

}

void WritersTest::aWriterThatDiesWithTheLockIsInherited()
{
    BufferSource source({leaf("setpoint", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("setpoint"));
    for (const double next : {2.0, 3.0}) {
        const QVariant before = readLeaf(leaf).getValue();
        BufferChild writer({"die-with-lock"});
        writer.tell(source.text());
        QCOMPARE(writer.line(), QString("held"));
        QVERIFY(!writer.finish()); // killed
        QCOMPARE(writer.exitCode(), -1);
        QCOMPARE(readLeaf(leaf).getValue(), before); // the half-written copy is not seen

        // Who waited for the lock would be refused.
        QVERIFY(next < 3 ? leaf->setValue(ProcessValue(QVariant(next)))
                         : source.publish(0, ProcessValue(QVariant(next))));
        QCOMPARE(readLeaf(leaf).getValue(), QVariant(next));
    }
}

void WritersTest::aWriterThatStopsWithTheLockCostsOthersARefusal()
{
    BufferSource source({leaf("setpoint", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("setpoint"));
    BufferChild writer({"stop-with-lock"});
    writer.tell(source.text());
    QCOMPARE(writer.line(), QString("held"));
    int status = 0;
    const int number = int(writer.pid());
    QCOMPARE(waitpid(number, &status, WUNTRACED), number);
    QVERIFY(WIFSTOPPED(status));
    const QString name = source.description.buffer->name;
    const MessageLog warnings;

    QElapsedTimer timer;
    timer.start();
    QVERIFY(!leaf->setValue(ProcessValue(QVariant(2.0))));
    QVERIFY(!source.publish(0, ProcessValue(QVariant(3.0))));
    QVERIFY2(timer.elapsed() >= 200 && timer.elapsed() < 2000,
             qPrintable(QString::number(timer.elapsed())));

    const QString reason
        = "buffer " + name + " could not be locked for writing: Connection timed out";
    QCOMPARE(source.error, reason);
    QCOMPARE(warnings.texts(),
             QStringList("processdata.memory: Leaf setpoint was not written: " + reason));
    QCOMPARE(readLeaf(leaf).getValue(), QVariant(1.0));
    QCOMPARE(readLeaf(leaf).getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(::kill(number, SIGCONT), 0);
    QVERIFY(writer.finish());
    QVERIFY(leaf->setValue(ProcessValue(QVariant(4.0))));
}

void WritersTest::aPublisherWaitsOnceForALockThatSomebodyKeeps()
{
    BufferSource source({leaf("setpoint", "float64")});
    for (int round = 0; round < 2; ++round) {
        BufferChild writer({"stop-with-lock"});
        writer.tell(source.text());
        QCOMPARE(writer.line(), QString("held"));
        QVERIFY(!source.publish(0, ProcessValue(QVariant(1.0))));
        QVERIFY2(source.error.endsWith("Connection timed out"), qPrintable(source.error));
        for (int i = 0; i < 3; ++i) {
            QVERIFY(!source.publish(0, ProcessValue(QVariant(1.0))));
            QVERIFY2(source.error.endsWith("another process still holds its lock, which is not "
                                           "waited for again"),
                     qPrintable(source.error));
        }
        writer.kill();
        QVERIFY2(source.publish(0, ProcessValue(QVariant(2.0))), qPrintable(source.error));
    }
}

void WritersTest::aLockOfAnotherKindIsNotTouched()
{
    BufferSource source({leaf("setpoint", "float64")});
    const BufferClient client(source.text());
    QFile file(source.file());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(
        file.seek(offsetof(BufferHeader, writersLock) + offsetof(pthread_mutex_t, __data.__kind)));
    QCOMPARE(file.write("\0", 1), 1); // a plain lock, which nobody would inherit
    file.close();

    QVERIFY(!client.leaf(source.url("setpoint"))->setValue(ProcessValue(QVariant(2.0))));
    QVERIFY(!source.publish(0, ProcessValue(QVariant(2.0))));
    QVERIFY(source.error.endsWith("could not be locked for writing: Invalid argument"));
}

void WritersTest::noWriteOfSeveralThreadsIsLost()
{
    constexpr int perThread = 20'000;
    BufferSource source({leaf("setpoint", "float64")});
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("setpoint"));
    std::atomic<int> written{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < perThread; ++n) {
                written += writeUntilTaken(leaf, ProcessValue(QVariant(double(n)))) ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    QCOMPARE(written.load(), 4 * perThread);
    QCOMPARE(sequenceOf(source, 0), quint32(4 * perThread));
}

void WritersTest::noWriteOfSeveralProcessesIsLost()
{
    constexpr int perProcess = 20'000;
    BufferSource source({leaf("setpoint", "float64")});
    BufferChild first({"write", QString::number(perProcess)});
    BufferChild second({"write", QString::number(perProcess)});
    first.tell(source.text());
    second.tell(source.text());

    QCOMPARE(first.line(), QString::number(perProcess));
    QCOMPARE(second.line(), QString::number(perProcess));
    QCOMPARE(sequenceOf(source, 0), quint32(2 * perProcess));
}

void WritersTest::aPublisherAtFullSpeedIsNeverReadTorn()
{
    constexpr int reads = 2'000'000;
    BufferChild publisher({"flood", uniqueModule()});
    const QString text = publisher.line();
    const QString module
        = QJsonDocument::fromJson(text.toUtf8()).object().value("module").toString();
    const BufferClient client(text);
    const auto number = client.leaf("processdata://" + module + "/Tank/1/number");
    const auto letters = client.leaf("processdata://" + module + "/Tank/1/text");
    QTRY_COMPARE(readLeaf(letters).getValue().userType(), int(QMetaType::QString)); // it has begun
    int torn = 0;
    int read = 0;
    qint64 first = 0;
    qint64 last = 0;
    const QDeadlineTimer limit(std::chrono::seconds(30));
    for (int i = 0; (i < reads || last < first + 1000) && !limit.hasExpired(); ++i) {
        ProcessValue value(ProcessDataDefinitions::NoValue);
        const bool isNumber = i % 8 != 0;
        if (!(isNumber ? number : letters)->getValue(value, false)) {
            continue;
        }
        ++read;
        last = value.getTimestamp();
        first = first == 0 ? last : first;
        const QVariant expected = isNumber
            ? QVariant(quint64(last * 3))
            : QVariant(QString(int(last % 100), QChar::fromLatin1(char('a' + last % 26))));
        torn += value.getValue() == expected && value.getErrorType() == last % 6 ? 0 : 1;
    }
    QCOMPARE(torn, 0);
    QVERIFY2(read > reads / 2, qPrintable(QString::number(read)));
    QVERIFY2(last >= first + 1000, "the publisher did not run meanwhile");
    QVERIFY(publisher.finish());
}

QTEST_GUILESS_MAIN(WritersTest)
#include "WritersTest.moc"
