// SPDX-License-Identifier: MIT
// Each fault of the simulator, set off over D-Bus, and what a client gets to see of it.
#include "BusTestMain.h"
#include "Files.h"
#include "MessageLog.h"
#include "SelectorHandlerProcessValue.h"
#include "SimulatorProcess.h"
#include "SystemTest.h"

#include <QDBusPendingCall>
#include <QFile>
#include <QTest>
#include <QtEndian>

class SimulatorFaultsTest : public SystemTest
{
    Q_OBJECT

public:
    int announcements = 0; ///< of descriptions
    int propertyAnnouncements = 0;

public Q_SLOTS:
    void countAnnouncement() { ++announcements; }
    void countPropertyAnnouncement() { ++propertyAnnouncements; }

private Q_SLOTS:
    void init();
    void cleanup();
    void aLateReplyIsOvertakenByTheNextOne();
    void aFetchWithoutAReplyCostsTheClientItsTimeLimit();
    void aSpoiltReplyIsRefused_data();
    void aSpoiltReplyIsRefused();
    void anOwnerVanishesAndReturns();
    void aClientKilledInTheMiddleOfAWriteHarmsNobody();
    void thePublisherIsKilledInTheMiddleOfAWrite();
    void killEndsTheSimulator();
    void aRetypedLeafIsAnnouncedAndReadsAsItsNewType();
    void aStormArrivesWhole_data();
    void aStormArrivesWhole();
    void permissionsReallyChange();

private:
    QString step(const QString &what, const QString &keys = QString()) const;
    QString url(const QString &path) const { return selectorUrl(module, path); }
    QByteArray run(const QString &what, const QString &keys = QString()) const;
    QByteArray announce() const;

    QScopedPointer<SimulatorProcess> simulator;
};

namespace {

const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));

QJsonObject pump()
{
    return description(
        {leaf("speed", "float64",
              {{"simulate", QJsonObject{{"kind", "constant"}, {"value", 1450.5}}}}),
         leaf("beat", "uint32", {{"simulate", QJsonObject{{"kind", "counter"}, {"interval", 20}}}}),
         leaf("setpoint", "int32", {{"simulate", QJsonObject{{"kind", "constant"}, {"value", 7}}}}),
         leaf("name", "string",
              {{"capacity", 64},
               {"simulate", QJsonObject{{"kind", "constant"}, {"value", "feed pump"}}}})});
}

const int endedBySignal = -1;

// Half a copy of the leaf "name": its head and 64 bytes.
bool isHalfWritten(const QByteArray &buffer)
{
    return buffer.contains(QByteArray(40, '\xa5')) && !buffer.contains(QByteArray(41, '\xa5'));
}

// The kernel marks the word of a lock whose owner died.
bool isLockOfTheDead(const QByteArray &buffer)
{
    const int writersLock = 128;
    const quint32 ownerDied = 0x40000000;
    return buffer.size() > writersLock + 4
        && (qFromUnaligned<quint32>(buffer.constData() + writersLock) & ownerDied) != 0;
}

bool isWithoutValue(const ProcessValue &value)
{
    return value.getErrorType() == ProcessDataDefinitions::NoValue && !value.getValue().isValid();
}

} // namespace

void SimulatorFaultsTest::init()
{
    SystemTest::init();
    announcements = 0;
    propertyAnnouncements = 0;
    simulator.reset(new SimulatorProcess(bus->address()));
    VERIFY_COMMAND(simulator->publish(module, pump()));
    VERIFY_COMMAND(simulator->start({"--control"}));
}

void SimulatorFaultsTest::cleanup()
{
    simulator.reset();
    removeLeftBuffers(module);
    qunsetenv("PROCESSDATA_DBUS_TIMEOUT_MS");
    SystemTest::cleanup();
}

QString SimulatorFaultsTest::step(const QString &what, const QString &keys) const
{
    return QString("{\"do\":\"%1\",\"source\":\"%2/Controller/1\"%3}")
        .arg(what, module, keys.isEmpty() ? QString() : "," + keys);
}

QByteArray SimulatorFaultsTest::run(const QString &what, const QString &keys) const
{
    return simulator->call("RunInline", step(what, keys));
}

QByteArray SimulatorFaultsTest::announce() const
{
    return run("storm", "\"count\":1");
}

