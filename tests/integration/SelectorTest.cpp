// SPDX-License-Identifier: MIT
// The command line client against running services: formats, exit codes, watching.
#include "SelectorSystemTest.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class SelectorTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aTableNamesUnitErrorAndReason();
    void jsonIsOneDocumentWithARowForEachSelector();
    void csvHasAHeaderAndARowForEachSelector();
    void exitCodesTellScriptsWhatHappened_data();
    void exitCodesTellScriptsWhatHappened();
    void withoutABusTheSystemIsOutOfReach_data();
    void withoutABusTheSystemIsOutOfReach();
    void aWrittenValueReachesItsService();
    void selectorsComeFromStandardInput();
    void modulesAndTheirLeavesAreListed();
    void watchingShowsChangesAndTheIndexListsOfBothSignals();
    void watchingEndsWithItsCount();
    void aHungServiceCostsOneTimeLimit();

private:
    QString url(const QString &path) const { return selectorUrl(module, path); }
};

namespace {

const QJsonObject speed
    = leaf("speed", "float64", {{"unit", "1/min"}, {"selectorType", "AnalogSelector"}});
const QJsonObject name = leaf("name", "string", {{"capacity", 32}, {"readOnly", true}});
const QJsonObject setpoint = leaf("setpoint", "int32", {{"minimum", 0}, {"maximum", 3000}});

// One JSON object for each line or document that the client printed.
QJsonObject json(const QByteArray &text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

void SelectorTest::init()
{
    SystemTest::init();
    bringUp({speed, name, setpoint});
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
    VERIFY_COMMAND(publisher->publish("name", "north, \"old\" side"));
    VERIFY_COMMAND(publisher->publish("setpoint", 100));
}

void SelectorTest::aTableNamesUnitErrorAndReason()
{
    ChildProcess client(SELECTOR, {"read", url("speed"), url("nothing")});
    QVERIFY(client.run());

    const QList<QByteArray> lines = client.output().split('\n');
    QVERIFY2(lines.size() == 4 && lines.at(3).isEmpty(), client.report().constData());
    QVERIFY(lines.at(0).startsWith("URL"));
    const QList<QByteArray> cells = lines.at(1).simplified().split(' ');
    QCOMPARE(cells.mid(0, 4),
             (QList<QByteArray>{url("speed").toUtf8(), "1450.5", "1/min", "NoError"}));
    QVERIFY2(lines.at(2).contains("no such leaf"), lines.at(2).constData());
    QVERIFY2(!client.output().contains('\x1b'), "colour although this is no terminal");
}

void SelectorTest::jsonIsOneDocumentWithARowForEachSelector()
{
    ChildProcess client(SELECTOR,
                        {"read", "--format", "json", url("speed"), url("nothing"), url("name")});
    QVERIFY(client.run());

    const QJsonArray rows = json(client.output()).value("results").toArray();
    QVERIFY2(rows.size() == 3, client.report().constData());
    QCOMPARE(rows.at(0).toObject().value("value"), QJsonValue(1450.5));
    QCOMPARE(rows.at(0).toObject().value("unit"), QJsonValue("1/min"));
    QCOMPARE(rows.at(0).toObject().value("errorType"), QJsonValue("NoError"));
    QCOMPARE(rows.at(1).toObject().value("code"), QJsonValue("noSuchLeaf"));
    QCOMPARE(rows.at(1).toObject().value("value"), QJsonValue());
    QCOMPARE(rows.at(2).toObject().value("value"), QJsonValue("north, \"old\" side"));
}

void SelectorTest::csvHasAHeaderAndARowForEachSelector()
{
    ChildProcess client(SELECTOR, {"read", "--format", "csv", url("speed"), url("name")});
    QVERIFY(client.run());

    const QList<QByteArray> lines = client.output().split('\n');
    QVERIFY2(lines.size() == 4 && lines.at(3).isEmpty(), client.report().constData());
    QCOMPARE(lines.at(0), QByteArray("url,value,unit,error,time,note,label"));
    QVERIFY(lines.at(1).startsWith(url("speed").toUtf8() + ",1450.5,1/min,NoError,"));
    QVERIFY(
        lines.at(2).startsWith(url("name").toUtf8() + ",\"north, \"\"old\"\" side\",,NoError,"));
}

void SelectorTest::exitCodesTellScriptsWhatHappened_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");

    const QString good = "processdata://MODULE/Controller/1/speed";
    const QString bad = "processdata://MODULE/Controller/1/nothing";
    const QString writable = "processdata://MODULE/Controller/1/setpoint";
    const QString readOnly = "processdata://MODULE/Controller/1/name";
    for (const char *const format : {"table", "json", "csv"}) {
        const auto row = [format](const char *what) -> QTestData & {
            return QTest::newRow(qPrintable(QString("%1, %2").arg(what, format)));
        };
        const QStringList formatted{"--format", format};
        row("read, all good") << QStringList{"read", good} + formatted << 0;
        row("read, one of two fails") << QStringList{"read", bad, good} + formatted << 1;
        row("write") << QStringList{"write", writable, "5"} + formatted << 0;
        row("write a read-only leaf") << QStringList{"write", readOnly, "x"} + formatted << 1;
        row("write past the maximum") << QStringList{"write", writable, "3001"} + formatted << 1;
        row("properties") << QStringList{"properties", good} + formatted << 0;
        row("a property that is not there")
            << QStringList{"properties", good, "--property", "colour"} + formatted << 1;
        row("modules") << QStringList{"modules"} + formatted << 0;
        row("browse") << QStringList{"browse", "MODULE"} + formatted << 0;
        row("browse a module that is not there")
            << QStringList{"browse", "NotHere"} + formatted << 1;
        row("watch once") << QStringList{"watch", good, "--count", "1"} + formatted << 0;
    }
    QTest::newRow("no subcommand") << QStringList{} << 2;
    QTest::newRow("no such subcommand") << QStringList{"erase"} << 2;
    QTest::newRow("no such option") << QStringList{"read", "--fast", good} << 2;
    QTest::newRow("no such format") << QStringList{"read", "--format", "xml", good} << 2;
    QTest::newRow("nothing to read") << QStringList{"read"} << 2;
    QTest::newRow("a value is missing") << QStringList{"write", writable} << 2;
    QTest::newRow("help") << QStringList{"--help"} << 0;
    QTest::newRow("help of a subcommand") << QStringList{"watch", "--help"} << 0;
    QTest::newRow("version") << QStringList{"--version"} << 0;
}

void SelectorTest::exitCodesTellScriptsWhatHappened()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, exitCode);

    ChildProcess client(SELECTOR, filledIn(arguments));
    VERIFY_RUN(client, exitCode);
    // Results to standard output, and a wrong command line to standard error.
    QVERIFY2(client.output().isEmpty() == (exitCode == 2), client.report().constData());
    QVERIFY2(exitCode != 2 || !client.errors().isEmpty(), client.report().constData());
    QVERIFY2(exitCode != 0 || client.errors().isEmpty(), client.report().constData());
}

