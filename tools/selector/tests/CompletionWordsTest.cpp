// SPDX-License-Identifier: MIT
// Words that go on from what is typed.
#include "Completion.h"

#include <QtTest>

class CompletionWordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsGoOnByOneName_data();
    void wordsGoOnByOneName();
    void groupsAreNamedOnce();
};

void CompletionWordsTest::wordsGoOnByOneName_data()
{
    QTest::addColumn<bool>("isUrl");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("whole");
    QTest::addColumn<QStringList>("words");
    const auto row
        = [](const char *name, bool isUrl, const char *typed, const char *whole,
             const QStringList &words) { QTest::newRow(name) << isUrl << typed << whole << words; };
    row("nothing typed", true, "", "", {"Pump/", "a%20b/"});
    row("half a scheme", true, "proc", "", {"processdata://Pump/", "processdata://a%20b/"});
    row("a name without the scheme", true, "Pu", "", {"Pump/"});
    row("names without the scheme", true, "M/O/P", "M|O", {"M/O/Pump/"});
    row("a label of a name without the scheme", true, "x=M/P", "M", {"x=M/Pump/"});
    row("a scheme", true, "processdata://P", "", {"processdata://Pump/"});
    row("a label", true, "x=processdata://P", "", {"x=processdata://Pump/"});
    row("a label alone", true, "x=", "", {"x=Pump/", "x=a%20b/"});
    row("encoded", true, "processdata://M/a%2", "M", {"processdata://M/a%20b/"});
    row("not encoded", true, "processdata://M/a b", "M", {"processdata://M/a%20b/"});
    row("an empty instance", true, "processdata://M/O//P", "M|O|", {"processdata://M/O//Pump/"});
    row("names are decoded", true, "processdata://M%20x/P", "M x", {"processdata://M%20x/Pump/"});
    row("a place", false, "M/P", "M", {"M/Pump/"});
    row("a place at the beginning", false, "", "", {"Pump/", "a%20b/"});
    row("a place as a URL", false, "processdata://M/P", "M", {"processdata://M/Pump/"});
    row("nothing goes on", true, "processdata://X", "", {});
}

void CompletionWordsTest::wordsGoOnByOneName()
{
    QFETCH(bool, isUrl);
    QFETCH(QString, typed);
    QFETCH(QString, whole);
    QFETCH(QStringList, words);

    const TypedPlace place = typedPlace(typed, isUrl);

    QCOMPARE(place.names.join('|'), whole);
    QCOMPARE(completions(place, {"Pump", "a b"}, "/"), words);
}

void CompletionWordsTest::groupsAreNamedOnce()
{
    const QStringList paths{"a", "drive/x/1", "drive/x/2", "drive/y", "driver"};
    QCOMPARE(namesBelow(paths, ""), (QStringList{"a", "drive/", "driver"}));
    QCOMPARE(namesBelow(paths, "drive"), (QStringList{"x/", "y"}));
    QCOMPARE(namesBelow(paths, "drive/x"), (QStringList{"1", "2"}));
    QCOMPARE(namesBelow(paths, "nothing"), QStringList());
    QCOMPARE(completions(typedPlace("processdata://M/O/1/d", true), {"drive/", "data"}, ""),
             (QStringList{"processdata://M/O/1/drive/", "processdata://M/O/1/data"}));
}

QTEST_APPLESS_MAIN(CompletionWordsTest)
#include "CompletionWordsTest.moc"
