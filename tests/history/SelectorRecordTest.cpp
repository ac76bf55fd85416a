// SPDX-License-Identifier: MIT
// selector record, and what selector history then shows: a real simulator, killed and restarted.
#include "BusTestMain.h"
#include "Files.h"
#include "HistoryReader.h"
#include "SchemaCheck.h"
#include "SystemTest.h"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

class SelectorRecordTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aLossAndAReturnShowInTheHistory();
    void whatIsRecordedIsWhatWasWatched();
    void itEndsAsItIsTold_data();
    void itEndsAsItIsTold();
    void eachSelectorHasItsVerdict();
    void aSelectorThatComesLaterIsRecorded();
    void aSecondRecorderIsRefused();
    void nothingIsMadeWithoutABus();
    void troubleIsSaidOnce();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();

private:
    QString url(const QString &path) const { return selectorUrl(module, path); }
    qint64 count(const QString &selector) const;
    QJsonArray rows(const QString &selector) const;

    QScopedPointer<QTemporaryDir> folder;
    QString database;
};

namespace {

QJsonObject resultOf(const QByteArray &json, int index)
{
    return QJsonDocument::fromJson(json).object().value("results").toArray().at(index).toObject();
}

} // namespace

void SelectorRecordTest::init()
{
    SystemTest::init();
    folder.reset(new QTemporaryDir);
    database = folder->filePath("h.db");
}

void SelectorRecordTest::cleanup()
{
    folder.reset();
    SystemTest::cleanup();
}

// Samples of a selector in the database so far.
qint64 SelectorRecordTest::count(const QString &selector) const
{
    HistoryReader reader;
    qint64 samples = 0;
    if (reader.open(database)) {
        reader.samples(selector, 0, std::numeric_limits<qint64>::max(), [&](const HistorySample &) {
            ++samples;
            return true;
        });
    }
    return samples;
}

// What selector history says of the last hour.
QJsonArray SelectorRecordTest::rows(const QString &selector) const
{
    ChildProcess client(SELECTOR, {"history", "--database", database, "-j", selector});
    if (!client.run() || client.exitCode() != 0) {
        qWarning("%s", client.report().constData());
        return {};
    }
    const QByteArray problems = schemaProblems(client.output());
    if (!problems.isEmpty()) {
        qWarning("%s", problems.constData());
    }
    return resultOf(client.output(), 0).value("rows").toArray();
}

