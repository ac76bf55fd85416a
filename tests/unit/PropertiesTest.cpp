// SPDX-License-Identifier: MIT
// Properties by position and the JSON text of a leaf.
#include "Internals.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

#include <limits>

class PropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anIndexOutsideTheListIsRefused_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("expected");
        QTest::newRow("before the first")
            << 2 << -1 << "Index -1 is not valid. Max possible index: 1";
        QTest::newRow("past the last") << 2 << 2 << "Index 2 is not valid. Max possible index: 1";
        QTest::newRow("no selectors") << 0 << 0 << "Index 0 is not valid. Max possible index: -1";
        QTest::newRow("no selectors, negative")
            << 0 << -1 << "Index -1 is not valid. Max possible index: -1";
        QTest::newRow("the greatest") << 2 << std::numeric_limits<int>::max()
                                      << "Index 2147483647 is not valid. Max possible index: 1";
        QTest::newRow("the least") << 2 << std::numeric_limits<int>::min()
                                   << "Index -2147483648 is not valid. Max possible index: 1";
    }

    void anIndexOutsideTheListIsRefused()
    {
        QFETCH(int, size);
        QFETCH(int, index);
        QFETCH(QString, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        SelectorHandlerProcessValue handler(QVector<QString>(size, on("a")), nullptr);
        WarningLog warnings;
        platform.forgetCalls();

        QVERIFY(!handler.getProperty("unit", index).isValid());
        QCOMPARE(warnings.texts(), QStringList{expected});
        QVERIFY(isLockFree(handler));

        warnings.clear();
        const QString text = handler.getPropertyAsJsonString(index);
        QVERIFY(text.isNull());
        QCOMPARE(warnings.texts(), QStringList{expected});
        QVERIFY(isLockFree(handler));
        QCOMPARE(platform.calls(), QStringList());
    }

    void onePropertyIsReadWithoutAskingWhetherItExists()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1")
            .leaf("a")
            .at("a")
            .property("unit", "K")
            .answersUnknownPropertiesWith("no such thing");
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QCOMPARE(handler.getProperty("unit", 0), QVariant("K"));
        QCOMPARE(handler.getProperty("colour", 0), QVariant("no such thing"));

        QCOMPARE(platform.calls(),
                 (QStringList{"ProcessDataValue[a#1]::readLeafProperty('unit')",
                              "ProcessDataValue[a#1]::readLeafProperty('colour')"}));
        QCOMPARE(warnings.texts(), QStringList());
    }

    void onePropertyOfAnUnresolvedSelectorIsInvalid()
    {
        UnlikePlatform platform;
        SelectorHandlerProcessValue handler({off("a")}, nullptr);
        const WarningLog warnings;

        QVERIFY(!handler.getProperty("unit", 0).isValid());

        QCOMPARE(warnings.texts(), QStringList{"Nullpointer access: SharedMemory not connected"});
        QVERIFY(isLockFree(handler));
    }

    void aPropertyOfAllSelectorsIsReadWhereItExists()
    {
        UnlikePlatform platform;
        ScriptedSource &source = platform.source("boiler", "sensors", "1").leaf("a").leaf("b");
        source.at("a").property("unit", "K").property("note", QVariant());
        source.at("b").answersUnknownPropertiesWith("no such thing");
        SelectorHandlerProcessValue handler({on("a"), off("a"), on("b"), on("a")}, nullptr);
        WarningLog warnings;
        platform.forgetCalls();

        const QVector<QVariant> units = handler.getProperties("unit");

        QCOMPARE(units, (QVector<QVariant>{"K", QVariant(), QVariant(), "K"}));
        QCOMPARE(platform.calls(),
                 (QStringList{"ProcessDataValue[a#1]::hasLeafProperty('unit')",
                              "ProcessDataValue[a#1]::readLeafProperty('unit')",
                              "ProcessDataValue[b#1]::hasLeafProperty('unit')",
                              "ProcessDataValue[a#1]::hasLeafProperty('unit')",
                              "ProcessDataValue[a#1]::readLeafProperty('unit')"}));
        QCOMPARE(warnings.texts(), QStringList{"Nullpointer access: SharedMemory not connected"});

        warnings.clear();
        QCOMPARE(handler.getProperties("colour").size(), 4);
        QVERIFY(!handler.getProperties("colour").at(2).isValid());
    }

    void eachUnresolvedSelectorIsReportedOnce()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").at("a").property("unit", "K");
        SelectorHandlerProcessValue handler({off("a"), on("a"), off("a")}, nullptr);
        const WarningLog warnings;

        QCOMPARE(handler.getProperties("unit"), (QVector<QVariant>{QVariant(), "K", QVariant()}));

        QCOMPARE(warnings.texts(),
                 (QStringList{"Nullpointer access: SharedMemory not connected",
                              "Nullpointer access: SharedMemory not connected"}));
    }

    void aHandlerWithoutSelectorsHasNoProperties()
    {
        UnlikePlatform platform;
        SelectorHandlerProcessValue handler(QVector<QString>(), nullptr);
        const WarningLog warnings;

        QCOMPARE(handler.getProperties("unit"), QVector<QVariant>());
        QCOMPARE(handler.getPropertiesAsJsonString(), QVector<QString>());
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theJsonTextIsServedFromTheRecordAndNotRenderedAnew()
    {
        UnlikePlatform platform;
        ScriptedSource &source = platform.source("boiler", "sensors", "1").leaf("a").leaf("b");
        source.at("a").rendersAs("{\"unit\":\"\xC2\xB0"
                                 "C\"}");
        source.at("b").rendersAs("{\"b\":1}");
        SelectorHandlerProcessValue handler({on("a"), off("a"), on("b"), "nonsense", on("no")},
                                            nullptr);
        const WarningLog warnings;
        platform.forgetCalls();

        QCOMPARE(handler.getPropertyAsJsonString(0), QString::fromUtf8("{\"unit\":\"\u00B0C\"}"));
        QCOMPARE(handler.getPropertyAsJsonString(1), QString("{\n}\n"));
        QCOMPARE(handler.getPropertyAsJsonString(2), QString("{\"b\":1}"));
        QCOMPARE(handler.getPropertyAsJsonString(4), QString("{\n}\n"));
        QCOMPARE(handler.getPropertiesAsJsonString(),
                 (QVector<QString>{QString::fromUtf8("{\"unit\":\"\u00B0C\"}"), "{\n}\n",
                                   "{\"b\":1}", "{\n}\n", "{\n}\n"}));

        QCOMPARE(platform.calls(), QStringList());
        QCOMPARE(warnings.texts(), QStringList());
    }

    void aLeafIsRenderedOnceByAParserOfItsOwn()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").leaf("b");

        SelectorHandlerProcessValue handler({on("b"), on("a")}, nullptr);

        QCOMPARE(
            platform.calls({"ConfigurationAndProcessDataParser"}),
            (QStringList{"ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser()",
                         "ConfigurationAndProcessDataParser::frameToByteArray(b#1, '', Compact)",
                         "~ConfigurationAndProcessDataParser",
                         "ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser()",
                         "ConfigurationAndProcessDataParser::frameToByteArray(a#1, '', Compact)",
                         "~ConfigurationAndProcessDataParser"}));
    }

    void theTextIsUtf8UpToTheFirstZeroByte_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("a zero byte ends it")
            << QByteArray("{\"a\":1}\0{\"b\":2}", 15) << "{\"a\":1}";
        QTest::newRow("a zero byte at the start") << QByteArray("\0{\"b\":2}", 8) << "";
        QTest::newRow("nothing") << QByteArray() << "";
        QTest::newRow("four bytes for one character")
            << QByteArray("\xF0\x9F\x94\xA5") << QString::fromUcs4(U"\U0001F525", 1);
        QTest::newRow("bytes that are no UTF-8") << QByteArray("a\xFF"
                                                               "b")
                                                 << QString(QStringLiteral("a\uFFFDb"));
        QTest::newRow("text that is no JSON") << QByteArray("}{ ,") << "}{ ,";
        static const char noZeroBehind[] = {'{', '}', 'X', '\0'};
        QTest::newRow("no zero byte behind its end")
            << QByteArray::fromRawData(noZeroBehind, 2) << "{}";
        QTest::newRow("a zero byte, but none behind its end")
            << QByteArray::fromRawData(noZeroBehind, 4) << "{}X";
    }

    void theTextIsUtf8UpToTheFirstZeroByte()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").at("a").rendersAs(bytes);
        const WarningLog warnings;

        SelectorHandlerProcessValue handler({on("a")}, nullptr);

        QCOMPARE(handler.getPropertyAsJsonString(0), expected);
        QCOMPARE(warnings.texts(), QStringList());
    }

    void theLockIsHeldWhileLeavesAreAskedAndFreeAfterwards()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a").at("a").property("unit", "K");
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QVector<bool> lockWasFree;
        const auto note = [&] { lockWasFree.append(isLockFree(handler)); };
        platform.during("ProcessDataValue::readLeafProperty", note);
        platform.during("ProcessDataValue::hasLeafProperty", note);

        handler.getProperty("unit", 0);
        QVERIFY(isLockFree(handler));
        handler.getProperties("unit");
        QVERIFY(isLockFree(handler));
        handler.getPropertyAsJsonString(0);
        QVERIFY(isLockFree(handler));
        handler.getPropertiesAsJsonString();
        QVERIFY(isLockFree(handler));

        QCOMPARE(lockWasFree, (QVector<bool>{false, false, false}));
    }
};

QTEST_GUILESS_MAIN(PropertiesTest)
#include "PropertiesTest.moc"
