// SPDX-License-Identifier: MIT
// What every test of the whole system starts with: a bus of its own and a fresh module name.
#include "SystemTest.h"

#include <QTest>

#include <unistd.h>

void SystemTest::init()
{
    startSystem(PrivateBus::Limits::Wide);
}

void SystemTest::startSystem(PrivateBus::Limits limits)
{
    module = uniqueModule();
    bus.reset(new PrivateBus(limits));
    QVERIFY2(bus->start(), bus->report().constData());
}

void SystemTest::cleanup()
{
    bus.reset();
    removeLeftBuffers(module);
}

QStringList SystemTest::powerless()
{
    return ::geteuid() == 0
        ? QStringList{"setpriv", "--bounding-set", "-dac_override,-dac_read_search"}
        : QStringList();
}
