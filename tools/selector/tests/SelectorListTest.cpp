// SPDX-License-Identifier: MIT
// Selectors from arguments and files.
#include "SelectorList.h"

#include <QTemporaryFile>
#include <QtTest>

namespace {

const QString pump("processdata://P/O/1/");

QVector<ListLine> linesOf(QString text, Escapes escapes = Escapes::Marked)
{
    QTextStream stream(&text);
    QVector<ListLine> lines;
    QString error;
    return readListLines(stream, escapes, lines, error) ? lines : QVector<ListLine>();
}

} // namespace

class SelectorListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreReadWithoutComments();
    void valuesAreTheRestOfTheLine();
    void markedValuesAreSpelledWithEscapes();
    void linesReadBackAsTheyWereWritten_data();
    void linesReadBackAsTheyWereWritten();
    void aLineWithoutValueIsNamed();
    void argumentsComeBeforeTheFiles();
    void labelsAreTakenFromArgumentsAndFiles();
    void aValueMayStandBehindAnEqualsSign_data();
    void aValueMayStandBehindAnEqualsSign();
    void aFileThatIsNotUtf8IsRefusedWithItsLine();
    void aValueInAFileKeepsWhatIsNotABlank();
    void escapesAreReadWhereTheyAreAskedFor();
    void wrongUsageIsNamed();
};

void SelectorListTest::linesAreReadWithoutComments()
{
    const QString text("# pumps\n\n  P/O/1/a  \r\n#b\nprocessdata://P/O/1/c?deactivated\n");

    const QVector<ListLine> selectors = linesOf(text);

    QCOMPARE(urlsOf(selectors), QVector<QString>({pump + "a", pump + "c?deactivated"}));
}

void SelectorListTest::valuesAreTheRestOfTheLine()
{
    const QString text("P/O/1/a \t two words  \nP/O/1/b\t-5\n");

    const QVector<ListLine> selectors = linesOf(text);

    QCOMPARE(urlsOf(selectors), QVector<QString>({pump + "a", pump + "b"}));
    QCOMPARE(selectors.at(0).value, QString("two words"));
    QCOMPARE(selectors.at(1).value, QString("-5"));
}

void SelectorListTest::markedValuesAreSpelledWithEscapes()
{
    const QString text("-e a x\\ny\n-e\tb \\c\nc x\\ny\n-e name=d\n-ef 1\n");
    QVector<ListLine> lines = linesOf(text);
    QStringList found;
    for (const ListLine &line : qAsConst(lines)) {
        found.append(line.label + '|' + line.url.mid(14) + '|' + line.value);
    }
    QCOMPARE(found, QStringList({"|a|x\ny", "|b|", "|c|x\\ny", "name|d|", "|-ef|1"}));
    QVERIFY(lines.at(1).hasValue && !lines.at(3).hasValue);
    QCOMPARE(linesOf("c x\\ny", Escapes::All).constFirst().value, QString("x\ny"));

    QString wrong("a 1\n-e b \\q\n");
    QTextStream stream(&wrong);
    QString error;
    QVERIFY(!readListLines(stream, Escapes::Marked, lines, error));
    QVERIFY2(error.startsWith("line 2: the value \"\\q\" of processdata://b has a backslash at "),
             qPrintable(error));
}

void SelectorListTest::linesReadBackAsTheyWereWritten_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const QString &value, const char *line) {
        QTest::newRow(name) << value << QString::fromUtf8(line);
    };
    row("a number", "-1.5", "processdata://P/O/1/a -1.5");
    row("words", "two  words", "processdata://P/O/1/a two  words");
    row("a comment sign", "# 5", "processdata://P/O/1/a # 5");
    row("what looks like a mark", "-e x", "processdata://P/O/1/a -e x");
    row("what looks like a label", "a=b", "processdata://P/O/1/a a=b");
    row("backslashes", "C:\\new\\c", "processdata://P/O/1/a C:\\new\\c");
    row("an empty text", "", "-e processdata://P/O/1/a \\c");
    row("lines", "a\nb\r\n", "-e processdata://P/O/1/a a\\nb\\r\\n");
    row("a line and a backslash", "\\n\n", "-e processdata://P/O/1/a \\\\n\\n");
    row("blanks at both ends", " a ", "-e processdata://P/O/1/a \\x20a\\x20");
    row("a tab before it", "\ta", "-e processdata://P/O/1/a \\ta");
    row("a byte-order mark", QString(QChar(0xfeff)), "-e processdata://P/O/1/a \\ufeff");
    row("a blank beyond ASCII", QString(QChar(0xa0)) + "a",
        "processdata://P/O/1/a \xc2\xa0"
        "a");
}

