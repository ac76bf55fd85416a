// SPDX-License-Identifier: MIT
// Times with and without unit.
#include "Duration.h"

#include <QtTest>

class DurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timesAreRead_data();
    void timesAreRead();
    void whatIsNotATimeIsNotRead_data();
    void whatIsNotATimeIsNotRead();
};

void DurationTest::timesAreRead_data()
{
    QTest::addColumn<double>("bareUnit");
    QTest::addColumn<double>("milliseconds");
    QTest::newRow("5") << 1.0 << 5.0;
    QTest::newRow("1.5") << 1000.0 << 1500.0;
    QTest::newRow("500ms") << 1000.0 << 500.0;
    QTest::newRow("1s") << 1.0 << 1000.0;
    QTest::newRow("0.25s") << 1.0 << 250.0;
    QTest::newRow("2min") << 1.0 << 120000.0;
    QTest::newRow("1h") << 1.0 << 3600000.0;
    QTest::newRow("7d") << 1.0 << 604800000.0;
    QTest::newRow("2 min") << 1.0 << 120000.0;
    QTest::newRow("0s") << 1.0 << 0.0;
    QTest::newRow("-1s") << 1.0 << -1000.0;
}

void DurationTest::timesAreRead()
{
    QFETCH(double, bareUnit);
    QFETCH(double, milliseconds);
    const auto time = millisecondsFromText(QTest::currentDataTag(), bareUnit);
    QVERIFY(time.has_value());
    QCOMPARE(*time, milliseconds);
}

void DurationTest::whatIsNotATimeIsNotRead_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"", "s", "ms", "soon", "5 apples", "1m", "1S", "1sec", "1h30min", "1,5s", "0x10s"}) {
        QTest::newRow(*text == 0 ? "nothing" : text) << text;
    }
}

void DurationTest::whatIsNotATimeIsNotRead()
{
    QFETCH(QString, text);
    QVERIFY(!millisecondsFromText(text, 1).has_value());
}

QTEST_APPLESS_MAIN(DurationTest)
#include "DurationTest.moc"
