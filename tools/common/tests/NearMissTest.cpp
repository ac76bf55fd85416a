// SPDX-License-Identifier: MIT
// What a mistyped word was probably meant to be.
#include "NearMiss.h"

#include <QtTest>

class NearMissTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsThatComeNearAreFound_data();
    void wordsThatComeNearAreFound();
    void theyAreAskedForInOneSentence();
    void longWordsAreLookedThroughAsWell();
};

void NearMissTest::wordsThatComeNearAreFound_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("known");
    QTest::addColumn<QString>("found");
    const auto row = [](const char *name, const char *typed, const char *known, const char *found) {
        QTest::newRow(name) << typed << known << found;
    };
    row("a letter left out", "sped", "speed name", "speed");
    row("a letter put in", "speeed", "speed name", "speed");
    row("a letter replaced", "spoed", "speed name", "speed");
    row("two letters swapped", "reda", "read write", "read");
    row("swapped at the end", "setponit", "setpoint", "setpoint");
    row("case alone", "SPEED", "speed", "speed");
    row("case alone, of a short word", "On", "on off", "on");
    row("a third of the letters", "abcxyz", "abcxPQ", "abcxPQ");
    row("more than a third", "abcxyz", "abcPQR", "");
    row("two wrong of five", "spxxd", "speed", "");
    row("too short for a slip", "ab", "ac", "");
    row("typed rightly", "read", "read", "");
    row("the nearest alone", "speet", "speed spee speeds", "speed spee");
    row("in their order, at most three", "aaaa", "aaab aaac baaa caaa", "aaab aaac baaa");
    row("each once", "aaaa", "aaab aaab", "aaab");
    row("nothing typed", "", "a", "");
    row("nothing known", "a", "", "");
    row("beyond ASCII", "Größem", "Grosse Größen", "Größen");
}

void NearMissTest::wordsThatComeNearAreFound()
{
    QFETCH(QString, typed);
    QFETCH(QString, known);
    QFETCH(QString, found);
    QCOMPARE(nearMisses(typed, known.split(' ')).join(' '), found);
}

void NearMissTest::theyAreAskedForInOneSentence()
{
    QCOMPARE(didYouMean("sped", {"speed"}), QString("did you mean \"speed\"?"));
    QCOMPARE(didYouMean("speet", {"speed", "spees"}),
             QString("did you mean \"speed\" or \"spees\"?"));
    QCOMPARE(didYouMean("nothing", {"speed"}), QString());
}

// Each pair in full would be ten thousand million steps.
void NearMissTest::longWordsAreLookedThroughAsWell()
{
    QStringList known;
    for (int i = 0; i < 10000; ++i) {
        known.append(QString::number(i).repeated(1000).left(1000));
    }
    known.append(QString(1000, 'a'));
    QCOMPARE(nearMisses(QString(999, 'a') + 'b', known), QStringList(QString(1000, 'a')));
}

QTEST_APPLESS_MAIN(NearMissTest)
#include "NearMissTest.moc"
