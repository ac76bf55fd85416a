// SPDX-License-Identifier: MIT
// Every difference between a buffer and its description is refused with one warning that names it.
#include "BufferAttachment.h"
#include "BufferChild.h"
#include "BufferLayout.h"
#include "BufferSource.h"
#include "Files.h"
#include "MessageLog.h"
#include "RequireRoot.h"

#include <QtTest>

#include <functional>
#include <grp.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

using Change = std::function<void(BufferSource &)>;

// Puts a changed copy in the buffer's place; the publisher goes on with the original.
void replaceByCopy(const BufferSource &source, const std::function<void(QByteArray &)> &change)
{
    QByteArray content = contentOf(source.file());
    QVERIFY(QFile::remove(source.file()));
    change(content);
    QVERIFY(writeFile(source.file(), content));
}

Change putsNumber(size_t offset, quint32 number)
{
    return [=](BufferSource &source) {
        replaceByCopy(source, [=](QByteArray &content) {
            content.replace(int(offset), 4, reinterpret_cast<const char *>(&number),
                            sizeof(number));
        });
    };
}

Change resizes(int difference)
{
    return [=](BufferSource &source) {
        replaceByCopy(source,
                      [=](QByteArray &content) { content.resize(content.size() + difference); });
    };
}

QString ownName()
{
    const struct passwd *const user = getpwuid(geteuid());
    return user != nullptr ? QString::fromLocal8Bit(user->pw_name) : QString::number(geteuid());
}

// Leaves something else under the buffer's name.
Change replacesFile(const std::function<bool(const QByteArray &path)> &make)
{
    return [=](BufferSource &source) {
        const QByteArray path = source.file().toUtf8();
        QVERIFY(QFile::remove(path));
        QVERIFY(make(path));
    };
}

bool makeSocket(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.cbegin(), path.cend(), address.sun_path);
    const int number = socket(AF_UNIX, SOCK_STREAM, 0);
    const bool made
        = bind(number, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    close(number);
    return made;
}

}

Q_DECLARE_METATYPE(Change)

class BufferAttachTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBufferThatDiffersFromItsDescriptionIsRefused_data();
    void aBufferThatDiffersFromItsDescriptionIsRefused();
    void aLeafOutsideTheBufferIsRefused();
    void anUnchangedBufferIsAttachedSilently();
    void aUserWithoutAccessIsToldWhichGroupHasIt();
    void aUserWithoutAccessIsToldTheGroupsName();
    void aUserWithReadAccessReadsAndIsRefusedWriting();
    void aMemberOfTheGroupReadsAndWrites();
};

void BufferAttachTest::aBufferThatDiffersFromItsDescriptionIsRefused_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("reason");
    const auto describes = [](const char *key, const QJsonValue &value) {
        return Change([=](BufferSource &source) { source.setBuffer(key, value); });
    };
    QTest::newRow("there is none")
        << replacesFile([](const QByteArray &) { return true; })
        << "it does not exist; its publisher has ended or made a new one";
    QTest::newRow("a link") << replacesFile([](const QByteArray &path) {
        return symlink("/dev/zero", path) == 0;
    }) << "it is a symbolic link, not a regular file";
    QTest::newRow("a directory") << replacesFile([](const QByteArray &path) {
        return mkdir(path, 0777) == 0;
    }) << "it is a directory, not a regular file";
    QTest::newRow("a named pipe") << replacesFile([](const QByteArray &path) {
        return mkfifo(path, 0666) == 0;
    }) << "it is not a regular file";
    QTest::newRow("a socket") << replacesFile(makeSocket) << "it is not a regular file";
    const QString owner = "its owner is %1, expected %2";
    if (geteuid() == 0) {
        QTest::newRow("another owner") << Change([](BufferSource &source) {
            replaceByCopy(source, [](QByteArray &) {});
            QCOMPARE(chown(source.file().toUtf8(), 12345, gid_t(-1)), 0);
        }) << owner.arg("12345", "root");
    }
    QTest::newRow("an owner that is not described")
        << describes("ownerUid", 54321) << owner.arg(ownName(), "54321");
    QTest::newRow("a smaller file") << resizes(-64) << "its file size is 256, expected 320";
    QTest::newRow("a larger file") << resizes(64) << "its file size is 384, expected 320";
    QTest::newRow("an empty file") << resizes(-320) << "its file size is 0, expected 320";
    QTest::newRow("another size by its header")
        << putsNumber(offsetof(BufferHeader, bufferSize), 384)
        << "its size by its header is 384, expected 320";
    QTest::newRow("another magic") << putsNumber(0, 0) << "it is not a process-data buffer";
    QTest::newRow("another version") << putsNumber(offsetof(BufferHeader, layoutVersion), 1)
                                     << "its layout has version 1, this process reads version 2: "
                                        "install publisher and client of one release";
    QTest::newRow("another header size") << putsNumber(offsetof(BufferHeader, headerSize), 256)
                                         << "its header size is 256, expected 192";
    QTest::newRow("another number of slots") << putsNumber(offsetof(BufferHeader, slotCount), 3)
                                             << "its number of slots is 3, expected 2";
    const QString foreign
        = "its publisher has %1-bit words and locks of %2 bytes, this process has "
          "%3-bit words and locks of %4 bytes; they cannot share it";
    const bool narrow = sizeof(void *) == 4;
    QTest::newRow("a publisher of another word size")
        << putsNumber(offsetof(BufferHeader, abiTag), narrow ? 0x828 : 0x418)
        << foreign.arg(narrow ? 64 : 32)
               .arg(narrow ? 40 : 24)
               .arg(sizeof(void *) * 8)
               .arg(sizeof(pthread_mutex_t));
    QTest::newRow("another kind of lock") << putsNumber(
        offsetof(BufferHeader, writersLock) + offsetof(pthread_mutex_t, __data.__kind), 1)
                                          << "its lock is not of the kind that this process uses";
}

