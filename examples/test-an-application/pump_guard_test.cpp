// SPDX-License-Identifier: MIT
// Tests PumpGuard without a pump: no bus, no shared memory, no other process.
#include "PumpGuard.h"

#include <ScriptedPlatform.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString pump = QStringLiteral("processdata://PumpStation/Pump/1");

// Made anew for each test; the platform comes first and goes last.
struct Station
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source(QStringLiteral("PumpStation"), QStringLiteral("Pump"),
                                            QStringLiteral("1"));
    ScriptedLeaf temperature;
    ScriptedLeaf running;

    Station()
    {
        source.leaf(QStringLiteral("bearing/temperature"), 71.5)
            .leaf(QStringLiteral("drive/running"), true);
        temperature = source.at(QStringLiteral("bearing/temperature"));
        temperature.property(QStringLiteral("unit"), QStringLiteral("°C"));
        running = source.at(QStringLiteral("drive/running"));
    }
};

} // namespace

class PumpGuardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCoolPumpRunsOn()
    {
        Station station;
        const PumpGuard guard(pump);
        QCOMPARE(guard.state(), PumpGuard::Normal);
        QCOMPARE(station.running.written().size(), 0);
    }

    void aHotPumpIsStopped()
    {
        Station station;
        PumpGuard guard(pump);
        const QSignalSpy changes(&guard, &PumpGuard::stateChanged);

        station.temperature.holds(90.5);
        guard.check();

        QCOMPARE(guard.state(), PumpGuard::TooHot);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(station.running.value().getValue(), QVariant(false));
    }

    void aPumpThatDoesNotStopIsTold()
    {
        Station station;
        station.running.refusesWrites();
        station.temperature.holds(90.5);
        const PumpGuard guard(pump);
        QCOMPARE(guard.state(), PumpGuard::NotStopping);
        QCOMPARE(station.running.value().getValue(), QVariant(true));
    }

    void aBrokenSensorIsNotBelieved()
    {
        Station station;
        PumpGuard guard(pump);
        station.temperature.holds(20, ProcessDataDefinitions::DeviceFault);
        guard.check();
        QCOMPARE(guard.state(), PumpGuard::Blind);
        QCOMPARE(guard.temperature(), QStringLiteral("?"));
    }

    void aStationThatVanishesIsFoundAgain()
    {
        Station station;
        PumpGuard guard(pump);

        station.source.disappears();
        guard.check();
        QCOMPARE(guard.state(), PumpGuard::Blind);

        QCOMPARE(station.source.returns(), 1); // one client fetched the description again
        QCOMPARE(guard.state(), PumpGuard::Normal);
    }

    void aStationThatComesUpLateIsFound()
    {
        Station station;
        station.source.disappears();
        const PumpGuard guard(pump);
        QCOMPARE(guard.state(), PumpGuard::Blind);

        QCOMPARE(station.source.returns(), 1);
        QCOMPARE(guard.state(), PumpGuard::Normal);
    }

    void anotherUnitIsShownAtOnce()
    {
        Station station;
        PumpGuard guard(pump);
        const QSignalSpy changes(&guard, &PumpGuard::temperatureChanged);
        QCOMPARE(guard.temperature(), QStringLiteral("71.5 °C"));

        station.temperature.holds(344.6).property(QStringLiteral("unit"), QStringLiteral("K"));
        QCOMPARE(station.source.changeProperties(), 1);

        QCOMPARE(changes.size(), 1);
        QCOMPARE(guard.temperature(), QStringLiteral("344.6 K"));
    }
};

QTEST_GUILESS_MAIN(PumpGuardTest)
#include "pump_guard_test.moc"