void SelectorListTest::linesReadBackAsTheyWereWritten()
{
    QFETCH(QString, value);
    QFETCH(QString, line);

    QCOMPARE(listText({0, pump + "a", value, true, ""}), line);
    const QVector<ListLine> back = linesOf(line);
    QCOMPARE(back.size(), 1);
    QCOMPARE(back.first().url, pump + "a");
    QCOMPARE(back.first().value.toUcs4(), value.toUcs4());

    const ListLine named{0, pump + "a b", value, true, "name"};
    const ListLine again = linesOf(listText(named)).value(0);
    QCOMPARE(again.label, QString("name"));
    QCOMPARE(again.url, pump + "a%20b");
    QCOMPARE(again.value.toUcs4(), value.toUcs4());
}

void SelectorListTest::aLineWithoutValueIsNamed()
{
    const QString text("# comment\na 1\nP/O/1/b\n");
    QString error;

    QVERIFY(!haveValues(linesOf(text), error));

    QCOMPARE(error, QString("line 3: no value for processdata://P/O/1/b"));
}

void SelectorListTest::argumentsComeBeforeTheFiles()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("P/O/1/c\nP/O/1/ä\n");
    file.close();
    CommandLine line;
    line.arguments = QStringList{"P/O/1/a", pump + "b"};
    line.given["file"] = QStringList{file.fileName(), file.fileName()};
    QVector<ListLine> selectors;
    QString error;

    QVERIFY2(collectSelectors(line, LineForm::Url, selectors, error), qPrintable(error));

    QCOMPARE(
        urlsOf(selectors),
        QVector<QString>({pump + "a", pump + "b", pump + "c", pump + "ä", pump + "c", pump + "ä"}));
}

void SelectorListTest::labelsAreTakenFromArgumentsAndFiles()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("on=P/O/1/c  x=5\n");
    file.close();
    CommandLine line;
    line.arguments = QStringList{"name=P/O/1/a", "x=5", "P/O/1/b", ""};
    line.given["file"] = QStringList{file.fileName()};
    QVector<ListLine> selectors;
    QString error;

    QVERIFY2(collectSelectors(line, LineForm::UrlAndValue, selectors, error), qPrintable(error));

    QCOMPARE(urlsOf(selectors), QVector<QString>({pump + "a", pump + "b", pump + "c"}));
    QStringList texts;
    for (const ListLine &selector : qAsConst(selectors)) {
        texts += {selector.label, selector.value};
    }
    QCOMPARE(texts, QStringList({"name", "x=5", "", "", "on", "x=5"}));
}

void SelectorListTest::aValueMayStandBehindAnEqualsSign_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("found"); // label, path and value of each
    QTest::newRow("one") << QStringList{"P/O/1/a=5"} << QStringList{"", "a", "5"};
    QTest::newRow("a URL") << QStringList{pump + "a=5"} << QStringList{"", "a", "5"};
    QTest::newRow("an empty value") << QStringList{"P/O/1/a="} << QStringList{"", "a", ""};
    QTest::newRow("a value with the sign")
        << QStringList{"P/O/1/a=b=c/d=e"} << QStringList{"", "a", "b=c/d=e"};
    QTest::newRow("a label") << QStringList{"x=P/O/1/a=5"} << QStringList{"x", "a", "5"};
    QTest::newRow("a label and a value of its own")
        << QStringList{"x=P/O/1/a", "y=P/O/1/b=5"} << QStringList{"x", "a", "y=P/O/1/b=5"};
    QTest::newRow("both forms") << QStringList{"P/O/1/a=5", "P/O/1/b", "6", "P/O/1/c=7"}
                                << QStringList{"", "a", "5", "", "b", "6", "", "c", "7"};
    QTest::newRow("deactivated") << QStringList{"P/O/1/a?deactivated=5"}
                                 << QStringList{"", "a?deactivated", "5"};
    QTest::newRow("a sign in a name")
        << QStringList{"P/O/1/a%3Db=5"} << QStringList{"", "a%3Db", "5"};
}

