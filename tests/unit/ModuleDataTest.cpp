// SPDX-License-Identifier: MIT
// Modules and matching selector types out of provider lists.
#include "ClassForm.h"
#include "SelectorHandlerConvenienceFunctions.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QJsonDocument>
#include <QtTest>

#include <type_traits>

namespace {

using Functions = SelectorHandlerConvenienceFunctions;

QJsonObject objectOf(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

// A module object with a name and a selector type list, both as JSON.
QString module(const QString &name, const QString &entries)
{
    return R"({"name-of-module":)" + name + R"(,"more-data":{"types-of-selectors":)" + entries
        + "}}";
}

// Records in one line each: name: entry, entry
QStringList linesOf(const QVector<Functions::ModuleData> &records)
{
    QStringList lines;
    for (const Functions::ModuleData &record : records) {
        lines.append((record.moduleName.isNull() ? QString("(null)") : record.moduleName) + ": "
                     + QStringList(record.selectorTypeList.toList()).join(", "));
    }
    return lines;
}

} // namespace

class ModuleDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aModulesNameIsRead()
    {
        UnlikePlatform platform;
        const WarningLog warnings;

        QCOMPARE(Functions::getModuleNameFromJsonObjectModule(
                     objectOf(R"({"moduleName":"wrong key","name-of-module":"Pump"})")),
                 QString("Pump"));

        QCOMPARE(platform.calls(),
                 (QStringList{"SystemInformationManagerRegistryDefinitions::getKeyModuleName()",
                              "readJsonValue('name-of-module')"}));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void anEmptyNameIsAName()
    {
        UnlikePlatform platform;
        const WarningLog warnings;

        QCOMPARE(Functions::getModuleNameFromJsonObjectModule(objectOf(R"({"name-of-module":""})")),
                 QString(""));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aNameThatCannotBeReadIsNullAndReported_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no name") << QByteArray(R"({"a":1})")
                                 << R"(Can't read the moduleName. Selector data: )"
                                    R"(QJsonObject({"a":1}))";
        QTest::newRow("an empty object") << QByteArray("{}")
                                         << "Can't read the moduleName. Selector data: "
                                            "QJsonObject({})";
        QTest::newRow("a number")
            << QByteArray(R"({"name-of-module":7})")
            << R"(No string in moduleName. QJsonValue(double, 7) Selector data: )"
               R"(QJsonObject({"name-of-module":7}))";
        QTest::newRow("null") << QByteArray(R"({"name-of-module":null})")
                              << R"(No string in moduleName. QJsonValue(null) Selector data: )"
                                 R"(QJsonObject({"name-of-module":null}))";
        QTest::newRow("an array")
            << QByteArray(R"({"name-of-module":["x"]})")
            << R"(No string in moduleName. QJsonValue(array, QJsonArray(["x"])) Selector data: )"
               R"(QJsonObject({"name-of-module":["x"]}))";
    }

    void aNameThatCannotBeReadIsNullAndReported()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, expected);
        UnlikePlatform platform;
        const WarningLog warnings;

