// SPDX-License-Identifier: MIT
// Whoever may write values can neither end a publisher's life nor make anybody believe that.
#include "BufferAttachment.h"
#include "BufferChild.h"
#include "BufferFiles.h"
#include "BufferSource.h"
#include "Files.h"
#include "LifeRecord.h"
#include "MessageLog.h"
#include "OtherUser.h"
#include "RequireRoot.h"
#include "SourceWatch.h"

#include <QScopeGuard>
#include <QtTest>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

using Change = std::function<bool(const BufferSource &)>;

template <typename Number> QByteArray bytesOf(Number number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof(number));
}

Change puts(size_t offset, const QByteArray &bytes)
{
    return
        [=](const BufferSource &source) { return overwrite(source.life(), qint64(offset), bytes); };
}

bool givesSecondName(const QString &path)
{
    return link(path.toUtf8(), (path + "0").toUtf8()) == 0;
}

// Whether a member of the group could open a file for writing; in a child, which gives its power
// away for good.
bool groupMayWrite(const QString &path, gid_t group)
{
    constexpr uid_t other = 12345;
    const pid_t child = fork();
    if (child == 0) {
        const bool dropped = becomeUser(QString("%1:%2").arg(other).arg(group));
        const bool opened = open(path.toUtf8().constData(), O_RDWR | O_CLOEXEC) != -1;
        _exit(dropped && !opened && errno == EACCES ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0;
}

}

Q_DECLARE_METATYPE(Change)

class BufferLifeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { module = uniqueModule(); }
    void cleanup() { removeLeftBuffers(module); }
    void theRecordIsNotForTheGroupToWrite();
    void aWriterCannotMakeAPublisherLookDead();
    void aWriterCannotHaveALivingPublishersBufferRemoved();
    void aRecordThatCannotBeBelievedIsRefused_data();
    void aRecordThatCannotBeBelievedIsRefused();
    void aBufferWithASecondNameIsRefused();
    void aBufferUnderAnotherSourcesNameIsRefused();
    void aBufferCutToNothingIsRemovedOnceItsPublisherIsDead();
    void aBufferCutToNothingIsRemovedByTheNextPublisher();
    void aRecordWithoutItsBufferIsALeftover();
    void aPublisherSurvivesThatItsBufferIsCutShort();
    void eachAnnouncedChangeHasARevisionOfItsOwn();
    void aReadOfAnotherRevisionThanTheDescriptionsIsReported_data();
    void aReadOfAnotherRevisionThanTheDescriptionsIsReported();

private:
    QString module;
};

