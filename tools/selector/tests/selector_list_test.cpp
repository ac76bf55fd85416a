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
    void wrongUsageIsNamed();
};

void SelectorListTest::linesAreReadWithoutComments()
{
    QString text("# pumps\n\n  a  \r\n#b\nc?deactivated\n");
    QTextStream stream(&text);
    QVector<SelectorInput> selectors;
    QString error;

    QVERIFY(readSelectorLines(stream, false, selectors, error));

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "c?deactivated"}));
}

void SelectorListTest::valuesAreTheRestOfTheLine()
{
    QString text("a \t two words  \nb\t-5\n");
    QTextStream stream(&text);
    QVector<SelectorInput> selectors;
    QString error;

    QVERIFY(readSelectorLines(stream, true, selectors, error));

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "b"}));
    QCOMPARE(selectors.at(0).value, QString("two words"));
    QCOMPARE(selectors.at(1).value, QString("-5"));
}

void SelectorListTest::aLineWithoutValueIsNamed()
{
    QString text("# comment\na 1\nb\n");
    QTextStream stream(&text);
    QVector<SelectorInput> selectors;
    QString error;

    QVERIFY(!readSelectorLines(stream, true, selectors, error));

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
    line.file = file.fileName();
    QVector<SelectorInput> selectors;
    QString error;

    QVERIFY2(collectSelectors(line, false, selectors, error), qPrintable(error));

    QCOMPARE(urlsOf(selectors), QVector<QString>({"a", "b", "c", "ä"}));
}

void SelectorListTest::wrongUsageIsNamed()
{
    QVector<SelectorInput> selectors;
    QString error;
    CommandLine line;
    QVERIFY(!collectSelectors(line, false, selectors, error));
    QCOMPARE(error, QString("No selector given."));

    line.arguments = QStringList{"a", "1", "b"};
    QVERIFY(!collectSelectors(line, true, selectors, error));
    QCOMPARE(error, QString("No value for b."));

    line.arguments.clear();
    line.file = "/nonexistent/list";
    QVERIFY(!collectSelectors(line, false, selectors, error));
    QCOMPARE(error, QString("/nonexistent/list: No such file or directory"));
}

QTEST_APPLESS_MAIN(SelectorListTest)
#include "selector_list_test.moc"
