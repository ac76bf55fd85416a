// SPDX-License-Identifier: MIT
// The table of a watch: keys, what stands out, and what does not fit.
#include "WatchTable.h"
#include "KeyDecoder.h"

#include <QtTest>

namespace {

const qint64 second = 1000000000;
const qint64 noon = 1767268800 * second;
const QString drive = "processdata://M/O/1/drive/";
const QVector<QString> urls{drive + "speed", drive + "set%20point", drive + "running"};

Style screen()
{
    Style style;
    style.width = 60;
    style.now = noon;
    return style;
}

QVector<ReadResult> values(double speed)
{
    const auto good = ProcessDataDefinitions::NoError;
    return {{urls.at(0), ProcessValue(speed, good, noon), {{"unit", "1/min"}}, {}},
            {urls.at(1), ProcessValue(900.0, good, noon - 60 * second), {{"unit", "1/min"}}, {}},
            {urls.at(2),
             ProcessValue(ProcessDataDefinitions::NoValue),
             {},
             {Finding::NoSuchLeaf, "gone"}}};
}

WatchTable tableOf(double speed)
{
    WatchTable table(
        watchTargets({listLine(0, urls.at(0)), listLine(0, urls.at(1)), listLine(0, urls.at(2))}));
    table.take(values(speed), 0);
    return table;
}

void type(WatchTable &table, const QString &text)
{
    for (const QChar key : text) {
        table.press(key);
    }
}

} // namespace

class WatchTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsKeepTheirPlace();
    void aChangeStandsOutForASecond();
    void rowsWithoutRoomAreCounted();
    void aRowThatNeverFitsIsCut();
    void aFilterIsTypedKeptAndCleared();
    void qLeaves();
    void keysAreTakenApart_data();
    void keysAreTakenApart();
    void aLoneEscapeIsAKeyWhenNothingFollows();
};

void WatchTableTest::rowsKeepTheirPlace()
{
    WatchTable table = tableOf(1000);
    const QStringList wanted{"processdata://M/O/1/drive/…",
                             "URL        VALUE  UNIT   ERROR      AGE  NOTE",
                             "speed       1000  1/min  NoError  < 1 s",
                             "set point    900  1/min  NoError  1 min",
                             "running                  NoValue         gone",
                             "",
                             "q quits, / filters"};
    QCOMPARE(table.frame(screen(), 7, 5000), wanted);

    table.take(values(5), 6000);
    QStringList next = wanted;
    next[2] = "speed          5  1/min  NoError  < 1 s"; // the column stays
    QCOMPARE(table.frame(screen(), 7, 8000), next);
}

void WatchTableTest::aChangeStandsOutForASecond()
{
    WatchTable table = tableOf(1000);
    QVERIFY(!table.frame(screen(), 7, 0).join('\n').contains('\x1b'));
    table.take(values(1001), 5000);
    const QString changed = "speed       \x1b[7;1m1001\x1b[27;22m  1/min  NoError  < 1 s";
    QCOMPARE(table.frame(screen(), 7, 5000).at(2), changed);
    table.take(values(1001), 5900);
    QCOMPARE(table.frame(screen(), 7, 5999).at(2), changed);
    QCOMPARE(table.frame(screen(), 7, 6000).at(2),
             changed.section("\x1b", 0, 0) + "1001  1/min  NoError  < 1 s");
}

void WatchTableTest::rowsWithoutRoomAreCounted()
{
    WatchTable table = tableOf(1000);
    const QStringList frame = table.frame(screen(), 5, 0);
    QCOMPARE(frame.size(), 5);
    QVERIFY(frame.at(3).startsWith("set point "));
    QCOMPARE(frame.at(4), QString("1 of 3 rows do not fit; q quits, / filters"));
    for (int height = 1; height < 9; ++height) {
        QCOMPARE(table.frame(screen(), height, 0).size(), height);
    }
    QCOMPARE(table.frame(screen(), 1, 0),
             QStringList("3 of 3 rows do not fit; q quits, / filters"));
}

