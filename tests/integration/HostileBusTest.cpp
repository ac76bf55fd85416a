// SPDX-License-Identifier: MIT
// A service that answers with what is no description, never, late, twice or for another instance.
#include "BusTestMain.h"
#include "DBusProcessDescriptionConnector.h"
#include "DBusReply.h"
#include "MessageLog.h"
#include "ProcessDataPublisher.h"
#include "ScriptedService.h"
#include "SelectorHandlerProcessValue.h"
#include "SystemTest.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QTest>
#include <QTimer>

namespace {

constexpr int waitLimit = 20000; // milliseconds
const char *const changed = SIGNAL(processDataDescriptionChanged(QVector<int>));
const QString interface("com.orvalis.ProcessDescription1");

bool isResolved(SelectorHandlerProcessValue &handler)
{
    return handler.getValue(0).getErrorType() == ProcessDataDefinitions::NoError
        && handler.getValue(0).getValue() == QVariant(8.0);
}

bool isUnresolved(SelectorHandlerProcessValue &handler)
{
    return handler.getValue(0).getErrorType() == ProcessDataDefinitions::NoValue;
}

} // namespace

class HostileBusTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void whatIsNoDescriptionIsRefusedAtSetUp_data() { answers(); }
    void whatIsNoDescriptionIsRefusedAtSetUp();
    void whatIsNoDescriptionIsRefusedInAClientAtWork_data() { answers(); }
    void whatIsNoDescriptionIsRefusedInAClientAtWork();
    void aFailedFetchLeavesAClientAtWorkUntouched_data();
    void aFailedFetchLeavesAClientAtWorkUntouched();
    void aDescriptionTooLargeForTheBusCostsItsServiceTheConnection();
    void aServiceThatNeverAnswersLeavesTheEventLoopTurning();
    void aLateAnswerIsNotTakenAndTheServiceIsAskedAgain();
    void theSecondOfTwoAnswersIsNotTaken();

private:
    void answers();
    QByteArray answer(const QString &kind) const;
    QString url() const { return selectorUrl(module, "speed"); }
    QStringList refused(const QString &kind) const;

    QSharedPointer<ProcessDataPublisher> publisher;
    QScopedPointer<ScriptedService> service;
    QJsonObject good;
};

void HostileBusTest::init()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", QByteArray::number(waitLimit));
    SystemTest::init();
    QString error;
    publisher = ProcessDataPublisher::create(module + "real", "Controller", "1",
                                             description({leaf("speed", "float64")}), &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
    QVERIFY(publisher->publish("speed", 8.0));
    const auto connector
        = DBusProcessDescriptionConnector::createAndConnect(module + "real", "Controller");
    const QVariant text = connector->getProcessDataDescription("1", QString()).getValue();
    good = claimed(QJsonDocument::fromJson(text.toString().toUtf8()).object(), module, "1");
    service.reset(new ScriptedService(module));
    QVERIFY(service->comeUp());
    QVERIFY(service->describe("1", oneLine(good)));
}

void HostileBusTest::cleanup()
{
    service.reset();
    publisher.reset();
    SystemTest::cleanup();
}

void HostileBusTest::answers()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"empty", "truncated", "no object", "no buffer", "duplicate paths",
                             "another instance", "too deep"}) {
        QTest::newRow(kind) << QString(kind);
    }
}

QByteArray HostileBusTest::answer(const QString &kind) const
{
    QJsonObject changedText = good;
    if (kind == "empty") {
        return "";
    }
    if (kind == "truncated") {
        return oneLine(good).chopped(20);
    }
    if (kind == "no object") {
        return "[1]";
    }
    if (kind == "too deep") {
        return QByteArray(100000, '[');
    }
    if (kind == "no buffer") {
        changedText.remove("buffer");
    } else if (kind == "duplicate paths") {
        QJsonArray elements = good.value("elements").toArray();
        elements.append(elements.at(0));
        changedText.insert("elements", elements);
    } else if (kind == "another instance") {
        changedText.insert("instance", "2");
    }
    return oneLine(changedText);
}

// What the library warns of when such a description has arrived.
QStringList HostileBusTest::refused(const QString &kind) const
{
    const QString source
        = QString("ModuleName: \"%1\" ObjectName: \"Controller\" InstanceName: \"1\"").arg(module);
    return kind == "another instance"
        ? QStringList{QString("Url isn't valid: \"%1\" %2").arg(url(), source)}
        : QStringList{"SharedMemory buffer not valid. " + source};
}

void HostileBusTest::whatIsNoDescriptionIsRefusedAtSetUp()
{
    QFETCH(QString, kind);
    QVERIFY(service->describe("1", answer(kind)));
    const MessageLog warnings(MessageLog::LibraryWarnings);
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QSignalSpy spy(&handler, changed);

    QVERIFY(isUnresolved(handler));
    QCOMPARE(warnings.texts(), refused(kind));
    QCOMPARE(service->fetches(), 1);

    QVERIFY(service->describe("1", oneLine(good)));
    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
    QVERIFY(isResolved(handler));
    QCOMPARE(service->fetches(), 3);
}