void SimulatorFaultsTest::aLateReplyIsOvertakenByTheNextOne()
{
    VERIFY_COMMAND(run("reply-late", "\"delay\":5,\"count\":1"));

    const QDBusPendingCall late = simulator->fetch(module);
    QDBusPendingCall next = simulator->fetch(module);

    next.waitForFinished();
    QVERIFY2(next.reply().type() == QDBusMessage::ReplyMessage,
             qPrintable(next.reply().errorMessage()));
    QVERIFY(!late.isFinished());
    QTRY_VERIFY_WITH_TIMEOUT(late.isFinished(), 20000);
    QCOMPARE(late.reply().arguments(), next.reply().arguments());
}

void SimulatorFaultsTest::aFetchWithoutAReplyCostsTheClientItsTimeLimit()
{
    VERIFY_COMMAND(run("reply-never"));
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "300");
    SelectorHandlerProcessValue handler({url("speed")}, nullptr);
    QVERIFY(isWithoutValue(handler.getValue(0)));

    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "20000");
    QSignalSpy changes(&handler, changed);
    VERIFY_COMMAND(run("reply-normally"));
    VERIFY_COMMAND(announce());
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{0}}), 20000);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(1450.5));
}

void SimulatorFaultsTest::aSpoiltReplyIsRefused_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("warning");

    QTest::newRow("an error") << "reply-error"
                              << R"("error":"com.example.Busy","text":"the device is busy")"
                              << "the device is busy";
    QTest::newRow("no JSON") << "reply-text"
                             << R"("text":"no description")"
                             << "";
    QTest::newRow("another format") << "reply-text"
                                    << R"("text":"{\"format\":\"x\"}")"
                                    << "";
    QTest::newRow("more text than a description may have") << "reply-huge"
                                                           << "\"bytes\":67109000"
                                                           << "is larger than 64 MiB";
}

void SimulatorFaultsTest::aSpoiltReplyIsRefused()
{
    QFETCH(QString, what);
    QFETCH(QString, keys);
    QFETCH(QString, warning);
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "60000");
    VERIFY_COMMAND(run(what, keys + ",\"count\":1"));
    QScopedPointer<MessageLog> warnings(new MessageLog(MessageLog::LibraryWarnings));

    SelectorHandlerProcessValue handler({url("speed")}, nullptr);
    QVERIFY(isWithoutValue(handler.getValue(0)));

    const QStringList texts = warnings->texts();
    warnings.reset();
    QVERIFY2(texts.join('\n').contains(warning), qPrintable(texts.join('\n')));
    QCOMPARE(texts.join('\n').contains("Read processDataDescription error"), !warning.isEmpty());
    QSignalSpy changes(&handler, changed);
    VERIFY_COMMAND(announce()); // one fetch was spoilt, the next one is not
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{0}}), 20000);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(1450.5));
}

void SimulatorFaultsTest::anOwnerVanishesAndReturns()
{
    SelectorHandlerProcessValue handler({url("speed"), url("setpoint")}, nullptr);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    QSignalSpy changes(&handler, changed);

    VERIFY_COMMAND(
        simulator->call("RunInline", QString(R"({"do":"vanish","module":"%1"})").arg(module)));
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(handler.getValue(0).getValue(), QVariant(1450.5));
    QVERIFY(!handler.setValue(ProcessValue(8), 1));
    QVERIFY(run("permissions", "\"mode\":\"600\"").contains("has vanished"));

    VERIFY_COMMAND(
        simulator->call("RunInline", QString(R"({"do":"return","module":"%1"})").arg(module)));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{0, 1}}), 20000);
    QCOMPARE(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError);
    QVERIFY(handler.setValue(ProcessValue(8), 1));
}

void SimulatorFaultsTest::aClientKilledInTheMiddleOfAWriteHarmsNobody()
{
    SelectorHandlerProcessValue handler({url("name"), url("beat"), url("setpoint")}, nullptr);

    VERIFY_COMMAND(run("kill-in-write", R"("leaf":"name","writer":"client")"));

    QVERIFY(simulator->process().isRunning());
    QVERIFY(isHalfWritten(contentOf(bufferFile(module))));
    QCOMPARE(handler.getValue(0).getValue(), QVariant("feed pump"));
    QVERIFY(handler.setValue(ProcessValue(QString("drain pump")), 0)); // inherits the lock
    QCOMPARE(handler.getValue(0).getValue(), QVariant("drain pump"));
    const uint beat = handler.getValue(1).getValue().toUInt();
    QTRY_VERIFY_WITH_TIMEOUT(handler.getValue(1).getValue().toUInt() > beat, 20000);
    QVERIFY(run("kill-in-write", R"("leaf":"nothing")").contains("no leaf \"nothing\""));
}

