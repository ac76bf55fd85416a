// SPDX-License-Identifier: MIT
// Every table as screens of three widths show it, byte for byte as golden/ has it.
//
// SELECTOR_UPDATE_GOLDEN=1 in the environment writes the files anew; then read the difference.
#include "ApplyPlan.h"
#include "DoctorEntries.h"
#include "Entries.h"
#include "Files.h"
#include "ModuleEntries.h"

#include <QtTest>

Q_DECLARE_METATYPE(Report)

namespace {

const qint64 second = 1000000000;
const qint64 noon = 1767268800 * second; // 2026-01-01 12:00:00 UTC
const QString pump = "processdata://PumpStation/Pump/1/";
const QString noLeaf = "PumpStation/Pump/1 has no such leaf";
const QString noUrl = "not a valid selector URL (processdata://MODULE/OBJECT/INSTANCE/…/LEAF)";

QVector<Entry> entriesOf(const QVector<Row> &rows, const QVector<Entry::State> &states = {})
{
    QVector<Entry> entries;
    for (int i = 0; i < rows.size(); ++i) {
        Entry entry;
        entry.state = states.value(i);
        entry.rows = {rows.at(i)};
        entries.append(entry);
    }
    return entries;
}

ReadResult result(const QString &path, const QVariant &value, const QString &unit, qint64 age,
                  ProcessDataDefinitions::ErrorTypes errorType = ProcessDataDefinitions::NoError)
{
    return {pump + path,
            ProcessValue(value, errorType, noon - age * second),
            {{"type", "float64"}, {"unit", unit}},
            {}};
}

Report readReport()
{
    Report report{"selector.read/1", readColumns(), {}};
    const QVector<ReadResult> results{
        result("drive/speed", 1450.5, "1/min", 0),
        result("drive/setpoint", 900, "1/min", 3),
        result("drive/running", true, "", 150),
        result("plate/name", "north,\nline two, and so on until nobody can see the end of it", "",
               7 * 3600),
        result("drive/temperature", 71.25, "°C", 3 * 86400, ProcessDataDefinitions::SourceLost),
        result("clock%20ahead", 5, "", -90),
        {pump + "idle", ProcessValue(ProcessDataDefinitions::NotInitialized), {}, {}},
        {pump + "drive/spede",
         ProcessValue(ProcessDataDefinitions::NoValue),
         {},
         {Finding::NoSuchLeaf, noLeaf}},
        {pump + "drive/speed?deactivated",
         ProcessValue(ProcessDataDefinitions::NoValue),
         {},
         {Finding::Deactivated, "deactivated"}},
        {"nonsense",
         ProcessValue(ProcessDataDefinitions::NoValue),
         {},
         {Finding::InvalidUrl, noUrl}},
    };
    for (const ReadResult &one : results) {
        report.entries.append(readEntry(one));
    }
    return report;
}

Report writeReport()
{
    Report report{"selector.write/1", writeColumns(), {}};
    const QJsonObject speed{{"unit", "1/min"}};
    const QVector<WriteResult> results{
        {pump + "drive/setpoint", 1200.0, "1200", speed, {}},
        {pump + "drive/setpoint",
         {},
         "4000",
         speed,
         {Finding::ValueRefused, "\"4000\" is above the maximum 3000"}},
        {pump + "plate/name", {}, "x", {}, {Finding::ReadOnly, "the leaf is read-only"}},
        {pump + "drive/spede", {}, "1", {}, {Finding::NoSuchLeaf, noLeaf}},
    };
    for (const WriteResult &one : results) {
        report.entries.append(writeEntry(one));
    }
    return report;
}

Report propertiesReport()
{
    return {"selector.properties/1",
            propertiesColumns(),
            {propertiesEntry({pump + "drive/speed",
                              {{"description",
                                "Speed of the shaft, filtered over 100 ms, as the "
                                "drive's own controller reports it"},
                               {"maximum", 3000},
                               {"minimum", 0},
                               {"unit", "1/min"}},
                              {}}),
             propertiesEntry({pump + "drive/spede", {}, {Finding::NoSuchLeaf, noLeaf}})}};
}

Report browseReport()
{
    Report report{"selector.browse/1", leafColumns(), {}};
    const auto add = [&report](const QString &path, const QJsonObject &properties) {
        report.entries.append(leafEntry(pump + path, path, properties));
    };
    add("drive/speed",
        {{"type", "float64"},
         {"unit", "1/min"},
         {"readOnly", true},
         {"description",
          "Speed of the shaft, filtered over 100 ms, as the drive's own controller "
          "reports it, and what else the text says of it"}});
    add("drive/setpoint",
        {{"type", "float64"}, {"unit", "1/min"}, {"description", "Wanted speed"}});
    add("a/group/of/a/group/of/a/group/that/is/quite/far/down/the/first",
        {{"type", "uint32"}, {"readOnly", true}, {"description", "The first of two"}});
    add("a/group/of/a/group/of/a/group/that/is/quite/far/down/the/second",
        {{"type", "uint32"}, {"readOnly", true}, {"description", "The second of two"}});
    return report;
}

// Rows of names end with them.
Report browseTreeReport()
{
    Report report{"selector.browse/1", columnsOf("name type unit access description"), {}};
    for (const char *name : {"PumpStation", "  Pump", "    1", "      drive"}) {
        Entry entry;
        entry.rows.append(Row{QString(name)});
        report.entries.append(entry);
    }
    report.entries += entriesOf({{QString("        speed"), QString("float64"), QString("1/min"),
                                  QString("read-only"), QString("Measured speed")}});
    return report;
}

Report browseModuleReport()
{
    return {"selector.browse/1", columnsOf("place module object instance note"),
            entriesOf({{QString("PumpStation/Pump/1"), QString("PumpStation"), QString("Pump"),
                        QString("1"), QString()},
                       {QString("PumpStation/Pump/2"), QString("PumpStation"), QString("Pump"),
                        QString("2"), QString()},
                       {QString("PumpStation/Tank/"), QString("PumpStation"), QString("Tank"),
                        QString(), QString()}})};
}

Report checkReport()
{
    return {"selector.check/1", columnsOf("line> url result note"),
            entriesOf({{QString("1"), pump + "drive/speed", QString("ok"), QString()},
                       {QString("2"), pump + "drive/spede", QString("noSuchLeaf"), noLeaf},
                       {QString("4"), pump + "drive/speed", QString("duplicate"),
                        QString("line 1 names the same leaf")},
                       {QString("12"), QString("nonsense"), QString("invalidUrl"), noUrl}},
                      {Entry::Good, Entry::Failed, Entry::Doubtful, Entry::Failed})};
}

Report diffReport()
{
    return {"selector.diff/1", columnsOf("index> url result what before after"),
            entriesOf({{QString(), pump + "drive/speed", QString("breaks"), QString("unit"),
                        QString("1/min"), QString("1/s")},
                       {QString(), pump + "drive/running", QString("breaks"), QString("leaf"),
                        QString("bool"), QString("nothing")},
                       {QString(), pump + "drive/setpoint", QString("differs"),
                        QString("description"), QString("Wanted speed of the shaft"),
                        QString("Wanted speed of the shaft, which the drive reaches slowly")}},
                      {Entry::Failed, Entry::Failed, Entry::Good})};
}

Report doctorReport()
{
    Report report{"selector.doctor/1", doctorColumns(), {}};
    DoctorFinding removed = DoctorFinding::good("buffers", "its publisher is dead: process 4711");
    removed.subject = "/dev/shm/processdata.PumpStation_Pump_1.7";
    removed.action = "removed";
    const QVector<DoctorFinding> findings{
        DoctorFinding::good("versions", "selector 1.0.0, buffer layout 2, Qt 5.15.8"),
        DoctorFinding::good("bus",
                            "unix:path=/run/dbus/system_bus_socket,guid=0123456789abcdef01234567, "
                            "4 modules on it"),
        DoctorFinding::error("registry", "NotHere",
                             {Finding::NotRegistered, "neither on the bus nor registered",
                              "start its service, or fix the name"}),
        DoctorFinding::warning("permissions", "/dev/shm/processdata.PumpStation_Pump_1.7",
                               {Finding::OpenToAll, "every user may read it",
                                "set its mode to 0640, or give the publisher an umask"}),
        removed};
    for (const DoctorFinding &finding : findings) {
        report.entries.append(doctorEntry(finding));
    }
    return report;
}

Report explainReport()
{
    return {"selector.explain/1", columnsOf("step result finding advice"),
            entriesOf({{Cell("text", "text"), QString("ok"), QString("well formed"), QString()},
                       {Cell("buffer file", "bufferFile"), QString("ok"),
                        QString("/dev/shm/processdata.PumpStation_Pump_1.7, 576 bytes"), QString()},
                       {Cell("leaf", "leaf"), QString("failed"),
                        QString("PumpStation/Pump/1 has no leaf \"drive/spede\""),
                        QString("did you mean \"drive/speed\"? selector browse PumpStation/Pump/1 "
                                "lists its leaves")},
                       {Cell("value", "value"), QString("skipped"), QString(), QString()}},
                      {Entry::Good, Entry::Good, Entry::Failed, Entry::Skipped})};
}

Report snapshotReport()
{
    return {"selector.snapshot/1", columnsOf("source file leaves> values> note"),
            entriesOf({{QString("PumpStation/Pump/1"),
                        QString("/var/lib/backups/before-the-update/PumpStation_Pump_1.pdd"),
                        QString("14"), QString("12"), QString()},
                       {QString("PumpStation/Pump/2"), QString(), QString(), QString(),
                        QString("the service of module PumpStation is not running")}},
                      {Entry::Good, Entry::Failed})};
}

Report applyReport()
{
    const auto item = [](int line, const QString &path, const QVariant &value, double before,
                         ApplyItem::Verdict verdict, const Finding &finding) {
        ApplyItem one;
        one.checked.line = {line, pump + path, value.toString(), true};
        one.checked.properties = QJsonObject{{"unit", "1/min"}};
        one.checked.value = value;
        one.before = ProcessValue(before, ProcessDataDefinitions::NoError, noon);
        one.verdict = verdict;
        one.finding = finding;
        return applyEntry(one);
    };
    return {"selector.apply/1",
            applyColumns(),
            {item(2, "drive/setpoint", 1200.0, 900, ApplyItem::Verified, {}),
             item(3, "drive/ramp", 4.5, 2.25, ApplyItem::NotRestored,
                  {Finding::NotWritten,
                   "the publisher did not take the value; what it holds now is "
                   "not known"}),
             item(4, "drive/limit", 3000.0, 1e-7, ApplyItem::Left,
                  {Finding::LeftOut, "not written, another item failed"})}};
}

Report modulesReport()
{
    return {"selector.modules/1",
            moduleColumns(),
            {moduleEntry({"PumpStation", {"Pump/1/AnalogSelector", "Pump/1/DigitalSelector"}}),
             moduleEntry({"Tank", {}}), moduleEntry({QString(), {}})}};
}

QString onScreens(const Report &report)
{
    QString text;
    for (const int width : {80, 120, 300}) {
        Style style;
        style.width = width;
        style.now = noon;
        text += QString("== %1 columns\n").arg(width) + render(report, style);
    }
    return text;
}

} // namespace

class ScreenGoldenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tablesAreAsWritten_data();
    void tablesAreAsWritten();
    void noLineOfTheseTablesIsWiderThanItsScreen_data() { tablesAreAsWritten_data(); }
    void noLineOfTheseTablesIsWiderThanItsScreen();
};

void ScreenGoldenTest::tablesAreAsWritten_data()
{
    QTest::addColumn<Report>("report");
    QTest::newRow("read") << readReport();
    QTest::newRow("write") << writeReport();
    QTest::newRow("properties") << propertiesReport();
    QTest::newRow("browse") << browseReport();
    QTest::newRow("browse-tree") << browseTreeReport();
    QTest::newRow("browse-module") << browseModuleReport();
    QTest::newRow("check") << checkReport();
    QTest::newRow("diff") << diffReport();
    QTest::newRow("doctor") << doctorReport();
    QTest::newRow("explain") << explainReport();
    QTest::newRow("snapshot") << snapshotReport();
    QTest::newRow("apply") << applyReport();
    QTest::newRow("modules") << modulesReport();
}

void ScreenGoldenTest::tablesAreAsWritten()
{
    QFETCH(const Report, report);
    const QString text = onScreens(report);
    const QString fileName = QString(GOLDEN "/%1.txt").arg(QTest::currentDataTag());
    if (qEnvironmentVariableIsSet("SELECTOR_UPDATE_GOLDEN")) {
        QVERIFY(writeFile(fileName, text.toUtf8()));
    }
    const QStringList wanted = QString::fromUtf8(contentOf(fileName)).split('\n');
    const QStringList shown = text.split('\n');
    for (int i = 0; i < qMax(wanted.size(), shown.size()); ++i) {
        QVERIFY2(wanted.value(i) == shown.value(i),
                 qPrintable(QString("line %1\n  golden: %2\n  shown:  %3")
                                .arg(i + 1)
                                .arg(wanted.value(i), shown.value(i))));
    }
    QCOMPARE(shown.size(), wanted.size());
}

void ScreenGoldenTest::noLineOfTheseTablesIsWiderThanItsScreen()
{
    QFETCH(const Report, report);
    for (int width = 60; width < 200; ++width) {
        Style style;
        style.width = width;
        style.now = noon;
        const QStringList lines = render(report, style).split('\n');
        for (const QString &line : lines) {
            // Values, and words of notes, are never broken.
            QVERIFY2(line.size() <= width || !line.trimmed().contains("  "), qPrintable(line));
        }
    }
}

QTEST_APPLESS_MAIN(ScreenGoldenTest)
#include "ScreenGoldenTest.moc"
