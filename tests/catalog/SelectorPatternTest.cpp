// SPDX-License-Identifier: MIT
// What patterns mean, and what is not one.
#include "SelectorPattern.h"

#include <QtTest>

class SelectorPatternTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesAreTakenApart_data();
    void placesAreTakenApart();
    void whatIsNotAPatternIsRefused_data();
    void whatIsNotAPatternIsRefused();
    void namesMatch_data();
    void namesMatch();
    void leavesMatch_data();
    void leavesMatch();
    void groupsOnTheWayAreKnown();
    void sourcesMatchAsFarAsThePatternGoes();
    void nearMissesComeNearestFirst_data();
    void nearMissesComeNearestFirst();
    void namesThatNobodyWouldReadAreNoNearMisses();
};

namespace {

SelectorPattern parsed(const QString &text)
{
    SelectorPattern pattern;
    QString error;
    if (!SelectorPattern::parse(text, pattern, error)) {
        qFatal("%s", qPrintable(error));
    }
    return pattern;
}

} // namespace

void SelectorPatternTest::placesAreTakenApart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("parts");
    QTest::addColumn<bool>("hasStars");
    const auto row = [](const char *name, const char *text, SelectorPattern::Level level,
                        const char *parts, bool hasStars = false) {
        QTest::newRow(name) << text << int(level) << parts << hasStars;
    };
    row("a module", "M", SelectorPattern::Module, "M|||");
    row("a module with a slash", "M/", SelectorPattern::Module, "M|||");
    row("an object", "M/O", SelectorPattern::Object, "M|O||");
    row("the instance without a name", "M/O/", SelectorPattern::Source, "M|O||");
    row("an instance", "M/O/1", SelectorPattern::Source, "M|O|1|");
    row("an instance with a slash", "M/O/1/", SelectorPattern::Source, "M|O|1|");
    row("a group", "M/O/1/a/b", SelectorPattern::Source, "M|O|1|a/b");
    row("a group of the instance without a name", "M/O//a", SelectorPattern::Source, "M|O||a");
    row("a selector URL", "processdata://M/O/1/a", SelectorPattern::Source, "M|O|1|a");
    row("encoded names", "M%20x/O", SelectorPattern::Object, "M x|O||");
    row("stars", "P*/*/1/dr*/sp*d", SelectorPattern::Source, "P*|*|1|dr*/sp*d", true);
    row("an encoded star is a name's", "M/O/1/%2A", SelectorPattern::Source, "M|O|1|*");
    row("a slash in an instance", "M/O/a%2Fb/c", SelectorPattern::Source, "M|O|a/b|c");
    row("a slash in a pattern", "M/O/a%2F*", SelectorPattern::Source, "M|O|a/*|", true);
    row("everything", "**", SelectorPattern::System, "|||", true);
    row("everything of a module", "M/**", SelectorPattern::Module, "M|||", true);
    row("everything of an object", "M/O/**", SelectorPattern::Object, "M|O||", true);
    row("everything of a group", "M/O/1/a/**", SelectorPattern::Source, "M|O|1|a", true);
    row("two stars in a name", "M/O/1/a**", SelectorPattern::Source, "M|O|1|a**", true);
}

void SelectorPatternTest::placesAreTakenApart()
{
    QFETCH(QString, text);
    QFETCH(int, level);
    QFETCH(QString, parts);
    QFETCH(bool, hasStars);

    const SelectorPattern pattern = parsed(text);

    QCOMPARE(int(pattern.level), level);
    QCOMPARE(QStringList({pattern.module.toString(), pattern.object.toString(),
                          pattern.instance.toString(), pattern.pathText()})
                 .join('|'),
             parts);
    QCOMPARE(pattern.hasStars(), hasStars);
}

void SelectorPatternTest::whatIsNotAPatternIsRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const char *text, const char *problem) {
        QTest::newRow(name) << text << problem;
    };
    row("nothing", "", "has an empty part; expected MODULE/OBJECT/INSTANCE");
    row("no module", "/O", "has an empty part; expected MODULE/OBJECT/INSTANCE");
    row("no object", "M//1", "has an empty part; expected MODULE/OBJECT/INSTANCE");
    row("an empty group", "M/O/1//a", "has an empty part; expected MODULE/OBJECT/INSTANCE");
    row("** in the middle", "M/**/a",
        "has ** in its middle; it may only be the last part, and * stands for one part");
    row("not percent-encoded", "M/O%zz", "has a part that is not a name: \"O%zz\"");
    row("not UTF-8", "M/%C3*", "has a part that is not a name: \"%C3*\"");
    row("a control character", "M/a%0Ab", "has a part that is not a name: \"a%0Ab\"");
    row("a slash in a leaf", "M/O/1/a%2Fb", "has a part that is not a name: \"a%2Fb\"");
    row("deactivated", "M/*?deactivated", "has a part that is not a name: \"*?deactivated\"");
    row("a fragment", "M/O/1/*#x", "has a part that is not a name: \"*#x\"");
}

void SelectorPatternTest::whatIsNotAPatternIsRefused()
{
    QFETCH(QString, text);
    QFETCH(QString, problem);
    SelectorPattern pattern;
    QString error;

    QVERIFY(!SelectorPattern::parse(text, pattern, error));

    QCOMPARE(error, QString("\"%1\" %2").arg(text, problem));
}

