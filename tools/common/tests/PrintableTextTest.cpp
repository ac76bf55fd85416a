// SPDX-License-Identifier: MIT
// What nobody sees, or what changes how the rest is seen, is escaped.
#include "PrintableText.h"
#include "Counted.h"

#include <QtTest>

class PrintableTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatNobodySeesIsEscaped_data();
    void whatNobodySeesIsEscaped();
    void everyBidirectionalAndZeroWidthCharacterIsEscaped();
    void whatPeopleReadStays();
    void oneThingIsNoPlural();
};

void PrintableTextTest::whatNobodySeesIsEscaped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("control characters")
        << QString("a\x1b[2J\t\r\n\x7f") << "a\\x1b[2J\\t\\x0d\\n\\x7f";
    QTest::newRow("the other control characters") << QString(QChar(0x9b)) << "\\x9b";
    QTest::newRow("text that is reversed") << QString("pump\u202Eexe.nur") << "pump\\u202eexe.nur";
    QTest::newRow("an isolate") << QString("\u2066x\u2069") << "\\u2066x\\u2069";
    QTest::newRow("a space without width") << QString("spe\u200Bed") << "spe\\u200bed";
    QTest::newRow("joiners") << QString("\u200C\u200D") << "\\u200c\\u200d";
    QTest::newRow("a byte order mark") << QString("x\uFEFFspeed") << "x\\ufeffspeed";
    QTest::newRow("a soft hyphen") << QString("spe\u00ADed") << "spe\\xaded";
    QTest::newRow("ends of lines") << QString("a\u2028b\u2029c") << "a\\u2028b\\u2029c";
    QTest::newRow("a tag") << QString("a\U000E0041") << "a\\U000e0041";
    QTest::newRow("half a pair") << QString(QChar(0xd83d)) + "x"
                                 << "\\ud83dx";
    QTest::newRow("nothing") << QString() << "";
}

void PrintableTextTest::whatNobodySeesIsEscaped()
{
    QFETCH(const QString, text);
    QFETCH(const QString, shown);
    QCOMPARE(printable(text), shown);
}

void PrintableTextTest::everyBidirectionalAndZeroWidthCharacterIsEscaped()
{
    for (const ushort character : {0x061c, 0x180e, 0x200b, 0x200c, 0x200d, 0x200e, 0x200f, 0x202a,
                                   0x202b, 0x202c, 0x202d, 0x202e, 0x2060, 0x2061, 0x2062, 0x2063,
                                   0x2064, 0x2066, 0x2067, 0x2068, 0x2069, 0xfeff, 0xfff9}) {
        QCOMPARE(printable(QString(QChar(character))),
                 QString("\\u") + QString::number(character, 16).rightJustified(4, '0'));
    }
}

void PrintableTextTest::whatPeopleReadStays()
{
    for (const QString &text : {QString("Pump station Süd, 61 °C"), QString("насос 水泵 مضخة"),
                                QString("\U0001F600"), QString("back\\slash \"quoted\"")}) {
        QCOMPARE(printable(text), text);
    }
}

void PrintableTextTest::oneThingIsNoPlural()
{
    QCOMPARE(counted(0, "leaf", "leaves"), QString("0 leaves"));
    QCOMPARE(counted(1, "leaf", "leaves"), QString("1 leaf"));
    QCOMPARE(counted(2, "leaf", "leaves"), QString("2 leaves"));
}

QTEST_APPLESS_MAIN(PrintableTextTest)
#include "PrintableTextTest.moc"
