// SPDX-License-Identifier: MIT
// selector history on databases of the test's own; no bus is there.
//
// SELECTOR_UPDATE_GOLDEN=1 in the environment writes the files of golden/ anew.
#include "ChildProcess.h"
#include "Files.h"
#include "HistoryWriter.h"
#include "SchemaCheck.h"
#include "SystemTest.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <cmath>

namespace {

constexpr qint64 second = 1'000'000'000;
constexpr qint64 noon = 1'795'348'800 * second; // 2026-11-22 12:00 UTC

const QString speed("processdata://Pump/C/1/speed");
const QString name("processdata://Pump/C/1/name");
const QString counter("processdata://Pump/C/1/counter");
const QString level("processdata://Tank/C/1/level");

HistorySample at(double seconds, const QVariant &value,
                 ProcessDataDefinitions::ErrorTypes error = ProcessDataDefinitions::NoError)
{
    return {noon + std::llround(seconds * second), value, error, false};
}

HistoryEvent happened(double seconds, HistoryEvent::Kind kind, const QString &subject,
                      const QString &text = {})
{
    HistoryEvent event;
    event.time = noon + std::llround(seconds * second);
    event.kind = kind;
    event.subject = subject;
    event.text = text;
    return event;
}

} // namespace

class SelectorHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void outputIsAsWritten_data();
    void outputIsAsWritten();
    void aDatabaseThatCannotBeReadIsOneError_data();
    void aDatabaseThatCannotBeReadIsOneError();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void aChartHasGapsWhereNothingIsKnown();
    void aLongRangeIsPrintedWhole();
    void aRangeThatEndsNowHasWhatWasJustWritten();

private:
    void record();
    QStringList filledIn(QStringList arguments) const
    {
        return arguments.replaceInStrings("FOLDER", folder->path());
    }

    QScopedPointer<QTemporaryDir> folder;
    std::atomic<qint64> now{noon};
};

void SelectorHistoryTest::init()
{
    qputenv("TZ", "UTC");
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere");
    folder.reset(new QTemporaryDir);
    record();
}

// Twenty seconds, in which the pump is lost for four; the recorder comes back after a minute.
void SelectorHistoryTest::record()
{
    HistorySettings settings;
    settings.database = folder->filePath("h.db");
    settings.clock = [this] { return now.load(); };
    using Kind = HistoryEvent::Kind;
    now = noon;
    {
        HistoryWriter writer(settings);
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        QVERIFY(writer.flush()); // the start has its time now
        const int speeds = writer.addSeries({speed, HistoryType::Float64, "1/min", "Speed", 0});
        const int names = writer.addSeries({name, HistoryType::Text, {}, {}, 0});
        const int counters = writer.addSeries({counter, HistoryType::UInt64, {}, {}, 0});
        const int levels = writer.addSeries({level, HistoryType::Int8, "%", {}, 0});
        for (int i = 0; i < 8; ++i) {
            QVERIFY(writer.append(speeds, at(i, 1450.123456789012 + i)));
        }
        QVERIFY(
            writer.append(speeds, at(7, 1457.123456789012, ProcessDataDefinitions::SourceLost)));
        QVERIFY(writer.append(speeds, at(12.25, 900.5)));
        QVERIFY(writer.append(speeds, at(13, qQNaN(), ProcessDataDefinitions::DeviceFault)));
        QVERIFY(writer.append(names, at(1, "north,\nline two")));
        QVERIFY(writer.append(counters, at(2, quint64(18446744073709551615U))));
        QVERIFY(writer.append(levels, at(3, QVariant::fromValue(qint8(-5)))));
        writer.append(happened(8, Kind::SourceLost, "processdata://Pump/C/1"));
        writer.append(happened(12, Kind::SourceReturned, "processdata://Pump/C/1"));
        const int newSpeeds = writer.addSeries({speed, HistoryType::Float64, "Hz", "Speed", 0});
        writer.append(
            happened(14, Kind::DescriptionChanged, "processdata://Pump/C/1", "speed: unit"));
        QVERIFY(writer.append(newSpeeds, at(15, 24.5)));
        now = noon + 20 * second;
    }
    now = noon + 80 * second;
    HistoryWriter writer(settings);
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));
    QVERIFY(writer.flush());
    const int speeds = writer.addSeries({speed, HistoryType::Float64, "Hz", "Speed", 0});
    QVERIFY(writer.append(speeds, at(81, 25.0)));
    now = noon + 90 * second;
}

