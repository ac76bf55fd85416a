// SPDX-License-Identifier: MIT
// What read prints as pairs, apply writes back: value for value, and only what may be written.
#include "BusTestMain.h"
#include "Files.h"
#include "SelectorHandlerProcessValue.h"
#include "SimulatorProcess.h"
#include "SystemTest.h"
#include "ValueText.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>

class SelectorRecipeTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void awkwardValuesComeBackExactly_data();
    void awkwardValuesComeBackExactly();
    void aWholeSourceComesBackAndIsReadAgain();
    void whatHasNoValueIsAComment();
    void onATerminalManyValuesAreAskedFor_data();
    void onATerminalManyValuesAreAskedFor();
    void whatHoldsAfterTheAnswerIsSetBack();

private:
    QByteArray run(const QStringList &arguments, int exitCode = 0,
                   const QByteArray &input = {}) const
    {
        return outputOf(SELECTOR, arguments, exitCode, input);
    }
    QString url(const QString &path) const { return selectorUrl(module, path); }
    QVector<QString> urls() const;
    QByteArray recipe(int exitCode = 0) const;

    QScopedPointer<SimulatorProcess> simulator;
};

namespace {

const QStringList writable{"flag",   "tiny", "large", "unsigned", "single",
                           "double", "text", "copy",  "raw"};

QJsonObject at(QJsonObject leaf, const QJsonValue &value)
{
    leaf.insert("simulate", QJsonObject{{"kind", "constant"}, {"value", value}});
    return leaf;
}

template <typename Number> QVariant as(Number number)
{
    return QVariant::fromValue(number);
}

} // namespace

void SelectorRecipeTest::init()
{
    SystemTest::init();
    simulator.reset(new SimulatorProcess(bus->address()));
    VERIFY_COMMAND(simulator->publish(
        module,
        description({at(leaf("flag", "bool"), true), at(leaf("tiny", "int8"), 1),
                     at(leaf("large", "int64"), 1), at(leaf("unsigned", "uint64"), 1),
                     at(leaf("single", "float32"), 1), at(leaf("double", "float64"), 1),
                     at(leaf("text", "string", {{"capacity", 64}}), "a"),
                     at(leaf("copy", "string", {{"capacity", 64}}), "a"),
                     at(leaf("raw", "bytes", {{"capacity", 8}}), "0x01"),
                     at(leaf("fixed", "int32", {{"readOnly", true}}), 7),
                     leaf("never", "int32")})));
    VERIFY_COMMAND(simulator->start({}));
}

void SelectorRecipeTest::cleanup()
{
    simulator.reset();
    SystemTest::cleanup();
}

QVector<QString> SelectorRecipeTest::urls() const
{
    QVector<QString> result;
    for (const QString &path : writable) {
        result.append(url(path));
    }
    return result;
}

// Of all leaves but the one that has never had a value.
QByteArray SelectorRecipeTest::recipe(int exitCode) const
{
    QStringList arguments{"read", "--writable", "--format", "pairs", url("fixed")};
    arguments += QStringList(urls().toList());
    return run(arguments, exitCode);
}