void SimulatorFaultsTest::thePublisherIsKilledInTheMiddleOfAWrite()
{
    SelectorHandlerProcessValue handler({url("name")}, nullptr);

    // Whoever dies sends no reply; the bus says so.
    QVERIFY(!run("kill-in-write", R"("leaf":"name")").isEmpty());

    QVERIFY(simulator->process().waitForEnd());
    QCOMPARE(simulator->process().exitCode(), endedBySignal);
    QVERIFY(isHalfWritten(contentOf(bufferFile(module))));
    QVERIFY(isLockOfTheDead(contentOf(bufferFile(module))));
    const ProcessValue value = handler.getValue(0);
    QCOMPARE(value.getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(value.getValue(), QVariant("feed pump"));
}

void SimulatorFaultsTest::killEndsTheSimulator()
{
    QVERIFY(!simulator->call("RunInline", R"({"do":"kill"})").isEmpty());
    QVERIFY(simulator->process().waitForEnd());
    QCOMPARE(simulator->process().exitCode(), endedBySignal);
}

void SimulatorFaultsTest::aRetypedLeafIsAnnouncedAndReadsAsItsNewType()
{
    SelectorHandlerProcessValue handler({url("speed"), url("setpoint")}, nullptr);
    QSignalSpy changes(&handler, changed);
    QCOMPARE(handler.getValue(1).getValue().userType(), int(QMetaType::Int));

    VERIFY_COMMAND(run("retype", R"("leaf":"setpoint","type":"float64")"));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(changes), IndexLists({{1}}), 20000);
    QCOMPARE(handler.getValue(1).getValue(), QVariant(7.0));
    QCOMPARE(handler.getValue(1).getValue().userType(), int(QMetaType::Double));
    QVERIFY(run("retype", R"("leaf":"setpoint","type":"number")").contains("number"));
    QVERIFY(run("retype", R"("leaf":"none","type":"bool")").contains("no leaf \"none\""));
    QCOMPARE(handler.getValue(1).getValue(), QVariant(7.0));
}

void SimulatorFaultsTest::aStormArrivesWhole_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("descriptions");
    QTest::addColumn<int>("properties");

    QTest::newRow("descriptions") << "\"count\":40" << 40 << 0;
    QTest::newRow("properties") << R"("count":400,"change":"properties")" << 0 << 400;
}

void SimulatorFaultsTest::aStormArrivesWhole()
{
    QFETCH(QString, keys);
    QFETCH(int, descriptions);
    QFETCH(int, properties);
    SelectorHandlerProcessValue handler({url("beat")}, nullptr);
    QVERIFY(
        simulator->watch(module, "ProcessDataDescriptionChanged", this, SLOT(countAnnouncement())));
    QVERIFY(simulator->watch(module, "PropertyChanged", this, SLOT(countPropertyAnnouncement())));

    VERIFY_COMMAND(run("storm", keys));

    QTRY_COMPARE_WITH_TIMEOUT(announcements, descriptions, 20000);
    QTRY_COMPARE_WITH_TIMEOUT(propertyAnnouncements, properties, 20000);
    // The client follows to the last buffer.
    QTRY_COMPARE_WITH_TIMEOUT(handler.getValue(0).getErrorType(), ProcessDataDefinitions::NoError,
                              20000);
    const uint beat = handler.getValue(0).getValue().toUInt();
    QTRY_VERIFY_WITH_TIMEOUT(handler.getValue(0).getValue().toUInt() > beat, 20000);
}

void SimulatorFaultsTest::permissionsReallyChange()
{
    QStringList command = powerless() + QStringList{SELECTOR, "read", url("speed")};
    const QString program = command.takeFirst();
    VERIFY_COMMAND(run("permissions", "\"mode\":\"0\""));
    ChildProcess denied(program, command);
    VERIFY_RUN(denied, 5);

    VERIFY_COMMAND(run("permissions", "\"mode\":\"640\""));
    ChildProcess allowed(program, command);
    VERIFY_RUN(allowed, 0);
}

BUS_TEST_MAIN(SimulatorFaultsTest)
#include "SimulatorFaultsTest.moc"
