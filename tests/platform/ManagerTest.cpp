// SPDX-License-Identifier: MIT
// From a description to leaves: values of every type both ways, and what a client may hold on to.
#include "BufferSource.h"
#include "ConfigurationAndProcessDataParser.h"
#include "WarningList.h"

#include <QtTest>

#include <limits>

namespace {

template <typename Number> void addLimits(const char *type)
{
    using Limits = std::numeric_limits<Number>;
    for (const Number number : {Limits::lowest(), Number(0), Number(1), Limits::max()}) {
        QTest::addRow("%s %s", type, qPrintable(QVariant::fromValue(number).toString()))
            << QString(type) << QVariant::fromValue(number);
    }
}

QVariant typed(const QVariant &value, int type)
{
    QVariant result = value;
    return result.convert(type) ? result : QVariant();
}

}

class ManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueOfEveryTypeGoesBothWays_data();
    void aValueOfEveryTypeGoesBothWays();
    void aWriteTakesTheGivenTimeOrTheCurrentOne();
    void aWriteThatDoesNotFitLeavesTheStoredValue_data();
    void aWriteThatDoesNotFitLeavesTheStoredValue();
    void aReadOnlyLeafRefusesItself();
    void aLeafThatWasNeverPublishedIsNotInitialized();
    void aUrlFindsTheLeafItNamesAndNoOther_data();
    void aUrlFindsTheLeafItNamesAndNoOther();
    void theSameUrlFindsTheSameLeaf();
    void aLeafTellsItsProperties();
    void aLeafRendersWithoutItsOffsetAndWithTheSession();
    void aLeafOutlivesRootAndManager();
    void everyMappingIsLetGo();
    void aDescriptionThatCannotBeUsedIsRefusedWithOneWarning_data();
    void aDescriptionThatCannotBeUsedIsRefusedWithOneWarning();
    void aTreeWithoutBufferIsBuiltOnRequest();
    void aManagerThatWasNeverUsedIsNotValid();
};

void ManagerTest::aValueOfEveryTypeGoesBothWays_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("bool true") << "bool" << QVariant(true);
    QTest::newRow("bool false") << "bool" << QVariant(false);
    addLimits<qint8>("int8");
    addLimits<qint16>("int16");
    addLimits<qint32>("int32");
    addLimits<qint64>("int64");
    addLimits<quint8>("uint8");
    addLimits<quint16>("uint16");
    addLimits<quint32>("uint32");
    addLimits<quint64>("uint64");
    addLimits<float>("float32");
    addLimits<double>("float64");
    QTest::newRow("a text") << "string" << QVariant(QString::fromUtf8("Überdruck"));
    QTest::newRow("an empty text") << "string" << QVariant(QString(""));
    QTest::newRow("a text of all bytes") << "string" << QVariant(QString(40, 'x'));
    QTest::newRow("bytes with zeros") << "bytes" << QVariant(QByteArray("a\0b\0", 4));
    QTest::newRow("all bytes") << "bytes" << QVariant(QByteArray(40, '\xff'));
}

void ManagerTest::aValueOfEveryTypeGoesBothWays()
{
    QFETCH(QString, type);
    QFETCH(QVariant, value);
    const bool variable = type == "string" || type == "bytes";
    const QJsonObject more = variable ? QJsonObject{{"capacity", 40}} : QJsonObject{};
    BufferSource source({leafJson("before", "float64"), leafJson("leaf", type, more),
                         leafJson("after", "float64")});
    QVERIFY2(source.buffer, qPrintable(source.error));
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("leaf"));
    QVERIFY(leaf);

    QVERIFY2(source.publish(1, ProcessValue(value, ProcessDataDefinitions::OutOfRange, 99)),
             qPrintable(source.error));
    const ProcessValue read = readLeaf(leaf);
    QCOMPARE(typed(read.getValue(), value.userType()), value);
    QCOMPARE(read.getErrorType(), ProcessDataDefinitions::OutOfRange);
    QCOMPARE(read.getTimestamp(), qint64(99));

    QVERIFY(leaf->setValue(ProcessValue(value, ProcessDataDefinitions::DeviceFault, 100)));
    const ProcessValue seen = source.buffer->value(1);
    QCOMPARE(typed(seen.getValue(), value.userType()), value);
    QCOMPARE(seen.getValue().userType(), read.getValue().userType());
    QCOMPARE(seen.getErrorType(), ProcessDataDefinitions::DeviceFault);
    QCOMPARE(seen.getTimestamp(), qint64(100));

    for (const char *other : {"before", "after"}) { // neighbours stay as they were
        QCOMPARE(readLeaf(client.leaf(source.url(other))).getErrorType(),
                 ProcessDataDefinitions::NotInitialized);
    }
}