        QVERIFY(Functions::getModuleNameFromJsonObjectModule(objectOf(json)).isNull());
        QCOMPARE(warnings.texts(), QStringList{expected});
    }

    void textThatIsNoArrayGivesNothingInSilence_data()
    {
        QTest::addColumn<QVariant>("list");
        QTest::newRow("an invalid variant") << QVariant();
        QTest::newRow("an empty text") << QVariant("");
        QTest::newRow("no JSON") << QVariant("[1,");
        QTest::newRow("an object") << QVariant(R"({"name-of-module":"Pump"})");
        QTest::newRow("an empty array") << QVariant("[]");
        QTest::newRow("a variant without string form") << QVariant(QVariantList{1, 2});
    }

    void textThatIsNoArrayGivesNothingInSilence()
    {
        QFETCH(QVariant, list);
        UnlikePlatform platform;
        const WarningLog warnings;

        QVERIFY(Functions::getJsonObjectModuleList(list).isEmpty());
        QVERIFY(Functions::getModuleDataFromRegisteredProviderList(list, "").isEmpty());
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theStringFormOfAListIsParsed()
    {
        UnlikePlatform platform;
        const QString text = R"([{"a":1},{"b":2}])";

        const QVector<QJsonObject> fromText = Functions::getJsonObjectModuleList(text);
        const QVector<QJsonObject> fromBytes = Functions::getJsonObjectModuleList(text.toUtf8());

        const QVector<QJsonObject> expected{objectOf(R"({"a":1})"), objectOf(R"({"b":2})")};
        QCOMPARE(fromText, expected);
        QCOMPARE(fromBytes, expected);
        QCOMPARE(platform.calls(),
                 (QStringList{R"(createJsonArrayFromJsonString('[{"a":1},{"b":2}]'))",
                              R"(createJsonArrayFromJsonString('[{"a":1},{"b":2}]'))"}));
    }

    void elementsThatAreNoObjectsAreReportedAndLeftOut()
    {
        UnlikePlatform platform;
        const WarningLog warnings;

        const QVector<QJsonObject> modules
            = Functions::getJsonObjectModuleList(R"([5,{"a":1},"x",null,[{}],{"b":2},true])");

        QCOMPARE(modules, (QVector<QJsonObject>{objectOf(R"({"a":1})"), objectOf(R"({"b":2})")}));
        QCOMPARE(
            warnings.texts(),
            (QStringList{"No object in selector data. Selector data: QJsonValue(double, 5)",
                         R"(No object in selector data. Selector data: QJsonValue(string, "x"))",
                         "No object in selector data. Selector data: QJsonValue(null)",
                         "No object in selector data. Selector data: QJsonValue(array, "
                         "QJsonArray([{}]))",
                         "No object in selector data. Selector data: QJsonValue(bool, true)"}));
    }

    void entriesMatchByTheirLastSegment_data()
    {
        QTest::addColumn<QString>("entries");
        QTest::addColumn<QString>("requested");
        QTest::addColumn<QStringList>("expected");
        const QString both = R"(["a/b/AnalogSelector","AnalogSelector"])";
        QTest::newRow("with and without a path, in list order")
            << both << "AnalogSelector" << QStringList{"Pump: a/b/AnalogSelector, AnalogSelector"};
        QTest::newRow("another case") << R"(["a/AnalogSelector"])"
                                      << "analogselector" << QStringList();
        QTest::newRow("the end of a segment is no segment") << R"(["a/MyAnalogSelector"])"
                                                            << "AnalogSelector" << QStringList();
        QTest::newRow("the start of a segment is no segment") << R"(["a/AnalogSelectors"])"
                                                              << "AnalogSelector" << QStringList();
        QTest::newRow("a segment in the middle") << R"(["AnalogSelector/x"])"
                                                 << "AnalogSelector" << QStringList();
        QTest::newRow("a closing separator leaves an empty segment")
            << R"(["a/AnalogSelector/"])"
            << "AnalogSelector" << QStringList();
        QTest::newRow("an empty name matches an empty segment")
            << R"(["a/AnalogSelector/","a/b"])"
            << "" << QStringList{"Pump: a/AnalogSelector/"};
        QTest::newRow("an empty name matches an empty entry") << R"(["","a"])"
                                                              << "" << QStringList{"Pump: "};
        QTest::newRow("a name with a separator never matches") << R"(["a/b"])"
                                                               << "a/b" << QStringList();
        QTest::newRow("entries of other types match nothing") << R"([1,null,{"x":1},["A"],"o/A"])"
                                                              << "A" << QStringList{"Pump: o/A"};
        QTest::newRow("entries of other types read as empty") << R"([1,null])"
                                                              << "" << QStringList{"Pump: , "};
        QTest::newRow("the same entry twice") << R"(["o/A","o/A"])"
                                              << "A" << QStringList{"Pump: o/A, o/A"};
        QTest::newRow("an empty list") << "[]"
                                       << "" << QStringList();
    }

    void entriesMatchByTheirLastSegment()
    {
        QFETCH(QString, entries);
        QFETCH(QString, requested);
        QFETCH(QStringList, expected);
        UnlikePlatform platform;
        const WarningLog warnings;

        const auto records = Functions::getModuleDataFromRegisteredProviderList(
            "[" + module(R"("Pump")", entries) + "]", requested);

        QCOMPARE(linesOf(records), expected);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void modulesThatMatchKeepTheirOrderAndOthersAreLeftOutInSilence()
    {
        UnlikePlatform platform;
        const WarningLog warnings;
        const QStringList modules{module(R"("B")", R"(["o/A"])"), module("3", R"(["o/D"])"),
                                  module(R"("A")", R"(["p/A"])")};

        const auto records = Functions::getModuleDataFromRegisteredProviderList(
            "[" + modules.join(",") + "]", "A");

        QCOMPARE(linesOf(records), (QStringList{"B: o/A", "A: p/A"}));
        // The second module's name, which is a number, is not even read.
        QCOMPARE(platform.calls().filter("readJsonValue").size(), 2);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aMatchWithoutAReadableNameStillCounts_data()
    {
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no name") << R"({"more-data":{"types-of-selectors":["o/A"]}})"
                                 << R"(Can't read the moduleName. Selector data: )"
                                    R"(QJsonObject({"more-data":{"types-of-selectors":["o/A"]}}))";
        QTest::newRow("a number as name")
            << module("7", R"(["o/A"])")
            << R"(No string in moduleName. QJsonValue(double, 7) Selector data: QJsonObject()"
               R"({"more-data":{"types-of-selectors":["o/A"]},"name-of-module":7}))";
    }

    void aMatchWithoutAReadableNameStillCounts()
    {
        QFETCH(QString, json);
        QFETCH(QString, expected);
        UnlikePlatform platform;
        const WarningLog warnings;

        QCOMPARE(linesOf(Functions::getModuleDataFromRegisteredProviderList("[" + json + "]", "A")),
                 QStringList{"(null): o/A"});
        QCOMPARE(warnings.texts(), QStringList{expected});
    }

    void aModuleWithoutSelectorTypesIsReportedAndTheNextOnesCount_data()
    {
        QTest::addColumn<QString>("broken");
        QTest::newRow("no additional data") << R"({"name-of-module":"P"})";
        QTest::newRow("no list in it") << R"({"more-data":{"x":1}})";
        QTest::newRow("additional data that are no object") << R"({"more-data":"x"})";
        QTest::newRow("a list that is a text") << R"({"more-data":{"types-of-selectors":"o/A"}})";
    }

    void aModuleWithoutSelectorTypesIsReportedAndTheNextOnesCount()
    {
        QFETCH(QString, broken);
        UnlikePlatform platform;
        const WarningLog warnings;

        const auto records = Functions::getModuleDataFromRegisteredProviderList(
            "[" + broken + "," + module(R"("Q")", R"(["A"])") + "]", "A");

        QCOMPARE(linesOf(records), QStringList{"Q: A"});
        QCOMPARE(warnings.texts(),
                 QStringList{"Error on selector data struct. Url: "
                             "\"more-data/types-of-selectors\" Selector data: QJsonObject("
                             + broken + ")"});
    }

    void theClassHasNothingButAVirtualDestructor()
    {
        QVERIFY(std::has_virtual_destructor<Functions>::value);
        QVERIFY(std::is_default_constructible<Functions>::value);
        QCOMPARE(sizeof(Functions), sizeof(void *));
        struct Derived : Functions
        {
            virtual void added() { }
        };
        QCOMPARE(virtualSlotOf(&Derived::added), 2);
        delete static_cast<Functions *>(new Derived);
    }

    void aRecordHoldsNameAndEntriesInThisOrder()
    {
        using Data = Functions::ModuleData;
        QCOMPARE(offsetOf(&Data::moduleName), std::ptrdiff_t(0));
        QCOMPARE(offsetOf(&Data::selectorTypeList), std::ptrdiff_t(sizeof(QString)));
        QCOMPARE(sizeof(Data), sizeof(QString) + sizeof(QVector<QString>));
        QVERIFY(Data().moduleName.isNull());
        QVERIFY(std::is_copy_assignable<Data>::value);
    }
};

QTEST_GUILESS_MAIN(ModuleDataTest)
#include "ModuleDataTest.moc"