void SelectorPatternTest::namesMatch_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("matches");
    const auto row = [](const char *pattern, const char *name, bool matches) {
        QTest::addRow("%s, %s", pattern, name)
            << QString::fromUtf8(pattern) << QString::fromUtf8(name) << matches;
    };
    row("speed", "speed", true);
    row("speed", "Speed", false);
    row("speed", "speeds", false);
    row("*", "", true);
    row("*", "anything at all", true);
    row("sp*", "sp", true);
    row("sp*", "s", false);
    row("*ed", "speed", true);
    row("*ed", "edge", false);
    row("s*d", "speed", true);
    row("s*d", "sd", true);
    row("s*d", "s", false);
    row("a*a", "a", false);
    row("a*a", "aa", true);
    row("*a*b*", "xaxbx", true);
    row("*a*b*", "xbxax", false);
    row("a*b*c", "abbc", true);
    row("a*bc*c", "abc", false);
    row("%2A", "*", true);
    row("%2A", "x", false);
    row("%2A*", "*x", true);
    row("%C3%A4*", "ä1", true);
}

void SelectorPatternTest::namesMatch()
{
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QFETCH(bool, matches);

    QCOMPARE(parsed("M/O/" + pattern + "/x").instance.matches(name), matches);
}

void SelectorPatternTest::leavesMatch_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("leaf");
    QTest::addColumn<bool>("matches");
    const auto row = [](const char *pattern, const char *leaf, bool matches) {
        QTest::addRow("%s, %s", pattern, leaf) << pattern << leaf << matches;
    };
    row("M/O/1", "a/b", true);
    row("M/O/1/a", "a", true);
    row("M/O/1/a", "a/b", true);
    row("M/O/1/a", "a/b/c", true);
    row("M/O/1/a", "ab", false);
    row("M/O/1/a/b", "a", false);
    row("M/O/1/*", "a", true);
    row("M/O/1/*", "a/b", true);
    row("M/O/1/*/b", "a/b", true);
    row("M/O/1/*/b", "b", false);
    row("M/O/1/*/b", "a/x/b", false);
    row("M/O/1/**", "a", true);
    row("M/O/1/**", "a/b", true);
    row("M/O/1/a/**", "a", false);
    row("M/O/1/a/**", "a/b", true);
    row("M/O/1/a/**", "a/b/c", true);
    row("M/**", "a", true);
    row("**", "a/b", true);
}

void SelectorPatternTest::leavesMatch()
{
    QFETCH(QString, pattern);
    QFETCH(QString, leaf);
    QFETCH(bool, matches);

    QCOMPARE(parsed(pattern).matchesLeaf(leaf), matches);
}

void SelectorPatternTest::groupsOnTheWayAreKnown()
{
    const SelectorPattern pattern = parsed("M/O/1/a/*/c");
    QVERIFY(pattern.leadsTo("a"));
    QVERIFY(pattern.leadsTo("a/x"));
    QVERIFY(pattern.leadsTo("a/x/c/below"));
    QVERIFY(!pattern.leadsTo("b"));
    QVERIFY(!pattern.leadsTo("a/x/d"));
}

void SelectorPatternTest::sourcesMatchAsFarAsThePatternGoes()
{
    QVERIFY(parsed("M").matchesSource({"M", "O", "1"}));
    QVERIFY(!parsed("M").matchesSource({"N", "O", "1"}));
    QVERIFY(parsed("M/O*").matchesSource({"M", "Other", "1"}));
    QVERIFY(parsed("M/O/").matchesSource({"M", "O", ""}));
    QVERIFY(!parsed("M/O/").matchesSource({"M", "O", "1"}));
    QVERIFY(parsed("**").matchesSource({"M", "O", "1"}));
    QVERIFY(!parsed("M/*/2/a").matchesSource({"M", "O", "1"}));
    QVERIFY(parsed("M/O").matchesObject("M", "O"));
    QVERIFY(!parsed("M/O").matchesObject("M", "P"));
}

void SelectorPatternTest::nearMissesComeNearestFirst_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one letter") << "sped"
                                << "speed speed2";
    QTest::newRow("one more") << "speedx"
                              << "speed speed2";
    QTest::newRow("other letters' case") << "SPEED"
                                         << "speed speed2";
    QTest::newRow("a pattern") << "sped*"
                               << "speed speed2";
    QTest::newRow("too far") << "pressure"
                             << "";
    QTest::newRow("too short to be near") << "x"
                                          << "";
}

void SelectorPatternTest::nearMissesComeNearestFirst()
{
    QFETCH(QString, wanted);
    QFETCH(QString, expected);
    const QStringList names{"temperature", "speed2", "speed", "on"};

    QCOMPARE(nearMisses(parsed(wanted).module, names).join(' '), expected);
}

void SelectorPatternTest::namesThatNobodyWouldReadAreNoNearMisses()
{
    const QString longest(256, 'x');
    const NamePattern wanted = parsed(longest + '*').module;

    QCOMPARE(nearMisses(wanted, {longest + 'x', longest}), QStringList{longest});
}

QTEST_APPLESS_MAIN(SelectorPatternTest)
#include "SelectorPatternTest.moc"