void ManagerTest::aWriteTakesTheGivenTimeOrTheCurrentOne()
{
    const BufferSource source({leafJson("leaf", "float64")});
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("leaf"));
    QVERIFY(leaf->setValue(ProcessValue(QVariant(1.0), ProcessDataDefinitions::NoError, -5)));
    QCOMPARE(readLeaf(leaf).getTimestamp(), qint64(-5));

    const qint64 before = QDateTime::currentMSecsSinceEpoch() * 1'000'000;
    QVERIFY(leaf->setValue(ProcessValue(QVariant(1.0))));
    const qint64 after = (QDateTime::currentMSecsSinceEpoch() + 1) * 1'000'000;
    QVERIFY(readLeaf(leaf).getTimestamp() >= before && readLeaf(leaf).getTimestamp() <= after);
}

void ManagerTest::aWriteThatDoesNotFitLeavesTheStoredValue_data()
{
    QTest::addColumn<QString>("leaf");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("no value") << "number" << QVariant();
    QTest::newRow("above the maximum") << "number" << QVariant(101);
    QTest::newRow("below the minimum") << "number" << QVariant(-1);
    QTest::newRow("a fraction") << "number" << QVariant(1.5);
    QTest::newRow("no number") << "number" << QVariant("one");
    QTest::newRow("not a number") << "number" << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("too long") << "text" << QVariant("123456789");
}

void ManagerTest::aWriteThatDoesNotFitLeavesTheStoredValue()
{
    QFETCH(QString, leaf);
    QFETCH(QVariant, value);
    BufferSource source({leafJson("number", "int16", {{"minimum", 0}, {"maximum", 100}}),
                         leafJson("text", "string", {{"capacity", 8}})});
    QVERIFY(source.publish(0, ProcessValue(QVariant(7))));
    QVERIFY(source.publish(1, ProcessValue(QVariant("seven"))));
    const BufferClient client(source.text());
    const ProcessValue before = readLeaf(client.leaf(source.url(leaf)));
    const WarningList warnings;

    QVERIFY(!client.leaf(source.url(leaf))->setValue(ProcessValue(value)));

    const ProcessValue after = readLeaf(client.leaf(source.url(leaf)));
    QCOMPARE(after.getValue(), before.getValue());
    QCOMPARE(after.getTimestamp(), before.getTimestamp());
    QCOMPARE(source.buffer->takeClientWrites(), QVector<int>());
    QCOMPARE(warnings.texts().size(), 1);
    QVERIFY(warnings.texts().at(0).startsWith("processdata.memory: Leaf " + leaf
                                              + " was not written: "));
}

void ManagerTest::aReadOnlyLeafRefusesItself()
{
    BufferSource source(
        {leafJson("leaf", "float64", {{"readOnly", true}}), leafJson("other", "float64")});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.0))));
    const BufferClient client(source.text());
    const WarningList warnings;
    QVERIFY(!client.leaf(source.url("leaf"))->setValue(ProcessValue(QVariant(2.0))));
    QCOMPARE(warnings.texts(),
             QStringList("processdata.memory: Leaf leaf was not written: it is read-only"));
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(1.0));
}

void ManagerTest::aLeafThatWasNeverPublishedIsNotInitialized()
{
    const BufferSource source(
        {leafJson("number", "float64"), leafJson("text", "string", {{"capacity", 8}})});
    const BufferClient client(source.text());
    for (const char *leaf : {"number", "text"}) {
        ProcessValue value(QVariant(17), ProcessDataDefinitions::NoError, 5);
        QVERIFY(client.leaf(source.url(leaf))->getValue(value, false));
        QCOMPARE(value.getValue(), QVariant());
        QCOMPARE(value.getErrorType(), ProcessDataDefinitions::NotInitialized);
        QCOMPARE(value.getTimestamp(), qint64(0));
    }
}

