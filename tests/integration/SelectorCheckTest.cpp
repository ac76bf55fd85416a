// SPDX-License-Identifier: MIT
// selector check, snapshot and diff against a running system and without one.
#include "Files.h"
#include "SystemTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class SelectorCheckTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aListIsCheckedAgainstTheSystem();
    void aSnapshotIsPlayedBack();
    void placesInOneSourceShareItsFile();
    void aListIsCheckedAgainstASnapshotWithoutASystem();
    void twoSnapshotsAreComparedByMeaning();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void withoutABusTheSystemIsOutOfReach_data();
    void withoutABusTheSystemIsOutOfReach();
    void whatIsNotThereFails();

private:
    QString url(const QString &path) const { return selectorUrl(module, path); }
    QString place() const { return module + "/Controller/1"; }
    QString file(const QString &name, const QStringList &lines) const;
    static QByteArray run(const QStringList &arguments, int exitCode)
    {
        return outputOf(SELECTOR, arguments, exitCode);
    }
    void takeSnapshot(const QString &name);

    QScopedPointer<PublisherProcess> publisher;
    QScopedPointer<QTemporaryDir> directory;
};

namespace {

const QJsonObject speed = leaf("speed", "float64", {{"unit", "1/min"}, {"maximum", 3000}});
const QJsonObject name = leaf("name", "string", {{"capacity", 32}, {"readOnly", true}});

} // namespace

void SelectorCheckTest::init()
{
    SystemTest::init();
    directory.reset(new QTemporaryDir);
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(
        module, description({speed, name, leaf("never", "int64"), leaf("setpoint", "int32")})));
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
    VERIFY_COMMAND(publisher->publish("name", "Süd"));
    VERIFY_COMMAND(publisher->publish("setpoint", -7));
}

void SelectorCheckTest::cleanup()
{
    publisher.reset();
    directory.reset();
    SystemTest::cleanup();
}

QString SelectorCheckTest::file(const QString &fileName, const QStringList &lines) const
{
    const QString path = directory->filePath(fileName);
    return writeFile(path, lines.join('\n').toUtf8()) ? path : QString();
}

void SelectorCheckTest::takeSnapshot(const QString &target)
{
    const QByteArray output
        = run({"snapshot", "--format", "csv", "--output", directory->filePath(target), place()}, 0);
    QCOMPARE(output,
             QString("source,file,leaves,values,note\n%1,%2/%3_Controller_1.pdd,4,3,\n")
                 .arg(place(), directory->filePath(target), module)
                 .toUtf8());
}

void SelectorCheckTest::aListIsCheckedAgainstTheSystem()
{
    const QString list = file("list",
                              {"# list", url("speed"), url("spede"), url("name") + " x",
                               url("setpoint?deactivated"), "nonsense", url("speed")});

    const QByteArray output = run({"check", list, "--format", "csv"}, 1);

    const QString expected
        = QString("line,url,result,note,label\n"
                  "2,%1,ok,,\n"
                  "3,%2,noSuchLeaf,\"%3 has no such leaf; did you mean \"\"speed\"\"?\",\n"
                  "4,%4,readOnly,the leaf is read-only,\n"
                  "5,%5,deactivated,deactivated,\n"
                  "6,processdata://nonsense,invalidUrl,")
              .arg(url("speed"), url("spede"), place(), url("name"), url("setpoint?deactivated"));
    QVERIFY2(output.startsWith(expected.toUtf8()), output.constData());
    QVERIFY2(output.contains(",duplicate,line 2 names the same leaf,\n"), output.constData());
    QVERIFY2(output.contains(("selector: line 3: " + url("spede") + ": ").toUtf8()),
             output.constData());
    const QByteArray json = run({"check", list, "--format", "json"}, 1);
    QVERIFY2(json.contains("\"schema\":\"selector.check/1\""), json.constData());
    QVERIFY(!run({"check", file("good", {url("speed") + " 10"})}, 0).isEmpty());
}

void SelectorCheckTest::aSnapshotIsPlayedBack()
{
    takeSnapshot("before");
    publisher.reset();
    ChildProcess simulator(SIMULATOR,
                           {directory->filePath("before/" + module + "_Controller_1.pdd")});
    QVERIFY2(simulator.start() && !simulator.waitForLineWith("ready").isNull(),
             simulator.report().constData());

    const QByteArray values = run(
        {"read", "--format", "csv", url("speed"), url("name"), url("setpoint"), url("never")}, 1);

    QVERIFY2(values.contains("/speed,1450.5,1/min,NoError,"), values.constData());
    QVERIFY2(values.contains(QString("/name,Süd,,NoError,").toUtf8()), values.constData());
    QVERIFY2(values.contains("/setpoint,-7,,NoError,"), values.constData());
    QVERIFY2(values.contains("/never,,,NotInitialized,"), values.constData());
    simulator.terminate();
    QVERIFY(simulator.waitForEnd());
}