void SelectorRecordTest::aLossAndAReturnShowInTheHistory()
{
    const QString file = folder->filePath("pump.pdd");
    const QJsonObject ramp{{"kind", "ramp"}, {"offset", 0}, {"amplitude", 1000}, {"period", 60}};
    QJsonObject pump = description({leaf("n", "int32", {{"unit", "A"}, {"simulate", ramp}})});
    pump.insert("module", module);
    pump.insert("object", "Controller");
    pump.insert("instance", "1");
    QVERIFY(writeFile(file, QJsonDocument(pump).toJson()));
    const auto publish = [&](QScopedPointer<ChildProcess> &simulator) {
        simulator.reset(new ChildProcess(SIMULATOR, {file}));
        QVERIFY2(simulator->start() && !simulator->waitForLineWith("ready").isNull(),
                 simulator->report().constData());
    };
    QScopedPointer<ChildProcess> simulator;
    publish(simulator);
    ChildProcess recorder(SELECTOR, {"record", "--every", "20", database, url("n")});
    QVERIFY(recorder.start());
    QTRY_VERIFY2_WITH_TIMEOUT(count(url("n")) > 5, recorder.report().constData(), 20000);

    simulator->kill();
    QVERIFY(simulator->waitForEnd());
    const auto events = [&] {
        QStringList names;
        const QJsonArray all = rows(url("n"));
        for (const QJsonValue &row : all) {
            names += row.toObject().value("event").toString();
        }
        names.removeAll(QString());
        return names;
    };
    QTRY_COMPARE_WITH_TIMEOUT(events(), (QStringList{"recorderStarted", "sourceLost"}), 20000);
    const qint64 before = count(url("n"));
    publish(simulator);
    QTRY_VERIFY2_WITH_TIMEOUT(count(url("n")) > before + 5, recorder.report().constData(), 20000);
    recorder.terminate();
    QVERIFY(recorder.waitForEnd());
    QVERIFY2(recorder.exitCode() == 0, recorder.report().constData());

    QCOMPARE(events(),
             (QStringList{"recorderStarted", "sourceLost", "sourceReturned", "recorderEnded"}));
    QJsonObject lost;
    QStringList unitsAndErrors;
    const QJsonArray all = rows(url("n"));
    for (const QJsonValue &value : all) {
        const QJsonObject row = value.toObject();
        if (row.value("kind") == "gap" && row.value("cause") == "sourceLost") {
            QVERIFY(lost.isEmpty());
            lost = row;
        } else if (row.value("kind") == "sample") {
            unitsAndErrors
                += row.value("unit").toString() + ' ' + row.value("errorType").toString();
        }
    }
    QVERIFY(!lost.isEmpty());
    QVERIFY(lost.value("fromNs").toString().toLongLong()
            < lost.value("untilNs").toString().toLongLong());
    for (const QJsonValue &value : all) {
        const QJsonObject row = value.toObject();
        const qint64 time = row.value("timestampNs").toString().toLongLong();
        QVERIFY(row.value("kind") != "sample" || row.value("errorType") != "NoError"
                || time <= lost.value("fromNs").toString().toLongLong()
                || time > all.first().toObject().value("timestampNs").toString().toLongLong());
    }
    QCOMPARE(unitsAndErrors.count("A SourceLost"), 1);
    QVERIFY(unitsAndErrors.count("A NoError") > 10);
}

void SelectorRecordTest::whatIsRecordedIsWhatWasWatched()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(
        module, description({leaf("n", "float64", {{"unit", "V"}}), leaf("on", "bool")})));
    VERIFY_COMMAND(publisher.publish("n", 0.5));
    VERIFY_COMMAND(publisher.publish("on", true));
    ChildProcess watch(SELECTOR, {"watch", "-j", "--interval", "10", url("n")});
    ChildProcess recorder(SELECTOR,
                          {"record", "-j", "--every", "10", database, url("n"), url("on")});
    QVERIFY(watch.start() && recorder.start());
    QStringList watched;
    for (int i = 0; i < 5; ++i) {
        // The next one waits until both have seen this one.
        const QByteArray line = watch.waitForLineWith("\"value\":");
        QVERIFY2(!line.isNull(), watch.report().constData());
        const QJsonObject seen = QJsonDocument::fromJson(line).object();
        watched += QString("%1 %2 %3 %4")
                       .arg(seen.value("timestampNs").toString())
                       .arg(seen.value("value").toDouble())
                       .arg(seen.value("unit").toString(), seen.value("errorType").toString());
        QTRY_COMPARE_WITH_TIMEOUT(count(url("n")), qint64(i + 1), 20000);
        VERIFY_COMMAND(publisher.publish("n", i + 1.25));
    }
    QTRY_COMPARE_WITH_TIMEOUT(count(url("n")), qint64(6), 20000);
    recorder.interrupt();
    QVERIFY(recorder.waitForEnd());
    QCOMPARE(recorder.exitCode(), 130);
    QCOMPARE(recorder.errors(), QByteArray());
    QCOMPARE(schemaProblems(recorder.output()), QByteArray());
    QCOMPARE(resultOf(recorder.output(), 0).value("samples").toInt(), 6);
    QCOMPARE(resultOf(recorder.output(), 1).value("samples").toInt(), 1);

    QStringList recorded;
    const QJsonArray all = rows(url("n"));
    for (const QJsonValue &value : all) {
        const QJsonObject row = value.toObject();
        if (row.value("kind") == "sample" && recorded.size() < watched.size()) {
            recorded += QString("%1 %2 %3 %4")
                            .arg(row.value("timestampNs").toString())
                            .arg(row.value("value").toDouble())
                            .arg(row.value("unit").toString(), row.value("errorType").toString());
        }
    }
    QCOMPARE(recorded, watched);
}

