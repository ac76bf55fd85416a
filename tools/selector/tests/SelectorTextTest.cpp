// SPDX-License-Identifier: MIT
// Selectors as people type them: labels, short paths, patterns.
#include "SelectorText.h"

#include <QtTest>

class SelectorTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreTakenApart_data();
    void textsAreTakenApart();
    void aPatternHasAStarInAPart_data();
    void aPatternHasAStarInAPart();
};

void SelectorTextTest::textsAreTakenApart_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("last");
    const auto row = [](const char *typed, const char *label, const char *url, const char *last) {
        QTest::newRow(*typed == 0 ? "nothing" : typed) << label << url << last;
    };
    row("processdata://M/O/1/a%20b", "", "processdata://M/O/1/a%20b", "a b");
    row("processdata://M/O//g/a?deactivated", "", "processdata://M/O//g/a?deactivated", "a");
    row("n-1.x=processdata://M/O/1/a=b", "n-1.x", "processdata://M/O/1/a=b", "a=b");
    row("1=processdata://M/O/1/a", "", "1=processdata://M/O/1/a", "a");
    row("bare", "", "processdata://bare", "bare");
    row("M/O/1/g/a", "", "processdata://M/O/1/g/a", "a");
    row("M/O/1/g/a?deactivated", "", "processdata://M/O/1/g/a?deactivated", "a");
    row("M/O//a", "", "processdata://M/O//a", "a");
    row("M/O/1/a=b", "", "processdata://M/O/1/a=b", "a=b");
    row("x=M/O/1/a", "x", "processdata://M/O/1/a", "a");
    row("x=M/O/1/a?deactivated", "x", "processdata://M/O/1/a?deactivated", "a");
    row("pdt://M/O/1/a", "", "pdt://M/O/1/a", "a");
    row("x=pdt://M/O/1/a", "x", "pdt://M/O/1/a", "a");
    row("x=", "x", "", "");
    row("", "", "", "");
}

void SelectorTextTest::textsAreTakenApart()
{
    QFETCH(QString, label);
    QFETCH(QString, url);
    QFETCH(QString, last);
    const QString typed = QTest::currentDataTag();

    const SelectorText selector = selectorText(typed == "nothing" ? QString() : typed);

    QCOMPARE(selector.label, label);
    QCOMPARE(selector.url, url);
    QCOMPARE(lastPartOf(selector.url), last);
}

void SelectorTextTest::aPatternHasAStarInAPart_data()
{
    QTest::addColumn<bool>("pattern");
    QTest::newRow("processdata://M/O/1/a") << false;
    QTest::newRow("processdata://M/*/1/a") << true;
    QTest::newRow("processdata://M/**") << true;
    QTest::newRow("processdata://M/O/1/a*?deactivated") << true;
    QTest::newRow("processdata://M/O/1/a%2A") << false;
    QTest::newRow("processdata://M/O/1/a?*") << false;
}

void SelectorTextTest::aPatternHasAStarInAPart()
{
    QFETCH(bool, pattern);
    QCOMPARE(holdsPattern(QTest::currentDataTag()), pattern);
}

QTEST_APPLESS_MAIN(SelectorTextTest)
#include "SelectorTextTest.moc"
