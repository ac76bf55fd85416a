// SPDX-License-Identifier: MIT
// A simulator whose buffer another process keeps locked: its values stand still no longer than that.
#include "BufferLayout.h"
#include "BusTestMain.h"
#include "SelectorHandlerProcessValue.h"
#include "SimulatorProcess.h"
#include "SystemTest.h"

#include <QFile>
#include <QTest>

class SimulatorLockTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void allValuesMoveAgainOnceTheLockIsFree();
};

namespace {

QJsonObject counter(const QString &name, const QJsonObject &more = {})
{
    QJsonObject properties = more;
    properties.insert("simulate", QJsonObject{{"kind", "counter"}, {"interval", 20}});
    return leaf(name, "uint32", properties);
}

uint valueOf(SelectorHandlerProcessValue &handler, int index)
{
    return handler.getValue(index).getValue().toUInt();
}
}

void SimulatorLockTest::allValuesMoveAgainOnceTheLockIsFree()
{
    SimulatorProcess simulator(bus->address());
    VERIFY_COMMAND(simulator.publish(module, description({counter("one"), counter("two")})));
    VERIFY_COMMAND(simulator.start({"--interval", "20"}));
    SelectorHandlerProcessValue handler({selectorUrl(module, "one"), selectorUrl(module, "two")},
                                        nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(valueOf(handler, 0) > 0 && valueOf(handler, 1) > 0, 20000);

    QFile file(bufferFile(module));
    QVERIFY(file.open(QIODevice::ReadWrite));
    auto *const header = reinterpret_cast<BufferHeader *>(file.map(0, sizeof(BufferHeader)));
    QVERIFY(header != nullptr);
    QCOMPARE(pthread_mutex_lock(&header->writersLock.mutex), 0);
    const bool warned = simulator.waitForError("could not be locked for writing");
    const uint one = valueOf(handler, 0);
    const uint two = valueOf(handler, 1);
    QCOMPARE(pthread_mutex_unlock(&header->writersLock.mutex), 0);
    QVERIFY(warned);

    QTRY_VERIFY_WITH_TIMEOUT(valueOf(handler, 0) > one && valueOf(handler, 1) > two, 20000);
}

BUS_TEST_MAIN(SimulatorLockTest)
#include "SimulatorLockTest.moc"
