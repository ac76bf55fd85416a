// SPDX-License-Identifier: MIT
// Publishers come up whatever names others have taken, and how many.
#include "BufferName.h"
#include "BufferSource.h"
#include "MessageLog.h"
#include "RequireRoot.h"

#include <QtTest>

#include <fcntl.h>
#include <sys/syscall.h>

namespace {

constexpr uid_t otherUser = 12345;
constexpr quint64 microsecondsPerSecond = 1'000'000;

// What the machine's clock says to publishers of this process; 0 for the truth.
quint64 microsecondsSinceStart = 0;

bool makeFile(const QString &name, uid_t owner = geteuid())
{
    QFile file("/dev/shm/" + name);
    return file.open(QIODevice::WriteOnly) && fchown(file.handle(), owner, gid_t(-1)) == 0;
}

}

// In the place of the C library's, for everything in this program.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    if (clock == CLOCK_BOOTTIME && microsecondsSinceStart != 0) {
        time->tv_sec = time_t(microsecondsSinceStart / microsecondsPerSecond);
        time->tv_nsec = long(microsecondsSinceStart % microsecondsPerSecond * 1000);
        return 0;
    }
    return int(syscall(SYS_clock_gettime, clock, time));
}

class BufferSquatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { module = uniqueModule(); }
    void cleanup();
    void namesThatAreTakenAreLeaptOver();
    void aClockThatStandsStillGivesEachBufferItsOwnGeneration();
    void linksToABufferRepeatNoGeneration();
    void theSearchForLeftoversIsBounded();

private:
    QString module;
    QStringList squatted;
};

void BufferSquatTest::cleanup()
{
    microsecondsSinceStart = 0;
    for (const QString &name : qAsConst(squatted)) {
        QFile::remove("/dev/shm/" + name);
    }
    squatted.clear();
    QCOMPARE(buffersOf(module), QStringList());
}

void BufferSquatTest::namesThatAreTakenAreLeaptOver()
{
    REQUIRE_ROOT();
    microsecondsSinceStart = 1'000'000'000'000'000;
    const QString prefix = "processdata." + module + "_Tank_1.";
    const auto name = [&](int ahead) {
        return prefix + QString::number(microsecondsSinceStart + quint64(ahead));
    };
    squatted = QStringList{name(0), name(1) + ".life", name(3), name(3) + ".life"};
    for (const QString &file : qAsConst(squatted)) {
        QVERIFY(makeFile(file, otherUser));
    }

    const BufferSource source({leaf("level", "float64")}, module);

    QVERIFY2(source.buffer, qPrintable(source.error));
    QCOMPARE(source.description.buffer->generation, microsecondsSinceStart + 7);
    QCOMPARE(QDir("/dev/shm").entryList({prefix + "*"}, QDir::Files).size(), 4 + 2);
}

void BufferSquatTest::aClockThatStandsStillGivesEachBufferItsOwnGeneration()
{
    microsecondsSinceStart = 1'500'000'000'000'000;
    const BufferSource first({leaf("level", "float64")}, module);
    const quint64 generation = first.description.buffer->generation;
    const BufferSource second({leaf("level", "float64")}, module);
    QCOMPARE(second.description.buffer->generation, generation + 1);
    microsecondsSinceStart -= 1'000'000;
    const BufferSource third({leaf("level", "float64")}, module);
    QCOMPARE(third.description.buffer->generation, generation + 2);
}

void BufferSquatTest::linksToABufferRepeatNoGeneration()
{
    const BufferSource source({leaf("level", "float64")}, module);
    // The last number there is, and the one before: nothing comes after them.
    for (const quint64 generation : {maximumGeneration, maximumGeneration - 1}) {
        squatted += "processdata." + module + "_Tank_2." + QString::number(generation);
        QCOMPARE(link(source.file().toUtf8(), ("/dev/shm/" + squatted.last()).toUtf8()), 0);
    }
    microsecondsSinceStart = 2'000'000'000'000'000;
    quint64 before = 0;
    for (int i = 0; i < 3; ++i) {
        const BufferSource linked({leaf("level", "float64")}, module, "2");
        QVERIFY2(linked.buffer, qPrintable(linked.error));
        const quint64 generation = linked.description.buffer->generation;
        QVERIFY(generation > before && generation < microsecondsSinceStart + 10);
        before = generation;
    }
}

void BufferSquatTest::theSearchForLeftoversIsBounded()
{
    constexpr int many = 20'001;
    const int directory = open("/dev/shm", O_DIRECTORY | O_PATH | O_CLOEXEC);
    for (int i = 0; i < many; ++i) {
        squatted += QString("squatter.%1.%2").arg(module).arg(i);
        const int file = openat(directory, squatted.last().toUtf8().constData(),
                                O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
        QVERIFY(file != -1);
        close(file);
    }
    close(directory);
    const MessageLog warnings;

    const BufferSource first({leaf("level", "float64")}, module);
    const BufferSource second({leaf("level", "float64")}, module, "2");

    QVERIFY2(first.buffer && second.buffer, qPrintable(first.error + second.error));
    QCOMPARE(warnings.texts(),
             QStringList("processdata.memory: Looking for leftovers in /dev/shm ended after 20000 "
                         "files; selector doctor --clean finds the rest"));
}

QTEST_GUILESS_MAIN(BufferSquatTest)
#include "BufferSquatTest.moc"
