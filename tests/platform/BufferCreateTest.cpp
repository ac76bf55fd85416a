// SPDX-License-Identifier: MIT
// Making and giving up a publisher's buffer, and what is removed on the way.
#include "BufferChild.h"
#include "BufferLayout.h"
#include "BufferName.h"
#include "BufferSource.h"
#include "RequireRoot.h"
#include "SharedLock.h"

#include <QFileInfo>
#include <QtTest>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {

constexpr uid_t otherUser = 12345;

QJsonArray twoLeaves()
{
    return {leafJson("level", "float64", {{"readOnly", true}}),
            leafJson("name", "string", {{"capacity", 100}})};
}

mode_t modeOf(const QString &file)
{
    struct stat status
    {
    };
    return stat(file.toUtf8(), &status) == 0 ? status.st_mode & 07777U : 0;
}

bool makeFile(const QString &name, const QByteArray &content, uid_t owner = geteuid())
{
    QFile file("/dev/shm/" + name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
        && fchown(file.handle(), owner, gid_t(-1)) == 0;
}

}

class BufferCreateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aBufferIsAsDescribed();
    void everySlotStartsOnALineOfItsOwn();
    void aBufferWithoutLeavesIsAHeader();
    void onlyAWritableLeafLetsTheGroupWrite();
    void everyBufferHasAHigherGeneration();
    void theNameOfASquatterCostsTheNextNumber();
    void retiringRemovesTheName();
    void aLeftoverOfADeadPublisherIsRemoved();
    void aLivingPublisherKeepsItsBuffer();
    void filesThatAreNotProvedDeadStay();
    void aFullFileSystemIsAnErrorThatLeavesNothing();

private:
    QString module;
};

void BufferCreateTest::init()
{
    module = BufferSource::uniqueModule();
}

void BufferCreateTest::cleanup()
{
    const QStringList files = filesOf(module);
    for (const QString &file : files) {
        QFile::remove("/dev/shm/" + file);
    }
    QCOMPARE(files, QStringList()); // each test leaves nothing behind
}

void BufferCreateTest::aBufferIsAsDescribed()
{
    const BufferSource source(twoLeaves(), module);
    QVERIFY2(source.buffer, qPrintable(source.error));

    const BufferDescription &described = *source.description.buffer;
    QCOMPARE(filesOf(module), QStringList(described.name.mid(1)));
    QCOMPARE(described.name,
             QString("/processdata.%1_Tank_1.%2").arg(module).arg(described.generation));
    QCOMPARE(described.ownerUid, quint32(geteuid()));
    QCOMPARE(described.size, quint64(QFileInfo(source.file()).size()));
    QFile file(source.file());
    QVERIFY(file.open(QIODevice::ReadOnly));
    BufferHeader header{};
    QCOMPARE(file.read(reinterpret_cast<char *>(&header), sizeof(header)), qint64(sizeof(header)));
    QCOMPARE(QByteArray(header.magic, 8), QByteArray("PDBUFFER"));
    QCOMPARE(header.layoutVersion, 1U);
    QCOMPARE(header.headerSize, 192U);
    QCOMPARE(header.bufferSize, described.size);
    QCOMPARE(header.generation, described.generation);
    QCOMPARE(header.slotCount, 2U);
    QVERIFY(isSharedLock(header.livenessLock));
    QVERIFY(isSharedLock(header.writersLock));
    QVERIFY(isBufferLive(header));
    QCOMPARE(lockWord(header.writersLock), 0U);
}

void BufferCreateTest::everySlotStartsOnALineOfItsOwn()
{
    const BufferSource source(twoLeaves(), module);
    QCOMPARE(source.description.leaves.at(0).offset, quint64(192));
    QCOMPARE(source.description.leaves.at(1).offset, quint64(256));
    QCOMPARE(source.description.buffer->size, quint64(256 + 256)); // 8 + 2 * (16 + 104), rounded up
}

void BufferCreateTest::aBufferWithoutLeavesIsAHeader()
{
    ProcessDataDescription description;
    description.module = module;
    QString error;
    const auto buffer = PublishedBuffer::create(description, error);
    QVERIFY2(buffer, qPrintable(error));
    QCOMPARE(description.buffer->size, quint64(sizeof(BufferHeader)));
}

void BufferCreateTest::onlyAWritableLeafLetsTheGroupWrite()
{
    const mode_t before = umask(0777); // must not matter
    const BufferSource writable(twoLeaves(), module, "1");
    const BufferSource readOnly({twoLeaves().at(0)}, module, "2");
    umask(before);
    QCOMPARE(modeOf(writable.file()), mode_t(0660));
    QCOMPARE(modeOf(readOnly.file()), mode_t(0640));
}

void BufferCreateTest::everyBufferHasAHigherGeneration()
{
    const BufferSource first(twoLeaves(), module);
    const BufferSource second(twoLeaves(), module);
    QVERIFY(second.description.buffer->generation > first.description.buffer->generation);
    QCOMPARE(filesOf(module).size(), 2);

    // Also when the clock seems to have been set back.
    const quint64 late = second.description.buffer->generation + 1'000'000'000'000;
    const QString file = QString("processdata.%1_Tank_1.%2").arg(module).arg(late);
    QVERIFY(makeFile(file, "not a buffer"));
    const BufferSource third(twoLeaves(), module);
    QFile::remove("/dev/shm/" + file);
    QCOMPARE(third.description.buffer->generation, late + 1);
}

