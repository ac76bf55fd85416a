// SPDX-License-Identifier: MIT
// Points and aggregates of a range say the same whether they come from summaries or from samples.
#include "HistorySupport.h"

#include <QRandomGenerator>

#include <cmath>

using namespace HistorySupport;

namespace {

constexpr qint64 start = qint64(1'700'000'000) * second; // 10 s before a full minute

HistorySeries floats()
{
    return {"f", HistoryType::Float64, "", "", 0};
}

// The plain way, from all samples.
QVector<HistoryPiece> expected(const QVector<HistorySample> &samples,
                               const QVector<HistoryPiece> &grid)
{
    QVector<HistoryPiece> pieces;
    for (HistoryPiece piece : grid) {
        piece.count = 0;
        piece.numbers = 0;
        double sum = 0;
        for (const HistorySample &sample : samples) {
            if (sample.time < piece.from || sample.time >= piece.until) {
                continue;
            }
            if (piece.count++ == 0) {
                piece.first = sample;
            }
            piece.last = sample;
            const double value = sample.value.toDouble();
            if (sample.errorType != ProcessDataDefinitions::NoError || std::isnan(value)) {
                continue;
            }
            if (piece.numbers == 0 || value < piece.least.toDouble()) {
                piece.least = value;
                piece.leastTime = sample.time;
            }
            if (piece.numbers == 0 || value > piece.greatest.toDouble()) {
                piece.greatest = value;
                piece.greatestTime = sample.time;
            }
            ++piece.numbers;
            sum += value;
        }
        piece.mean = sum / double(piece.numbers);
        pieces << piece;
    }
    return pieces;
}

QString difference(const QVector<HistoryPiece> &found, const QVector<HistoryPiece> &wanted)
{
    for (int i = 0; i < found.size(); ++i) {
        const HistoryPiece &a = found.at(i);
        const HistoryPiece &b = wanted.at(i);
        const bool same = a.count == b.count && a.numbers == b.numbers
            && a.first.time == b.first.time && a.last.time == b.last.time && a.least == b.least
            && a.leastTime == b.leastTime && a.greatest == b.greatest
            && a.greatestTime == b.greatestTime && std::abs(a.mean - b.mean) < 1e-9;
        if (!same) {
            return QString("piece %1 of %2: count %3 for %4, least %5 for %6, mean %7 for %8")
                .arg(i)
                .arg(found.size())
                .arg(a.count)
                .arg(b.count)
                .arg(a.least.toDouble())
                .arg(b.least.toDouble())
                .arg(a.mean)
                .arg(b.mean);
        }
    }
    return {};
}

} // namespace

class PiecesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void piecesAgreeWithTheSamples_data();
    void piecesAgreeWithTheSamples();
    void alignedIntervalsAgreeWithTheSamples_data();
    void alignedIntervalsAgreeWithTheSamples();
    void pointsCoverTheWholeRangeAndAreNotTooMany();
    void whatHasNoOrderHasFirstAndLast();
    void largeIntegersKeepTheirOrder();
    void impossibleRangesAreRefused();
    void theSampleBeforeATimeIsWhatHeld();

private:
    QTemporaryDir folder;
    QString database;
    QVector<HistorySample> all;
};

// Ten a second for three hours with pauses, a restart in the middle and a clock that is set back.
void PiecesTest::initTestCase()
{
    database = folder.filePath("h.db");
    QRandomGenerator random(14);
    qint64 time = start;
    for (int part = 0; part < 2; ++part) {
        HistoryWriter writer(settings(database));
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        const int series = writer.addSeries(floats());
        for (int i = 0; i < 50000; ++i) {
            time += second / 10 + (i % 9000 == 8999 ? 1300 * second : 0);
            const double value = random.bounded(1000) - 500 + random.generateDouble();
            const auto error = i % 97 == 0 ? ProcessDataDefinitions::DeviceFault
                                           : ProcessDataDefinitions::NoError;
            QVERIFY(writer.append(series, sample(time, i % 101 == 0 ? qQNaN() : value, error)));
            if (i == 30000) {
                for (int back = 0; back < 40; ++back) { // into pieces that are summarised already
                    QVERIFY(writer.append(series,
                                          sample(time - 900 * second + back * 77, 5000.0 + back)));
                }
            }
        }
    }
    all = stored(database, "f");
    QCOMPARE(all.size(), 100080);
}

void PiecesTest::piecesAgreeWithTheSamples_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("until");
    QTest::addColumn<int>("points");
    const qint64 end = all.constLast().time + 1;
    QTest::newRow("everything in one") << start << end << 1;
    QTest::newRow("everything in 7") << start << end << 7;
    QTest::newRow("everything in 100") << start << end << 100;
    QTest::newRow("everything in 1000") << start << end << 1000;
    QTest::newRow("all times") << -lastTime << lastTime << 50;
    QTest::newRow("a part that begins and ends nowhere")
        << start + 1234567891 << start + 4567 * second + 17 << 20;
    QTest::newRow("across the clock's step")
        << start + 1500 * second << start + 6000 * second << 13;
    QTest::newRow("a minute") << start + 100 * second << start + 160 * second << 10;
}