void BufferLifeTest::theRecordIsNotForTheGroupToWrite()
{
    const BufferSource source({leaf("setpoint", "float64")}, module);
    struct stat status
    {
    };
    QCOMPARE(stat(source.life().toUtf8(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, mode_t(0640));
    REQUIRE_ROOT();
    constexpr gid_t group = 4321;
    for (const QString &path : {source.file(), source.life()}) {
        QCOMPARE(chown(path.toUtf8(), uid_t(-1), group), 0);
    }
    QVERIFY(groupMayWrite(source.file(), group));
    QVERIFY(!groupMayWrite(source.life(), group));
}

void BufferLifeTest::aWriterCannotMakeAPublisherLookDead()
{
    BufferSource source({leaf("setpoint", "float64")}, module);
    QVERIFY(source.publish(0, ProcessValue(QVariant(2.5))));
    const BufferClient client(source.text());
    for (const char byte : {'\0', '\x40', '\xff'}) {
        QVERIFY(overwrite(source.file(), 0, QByteArray(sizeof(BufferHeader), byte)));

        QVERIFY(client.manager->isBufferValid());
        const ProcessValue value = readLeaf(client.leaf(source.url("setpoint")));
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::NoError);
        QCOMPARE(value.getValue(), QVariant(2.5));
    }
}

void BufferLifeTest::aWriterCannotHaveALivingPublishersBufferRemoved()
{
    const BufferSource source({leaf("setpoint", "float64")}, module);
    BufferFile file;
    QString error;
    for (const char byte : {'\0', '\x40', '\xff'}) {
        QVERIFY(overwrite(source.file(), 0, QByteArray(sizeof(BufferHeader), byte)));
        QVERIFY(inspectBufferFile(source.file(), file));
        QCOMPARE(file.state, BufferFile::Live);
        QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    }
    QCOMPARE(truncate(source.file().toUtf8(), 0), 0);
    QVERIFY(inspectBufferFile(source.file(), file));
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    const BufferSource next({leaf("setpoint", "float64")}, module);
    QVERIFY(QFile::exists(source.file()) && QFile::exists(source.life()));
}

void BufferLifeTest::aRecordThatCannotBeBelievedIsRefused_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("reason");
    QTest::newRow("none") << Change([](const BufferSource &s) { return QFile::remove(s.life()); })
                          << "it does not exist; its publisher has ended or made a new one";
    QTest::newRow("a link") << Change([](const BufferSource &source) {
        return QFile::rename(source.life(), source.file() + "0.life")
            && QFile::link(source.file() + "0.life", source.life());
    }) << "it is a symbolic link, not a regular file";
    QTest::newRow("two names") << Change([](const BufferSource &source) {
        return givesSecondName(source.life());
    }) << "its number of names (hard links) is 2, expected 1";
    if (geteuid() == 0) {
        QTest::newRow("a stranger's") << Change([](const BufferSource &source) {
            return chown(source.life().toUtf8(), 12345, gid_t(-1)) == 0;
        }) << "its owner is 12345, expected root";
    }
    QTest::newRow("cut short") << Change([](const BufferSource &source) {
        return truncate(source.life().toUtf8(), 383) == 0;
    }) << "its 383 bytes are fewer than it must have";
    QTest::newRow("another magic") << puts(0, "x") << "it does not begin like one";
    QTest::newRow("another version")
        << puts(offsetof(LifeRecord, layoutVersion), bytesOf(quint32(1)))
        << "its layout has version 1, this process reads version 2: install publisher and client of "
           "one release";
    QTest::newRow("another size") << puts(offsetof(LifeRecord, recordSize), bytesOf(quint32(385)))
                                  << "its size by its content is 385, expected 384";
    QTest::newRow("another generation")
        << puts(offsetof(LifeRecord, generation), bytesOf(quint64(7)))
        << "its generation is 7, expected GENERATION";
    QTest::newRow("another buffer's")
        << puts(offsetof(LifeRecord, bufferName), QByteArray("other\0", 6))
        << "it belongs to other";
    QTest::newRow("an unknown state")
        << puts(offsetof(LifeRecord, state), bytesOf(quint32(4))) << "its state is 4";
}

void BufferLifeTest::aRecordThatCannotBeBelievedIsRefused()
{
    QFETCH(Change, change);
    QFETCH(QString, reason);
    const BufferSource source({leaf("level", "float64")}, module);
    QVERIFY(change(source));
    QString error;

    QVERIFY(attachBuffer(source.description, error).isNull());

    reason.replace("GENERATION", QString::number(source.description.buffer->generation));
    QCOMPARE(error,
             QString("the record of its publisher's life, %1, cannot be used: %2")
                 .arg(source.life(), reason));
    BufferFile file;
    QVERIFY(inspectBufferFile(source.file(), file));
    QCOMPARE(file.state, BufferFile::NoBuffer); // nothing tells that somebody publishes in it
    QVERIFY2(file.problem.endsWith(reason), qPrintable(file.problem));
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
}

void BufferLifeTest::aBufferWithASecondNameIsRefused()
{
    const BufferSource source({leaf("level", "float64")}, module);
    QVERIFY(givesSecondName(source.file()));
    QString error;

    QVERIFY(attachBuffer(source.description, error).isNull());

    QCOMPARE(error, QString("its number of names (hard links) is 2, expected 1"));
    BufferFile second;
    QVERIFY(inspectBufferFile(source.file() + "0", second));
    QCOMPARE(second.state, BufferFile::NoBuffer);
    QCOMPARE(second.problem, error);
    QCOMPARE(removeLeftover(second, error), BufferRemoval::Kept);
}

void BufferLifeTest::aBufferUnderAnotherSourcesNameIsRefused()
{
    BufferSource source({leaf("level", "float64")}, module);
    ProcessDataDescription other = source.description;
    QString error;
    other.buffer->generation += 1;
    QVERIFY(attachBuffer(other, error).isNull());
    QCOMPARE(
        error,
        QString("its name is not that of a buffer of generation %1").arg(other.buffer->generation));
    other = source.description;
    other.source.instance = "2";

    // A link to a buffer, whose own name went with its publisher.
    const QString linked = source.file().replace("_Tank_1.", "_Tank_2.");
    QCOMPARE(link(source.file().toUtf8(), linked.toUtf8()), 0);
    source.buffer.reset();
    other.buffer->name.replace("_Tank_1.", "_Tank_2.");
    QVERIFY(attachBuffer(other, error).isNull());
    QVERIFY2(error.startsWith("the record of its publisher's life, " + linked), qPrintable(error));
    const BufferSource next({leaf("level", "float64")}, module, "2");
    QVERIFY(QFile::exists(linked)); // not ours to judge
}

