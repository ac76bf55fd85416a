// SPDX-License-Identifier: MIT
// What scripts may rely on: JSON as its schemas say, exit codes, one time limit for a request.
#include "Files.h"
#include "SchemaCheck.h"
#include "SelectorSystemTest.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

class SelectorContractTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void outputKeepsItsSchema_data();
    void outputKeepsItsSchema();
    void listsAndSnapshotsKeepTheirSchemas();
    void theSchemaCheckRefusesWhatASchemaDoesNotSay_data();
    void theSchemaCheckRefusesWhatASchemaDoesNotSay();
    void jStandsForJson();
    void missingPermissionExitsWithFive_data();
    void missingPermissionExitsWithFive();
    void oneTimeLimitHoldsForAllServicesTogether();
};

namespace {

const QJsonArray elements{
    leaf("speed", "float64", {{"unit", "1/min"}, {"selectorType", "AnalogSelector"}}),
    leaf("name", "string", {{"capacity", 32}, {"readOnly", true}}),
    leaf("idle", "bool"),
};

} // namespace

void SelectorContractTest::init()
{
    SystemTest::init();
    bringUp(elements);
    VERIFY_COMMAND(publisher->publish("speed", 1450.5));
}

void SelectorContractTest::outputKeepsItsSchema_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString good = "processdata://MODULE/Controller/1/speed";
    const QString idle = "processdata://MODULE/Controller/1/idle";
    const QString name = "processdata://MODULE/Controller/1/name";
    const QString none = "processdata://MODULE/Controller/1/none";
    QTest::newRow("modules") << QStringList{"modules"};
    QTest::newRow("modules of a type") << QStringList{"modules", "--type", "AnalogSelector"};
    QTest::newRow("browse the system") << QStringList{"browse"};
    QTest::newRow("browse a module") << QStringList{"browse", "MODULE"};
    QTest::newRow("browse leaves") << QStringList{"browse", "MODULE/Controller/1"};
    QTest::newRow("browse nothing") << QStringList{"browse", "MODULE/Controller/1/none"};
    QTest::newRow("read") << QStringList{"read", good, idle, none, good + "?deactivated", "x"};
    QTest::newRow("read with labels") << QStringList{"read", "a=" + good, "b=" + none};
    QTest::newRow("watch with labels") << QStringList{"watch", "--count", "1", "a=" + good};
    QTest::newRow("properties with labels") << QStringList{"properties", "a=" + good};
    QTest::newRow("explain with a label") << QStringList{"explain", "a=" + good};
    QTest::newRow("write") << QStringList{"write", "--verify", "a=" + good, "2",  name,
                                          "x",     none,       "1",         idle, "x"};
    QTest::newRow("properties") << QStringList{"properties", good, none, name};
    QTest::newRow("no such property") << QStringList{"properties", "--property", "unit", name};
    QTest::newRow("watch") << QStringList{"watch", "--count", "3", good, idle, none};
    QTest::newRow("watch by rows")
        << QStringList{"watch", "--wide", "--every", "20", "--count", "2", good, idle, none};
    QTest::newRow("explain") << QStringList{"explain", good};
    QTest::newRow("explain a failure") << QStringList{"explain", none};
    QTest::newRow("doctor") << QStringList{"doctor", "MODULE", "NotHere"};
    QTest::newRow("doctor --clean") << QStringList{"doctor", "--clean", "MODULE"};
}

void SelectorContractTest::outputKeepsItsSchema()
{
    QFETCH(const QStringList, arguments);
    ChildProcess client(SELECTOR, filledIn(arguments) + QStringList{"--format", "json"});
    QVERIFY(client.run());
    QVERIFY2(client.output().contains("selector." + arguments.first().toUtf8() + "/1"),
             client.report().constData());
    const QByteArray problems = schemaProblems(client.output());
    QVERIFY2(problems.isEmpty(), problems.constData());
}

