// SPDX-License-Identifier: MIT
// Tools list the buffers in shared memory and remove only what is proved to be left over.
#include "BufferFiles.h"
#include "BufferChild.h"
#include "BufferName.h"
#include "BufferSource.h"
#include "Files.h"
#include "LifeRecord.h"
#include "RequireRoot.h"

#include <QFile>
#include <QtTest>

#include <sys/stat.h>

namespace {

// The file of a module; the state NoBuffer and no path when there is not exactly one.
BufferFile fileOf(const QString &module)
{
    QVector<BufferFile> files;
    QString error;
    BufferFile result;
    int count = 0;
    if (listBufferFiles(files, error)) {
        for (const BufferFile &file : files) {
            if (isNamedAfter(file, module)) {
                result = file;
                ++count;
            }
        }
    }
    return count == 1 ? result : BufferFile();
}

}

class BufferFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { module = uniqueModule(); }
    void cleanup();
    void aLiveBufferIsListedAndNeverRemoved();
    void aStoppedPublisherIsAlive();
    void theBufferOfAKilledPublisherIsProvedDeadAndRemoved();
    void aRetiredBufferIsALeftover();
    void aBufferThatCameBackToLifeIsKept();
    void anotherFileUnderTheSameNameIsKept();
    void whatSomebodyElseRemovedIsGone();
    void whatIsNoBufferIsToldAndKept_data();
    void whatIsNoBufferIsToldAndKept();
    void aBufferOfAnotherLayoutIsKept();
    void aBufferThatMayNotBeReadOrRemovedIsTold();
    void modulesAreToldApartByName_data();
    void modulesAreToldApartByName();

private:
    QString module;
};

void BufferFilesTest::cleanup()
{
    removeLeftBuffers(module);
}

void BufferFilesTest::aLiveBufferIsListedAndNeverRemoved()
{
    const BufferSource source({leaf("level", "float64")}, module);
    const BufferFile file = fileOf(module);

    QCOMPARE(file.path, source.file());
    QCOMPARE(file.state, BufferFile::Live);
    QCOMPARE(file.generation, source.description.buffer->generation);
    QCOMPARE(file.size, source.description.buffer->size);
    QCOMPARE(file.ownerUid, quint32(geteuid()));
    QCOMPARE(file.mode, quint32(0660));
    QCOMPARE(file.layoutVersion, ownBufferLayoutVersion());
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    QVERIFY(!error.isEmpty());
    QVERIFY(QFile::exists(file.path));
}

void BufferFilesTest::aStoppedPublisherIsAlive()
{
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.suspend();
    const BufferFile file = fileOf(module);
    QCOMPARE(file.state, BufferFile::Live);
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    QVERIFY(QFile::exists(file.path));
}

void BufferFilesTest::theBufferOfAKilledPublisherIsProvedDeadAndRemoved()
{
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.kill();

    const BufferFile file = fileOf(module);
    QCOMPARE(file.state, BufferFile::Dead);
    QVERIFY(file.isLeftOver() && mayRemove(file));
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Removed);
    QCOMPARE(error, QString());
    QCOMPARE(buffersOf(module), QStringList());
}

void BufferFilesTest::aRetiredBufferIsALeftover()
{
    const BufferSource source({leaf("level", "float64")}, module);
    const quint32 retired = BufferRetired;
    QVERIFY(overwrite(source.life(), offsetof(LifeRecord, state),
                      QByteArray(reinterpret_cast<const char *>(&retired), sizeof(retired))));
    const BufferFile file = fileOf(module);
    QCOMPARE(file.state, BufferFile::Retired);
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Removed);
}

void BufferFilesTest::aBufferThatCameBackToLifeIsKept()
{
    const BufferSource source({leaf("level", "float64")}, module);
    BufferFile believedDead = fileOf(module);
    believedDead.state = BufferFile::Dead;
    QString error;
    QCOMPARE(removeLeftover(believedDead, error), BufferRemoval::Kept);
    QVERIFY(QFile::exists(source.file()));
}