void SelectorRecipeTest::awkwardValuesComeBackExactly_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("value");
    using Float = std::numeric_limits<float>;
    using Double = std::numeric_limits<double>;
    using Long = std::numeric_limits<qint64>;
    QTest::newRow("an empty text") << "text" << QVariant("");
    QTest::newRow("lines") << "text" << QVariant("a\n\nb\r\n");
    QTest::newRow("leading blanks") << "text" << QVariant("  a");
    QTest::newRow("a blank") << "text" << QVariant(" ");
    QTest::newRow("backslashes") << "text" << QVariant("C:\\new\\c");
    QTest::newRow("what is spelled as an empty text") << "text" << QVariant("\\c");
    QTest::newRow("a backslash and a line") << "text" << QVariant("\\n\n");
    QTest::newRow("a mark") << "text" << QVariant("-e a");
    QTest::newRow("a comment") << "text" << QVariant("# a = b");
    QTest::newRow("not seen") << "text" << QVariant(QString(QChar(0x200b)) + QChar(0xfeff));
    QTest::newRow("beyond four digits")
        << "text" << QVariant(QString::fromUcs4(U"\U000e0041\U0001f600", 2));
    QTest::newRow("no bytes") << "raw" << QVariant(QByteArray(""));
    QTest::newRow("bytes") << "raw" << QVariant(QByteArray("\x00\xff\n #", 5));
    QTest::newRow("the least int64") << "large" << as(Long::min());
    QTest::newRow("the greatest int64") << "large" << as(Long::max());
    QTest::newRow("the greatest uint64") << "unsigned" << as(std::numeric_limits<quint64>::max());
    QTest::newRow("the least int8") << "tiny" << QVariant(-128);
    QTest::newRow("not a number") << "double" << as(Double::quiet_NaN());
    QTest::newRow("negative zero") << "double" << as(-0.0);
    QTest::newRow("endless") << "double" << as(-Double::infinity());
    QTest::newRow("the least float64") << "double" << as(Double::denorm_min());
    QTest::newRow("a tenth and two") << "double" << as(0.1 + 0.2);
    QTest::newRow("a third in float32") << "single" << as(1.0F / 3);
    QTest::newRow("the greatest float32") << "single" << as(Float::max());
    QTest::newRow("float32 not a number") << "single" << as(Float::quiet_NaN());
    QTest::newRow("negative zero in float32") << "single" << as(-0.0F);
    QTest::newRow("false") << "flag" << QVariant(false);
}

void SelectorRecipeTest::awkwardValuesComeBackExactly()
{
    QFETCH(const QString, path);
    QFETCH(const QVariant, value);
    SelectorHandlerProcessValue handler({url(path)}, nullptr);
    const QVariant other = handler.getValue(0).getValue();
    QVERIFY(handler.setValue(ProcessValue(value), 0));
    const QVariant written = handler.getValue(0).getValue();
    const QByteArray text = recipe();
    QVERIFY(handler.setValue(ProcessValue(other), 0));

    const QByteArray report = run({"apply", "-", "--verify", "--format", "csv"}, 0, text);

    QVERIFY2(report.contains(",verified,"), text + report);
    const QVariant back = handler.getValue(0).getValue();
    QCOMPARE(int(back.type()), int(written.type()));
    QCOMPARE(valueToText(back), valueToText(written)); // == would take close numbers for the same
    QCOMPARE(recipe(), text);
}

void SelectorRecipeTest::aWholeSourceComesBackAndIsReadAgain()
{
    const QTemporaryDir folder;
    const QByteArray text = recipe();
    QCOMPARE(text.count('\n'), writable.size());
    QVERIFY2(!text.contains("/fixed"), text);
    QVERIFY(writeFile(folder.filePath("recipe"), "# as it was\n" + text));

    run({"write", url("text") + "=changed", url("large"), "-5"});
    run({"apply", folder.filePath("recipe"), "--verify"});
    QCOMPARE(recipe(), text);

    // The values in it are left out of account.
    run({"write", url("text") + "="});
    QCOMPARE(run({"read", "-q", "-f", folder.filePath("recipe")}),
             QByteArray("true\n1\n1\n1\n1\n1\n\\c\na\n0x01\n"));
    run({"write", "-f", folder.filePath("recipe")});
    QCOMPARE(recipe(), text);
    QCOMPARE(run({"read", "--format", "pairs", "name=" + url("text")}),
             "name=" + url("text").toUtf8() + " a\n");
}

void SelectorRecipeTest::whatHasNoValueIsAComment()
{
    const QByteArray text = run({"read", "--format", "pairs", url("never"), url("none"),
                                 url("tiny?deactivated"), url("tiny")},
                                1);
    const QByteArrayList lines = text.split('\n');
    const QByteArray never = url("never").toUtf8();
    QCOMPARE(lines.at(0), "# " + never + ": never published so far");
    QVERIFY2(lines.at(1).startsWith("# " + url("none").toUtf8() + ": "), text);
    QCOMPARE(lines.at(2), "# " + url("tiny?deactivated").toUtf8() + ": deactivated");
    QCOMPARE(lines.at(3), url("tiny").toUtf8() + " 1");
    QVERIFY2(text.contains("selector: " + never + ": never published so far\n"), text);
}

