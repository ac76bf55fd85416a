// SPDX-License-Identifier: MIT
// Shared memory, descriptors or memory used up: the operation that hits it fails with its reason,
// and everything before it goes on.
#include "BusTestMain.h"
#include "MessageLog.h"
#include "RequireRoot.h"
#include "SelectorHandlerProcessValue.h"
#include "Shortage.h"
#include "SystemTest.h"

#include <QTest>

#include <memory>

namespace {

constexpr int waitLimit = 20000; // milliseconds
const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));
const QJsonObject small = description({leaf("setpoint", "int32")});
const QJsonObject other = description({leaf("setpoint", "int16")});

// Does not fit into what a shortage of memory leaves.
QJsonObject largeDescription()
{
    constexpr int largestCapacity = 16 * 1024 * 1024; // of one leaf, whose slot holds two copies
    QJsonArray leaves{leaf("setpoint", "int32")};
    for (int i = 0; i <= MemoryShortage::stillFits / (2 * largestCapacity); ++i) {
        leaves += leaf(QString("bulk%1").arg(i), "bytes", {{"capacity", largestCapacity}});
    }
    return description(leaves);
}

const QJsonObject large = largeDescription();

// Sanitized programs look at an object's type through a pipe: without descriptors they take every
// object for a wrong one.
bool canBeStarvedOfDescriptors()
{
#ifdef SANITIZED
    return false;
#else
    return true;
#endif
}

#define REQUIRE_STARVATION()                                                                       \
    if (!canBeStarvedOfDescriptors()) {                                                            \
        QSKIP("sanitizers take descriptors themselves");                                           \
    }                                                                                              \
    static_assert(true, "takes a semicolon")

} // namespace

class ExhaustionTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void fullSharedMemoryFailsANewBufferAndHarmsNoOther();
    void aStarvedPublisherMakesNoInstanceAndGoesOnWithItsOthers_data();
    void aStarvedPublisherMakesNoInstanceAndGoesOnWithItsOthers();
    void aClientWithoutDescriptorsGoesOnButAttachesNothing();
    void aClientWithoutMemoryGoesOnButAttachesNothingLarge();
    void whoeverHasNoDescriptorsForTheBusSaysSo();

private:
    bool isPublished(PublisherProcess &publisher, SelectorHandlerProcessValue &handler, int value);
    QStringList buffers() const { return buffersOf(module); }
};

// A value goes to the client and one comes back.
bool ExhaustionTest::isPublished(PublisherProcess &publisher, SelectorHandlerProcessValue &handler,
                                 int value)
{
    return publisher.publish("setpoint", value).isEmpty()
        && handler.getValue(0).getValue() == QVariant(value)
        && handler.getValue(0).getErrorType() == ProcessDataDefinitions::NoError
        && handler.setValue(ProcessValue(QVariant(value + 1)), 0)
        && publisher.waitForWrite("setpoint") == QByteArray::number(value + 1);
}

// In a mount namespace with a small file system of its own: that of the machine is nobody's to
// fill.
void ExhaustionTest::fullSharedMemoryFailsANewBufferAndHarmsNoOther()
{
    REQUIRE_ROOT();
    PublisherProcess publisher({},
                               {"unshare", "--mount", "sh", "-c",
                                "mount -t tmpfs -o size=64k tmpfs /dev/shm && "
                                "exec \"$0\" \"$@\""});
    VERIFY_COMMAND(publisher.serve(module, small));
    VERIFY_COMMAND(publisher.publish("setpoint", 8));
    const auto inside = [&publisher](const QStringList &command) {
        return QStringList{"--target", QString::number(publisher.process().pid()), "--mount"}
        + command;
    };
    // Not without end: in a chroot the namespace's /dev/shm is that of the machine after all.
    ChildProcess filler("nsenter", inside({"sh", "-c", "head -c 1M /dev/zero > /dev/shm/filler"}));
    QVERIFY(filler.run());
    QVERIFY2(filler.errors().contains("No space left"), filler.report());

    const QByteArray noSpace = "bytes in /dev/shm failed: No space left on device";
    const QByteArray created = publisher.create(module, "Controller", "2", small);
    QVERIFY2(created.contains(noSpace), created);
    const QByteArray replaced = publisher.replaceDescription(other);
    QVERIFY2(replaced.contains(noSpace), replaced);

    ChildProcess client("nsenter",
                        inside({INTEGRATION_CLIENT, "0:0", selectorUrl(module, "setpoint")}));
    QVERIFY(client.run());
    QCOMPARE(client.output(), QByteArray("0 8 written\n"));
    QCOMPARE(client.errors(), QByteArray());
    QCOMPARE(publisher.waitForWrite("setpoint"), QByteArray("44"));
    ChildProcess cleaner("nsenter", inside({"rm", "/dev/shm/filler"}));
    QVERIFY(cleaner.run());
    VERIFY_COMMAND(publisher.create(module, "Controller", "2", small));
}

void ExhaustionTest::aStarvedPublisherMakesNoInstanceAndGoesOnWithItsOthers_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("of descriptors")
        << "descriptors" << QByteArray("creating a file in /dev/shm failed: Too many open");
    QTest::newRow("of memory") << "memory" << QByteArray("bytes failed: Cannot allocate memory");
}

