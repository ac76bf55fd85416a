// SPDX-License-Identifier: MIT
// What any user may call: too much at once, what nobody knows, without reading the answers.
#include "BusTestMain.h"
#include "Files.h"
#include "InstanceListClient.h"
#include "RudeCaller.h"
#include "SystemTest.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <vector>

namespace {

constexpr int mostOfBus = 32 << 20; // what a system bus takes in one message
constexpr int mostOfOneCaller = 64; // calls that wait

// Kilobytes of a process, as its status names them.
int memory(qint64 pid, const QByteArray &field)
{
    return statusOf(pid, field).split(' ').first().toInt();
}

QJsonObject largeDescription()
{
    constexpr int leaves = 100000;
    QJsonArray elements;
    for (int i = 0; i < leaves; ++i) {
        elements += leaf(QString("leaf%1").arg(i), "float64", {{"unit", "K"}});
    }
    return description(elements);
}

} // namespace

class HostileCallsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void whatIsTooLargeOrUnknownGetsAShortError_data();
    void whatIsTooLargeOrUnknownGetsAShortError();
    void callsThatWantNoAnswerGetNone_data();
    void callsThatWantNoAnswerGetNone();
    void aCallerThatReadsNothingKeepsNobodyElseWaiting();
    void aCallerWithTooManyCallsIsToldSo();

private:
    QByteArray service() const { return "com.orvalis.ProcessData." + module.toUtf8(); }
    RudeCaller::Call fetch(bool wantsAnswer) const
    {
        return RudeCaller::fetch(service(), wantsAnswer);
    }
    void publishLargeDescription();
    void checkPeak();

    QScopedPointer<PublisherProcess> publisher;
    int restKilobytes = 0;
};

void HostileCallsTest::init()
{
    startSystem(PrivateBus::Limits::OfSystemBus);
    publisher.reset(new PublisherProcess);
    VERIFY_COMMAND(publisher->start());
}

void HostileCallsTest::cleanup()
{
    publisher.reset();
    SystemTest::cleanup();
}

void HostileCallsTest::publishLargeDescription()
{
    VERIFY_COMMAND(publisher->create(module, "Controller", "1", largeDescription()));
    const qint64 pid = publisher->process().pid();
    restKilobytes = memory(pid, "VmRSS");
    writeFile(QString("/proc/%1/clear_refs").arg(pid), "5"); // forgets the peak
}

// Prints what was measured: the figures of docs/reliability.md.
void HostileCallsTest::checkPeak()
{
    const int peak = memory(publisher->process().pid(), "VmHWM") - restKilobytes;
    qInfo("at rest %d kB, at most %d kB more", restKilobytes, peak);
#ifndef SANITIZED
    QVERIFY2(peak <= 64 << 10, qPrintable(QString::number(peak)));
#endif
}

void HostileCallsTest::whatIsTooLargeOrUnknownGetsAShortError_data()
{
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("interface");
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<QVector<QByteArray>>("texts");
    QTest::addColumn<QByteArray>("error");

    const QByteArray longText(mostOfBus - 4096, 'x');
    const QByteArray longPath = "/" + longText;
    const QByteArray limits("org.freedesktop.DBus.Error.LimitsExceeded");
    const QByteArray path("/com/orvalis/ProcessData/Controller");
    const QByteArray interface("com.orvalis.ProcessDescription1");
    const QByteArray properties("org.freedesktop.DBus.Properties");
    const QByteArray status("com.orvalis.SystemStatusManager");
    const QByteArray registry("com.orvalis.SystemInformationManager");
    const QByteArray statusPath("/com/orvalis/SystemStatusManager");
    const QByteArray registryPath("/com/orvalis/SystemInformationManager");
    const QByteArray shortPath = "/" + QByteArray(8000, 'x');
    const QByteArray fetchMember("GetProcessDataDescription");

    QTest::newRow("a path") << QByteArray() << longPath << interface << fetchMember
                            << QVector<QByteArray>{"1", ""} << limits;
    QTest::newRow("an instance") << QByteArray() << path << interface << fetchMember
                                 << QVector<QByteArray>{longText, ""} << limits;
    QTest::newRow("an instance, sent to the unique name")
        << QByteArray(":") << path << interface << fetchMember << QVector<QByteArray>{longText, ""}
        << limits;
    QTest::newRow("an interface of properties")
        << QByteArray() << path << properties << QByteArray("Get")
        << QVector<QByteArray>{longText, "x"} << limits;
    QTest::newRow("a path of the status manager")
        << status << longPath << properties << QByteArray("Get") << QVector<QByteArray>{"a", "b"}
        << limits;
    QTest::newRow("a property of the status manager")
        << status << statusPath << properties << QByteArray("Get")
        << QVector<QByteArray>{longText, "b"} << limits;
    QTest::newRow("a path of the registry")
        << registry << longPath << properties << QByteArray("Get") << QVector<QByteArray>{"a", "b"}
        << limits;
    QTest::newRow("a provider") << registry << registryPath
                                << QByteArray("com.orvalis.SystemInformationManager1")
                                << QByteArray("RegisterProvider")
                                << QVector<QByteArray>{longText, "{"} << limits;
    QTest::newRow("a path that is not too large")
        << QByteArray() << shortPath << interface << fetchMember << QVector<QByteArray>{"1", ""}
        << QByteArray("org.freedesktop.DBus.Error.UnknownObject");
    QTest::newRow("an instance that is not too large")
        << QByteArray() << path << interface << fetchMember
        << QVector<QByteArray>{QByteArray(8000, 'x'), ""}
        << QByteArray("com.orvalis.Error.UnknownInstance");
    QTest::newRow("a module that is not too large and has bad data")
        << registry << registryPath << QByteArray("com.orvalis.SystemInformationManager1")
        << QByteArray("RegisterProvider") << QVector<QByteArray>{QByteArray(8000, 'x'), "{"}
        << QByteArray("org.freedesktop.DBus.Error.InvalidArgs");
}

