// SPDX-License-Identifier: MIT
// Selectors from arguments and files.
#include "SelectorList.h"

#include <QTemporaryFile>
#include <QtTest>

namespace {

const QString pump("processdata://P/O/1/");

} // namespace

class SelectorListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreReadWithoutComments();
    void valuesAreTheRestOfTheLine();
    void aLineWithoutValueIsNamed();
    void argumentsComeBeforeTheFiles();
    void labelsAreTakenFromArgumentsAndFiles();
    void aFileThatIsNotUtf8IsRefusedWithItsLine();
    void aValueInAFileKeepsWhatIsNotABlank();
    void escapesAreReadWhereTheyAreAskedFor();
    void wrongUsageIsNamed();
};

void SelectorListTest::linesAreReadWithoutComments()
{
    QString text("# pumps\n\n  P/O/1/a  \r\n#b\nprocessdata://P/O/1/c?deactivated\n");
    QTextStream stream(&text);

    const QVector<ListLine> selectors = readListLines(stream, LineForm::Url);

    QCOMPARE(urlsOf(selectors), QVector<QString>({pump + "a", pump + "c?deactivated"}));
}

void SelectorListTest::valuesAreTheRestOfTheLine()
{
    QString text("P/O/1/a \t two words  \nP/O/1/b\t-5\n");
    QTextStream stream(&text);

    const QVector<ListLine> selectors = readListLines(stream);

    QCOMPARE(urlsOf(selectors), QVector<QString>({pump + "a", pump + "b"}));
    QCOMPARE(selectors.at(0).value, QString("two words"));
    QCOMPARE(selectors.at(1).value, QString("-5"));
}

void SelectorListTest::aLineWithoutValueIsNamed()
{
    QString text("# comment\na 1\nP/O/1/b\n");
    QTextStream stream(&text);
    QString error;

    QVERIFY(!haveValues(readListLines(stream), error));

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
