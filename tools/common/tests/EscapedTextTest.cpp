// SPDX-License-Identifier: MIT
// Texts on one line that read back as they were.
#include "EscapedText.h"

#include <QtTest>

class EscapedTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostileTextsComeBackAsTheyWere_data();
    void hostileTextsComeBackAsTheyWere();
    void anEmptySpellingIsAnEmptyText();
    void noTwoTextsAreSpelledAlike();
    void aBackslashThatBeginsNoEscapeIsRefused_data();
    void aBackslashThatBeginsNoEscapeIsRefused();
};

void EscapedTextTest::hostileTextsComeBackAsTheyWere_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("spelled");
    const auto row = [](const char *name, const QString &text, const QString &spelled) {
        QTest::newRow(name) << text << spelled;
    };
    row("nothing", "", "\\c");
    row("plain", QString::fromUtf8("Pumpe Süd 3/4\""), QString::fromUtf8("Pumpe Süd 3/4\""));
    row("a backslash", "\\", "\\\\");
    row("what looks like a line feed", "\\n", "\\\\n");
    row("lines", "a\nb\r\n\tc", "a\\nb\\r\\n\\tc");
    row("quotes", "'\"$(x)`", "'\"$(x)`");
    row("control characters", QString("\x01\x1b[31m\x7f"), "\\x01\\x1b[31m\\x7f");
    row("a zero", QString(1, QChar(0)), "\\x00");
    row("the upper control characters", QString(QChar(0x85)), "\\u0085");
    row("the other direction", QString("a") + QChar(0x202e) + "b", "a\\u202eb");
    row("no width", QString(QChar(0x200b)), "\\u200b");
    row("a byte-order mark", QString(QChar(0xfeff)) + "a", "\\ufeffa");
    row("line separators", QString(QChar(0x2028)) + QChar(0x2029), "\\u2028\\u2029");
    row("a tag beyond four digits", QString::fromUcs4(U"\U000e0041", 1), "\\U000e0041");
    row("a smiling face", QString::fromUcs4(U"\U0001f600", 1), QString::fromUcs4(U"\U0001f600", 1));
    row("blanks at both ends", "  a b ", "\\x20 a b\\x20");
    row("one blank", " ", "\\x20");
}

void EscapedTextTest::hostileTextsComeBackAsTheyWere()
{
    QFETCH(QString, text);
    QFETCH(QString, spelled);
    QString back = "untouched";
    QString error;

    QCOMPARE(escapedText(text), spelled);
    QVERIFY2(textFromEscapes(spelled, back, error), qPrintable(error));

    QCOMPARE(back, text);
}

// As a person writes it.
void EscapedTextTest::anEmptySpellingIsAnEmptyText()
{
    QString text = "untouched";
    QString error;
    QVERIFY(textFromEscapes("", text, error));
    QCOMPARE(text, QString(""));
}

void EscapedTextTest::noTwoTextsAreSpelledAlike()
{
    QHash<QString, QString> texts; // by spelling
    for (uint first = 0; first < 0x3000; ++first) {
        for (const char *const rest : {"", "\\", "n", "x20"}) {
            if (QChar::isSurrogate(first)) {
                continue;
            }
            const QString text = QString(QChar(first)) + rest;
            const QString spelled = escapedText(text);
            QVERIFY2(!texts.contains(spelled), qPrintable(spelled));
            texts.insert(spelled, text);
            QString back;
            QString error;
            QVERIFY(textFromEscapes(spelled, back, error));
            QCOMPARE(back, text);
        }
    }
}

void EscapedTextTest::aBackslashThatBeginsNoEscapeIsRefused_data()
{
    QTest::addColumn<QString>("spelled");
    QTest::addColumn<int>("place");
    QTest::newRow("at the end") << "a\\" << 2;
    QTest::newRow("another letter") << "\\q" << 1;
    QTest::newRow("nothing, and more") << "\\ca" << 1;
    QTest::newRow("one digit") << "\\x1" << 1;
    QTest::newRow("no digit") << "ab\\xg1" << 3;
    QTest::newRow("a sign") << "\\x+1" << 1;
    QTest::newRow("three digits") << "\\u202" << 1;
    QTest::newRow("half a pair") << "\\ud800" << 1;
    QTest::newRow("past Unicode") << "\\U00110000" << 1;
}

void EscapedTextTest::aBackslashThatBeginsNoEscapeIsRefused()
{
    QFETCH(QString, spelled);
    QFETCH(int, place);
    QString text = "untouched";
    QString error;

    QVERIFY(!textFromEscapes(spelled, text, error));

    QCOMPARE(error,
             QString("has a backslash at character %1 that begins no escape; "
                     "\\\\ \\n \\r \\t \\xHH \\uHHHH \\UHHHHHHHH are known")
                 .arg(place));
    QCOMPARE(text, QString("untouched"));
}

QTEST_APPLESS_MAIN(EscapedTextTest)
#include "EscapedTextTest.moc"
