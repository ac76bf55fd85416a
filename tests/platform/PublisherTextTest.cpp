// SPDX-License-Identifier: MIT
// Publishing descriptions that are given as text: every digit of a whole number reaches the clients.
#include "BusTestMain.h"
#include "ConfigurationAndProcessDataParser.h"
#include "PrivateBus.h"
#include "PublisherSupport.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

namespace {

QByteArray counter(const QByteArray &minimum, const QByteArray &maximum)
{
    return R"({ "format": "process-data-description/1",
        "elements": [
            {"name": "a \"{b}\" , c", "elements": [
                {"name": "total", "type": "uint64", "hint": "x \\ y",
                 "minimum": )"
        + minimum + ", \"maximum\": " + maximum + R"(}]},
            {"name": "flag", "type": "bool"}
        ] })";
}

const QByteArray lowest("9223372036854775809");
const QByteArray highest("18446744073709551614");
const QString leafPath("a \"{b}\" , c/total");

} // namespace

class PublisherTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(bus.start()); }
    void init();
    void cleanup();

    void limitsReachClientsToTheirLastDigit();
    void theTextIsServedAsItIsSpelledButForSpace();
    void aLimitChangedByOneIsAnnounced();
    void aDescriptionIsReplacedByAText();
    void firstValuesAreThereWhenTheInstanceIs();
    void aTextThatIsRefusedIsNamed_data();
    void aTextThatIsRefusedIsNamed();

private:
    PrivateBus bus;
    QString module;
    QSharedPointer<ProcessDataPublisher> publisher;
};

void PublisherTextTest::init()
{
    module = uniqueModule();
    QString error;
    publisher = ProcessDataPublisher::createFromText(module, "Meter", "1", counter(lowest, highest),
                                                     {}, &error);
    QVERIFY2(!publisher.isNull(), qPrintable(error));
}

void PublisherTextTest::cleanup()
{
    publisher.reset();
    QCOMPARE(buffersOf(module), QStringList());
}

void PublisherTextTest::limitsReachClientsToTheirLastDigit()
{
    TestClient client(module, "Meter", "1");
    QVERIFY2(client.attach(), qPrintable(client.error));
    const auto leaf = client.leaf(leafPath.toUtf8().toPercentEncoding("/"));
    QVERIFY(!leaf.isNull());
    QCOMPARE(leaf->readLeafProperty("minimum"), QVariant(Q_UINT64_C(9223372036854775809)));
    QCOMPARE(leaf->readLeafProperty("maximum"), QVariant(Q_UINT64_C(18446744073709551614)));
    QByteArray rendered;
    ConfigurationAndProcessDataParser().frameToByteArray(leaf, rendered, QJsonDocument::Compact);
    QVERIFY2(rendered.contains("\"maximum\":" + highest), rendered.constData());
    QVERIFY2(rendered.contains("\"minimum\":" + lowest), rendered.constData());
    QVERIFY(client.description.toString().contains("\"minimum\":" + lowest));
    QVERIFY(client.description.toString().contains("\"maximum\":" + highest));
}

void PublisherTextTest::theTextIsServedAsItIsSpelledButForSpace()
{
    const QByteArray text = publisher->descriptionText();
    QVERIFY(text.contains(R"("hint":"x \\ y","minimum":9223372036854775809,)"));
    QVERIFY(text.contains(R"({"name":"a \"{b}\" , c","elements":[{"name":"total","offset":)"));
    QVERIFY(!text.contains(": "));
    QVERIFY(!text.contains('\n'));
    const QJsonObject document = publisher->description();
    QCOMPARE(document, QJsonDocument::fromJson(text).object());
    QCOMPARE(document.value("module").toString(), module);
    QCOMPARE(document.value("instance").toString(), QString("1"));
    QVERIFY(document.value("session").toDouble() > 0);
}

void PublisherTextTest::aLimitChangedByOneIsAnnounced()
{
    TestClient client(module, "Meter", "1");
    QVERIFY2(client.attach(), qPrintable(client.error));
    QSignalSpy changed(client.connector.data(), &DBusProcessDescriptionConnector::propertyChanged);
    QString error;

    QVERIFY2(publisher->replacePropertiesText(counter(lowest, "18446744073709551613"), &error),
             qPrintable(error));

    QTRY_COMPARE(changed.count(), 1);
    QVERIFY(client.attach());
    QVERIFY(client.description.toString().contains("\"maximum\":18446744073709551613"));
    QVERIFY(publisher->publish(leafPath, Q_UINT64_C(18446744073709551613)));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("18446744073709551613"));
    QVERIFY(!publisher->publish(leafPath, Q_UINT64_C(18446744073709551614)));
}

void PublisherTextTest::aDescriptionIsReplacedByAText()
{
    QVERIFY(publisher->publish(leafPath, Q_UINT64_C(9223372036854775810)));
    QByteArray longer = counter(lowest, highest);
    longer.replace("\"bool\"}", "\"bool\"},{\"name\":\"level\",\"type\":\"int8\"}");
    QString error;
    const auto first
        = [](ProcessDataPublisher &fresh) { QVERIFY(fresh.publish("level", QVariant(5))); };

    QVERIFY2(publisher->replaceDescriptionText(longer, first, &error), qPrintable(error));

    QCOMPARE(publisher->value(leafPath).getValue().toULongLong(), Q_UINT64_C(9223372036854775810));
    QCOMPARE(publisher->value("level").getValue().toInt(), 5);
}

void PublisherTextTest::firstValuesAreThereWhenTheInstanceIs()
{
    const auto second = ProcessDataPublisher::createFromText(
        module, "Meter", "2", counter(lowest, highest),
        [](ProcessDataPublisher &fresh) { QVERIFY(fresh.publish("flag", QVariant(true))); });
    QVERIFY(!second.isNull());
    TestClient client(module, "Meter", "2");
    QVERIFY2(client.attach(), qPrintable(client.error));
    QCOMPARE(client.read("flag").getValue().toBool(), true);
}

void PublisherTextTest::aTextThatIsRefusedIsNamed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("nothing") << QByteArray() << "description: no JSON: illegal value at byte 0";
    QTest::newRow("no object") << QByteArray("[1]") << "description: must be a JSON object";
    QTest::newRow("an empty object")
        << QByteArray("{}") << "description: \"format\" must be a string, but is missing";
    QTest::newRow("another module")
        << QByteArray(R"({"module": "Other", "elements": []})") << "its \"module\" must be \"%1\"";
    QTest::newRow("a module that is no text")
        << QByteArray(R"({"module": 1, "elements": []})") << "its \"module\" must be \"%1\"";
}

void PublisherTextTest::aTextThatIsRefusedIsNamed()
{
    QFETCH(const QByteArray, text);
    QFETCH(QString, reason);
    QString error;

    QVERIFY(ProcessDataPublisher::createFromText(module, "Meter", "2", text, {}, &error).isNull());
    QCOMPARE(error,
             QString("Module \"%1\", object \"Meter\", instance \"2\": ").arg(module)
                 + reason.replace("%1", module));
    error.clear();
    QVERIFY(!publisher->replaceDescriptionText(text, {}, &error));
    QVERIFY(!error.isEmpty());
    error.clear();
    QVERIFY(!publisher->replacePropertiesText(text, &error));
    QVERIFY(!error.isEmpty());
}

BUS_TEST_MAIN(PublisherTextTest)
#include "PublisherTextTest.moc"
