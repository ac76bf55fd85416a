// SPDX-License-Identifier: MIT
// Replacing a description or its properties while clients are attached.
#include "BusTestMain.h"
#include "PrivateBus.h"
#include "PublisherSupport.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

// speed keeps its type, temperature becomes an integer, name goes, level comes.
QJsonObject otherDescription()
{
    return describe(R"([
        {"name":"level","type":"float32","selectorType":"LevelSelector"},
        {"name":"drive","elements":[{"name":"speed","type":"int32","minimum":0,"maximum":3000}]},
        {"name":"temperature","type":"int16","readOnly":true}])");
}
}

class PublisherReplaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void init();
    void cleanup();

    void valuesOfLeavesThatKeepPathAndTypeCarryOver();
    void aReplacementIsAnnouncedAndTheOldBufferRetired();
    void theSessionStaysAndTheGenerationGrows();
    void aRefusedReplacementLeavesTheOldOneRunning();
    void aWriteBeforeAReplacementIsReportedAndCarriedOver();
    void propertiesChangeInTheSameBufferAndAreAnnouncedAsSuch();
    void changedLimitsHoldForThePublisherAtOnce();
    void anythingThatTouchesTheLayoutIsNoPropertyChange_data();
    void anythingThatTouchesTheLayoutIsNoPropertyChange();

private:
    PrivateBus bus;
    QString module;
    QSharedPointer<ProcessDataPublisher> publisher;
    QScopedPointer<TestClient> client;
    QScopedPointer<QSignalSpy> described;
    QScopedPointer<QSignalSpy> propertied;
};

void PublisherReplaceTest::init()
{
    module = uniqueModule();
    publisher = ProcessDataPublisher::create(module, "Controller", "1", pumpDescription());
    QVERIFY(!publisher.isNull());
    client.reset(new TestClient(module, "Controller", "1"));
    QVERIFY(client->attach());
    const auto *connector = client->connector.data();
    described.reset(
        new QSignalSpy(connector, &DBusProcessDescriptionConnector::processDataDescriptionChanged));
    propertied.reset(new QSignalSpy(connector, &DBusProcessDescriptionConnector::propertyChanged));
    // An announcement of its coming up may still be on its way.
    const auto sentinel
        = ProcessDataPublisher::create(module, "Controller", "9", pumpDescription());
    QTRY_VERIFY(described->contains({QString("9")}));
    described->clear();
}

void PublisherReplaceTest::cleanup()
{
    publisher.reset();
    QCOMPARE(buffersOf(module), QStringList());
}

void PublisherReplaceTest::valuesOfLeavesThatKeepPathAndTypeCarryOver()
{
    QVERIFY(publisher->publish("drive/speed",
                               ProcessValue(5, ProcessDataDefinitions::DeviceFault, 77)));
    QVERIFY(publisher->publish("temperature", 20.0));

    QVERIFY(publisher->replaceDescription(otherDescription()));

    QVERIFY(client->attach());
    QCOMPARE(client->read("drive/speed").getValue(), QVariant(5));
    QCOMPARE(client->read("drive/speed").getErrorType(), ProcessDataDefinitions::DeviceFault);
    QCOMPARE(client->read("drive/speed").getTimestamp(), qint64(77));
    QCOMPARE(client->read("temperature").getErrorType(), ProcessDataDefinitions::NotInitialized);
    QCOMPARE(client->read("level").getErrorType(), ProcessDataDefinitions::NotInitialized);
    QVERIFY(client->leaf("drive/name").isNull());
    QCOMPARE(publisher->paths(), (QStringList{"level", "drive/speed", "temperature"}));
}

void PublisherReplaceTest::aReplacementIsAnnouncedAndTheOldBufferRetired()
{
    const auto leaf = client->leaf("drive/speed");
    QVERIFY(publisher->publish("drive/speed", 5));

    QVERIFY(publisher->replaceDescription(otherDescription()));

    ProcessValue old(ProcessDataDefinitions::NoValue);
    leaf->getValue(old, false);
    QCOMPARE(old.getErrorType(), ProcessDataDefinitions::SourceLost);
    QCOMPARE(old.getValue(), QVariant(5));
    QCOMPARE(buffersOf(module).size(), 1);
    QTRY_COMPARE(described->size(), 1);
    QCOMPARE(described->at(0).at(0).toString(), QString("1"));
    QCOMPARE(propertied->size(), 0);
}

void PublisherReplaceTest::theSessionStaysAndTheGenerationGrows()
{
    const QJsonObject before = publisher->description();

    QVERIFY(publisher->replaceDescription(otherDescription()));

    const QJsonObject after = publisher->description();
    QCOMPARE(after.value("session"), before.value("session"));
    QVERIFY(after.value("buffer").toObject().value("generation").toDouble()
            > before.value("buffer").toObject().value("generation").toDouble());
}