void SelectorHistoryTest::outputIsAsWritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QStringList all{"--from", "2026-11-22 12:00", "--to", "2026-11-22 12:01:30"};
    const QStringList later{"--from", "2026-11-22 12:00:06.500", "--to", "2026-11-22T12:00:16Z"};
    QTest::newRow("history") << all + QStringList{speed};
    QTest::newRow("history-many") << all
            + QStringList{"n=" + name, counter, level, "processdata://Pump/C/1/none"};
    QTest::newRow("history-later") << later + QStringList{speed, level};
    QTest::newRow("history-in-a-gap") << QStringList{
        "--from", "2026-11-22 12:00:10", "--to", "2026-11-22 12:00:13.500", speed, level};
    QTest::newRow("history-nothing")
        << QStringList{"--from", "2026-11-22 11:00", "--to", "2026-11-22 11:30", speed};
    QTest::newRow("history-pieces") << all + QStringList{"--every", "10s", speed};
    QTest::newRow("history-aggregates")
        << all + QStringList{"--every", "1min", "--aggregate", "max,min,last", speed};
    QTest::newRow("history-extremes")
        << all + QStringList{"--every", "1min", "--aggregate", "min,max", name, level};
    QTest::newRow("history-pattern") << later + QStringList{"Pump/*/1/sp*", "*/C/*/le*", "t=Tank"};
    QTest::newRow("history-points") << all + QStringList{"--points", "3", speed};
    QTest::newRow("history-info") << QStringList{"--info"};
}

void SelectorHistoryTest::outputIsAsWritten()
{
    QFETCH(const QStringList, arguments);
    QString text;
    for (const QString format : {"table", "csv", "json"}) {
        ChildProcess client(SELECTOR,
                            QStringList{"history", "--database", folder->filePath("h.db")}
                                + arguments + QStringList{"--format", format});
        QVERIFY2(client.run(), client.report().constData());
        text += QString("== %1\n%2").arg(format, QString::fromUtf8(client.output()));
        text += QString("-- errors\n%1").arg(QString::fromUtf8(client.errors()));
        text += QString("-- exit code %1\n").arg(client.exitCode());
        if (format == QString("json") && client.exitCode() != 2) {
            QCOMPARE(schemaProblems(client.output()), QByteArray());
        }
    }
    text.replace(folder->path(), "FOLDER");
    text.replace(QRegularExpression("\"bytes\":\\d+"), "\"bytes\":BYTES");
    text.replace(QRegularExpression("\\d+\\.\\d kB"), "SIZE");

    const QString fileName = QString(GOLDEN "/%1.txt").arg(QTest::currentDataTag());
    if (qEnvironmentVariableIsSet("SELECTOR_UPDATE_GOLDEN")) {
        QVERIFY(writeFile(fileName, text.toUtf8()));
    }
    const QStringList wanted = QString::fromUtf8(contentOf(fileName)).split('\n');
    const QStringList shown = text.split('\n');
    for (int i = 0; i < qMax(wanted.size(), shown.size()); ++i) {
        QCOMPARE(shown.value(i), wanted.value(i));
    }
}

void SelectorHistoryTest::aDatabaseThatCannotBeReadIsOneError_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("missing") << "none.db" << QByteArray("does not exist");
    QTest::newRow("another file") << "text" << QByteArray("not a database");
    QTest::newRow("another database") << "other.db" << QByteArray("");
    QTest::newRow("of a newer version") << "newer.db" << QByteArray("its format is 99");
    QTest::newRow("a folder") << "" << QByteArray("");
}

