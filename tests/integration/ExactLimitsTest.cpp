// SPDX-License-Identifier: MIT
// Limits past an int64 on their whole way: description file, simulator, bus, library, snapshot, diff.
#include "Files.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class ExactLimitsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void clientsHaveEveryDigitAndHearOfAChangeByOne();
    void aSnapshotOfAGroupKeepsEveryDigitAndDiffSeesAChangeByOne();

private:
    QString file() const { return directory->filePath("meter.pdd"); }
    QByteArray write(const QByteArray &maximum) const;

    QScopedPointer<QTemporaryDir> directory;
    QScopedPointer<ChildProcess> simulator;
};

namespace {

const QByteArray highest("18446744073709551614");
const QByteArray oneLess("18446744073709551613");

} // namespace

void ExactLimitsTest::init()
{
    SystemTest::init();
    directory.reset(new QTemporaryDir);
    VERIFY_COMMAND(write(highest));
    simulator.reset(new ChildProcess(SIMULATOR, {file()}));
    QVERIFY2(simulator->start() && !simulator->waitForLineWith("ready").isNull(),
             simulator->report().constData());
}

void ExactLimitsTest::cleanup()
{
    simulator.reset();
    directory.reset();
    removeLeftBuffers(module);
    SystemTest::cleanup();
}

QByteArray ExactLimitsTest::write(const QByteArray &maximum) const
{
    const QByteArray text = R"({"format": "process-data-description/1",
        "module": ")"
        + module.toUtf8() + R"(", "object": "Controller", "instance": "1", "elements": [
        {"name": "level", "type": "int32",
         "simulate": {"kind": "constant", "value": 5}},
        {"name": "meter", "elements": [
            {"simulate": {"kind": "constant", "value": 7},
             "name": "total", "type": "uint64", "minimum": 0, "maximum": )"
        + maximum + "}]}]}";
    return writeFile(file(), text) ? QByteArray() : "no description file";
}

void ExactLimitsTest::clientsHaveEveryDigitAndHearOfAChangeByOne()
{
    SelectorHandlerProcessValue handler(
        {selectorUrl(module, "level"), selectorUrl(module, "meter/total")}, nullptr);
    QCOMPARE(handler.getValue(1).getValue().toULongLong(), Q_UINT64_C(7));
    QSignalSpy changed(&handler, SIGNAL(propertyChanged(QVector<int>)));
    const QByteArray before
        = outputOf(SELECTOR, {"properties", selectorUrl(module, "meter/total")}, 0);
    QVERIFY2(before.contains(highest) && !before.contains("simulate"), before.constData());

    VERIFY_COMMAND(write(oneLess));

    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<QVector<int>>(), QVector<int>{1});
    const QByteArray after
        = outputOf(SELECTOR, {"properties", selectorUrl(module, "meter/total")}, 0);
    QVERIFY2(after.contains(oneLess), after.constData());
}

void ExactLimitsTest::aSnapshotOfAGroupKeepsEveryDigitAndDiffSeesAChangeByOne()
{
    const QString before = directory->filePath("before");
    const QString group = module + "/Controller/1/meter";
    QVERIFY(!outputOf(SELECTOR, {"snapshot", "-o", before, group}, 0).isEmpty());
    QByteArray text = contentOf(before + "/" + module + "_Controller_1.pdd");
    QVERIFY2(text.contains("\"maximum\": " + highest), text.constData());
    QVERIFY2(text.contains("\"total\"") && !text.contains("\"level\""), text.constData());

    const QString narrower = directory->filePath("narrower.pdd");
    QVERIFY(writeFile(narrower, text.replace(highest, oneLess)));
    const QByteArray found = outputOf(SELECTOR, {"diff", "--format", "csv", before, narrower}, 1);
    QVERIFY2(found.contains("breaks,maximum," + highest + ',' + oneLess), found.constData());
    outputOf(SELECTOR, {"snapshot", "-o", before, module + "/Controller/1/nowhere"}, 1);
}

QTEST_GUILESS_MAIN(ExactLimitsTest)
#include "ExactLimitsTest.moc"
