// SPDX-License-Identifier: MIT
// Publishers and clients that die between any two stores to shared memory.
#include "BufferFiles.h"
#include "BufferSource.h"
#include "DoomedProcess.h"
#include "SharedLock.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QtTest>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// What the leaves hold before and after, each with a time of its own.
struct Reading
{
    QVariant value;
    ProcessDataDefinitions::ErrorTypes errorType;
    qint64 timestamp;
};

const QVector<Reading> &before()
{
    static const QVector<Reading> values{
        {QVariant(1.5), ProcessDataDefinitions::NoError, 1000},
        {QVariant("a text before"), ProcessDataDefinitions::NoError, 1001},
        {QVariant(quint64(0x1111111111111111)), ProcessDataDefinitions::OutOfRange, 1002}};
    return values;
}

const QVector<Reading> &after()
{
    static const QVector<Reading> values{
        {QVariant(-2.25), ProcessDataDefinitions::DeviceFault, 2000},
        {QVariant("a longer text afterwards"), ProcessDataDefinitions::NoError, 2001},
        {QVariant(quint64(0x2222222222222222)), ProcessDataDefinitions::NoError, 2002}};
    return values;
}

QJsonArray leaves()
{
    return {leaf("number", "float64"), leaf("text", "string", {{"capacity", 30}}),
            leaf("count", "uint64")};
}

const QStringList leafNames{"number", "text", "count"};

QVector<QPair<int, ProcessValue>> asValues(const QVector<Reading> &readings)
{
    QVector<QPair<int, ProcessValue>> values;
    for (int i = 0; i < readings.size(); ++i) {
        const Reading &reading = readings.at(i);
        values += {i, ProcessValue(reading.value, reading.errorType, reading.timestamp)};
    }
    return values;
}

bool isWhole(const ProcessValue &value, const Reading &reading, bool sourceLives)
{
    return value.getValue() == reading.value && value.getTimestamp() == reading.timestamp
        && value.getErrorType()
        == (sourceLives ? reading.errorType : ProcessDataDefinitions::SourceLost);
}

// Whether each leaf reads as its whole old or its whole new value.
QString tornLeaves(const BufferClient &client, const BufferSource &source, bool sourceLives)
{
    QStringList torn;
    for (int i = 0; i < leafNames.size(); ++i) {
        const ProcessValue value = readLeaf(client.leaf(source.url(leafNames.at(i))));
        if (!isWhole(value, before().at(i), sourceLives)
            && !isWhole(value, after().at(i), sourceLives)) {
            torn += QString("%1: %2 (%3, %4)")
                        .arg(leafNames.at(i), value.getValue().toString())
                        .arg(value.getErrorType())
                        .arg(value.getTimestamp());
        }
    }
    return torn.join("; ");
}

// A source as another process described it.
BufferSource described(const QByteArray &news)
{
    BufferSource source((QJsonArray())); // its document is replaced
    source.buffer.reset();
    source.document = QJsonDocument::fromJson(news).object();
    const auto parsed = parseDescription(news, DescriptionForm::Published, source.error);
    if (parsed) {
        source.description = *parsed;
    }
    return source;
}

// Whether the writers' lock of a buffer can be had, and how many milliseconds it took.
bool lockPasses(const QString &file, qint64 &elapsed)
{
    const int descriptor = open(file.toUtf8().constData(), O_RDWR | O_CLOEXEC);
    void *base
        = mmap(nullptr, sizeof(BufferHeader), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (base == MAP_FAILED) {
        return false;
    }
    QElapsedTimer timer;
    timer.start();
    bool passed = false;
    {
        const WritersLockGuard lock(static_cast<BufferHeader *>(base)->writersLock);
        passed = lock.error() == 0;
    }
    elapsed = timer.elapsed();
    munmap(base, sizeof(BufferHeader));
    return passed;
}

constexpr qint64 writersLimit = 200; // milliseconds

}

class CrashPointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules("processdata.memory=false"); }
    void init() { module = uniqueModule(); }
    void aPublisherThatDiesWhilePublishing();
    void aClientThatDiesWhileWriting();
    void aPublisherThatDiesWhileComingUp();
    void aPublisherThatStopsWhileComingUpIsNeverTakenForDead();
    void aPublisherThatDiesWhileReplacingItsDescription();
    void aPublisherThatDiesWhileRetiring();

private:
    void requireLeftoversOnly(bool remove);
    void requireSuccessor();
    void requirePublisherDiesWell(const std::function<void(BufferSource &)> &deed, int leastPoints);

    QString module;
    bool toolWasFirst = false;
};

