// SPDX-License-Identifier: MIT
// What read prints, write takes; what is not UTF-8 is refused.
#include "BusTestMain.h"
#include "SelectorHandlerProcessValue.h"
#include "SelectorSystemTest.h"

#include <QTest>

#include <limits>

class SelectorValuesTest : public SelectorSystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void hostileTextsAreReadAndWrittenBack_data();
    void hostileTextsAreReadAndWrittenBack();
    void whatReadPrintsOfANumberIsWritten_data();
    void whatReadPrintsOfANumberIsWritten();
    void negativeZeroStaysNegative_data();
    void negativeZeroStaysNegative();
    void textThatIsNotUtf8IsRefused_data();
    void textThatIsNotUtf8IsRefused();

private:
    struct Result
    {
        int exitCode;
        QByteArray output;
        QByteArray report;
    };
    Result run(const QStringList &arguments) const;
    QString url(const QString &leafName) const { return selectorUrl(module, leafName); }
};

void SelectorValuesTest::init()
{
    SystemTest::init();
    bringUp({leaf("name", "string", {{"capacity", 64}}), leaf("copy", "string", {{"capacity", 64}}),
             leaf("single", "float32"), leaf("double", "float64")});
}

// In a locale that knows ASCII alone: texts are UTF-8 all the same.
SelectorValuesTest::Result SelectorValuesTest::run(const QStringList &arguments) const
{
    ChildProcess client("/usr/bin/env", QStringList{"LC_ALL=C", SELECTOR} + arguments);
    const bool ended = client.run();
    return {ended ? client.exitCode() : -1, client.output(), client.report()};
}

void SelectorValuesTest::hostileTextsAreReadAndWrittenBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QString("");
    QTest::newRow("backslashes") << QString("C:\\new\\\\x41");
    QTest::newRow("lines and tabs") << QString("a\nb\r\n\tc\n");
    QTest::newRow("quotes") << QString("'\"$(x)`");
    QTest::newRow("control characters") << QString("\x01\x1b[31m\x7f") + QChar(0x85);
    QTest::newRow("direction and width") << QString("a") + QChar(0x202e) + "b" + QChar(0x200b);
    QTest::newRow("byte-order marks") << QString(2, QChar(0xfeff)) + "a";
    QTest::newRow("blanks at both ends") << QString("  a ") + QChar(0xa0);
    QTest::newRow("the mark of the parser") << QString(QChar(0xe000)) + "-5";
    QTest::newRow("beyond four digits") << QString::fromUcs4(U"\U000e0041\U0001f600", 2);
}

void SelectorValuesTest::hostileTextsAreReadAndWrittenBack()
{
    QFETCH(QString, text);

    // As it stands, which no option may lead.
    Result result = run({"write", "--", url("name"), text});
    QVERIFY2(result.exitCode == 0, result.report.constData());
    result = run({"read", "-q", url("name")});
    QVERIFY2(result.exitCode == 0, result.report.constData());
    QCOMPARE(result.output.count('\n'), 1);

    const QString spelled = QString::fromUtf8(result.output.chopped(1));
    result = run({"write", "--escapes", "--", url("copy"), spelled});
    QVERIFY2(result.exitCode == 0, result.report.constData());
    QCOMPARE(run({"read", "-q", url("copy")}).output, spelled.toUtf8() + '\n');
    SelectorHandlerProcessValue handler({url("name"), url("copy")}, nullptr);
    QCOMPARE(handler.getValue(0).getValue().toString().toUcs4(), text.toUcs4());
    QCOMPARE(handler.getValue(1).getValue().toString().toUcs4(), text.toUcs4());
}

void SelectorValuesTest::whatReadPrintsOfANumberIsWritten_data()
{
    QTest::addColumn<QString>("leafName");
    QTest::addColumn<double>("number");
    using Float = std::numeric_limits<float>;
    QTest::newRow("largest float32") << "single" << double(Float::max());
    QTest::newRow("smallest float32") << "single" << double(Float::denorm_min());
    QTest::newRow("a third in float32") << "single" << double(1.0F / 3);
    QTest::newRow("infinite float32") << "single" << -double(Float::infinity());
    QTest::newRow("infinite float64") << "double" << std::numeric_limits<double>::infinity();
    QTest::newRow("not a number") << "double" << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("negative zero") << "double" << -0.0;
}

void SelectorValuesTest::whatReadPrintsOfANumberIsWritten()
{
    QFETCH(QString, leafName);
    QFETCH(double, number);
    SelectorHandlerProcessValue handler({url(leafName)}, nullptr);
    QVERIFY(handler.setValue(ProcessValue(number), 0));
    const QByteArray printed = run({"read", "-q", url(leafName)}).output;
    QVERIFY(handler.setValue(ProcessValue(1.0), 0));

    const Result result = run({"write", url(leafName), QString::fromUtf8(printed.chopped(1))});

    QVERIFY2(result.exitCode == 0, result.report.constData());
    QCOMPARE(run({"read", "-q", url(leafName)}).output, printed);
    const double back = handler.getValue(0).getValue().toDouble();
    QVERIFY(back == number || (qIsNaN(back) && qIsNaN(number)));
}

void SelectorValuesTest::negativeZeroStaysNegative_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("json") << QStringList{"-j"} << QByteArray("\"value\":\"-0\"");
    QTest::newRow("csv") << QStringList{"--format", "csv"} << QByteArray(",-0,");
    QTest::newRow("values only") << QStringList{"-q"} << QByteArray("-0\n");
}

void SelectorValuesTest::negativeZeroStaysNegative()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, part);
    QCOMPARE(run({"write", url("double"), "-0"}).exitCode, 0);

    const Result result = run(QStringList{"read", url("double")} + options);

    QVERIFY2(result.output.contains(part), result.report.constData());
}

void SelectorValuesTest::textThatIsNotUtf8IsRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("argument") << "$0 write $1 \"$(printf 'S\\374d')\""
                              << QByteArray("selector: argument 3 is not UTF-8 text\n");
    QTest::newRow("standard input")
        << "printf '%s S\\374d\\n' $1 | $0 write -f -"
        << QByteArray("selector: standard input: line 1 is not UTF-8 text; convert the file\n");
    QTest::newRow("apply") << "printf '# a\\n%s S\\374d\\n' $1 | $0 apply -"
                           << QByteArray("line 2 is not UTF-8 text; convert the file\n");
}

void SelectorValuesTest::textThatIsNotUtf8IsRefused()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, reason);
    QCOMPARE(run({"write", url("name"), "before"}).exitCode, 0);

    ChildProcess shell("/bin/sh", {"-c", command, SELECTOR, url("name")});
    QVERIFY(shell.run());

    QVERIFY2(shell.exitCode() == 2 && shell.errors().contains(reason), shell.report());
    QCOMPARE(run({"read", "-q", url("name")}).output, QByteArray("before\n"));
}

BUS_TEST_MAIN(SelectorValuesTest)
#include "SelectorValuesTest.moc"