void HostileCallsTest::whatIsTooLargeOrUnknownGetsAShortError()
{
    QFETCH(QByteArray, service);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, interface);
    QFETCH(QByteArray, member);
    QFETCH(QVector<QByteArray>, texts);
    QFETCH(QByteArray, error);
    VERIFY_COMMAND(publisher->playStatusManager());
    VERIFY_COMMAND(publisher->playRegistry());
    VERIFY_COMMAND(
        publisher->create(module, "Controller", "1", description({leaf("level", "int32")})));
    const QByteArray name = service.size() < 2 ? this->service() : service;
    const QByteArray owner = RudeCaller(bus->address()).ownerOf(name);
    QVERIFY(owner.startsWith(':'));

    RudeCaller caller(bus->address());
    const RudeCaller::Answer answer
        = caller.ask({service == ":" ? owner : name, path, interface, member, texts});

    QCOMPARE(answer.error, error);
    QVERIFY2(answer.size <= 1000, answer.text);
    QCOMPARE(RudeCaller(bus->address()).ownerOf(name), owner);
    QCOMPARE(caller.ask(RudeCaller::list(this->service())).error, QByteArray());
}

void HostileCallsTest::callsThatWantNoAnswerGetNone_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("2,000") << 2000;
    QTest::newRow("12,000") << 12000;
}

void HostileCallsTest::callsThatWantNoAnswerGetNone()
{
    QFETCH(int, count);
    publishLargeDescription();
    RudeCaller caller(bus->address());

    caller.send(fetch(false), count);

    const RudeCaller::Answer answer = caller.ask(RudeCaller::list(service()));
    QVERIFY(answer.came);
    QCOMPARE(caller.otherAnswers, 0);
    checkPeak();
}

void HostileCallsTest::aCallerThatReadsNothingKeepsNobodyElseWaiting()
{
    publishLargeDescription();
    constexpr int callers = 8;
    constexpr int callsOfEach = 120;
    std::vector<std::unique_ptr<RudeCaller>> rude;
    for (int i = 0; i < callers; ++i) {
        rude.push_back(std::make_unique<RudeCaller>(bus->address()));
        rude.back()->stopReading();
        rude.back()->send(fetch(true), callsOfEach);
    }

    QElapsedTimer timer;
    timer.start();
    RudeCaller ninth(bus->address());
    const RudeCaller::Answer answer = ninth.ask(fetch(true));
    const qint64 ninthTime = timer.restart();
    QString text;
    QString problem;
    const BusQueryResult honest = fetchDescription(module, "Controller", "1", text, problem);

    qInfo("the description has %d bytes; the ninth caller waited %lld ms, a client %lld ms",
          answer.size, ninthTime, timer.elapsed());
    QVERIFY2(answer.error.isEmpty() && answer.size > 1000000, answer.error);
    QVERIFY2(honest == BusQueryResult::Ok, qPrintable(problem));
    checkPeak();
    rude.clear(); // they never come back; the next caller is served all the same
    QVERIFY(ninth.ask(fetch(true)).error.isEmpty());
}

void HostileCallsTest::aCallerWithTooManyCallsIsToldSo()
{
    publishLargeDescription();
    constexpr int calls = 120;
    RudeCaller caller(bus->address());
    caller.stopReading();
    caller.send(fetch(true), calls);

    caller.readAgain();
    const QVector<RudeCaller::Answer> answers = caller.takeAnswers(calls);

    int described = 0;
    int refused = 0;
    for (const RudeCaller::Answer &answer : answers) {
        described += answer.error.isEmpty() && answer.size > 1000000 ? 1 : 0;
        refused += answer.error == "org.freedesktop.DBus.Error.LimitsExceeded" ? 1 : 0;
    }
    QCOMPARE(described + refused, calls);
    QVERIFY2(described >= mostOfOneCaller, qPrintable(QString::number(described)));
    QVERIFY2(refused > 0, qPrintable(QString::number(refused)));
    checkPeak();
}

BUS_TEST_MAIN(HostileCallsTest)
#include "HostileCallsTest.moc"
