// SPDX-License-Identifier: MIT
// JSON functions, keys and the rendering of nodes.
#include "ConfigurationAndProcessDataBase.h"
#include "ConfigurationAndProcessDataDefinitions.h"
#include "ConfigurationAndProcessDataParser.h"
#include "JsonFunctions.h"
#include "ProcessDataValue.h"
#include "PropertyManagerConst.h"
#include "RenderableNode.h"
#include "SystemInformationManagerRegistryDefinitions.h"

#include <QtTest>

namespace {

class Node : public ConfigurationAndProcessDataBase, public RenderableNode
{
public:
    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &) override { return {}; }
    QVariant readLeafProperty(const QString &) const override { return {}; }
    bool hasLeafProperty(const QString &) const override { return false; }
    QJsonObject renderedProperties() const override
    {
        return {{"b", 1}, {"a", QString::fromUtf8("°C")}};
    }
    void renderCompact(QByteArray &bytes) const override { bytes += "compact"; }
};

} // namespace

class JsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysAreTheOnesOfTheFormats();
    void aValueIsReadByItsKeyAlone();
    void anArrayIsFoundAtTheEndOfItsPath_data();
    void anArrayIsFoundAtTheEndOfItsPath();
    void onlyTextOfAnArrayGivesAnArray_data();
    void onlyTextOfAnArrayGivesAnArray();
    void aNodeIsAppendedInTheFormatAskedFor();
    void nothingIsRenderedOfNothing();
};

void JsonTest::keysAreTheOnesOfTheFormats()
{
    QCOMPARE(ConfigurationAndProcessDataDefinitions::getKeyDataPropertyReadOnly(), "readOnly");
    QCOMPARE(ConfigurationAndProcessDataDefinitions::getKeyDataPropertySelectorTypeList(),
             "selectorTypeList");
    QCOMPARE(ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData(),
             "processdata");
    QCOMPARE(PropertyManagerConst::getProcessDataDescriptionFileExtension(), "pdd");
    QCOMPARE(SystemInformationManagerRegistryDefinitions::getKeyModuleName(), "moduleName");
    QCOMPARE(SystemInformationManagerRegistryDefinitions::getKeyAdditionalData(), "additionalData");
    QCOMPARE(&PropertyManagerConst::getProcessDataDescriptionFileExtension(),
             &PropertyManagerConst::getProcessDataDescriptionFileExtension());
}

void JsonTest::aValueIsReadByItsKeyAlone()
{
    const QJsonObject object{{"a", QJsonObject{{"b", 1}}}, {"a/b", 2}, {"null", QJsonValue::Null}};
    QJsonValue value;

    QVERIFY(readJsonValue("a/b", object, value));
    QCOMPARE(value, QJsonValue(2));
    QVERIFY(readJsonValue("null", object, value));
    QVERIFY(value.isNull());
    QVERIFY(!readJsonValue("b", object, value));
    QVERIFY(!readJsonValue("", QJsonObject(), value));
}

void JsonTest::anArrayIsFoundAtTheEndOfItsPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("found");
    QTest::newRow("one key") << "list" << true;
    QTest::newRow("two keys") << "a/list" << true;
    QTest::newRow("three keys") << "a/b/list" << true;
    QTest::newRow("missing") << "other" << false;
    QTest::newRow("missing step") << "x/list" << false;
    QTest::newRow("missing end") << "a/x" << false;
    QTest::newRow("step that is a number") << "n/list" << false;
    QTest::newRow("step that is an array") << "list/list" << false;
    QTest::newRow("end that is an object") << "a" << false;
    QTest::newRow("end that is a number") << "n" << false;
    QTest::newRow("empty path") << "" << false;
    QTest::newRow("slash at the end") << "a/list/" << false;
}

void JsonTest::anArrayIsFoundAtTheEndOfItsPath()
{
    QFETCH(QString, path);
    QFETCH(bool, found);
    const QJsonArray list{1, 2};
    const QJsonObject object{
        {"list", list},
        {"n", 1},
        {"a", QJsonObject{{"list", list}, {"b", QJsonObject{{"list", list}}}}}};
    QJsonArray array;

    QCOMPARE(readJsonArrayFromJson(path, object, array), found);
    QCOMPARE(array, found ? list : QJsonArray());
}

void JsonTest::onlyTextOfAnArrayGivesAnArray_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("size");
    QTest::newRow("two entries") << "[1, {}]" << 2;
    QTest::newRow("no entries") << " [ ] " << 0;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("object") << R"({"a": [1]})" << 0;
    QTest::newRow("cut") << "[1, 2" << 0;
    QTest::newRow("something behind") << "[1] [2]" << 0;
}

void JsonTest::onlyTextOfAnArrayGivesAnArray()
{
    QFETCH(QString, text);

    QTEST(createJsonArrayFromJsonString(text).size(), "size");
}

void JsonTest::aNodeIsAppendedInTheFormatAskedFor()
{
    const QSharedPointer<ConfigurationAndProcessDataBase> node(new Node);
    const ConfigurationAndProcessDataParser parser;
    QByteArray compact("x");
    QByteArray indented;

    QVERIFY(parser.frameToByteArray(node, compact, QJsonDocument::Compact));
    QVERIFY(parser.frameToByteArray(node, indented, QJsonDocument::Indented));

    QCOMPARE(compact, QByteArray("xcompact"));
    QCOMPARE(indented, QByteArray("{\n    \"a\": \"°C\",\n    \"b\": 1\n}\n"));
}

void JsonTest::nothingIsRenderedOfNothing()
{
    QByteArray bytes;

    QVERIFY(
        !ConfigurationAndProcessDataParser().frameToByteArray({}, bytes, QJsonDocument::Compact));
    QCOMPARE(bytes, QByteArray());
}

QTEST_APPLESS_MAIN(JsonTest)
#include "JsonTest.moc"