void ExhaustionTest::aStarvedPublisherMakesNoInstanceAndGoesOnWithItsOthers()
{
    QFETCH(QString, what);
    QFETCH(QByteArray, reason);
    if (what == "descriptors") {
        REQUIRE_STARVATION();
    }
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.serve(module, small));
    SelectorHandlerProcessValue handler({selectorUrl(module, "setpoint")}, nullptr);
    QVERIFY(isPublished(publisher, handler, 1));
    const QStringList before = buffers();
    VERIFY_COMMAND(publisher.starve(what));

    const QByteArray created = publisher.create(module, "Controller", "2", large);
    QVERIFY2(created.startsWith("error") && created.contains(reason), created);
    const QByteArray replaced = publisher.replaceDescription(large);
    QVERIFY2(replaced.startsWith("error") && replaced.contains(reason), replaced);

    QCOMPARE(buffers(), before);
    QVERIFY(isPublished(publisher, handler, 10));
    VERIFY_COMMAND(publisher.starve("nothing"));
    VERIFY_COMMAND(publisher.create(module, "Controller", "2", small));
    QVERIFY(publisher.quit());
}

void ExhaustionTest::aClientWithoutDescriptorsGoesOnButAttachesNothing()
{
    REQUIRE_STARVATION();
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.start());
    VERIFY_COMMAND(publisher.create(module, "Controller", "2", small));
    VERIFY_COMMAND(publisher.create(module, "Controller", "1", small));
    SelectorHandlerProcessValue before({selectorUrl(module, "setpoint")}, nullptr);
    QSignalSpy spy(&before, changed);
    const MessageLog warnings;
    auto shortage = std::make_unique<DescriptorShortage>();

    SelectorHandlerProcessValue late({selectorUrl(module, "setpoint", "Controller", "2")}, nullptr);
    QCOMPARE(late.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);
    const QByteArray all = warnings.texts().join('\n').toLocal8Bit();
    QVERIFY2(all.contains("Too many open files"), all);
    QVERIFY(isPublished(publisher, before, 1));
    // A new description cannot be attached either; it is when there are descriptors again.
    VERIFY_COMMAND(publisher.replaceDescription(other));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
    QCOMPARE(before.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);

    shortage.reset();
    VERIFY_COMMAND(publisher.replaceDescription(small));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}, {0}}), waitLimit);
    QVERIFY(isPublished(publisher, before, 20));
}

void ExhaustionTest::aClientWithoutMemoryGoesOnButAttachesNothingLarge()
{
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.start());
    VERIFY_COMMAND(publisher.create(module, "Controller", "2", large));
    VERIFY_COMMAND(publisher.create(module, "Controller", "1", small));
    SelectorHandlerProcessValue before({selectorUrl(module, "setpoint")}, nullptr);
    const QVector<QString> largeUrl{selectorUrl(module, "setpoint", "Controller", "2")};
    {
        const MessageLog warnings;
        const MemoryShortage shortage;

        SelectorHandlerProcessValue late(largeUrl, nullptr);

        QCOMPARE(late.getValue(0).getErrorType(), ProcessDataDefinitions::NoValue);
        const QByteArray all = warnings.texts().join('\n').toLocal8Bit();
        QVERIFY2(all.contains("mapping it failed: Cannot allocate memory"), all);
        QVERIFY(isPublished(publisher, before, 1));
    }
    SelectorHandlerProcessValue later(largeUrl, nullptr);
    QCOMPARE(later.getValue(0).getErrorType(), ProcessDataDefinitions::NotInitialized);
}

void ExhaustionTest::whoeverHasNoDescriptorsForTheBusSaysSo()
{
    REQUIRE_STARVATION();
    PublisherProcess publisher;
    VERIFY_COMMAND(publisher.start());
    VERIFY_COMMAND(publisher.starve("descriptors"));
    const QByteArray refusal = publisher.create(module, "Controller", "1", small);
    QVERIFY2(refusal.startsWith("error Cannot connect to the bus at ")
                 && refusal.contains("Too many open files"),
             refusal);
    VERIFY_COMMAND(publisher.starve("nothing"));
    VERIFY_COMMAND(publisher.create(module, "Controller", "1", small));
    VERIFY_COMMAND(publisher.starve("descriptors"));
    const QByteArray second = publisher.create(module + "b", "Controller", "1", small);
    QVERIFY2(second.contains("Too many open files"), second);
    VERIFY_COMMAND(publisher.publish("setpoint", 8));
    ChildProcess client(INTEGRATION_CLIENT, {"--starved", selectorUrl(module, "setpoint")});

    QVERIFY(client.run());

    QVERIFY2(client.output() == "3  refused\n", client.report());
    QVERIFY2(client.errors().contains("Cannot connect to the bus at "), client.report());
    QVERIFY2(client.errors().contains("Too many open files"), client.report());
}

BUS_TEST_MAIN(ExhaustionTest)
#include "ExhaustionTest.moc"