void ManagerTest::aUrlFindsTheLeafItNamesAndNoOther_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("name");
    QTest::newRow("a leaf") << "processdata://M/Tank/1/level"
                            << "level";
    QTest::newRow("a leaf in a group") << "processdata://M/Tank/1/drive/speed"
                                       << "speed";
    QTest::newRow("an encoded name") << "processdata://M/Tank/1/%6Cevel"
                                     << "level";
    QTest::newRow("a group") << "processdata://M/Tank/1/drive"
                             << "";
    QTest::newRow("an unknown leaf") << "processdata://M/Tank/1/volume"
                                     << "";
    QTest::newRow("another case") << "processdata://M/Tank/1/Level"
                                  << "";
    QTest::newRow("an encoded slash") << "processdata://M/Tank/1/drive%2Fspeed"
                                      << "";
    QTest::newRow("another module") << "processdata://N/Tank/1/level"
                                    << "";
    QTest::newRow("another object") << "processdata://M/Pump/1/level"
                                    << "";
    QTest::newRow("another instance") << "processdata://M/Tank/2/level"
                                      << "";
    QTest::newRow("no URL") << "level"
                            << "";
    QTest::newRow("nothing") << ""
                             << "";
}

void ManagerTest::aUrlFindsTheLeafItNamesAndNoOther()
{
    QFETCH(QString, url);
    QFETCH(QString, name);
    const QJsonObject group{{"name", "drive"},
                            {"elements", QJsonArray{leafJson("speed", "float64")}}};
    QJsonObject document{{"format", "process-data-description/1"},
                         {"module", "M"},
                         {"object", "Tank"},
                         {"instance", "1"},
                         {"elements", QJsonArray{leafJson("level", "float64"), group}}};
    ProcessDataManager manager;
    BufferSource source({leafJson("level", "float64"), leafJson("speed", "float64")});
    document.insert("buffer", source.document.value("buffer"));
    document = QJsonDocument::fromJson(QJsonDocument(document)
                                           .toJson()
                                           .replace("\"level\"", "\"level\", \"offset\": 192")
                                           .replace("\"speed\"", "\"speed\", \"offset\": 256"))
                   .object();
    const auto root = manager.createProcessDataFromJson(QJsonDocument(document).toJson(), "pdd",
                                                        ProcessDataManager::InitTypeAttach);
    QVERIFY(root);
    QVERIFY(manager.isBufferValid());

    const auto leaf = root->getLeafProcessDataValue(url);

    QCOMPARE(leaf.isNull(), name.isEmpty());
    if (leaf) {
        QCOMPARE(leaf->readLeafProperty("name"), QVariant(name));
    }
}

void ManagerTest::theSameUrlFindsTheSameLeaf()
{
    const BufferSource source({leafJson("leaf", "float64"), leafJson("other", "float64")});
    const BufferClient client(source.text());
    QCOMPARE(client.leaf(source.url("leaf")), client.leaf(source.url("leaf")));
    QVERIFY(client.leaf(source.url("leaf")) != client.leaf(source.url("other")));
}

void ManagerTest::aLeafTellsItsProperties()
{
    const BufferSource source({leafJson("leaf", "float64", {{"unit", "bar"}, {"vendor", "x"}})});
    const BufferClient client(source.text());
    const auto leaf = client.leaf(source.url("leaf"));
    QCOMPARE(leaf->readLeafProperty("unit"), QVariant("bar"));
    QCOMPARE(leaf->readLeafProperty("vendor"), QVariant("x"));
    QCOMPARE(leaf->readLeafProperty("offset").toInt(), 192);
    QCOMPARE(leaf->readLeafProperty("session").toULongLong(),
             source.description.buffer->generation);
    QCOMPARE(leaf->readLeafProperty("readOnly"), QVariant());
    for (const char *name : {"unit", "vendor", "offset", "session", "type"}) {
        QVERIFY2(leaf->hasLeafProperty(name), name);
    }
    QVERIFY(!leaf->hasLeafProperty("readOnly"));
    QVERIFY(!client.root->hasLeafProperty("module"));
    QCOMPARE(client.root->readLeafProperty("module"), QVariant());
    QVERIFY(leaf->getLeafProcessDataValue(source.url("leaf")).isNull());
}

void ManagerTest::aLeafRendersWithoutItsOffsetAndWithTheSession()
{
    BufferSource source({leafJson("leaf", "float64", {{"unit", "bar"}})});
    const auto render = [&source] {
        QByteArray text("before ");
        const BufferClient client(source.text());
        ConfigurationAndProcessDataParser().frameToByteArray(client.leaf(source.url("leaf")), text,
                                                             QJsonDocument::Compact);
        return text;
    };
    source.document.insert("session", 42);
    QCOMPARE(render(),
             QByteArray(R"(before {"name":"leaf","session":42,"type":"float64","unit":"bar"})"));

    source.document.remove("session"); // an older publisher
    const QByteArray generation = QByteArray::number(source.description.buffer->generation);
    QCOMPARE(render(),
             QByteArray(R"(before {"name":"leaf","session":)" + generation
                        + R"(,"type":"float64","unit":"bar"})"));
}