void PiecesTest::piecesAgreeWithTheSamples()
{
    QFETCH(qint64, from);
    QFETCH(qint64, until);
    QFETCH(int, points);
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(database));
    QVERIFY2(reader.points("f", from, until, points, &found), qPrintable(reader.errorText()));

    QCOMPARE(difference(found, expected(all, found)), QString());
    QVERIFY(found.size() <= points);
    qint64 sum = 0;
    for (const HistoryPiece &piece : qAsConst(found)) {
        QVERIFY(piece.count > 0);
        sum += piece.count;
    }
    const auto within = std::count_if(all.cbegin(), all.cend(), [&](const HistorySample &sample) {
        return sample.time >= from && sample.time < until;
    });
    QCOMPARE(sum, qint64(within)); // none is left out, none counted twice
}

void PiecesTest::alignedIntervalsAgreeWithTheSamples_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("interval");
    const qint64 minute = start + 40 * second;
    QTest::newRow("minutes") << minute << 60 * second;
    QTest::newRow("ten minutes") << minute - 1200 * second << 600 * second;
    QTest::newRow("hours from half past") << minute - 1800 * second << 3600 * second;
    QTest::newRow("seconds and a bit") << minute + 1 << 7 * second + 3;
}

void PiecesTest::alignedIntervalsAgreeWithTheSamples()
{
    QFETCH(qint64, from);
    QFETCH(qint64, interval);
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(database));
    QVERIFY(reader.aggregates("f", from, start + 9000 * second, interval, &found));

    QVERIFY(!found.isEmpty());
    for (const HistoryPiece &piece : qAsConst(found)) {
        QCOMPARE((piece.from - from) % interval, qint64(0));
    }
    QCOMPARE(difference(found, expected(all, found)), QString());
}

void PiecesTest::pointsCoverTheWholeRangeAndAreNotTooMany()
{
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(database));
    const qint64 end = all.constLast().time + 1;
    for (const int points : {1, 2, 3, 10, 99, 500, 3000}) {
        QVERIFY(reader.points("f", start, end, points, &found));
        QVERIFY(found.size() <= points);
        QCOMPARE(found.constFirst().first.time, all.constFirst().time);
        QCOMPARE(found.constLast().last.time, all.constLast().time);
    }
}

void PiecesTest::whatHasNoOrderHasFirstAndLast()
{
    const QString place = folder.filePath("text.db");
    {
        HistoryWriter writer(settings(place));
        QVERIFY(writer.open());
        const int series = writer.addSeries({"t", HistoryType::Text, "", "", 0});
        for (qint64 i = 0; i < 100; ++i) {
            QVERIFY(writer.append(series, sample(i * second, QString::number(i))));
        }
    }
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(place) && reader.points("t", 0, 100 * second, 1, &found));
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.at(0).first.value, QVariant("0"));
    QCOMPARE(found.at(0).last.value, QVariant("99"));
    QCOMPARE(found.at(0).numbers, qint64(0));
    QVERIFY(!found.at(0).least.isValid());
}

void PiecesTest::largeIntegersKeepTheirOrder()
{
    const QString place = folder.filePath("large.db");
    const quint64 large = std::numeric_limits<quint64>::max();
    {
        HistoryWriter writer(settings(place));
        QVERIFY(writer.open());
        const int series = writer.addSeries({"u", HistoryType::UInt64, "", "", 0});
        for (quint64 i = 0; i < 200; ++i) {
            QVERIFY(
                writer.append(series, sample(qint64(i) * second / 10, i % 2 == 0 ? large - i : i)));
        }
    }
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(reader.open(place) && reader.points("u", 0, 20 * second, 1, &found));
    QCOMPARE(found.at(0).least, QVariant(quint64(1)));
    QCOMPARE(found.at(0).greatest, QVariant(large));
}

void PiecesTest::impossibleRangesAreRefused()
{
    HistoryReader reader;
    QVector<HistoryPiece> found;
    QVERIFY(!reader.points("f", 0, 1, 1, &found));
    QCOMPARE(reader.errorText(), QString("no database is open; call open() first"));
    QVERIFY(reader.open(database));
    QVERIFY(!reader.points("f", 5, 5, 10, &found));
    QVERIFY(!reader.points("f", 0, 5, 0, &found));
    QVERIFY(!reader.aggregates("f", 0, 5, 0, &found));
    QVERIFY(!reader.aggregates("f", -lastTime, lastTime, 1000, &found));
    QVERIFY(reader.points("unknown", 0, 5, 10, &found));
    QCOMPARE(found.size(), 0);
}

void PiecesTest::theSampleBeforeATimeIsWhatHeld()
{
    HistoryReader reader;
    HistorySample found;
    QVERIFY(reader.open(database));
    QVERIFY(reader.sampleBefore("f", all.at(10).time, &found));
    QCOMPARE(found.time, all.at(9).time);
    found.time = -7;
    QVERIFY(reader.sampleBefore("f", all.at(0).time, &found));
    QCOMPARE(found.time, qint64(-7));
}

QTEST_GUILESS_MAIN(PiecesTest)

#include "PiecesTest.moc"