void PublisherReplaceTest::aRefusedReplacementLeavesTheOldOneRunning()
{
    QVERIFY(publisher->publish("drive/speed", 5));
    const QJsonObject before = publisher->description();
    QString error;

    QVERIFY(!publisher->replaceDescription(describe(R"([{"name":"a","type":"complex"}])"), &error));

    QVERIFY2(error.contains(module) && error.contains("complex"), qPrintable(error));
    QCOMPARE(publisher->description(), before);
    QCOMPARE(client->read("drive/speed").getErrorType(), ProcessDataDefinitions::NoError);
    QVERIFY(publisher->publish("drive/speed", 6));
    QCOMPARE(client->read("drive/speed").getValue(), QVariant(6));
    QVERIFY(publisher->replaceProperties(pumpDescription())); // the next announcement is this one's
    QTRY_COMPARE(propertied->size(), 1);
    QCOMPARE(described->size(), 0);
}

void PublisherReplaceTest::aWriteBeforeAReplacementIsReportedAndCarriedOver()
{
    publisher->setWriteDetectionInterval(0);
    QStringList written;
    connect(publisher.data(), &ProcessDataPublisher::valueWritten, this,
            [&](const QString &path, const ProcessValue &value) {
                written += path + "=" + value.getValue().toString();
            });
    QVERIFY(client->write("drive/speed", 9));
    QVERIFY(client->write("drive/name", "gone"));

    QVERIFY(publisher->replaceDescription(otherDescription()));

    QCOMPARE(written, (QStringList{"drive/speed=9", "drive/name=gone"}));
    QCOMPARE(publisher->value("drive/speed").getValue(), QVariant(9));
}

void PublisherReplaceTest::propertiesChangeInTheSameBufferAndAreAnnouncedAsSuch()
{
    QVERIFY(publisher->publish("temperature", 20.0));
    const QJsonObject before = publisher->description();
    QJsonObject changed = pumpDescription();
    QJsonArray elements = changed.value("elements").toArray();
    QJsonObject temperature = elements.at(0).toObject();
    temperature.insert("unit", "mK");
    elements.replace(0, temperature);
    changed.insert("elements", elements);

    QVERIFY(publisher->replaceProperties(changed));

    const QJsonObject after = publisher->description();
    QJsonObject buffer = before.value("buffer").toObject();
    buffer.insert("revision", buffer.value("revision").toInt() + 1);
    QCOMPARE(after.value("buffer").toObject(), buffer);
    QCOMPARE(after.value("session"), before.value("session"));
    QTRY_COMPARE(propertied->size(), 1);
    QCOMPARE(propertied->at(0).at(0).toString(), QString("1"));
    QCOMPARE(described->size(), 0);
    QCOMPARE(client->read("temperature").getErrorType(), ProcessDataDefinitions::NoError);
    QVERIFY(client->attach());
    QCOMPARE(client->leaf("temperature")->readLeafProperty("unit"), QVariant("mK"));
    QCOMPARE(client->read("temperature").getValue(), QVariant(20.0));
}

void PublisherReplaceTest::changedLimitsHoldForThePublisherAtOnce()
{
    QVERIFY(publisher->publish("drive/speed", 3000));
    const QString text = QString::fromUtf8(QJsonDocument(pumpDescription()).toJson());
    QString narrower = text;
    narrower.replace("3000", "100");
    QVERIFY(publisher->replaceProperties(QJsonDocument::fromJson(narrower.toUtf8()).object()));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(module));

    QVERIFY(!publisher->publish("drive/speed", 101));

    QVERIFY(publisher->publish("drive/speed", 100));
}

void PublisherReplaceTest::anythingThatTouchesTheLayoutIsNoPropertyChange_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a leaf is renamed") << "\"speed\""
                                       << "\"pace\""
                                       << "\"drive/pace\" stands where \"drive/speed\" was";
    QTest::newRow("a leaf is retyped") << "float64"
                                       << "float32"
                                       << "type, capacity or readOnly of \"temperature\" differs";
    QTest::newRow("a leaf is resized") << "20"
                                       << "21"
                                       << "type, capacity or readOnly of \"drive/name\" differs";
    QTest::newRow("a leaf becomes writable")
        << "true"
        << "false"
        << "type, capacity or readOnly of \"temperature\" differs";
    QTest::newRow("leaves are removed") << ""
                                        << ""
                                        << "1 leaf instead of 3";
}

void PublisherReplaceTest::anythingThatTouchesTheLayoutIsNoPropertyChange()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, reason);
    QString text = QString::fromUtf8(QJsonDocument(pumpDescription()).toJson());
    QJsonObject changed = QJsonDocument::fromJson(text.replace(from, to).toUtf8()).object();
    if (from.isEmpty()) {
        changed = describe(R"([{"name":"temperature","type":"float64","readOnly":true}])");
    }
    const QJsonObject before = publisher->description();
    QString error;

    QVERIFY(!publisher->replaceProperties(changed, &error));

    QVERIFY2(error.endsWith("new properties must keep the layout, but " + reason),
             qPrintable(error));
    QCOMPARE(publisher->description(), before);
}

BUS_TEST_MAIN(PublisherReplaceTest)

#include "PublisherReplaceTest.moc"
