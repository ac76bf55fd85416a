// SPDX-License-Identifier: MIT
// How readers learn that a publisher is gone, and who holds the locks that tell.
#include "BufferChild.h"
#include "BufferSource.h"
#include "LifeRecord.h"
#include "LivenessKeeper.h"
#include "MessageLog.h"
#include "SharedLock.h"

#include <QtTest>

#include <sys/wait.h>
#include <thread>
#include <unistd.h>

class LivenessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void aKilledPublisherIsSeenByTheNextRead();
    void aStoppedPublisherIsAlive();
    void aDeadPublishersBufferIsAttachedForItsLastValues();
    void retirementIsSeenByTheNextRead();
    void aRetiredBufferIsNotLiveAlthoughItsPublisherIs();
    void aPublisherOutlivesTheThreadThatMadeIt();
    void aForkedChildLeavesItsParentsBufferAlone();
    void aForkedChildPublishesByItself();
    void aLockWordTellsWhetherItsOwnerLives();
    void aThreadHoldsNoMoreLocksThanTheKernelLooksAt();
    void aLockThatIsHeldIsNotTakenAgain();
    void aLockThatIsNotHeldIsNotGivenUp();
};

void LivenessTest::cleanup()
{
    QTRY_COMPARE(LivenessKeeper::instance().threadCount(), 0); // nothing was left held
}

