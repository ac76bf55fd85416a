// SPDX-License-Identifier: MIT
// Publishing one instance: what clients fetch, read and write, and what is left at the end.
#include "BusTestMain.h"
#include "MessageLog.h"
#include "PrivateBus.h"
#include "PublisherSupport.h"
#include "ScriptedService.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

class PublisherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void init() { module = uniqueModule(); }
    void cleanup() { QCOMPARE(buffersOf(module), QStringList()); }

    void aClientInTheSameThreadFetchesAndReadsWhatIsPublished();
    void theServedDescriptionNamesBufferOffsetsAndSession();
    void aPublisherAnnouncesItsInstanceWhenItComesUp();
    void anUnknownInstanceIsRefusedByName();
    void instancesAreServedUntilTheirPublisherEnds();
    void valuesOfUnknownPathsAndBadValuesArePublishedNowhere();
    void oneBadValueKeepsTheWholeBatchBack();
    void aClientsWriteIsReportedOnceWithItsPath();
    void writesAreNotLookedForWhenTheIntervalIsNought();
    void aPublisherMayEndInsideTheReportOfAWrite();
    void theEndOfAPublisherIsReadAtOnce();
    void aRefusedDescriptionLeavesNothingBehind_data();
    void aRefusedDescriptionLeavesNothingBehind();
    void aNameOwnedByAnotherProcessIsAClearErrorAndLeavesNothingBehind();
    void anInstanceIsPublishedOnceInAProcess();
    void aBusOutOfReachIsAClearError();

private:
    PrivateBus bus;
    QString module;
};

void PublisherTest::aClientInTheSameThreadFetchesAndReadsWhatIsPublished()
{
    QString error;
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription(), &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
    TestClient client(module, "Controller", "1");
    QVERIFY2(client.attach(), qPrintable(client.error));
    QCOMPARE(client.read("temperature").getErrorType(), ProcessDataDefinitions::NotInitialized);

    QVERIFY(publisher->publish("temperature", 21.5));
    QVERIFY(publisher->publish("drive/name", "main"));

    QCOMPARE(client.read("temperature").getValue(), QVariant(21.5));
    QCOMPARE(client.read("temperature").getErrorType(), ProcessDataDefinitions::NoError);
    QCOMPARE(client.read("drive/name").getValue(), QVariant("main"));
    QCOMPARE(publisher->value("temperature").getValue(), QVariant(21.5));
    QCOMPARE(publisher->paths(), (QStringList{"temperature", "drive/speed", "drive/name"}));
}

void PublisherTest::theServedDescriptionNamesBufferOffsetsAndSession()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());

    const QJsonObject served = client.document();

    QCOMPARE(served, publisher->description());
    QCOMPARE(served.value("module").toString(), module);
    QCOMPARE(served.value("object").toString(), QString("Controller"));
    QCOMPARE(served.value("instance").toString(), QString("1"));
    const QJsonObject buffer = served.value("buffer").toObject();
    QVERIFY(
        buffer.value("name").toString().startsWith("/processdata." + module + "_Controller_1."));
    QVERIFY(buffer.value("generation").toDouble() > 0);
    QCOMPARE(served.value("session"), buffer.value("generation"));
    const QJsonArray elements = served.value("elements").toArray();
    const double first = elements.at(0).toObject().value("offset").toDouble();
    const QJsonArray drive = elements.at(1).toObject().value("elements").toArray();
    QVERIFY(first > 0);
    QVERIFY(drive.at(0).toObject().value("offset").toDouble() > first);
    QVERIFY(!elements.at(1).toObject().contains("offset"));
    QCOMPARE(elements.at(0).toObject().value("unit").toString(), QString("K"));
}

void PublisherTest::aPublisherAnnouncesItsInstanceWhenItComesUp()
{
    TestClient client(module, "Controller", "1");
    QTRY_VERIFY(!client.connector->isDBusInterfaceValid());
    QSignalSpy changed(client.connector.data(),
                       &DBusProcessDescriptionConnector::processDataDescriptionChanged);
    bool attached = false;
    connect(client.connector.data(),
            &DBusProcessDescriptionConnector::processDataDescriptionChanged, this,
            [&] { attached = client.attach(); });

    const auto first = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QString("1"));
    QVERIFY2(attached, qPrintable(client.error));

    const auto second = ProcessDataPublisher::create(module, "Controller", "", pumpDescription());
    QTRY_COMPARE(changed.size(), 2);
    QCOMPARE(changed.at(1).at(0).toString(), QString(""));
}

