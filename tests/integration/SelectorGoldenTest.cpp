// SPDX-License-Identifier: MIT
// Every command in every format, byte for byte as golden/ has it, with its reasons and exit code.
//
// SELECTOR_UPDATE_GOLDEN=1 in the environment writes the files anew; then read the difference.
#include "Files.h"
#include "ProviderListClient.h"
#include "SelectorSystemTest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class SelectorGoldenTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void outputIsAsWritten_data();
    void outputIsAsWritten();

private:
    QString normalized(QString text) const;
    QString outcome(const QStringList &arguments) const;

    QScopedPointer<QTemporaryDir> folder;
};

namespace {

// As long as the real name, so that columns keep their width.
const QString moduleInFiles("GoldenMODULE");

const QJsonArray elements{
    QJsonObject{{"name", "drive"},
                {"elements",
                 QJsonArray{leaf("speed", "float64",
                                 {{"unit", "1/min"},
                                  {"minimum", 0},
                                  {"maximum", 3000},
                                  {"description", "Wanted, \"quoted\""},
                                  {"selectorType", "AnalogSelector"}}),
                            leaf("on", "bool", {{"selectorType", "DigitalSelector"}})}}},
    leaf("name", "string", {{"capacity", 32}, {"readOnly", true}}),
    leaf("idle", "int64"),
    leaf("serial", "bytes", {{"capacity", 4}}),
};

const QString speed("processdata://MODULE/Controller/1/drive/speed");
const QString on("processdata://MODULE/Controller/1/drive/on");
const QString shortOn("MODULE/Controller/1/drive/on");
const QString name("processdata://MODULE/Controller/1/name");
const QString idle("processdata://MODULE/Controller/1/idle");
const QString serial("processdata://MODULE/Controller/1/serial");
const QString none("processdata://MODULE/Controller/1/drive/sped");

} // namespace

void SelectorGoldenTest::init()
{
    SystemTest::init();
    module = QString("Golden%1")
                 .arg(QCoreApplication::applicationPid() % 1000000, 6, 10, QLatin1Char('0'));
    qputenv("TZ", "UTC");
    folder.reset(new QTemporaryDir);
    bringUp(elements);
    VERIFY_COMMAND(publisher->publish("drive/speed", 1450.123456789012));
    VERIFY_COMMAND(publisher->publish("drive/on", true));
    VERIFY_COMMAND(publisher->publish("name", "north,\nline two"));
    QTRY_VERIFY_WITH_TIMEOUT(isRegistered(module), 20000);
    const QString list
        = QStringList{speed + " 2000",         name + " x", none + " 1", speed + " 3",
                      idle + "?deactivated 4", "nonsense 1"}
              .join('\n');
    QVERIFY(writeFile(folder->filePath("list"), list.toUtf8().replace("MODULE", module.toUtf8())));
    const QString good = QStringList{speed + " 2000", "run=" + shortOn + " off"}.join('\n');
    QVERIFY(writeFile(folder->filePath("good"), good.toUtf8().replace("MODULE", module.toUtf8())));
    const QByteArray head = R"({"module":"M","object":"O","instance":"1","elements":[)";
    QVERIFY(writeFile(folder->filePath("before"),
                      head + R"({"name":"a","type":"int8","unit":"V"},{"name":"b","type":"bool"},)"
                          + R"({"name":"c","type":"bool","description":"one"}]})"));
    QVERIFY(writeFile(folder->filePath("after"),
                      head + R"({"name":"a","type":"int8","unit":"A"},{"name":"d","type":"bool"},)"
                          + R"({"name":"c","type":"bool","description":"two"}]})"));
    QVERIFY(writeFile(folder->filePath("urls"),
                      "processdata://M/O/1/b\nsea=M/O/1/c\nprocessdata://M/O/1/e\n"));
}

void SelectorGoldenTest::cleanup()
{
    SelectorSystemTest::cleanup();
    folder.reset();
}

// Without what differs from run to run and from machine to machine.
QString SelectorGoldenTest::normalized(QString text) const
{
    text.replace(module, moduleInFiles);
    text.replace(folder->path(), "FOLDER");
    text.replace(bus->address(), "BUS");
    const QVector<QPair<const char *, const char *>> rules{
        {R"(\d{4}-\d\d-\d\d([T ])\d\d:\d\d:\d\d\.\d{3}([+-]\d\d:\d\d|Z)?)",
         "YYYY-MM-DD\\1hh:mm:ss.zzz\\2"},
        {R"((session"?[ ,:]+)\d+)", "\\1SESSION"},
        {R"((?m)^\d{7,}$)", "SESSION"},
        {R"(("timestampNs":")\d{19})", "\\1NANOSECONDS"},
        {R"(process \d+, user [\w-]+)", "process PID, user UID"},
        {R"( :1\.\d+)", " :1.N"},
        {R"((Controller_1\.|generation )\d+)", "\\1GENERATION"},
        {R"(owner [\w-]+, group [\w-]+)", "owner UID, group GID"},
        {R"(selector \d+\.\d+\.\d+)", "selector VERSION"},
        {R"(Qt 5\.\d+\.\d+)", "Qt VERSION"},
    };
    for (const auto &rule : rules) {
        text.replace(QRegularExpression(rule.first), rule.second);
    }
    return text;
}

