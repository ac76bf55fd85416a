// SPDX-License-Identifier: MIT
// The read-only flag and the text that a selector gets with its leaf.
#include "Internals.h"
#include "ProcessDataValue.h"
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QtTest>

class ReadOnlyFlagTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReadOnlyFlagIsTheLeafsPropertyAsABool_data()
    {
        QTest::addColumn<QVariant>("property");
        QTest::addColumn<bool>("expected");
        QTest::newRow("true") << QVariant(true) << true;
        QTest::newRow("false") << QVariant(false) << false;
        QTest::newRow("absent") << QVariant() << false;
        QTest::newRow("a number") << QVariant(2) << true;
        QTest::newRow("a text") << QVariant("false") << false;
        QTest::newRow("a map") << QVariant(QVariantMap()) << false;
    }

    void theReadOnlyFlagIsTheLeafsPropertyAsABool()
    {
        QFETCH(QVariant, property);
        QFETCH(bool, expected);
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1")
            .leaf("a")
            .at("a")
            .property("is-read-only", property);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QCOMPARE(recordsOf(handler).at(0).readOnly, expected);
        QCOMPARE(handler.setValue(valueOf(1), 0), !expected);
        QVERIFY(platform.calls().filter("hasLeafProperty").isEmpty());
    }

    void aLeafThatLacksTheReadOnlyPropertyIsReadOnlyIfItSaysSo()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1")
            .leaf("a")
            .at("a")
            .answersUnknownPropertiesWith(true);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QVERIFY(!handler.setValue(valueOf(1), 0));
    }

    void aLeafIsRenderedBeforeItsReadOnlyFlagIsRead()
    {
        UnlikePlatform platform;
        platform.source("boiler", "sensors", "1").leaf("a");
        const SelectorHandlerProcessValue handler({on("a")}, nullptr);
        const QStringList calls
            = platform.calls({"ConfigurationAndProcessDataParser", "ProcessDataValue"});
        QCOMPARE(calls.size(), 4);
        QCOMPARE(calls.at(1),
                 QString("ConfigurationAndProcessDataParser::frameToByteArray(a#1, '', Compact)"));
        QCOMPARE(calls.at(3), QString("ProcessDataValue[a#1]::readLeafProperty('is-read-only')"));
    }
};

QTEST_GUILESS_MAIN(ReadOnlyFlagTest)
#include "ReadOnlyFlagTest.moc"