void BufferFilesTest::anotherFileUnderTheSameNameIsKept()
{
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.kill();
    const BufferFile file = fileOf(module);
    const QString copy = file.path + "0"; // beside it, so that it cannot get the same inode
    QVERIFY(QFile::copy(file.path, copy));
    QVERIFY(QFile::remove(file.path) && QFile::rename(copy, file.path));

    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    QVERIFY2(error.contains("another file"), qPrintable(error));
    QVERIFY(QFile::exists(file.path));
}

void BufferFilesTest::whatSomebodyElseRemovedIsGone()
{
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.kill();
    const BufferFile file = fileOf(module);
    QVERIFY(QFile::remove(file.path));
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Gone);
    BufferFile again;
    QVERIFY(!inspectBufferFile(file.path, again));
}

void BufferFilesTest::whatIsNoBufferIsToldAndKept_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("problem");
    QTest::newRow("empty") << QByteArray("") << "its 0 bytes are fewer than a buffer's header has";
    QTest::newRow("one byte short")
        << QByteArray(191, 'x') << "its 191 bytes are fewer than a buffer's header has";
    QTest::newRow("other content") << QByteArray(192, 'x') << "it does not begin like a buffer";
    QTest::newRow("a named pipe") << QByteArray() << "it is not a regular file";
}

void BufferFilesTest::whatIsNoBufferIsToldAndKept()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, problem);
    const QString path
        = "/dev/shm/" + QString::fromLatin1(bufferNamePrefix({module, "Tank", "1"})) + '7';
    if (content.isNull()) {
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    } else {
        QVERIFY(writeFile(path, content));
    }
    const BufferFile file = fileOf(module);
    QCOMPARE(file.path, path);
    QCOMPARE(file.state, BufferFile::NoBuffer);
    QCOMPARE(file.problem, problem);
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    QCOMPARE(buffersOf(module).size(), 1);
}

void BufferFilesTest::aBufferOfAnotherLayoutIsKept()
{
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.kill();
    const QString path = fileOf(module).path;
    QVERIFY(overwrite(path, offsetof(BufferHeader, layoutVersion), "\x07"));
    QVERIFY(QFile::remove(path + ".life"));
    const BufferFile file = fileOf(module);
    QCOMPARE(file.state, BufferFile::OtherLayout);
    QCOMPARE(file.layoutVersion, 7U);
    QString error;
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    QVERIFY(QFile::exists(file.path));
}

// In a child, which gives its power away for good.
void BufferFilesTest::aBufferThatMayNotBeReadOrRemovedIsTold()
{
    REQUIRE_ROOT();
    BufferChild publisher({"publish", module});
    QVERIFY(!publisher.line().isEmpty());
    publisher.kill();
    BufferChild stranger({"remove-as", "65534", fileOf(module).path});
    QCOMPARE(stranger.line(), QString("unreadable not-removable kept"));
    for (const QString &path : {fileOf(module).path, fileOf(module).path + ".life"}) {
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadOther));
    }
    BufferChild reader({"remove-as", "65534", fileOf(module).path});
    QCOMPARE(reader.line(), QString("dead not-removable denied"));
    QVERIFY(QFile::exists(fileOf(module).path));
}

void BufferFilesTest::modulesAreToldApartByName_data()
{
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("same");
    QTest::newRow("itself") << QString("Pump") << true;
    QTest::newRow("a shorter one") << QString("Pum") << false;
    QTest::newRow("a longer one") << QString("Pumps") << false;
    QTest::newRow("none") << QString() << false;
}

void BufferFilesTest::modulesAreToldApartByName()
{
    QFETCH(QString, other);
    QFETCH(bool, same);
    for (const QString &object : {QString("Controller"), QString(300, 'a')}) {
        BufferFile file;
        file.path
            = "/dev/shm/" + QString::fromLatin1(bufferNamePrefix({"Pump", object, "1"})) + '7';
        QCOMPARE(isNamedAfter(file, other), same);
    }
    BufferFile file;
    const QString lengthy(300, 'b');
    file.path = "/dev/shm/" + QString::fromLatin1(bufferNamePrefix({lengthy, "a", "1"})) + '7';
    QVERIFY(isNamedAfter(file, lengthy));
}

QTEST_GUILESS_MAIN(BufferFilesTest)
#include "BufferFilesTest.moc"