// What arrived as an answer replaces the description at hand: the old tree goes, clients are told.
void HostileBusTest::whatIsNoDescriptionIsRefusedInAClientAtWork()
{
    QFETCH(QString, kind);
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QSignalSpy spy(&handler, changed);
    QVERIFY(isResolved(handler));
    QVERIFY(service->describe("1", answer(kind)));
    const MessageLog warnings(MessageLog::LibraryWarnings);

    QVERIFY(service->announce("1"));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
    QVERIFY(isUnresolved(handler));
    QStringList expected = refused(kind);
    if (kind != "another instance") {
        expected += QString("Can't attach to SharedMemory: \"%1_Controller_1\"").arg(module);
    }
    QCOMPARE(warnings.texts(), expected);

    QVERIFY(service->describe("1", oneLine(good)));
    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}, {0}}), waitLimit);
    QVERIFY(isResolved(handler));
    QCOMPARE(service->fetches(), 5);
}

void HostileBusTest::aFailedFetchLeavesAClientAtWorkUntouched_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a number") << QStringList{"mode", "number"}
                              << "the answer must be one string, its type is \\\"i\\\"";
    QTest::newRow("two strings") << QStringList{"mode", "two"}
                                 << "the answer must be one string, its type is \\\"ss\\\"";
    QTest::newRow("an error") << QStringList{"drop", "1"} << "no such instance";
}

void HostileBusTest::aFailedFetchLeavesAClientAtWorkUntouched()
{
    QFETCH(QStringList, order);
    QFETCH(QString, reason);
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QSignalSpy spy(&handler, changed);
    QCOMPARE(service->order(order), QByteArray("ok"));
    const MessageLog warnings(MessageLog::LibraryWarnings);

    QVERIFY(service->announce("1"));

    QTRY_COMPARE_WITH_TIMEOUT(warnings.texts().size(), 1, waitLimit);
    const QString warning = warnings.texts().at(0);
    QVERIFY2(warning.startsWith("DBus error") && warning.contains(reason), qPrintable(warning));
    QCOMPARE(service->fetches(), 2); // at set-up and for the announcement
    QVERIFY(isResolved(handler));
    QCOMPARE(indexLists(spy), IndexLists());
}

// A bus as it is configured by default takes no message of this size: whoever sends one is thrown
// off.
void HostileBusTest::aDescriptionTooLargeForTheBusCostsItsServiceTheConnection()
{
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QSignalSpy spy(&handler, changed);
    QCOMPARE(service->order({"mode", "large"}), QByteArray("ok"));
    const MessageLog warnings(MessageLog::LibraryWarnings);

    QVERIFY(service->announce("1"));

    QTRY_COMPARE_WITH_TIMEOUT(warnings.texts().size(), 1, waitLimit);
    QVERIFY2(warnings.texts().at(0).startsWith("DBus error"), qPrintable(warnings.texts().at(0)));
    QVERIFY(isResolved(handler));
    service.reset(new ScriptedService(module));
    QVERIFY(service->comeUp());
    QVERIFY(service->describe("1", answer("another instance")));
    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
}

void HostileBusTest::aServiceThatNeverAnswersLeavesTheEventLoopTurning()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "500");
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QVERIFY(isResolved(handler));
    QCOMPARE(service->order({"mode", "silent"}), QByteArray("ok"));
    const MessageLog warnings(MessageLog::LibraryWarnings);
    QTimer timer;
    int turns = 0;
    connect(&timer, &QTimer::timeout, this, [&] { turns += warnings.texts().isEmpty() ? 1 : 0; });
    timer.start(10);

    QVERIFY(service->announce("1"));

    QTRY_COMPARE_WITH_TIMEOUT(warnings.texts().size(), 1, waitLimit);
    QVERIFY2(warnings.texts().at(0).contains("NoReply"), qPrintable(warnings.texts().at(0)));
    QVERIFY2(turns > 5, QByteArray::number(turns));
    QVERIFY(isResolved(handler));
    QCOMPARE(service->fetches(), 2);
}

void HostileBusTest::aLateAnswerIsNotTakenAndTheServiceIsAskedAgain()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "500");
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QSignalSpy spy(&handler, changed);
    const MessageLog warnings(MessageLog::LibraryWarnings);
    QVERIFY(service->describe("1", answer("another instance")));
    QCOMPARE(service->order({"mode", "silent"}), QByteArray("ok"));
    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(warnings.texts().size(), 1, waitLimit);
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", QByteArray::number(waitLimit));

    // What it kept is answered with what it has now; then it counts as answering again, and what
    // it missed is fetched anew.
    QCOMPARE(service->order({"flush"}), QByteArray("ok"));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
    QVERIFY(isUnresolved(handler));
    QCOMPARE(service->fetches(), 4);
    QVERIFY(service->describe("1", oneLine(good)));
    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}, {0}}), waitLimit);
    QVERIFY(isResolved(handler));
    QCOMPARE(service->fetches(), 6);
}

void HostileBusTest::theSecondOfTwoAnswersIsNotTaken()
{
    QCOMPARE(service->order({"mode", "twice"}), QByteArray("ok"));
    const MessageLog warnings(MessageLog::LibraryWarnings);
    SelectorHandlerProcessValue handler({url()}, nullptr);
    QVERIFY(isResolved(handler));
    QSignalSpy spy(&handler, changed);

    QVERIFY(service->announce("1"));
    QTRY_COMPARE_WITH_TIMEOUT(service->fetches(), 3, waitLimit);
    QCOMPARE(service->order({"mode", "ok"}), QByteArray("ok"));
    QVERIFY(service->describe("1", answer("truncated")));
    QVERIFY(service->announce("1"));

    QTRY_COMPARE_WITH_TIMEOUT(indexLists(spy), IndexLists({{0}}), waitLimit);
    QCOMPARE(service->fetches(), 5);
    QCOMPARE(warnings.texts().size(), 2); // of the truncated one
}

BUS_TEST_MAIN(HostileBusTest)
#include "HostileBusTest.moc"
