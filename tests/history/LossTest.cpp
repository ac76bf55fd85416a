// SPDX-License-Identifier: MIT
// A full disk and a lost file: the writer goes on, and what is missing is what its events say.
#include "ChildProcess.h"
#include "HistorySupport.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

using namespace HistorySupport;

class LossTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aFullDiskCostsTheOldestAndIsRecordedWhenThereIsSpace();
    void aRemovedFileIsMadeAnew();
    void aFileThatCannotBeWrittenKeepsSamplesWaiting();
    void aReaderFollowsToANewFile();

private:
    void removeFile()
    {
        for (const char *end : {"", "-wal", "-shm"}) {
            QFile::remove(file + end);
        }
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString file;
};

void LossTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    file = folder->filePath("h.db");
}

void LossTest::aFullDiskCostsTheOldestAndIsRecordedWhenThereIsSpace()
{
    QVERIFY2(::geteuid() == 0, "takes root, to mount a small file system of its own");
    // In a mount namespace: the machine's own disk is nobody's to fill.
    ChildProcess writer("unshare",
                        {"--mount", "sh", "-c",
                         "mount -t tmpfs -o size=2m tmpfs /mnt && exec \"$0\" \"$@\"",
                         HISTORY_PROCESS, "write", "/mnt/h.db", "0", "65536"});
    QVERIFY(writer.start());
    const auto inside = [&writer](const QStringList &command) {
        ChildProcess process(
            "nsenter", QStringList{"--target", QString::number(writer.pid()), "--mount"} + command);
        process.run();
        return process.output().trimmed() + process.errors();
    };
    for (int round = 2; round < 4; ++round) {
        const QByteArray trouble = writer.waitForLineWith("trouble: /mnt/h.db");
        QVERIFY2(
            trouble.startsWith("trouble: /mnt/h.db has no space left on its disk; make space, or "
                               "set max_size"),
            writer.report());
        QVERIFY2(!writer.waitForLineWith("dropped ").isEmpty(), writer.report());
        QCOMPARE(inside({"mount", "-o", QString("remount,size=%1m").arg(round * 2), "/mnt"}),
                 QByteArray());
        QVERIFY2(!writer.waitForLine([](const QByteArray &line) { return line == "trouble: "; })
                      .isEmpty(),
                 writer.report());
    }
    QVERIFY2(!writer.waitForLineWith("stored ").isEmpty(), writer.report());
    QVERIFY(writer.isRunning());
    writer.suspend();

    const QByteArray audit = inside({HISTORY_PROCESS, "audit", "/mnt/h.db"});
    const QList<QByteArray> words = audit.split(' ');
    QVERIFY2(words.size() == 8, audit);
    QVERIFY2(words.at(3).toLongLong() > 0, audit);
    // The last number is being written: of its ten samples some may follow.
    QVERIFY2(words.at(3).toLongLong() - words.at(5).toLongLong() < 10, audit);
    QVERIFY2(words.at(3).toLongLong() >= words.at(5).toLongLong(), audit);
    QVERIFY2(words.at(7).toLongLong() < 10, audit);
}

void LossTest::aRemovedFileIsMadeAnew()
{
    HistoryWriter writer(settings(file));
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));
    const int series = writer.addSeries(numbers());
    QVERIFY(writer.append(series, sample(1, qint64(1))));
    QVERIFY(writer.flush());
    removeFile();
    QVERIFY(writer.append(series, sample(2, qint64(2))));
    QVERIFY(writer.flush());

    const QVector<HistorySample> found = stored(file, numbers().selector);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.at(0).time, qint64(2));
    QCOMPARE(storedEvents(file, HistoryEvent::Kind::DatabaseReplaced).size(), 1);
}

void LossTest::aFileThatCannotBeWrittenKeepsSamplesWaiting()
{
    HistoryWriter writer(settings(file));
    QStringList troubles;
    connect(
        &writer, &HistoryWriter::troubleChanged, this,
        [&troubles](const QString &reason) { troubles << reason; }, Qt::DirectConnection);
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));
    const int series = writer.addSeries(numbers());
    QVERIFY(writer.append(series, sample(1, qint64(1))));
    QVERIFY(writer.flush());
    removeFile();
    QVERIFY(QDir().mkdir(file));
    for (qint64 time = 2; time < 5; ++time) {
        QVERIFY(writer.append(series, sample(time, time)));
        QVERIFY(!writer.flush());
    }
    QVERIFY(QDir().rmdir(file));
    QVERIFY(writer.flush());

    QCOMPARE(troubles, (QStringList{file + " is a folder; name a file in it", QString()}));
    QCOMPARE(stored(file, numbers().selector).size(), 3);
    QCOMPARE(writer.dropped(), qint64(0));
}

void LossTest::aReaderFollowsToANewFile()
{
    HistoryReader reader;
    for (qint64 value = 1; value < 4; ++value) {
        removeFile();
        HistoryWriter writer(settings(file));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        QVERIFY(writer.append(writer.addSeries(numbers()), sample(value, value)));
        QVERIFY(writer.flush());
        QVERIFY(value > 1 || reader.open(file));
        HistorySample found;
        QVERIFY2(reader.sampleBefore(numbers().selector, 100, &found),
                 qPrintable(reader.errorText()));
        QCOMPARE(found.value, QVariant(value));
    }
}

QTEST_GUILESS_MAIN(LossTest)

#include "LossTest.moc"
