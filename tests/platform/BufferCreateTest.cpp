// SPDX-License-Identifier: MIT
// Making and giving up a publisher's buffer, and what is removed on the way.
#include "BufferChild.h"
#include "BufferLayout.h"
#include "BufferName.h"
#include "BufferSource.h"
#include "Files.h"
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
    return {leaf("level", "float64", {{"readOnly", true}}),
            leaf("name", "string", {{"capacity", 100}})};
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
    module = uniqueModule();
}

void BufferCreateTest::cleanup()
{
    const QStringList files = buffersOf(module);
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
    QCOMPARE(buffersOf(module), QStringList(described.name.mid(1)));
    QCOMPARE(described.name,
             QString("/processdata.%1_Tank_1.%2").arg(module).arg(described.generation));
    QCOMPARE(described.ownerUid, quint32(geteuid()));
    QCOMPARE(described.size, quint64(QFileInfo(source.file()).size()));
    QFile file(source.file());
    QVERIFY(file.open(QIODevice::ReadOnly));
    BufferHeader header{};
    QCOMPARE(file.read(reinterpret_cast<char *>(&header), sizeof(header)), qint64(sizeof(header)));
    QCOMPARE(QByteArray(header.magic, 8), QByteArray("PDBUFFER"));
    QCOMPARE(header.layoutVersion, 2U);
    QCOMPARE(header.headerSize, 192U);
    QCOMPARE(header.bufferSize, described.size);
    QCOMPARE(header.generation, described.generation);
    QCOMPARE(header.slotCount, 2U);
    QVERIFY(isSharedLock(header.writersLock));
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
    description.source.module = module;
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
    QCOMPARE(buffersOf(module).size(), 2);
}

void BufferCreateTest::retiringRemovesTheName()
{
    BufferSource source(twoLeaves(), module);
    QVERIFY(source.publish(0, ProcessValue(QVariant(2.5))));

    source.buffer->retire();
    source.buffer->retire();

    QCOMPARE(buffersOf(module), QStringList());
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(2.5));
    QVERIFY(!source.publish(0, ProcessValue(QVariant(3.5))));
    QCOMPARE(source.error, "buffer " + source.description.buffer->name + " is retired");
}

void BufferCreateTest::aLeftoverOfADeadPublisherIsRemoved()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    publisher.kill();
    const QStringList left = buffersOf(module);
    QCOMPARE(left.size(), 1);

    const BufferSource source(twoLeaves(), module);

    QCOMPARE(buffersOf(module), QStringList(source.description.buffer->name.mid(1)));
    QVERIFY(left != buffersOf(module));
}

void BufferCreateTest::aLivingPublisherKeepsItsBuffer()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    const QStringList others = buffersOf(module);
    {
        const BufferSource source(twoLeaves(), module);
        QCOMPARE(buffersOf(module).size(), 2);
    }
    QCOMPARE(buffersOf(module), others);
    QVERIFY(publisher.finish());
}

void BufferCreateTest::filesThatAreNotProvedDeadStay()
{
    REQUIRE_ROOT();
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    publisher.kill();
    const QString dead = bufferFile(module);
    const QByteArray record = contentOf(dead + ".life");
    const QString name = "processdata." + module + "_Tank_";
    QVERIFY(makeFile(name + "1.5", "a buffer without a record"));
    QVERIFY(makeFile(name + "1.6", "", otherUser));
    QVERIFY(makeFile(name + "1.6.life", record, otherUser));
    QVERIFY(makeFile(name + "1.7.life", record.left(383)));
    QVERIFY(makeFile(name + "1.8.life", QByteArray(record).replace(0, 1, "X")));
    QVERIFY(makeFile(name + "1.9.life", record)); // of another buffer
    QVERIFY(makeFile(name + "1.x", record));
    QVERIFY(QFile::link(dead + ".life", "/dev/shm/" + name + "1.10.life"));
    QVERIFY(QDir().mkdir("/dev/shm/" + name + "1.11.life"));
    {
        const BufferSource source(twoLeaves(), module);
        QVERIFY2(source.buffer, qPrintable(source.error));
        QVERIFY(!QFile::exists(dead) && !QFile::exists(dead + ".life"));
    }
    QVERIFY(QDir().rmdir("/dev/shm/" + name + "1.11.life"));
    QCOMPARE(buffersOf(module),
             QStringList({name + "1.10.life", name + "1.5", name + "1.6", name + "1.7.life",
                          name + "1.8.life", name + "1.9.life", name + "1.x"}));
    removeLeftBuffers(module);
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
    description.source.module = module;
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
    QCOMPARE(buffersOf(module), QStringList());
}

QTEST_GUILESS_MAIN(BufferCreateTest)
#include "BufferCreateTest.moc"