// Output, reasons and exit code of all formats, one after the other.
QString SelectorGoldenTest::outcome(const QStringList &arguments) const
{
    QString all;
    const bool hasValues = QStringList{"modules", "browse", "read", "watch", "properties"}.contains(
        arguments.first());
    QVector<QStringList> formats{{"--format", "table"}, {"--format", "csv"}, {"--format", "json"}};
    if (hasValues) {
        formats.append({"--quiet"});
    }
    for (const QStringList &format : formats) {
        ChildProcess client(SELECTOR, arguments + format);
        if (!client.run()) {
            return QString::fromUtf8(client.report());
        }
        all += QString("== %1\n%2").arg(format.last(), QString::fromUtf8(client.output()));
        all += QString("-- errors\n%1").arg(QString::fromUtf8(client.errors()));
        all += QString("-- exit code %1\n").arg(client.exitCode());
    }
    return all;
}

void SelectorGoldenTest::outputIsAsWritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("widthVaries");
    const auto row = [](const char *name, const QStringList &arguments, bool widthVaries = false) {
        QTest::newRow(name) << arguments << widthVaries;
    };
    row("modules", {"modules"});
    row("modules-type", {"modules", "--type", "DigitalSelector"});
    row("browse-system", {"browse"});
    row("browse-module", {"browse", "MODULE"});
    row("browse-leaves", {"browse", "MODULE/Controller/1"});
    row("browse-missing", {"browse", "MODULE/Controller/2"});
    row("read", {"read", speed, on, name, idle, none, speed + "?deactivated", "nonsense"});
    row("read-labels", {"read", "fast=" + speed, shortOn, "run=" + shortOn + "?deactivated"});
    row("write", {"write", speed, "4000", on, "off", name, "x", none, "1", serial, "0x0102"});
    row("watch", {"watch", "--count", "4", "--interval", "20", speed, name, idle, none});
    row("watch-labels", {"watch", "--count", "2", "--interval", "20", "fast=" + speed, shortOn});
    row("properties", {"properties", speed, none}, true);
    row("properties-named", {"properties", "--property", "unit", speed, on});
    row("properties-labels", {"properties", "--property", "unit", "fast=" + speed});
    row("explain", {"explain", speed}, true);
    row("explain-failure", {"explain", none}, true);
    row("doctor", {"doctor", "MODULE"}, true);
    row("doctor-failure", {"doctor", "MODULE", "NotHere"}, true);
    row("doctor-clean", {"doctor", "--clean", "MODULE"}, true);
    row("check", {"check", "FOLDER/list"}, true);
    row("check-labels", {"check", "FOLDER/good"}, true);
    row("check-against", {"check", "FOLDER/urls", "--against", "FOLDER/before"}, true);
    row("snapshot", {"snapshot", "-o", "FOLDER/out", "MODULE", "NotHere/O/1"}, true);
    row("diff", {"diff", "FOLDER/before", "FOLDER/after"});
    row("diff-list", {"diff", "FOLDER/before", "FOLDER/after", "-f", "FOLDER/urls"});
    row("apply", {"apply", "FOLDER/list"}, true);
    row("apply-dry-run", {"apply", "--dry-run", "FOLDER/good"}, true);
    row("apply-verify", {"apply", "--verify", "FOLDER/good"}, true);
    row("complete-url", {"complete", "url", "processdata://MODULE/Controller/1/"});
    row("complete-place", {"complete", "place", "MODULE/"});
}

void SelectorGoldenTest::outputIsAsWritten()
{
    QFETCH(QStringList, arguments);
    QFETCH(const bool, widthVaries);
    arguments.replaceInStrings("MODULE", module);
    arguments.replaceInStrings("FOLDER", folder->path());

    QString text = normalized(outcome(arguments));
    if (widthVaries) {
        text.replace(QRegularExpression("  +"), "  ");
    }

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

QTEST_GUILESS_MAIN(SelectorGoldenTest)
#include "SelectorGoldenTest.moc"
