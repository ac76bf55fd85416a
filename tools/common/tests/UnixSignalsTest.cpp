// SPDX-License-Identifier: MIT
// Signals of the system arrive as Qt signals.
#include "UnixSignals.h"

#include <QSignalSpy>
#include <QtTest>

#include <csignal>

class UnixSignalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachSignalIsReportedOnceByItsNumber_data();
    void eachSignalIsReportedOnceByItsNumber();
    void aSecondSignalMeetsTheDefault();
};

void UnixSignalsTest::eachSignalIsReportedOnceByItsNumber_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
}

void UnixSignalsTest::eachSignalIsReportedOnceByItsNumber()
{
    QFETCH(int, number);
    const UnixSignals signalsOfSystem;
    QVERIFY(signalsOfSystem.isActive());
    QSignalSpy spy(&signalsOfSystem, &UnixSignals::received);

    QCOMPARE(std::raise(number), 0);

    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), number);
}

void UnixSignalsTest::aSecondSignalMeetsTheDefault()
{
    const UnixSignals signalsOfSystem;
    QCOMPARE(std::raise(SIGTERM), 0);
    struct sigaction now = {};
    sigaction(SIGTERM, nullptr, &now);
    QVERIFY(now.sa_handler == SIG_DFL);
}

QTEST_GUILESS_MAIN(UnixSignalsTest)
#include "UnixSignalsTest.moc"