void SelectorRecordTest::itEndsAsItIsTold_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("by SIGINT") << QStringList{} << 2 << 130;
    QTest::newRow("by SIGTERM") << QStringList{} << 15 << 0;
    QTest::newRow("by its time") << QStringList{"--for", "300ms"} << 0 << 0;
    QTest::newRow("by its time as of watch") << QStringList{"--timeout", "0.3"} << 0 << 0;
}

void SelectorRecordTest::itEndsAsItIsTold()
{
    QFETCH(const QStringList, options);
    QFETCH(const int, signal);
    QFETCH(const int, exitCode);
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher.publish("n", 7));
    ChildProcess recorder(SELECTOR, QStringList{"record", database, url("n")} + options);
    QVERIFY(recorder.start());
    QTRY_COMPARE_WITH_TIMEOUT(count(url("n")), qint64(1), 20000);
    if (signal == 2) {
        recorder.interrupt();
    } else if (signal == 15) {
        recorder.terminate();
    }
    QVERIFY(recorder.waitForEnd());
    QVERIFY2(recorder.exitCode() == exitCode, recorder.report().constData());
    QVERIFY2(recorder.output().endsWith("\n1 sample of 1 selector stored in " + database.toUtf8()
                                        + ", none dropped\n"),
             recorder.report().constData());
    QCOMPARE(recorder.errors(), QByteArray());
}

void SelectorRecordTest::eachSelectorHasItsVerdict()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(
        module, description({leaf("n", "int32"), leaf("long", "string", {{"capacity", 70000}})})));
    VERIFY_COMMAND(publisher.publish("n", 7));
    VERIFY_COMMAND(publisher.publish("long", QString(70000, 'x')));
    ChildProcess recorder(SELECTOR,
                          {"record", "-j", "--for", "1s", database, url("n"), url("none"),
                           url("n") + "?deactivated", "processdata://", url("long"), url("n")});
    VERIFY_RUN(recorder, 1);
    QCOMPARE(schemaProblems(recorder.output()), QByteArray());
    QStringList verdicts;
    const QJsonArray results
        = QJsonDocument::fromJson(recorder.output()).object().value("results").toArray();
    for (const QJsonValue &value : results) {
        const QJsonObject result = value.toObject();
        verdicts += QString("%1 %2 %3")
                        .arg(result.value("status").toString(), result.value("code").toString())
                        .arg(result.value("samples").toInt());
    }
    QCOMPARE(verdicts,
             (QStringList{"ok  1", "failed noSuchLeaf 0", "skipped deactivated 0",
                          "failed invalidUrl 0", "doubtful  0"}));
    QVERIFY2(recorder.errors().contains(url("none").toUtf8() + ": " + module.toUtf8()
                                        + "/Controller/1 has no such leaf; it is recorded when it "
                                          "comes\n"),
             recorder.report().constData());
}

void SelectorRecordTest::aSelectorThatComesLaterIsRecorded()
{
    ChildProcess recorder(SELECTOR, {"record", "--every", "20", database, url("n")});
    QVERIFY(recorder.start());
    QTRY_VERIFY_WITH_TIMEOUT(recorder.errors().contains("; it is recorded when it comes\n"), 20000);
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher.publish("n", 7));
    QTRY_VERIFY2_WITH_TIMEOUT(count(url("n")) > 0, recorder.report().constData(), 20000);
    recorder.terminate();
    QVERIFY(recorder.waitForEnd());
    QVERIFY2(recorder.exitCode() == 0, recorder.report().constData());
}

