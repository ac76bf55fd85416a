// SPDX-License-Identifier: MIT
// Grammar of selector URLs.
#include "SelectorUrlBuilder.h"
#include "SelectorUrlHandler.h"
#include "SelectorUrlParser.h"

#include <QtTest>

class UrlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aUrlIsSplitIntoDecodedParts_data();
    void aUrlIsSplitIntoDecodedParts();
    void aBadUrlIsInvalidAndHasNoParts_data();
    void aBadUrlIsInvalidAndHasNoParts();
    void theLongestUrlIsValidAndOneByteMoreIsNot();
    void theWholeTextIsReturnedAsGiven();
    void theDeactivatedMarkIsSeenWhateverElseIsWrong_data();
    void theDeactivatedMarkIsSeenWhateverElseIsWrong();
    void aUrlDoesNotTakeNamesOfTheOneBefore();
    void anUnpairedSurrogateIsInvalid();
    void aNameWithASlashHasNoPath();
    void builtUrlsParseBackToTheirNames_data();
    void builtUrlsParseBackToTheirNames();
};

void UrlTest::aUrlIsSplitIntoDecodedParts_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QStringList>("parts"); // scheme, module, object, instance, path
    QTest::newRow("smallest") << "processdata://a/b//c"
                              << QStringList{"processdata", "a", "b", "", "c"};
    QTest::newRow("groups") << "processdata://Pump/Controller/1/drive/motor/speed"
                            << QStringList{"processdata", "Pump", "Controller", "1",
                                           "drive/motor/speed"};
    QTest::newRow("case is kept") << "PD://PUMP/Ctrl/A/X"
                                  << QStringList{"PD", "PUMP", "Ctrl", "A", "X"};
    QTest::newRow("a number is no address")
        << "p://127/0/1/2" << QStringList{"p", "127", "0", "1", "2"};
    QTest::newRow("foreign scheme")
        << "x+y-z.1://a/b/c/d" << QStringList{"x+y-z.1", "a", "b", "c", "d"};
    QTest::newRow("escapes") << "p://Mod%20ule/%C3%84/%2f/%25"
                             << QStringList{"p", "Mod ule", QString::fromUtf8("Ä"), "/", "%"};
    QTest::newRow("raw non-ASCII")
        << QString::fromUtf8("p://Mü/ö/°/ß")
        << QStringList{"p", QString::fromUtf8("Mü"), QString::fromUtf8("ö"), QString::fromUtf8("°"),
                       QString::fromUtf8("ß")};
    QTest::newRow("four-byte character")
        << "p://a/b/c/%F0%9F%94%A5" << QStringList{"p", "a", "b", "c", QString::fromUtf8("🔥")};
    QTest::newRow("byte order mark is a character")
        << "p://a/b/%EF%BB%BFc/d" << QStringList{"p", "a", "b", QString(QChar(0xfeff)) + "c", "d"};
    QTest::newRow("underscore in the instance and below")
        << "p://a/b/c_d/e_f" << QStringList{"p", "a", "b", "c_d", "e_f"};
    QTest::newRow("separator in a name") << "p://a:/b/c://d/e" << QStringList();
    QTest::newRow("deactivated") << "p://a/b/c/d?deactivated"
                                 << QStringList{"p", "a", "b", "c", "d"};
}

void UrlTest::aUrlIsSplitIntoDecodedParts()
{
    QFETCH(QString, url);
    QFETCH(QStringList, parts);

    const SelectorUrlHandler handler(url);

    QCOMPARE(handler.isValid(), !parts.isEmpty());
    if (parts.isEmpty()) {
        return;
    }
    QCOMPARE((QStringList{handler.getScheme(), handler.getModuleName(), handler.getObjectName(),
                          handler.getInstance(), parseSelectorUrl(url).path}),
             parts);
}

void UrlTest::aBadUrlIsInvalidAndHasNoParts_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("empty") << "";
    QTest::newRow("no scheme") << "a/b/c/d";
    QTest::newRow("empty scheme") << "://a/b/c/d";
    QTest::newRow("scheme that starts with a digit") << "1p://a/b/c/d";
    QTest::newRow("scheme with an underscore") << "p_d://a/b/c/d";
    QTest::newRow("scheme with a letter that is not ASCII") << QString::fromUtf8("pä://a/b/c/d");
    QTest::newRow("one slash") << "p:/a/b/c/d";
    QTest::newRow("no path") << "p://a/b/c";
    QTest::newRow("empty module") << "p:///b/c/d";
    QTest::newRow("empty object") << "p://a//c/d";
    QTest::newRow("empty leaf") << "p://a/b/c/";
    QTest::newRow("empty group") << "p://a/b/c//d";
    QTest::newRow("underscore in the module") << "p://a_a/b/c/d";
    QTest::newRow("underscore in the object") << "p://a/b_b/c/d";
    QTest::newRow("encoded underscore in the module") << "p://a%5Fa/b/c/d";
    QTest::newRow("bad percent digits") << "p://a/b/c/d%4x";
    QTest::newRow("cut percent sequence") << "p://a/b/c/d%4";
    QTest::newRow("lone percent") << "p://a/b/c/%";
    QTest::newRow("encoded overlong slash") << "p://a/b/c/%C0%AF";
    QTest::newRow("encoded half of a character") << "p://a/b/c/%C3";
    QTest::newRow("encoded surrogate") << "p://a/b/c/%ED%A0%80";
    QTest::newRow("raw control character") << "p://a/b/c/d\te";
    QTest::newRow("encoded zero") << "p://a/b/c/d%00";
    QTest::newRow("encoded delete in the module") << "p://a%7F/b/c/d";
    QTest::newRow("encoded C1 control in the instance") << "p://a/b/%C2%85/d";
    QTest::newRow("unknown query") << "p://a/b/c/d?active";
    QTest::newRow("empty query") << "p://a/b/c/d?";
    QTest::newRow("query with other case") << "p://a/b/c/d?Deactivated";
    QTest::newRow("query with a value") << "p://a/b/c/d?deactivated=1";
    QTest::newRow("two queries") << "p://a/b/c/d?deactivated?deactivated";
    QTest::newRow("fragment") << "p://a/b/c/d#e";
    QTest::newRow("empty fragment") << "p://a/b/c/d#";
}