void SelectorHistoryTest::aDatabaseThatCannotBeReadIsOneError()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, reason);
    QVERIFY(writeFile(folder->filePath("text"), QByteArray("a text\n").repeated(1000)));
    outputOf("sqlite3", {folder->filePath("other.db"), "CREATE TABLE t (a)"});
    QVERIFY(QFile::copy(folder->filePath("h.db"), folder->filePath("newer.db")));
    outputOf("sqlite3",
             {folder->filePath("newer.db"), "UPDATE about SET value = 99 WHERE name = 'version'"});

    const QString path = folder->path() + '/' + file;
    for (const QStringList &asked : {QStringList{"--info"}, QStringList{speed}}) {
        ChildProcess client(SELECTOR, QStringList{"history", "--database", path} + asked);
        VERIFY_RUN(client, 1);
        QCOMPARE(client.output(), QByteArray());
        QVERIFY2(client.errors().startsWith("selector: " + path.toUtf8()), client.report());
        QVERIFY2(client.errors().contains(reason), client.report());
        QCOMPARE(client.errors().count('\n'), 1);
    }
}

void SelectorHistoryTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    const QStringList database{"--database", "FOLDER/h.db"};
    QTest::newRow("no database") << QStringList{speed} << QByteArray("Expected --database FILE.");
    QTest::newRow("no selector") << database << QByteArray("No selector given.");
    QTest::newRow("a selector beside --info")
        << database + QStringList{"--info", speed}
        << QByteArray("--info is about the whole database; it takes no selector.");
    QTest::newRow("not a time")
        << database + QStringList{"--from", "noon", speed}
        << QByteArray("--from \"noon\" is not a time; expected for instance now, today, ");
    QTest::newRow("an end before the beginning")
        << database + QStringList{"--from", "2026-11-22 12:00", "--to", "2026-11-22 11:00", speed}
        << QByteArray("The range begins at 2026-11-22 12:00:00.000 and ends at "
                      "2026-11-22 11:00:00.000; it must begin before it ends.");
    QTest::newRow("two ranges") << database + QStringList{"--last", "1h", "--from", "today", speed}
                                << QByteArray("--last ends now; it has no --from and no --to.");
    QTest::newRow("a duration without a unit")
        << database + QStringList{"--last", "15", speed}
        << QByteArray("--last must be a time with its unit, such as 500ms, 30s, 15min, 2h or 7d, "
                      "not \"15\"");
    QTest::newRow("more than a century")
        << database + QStringList{"--last", "50000d", speed}
        << QByteArray("--last must be at most 36600d, not \"50000d\"");
    QTest::newRow("two kinds of pieces")
        << database + QStringList{"--points", "5", "--every", "1s", speed}
        << QByteArray("--points and --every exclude each other.");
    QTest::newRow("too many points") << database + QStringList{"--points", "100001", speed}
                                     << QByteArray("--points must be 1 to 100000, not 100001.");
    QTest::newRow("too many pieces")
        << database + QStringList{"--last", "1d", "--every", "50ms", speed}
        << QByteArray("--every 50ms makes more than 1000000 pieces of this range; ");
    QTest::newRow("a chart of pieces") << database + QStringList{"--plot", "--every", "1s", speed}
                                       << QByteArray("--plot has no --every.");
    QTest::newRow("a chart as JSON")
        << database + QStringList{"--plot", "-j", speed}
        << QByteArray("--plot draws for people; it has no --format json or csv.");
    QTest::newRow("an unknown aggregate")
        << database + QStringList{"--every", "1s", "--aggregate", "min,median", speed}
        << QByteArray("--aggregate must be some of first,last,min,max,mean, not \"median\".");
    QTest::newRow("aggregates of samples") << database + QStringList{"--aggregate", "min", speed}
                                           << QByteArray("--aggregate needs --every or --points.");
}

