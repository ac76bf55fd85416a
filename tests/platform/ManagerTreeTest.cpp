// SPDX-License-Identifier: MIT
// From a description to a tree: which are refused, what a URL finds, what a client may hold on to.
#include "BufferSource.h"
#include "ConfigurationAndProcessDataParser.h"
#include "MessageLog.h"

#include <QtTest>

class ManagerTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aUrlFindsTheLeafItNamesAndNoOther_data();
    void aUrlFindsTheLeafItNamesAndNoOther();
    void theSameUrlFindsTheSameLeaf();
    void aLeafTellsItsProperties();
    void aLeafRendersWithoutItsOffsetAndWithTheSession();
    void aLeafRendersTheSameInBothFormats();
    void aUrlFindsItsLeafHoweverItIsSpelled();
    void aUrlThatIsTooLongFindsNoLeaf();
    void aLeafOutlivesRootAndManager();
    void everyMappingIsLetGo();
    void aDescriptionThatCannotBeUsedIsRefusedWithOneWarning_data();
    void aDescriptionThatCannotBeUsedIsRefusedWithOneWarning();
    void aTreeWithoutBufferIsBuiltOnRequest();
    void aManagerThatWasNeverUsedIsNotValid();
};

void ManagerTreeTest::aUrlFindsTheLeafItNamesAndNoOther_data()
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