void SelectorRecipeTest::onATerminalManyValuesAreAskedFor_data()
{
    QTest::addColumn<int>("values");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<bool>("written");
    QTest::newRow("ten are not many") << 10 << "" << QByteArray() << false << true;
    QTest::newRow("eleven, yes") << 11 << "" << QByteArray("y\n") << true << true;
    QTest::newRow("eleven, YES") << 11 << "" << QByteArray("YES\n") << true << true;
    QTest::newRow("eleven, no") << 11 << "" << QByteArray("n\n") << true << false;
    QTest::newRow("eleven, return alone") << 11 << "" << QByteArray("\n") << true << false;
    QTest::newRow("eleven, nothing more") << 11 << "" << QByteArray("\x04") << true << false;
    QTest::newRow("--yes") << 11 << "--yes" << QByteArray() << false << true;
    QTest::newRow("a dry run") << 11 << "--dry-run" << QByteArray() << false << false;
    QTest::newRow("not a terminal") << 11 << "< /dev/null" << QByteArray() << false << true;
    QTest::newRow("errors elsewhere") << 11 << "2> /dev/null" << QByteArray() << false << true;
}

// Leaves of their own, so that each line names another one.
void SelectorRecipeTest::onATerminalManyValuesAreAskedFor()
{
    QFETCH(const int, values);
    QFETCH(const QString, options);
    QFETCH(const QByteArray, answer);
    QFETCH(const bool, asked);
    QFETCH(const bool, written);
    PublisherProcess publisher;
    const QString many = module + "Many";
    QJsonArray leaves;
    QByteArray text;
    for (int i = 0; i < values; ++i) {
        leaves.append(leaf("a" + QString::number(i), "int32"));
        text += selectorUrl(many, "a" + QString::number(i)).toUtf8() + " 5\n";
    }
    VERIFY_COMMAND(publisher.serve(many, description(leaves)));
    VERIFY_COMMAND(publisher.publish("a0", 1));
    const QTemporaryDir folder;
    QVERIFY(writeFile(folder.filePath("list"), text));

    ChildProcess terminal(
        "script",
        {"-qec", SELECTOR " apply " + folder.filePath("list") + ' ' + options, "/dev/null"});
    QVERIFY(terminal.start());
    terminal.write(answer);
    QVERIFY(terminal.waitForEnd());

    const bool refused = asked && !written;
    QVERIFY2(terminal.exitCode() == (refused ? 1 : 0), terminal.report());
    QVERIFY2(terminal.output().contains("11 values will be written. Go on? [y/N]") == asked,
             terminal.report());
    QVERIFY2(terminal.output().contains("nothing was written") == refused, terminal.report());
    QCOMPARE(run({"read", "-q", selectorUrl(many, "a0")}), QByteArray(written ? "5\n" : "1\n"));
}

void SelectorRecipeTest::whatHoldsAfterTheAnswerIsSetBack()
{
    PublisherProcess publisher;
    const QString many = module + "Many";
    QJsonArray leaves;
    QByteArray text;
    for (int i = 0; i < 11; ++i) {
        leaves.append(leaf("a" + QString::number(i), "int32"));
        text += selectorUrl(many, "a" + QString::number(i)).toUtf8() + " 5\n";
    }
    VERIFY_COMMAND(publisher.serve(many, description(leaves)));
    VERIFY_COMMAND(publisher.publish("a0", 1));
    const QTemporaryDir folder;
    QVERIFY(writeFile(folder.filePath("list"), text));
    ChildProcess terminal(
        "script", {"-qec", SELECTOR " apply --format csv " + folder.filePath("list"), "/dev/null"});
    QVERIFY(terminal.start());
    QVERIFY2(QTest::qWaitFor([&] { return terminal.output().contains("[y/N]"); }, 20000),
             terminal.report());

    VERIFY_COMMAND(publisher.publish("a0", 3));
    terminal.write("y\n");

    QVERIFY(terminal.waitForEnd());
    QVERIFY2(terminal.output().contains("/a0,3,5,"), terminal.report());
}

BUS_TEST_MAIN(SelectorRecipeTest)
#include "SelectorRecipeTest.moc"