void LivenessTest::aKilledPublisherIsSeenByTheNextRead()
{
    BufferChild publisher({"publish", uniqueModule()});
    const QString text = publisher.line();
    const QString module
        = QJsonDocument::fromJson(text.toUtf8()).object().value("module").toString();
    const BufferClient client(text);
    const auto level = client.leaf("processdata://" + module + "/Tank/1/level");
    const auto setpoint = client.leaf("processdata://" + module + "/Tank/1/setpoint");
    publisher.tell("2.5");
    QCOMPARE(publisher.line(), QString("published"));
    const ProcessValue before = readLeaf(level);
    QCOMPARE(before.getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(before.getValue(), QVariant(2.5));
    QVERIFY(client.manager->isBufferValid());

    publisher.kill();

    const ProcessValue after = readLeaf(level);
    QCOMPARE(after.getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(after.getValue(), QVariant(2.5));
    QCOMPARE(after.getTimestamp(), before.getTimestamp());
    QCOMPARE(readLeaf(setpoint).getErrorType(), ProcessDataDefinitions::SourceLost);
    QVERIFY(!client.manager->isBufferValid());
    const MessageLog warnings;
    QVERIFY(!setpoint->setValue(ProcessValue(QVariant(1.0))));
    QCOMPARE(warnings.texts().size(), 1);
    QVERIFY(warnings.texts().at(0).startsWith(
        "processdata.memory: Leaf setpoint was not written: the publisher of buffer /processdata."
        + module));
    removeLeftBuffers(module);
}

void LivenessTest::aStoppedPublisherIsAlive()
{
    BufferChild publisher({"publish", uniqueModule()});
    const QString text = publisher.line();
    const BufferClient client(text);
    const int number = int(publisher.pid());
    QCOMPARE(::kill(number, SIGSTOP), 0);
    int status = 0;
    QCOMPARE(waitpid(number, &status, WUNTRACED), number);
    QVERIFY(WIFSTOPPED(status));
    QVERIFY(client.manager->isBufferValid());
    QCOMPARE(::kill(number, SIGCONT), 0);
    QVERIFY(publisher.finish());
    QVERIFY(!client.manager->isBufferValid());
}

void LivenessTest::aDeadPublishersBufferIsAttachedForItsLastValues()
{
    BufferChild publisher({"publish", uniqueModule()});
    const QString text = publisher.line();
    const QJsonObject document = QJsonDocument::fromJson(text.toUtf8()).object();
    const QString module = document.value("module").toString();
    publisher.kill();
    const MessageLog warnings;

    const BufferClient client(text);

    QCOMPARE(
        warnings.texts(),
        QStringList(
            QString(
                "processdata.memory: Attached to source %1/Tank/1, buffer %2: its publisher is gone")
                .arg(module, document.value("buffer").toObject().value("name").toString())));
    QVERIFY(!client.manager->isBufferValid());
    const ProcessValue value = readLeaf(client.leaf("processdata://" + module + "/Tank/1/level"));
    QCOMPARE(value.getValue(), QVariant(1.5));
    QCOMPARE(value.getErrorType(), ProcessDataDefinitions::SourceLost);
    removeLeftBuffers(module);
}

void LivenessTest::retirementIsSeenByTheNextRead()
{
    BufferSource source({leaf("level", "float64"), leaf("name", "string", {{"capacity", 8}})});
    QVERIFY(source.publish(0, ProcessValue(QVariant(2.5), ProcessDataDefinitions::DeviceFault, 7)));
    const BufferClient client(source.text());
    const auto level = client.leaf(source.url("level"));
    QCOMPARE(readLeaf(level).getErrorType(), ProcessDataDefinitions::DeviceFault);

    QFile file(source.life());
    QVERIFY(file.open(QIODevice::ReadOnly));

    source.buffer.reset();

    QVERIFY(file.seek(offsetof(LifeRecord, state)));
    QCOMPARE(file.read(1), QByteArray(1, char(BufferRetired)));
    QCOMPARE(readLeaf(level).getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(readLeaf(level).getValue(), QVariant(2.5));
    QCOMPARE(readLeaf(level).getTimestamp(), qint64(7));
    QCOMPARE(readLeaf(client.leaf(source.url("name"))).getErrorType(),
             ProcessDataDefinitions::SourceLost);
    QVERIFY(!client.manager->isBufferValid());
    QVERIFY(!level->setValue(ProcessValue(QVariant(1.0))));
}

void LivenessTest::aRetiredBufferIsNotLiveAlthoughItsPublisherIs()
{
    BufferSource source({leaf("level", "float64")});
    const BufferClient client(source.text());
    QFile file(source.life());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(offsetof(LifeRecord, state)));
    const char retired = char(BufferRetired);
    QCOMPARE(file.write(&retired, 1), qint64(1));
    file.close();

    QVERIFY(!client.manager->isBufferValid());
    QCOMPARE(readLeaf(client.leaf(source.url("level"))).getErrorType(),
             ProcessDataDefinitions::SourceLost);
}

void LivenessTest::aPublisherOutlivesTheThreadThatMadeIt()
{
    std::unique_ptr<BufferSource> source;
    std::thread([&] {
        source = std::make_unique<BufferSource>(QJsonArray{leaf("level", "float64")});
    }).join();
    QVERIFY(source->buffer);
    QVERIFY(BufferClient(source->text()).manager->isBufferValid());
}

void LivenessTest::aForkedChildLeavesItsParentsBufferAlone()
{
    BufferSource source({leaf("level", "float64")});
    const pid_t child = fork();
    if (child == 0) {
        source.buffer.reset();
        _exit(0);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
    QVERIFY(QFile::exists(source.file()));
    QVERIFY(BufferClient(source.text()).manager->isBufferValid());
}

void LivenessTest::aForkedChildPublishesByItself()
{
    const BufferSource source({leaf("level", "float64")});
    const QString module = uniqueModule();
    const pid_t child = fork();
    if (child == 0) {
        const BufferSource own({leaf("level", "float64")}, module);
        const bool valid = own.buffer && BufferClient(own.text()).manager->isBufferValid();
        _exit(valid ? 0 : 1);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
    const BufferSource next({leaf("level", "float64")},
                            module); // takes the child's leftover away
    QCOMPARE(buffersOf(module).size(), 1);
}

void LivenessTest::aLockWordTellsWhetherItsOwnerLives()
{
    constexpr quint32 waiters = 0x80000000;
    constexpr quint32 ownerDied = 0x40000000;
    constexpr quint32 highestOwner = 0x3fffffff;
    for (const quint32 others : {0U, waiters}) {
        QVERIFY(isLockOwnerAlive(others | 1));
        QVERIFY(isLockOwnerAlive(others | highestOwner));
        QVERIFY(!isLockOwnerAlive(others)); // free
        QVERIFY(!isLockOwnerAlive(others | ownerDied)); // as the kernel leaves it
        QVERIFY(!isLockOwnerAlive(others | ownerDied | 1));
        QVERIFY(!isLockOwnerAlive(others | ownerDied | highestOwner));
    }
}

void LivenessTest::aThreadHoldsNoMoreLocksThanTheKernelLooksAt()
{
    LivenessKeeper &keeper = LivenessKeeper::instance();
    constexpr int count = 2 * LivenessKeeper::locksPerThread + 1;
    std::vector<BufferLock> locks(count);
    for (BufferLock &lock : locks) {
        QCOMPARE(initializeSharedLock(lock), 0);
        QCOMPARE(keeper.hold(&lock.mutex), 0);
        QVERIFY(isLockOwnerAlive(lockWord(lock)));
    }
    QCOMPARE(keeper.threadCount(), 3);
    for (BufferLock &lock : locks) {
        QCOMPARE(keeper.release(&lock.mutex), 0);
        QVERIFY(!isLockOwnerAlive(lockWord(lock)));
    }
}

void LivenessTest::aLockThatIsHeldIsNotTakenAgain()
{
    BufferLock lock{};
    QCOMPARE(initializeSharedLock(lock), 0);
    QCOMPARE(pthread_mutex_lock(&lock.mutex), 0);
    QCOMPARE(LivenessKeeper::instance().hold(&lock.mutex), EBUSY);
    QCOMPARE(pthread_mutex_unlock(&lock.mutex), 0);
}

void LivenessTest::aLockThatIsNotHeldIsNotGivenUp()
{
    BufferLock lock{};
    QCOMPARE(initializeSharedLock(lock), 0);
    QCOMPARE(LivenessKeeper::instance().release(&lock.mutex), EPERM);
}

QTEST_GUILESS_MAIN(LivenessTest)
#include "LivenessTest.moc"