void ManagerTreeTest::aUrlFindsTheLeafItNamesAndNoOther()
{
    QFETCH(QString, url);
    QFETCH(QString, name);
    const QJsonObject group{{"name", "drive"}, {"elements", QJsonArray{leaf("speed", "float64")}}};
    QJsonObject document{{"format", "process-data-description/1"},
                         {"module", "M"},
                         {"object", "Tank"},
                         {"instance", "1"},
                         {"elements", QJsonArray{leaf("level", "float64"), group}}};
    ProcessDataManager manager;
    BufferSource source({leaf("level", "float64"), leaf("speed", "float64")});
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

void ManagerTreeTest::theSameUrlFindsTheSameLeaf()
{
    const BufferSource source({leaf("leaf", "float64"), leaf("other", "float64")});
    const BufferClient client(source.text());
    QCOMPARE(client.leaf(source.url("leaf")), client.leaf(source.url("leaf")));
    QVERIFY(client.leaf(source.url("leaf")) != client.leaf(source.url("other")));
}

void ManagerTreeTest::aLeafTellsItsProperties()
{
    const BufferSource source({leaf("leaf", "float64", {{"unit", "bar"}, {"vendor", "x"}})});
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

void ManagerTreeTest::aLeafRendersWithoutItsOffsetAndWithTheSession()
{
    BufferSource source({leaf("leaf", "float64", {{"unit", "bar"}})});
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

void ManagerTreeTest::aLeafRendersTheSameInBothFormats()
{
    BufferSource source({leaf("leaf", "float64", {{"z", true}, {"a", QJsonArray{1, 2}}}),
                         leaf("own", "float64", {{"session", 7}, {"offsetOf", "x"}})});
    source.document.insert("session", 42);
    const BufferClient client(source.text());
    for (const char *name : {"leaf", "own"}) {
        QByteArray compact;
        QByteArray indented;
        const ConfigurationAndProcessDataParser parser;
        const auto leaf = client.leaf(source.url(name));
        QVERIFY(parser.frameToByteArray(leaf, compact, QJsonDocument::Compact));
        QVERIFY(parser.frameToByteArray(leaf, indented, QJsonDocument::Indented));
        QCOMPARE(compact, QJsonDocument::fromJson(indented).toJson(QJsonDocument::Compact));
        QVERIFY2(compact.contains("\"session\":42"), compact.constData());
        QVERIFY2(!compact.contains("\"offset\""), compact.constData());
    }
}

void ManagerTreeTest::aUrlFindsItsLeafHoweverItIsSpelled()
{
    const BufferSource source({leaf("leaf", "float64"), leaf("100%", "float64"),
                               leaf("who?", "float64"), leaf("a#1", "float64")});
    const BufferClient client(source.text());
    const QString url = source.url("leaf");
    const auto leaf = client.leaf(url);
    QVERIFY(!leaf.isNull());
    QCOMPARE(client.leaf(source.url("%6Ceaf")), leaf);
    QCOMPARE(client.leaf(url + "?deactivated"), leaf);
    QCOMPARE(client.leaf("other" + url.mid(url.indexOf(':'))), leaf);
    QVERIFY(!client.leaf(source.url("100%25")).isNull());
    QVERIFY(!client.leaf(source.url("who%3F")).isNull());
    QVERIFY(!client.leaf(source.url("a%231")).isNull());
    for (const char *wrong : {"100%", "who?", "a#1", "leaf/", "leaf#", "leaf?", "%", "", "eaf"}) {
        QVERIFY2(client.leaf(source.url(wrong)).isNull(), wrong);
    }
}

void ManagerTreeTest::aUrlThatIsTooLongFindsNoLeaf()
{
    const QString name(1400, QChar(0x20ac)); // of 3 bytes each
    const BufferSource source({leaf(name, "float64")});
    const BufferClient client(source.text());
    QVERIFY(!client.root.isNull());

    QVERIFY(client.leaf(source.url(name)).isNull());
}

void ManagerTreeTest::aLeafOutlivesRootAndManager()
{
    BufferSource source({leaf("leaf", "float64"), leaf("text", "string", {{"capacity", 8}})});
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

void ManagerTreeTest::everyMappingIsLetGo()
{
    QString module;
    const auto mappings = [&module] {
        QFile maps("/proc/self/maps");
        return maps.open(QIODevice::ReadOnly) ? maps.readAll().count(module.toUtf8() + "_Tank")
                                              : -1;
    };
    {
        const BufferSource source({leaf("leaf", "float64")});
        module = source.description.source.module;
        QCOMPARE(mappings(), 0); // the publisher's own has no name yet in its entry
        QSharedPointer<ProcessDataValue> leaf;
        {
            const BufferClient client(source.text());
            QCOMPARE(mappings(), 2); // the buffer and the record of its publisher's life
            leaf = client.leaf(source.url("leaf"));
        }
        QCOMPARE(mappings(), 2);
        leaf.clear();
        QCOMPARE(mappings(), 0);
    }
}

void ManagerTreeTest::aDescriptionThatCannotBeUsedIsRefusedWithOneWarning_data()
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

void ManagerTreeTest::aDescriptionThatCannotBeUsedIsRefusedWithOneWarning()
{
    QFETCH(QVariant, description);
    QFETCH(QString, extension);
    QFETCH(QString, warning);
    ProcessDataManager manager;
    const MessageLog warnings;
    QVERIFY(!manager.createProcessDataFromJson(description, extension,
                                               ProcessDataManager::InitTypeAttach));
    QVERIFY(!manager.isBufferValid());
    QCOMPARE(warnings.texts().size(), 1);
    QVERIFY2(warnings.texts().at(0).startsWith(warning), qPrintable(warnings.texts().at(0)));
}

void ManagerTreeTest::aTreeWithoutBufferIsBuiltOnRequest()
{
    const BufferSource source({leaf("leaf", "float64")});
    ProcessDataManager manager;
    const MessageLog warnings;
    const auto root
        = manager.createProcessDataFromJson(source.text(), "pdd", ProcessDataManager::InitTypeNone);
    QVERIFY(root);
    QVERIFY(!manager.isBufferValid());
    QVERIFY(root->getLeafProcessDataValue(source.url("leaf")));
    QCOMPARE(readLeaf(root->getLeafProcessDataValue(source.url("leaf"))).getErrorType(),
             ProcessDataDefinitions::NoValue);
    QCOMPARE(warnings.texts(), QStringList());
}

void ManagerTreeTest::aManagerThatWasNeverUsedIsNotValid()
{
    QVERIFY(!ProcessDataManager().isBufferValid());
}

QTEST_GUILESS_MAIN(ManagerTreeTest)
#include "ManagerTreeTest.moc"