void SelectorRecordTest::aSecondRecorderIsRefused()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher.publish("n", 7));
    ChildProcess recorder(SELECTOR, {"record", database, url("n")});
    QVERIFY(recorder.start());
    QTRY_COMPARE_WITH_TIMEOUT(count(url("n")), qint64(1), 20000);

    ChildProcess second(SELECTOR, {"record", database, url("n")});
    VERIFY_RUN(second, 1);
    QCOMPARE(second.output(), QByteArray());
    QVERIFY2(second.errors().startsWith("selector: " + database.toUtf8()), second.report());
    QCOMPARE(second.errors().count('\n'), 1);
}

void SelectorRecordTest::nothingIsMadeWithoutABus()
{
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere");
    ChildProcess recorder(SELECTOR, {"record", database, url("n")});
    VERIFY_RUN(recorder, 3);
    QVERIFY(!QFile::exists(database));
}

void SelectorRecordTest::troubleIsSaidOnce()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, description({leaf("n", "int32")})));
    VERIFY_COMMAND(publisher.publish("n", 7));
    ChildProcess recorder(SELECTOR, {"record", "--every", "10", database, url("n")});
    QVERIFY(recorder.start());
    QTRY_COMPARE_WITH_TIMEOUT(count(url("n")), qint64(1), 20000);
    for (const char *end : {"", "-wal", "-shm"}) {
        QFile::remove(database + end);
    }
    QVERIFY(QDir().mkdir(database));
    VERIFY_COMMAND(publisher.publish("n", 8));
    const QByteArray trouble = database.toUtf8() + " is a folder; name a file in it\n";
    QTRY_VERIFY2_WITH_TIMEOUT(recorder.errors().contains("selector: " + trouble),
                              recorder.report().constData(), 20000);
    VERIFY_COMMAND(publisher.publish("n", 9));
    recorder.terminate();
    QVERIFY(recorder.waitForEnd());
    QVERIFY2(recorder.exitCode() == 1, recorder.report().constData());
    QCOMPARE(recorder.errors(),
             "selector: " + trouble + "selector: not all of it could be written: " + trouble);
}

void SelectorRecordTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    const QStringList good{"h.db", "processdata://A/B/1/n"};
    QTest::newRow("nothing") << QStringList{} << QByteArray("No database given.");
    QTest::newRow("no selector") << QStringList{"h.db"} << QByteArray("No selector given.");
    QTest::newRow("a word as deadband")
        << QStringList{"--deadband", "wide"} + good
        << QByteArray(
               "--deadband must be a number that is not negative, such as 0.5, or percent of "
               "the range, such as 0.5%, not \"wide\".");
    QTest::newRow("more than the range")
        << QStringList{"--deadband", "101%"} + good << QByteArray("--deadband must be a number");
    QTest::newRow("a negative deadband")
        << QStringList{"--deadband", "-1"} + good << QByteArray("--deadband must be a number");
    QTest::newRow("a time without a unit")
        << QStringList{"--for", "5"} + good << QByteArray("--for must be a time with its unit, ");
    QTest::newRow("longer than a timer counts") << QStringList{"--for", "25d"}
            + good << QByteArray("--for must be at most 24d, not \"25d\"");
    QTest::newRow("two ends") << QStringList{"--for", "1h", "--timeout", "5"} + good
                              << QByteArray("--for and --timeout exclude each other.");
}

void SelectorRecordTest::wrongUsageIsNamed()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, reason);
    ChildProcess recorder(SELECTOR, QStringList{"record"} + arguments);
    VERIFY_RUN(recorder, 2);
    QCOMPARE(recorder.output(), QByteArray());
    QVERIFY2(recorder.errors().startsWith("selector: " + reason), recorder.report());
}

BUS_TEST_MAIN(SelectorRecordTest)
#include "SelectorRecordTest.moc"