// Nothing that was left is believed alive, and a tool could remove it all.
void CrashPointsTest::requireLeftoversOnly(bool remove)
{
    QVector<BufferFile> files;
    QString error;
    QVERIFY2(listBufferFiles(files, error), qPrintable(error));
    for (const BufferFile &file : qAsConst(files)) {
        if (isNamedAfter(file, module)) {
            QVERIFY2(file.isLeftOver(), qPrintable(file.path + ' ' + file.problem));
            if (remove) {
                QCOMPARE(removeLeftover(file, error), BufferRemoval::Removed);
            }
        }
    }
    if (remove) {
        QCOMPARE(buffersOf(module), QStringList());
    }
}

// The next publisher comes up beside whatever was left, unless a tool was there first, and in the end
// nothing is.
void CrashPointsTest::requireSuccessor()
{
    toolWasFirst = !toolWasFirst;
    requireLeftoversOnly(toolWasFirst);
    {
        BufferSource next(leaves(), module);
        QVERIFY2(next.buffer, qPrintable(next.error));
        QCOMPARE(buffersOf(module).size(), 1);
        QVERIFY2(next.buffer->publish(asValues(after()), next.error), qPrintable(next.error));
        const BufferClient client(next.text());
        QVERIFY(client.manager->isBufferValid());
        QVERIFY(isWhole(readLeaf(client.leaf(next.url("text"))), after().at(1), true));
    }
    QCOMPARE(buffersOf(module), QStringList());
}

// A publisher whose values stand does the deed and dies at each point of it in turn.
void CrashPointsTest::requirePublisherDiesWell(const std::function<void(BufferSource &)> &deed,
                                               int leastPoints)
{
    std::unique_ptr<BufferSource> source; // of the child; its parent keeps none
    const auto prepare = [&] {
        source = std::make_unique<BufferSource>(leaves(), module);
        const bool published
            = source->buffer && source->buffer->publish(asValues(before()), source->error);
        return DoomedProcess::Prepared{published ? source->text().toUtf8() : QByteArray(),
                                       [&] { deed(*source); }};
    };
    for (int point = 0;; ++point) {
        DoomedProcess publisher(prepare, point);
        const BufferSource seen = described(publisher.news());
        QVERIFY2(seen.error.isEmpty(), qPrintable(seen.error));
        const BufferClient client(seen.text());
        QVERIFY(client.manager->isBufferValid());
        QCOMPARE(tornLeaves(client, seen, true), QString());
        if (!publisher.diesAtItsPoint()) {
            qInfo("%d points", point);
            QVERIFY2(point >= leastPoints, qPrintable(QString::number(point)));
            break;
        }
        const QByteArray place = "died at point " + QByteArray::number(point);
        QVERIFY2(!client.manager->isBufferValid(), place);
        const QString torn = tornLeaves(client, seen, false);
        QVERIFY2(torn.isEmpty(), place + ": " + torn.toUtf8());
        QElapsedTimer timer;
        timer.start();
        QVERIFY2(!client.leaf(seen.url("number"))->setValue(ProcessValue(QVariant(7.0))), place);
        QVERIFY2(timer.elapsed() < writersLimit, place);
        qint64 elapsed = 0;
        if (QFile::exists(seen.file())) {
            QVERIFY2(lockPasses(seen.file(), elapsed) && elapsed < writersLimit, place);
        }
        requireSuccessor();
        if (QTest::currentTestFailed()) {
            qWarning("%s", place.constData());
            return;
        }
    }
    requireSuccessor(); // of one that ended without being killed at a point
}

void CrashPointsTest::aPublisherThatDiesWhilePublishing()
{
    requirePublisherDiesWell(
        [](BufferSource &source) { source.buffer->publish(asValues(after()), source.error); }, 15);
}

void CrashPointsTest::aPublisherThatDiesWhileReplacingItsDescription()
{
    requirePublisherDiesWell(
        [this](BufferSource &source) {
            // The steps of a publisher: the new buffer, its values, and the old one is given up.
            QJsonArray more = leaves();
            more.prepend(leaf("added", "bool"));
            BufferSource fresh(more, module);
            for (int leaf = 0; leaf < leafNames.size(); ++leaf) {
                fresh.buffer->carryOver(leaf + 1, *source.buffer, leaf);
            }
            source.buffer->retire();
            fresh.buffer.release(); // lives on, as its process would
        },
        40);
}

