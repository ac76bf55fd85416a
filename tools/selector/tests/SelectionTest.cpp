// SPDX-License-Identifier: MIT
// What is looked up for the selectors of reading commands.
#include "Selection.h"

#include <QtTest>

using ProcessDataAccess::Result;

class SelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatAPatternFoundIsNotLookedUpAgain();
    void aLeafIsNoGroupOfItself();
    void whoGivesNoAnswerIsSaidOfAPlace_data();
    void whoGivesNoAnswerIsSaidOfAPlace();
};

namespace {

const SourceName source{"M", "O", "1"};

bool noLeaf(int /*position*/)
{
    return false;
}

} // namespace

void SelectionTest::whatAPatternFoundIsNotLookedUpAgain()
{
    int count = 0;
    Selection selection({listLine(0, "M/**"), listLine(0, "M/O/1/group")},
                        [&count](const SelectorPattern &pattern, bool) {
                            ++count;
                            CatalogMatch match;
                            const QString group = pattern.hasStars() ? "a/" : "group/";
                            match.leaves = {{source, group + "x"}, {source, group + "y"}};
                            return match;
                        });
    QCOMPARE(count, 1);

    QVERIFY(selection.expandGroups(noLeaf));
    QCOMPARE(count, 2);
    QCOMPARE(selection.lines().size(), 4);

    QVERIFY(!selection.expandGroups(noLeaf));
    QCOMPARE(count, 2);
}

void SelectionTest::aLeafIsNoGroupOfItself()
{
    Selection selection({listLine(0, "M/O/1/a%20b")}, [](const SelectorPattern &, bool) {
        CatalogMatch match;
        match.leaves = {{source, "a b"}};
        return match;
    });

    QVERIFY(!selection.expandGroups(noLeaf));
    QCOMPARE(urlsOf(selection.lines()), QVector<QString>{"processdata://M/O/1/a%20b"});
}

void SelectionTest::whoGivesNoAnswerIsSaidOfAPlace_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("code");
    const auto row = [](const char *typed, Result result, Finding::Code code) {
        QTest::addRow("%s, %d", typed, int(result)) << typed << int(result) << int(code);
    };
    row("M", Result::TimedOut, Finding::TimeLimit);
    row("M/O/1", Result::TimedOut, Finding::TimeLimit);
    row("M/O/1", Result::Denied, Finding::Denied);
    row("M/O/1", Result::ServiceMissing, Finding::None); // no URL: that is said later
    row("M/O/1/a", Result::TimedOut, Finding::None); // the leaf says it itself
}

void SelectionTest::whoGivesNoAnswerIsSaidOfAPlace()
{
    QFETCH(QString, typed);
    QFETCH(int, result);
    QFETCH(int, code);
    Selection selection({listLine(0, typed)}, [&](const SelectorPattern &, bool) {
        CatalogMatch match;
        match.failed = {{CatalogItem::Source, source, {Result(result), "why"}}};
        return match;
    });

    selection.expandGroups(noLeaf);

    QCOMPARE(selection.lines().size(), 1);
    QCOMPARE(int(selection.finding(0).code), code);
}

QTEST_APPLESS_MAIN(SelectionTest)
#include "SelectionTest.moc"
