// SPDX-License-Identifier: MIT
// Age and size hold while a history is being written; what stays is whole.
#include "HistorySupport.h"

#include <QFileInfo>
#include <QUuid>

#include <atomic>

using namespace HistorySupport;

class RetentionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { database = folder.filePath(QUuid::createUuid().toString(QUuid::Id128)); }

    void whatIsTooOldGoesWhileItIsWritten();
    void muchThatIsTooOldGoesInPieces();
    void theSizeHoldsWhileItIsWritten();
    void whatStaysIsSummedUpRightly();

private:
    QTemporaryDir folder;
    QString database;
};

void RetentionTest::whatIsTooOldGoesWhileItIsWritten()
{
    const qint64 start = 1000 * second;
    std::atomic<qint64> now{start};
    HistorySettings chosen = settings(database);
    chosen.keep = 100 * second;
    chosen.clock = [&now] { return now.load(); };
    HistoryWriter writer(chosen);
    QVERIFY(writer.open());
    const int series = writer.addSeries(numbers());
    const int other = writer.addSeries(numbers("other"));
    QVERIFY(writer.append(other, sample(start, qint64(0))));
    for (int i = 0; i < 1000; ++i) {
        now = start + i * second;
        QVERIFY(writer.append(series, sample(now, qint64(i))));
        if (i % 50 == 49) {
            QVERIFY(writer.flush());
            const qint64 oldest = stored(database, numbers().selector).value(0).time;
            // Removed in slices of a 64th of the age, so as much may be left too long.
            QVERIFY(oldest >= now - 102 * second);
            QVERIFY(oldest == start || oldest <= now - 100 * second);
        }
    }
    QCOMPARE(stored(database, "other").size(), 0);
    QCOMPARE(storedEvents(database, HistoryEvent::Kind::RecorderStarted).size(), 0);
}

void RetentionTest::muchThatIsTooOldGoesInPieces()
{
    HistorySettings chosen = settings(database);
    chosen.clock = [] { return 100000 * second; };
    {
        HistoryWriter writer(chosen);
        QVERIFY(writer.open());
        const int series = writer.addSeries(numbers());
        for (qint64 i = 0; i < 18000; ++i) {
            QVERIFY(writer.append(series, sample(i, i)));
        }
    }
    chosen.keep = second;
    HistoryWriter writer(chosen);
    QVERIFY(writer.open());
    QVERIFY(writer.flush());
    const int first = stored(database, numbers().selector).size();
    QVERIFY2(first >= 18000 - 10000 - 2 && first < 18000, qPrintable(QString::number(first)));
    for (int i = 0; i < 4; ++i) {
        QVERIFY(writer.flush());
    }
    QCOMPARE(stored(database, numbers().selector).size(), 0);
}

void RetentionTest::theSizeHoldsWhileItIsWritten()
{
    HistorySettings chosen = settings(database);
    chosen.maxSize = 16 * 1024 * 1024;
    HistoryWriter writer(chosen);
    QVERIFY(writer.open());
    const int series = writer.addSeries({"bytes", HistoryType::Bytes, "", "", 0});
    qint64 largest = 0;
    const int all = 8000;
    for (int i = 0; i < all; ++i) { // four times as much as may stay
        QVERIFY(writer.append(series, sample(i * second, QByteArray(8000, char(i)))));
        if (i % 100 == 99) {
            QVERIFY(writer.flush());
            largest = std::max(largest,
                               QFileInfo(database).size() + QFileInfo(database + "-wal").size());
        }
    }
    QVERIFY2(largest <= chosen.maxSize, qPrintable(QString::number(largest)));
    const QVector<HistorySample> left = stored(database, "bytes");
    QVERIFY2(left.size() > 800, qPrintable(QString::number(left.size()))); // at least half is used
    QCOMPARE(left.constLast().time, (all - 1) * second);
    for (int i = 0; i < left.size(); ++i) { // the oldest went, and nothing in between
        QCOMPARE(left.at(i).time, (all - left.size() + i) * second);
    }
    QCOMPARE(writer.dropped(), qint64(0));
}

void RetentionTest::whatStaysIsSummedUpRightly()
{
    std::atomic<qint64> now{0};
    HistorySettings chosen = settings(database);
    chosen.keep = 95 * second;
    chosen.clock = [&now] { return now.load(); };
    HistoryWriter writer(chosen);
    QVERIFY(writer.open());
    const int series = writer.addSeries(numbers());
    for (int i = 0; i < 5000; ++i) {
        now = i * (second / 10);
        QVERIFY(writer.append(series, sample(now, qint64(-i))));
        if (i % 40 == 0) {
            QVERIFY(writer.flush());
        }
    }
    QVERIFY(writer.flush());
    const QVector<HistorySample> left = stored(database, numbers().selector);
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(database)
            && reader.aggregates(numbers().selector, 0, 600 * second, 60 * second, &found));
    qint64 count = 0;
    for (const HistoryPiece &piece : qAsConst(found)) {
        count += piece.count;
    }
    QCOMPARE(count, qint64(left.size()));
    QCOMPARE(found.constFirst().greatest, left.constFirst().value);
    QCOMPARE(found.constFirst().first.time, left.constFirst().time);
}

QTEST_GUILESS_MAIN(RetentionTest)

#include "RetentionTest.moc"