void PublisherTest::anUnknownInstanceIsRefusedByName()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    TestClient client(module, "Controller", "2");

    const DBusReply reply = client.connector->getProcessDataDescription("2", QString());

    QVERIFY(reply.isError());
    QVERIFY2(reply.getErrorMessage().endsWith(
                 module + "/Controller has no instance \"2\" (com.orvalis.Error.UnknownInstance)"),
             qPrintable(reply.getErrorMessage()));
}

void PublisherTest::instancesAreServedUntilTheirPublisherEnds()
{
    auto first = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    auto second = ProcessDataPublisher::create(module, "Controller", "2", pumpDescription());
    TestClient client1(module, "Controller", "1");
    TestClient client2(module, "Controller", "2");
    QVERIFY(client1.attach());
    QVERIFY(client2.attach());

    first.reset();

    QVERIFY(client1.connector->getProcessDataDescription("1", QString()).isError());
    QVERIFY(client2.attach());
    second.reset();
    QTRY_VERIFY(!client2.connector->isDBusInterfaceValid());
}

void PublisherTest::valuesOfUnknownPathsAndBadValuesArePublishedNowhere()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    const MessageLog warnings;

    QVERIFY(!publisher->publish("drive/none", 1));
    QVERIFY(!publisher->publish("drive/speed", 3001));
    QVERIFY(!publisher->publish("drive/speed", "fast"));

    QCOMPARE(publisher->value("drive/speed").getErrorType(),
             ProcessDataDefinitions::NotInitialized);
    QCOMPARE(publisher->value("drive/none").getErrorType(), ProcessDataDefinitions::NoValue);
    QCOMPARE(warnings.texts().size(), 3);
    QCOMPARE(
        warnings.texts().first(),
        QString(
            "processdata.publisher: Module \"%1\", object \"Controller\", instance \"1\": no leaf "
            "\"drive/none\" to publish")
            .arg(module));
}

void PublisherTest::oneBadValueKeepsTheWholeBatchBack()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    const MessageLog warnings;
    const auto pair = [](const QString &path, const QVariant &value) {
        return qMakePair(path, ProcessValue(value));
    };

    QVERIFY(!publisher->publish({pair("temperature", 1.0), pair("drive/speed", -1)}));
    QCOMPARE(publisher->value("temperature").getErrorType(),
             ProcessDataDefinitions::NotInitialized);
    QVERIFY(publisher->publish({pair("temperature", 1.0), pair("drive/speed", 1)}));

    QCOMPARE(publisher->value("drive/speed").getValue(), QVariant(1));
    QCOMPARE(warnings.texts().size(), 1);
}

void PublisherTest::aClientsWriteIsReportedOnceWithItsPath()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QStringList written;
    connect(publisher.data(), &ProcessDataPublisher::valueWritten, this,
            [&](const QString &path, const ProcessValue &value) {
                written += path + "=" + value.getValue().toString();
            });
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());

    QVERIFY(publisher->publish("drive/speed", 5)); // its own writes are no news
    QVERIFY(client.write("drive/name", "first"));
    QVERIFY(client.write("drive/name", "second"));
    QTRY_COMPARE(written, QStringList{"drive/name=second"});
    QVERIFY(client.write("drive/speed", 7));

    QTRY_COMPARE(written.size(), 2);
    QCOMPARE(written.at(1), QString("drive/speed=7"));
    QVERIFY(!client.write("temperature", 1.0));
}

void PublisherTest::writesAreNotLookedForWhenTheIntervalIsNought()
{
    const auto quiet = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    const auto other = ProcessDataPublisher::create(module, "Controller", "2", pumpDescription());
    int quietWrites = 0;
    int otherWrites = 0;
    connect(quiet.data(), &ProcessDataPublisher::valueWritten, this, [&] { ++quietWrites; });
    connect(other.data(), &ProcessDataPublisher::valueWritten, this, [&] { ++otherWrites; });
    quiet->setWriteDetectionInterval(0);
    other->setWriteDetectionInterval(1);
    TestClient client1(module, "Controller", "1");
    TestClient client2(module, "Controller", "2");
    QVERIFY(client1.attach());
    QVERIFY(client2.attach());

    QVERIFY(client1.write("drive/speed", 1));
    for (int i = 1; i <= 30; ++i) {
        QVERIFY(client2.write("drive/speed", i));
        QTRY_COMPARE(otherWrites, i);
    }

    QCOMPARE(quietWrites, 0);
    quiet->setWriteDetectionInterval(1);
    QTRY_COMPARE(quietWrites, 1);
}