void SelectorContractTest::listsAndSnapshotsKeepTheirSchemas()
{
    const QTemporaryDir directory;
    const QString list = directory.filePath("list");
    QByteArray lines;
    for (const char *line : {"speed 2", "name x", "none 1", "speed 3", "idle?deactivated on"}) {
        lines += selectorUrl(module, line).toUtf8() + '\n';
    }
    QVERIFY(writeFile(list, lines));
    const QString before = directory.filePath("before");
    const QString after = directory.filePath("after");
    const auto keepsItsSchema = [](const QStringList &arguments) {
        ChildProcess client(SELECTOR, arguments + QStringList{"--format", "json"});
        if (!client.run()
            || !client.output().contains("selector." + arguments.first().toUtf8() + "/1")) {
            return client.report();
        }
        return schemaProblems(client.output());
    };

    QCOMPARE(keepsItsSchema({"check", list}), QByteArray());
    QCOMPARE(keepsItsSchema({"apply", list}), QByteArray());
    QCOMPARE(keepsItsSchema({"apply", "--dry-run", list}), QByteArray());
    QCOMPARE(keepsItsSchema({"snapshot", "-o", before, module, "NotHere/O/1"}), QByteArray());
    VERIFY_COMMAND(publisher->replaceDescription(description({leaf("speed", "int8")})));
    QCOMPARE(keepsItsSchema({"snapshot", "-o", after, module}), QByteArray());
    QCOMPARE(keepsItsSchema({"diff", before, after}), QByteArray());
    QCOMPARE(keepsItsSchema({"diff", before, after, "-f", list}), QByteArray());
}

void SelectorContractTest::theSchemaCheckRefusesWhatASchemaDoesNotSay_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("unknown schema")
        << QByteArray(R"({"schema":"selector.none/1"})") << QByteArray("no schema");
    QTest::newRow("missing key") << QByteArray(
        R"({"schema":"selector.read/1","results":[{"url":"a","status":"ok"}]})")
                                 << QByteArray("'value' is a required property");
    QTest::newRow("wrong value") << QByteArray(
        R"({"schema":"selector.properties/1","results":[{"url":"a","status":"fine"}]})")
                                 << QByteArray("'fine' is not one of");
    QTest::newRow("undescribed key") << QByteArray(
        R"({"schema":"selector.properties/1","results":[{"url":"a","status":"ok","x":1}]})")
                                     << QByteArray(".results[].x is not described");
}

void SelectorContractTest::theSchemaCheckRefusesWhatASchemaDoesNotSay()
{
    QFETCH(const QByteArray, document);
    QFETCH(const QByteArray, problem);
    const QByteArray problems = schemaProblems(document);
    QVERIFY2(problems.contains(problem), problems.constData());
}

void SelectorContractTest::jStandsForJson()
{
    const QString url = selectorUrl(module, "speed");
    ChildProcess shortly(SELECTOR, {"properties", "-j", url});
    ChildProcess fully(SELECTOR, {"properties", "--format", "json", url});
    QVERIFY(shortly.run() && fully.run());
    QVERIFY2(fully.output().startsWith('{'), fully.report().constData());
    QCOMPARE(shortly.output(), fully.output());
}

void SelectorContractTest::missingPermissionExitsWithFive_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("readable");
    const QString url = "processdata://MODULE/Controller/1/speed";
    QTest::newRow("read") << QStringList{"read", url} << false;
    QTest::newRow("write a buffer that may be read") << QStringList{"write", url, "1"} << true;
}

void SelectorContractTest::missingPermissionExitsWithFive()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const bool, readable);
    const QStringList files = buffersOf(module);
    QCOMPARE(files.size(), 1);
    QVERIFY(QFile::setPermissions("/dev/shm/" + files.first(),
                                  readable ? QFile::ReadOwner | QFile::ReadUser
                                           : QFile::Permissions()));
    QStringList command = powerless() + QStringList{SELECTOR} + filledIn(arguments);
    const QString program = command.takeFirst();
    ChildProcess client(program, command);
    VERIFY_RUN(client, 5);
}

void SelectorContractTest::oneTimeLimitHoldsForAllServicesTogether()
{
    QStringList urls;
    for (const char *more : {"a", "b", "c", "d"}) {
        VERIFY_COMMAND(publisher->create(module + more, "Controller", "1", description(elements)));
        urls += selectorUrl(module + more, "speed");
    }
    publisher->process().suspend();

    QElapsedTimer elapsed;
    elapsed.start();
    ChildProcess client(SELECTOR, QStringList{"read", "--timeout", "2"} + urls);
    VERIFY_RUN(client, 4);
    QVERIFY2(elapsed.elapsed() < 6000, "each service had a time limit of its own");
    for (const QString &url : qAsConst(urls)) {
        QVERIFY2(client.output().contains(url.toUtf8()), client.report().constData());
    }
}

QTEST_GUILESS_MAIN(SelectorContractTest)
#include "SelectorContractTest.moc"