void SelectorHistoryTest::wrongUsageIsNamed()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, reason);
    ChildProcess client(SELECTOR, QStringList{"history"} + filledIn(arguments));
    VERIFY_RUN(client, 2);
    QCOMPARE(client.output(), QByteArray());
    QVERIFY2(client.errors().startsWith("selector: " + reason), client.report());
}

void SelectorHistoryTest::aChartHasGapsWhereNothingIsKnown()
{
    // Forty columns of half a second; of the range, 8 s to 12 s are lost, and nothing good comes
    // from 13 s to 15 s.
    ChildProcess client(SELECTOR,
                        {"history", "--database", folder->filePath("h.db"), "--from",
                         "2026-11-22 12:00", "--to", "2026-11-22 12:00:20", "--plot", "--width",
                         "52", speed, name});
    VERIFY_RUN(client, 0);
    const QStringList lines = QString::fromUtf8(client.output()).split('\n');
    QCOMPARE(lines.at(0), QString("speed  24.5 Hz"));
    QString columns(40, ' ');
    for (int line = 1; line < 10; ++line) {
        for (int i = 0; i < 40; ++i) {
            columns[i] = lines.at(line).mid(12).leftJustified(40).at(i) == '*' ? QChar('*')
                                                                               : columns.at(i);
        }
    }
    QCOMPARE(columns, QString("****************        **    **********"));
    QCOMPARE(lines.at(10), QString("name  nothing is known at its end"));
    QCOMPARE(lines.at(20), QString("            2026-11-22 12:00:00.000  2026-11-22 12:00:20.000"));
}

void SelectorHistoryTest::aLongRangeIsPrintedWhole()
{
    HistorySettings settings;
    settings.database = folder->filePath("long.db");
    constexpr int count = 20'000;
    {
        HistoryWriter writer(settings);
        QVERIFY2(writer.open(), qPrintable(writer.errorText()));
        const int series = writer.addSeries({speed, HistoryType::Int64, {}, {}, 0});
        for (int i = 0; i < count; ++i) {
            QVERIFY(writer.append(series, {noon + i, qint64(i)}));
        }
    }
    ChildProcess client(SELECTOR,
                        {"history", "--database", settings.database, "--from", "2026-11-22 12:00",
                         "--to", "2026-11-22 12:01", "--format", "csv", speed});
    VERIFY_RUN(client, 0);
    const QByteArray output = client.output();
    QCOMPARE(output.count(",sample,,\n"), count);
    QVERIFY(output.contains(",19999,,NoError,,sample,,\n"));
}

void SelectorHistoryTest::aRangeThatEndsNowHasWhatWasJustWritten()
{
    HistorySettings settings;
    settings.database = folder->filePath("now.db");
    HistoryWriter writer(settings);
    QVERIFY2(writer.open(), qPrintable(writer.errorText()));
    const qint64 time = QDateTime::currentMSecsSinceEpoch() * 1'000'000;
    const int series = writer.addSeries({speed, HistoryType::Int64, {}, {}, 0});
    QVERIFY(writer.append(series, {time, qint64(5)}));
    QVERIFY(writer.append(series, {time - 7200 * second, qint64(4)}));
    QVERIFY(writer.flush());
    for (const QStringList &range : {QStringList{}, QStringList{"--last", "1h"},
                                     QStringList{"--from", "-1h"}, QStringList{"--to", "now"}}) {
        ChildProcess client(
            SELECTOR,
            QStringList{"history", "--database", settings.database, speed, "--format", "csv"}
                + range);
        VERIFY_RUN(client, 0);
        QVERIFY2(client.output().contains(",5,,NoError,,sample,,\n"), client.report());
        QVERIFY2(client.output().contains(",4,,NoError,held when the range began,held,,\n"),
                 client.report());
    }
}

QTEST_GUILESS_MAIN(SelectorHistoryTest)
#include "SelectorHistoryTest.moc"