void SelectorCheckTest::placesInOneSourceShareItsFile()
{
    const QString target = directory->filePath("parts");
    const QByteArray output = run({"snapshot", "--format", "csv", "--no-legend", "--output", target,
                                   place() + "/speed", place() + "/name"},
                                  0);
    const QString row = QString("%1,%2/%3_Controller_1.pdd,2,2,\n").arg(place(), target, module);
    QCOMPARE(output, (row + row).toUtf8());

    const QString list = file("list", {url("speed"), url("name"), url("setpoint")});
    const QByteArray checked = run({"check", "--against", target, list, "--format", "csv"}, 1);
    QCOMPARE(checked.count(",ok,"), 2);
    QVERIFY2(checked.contains(",noSuchLeaf,"), checked.constData());
}

void SelectorCheckTest::aListIsCheckedAgainstASnapshotWithoutASystem()
{
    takeSnapshot("before");
    publisher.reset();
    bus->stop();
    const QString list = file("list", {url("speed") + " 3001", url("gone")});

    const QByteArray output
        = run({"check", list, "--against", directory->filePath("before"), "--format", "csv"}, 1);

    QVERIFY2(output.contains(",valueRefused,\"\"\"3001\"\" is above the maximum 3000\",\n"),
             output.constData());
    QVERIFY2(output.contains(",noSuchLeaf,"), output.constData());
}

void SelectorCheckTest::twoSnapshotsAreComparedByMeaning()
{
    takeSnapshot("before");
    VERIFY_COMMAND(publisher->replaceDescription(
        description({leaf("setpoint", "int64"), leaf("extra", "bool"), name,
                     leaf("speed", "float64", {{"unit", "Hz"}, {"maximum", 4000}})})));
    QVERIFY(!run({"snapshot", "--output", directory->filePath("after"), place()}, 0).isEmpty());

    const QStringList both{directory->filePath("before"), directory->filePath("after")};
    const QByteArray output = run(QStringList{"diff", "--format", "csv"} + both, 1);
    QVERIFY2(output.startsWith(QString("index,url,result,what,before,after,label\n"
                                       ",%1,differs,maximum,3000,4000,\n"
                                       ",%1,breaks,unit,1/min,Hz,\n"
                                       ",%2,breaks,leaf,int64,nothing,\n"
                                       ",%3,breaks,type,int32,int64,\n"
                                       ",%4,differs,leaf,nothing,bool,\n")
                                   .arg(url("speed"), url("never"), url("setpoint"), url("extra"))
                                   .toUtf8()),
             output.constData());

    const QString list = file("list", {url("name"), url("speed?deactivated"), url("setpoint")});
    const QByteArray listed = run(QStringList{"diff", "-f", list, "--format", "json"} + both, 1);
    QVERIFY2(listed.contains("\"index\":2,"), listed.constData());
    QVERIFY2(!listed.contains("/speed"), listed.constData());
    QVERIFY2(listed.contains("\"schema\":\"selector.diff/1\""), listed.constData());

    QVERIFY(!run({"diff", both.first(), both.first()}, 0).isEmpty());
}

void SelectorCheckTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no list") << QStringList{"check"} << QByteArray("Expected one FILE.");
    QTest::newRow("no such list") << QStringList{"check", "/nowhere/list"}
                                  << QByteArray("/nowhere/list: No such file or directory");
    QTest::newRow("no such snapshot") << QStringList{"diff", "/nowhere/a", "/nowhere/b"}
                                      << QByteArray("/nowhere/a: No such file or directory");
    QTest::newRow("one snapshot alone")
        << QStringList{"diff", "a"} << QByteArray("Expected two snapshots.");
    QTest::newRow("no directory") << QStringList{"snapshot"}
                                  << QByteArray("Expected --output DIRECTORY.");
    QTest::newRow("a directory that cannot be")
        << QStringList{"snapshot", "-o", "/dev/null/x"}
        << QByteArray("/dev/null/x: the directory cannot be made");
}

void SelectorCheckTest::wrongUsageIsNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    const QByteArray output = run(arguments, 2);
    QVERIFY2(output.contains(reason), output.constData());
}

void SelectorCheckTest::withoutABusTheSystemIsOutOfReach_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("check") << QStringList{"check", "FILE"};
    QTest::newRow("snapshot") << QStringList{"snapshot", "-o", "DIR", "M/O/1"};
}

void SelectorCheckTest::withoutABusTheSystemIsOutOfReach()
{
    QFETCH(QStringList, arguments);
    arguments.replaceInStrings("FILE", file("list", {url("speed")}));
    arguments.replaceInStrings("DIR", directory->filePath("out"));
    bus->stop();
    QVERIFY(run(arguments, 3).contains("bus"));
}

void SelectorCheckTest::whatIsNotThereFails()
{
    const QString target = directory->filePath("out");
    const QByteArray output = run({"snapshot", "-o", target, "NotHere/O/1", place()}, 1);
    QVERIFY2(output.contains("the service of module NotHere is not running"), output.constData());
    QCOMPARE(QDir(target).entryList({"*.pdd"}).size(), 1);
    // No registry runs: the modules are those on the bus.
    QVERIFY(run({"snapshot", "-o", target}, 0).contains("whose services run"));
}

QTEST_GUILESS_MAIN(SelectorCheckTest)
#include "SelectorCheckTest.moc"