void UrlTest::aBadUrlIsInvalidAndHasNoParts()
{
    QFETCH(QString, url);

    const SelectorUrlHandler handler(url);

    QVERIFY(!handler.isValid());
    QCOMPARE(handler.getScheme() + handler.getModuleName() + handler.getObjectName()
                 + handler.getInstance(),
             QString());
    QCOMPARE(handler.getUrl(), url);
    QVERIFY(!handler.isSelectorDeactivated());
}

void UrlTest::theLongestUrlIsValidAndOneByteMoreIsNot()
{
    const QString start = "p://a/b/c/";

    const QString longest = start + QString(4096 - start.size(), 'x');
    QVERIFY(SelectorUrlHandler(longest).isValid());
    QVERIFY(!SelectorUrlHandler(longest + "x").isValid());
    // Bytes count, not characters.
    QVERIFY(SelectorUrlHandler(start + QString(2043, QChar(0xe4))).isValid());
    QVERIFY(!SelectorUrlHandler(start + QString(2044, QChar(0xe4))).isValid());
}

void UrlTest::theWholeTextIsReturnedAsGiven()
{
    const QString url = "p://A%20b/c/%2F/d?deactivated";

    QCOMPARE(SelectorUrlHandler(url).getUrl(), url);
}

void UrlTest::theDeactivatedMarkIsSeenWhateverElseIsWrong_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("valid") << "p://a/b/c/d?deactivated";
    QTest::newRow("no scheme") << "a?deactivated";
    QTest::newRow("nothing else") << "?deactivated";
    QTest::newRow("bad percent sequence") << "p://a/b/c/%?deactivated";
    QTest::newRow("too long") << "p://a/b/c/" + QString(5000, 'x') + "?deactivated";
}

void UrlTest::theDeactivatedMarkIsSeenWhateverElseIsWrong()
{
    QFETCH(QString, url);

    QVERIFY(SelectorUrlHandler(url).isSelectorDeactivated());
}

void UrlTest::aUrlDoesNotTakeNamesOfTheOneBefore()
{
    QVERIFY(parseSelectorUrl("p://a%25/b/c/d").valid); // decodes to "a%"
    QVERIFY(!parseSelectorUrl("p://a%/b/c/d").valid);
    QVERIFY(parseSelectorUrl("p://a/b//d").valid);

    const SelectorUrlParts parts = parseSelectorUrl("q://A/B/c/d");

    QCOMPARE(parts.scheme, QString("q"));
    QCOMPARE(parts.source.module, QString("A"));
    QCOMPARE(parts.source.object, QString("B"));
    QCOMPARE(parts.source.instance, QString("c"));
    QCOMPARE(parseSelectorUrl("p://a/b//d").source.instance, QString(""));
}

void UrlTest::anUnpairedSurrogateIsInvalid()
{
    QVERIFY(!SelectorUrlHandler(QString("p://a/b/c/") + QChar(0xd800)).isValid());
}

void UrlTest::aNameWithASlashHasNoPath()
{
    const SelectorUrlParts parts = parseSelectorUrl("p://a/b/c/group%2Fleaf");

    QVERIFY(parts.valid);
    QVERIFY(parts.path.isNull());
}

void UrlTest::builtUrlsParseBackToTheirNames_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("plain") << QStringList{"Pump", "Controller", "1", "drive/speed"};
    QTest::newRow("empty instance") << QStringList{"Pump", "Controller", "", "speed"};
    QTest::newRow("everything that must be encoded")
        << QStringList{"a b%?#", QString::fromUtf8("ä/:"), "/_?", "x y/%41/?deactivated"};
}

void UrlTest::builtUrlsParseBackToTheirNames()
{
    QFETCH(QStringList, names);

    const SelectorUrlParts parts
        = parseSelectorUrl(selectorUrl(names.at(0), names.at(1), names.at(2), names.at(3)));

    QVERIFY(parts.valid);
    QVERIFY(!parts.deactivated);
    QCOMPARE((QStringList{parts.scheme, parts.source.module, parts.source.object,
                          parts.source.instance, parts.path}),
             QStringList{"processdata"} + names);
}

QTEST_APPLESS_MAIN(UrlTest)
#include "UrlTest.moc"