void SelectorTest::withoutABusTheSystemIsOutOfReach_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString selector = "processdata://MODULE/Controller/1/speed";
    QTest::newRow("modules") << QStringList{"modules"};
    QTest::newRow("browse") << QStringList{"browse"};
    QTest::newRow("read") << QStringList{"read", selector};
    QTest::newRow("write") << QStringList{"write", selector, "1"};
    QTest::newRow("watch") << QStringList{"watch", selector};
    QTest::newRow("properties") << QStringList{"properties", selector};
}

void SelectorTest::withoutABusTheSystemIsOutOfReach()
{
    QFETCH(const QStringList, arguments);
    bus->stop();

    ChildProcess client(SELECTOR, filledIn(arguments));
    VERIFY_RUN(client, 3);
    QVERIFY2(client.output().isEmpty(), client.report().constData());
    QVERIFY2(client.errors().contains("bus"), client.report().constData());
}

void SelectorTest::aWrittenValueReachesItsService()
{
    ChildProcess client(SELECTOR, {"write", url("setpoint"), "2100", url("speed"), "-1.5"});
    VERIFY_RUN(client, 0);
    QSet<QByteArray> written;
    publisher->process().waitForLine([&written](const QByteArray &line) {
        written += line;
        return written.contains("written setpoint 2100") && written.contains("written speed -1.5");
    });
    QCOMPARE(written.size(), 2);
}

