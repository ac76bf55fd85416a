// SPDX-License-Identifier: MIT
// selector doctor removes what dead publishers left and nothing else; its report tells everything
// but values.
#include "DoctorRun.h"
#include "Files.h"
#include "SchemaCheck.h"
#include "SystemTest.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class SelectorDoctorCleanTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutYesNothingIsRemoved();
    void leftoversAreRemovedAndLiveBuffersUntouched();
    void aStoppedPublisherKeepsItsBuffer();
    void whatAWriterForgesIsNotBelieved();
    void aBufferThatWasCutToNothingIsRemoved();
    void cleaningNeedsNoBus();
    void whatCannotBeProvedDeadIsKept();
    void theReportTellsEverythingButValues();
    void theReportHoldsValuesWhenTheyAreWanted();
    void aReportThatCannotBeWrittenIsAFailure();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void tableAndCsvReadAsWritten_data();
    void tableAndCsvReadAsWritten();

private:
    QStringList buffers() const { return buffersOf(module); }
    QString leftBehind();
    QStringList modules() const { return {module, module + "dead"}; }

    QScopedPointer<PublisherProcess> publisher;
};

namespace {

const QJsonArray elements{leaf("speed", "float64", {{"unit", "1/min"}}),
                          leaf("idle", "bool", {{"simulate", QJsonObject{{"value", true}}}})};

} // namespace

void SelectorDoctorCleanTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(module, description(elements)));
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
}

void SelectorDoctorCleanTest::cleanup()
{
    publisher.reset();
    SystemTest::cleanup();
}

// Another publisher ends by SIGKILL; the path of what it leaves.
QString SelectorDoctorCleanTest::leftBehind()
{
    const QStringList before = buffers();
    PublisherProcess second;
    if (!second.serve(modules().last(), description(elements)).isEmpty()) {
        return {};
    }
    second.process().kill();
    for (const QString &name : buffers()) {
        if (!before.contains(name)) {
            return "/dev/shm/" + name;
        }
    }
    return {};
}

void SelectorDoctorCleanTest::withoutYesNothingIsRemoved()
{
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean"} + modules()), 0, QStringList());
    const QString left = leftBehind();
    QVERIFY(!left.isEmpty());
    const DoctorRun run(SELECTOR, QStringList{"--clean"} + modules());
    COMPARE_DOCTOR(run, 1, QStringList{"warning buffers leftover " + left});
    QCOMPARE(run.text("leftover", "action"), QString("wouldRemove"));
    QCOMPARE(buffers().size(), 2);
}

void SelectorDoctorCleanTest::leftoversAreRemovedAndLiveBuffersUntouched()
{
    const QStringList live = buffers();
    QCOMPARE(live.size(), 1);
    const QString left = leftBehind();
    const DoctorRun run(SELECTOR, QStringList{"--clean", "--yes"} + modules());
    COMPARE_DOCTOR(run, 0, QStringList());
    QCOMPARE(run.results.size(), 1);
    const QJsonObject removed = run.results.first().toObject();
    QCOMPARE(removed["subject"].toString(), left);
    QCOMPARE(removed["action"].toString(), QString("removed"));
    QCOMPARE(buffers(), live);

    VERIFY_COMMAND(publisher->publish("speed", 7));
    ChildProcess client(SELECTOR, {"read", "--format", "csv", selectorUrl(module, "speed")});
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 0 && client.output().contains(",7,"), client.report());
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean", "--yes"} + modules()), 0,
                   QStringList());
}

void SelectorDoctorCleanTest::aStoppedPublisherKeepsItsBuffer()
{
    publisher->process().suspend();
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean", "--yes"} + modules()), 0,
                   QStringList());
    QCOMPARE(buffers().size(), 1);
    publisher->process().resume();
    VERIFY_COMMAND(publisher->publish("speed", 7));
}

void SelectorDoctorCleanTest::whatAWriterForgesIsNotBelieved()
{
    constexpr int headerSize = 192;
    QVERIFY(overwrite(bufferFile(module), 0, QByteArray(headerSize, '\x40'))); // dead, all of it
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean", "--yes"} + modules()), 0,
                   QStringList());
    QCOMPARE(buffers().size(), 1);
}

void SelectorDoctorCleanTest::aBufferThatWasCutToNothingIsRemoved()
{
    const QString left = leftBehind();
    QVERIFY(QFile::resize(left, 0));
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean", "--yes"} + modules()), 0,
                   QStringList());
    QCOMPARE(buffers().size(), 1);
}

void SelectorDoctorCleanTest::cleaningNeedsNoBus()
{
    const QString left = leftBehind();
    bus->stop();
    COMPARE_DOCTOR(DoctorRun(SELECTOR, QStringList{"--clean", "--yes"} + modules()), 0,
                   QStringList());
    QVERIFY(!QFile::exists(left));
    QCOMPARE(buffers().size(), 1);
}

void SelectorDoctorCleanTest::whatCannotBeProvedDeadIsKept()
{
    QVERIFY(writeFile("/dev/shm/processdata." + module + "_Controller_3.7", "mine"));
    const QString left = leftBehind();
    QVERIFY(QFile::setPermissions(left + ".life", QFile::Permissions()));
    const DoctorRun run(SELECTOR, QStringList{"--clean", "--yes"} + modules(), powerless());
    COMPARE_DOCTOR(run, 5, QStringList{"warning buffers denied " + left});
    QCOMPARE(run.text("denied", "action"), QString("kept"));
    QCOMPARE(buffers().size(), 3);
}