void CrashPointsTest::aPublisherThatDiesWhileRetiring()
{
    requirePublisherDiesWell([](BufferSource &source) { source.buffer->retire(); }, 4);
}

void CrashPointsTest::aPublisherThatDiesWhileComingUp()
{
    const auto prepare = [this] {
        return DoomedProcess::Prepared{"ready", [this] { new BufferSource(leaves(), module); }};
    };
    constexpr int never = 1000000;
    for (int point = 0;; ++point) {
        DoomedProcess predecessor(prepare, never); // leaves its buffer behind
        QCOMPARE(predecessor.news(), QByteArray("ready"));
        QVERIFY(!predecessor.diesAtItsPoint());
        QCOMPARE(buffersOf(module).size(), 1);
        DoomedProcess publisher(prepare, point);
        QCOMPARE(publisher.news(), QByteArray("ready"));
        if (!publisher.diesAtItsPoint()) {
            qInfo("%d points", point);
            QVERIFY2(point >= 15, qPrintable(QString::number(point)));
            break;
        }
        QVERIFY2(buffersOf(module).size() <= 2, qPrintable(buffersOf(module).join(' ')));
        requireSuccessor();
        if (QTest::currentTestFailed()) {
            qWarning("died at point %d", point);
            return;
        }
    }
    requireSuccessor();
}

// Once the record has its name, its lock is held: at no moment does another process see it free.
void CrashPointsTest::aPublisherThatStopsWhileComingUpIsNeverTakenForDead()
{
    const auto prepare = [this] {
        return DoomedProcess::Prepared{"ready", [this] { new BufferSource(leaves(), module); }};
    };
    bool sawRecordAlone = false;
    bool comesThrough = false;
    for (int point = 0; !comesThrough; ++point) {
        module = uniqueModule();
        {
            DoomedProcess publisher(prepare, point, DoomedProcess::Stops);
            QCOMPARE(publisher.news(), QByteArray("ready"));
            comesThrough = !publisher.stopsAtItsPoint();
            const QStringList names = buffersOf(module);
            sawRecordAlone = sawRecordAlone || names.join(' ').endsWith(".life");
            const QByteArray place = "stopped at point " + QByteArray::number(point);
            for (const QString &name : comesThrough ? QStringList() : names) {
                BufferFile file;
                QVERIFY2(inspectBufferFile("/dev/shm/" + name, file), place);
                QVERIFY2(file.state == BufferFile::Live, place + ": " + file.path.toUtf8());
            }
            if (!comesThrough) {
                BufferSource(leaves(),
                             module); // comes up and goes, and removes what it takes for left
                QVERIFY2(buffersOf(module) == names, place);
            }
        }
        removeLeftBuffers(module);
    }
    QVERIFY(sawRecordAlone);
}

void CrashPointsTest::aClientThatDiesWhileWriting()
{
    BufferSource source(leaves(), module);
    QVERIFY2(source.buffer, qPrintable(source.error));
    const BufferClient client(source.text());
    for (int point = 0;; ++point) {
        QVERIFY2(source.buffer->publish(asValues(before()), source.error),
                 qPrintable(source.error));
        const auto prepare = [&] {
            const auto leaf = client.leaf(source.url("text"));
            const Reading &reading = after().at(1);
            const ProcessValue value(reading.value, reading.errorType, reading.timestamp);
            return DoomedProcess::Prepared{"ready", [=] { leaf->setValue(value); }};
        };
        DoomedProcess writer(prepare, point);
        QCOMPARE(writer.news(), QByteArray("ready"));
        const bool died = writer.diesAtItsPoint();
        const QByteArray place = "died at point " + QByteArray::number(point);
        const QString torn = tornLeaves(client, source, true);
        QVERIFY2(torn.isEmpty(), place + ": " + torn.toUtf8());
        QVERIFY2(client.manager->isBufferValid(), place);
        QElapsedTimer timer;
        timer.start();
        QVERIFY2(client.leaf(source.url("number"))->setValue(ProcessValue(QVariant(9.0))), place);
        QVERIFY2(timer.elapsed() < writersLimit, place);
        QCOMPARE(readLeaf(client.leaf(source.url("number"))).getValue(), QVariant(9.0));
        if (!died) {
            qInfo("%d points", point);
            QVERIFY2(point >= 8, qPrintable(QString::number(point)));
            break;
        }
    }
    source.buffer.reset();
    QCOMPARE(buffersOf(module), QStringList());
}

QTEST_GUILESS_MAIN(CrashPointsTest)
#include "CrashPointsTest.moc"