void SelectorTest::selectorsComeFromStandardInput()
{
    ChildProcess client(SELECTOR, {"read", "--format", "csv", "-f", "-"});
    QVERIFY(client.start());
    client.write("# a comment\n" + url("speed").toUtf8() + "\n\n" + url("setpoint").toUtf8());
    client.closeInput();
    QVERIFY(client.waitForEnd());

    QVERIFY2(client.exitCode() == 0, client.report().constData());
    QCOMPARE(client.output().count('\n'), 3);
    QVERIFY(client.output().contains(url("setpoint").toUtf8() + ",100,"));
}

void SelectorTest::modulesAndTheirLeavesAreListed()
{
    ChildProcess modules(SELECTOR, {"modules", "--type", "AnalogSelector", "--format", "csv"});
    QVERIFY(modules.run());
    QVERIFY2(modules.output().contains(module.toUtf8()), modules.report().constData());
    QVERIFY2(modules.output().contains("Controller/1/AnalogSelector"),
             modules.report().constData());

    ChildProcess none(SELECTOR, {"modules", "--type", "DigitalSelector", "--format", "csv"});
    QVERIFY(none.run());
    QVERIFY2(!none.output().contains(module.toUtf8()), none.report().constData());

    ChildProcess leaves(SELECTOR, {"browse", module + "/Controller/1", "--format", "csv"});
    QVERIFY(leaves.run());
    for (const char *path : {"speed", "name", "setpoint"}) {
        QVERIFY2(leaves.output().contains(url(path).toUtf8()), leaves.report().constData());
    }
}

void SelectorTest::watchingShowsChangesAndTheIndexListsOfBothSignals()
{
    ChildProcess client(SELECTOR,
                        {"watch", "--format", "json", "--interval", "20", url("speed"), url("name"),
                         url("setpoint")});
    QVERIFY(client.start());
    const auto waitFor = [&client](const QString &key, const QJsonValue &value) {
        return client.waitForLine(
            [&](const QByteArray &line) { return json(line).value(key) == value; });
    };
    QVERIFY2(!waitFor("value", 1450.5).isNull(), client.report().constData());

    VERIFY_COMMAND(publisher->publish("speed", 1451.5));
    QVERIFY2(!waitFor("value", 1451.5).isNull(), client.report().constData());

    const QJsonObject otherUnit = leaf("speed", "float64", {{"unit", "Hz"}});
    VERIFY_COMMAND(publisher->replaceProperties(description({otherUnit, name, setpoint})));
    const QByteArray properties = waitFor("indices", QJsonArray{0});
    QVERIFY2(properties.contains("propertyChanged"), client.report().constData());

    VERIFY_COMMAND(publisher->replaceDescription(description({name, leaf("setpoint", "int64")})));
    const QByteArray layout = waitFor("indices", QJsonArray{0, 2});
    QVERIFY2(layout.contains("processDataDescriptionChanged"), client.report().constData());

    client.interrupt();
    QVERIFY(client.waitForEnd());
    QVERIFY2(client.exitCode() == 130, client.report().constData());
}

void SelectorTest::watchingEndsWithItsCount()
{
    ChildProcess client(
        SELECTOR, {"watch", "--format", "csv", "--interval", "20", "--count", "2", url("speed")});
    QVERIFY(client.start());
    QVERIFY2(!client.waitForLineWith(",1450.5,").isNull(), client.report().constData());

    VERIFY_COMMAND(publisher->publish("speed", 7.25));

    QVERIFY2(client.waitForEnd(), client.report().constData());
    QVERIFY2(client.exitCode() == 0, client.report().constData());
    QVERIFY2(client.output().count(",7.25,") == 1, client.report().constData());
}

void SelectorTest::aHungServiceCostsOneTimeLimit()
{
    publisher->process().suspend();

    ChildProcess client(SELECTOR, {"read", "--timeout", "0.3", url("speed"), url("setpoint")});
    VERIFY_RUN(client, 4);
    QCOMPARE(client.output().count(url("").toUtf8()), 2);
}

QTEST_GUILESS_MAIN(SelectorTest)
#include "SelectorTest.moc"