void SelectorDoctorCleanTest::theReportTellsEverythingButValues()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("fault.json");
    const QString left = leftBehind();
    const DoctorRun run(SELECTOR, QStringList{"--report", name} + modules());
    QVERIFY2(run.exitCode == 1 && run.goodChecks().last() == "report", run.report);

    const QByteArray text = contentOf(name);
    const QJsonObject report = QJsonDocument::fromJson(text).object();
    QCOMPARE(report["schema"].toString(), QString("selector.doctorReport/1"));
    QCOMPARE(report["environment"].toObject()["PROCESSDATA_BUS"].toString(), bus->address());
    const QJsonObject source = report["sources"].toArray().first().toObject();
    QCOMPARE(source["source"].toString(), module + "/Controller/1");
    QCOMPARE(source["attached"].toString(), QString("complete"));
    QVERIFY(source["description"].toObject()["buffer"].toObject().contains("generation"));
    const QJsonObject owner = report["modules"].toArray().first().toObject();
    QCOMPARE(owner["processId"].toDouble(), double(publisher->process().pid()));
    const QJsonArray files = report["buffers"].toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files.at(0).toObject()["state"].toString(), QString("live"));
    QCOMPARE(files.at(1).toObject()["state"].toString(), QString("dead"));
    QCOMPARE(files.at(1).toObject()["file"].toString(), left);
    QCOMPARE(report["findings"].toArray().size(), run.results.size() - 1);
    QVERIFY2(!text.contains("1450.5") && !text.contains("simulate"), text);
    QCOMPARE(schemaProblems(QJsonDocument(report).toJson(QJsonDocument::Compact)), QByteArray());
}

void SelectorDoctorCleanTest::theReportHoldsValuesWhenTheyAreWanted()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("fault.json");
    const DoctorRun run(SELECTOR, QStringList{"--report", name, "--with-values"} + modules());
    QCOMPARE(run.goodChecks().last(), QString("report"));
    const QJsonObject report = QJsonDocument::fromJson(contentOf(name)).object();
    const QJsonArray values = report["sources"].toArray().first().toObject()["values"].toArray();
    QCOMPARE(values.size(), 2);
    QCOMPARE(values.at(0).toObject()["path"].toString(), QString("speed"));
    QCOMPARE(values.at(0).toObject()["value"].toDouble(), 1450.5);
    QCOMPARE(values.at(1).toObject()["errorType"].toString(), QString("NotInitialized"));
    QCOMPARE(schemaProblems(QJsonDocument(report).toJson(QJsonDocument::Compact)), QByteArray());
}

void SelectorDoctorCleanTest::aReportThatCannotBeWrittenIsAFailure()
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("none/fault.json");
    const DoctorRun run(SELECTOR, QStringList{"--report", name} + modules());
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.faults().contains("error report notWritten " + name), run.report);
}

void SelectorDoctorCleanTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("yes alone") << QStringList{"--yes"} << QByteArray("--yes goes with --clean");
    QTest::newRow("values alone") << QStringList{"--with-values"}
                                  << QByteArray("--with-values goes with --report");
    QTest::newRow("both") << QStringList{"--clean", "--report", "x"}
                          << QByteArray("exclude each other");
    QTest::newRow("no file") << QStringList{"--report", ""}
                             << QByteArray("--report must not be empty");
    QTest::newRow("a place") << QStringList{"Pump/Controller"} << QByteArray("\"Pump/Controller\"");
}

void SelectorDoctorCleanTest::wrongUsageIsNamed()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, problem);
    ChildProcess client(SELECTOR, QStringList{"doctor"} + arguments);
    QVERIFY(client.run());
    QVERIFY2(client.exitCode() == 2 && client.errors().contains(problem), client.report());
    QCOMPARE(client.output(), QByteArray());
}

void SelectorDoctorCleanTest::tableAndCsvReadAsWritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("table")
        << QStringList{"--clean"}
        << QByteArray(
               R"(SEVERITY  CHECK    SUBJECT  FINDING                                 ADVICE                    ACTION
warning   buffers  FILE     its publisher died, 320 bytes are left  --clean --yes removes it  wouldRemove
)");
    QTest::newRow("csv") << QStringList{"--clean", "--format", "csv"}
                         << QByteArray(
                                R"(severity,check,subject,finding,advice,action
warning,buffers,FILE,"its publisher died, 320 bytes are left",--clean --yes removes it,wouldRemove
)");
    QTest::newRow("removed") << QStringList{"--clean", "--yes", "--format", "csv"}
                             << QByteArray(
                                    R"(severity,check,subject,finding,advice,action
ok,buffers,FILE,"its publisher died, 320 bytes are left",,removed
)");
}

void SelectorDoctorCleanTest::tableAndCsvReadAsWritten()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, output);
    const QString left = leftBehind();
    ChildProcess client(SELECTOR, QStringList{"doctor"} + arguments + modules());
    QVERIFY(client.run());
    QByteArray shown = client.output();
    QVERIFY2(shown.contains(left.toUtf8()), client.report());
    // The file's name differs from run to run, and so does the width of its column.
    const int surplus = left.size() - int(qstrlen("SUBJECT"));
    shown.replace("SUBJECT" + QByteArray(surplus, ' '), "SUBJECT");
    shown.replace(left.toUtf8() + "  ", "FILE     ").replace(left.toUtf8(), "FILE");
    QCOMPARE(shown, output);
}

QTEST_GUILESS_MAIN(SelectorDoctorCleanTest)
#include "SelectorDoctorCleanTest.moc"