void PublisherTest::aPublisherMayEndInsideTheReportOfAWrite()
{
    auto publisher = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());
    int reports = 0;
    connect(publisher.data(), &ProcessDataPublisher::valueWritten, this, [&] {
        ++reports;
        publisher.reset();
    });
    QVERIFY(client.write("drive/speed", 1));
    QVERIFY(client.write("drive/name", "x"));

    QTRY_VERIFY(publisher.isNull());

    QCOMPARE(reports, 1);
}

void PublisherTest::theEndOfAPublisherIsReadAtOnce()
{
    auto publisher = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(publisher->publish("drive/speed", 12));
    TestClient client(module, "Controller", "1");
    QVERIFY(client.attach());

    publisher.reset();

    QCOMPARE(client.read("drive/speed").getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(client.read("drive/speed").getValue(), QVariant(12));
    QVERIFY(!client.write("drive/speed", 13));
}

void PublisherTest::aRefusedDescriptionLeavesNothingBehind_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QJsonObject>("description");
    QTest::addColumn<QString>("reason");

    QJsonObject foreign = pumpDescription();
    foreign.insert("module", "Other");
    QTest::newRow("another module's description")
        << "Controller" << foreign << "its \"module\" must be \"";
    QTest::newRow("an object name with an underscore")
        << "Con_troller" << pumpDescription() << "must not be empty nor contain \"_\"";
    QTest::newRow("no object name")
        << "" << pumpDescription() << "must not be empty nor contain \"_\"";
    QTest::newRow("an unknown type")
        << "Controller" << describe(R"([{"name":"a","type":"complex"}])") << "complex";
    QTest::newRow("the same path twice")
        << "Controller" << describe(R"([{"name":"a","type":"bool"},{"name":"a","type":"bool"}])")
        << "\"a\"";
}

void PublisherTest::aRefusedDescriptionLeavesNothingBehind()
{
    QFETCH(QString, object);
    QFETCH(QJsonObject, description);
    QFETCH(QString, reason);
    QString error;

    QVERIFY(ProcessDataPublisher::create(module, object, "1", description, &error).isNull());

    QVERIFY2(error.contains(reason), qPrintable(error));
    QVERIFY2(error.contains(module), qPrintable(error));
    TestClient client(module, "Controller", "1");
    QTRY_VERIFY(!client.connector->isDBusInterfaceValid()); // that of the test before may still go
}

void PublisherTest::aNameOwnedByAnotherProcessIsAClearErrorAndLeavesNothingBehind()
{
    ScriptedService other;
    QCOMPARE(other.order({"own", "com.orvalis.ProcessData." + module}), QByteArray("ok"));
    QString error;

    QVERIFY(ProcessDataPublisher::create(module, "Controller", "1", pumpDescription(), &error)
                .isNull());

    QCOMPARE(
        error,
        QString("Cannot own com.orvalis.ProcessData.%1 on the bus at %2: another process owns it")
            .arg(module, bus.address()));
    QCOMPARE(buffersOf(module), QStringList());
    QCOMPARE(other.order({"unown", "com.orvalis.ProcessData." + module}), QByteArray("ok"));
    QVERIFY(!ProcessDataPublisher::create(module, "Controller", "1", pumpDescription()).isNull());
}

void PublisherTest::anInstanceIsPublishedOnceInAProcess()
{
    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QString error;

    QVERIFY(ProcessDataPublisher::create(module, "Controller", "1", pumpDescription(), &error)
                .isNull());

    QCOMPARE(
        error,
        QString("Module \"%1\", object \"Controller\": this process already publishes instance "
                "\"1\"")
            .arg(module));
    TestClient client(module, "Controller", "1");
    QVERIFY2(client.attach(), qPrintable(client.error));
}

void PublisherTest::aBusOutOfReachIsAClearError()
{
    const QByteArray address = qgetenv("PROCESSDATA_BUS");
    qputenv("PROCESSDATA_BUS", "unix:path=/nowhere");
    QString error;

    const auto publisher
        = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription(), &error);
    qputenv("PROCESSDATA_BUS", address);

    QVERIFY(publisher.isNull());
    QVERIFY2(error.startsWith("Cannot connect to the bus at unix:path=/nowhere: "),
             qPrintable(error));
}

BUS_TEST_MAIN(PublisherTest)

#include "PublisherTest.moc"
