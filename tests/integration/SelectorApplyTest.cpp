// SPDX-License-Identifier: MIT
// selector apply on a running service: all values or none, and what scripts are told.
#include "SystemTest.h"

#include <QTest>

class SelectorApplyTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aListIsWrittenAndReadBack();
    void oneWrongLineLeavesTheServiceAlone();
    void aDryRunShowsWhatIsThereAndWritesNothing();
    void wrongUsageIsNamed_data();
    void wrongUsageIsNamed();
    void withoutABusTheSystemIsOutOfReach();

private:
    QString url(const QString &path) const { return selectorUrl(module, path); }
    QByteArray run(const QStringList &options, const QStringList &lines, int exitCode);

    QScopedPointer<PublisherProcess> publisher;
};

void SelectorApplyTest::init()
{
    SystemTest::init();
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->serve(
        module,
        description({leaf("speed", "float32", {{"unit", "1/min"}, {"maximum", 3000}}),
                     leaf("name", "string", {{"capacity", 32}}), leaf("on", "bool"),
                     leaf("fixed", "int32", {{"readOnly", true}})})));
    VERIFY_COMMAND(publisher->publish("speed", 900));
    VERIFY_COMMAND(publisher->publish("name", "old"));
    VERIFY_COMMAND(publisher->publish("on", false));
}

void SelectorApplyTest::cleanup()
{
    publisher.reset();
    SystemTest::cleanup();
}

// Output and errors; null with a warning when the exit code is another one.
QByteArray SelectorApplyTest::run(const QStringList &options, const QStringList &lines,
                                  int exitCode)
{
    return outputOf(SELECTOR, QStringList{"apply", "-", "--format", "csv"} + options, exitCode,
                    lines.join('\n').toUtf8());
}

void SelectorApplyTest::aListIsWrittenAndReadBack()
{
    const QByteArray output = run(
        {"--verify"},
        {"# recipe", url("speed") + " 1.8", url("name") + " two words", url("on") + "  on"}, 0);

    QCOMPARE(output,
             QString("line,url,before,value,unit,result,note,label\n"
                     "2,%1,900,1.8,1/min,verified,,\n"
                     "3,%2,old,two words,,verified,,\n"
                     "4,%3,false,true,,verified,,\n")
                 .arg(url("speed"), url("name"), url("on"))
                 .toUtf8());
    QCOMPARE(publisher->waitForWrite("name"), QByteArray("\"two words\""));
}

void SelectorApplyTest::oneWrongLineLeavesTheServiceAlone()
{
    const QByteArray output
        = run({"--rollback"},
              {url("on") + " on", url("speed") + " 3001", url("fixed") + " 1", url("gone") + " 1",
               url("on") + " off", url("name?deactivated") + " x"},
              1);

    QVERIFY2(output.contains(",left,\"not written, another item failed\",\n"), output.constData());
    QVERIFY2(output.contains("above the maximum 3000"), output.constData());
    QVERIFY2(output.contains(",failed,the leaf is read-only,\n"), output.constData());
    QVERIFY2(output.contains("has no such leaf,\n"), output.constData());
    QVERIFY2(output.contains(",failed,line 1 names the same leaf,\n"), output.constData());
    QVERIFY2(output.contains(",left,deactivated,\n"), output.constData());
    // Had "on" been written before, its report would come first.
    run({}, {url("on") + " on"}, 0);
    QCOMPARE(publisher->waitForWrite("on"), QByteArray("true"));
    QVERIFY2(!publisher->process().output().contains("written on false"),
             publisher->process().output().constData());
}

void SelectorApplyTest::aDryRunShowsWhatIsThereAndWritesNothing()
{
    const QByteArray output = run({"--dry-run"}, {url("speed") + " 1000"}, 0);
    QVERIFY2(output.contains(",900,1000,1/min,checked,,\n"), output.constData());

    ChildProcess reader(SELECTOR, {"read", "--format", "csv", url("speed")});
    QVERIFY(reader.run());
    QVERIFY2(reader.output().contains("/speed,900,"), reader.report().constData());
}

void SelectorApplyTest::wrongUsageIsNamed_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no value") << QStringList() << QStringList{"processdata://M/O/1/a 1", "", "b"}
                              << QByteArray("-: line 3: no value for processdata://b");
    QTest::newRow("an empty list")
        << QStringList() << QStringList{"# nothing"} << QByteArray("-: no selector in it");
    QTest::newRow("a dry run that verifies")
        << QStringList{"--dry-run", "--verify"} << QStringList{"a 1"} << QByteArray("--dry-run");
    QTest::newRow("two lists") << QStringList{"other"} << QStringList{"a 1"}
                               << QByteArray("Expected one FILE.");
}

void SelectorApplyTest::wrongUsageIsNamed()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, lines);
    QFETCH(QByteArray, reason);
    const QByteArray output = run(options, lines, 2);
    QVERIFY2(output.contains(reason), output.constData());
}

void SelectorApplyTest::withoutABusTheSystemIsOutOfReach()
{
    bus->stop();
    QVERIFY(run({}, {url("on") + " on"}, 3).contains("bus"));
}

QTEST_GUILESS_MAIN(SelectorApplyTest)
#include "SelectorApplyTest.moc"