void BufferCreateTest::theNameOfASquatterCostsTheNextNumber()
{
    REQUIRE_ROOT();
    const quint64 late = 1'000'000'000'000'000;
    const QString name = "processdata." + module + "_Tank_1.%1";
    QVERIFY(makeFile(name.arg(late), "ours"));
    QVERIFY(makeFile(name.arg(late + 1), "a squatter's", otherUser));
    QVERIFY(makeFile(name.arg(maximumGeneration), "a squatter's", otherUser));

    const BufferSource source(twoLeaves(), module);

    QVERIFY2(source.buffer, qPrintable(source.error));
    QCOMPARE(source.description.buffer->generation, late + 2);
    QCOMPARE(filesOf(module).size(), 4); // what is not a dead buffer of ours stays
    for (const quint64 generation : {late, late + 1, maximumGeneration}) {
        QVERIFY(QFile::remove("/dev/shm/" + name.arg(generation)));
    }
}

void BufferCreateTest::retiringRemovesTheName()
{
    BufferSource source(twoLeaves(), module);
    QVERIFY(source.publish(0, ProcessValue(QVariant(2.5))));

    source.buffer->retire();
    source.buffer->retire();

    QCOMPARE(filesOf(module), QStringList());
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(2.5));
    QVERIFY(!source.publish(0, ProcessValue(QVariant(3.5))));
    QCOMPARE(source.error, "buffer " + source.description.buffer->name + " is retired");
}

void BufferCreateTest::aLeftoverOfADeadPublisherIsRemoved()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    publisher.kill();
    const QStringList left = filesOf(module);
    QCOMPARE(left.size(), 1);

    const BufferSource source(twoLeaves(), module);

    QCOMPARE(filesOf(module), QStringList(source.description.buffer->name.mid(1)));
    QVERIFY(left != filesOf(module));
}

void BufferCreateTest::aLivingPublisherKeepsItsBuffer()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    const QStringList others = filesOf(module);
    {
        const BufferSource source(twoLeaves(), module);
        QCOMPARE(filesOf(module).size(), 2);
    }
    QCOMPARE(filesOf(module), others);
    QVERIFY(publisher.finish());
}

void BufferCreateTest::filesThatAreNotProvedDeadStay()
{
    REQUIRE_ROOT();
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    publisher.kill();
    QFile left("/dev/shm/" + filesOf(module).value(0));
    QVERIFY(left.open(QIODevice::ReadOnly));
    const QByteArray dead = left.readAll();
    left.remove();
    const QString name = "processdata." + module + "_Tank_";
    QVERIFY(makeFile(name + "1.5", dead)); // this one is
    QVERIFY(makeFile(name + "1.6", dead, otherUser));
    QVERIFY(makeFile(name + "1.7", dead.left(191)));
    QVERIFY(makeFile(name + "1.8", QByteArray(dead).replace(0, 1, "X")));
    QVERIFY(makeFile(name + "1.x", dead));
    QVERIFY(makeFile(name + "11.5", dead));
    QVERIFY(QFile::link("/dev/shm/" + name + "11.5", "/dev/shm/" + name + "1.9"));
    const QString directory = "/dev/shm/" + name + "1.1000000000000000";
    QVERIFY(QDir().mkdir(directory));
    {
        const BufferSource source(twoLeaves(), module);
        QVERIFY2(source.buffer, qPrintable(source.error));
        QVERIFY(source.description.buffer->generation < 1000000000000000);
    }
    QVERIFY(QDir().rmdir(directory));
    QCOMPARE(filesOf(module),
             QStringList({name + "1.6", name + "1.7", name + "1.8", name + "1.9", name + "1.x",
                          name + "11.5"}));
    for (const QString &file : filesOf(module)) {
        QFile::remove("/dev/shm/" + file);
    }
}

void BufferCreateTest::aFullFileSystemIsAnErrorThatLeavesNothing()
{
    struct statvfs system
    {
    };
    QCOMPARE(statvfs("/dev/shm", &system), 0);
    constexpr quint32 capacity = 4'000'000'000;
    const quint64 total = quint64(system.f_blocks) * system.f_frsize;
    ProcessDataDescription description;
    description.module = module;
    LeafDescription leaf;
    leaf.type = ValueType::Bytes;
    leaf.capacity = capacity;
    description.leaves.fill(leaf, int(total / capacity + 1));
    QString error;

    QVERIFY(!PublishedBuffer::create(description, error));

    if (sizeof(void *)
        == 4) { // it would not fit into the address space either, which is seen first
        QCOMPARE(error, QString("the buffer is too large from leaf \"\" on"));
    } else {
        QVERIFY2(error.startsWith("getting ")
                     && error.endsWith(" bytes in /dev/shm failed: No space left on device"),
                 qPrintable(error));
    }
    QVERIFY(!description.buffer.has_value());
    QCOMPARE(description.leaves.at(0).offset, quint64(0));
    QCOMPARE(filesOf(module), QStringList());
}

QTEST_GUILESS_MAIN(BufferCreateTest)
#include "BufferCreateTest.moc"