void WatchTableTest::aRowThatNeverFitsIsCut()
{
    WatchTable table(watchTargets({listLine(0, urls.at(0))}));
    table.take({{urls.at(0),
                 ProcessValue(QString(500, 'x'), ProcessDataDefinitions::NoError, noon),
                 {},
                 {}}},
               0);
    Style style = screen();
    style.breaks = true;
    const QStringList frame = table.frame(style, 7, 0);
    QVERIFY(frame.at(2).startsWith("speed "));
    QCOMPARE(frame.mid(3),
             (QStringList{"    " + QString(56, 'x'), "    " + QString(56, 'x'), "    …",
                          "q quits, / filters"}));
}

void WatchTableTest::aFilterIsTypedKeptAndCleared()
{
    WatchTable table = tableOf(1000);
    type(table, "/T p");
    QStringList frame = table.frame(screen(), 6, 0);
    QVERIFY(frame.at(2).startsWith("set point ")); // decoded, small or capital
    QCOMPARE(frame.at(3), QString());
    QCOMPARE(frame.last(), QString("/T p_"));

    type(table, "q\bx\b\n");
    frame = table.frame(screen(), 6, 0);
    QCOMPARE(frame.last(), QString("1 of 3 rows have \"T p\"; q quits, / filters, Esc shows all"));

    type(table, "\x1b");
    QCOMPARE(table.frame(screen(), 7, 0).last(), QString("q quits, / filters"));
    type(table, "/no such\x1b");
    QCOMPARE(table.frame(screen(), 7, 0).last(), QString("q quits, / filters"));
    type(table, "/no such\n");
    QCOMPARE(table.frame(screen(), 4, 0).last(),
             QString("0 of 3 rows have \"no such\"; q quits, / filters, Esc shows all").left(60));
}

void WatchTableTest::qLeaves()
{
    WatchTable table = tableOf(1000);
    QVERIFY(table.press("x") == WatchTable::Answer::Nothing);
    QVERIFY(table.press("\x1b") == WatchTable::Answer::Nothing);
    QVERIFY(table.press("/") == WatchTable::Answer::Draw);
    QVERIFY(table.press("q") == WatchTable::Answer::Draw);
    QVERIFY(table.press("\n") == WatchTable::Answer::Draw);
    QVERIFY(table.press("q") == WatchTable::Answer::Leave);
}

void WatchTableTest::keysAreTakenApart_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("letters") << QByteArray("q/") << QStringList{"q", "/"};
    QTest::newRow("enter and backspace")
        << QByteArray("\r\n\x7f\b") << QStringList{"\n", "\n", "\b", "\b"};
    QTest::newRow("more than ASCII") << QByteArray("ä€") << QStringList{"ä", "€"};
    QTest::newRow("arrows and function keys")
        << QByteArray("\x1b[A\x1bOP\x1b[15~x") << QStringList{"x"};
    QTest::newRow("Escape and a letter at once") << QByteArray("\x1bq") << QStringList{"\x1b", "q"};
    QTest::newRow("what is not text") << QByteArray("\xff\xc3(x") << QStringList{"(", "x"};
}

void WatchTableTest::keysAreTakenApart()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QStringList, keys);

    KeyDecoder whole;
    QCOMPARE(whole.take(bytes), keys);
    QVERIFY(!whole.isWaiting());

    KeyDecoder pieces;
    QStringList found;
    for (const char byte : bytes) {
        found += pieces.take(QByteArray(1, byte));
    }
    QCOMPARE(found, keys);
}

void WatchTableTest::aLoneEscapeIsAKeyWhenNothingFollows()
{
    KeyDecoder decoder;
    QCOMPARE(decoder.take("a\x1b"), QStringList("a"));
    QVERIFY(decoder.isWaiting());
    QCOMPARE(decoder.giveUp(), QStringList("\x1b"));
    QVERIFY(!decoder.isWaiting());
    QCOMPARE(decoder.take("\xc3"), QStringList());
    QCOMPARE(decoder.giveUp(), QStringList());
}

QTEST_APPLESS_MAIN(WatchTableTest)
#include "WatchTableTest.moc"