void SelectorListTest::aValueMayStandBehindAnEqualsSign()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QStringList, found);
    CommandLine line;
    line.arguments = arguments;
    QVector<ListLine> selectors;
    QString error;
    QVERIFY2(collectSelectors(line, LineForm::UrlAndValue, selectors, error), qPrintable(error));
    QStringList texts;
    for (const ListLine &selector : qAsConst(selectors)) {
        texts += {selector.label, selector.url.mid(pump.size()), selector.value};
    }
    QCOMPARE(texts, found);

    // Only write takes values there.
    selectors.clear();
    QVERIFY(collectSelectors(line, LineForm::Url, selectors, error));
    QCOMPARE(selectors.size(), arguments.size());
}

void SelectorListTest::aFileThatIsNotUtf8IsRefusedWithItsLine()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("a 1\nb S\xfc\n");
    file.close();
    CommandLine line;
    line.given["file"] = QStringList{file.fileName()};
    QVector<ListLine> selectors;
    QString error;

    QVERIFY(!collectSelectors(line, LineForm::UrlAndValue, selectors, error));

    QCOMPARE(error, file.fileName() + ": line 2 is not UTF-8 text; convert the file");
}

void SelectorListTest::aValueInAFileKeepsWhatIsNotABlank()
{
    const QString mark(QChar(0xfeff));
    const QString wide(QChar(0xa0));
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write((mark + "a " + mark + "text" + wide + "\r\n").toUtf8());
    file.close();
    CommandLine line;
    line.given["file"] = QStringList{file.fileName()};
    QVector<ListLine> selectors;
    QString error;

    QVERIFY2(collectSelectors(line, LineForm::UrlAndValue, selectors, error), qPrintable(error));

    QCOMPARE(selectors.at(0).url, QString("processdata://a"));
    QCOMPARE(selectors.at(0).value, mark + "text" + wide);
}

void SelectorListTest::escapesAreReadWhereTheyAreAskedFor()
{
    CommandLine line;
    line.arguments = QStringList{"a", "x\\n\\\\"};
    QVector<ListLine> selectors;
    QString error;
    QVERIFY(collectSelectors(line, LineForm::UrlAndValue, selectors, error));
    QCOMPARE(selectors.at(0).value, QString("x\\n\\\\"));

    selectors.clear();
    line.given["escapes"] = QStringList();
    QVERIFY(collectSelectors(line, LineForm::UrlAndValue, selectors, error));
    QCOMPARE(selectors.at(0).value, QString("x\n\\"));

    selectors.clear();
    line.arguments = QStringList{"a", "\\q"};
    QVERIFY(!collectSelectors(line, LineForm::UrlAndValue, selectors, error));
    QVERIFY2(
        error.startsWith("The value \"\\q\" of processdata://a has a backslash at character 1"),
        qPrintable(error));
}

void SelectorListTest::wrongUsageIsNamed()
{
    QVector<ListLine> selectors;
    QString error;
    CommandLine line;
    QVERIFY(!collectSelectors(line, LineForm::Url, selectors, error));
    QCOMPARE(error, QString("No selector given."));

    line.arguments = QStringList{"a", "1", "b"};
    QVERIFY(!collectSelectors(line, LineForm::UrlAndValue, selectors, error));
    QCOMPARE(error, QString("No value for b."));

    line.arguments.clear();
    line.given["file"] = QStringList{"/nonexistent/list"};
    QVERIFY(!collectSelectors(line, LineForm::Url, selectors, error));
    QCOMPARE(error, QString("/nonexistent/list: No such file or directory"));
}

QTEST_APPLESS_MAIN(SelectorListTest)
#include "SelectorListTest.moc"