void ManagerTest::aLeafOutlivesRootAndManager()
{
    BufferSource source(
        {leafJson("leaf", "float64"), leafJson("text", "string", {{"capacity", 8}})});
    QVERIFY(source.publish(0, ProcessValue(QVariant(1.5))));
    QSharedPointer<ProcessDataValue> leaf;
    {
        const BufferClient client(source.text());
        leaf = client.leaf(source.url("leaf"));
    }
    QCOMPARE(readLeaf(leaf).getValue(), QVariant(1.5));
    QVERIFY(leaf->setValue(ProcessValue(QVariant(2.5))));
    QCOMPARE(source.buffer->value(0).getValue(), QVariant(2.5));
    QCOMPARE(leaf->readLeafProperty("name"), QVariant("leaf"));
    source.buffer.reset();
    QCOMPARE(readLeaf(leaf).getValue(), QVariant(2.5));
    QCOMPARE(readLeaf(leaf).getErrorType(), ProcessDataDefinitions::SourceLost);
}

void ManagerTest::everyMappingIsLetGo()
{
    QString module;
    const auto mappings = [&module] {
        QFile maps("/proc/self/maps");
        return maps.open(QIODevice::ReadOnly) ? maps.readAll().count(module.toUtf8() + "_Tank")
                                              : -1;
    };
    {
        const BufferSource source({leafJson("leaf", "float64")});
        module = source.description.module;
        QCOMPARE(mappings(), 0); // the publisher's own has no name yet in its entry
        QSharedPointer<ProcessDataValue> leaf;
        {
            const BufferClient client(source.text());
            QCOMPARE(mappings(), 1);
            leaf = client.leaf(source.url("leaf"));
        }
        QCOMPARE(mappings(), 1);
        leaf.clear();
        QCOMPARE(mappings(), 0);
    }
}

void ManagerTest::aDescriptionThatCannotBeUsedIsRefusedWithOneWarning_data()
{
    QTest::addColumn<QVariant>("description");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("warning");
    const QString refused = "processdata.memory: Process-data description refused: ";
    QTest::newRow("nothing") << QVariant() << "pdd" << refused + "expected a text, got nothing";
    QTest::newRow("a number") << QVariant(5) << "pdd" << refused + "expected a text, got int";
    QTest::newRow("a map") << QVariant(QVariantMap()) << "pdd"
                           << refused + "expected a text, got QVariantMap";
    QTest::newRow("another extension")
        << QVariant("{}") << "json" << refused + "unknown file extension \"json\"";
    QTest::newRow("no extension") << QVariant("{}") << ""
                                  << refused + "unknown file extension \"\"";
    QTest::newRow("no JSON") << QVariant("{") << "pdd" << refused;
    QTest::newRow("no JSON, as bytes") << QVariant(QByteArray("{")) << "pdd" << refused;
    QTest::newRow("no buffer") << QVariant(R"({"format":"process-data-description/1","module":"M",
        "object":"O","instance":"1","elements":[]})")
                               << "pdd" << refused;
}

void ManagerTest::aDescriptionThatCannotBeUsedIsRefusedWithOneWarning()
{
    QFETCH(QVariant, description);
    QFETCH(QString, extension);
    QFETCH(QString, warning);
    ProcessDataManager manager;
    const WarningList warnings;
    QVERIFY(!manager.createProcessDataFromJson(description, extension,
                                               ProcessDataManager::InitTypeAttach));
    QVERIFY(!manager.isBufferValid());
    QCOMPARE(warnings.texts().size(), 1);
    QVERIFY2(warnings.texts().at(0).startsWith(warning), qPrintable(warnings.texts().at(0)));
}

void ManagerTest::aTreeWithoutBufferIsBuiltOnRequest()
{
    const BufferSource source({leafJson("leaf", "float64")});
    ProcessDataManager manager;
    const WarningList warnings;
    const auto root
        = manager.createProcessDataFromJson(source.text(), "pdd", ProcessDataManager::InitTypeNone);
    QVERIFY(root);
    QVERIFY(!manager.isBufferValid());
    QVERIFY(root->getLeafProcessDataValue(source.url("leaf")));
    QCOMPARE(readLeaf(root->getLeafProcessDataValue(source.url("leaf"))).getErrorType(),
             ProcessDataDefinitions::NoValue);
    QCOMPARE(warnings.texts(), QStringList());
}

void ManagerTest::aManagerThatWasNeverUsedIsNotValid()
{
    QVERIFY(!ProcessDataManager().isBufferValid());
}

QTEST_GUILESS_MAIN(ManagerTest)
#include "ManagerTest.moc"
