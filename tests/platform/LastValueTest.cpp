// SPDX-License-Identifier: MIT
// What a read returns whose publisher writes once more and goes while the read is under way.
#include "BufferSource.h"

#include <QtTest>

#include <csignal>
#include <functional>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Happens at a reader's next look at the record of its publisher, before the look succeeds.
std::function<void()> atNextLook;
void *record = nullptr;
size_t pageSize = 0;

void onLook(int, siginfo_t *, void *)
{
    mprotect(record, pageSize, PROT_READ);
    const auto deed = std::move(atNextLook);
    atNextLook = nullptr;
    if (!deed) {
        _exit(EXIT_FAILURE); // a fault that is not ours
    }
    deed();
}

// Where this process has a file mapped; null when it has not.
void *mappingOf(const QString &file)
{
    QFile maps("/proc/self/maps");
    if (maps.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = maps.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.endsWith(file.toUtf8())) {
                return reinterpret_cast<void *>(
                    line.left(line.indexOf('-')).toULongLong(nullptr, 16));
            }
        }
    }
    return nullptr;
}

}

class LastValueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void withTheSourceLostComesItsLastValue_data();
    void withTheSourceLostComesItsLastValue();
};

void LastValueTest::initTestCase()
{
    pageSize = size_t(sysconf(_SC_PAGESIZE));
    struct sigaction action = {};
    action.sa_sigaction = onLook;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    QCOMPARE(sigaction(SIGSEGV, &action, nullptr), 0);
}

void LastValueTest::withTheSourceLostComesItsLastValue_data()
{
    QTest::addColumn<QJsonObject>("leaf");
    QTest::addColumn<QVariant>("earlier");
    QTest::addColumn<QVariant>("last");
    QTest::newRow("the type that is read most")
        << leaf("value", "float64") << QVariant(1.5) << QVariant(2.5);
    QTest::newRow("another number") << leaf("value", "int32") << QVariant(1) << QVariant(2);
    QTest::newRow("a text") << leaf("value", "string", {{"capacity", 8}}) << QVariant("one")
                            << QVariant("two");
}

void LastValueTest::withTheSourceLostComesItsLastValue()
{
    QFETCH(QJsonObject, leaf);
    QFETCH(QVariant, earlier);
    QFETCH(QVariant, last);
    // The first leaf keeps the second off the header's page.
    BufferSource source({::leaf("room", "bytes", {{"capacity", int(pageSize)}}), leaf});
    QVERIFY2(source.buffer, qPrintable(source.error));
    QVERIFY(source.publish(1, ProcessValue(earlier)));
    const BufferClient client(source.text());
    const auto value = client.leaf(source.url("value"));
    QVERIFY(value);
    QCOMPARE(readLeaf(value).getValue(), earlier);
    QCOMPARE(readLeaf(value).getErrorType(), ProcessDataDefinitions::NoError);
    record = mappingOf(source.life()); // the client's; the publisher's was made before the name
    QVERIFY(record != nullptr);
    bool published = false;
    atNextLook = [&] {
        published = source.publish(1, ProcessValue(last));
        source.buffer->retire();
    };
    QCOMPARE(mprotect(record, pageSize, PROT_NONE), 0);

    const ProcessValue read = readLeaf(value);

    QVERIFY(published);
    QCOMPARE(read.getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(read.getValue(), last);
    QCOMPARE(readLeaf(value).getValue(), last);
}

QTEST_GUILESS_MAIN(LastValueTest)
#include "LastValueTest.moc"