void BufferLifeTest::aBufferCutToNothingIsRemovedOnceItsPublisherIsDead()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    const QString path = bufferFile(module);
    QCOMPARE(truncate(path.toUtf8(), 0), 0);
    publisher.kill();
    BufferFile file;
    QString error;
    QVERIFY(inspectBufferFile(path, file));
    QCOMPARE(file.state, BufferFile::Dead);
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Removed);
    QCOMPARE(buffersOf(module), QStringList());
}

void BufferLifeTest::aBufferCutToNothingIsRemovedByTheNextPublisher()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    QCOMPARE(truncate(bufferFile(module).toUtf8(), 0), 0);
    publisher.kill();

    const BufferSource next({leaf("level", "float64")}, module);

    QCOMPARE(buffersOf(module), QStringList(next.description.buffer->name.mid(1)));
}

void BufferLifeTest::aRecordWithoutItsBufferIsALeftover()
{
    BufferChild publisher({"publish", module});
    QVERIFY(publisher.line().startsWith('{'));
    const QString path = bufferFile(module);
    QVERIFY(QFile::remove(path));
    BufferFile file;
    QString error;
    QVERIFY(inspectBufferFile(path + ".life", file));
    QCOMPARE(file.state, BufferFile::Live);
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Kept);
    publisher.kill();
    QVERIFY(inspectBufferFile(path + ".life", file));
    QCOMPARE(file.state, BufferFile::Dead);
    QCOMPARE(removeLeftover(file, error), BufferRemoval::Removed);
    QCOMPARE(buffersOf(module), QStringList());
}

void BufferLifeTest::aPublisherSurvivesThatItsBufferIsCutShort()
{
    BufferSource source({leaf("level", "float64")}, module);
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    QCOMPARE(truncate(source.file().toUtf8(), 0), 0);

    QVERIFY(!source.publish(0, ProcessValue(QVariant(2.0))));

    QCOMPARE(source.error,
             QString("buffer %1 was cut short by another process that may write it; "
                     "replaceDescription makes a new one")
                 .arg(source.description.buffer->name));
    BufferSource next({leaf("level", "float64")}, module);
    QVERIFY(next.publish(0, ProcessValue(QVariant(2.0))));
    source.buffer.reset();
    QCOMPARE(buffersOf(module), QStringList(next.description.buffer->name.mid(1)));
}

void BufferLifeTest::eachAnnouncedChangeHasARevisionOfItsOwn()
{
    const BufferSource source({leaf("level", "float64")}, module);
    QString error;
    const auto memory = attachBuffer(source.description, error);
    QVERIFY2(memory, qPrintable(error));
    QCOMPARE(bufferRevision(memory->life()), 0U);
    source.buffer->countChange();
    QCOMPARE(bufferRevision(memory->life()), 1U);
    source.buffer->countChange();
    QCOMPARE(bufferRevision(memory->life()), 2U);
    source.buffer->retire();
    source.buffer->countChange();
    QCOMPARE(bufferRevision(memory->life()), 2U);
}

void BufferLifeTest::aReadOfAnotherRevisionThanTheDescriptionsIsReported_data()
{
    QTest::addColumn<QJsonObject>("level");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("the type that is read straight through")
        << leaf("level", "float64") << QVariant(7.0);
    QTest::newRow("another number") << leaf("level", "int32") << QVariant(7);
    QTest::newRow("a text") << leaf("level", "string", {{"capacity", 8}}) << QVariant("7");
}

void BufferLifeTest::aReadOfAnotherRevisionThanTheDescriptionsIsReported()
{
    QFETCH(const QJsonObject, level);
    QFETCH(const QVariant, value);
    static int reports = 0;
    reports = 0;
    SourceWatch::setHandler([](const QSharedPointer<SourceWatch> &) { ++reports; });
    const auto reset = qScopeGuard([] { SourceWatch::setHandler(nullptr); });
    BufferSource source({level}, module);
    QVERIFY(source.publish(0, ProcessValue(value)));
    source.setBuffer("revision", 1);
    const BufferClient early(source.text());
    const auto earlyLeaf = early.leaf(source.url("level"));
    QCOMPARE(readLeaf(earlyLeaf).getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(reports, 1); // attached before the change that its description tells of

    source.buffer->countChange();
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("level"));
    readLeaf(leaf);
    QCOMPARE(reports, 1);

    source.buffer->countChange();
    QCOMPARE(readLeaf(leaf).getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(reports, 2);
}

QTEST_GUILESS_MAIN(BufferLifeTest)
#include "BufferLifeTest.moc"
