// SPDX-License-Identifier: MIT
// A test ends well while threads of its application still warn.
#include "BusTestMain.h"

#include <QSemaphore>

#include <array>
#include <atomic>
#include <thread>

namespace {

struct Warners
{
    std::atomic<bool> goOn{true};
    QSemaphore began;
    std::array<std::thread, 4> threads;
};

Warners &warners()
{
    static Warners all;
    return all;
}

void endWarners()
{
    warners().goOn = false;
    for (std::thread &each : warners().threads) {
        each.join();
    }
}
}

class BusTestMainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threadsWarnUntilTheApplicationEnds();
};

void BusTestMainTest::threadsWarnUntilTheApplicationEnds()
{
    for (std::thread &each : warners().threads) {
        each = std::thread([] {
            qWarning("here");
            warners().began.release();
            while (warners().goOn) {
                qWarning("still here");
            }
        });
    }
    qAddPostRoutine(endWarners);
    warners().began.acquire(int(warners().threads.size()));
}

BUS_TEST_MAIN(BusTestMainTest)

#include "BusTestMainTest.moc"
