// SPDX-License-Identifier: MIT
// Selectors from arguments and files.
#include "SelectorList.h"

#include <QTemporaryFile>
#include <QtTest>

class SelectorListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreReadWithoutComments();
    void valuesAreTheRestOfTheLine();
    void aLineWithoutValueIsNamed();
    void argumentsComeBeforeTheFile();
    void aFileThatIsNotUtf8IsRefusedWithItsLine();
    void aValueInAFileKeepsWhatIsNotABlank();
    void escapesAreReadWhereTheyAreAskedFor();
    void wrongUsageIsNamed();
};

void SelectorListTest::linesAreReadWithoutComments()
{
    QString text("# pumps\n\n  a  \r\n#b\nc?deactivated\n");
    QTextStream stream(&text);

    const QVector<ListLine> selectors = readListLines(stream, LineForm::Url);

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "c?deactivated"}));
}

void SelectorListTest::valuesAreTheRestOfTheLine()
{
    QString text("a \t two words  \nb\t-5\n");
    QTextStream stream(&text);

    const QVector<ListLine> selectors = readListLines(stream);

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "b"}));
    QCOMPARE(selectors.at(0).value, QString("two words"));
    QCOMPARE(selectors.at(1).value, QString("-5"));
}

void SelectorListTest::aLineWithoutValueIsNamed()
{
    QString text("# comment\na 1\nb\n");
    QTextStream stream(&text);
    QString error;

    QVERIFY(!haveValues(readListLines(stream), error));

    QCOMPARE(error, QString("line 3: no value for b"));
}

void SelectorListTest::argumentsComeBeforeTheFile()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("c\nä\n");
    file.close();
    CommandLine line;
    line.arguments = QStringList{"a", "b"};
    line.given["file"] = QStringList{file.fileName()};
    QVector<ListLine> selectors;
    QString error;

    QVERIFY2(collectSelectors(line, LineForm::Url, selectors, error), qPrintable(error));

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "b", "c", "ä"}));
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

    QCOMPARE(selectors.at(0).url, QString("a"));
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
    QVERIFY2(error.startsWith("The value \"\\q\" of a has a backslash at character 1"),
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