void BufferAttachTest::aBufferThatDiffersFromItsDescriptionIsRefused()
{
    QFETCH(Change, change);
    QFETCH(QString, reason);
    BufferSource source({leaf("level", "float64"), leaf("count", "int32")});
    QVERIFY2(source.buffer, qPrintable(source.error));
    change(source);
    if (QTest::currentTestFailed()) {
        return;
    }
    const MessageLog warnings;

    const BufferClient client(source.text());

    const QString name = source.description.buffer->name;
    QCOMPARE(
        warnings.texts(),
        QStringList(QString("processdata.memory: Not attached to source %1/Tank/1, buffer %2: %3")
                        .arg(source.description.source.module, name, reason)));
    QVERIFY(!client.manager->isBufferValid());
    const auto leaf = client.leaf(source.url("level"));
    QVERIFY(leaf);
    ProcessValue value(QVariant("untouched"), ProcessDataDefinitions::NoValue);
    QVERIFY(!leaf->getValue(value, false));
    QCOMPARE(value.getValue(), QVariant("untouched"));
    QVERIFY(!leaf->setValue(ProcessValue(QVariant(1.0))));
    rmdir(source.file().toUtf8());
}

void BufferAttachTest::aLeafOutsideTheBufferIsRefused()
{
    const BufferSource source({leaf("level", "float64"), leaf("count", "int32")});
    for (const quint64 offset : {0, 128, 193, 320, 64 * 1024}) {
        ProcessDataDescription description = source.description;
        LeafDescription leaf = description.leaves.last();
        leaf.offset = offset;
        description.leaves.replace(1, leaf);
        QString error;
        QVERIFY(attachBuffer(description, error).isNull());
        QCOMPARE(error, QString("leaf \"count\" at offset %1 lies outside of it").arg(offset));
    }
}

void BufferAttachTest::anUnchangedBufferIsAttachedSilently()
{
    const BufferSource source({leaf("level", "float64")});
    const MessageLog warnings;
    const BufferClient client(source.text());
    QVERIFY(client.manager->isBufferValid());
    QCOMPARE(warnings.texts(), QStringList());
}

void BufferAttachTest::aUserWithoutAccessIsToldWhichGroupHasIt()
{
    REQUIRE_ROOT();
    BufferSource source({leaf("setpoint", "float64")});
    QCOMPARE(chown(source.file().toUtf8(), uid_t(-1), 4321), 0);
    BufferChild reader({"use-as", "12345", "12345"}, QProcess::SeparateChannels);
    reader.tell(source.text());

    QCOMPARE(reader.line(), QString("invalid unreadable refused"));
    QVERIFY(reader.finish());
    const QString errors = QString::fromUtf8(reader.errors());
    QVERIFY2(errors.contains("Permission denied; reading it takes membership in the group 4321 "
                             "(its mode is 660)"),
             qPrintable(errors));
}

void BufferAttachTest::aUserWithoutAccessIsToldTheGroupsName()
{
    REQUIRE_ROOT();
    const struct group *const group = getgrgid(1);
    QVERIFY2(group, "no group with the id 1 here");
    const QString name = QString::fromLocal8Bit(group->gr_name);
    BufferSource source({leaf("setpoint", "float64")});
    QCOMPARE(chown(source.file().toUtf8(), uid_t(-1), 1), 0);
    BufferChild reader({"use-as", "12345", "12345"}, QProcess::SeparateChannels);
    reader.tell(source.text());

    QCOMPARE(reader.line(), QString("invalid unreadable refused"));
    QVERIFY(reader.finish());
    const QString errors = QString::fromUtf8(reader.errors());
    QVERIFY2(errors.contains("takes membership in the group " + name + " (its mode is 660)"),
             qPrintable(errors));
}

void BufferAttachTest::aUserWithReadAccessReadsAndIsRefusedWriting()
{
    REQUIRE_ROOT();
    BufferSource source({leaf("setpoint", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    for (const QString &path : {source.file(), source.life()}) {
        QCOMPARE(chmod(path.toUtf8(), 0644), 0);
    }
    BufferChild reader({"use-as", "12345", "12345"}, QProcess::SeparateChannels);
    reader.tell(source.text());

    QCOMPARE(reader.line(), QString("valid readable refused"));
    QVERIFY(reader.finish());
    const QString errors = QString::fromUtf8(reader.errors());
    QVERIFY2(errors.contains("Leaf setpoint was not written: this process may not write to buffer "
                             + source.description.buffer->name),
             qPrintable(errors));
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(1.0));
}

void BufferAttachTest::aMemberOfTheGroupReadsAndWrites()
{
    REQUIRE_ROOT();
    BufferSource source({leaf("setpoint", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    for (const QString &path : {source.file(), source.life()}) {
        QCOMPARE(chown(path.toUtf8(), uid_t(-1), 4321), 0);
    }
    BufferChild writer({"use-as", "12345", "4321"});
    writer.tell(source.text());

    QCOMPARE(writer.line(), QString("valid readable written"));
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(44.0));
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>({0}));
}

QTEST_GUILESS_MAIN(BufferAttachTest)
#include "BufferAttachTest.moc"
