// SPDX-License-Identifier: MIT
// Names on the bus: escaping there and back, and the environment's settings.
#include "BusNames.h"
#include "BusSettings.h"
#include "CallDeadline.h"
#include "ErrorContainer.h"
#include "MessageLog.h"

#include <QDBusConnection>
#include <QSet>
#include <QtTest>

class BusNamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNameIsEscapedByteByByte_data();
    void aNameIsEscapedByteByByte();
    void everyTextSurvivesTheWayThereAndBack();
    void differentTextsNeverShareAName();
    void whatEscapingNeverWritesIsNotUnescaped_data();
    void whatEscapingNeverWritesIsNotUnescaped();
    void aServiceNameNeverExceedsWhatTheBusAllows();
    void aModuleIsToldFromItsServiceUnlessItsNameWasCut();
    void theTimeLimitComesFromTheEnvironment_data();
    void theTimeLimitComesFromTheEnvironment();
    void aBadTimeLimitWarnsOnceAndCountsAsTheDefault();
    void aTimeLimitOfTheProgramGoesBeforeTheEnvironments();
    void theBusComesFromTheEnvironment_data();
    void theBusComesFromTheEnvironment();
    void anErrorIsPrintedWithCodeAndTextAndLeavesTheStreamAsItWas();
};

void BusNamesTest::aNameIsEscapedByteByByte_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("inService");
    QTest::addColumn<QString>("inPath");

    QTest::newRow("letters and digits stand for themselves") << "Pump2b"
                                                             << "Pump2b"
                                                             << "Pump2b";
    QTest::newRow("a leading digit may not begin a bus name") << "2Pump"
                                                              << "_32Pump"
                                                              << "2Pump";
    QTest::newRow("only the first digit is escaped") << "42"
                                                     << "_342"
                                                     << "42";
    QTest::newRow("the escape sign itself") << "a_b"
                                            << "a_5fb"
                                            << "a_5fb";
    QTest::newRow("a hyphen") << "a-b"
                              << "a_2db"
                              << "a_2db";
    QTest::newRow("a dot and a slash") << "a.b/c"
                                       << "a_2eb_2fc"
                                       << "a_2eb_2fc";
    QTest::newRow("two bytes of UTF-8") << QString::fromUtf8("ü") << "_c3_bc"
                                        << "_c3_bc";
    QTest::newRow("nothing") << ""
                             << "_"
                             << "_";
}

void BusNamesTest::aNameIsEscapedByteByByte()
{
    QFETCH(QString, text);

    QTEST(BusNames::escape(text, BusNames::Element::ServiceName), "inService");
    QTEST(BusNames::escape(text, BusNames::Element::ObjectPath), "inPath");
}

void BusNamesTest::everyTextSurvivesTheWayThereAndBack()
{
    constexpr uint byteOrderMark = 0xfeff;
    for (uint character = 0; character <= byteOrderMark; ++character) {
        if (QChar::isSurrogate(character)) {
            continue; // half a character
        }
        for (const QString &text :
             {QString(QChar(character)), QString("a") + QChar(character) + "1",
              QString("a") + QChar(character)}) {
            for (const auto element :
                 {BusNames::Element::ServiceName, BusNames::Element::ObjectPath}) {
                const std::optional<QString> back
                    = BusNames::unescape(BusNames::escape(text, element));
                QVERIFY2(back.has_value() && *back == text, qPrintable(text));
            }
        }
    }
}

void BusNamesTest::differentTextsNeverShareAName()
{
    const QStringList texts{"",    "_",   "__",  "a",   "_a",  "a_", "_5f", "5f",
                            "_61", "a.b", "a_b", "a-b", "a/b", "1",  "_31", "31",
                            "A",   "ab",  "a b", "ä",   "a\n", "1a", "_1a"};
    QSet<QString> services;
    QSet<QString> paths;
    for (const QString &text : texts) {
        services += BusNames::serviceOfModule(text);
        paths += BusNames::pathOfObject(text);
    }

    QCOMPARE(services.size(), texts.size());
    QCOMPARE(paths.size(), texts.size());
}

void BusNamesTest::whatEscapingNeverWritesIsNotUnescaped_data()
{
    QTest::addColumn<QString>("escaped");

    QTest::newRow("nothing at all") << "";
    QTest::newRow("an escape cut off") << "a_5";
    QTest::newRow("an escape sign at the end") << "a_";
    QTest::newRow("no hexadecimal digits") << "_zz";
    QTest::newRow("upper-case digits") << "_5F";
    QTest::newRow("a letter escaped without need") << "_61";
    QTest::newRow("a digit escaped without need") << "a_31";
    QTest::newRow("invalid UTF-8") << "_ff";
    QTest::newRow("a character that stands in no name") << "a-b";
}

void BusNamesTest::whatEscapingNeverWritesIsNotUnescaped()
{
    QFETCH(QString, escaped);

    QVERIFY(!BusNames::unescape(escaped).has_value());
}

void BusNamesTest::aServiceNameNeverExceedsWhatTheBusAllows()
{
    const QString fits(231, 'm');
    const QString long1 = QString(300, 'm') + "1";
    const QString long2 = QString(300, 'm') + "2";

    QCOMPARE(BusNames::serviceOfModule(fits), "com.orvalis.ProcessData." + fits);
    QCOMPARE(BusNames::serviceOfModule(fits + "m").size(), 255);
    QCOMPARE(BusNames::serviceOfModule(long1).size(), 255);
    QVERIFY(BusNames::serviceOfModule(long1) != BusNames::serviceOfModule(long2));
}

void BusNamesTest::aModuleIsToldFromItsServiceUnlessItsNameWasCut()
{
    for (const char *module : {"Pump2b", "42", "a-b", ""}) {
        const auto back = BusNames::moduleOfService(BusNames::serviceOfModule(module));
        QVERIFY2(back.has_value() && *back == module, module);
    }
    QVERIFY(!BusNames::moduleOfService(BusNames::serviceOfModule(QString(300, 'm'))));
    for (const char *service : {"com.orvalis.ProcessData", "com.orvalis.Other.Pump", ":1.7",
                                "com.orvalis.ProcessData.42", "com.orvalis.ProcessData.a.b"}) {
        QVERIFY2(!BusNames::moduleOfService(service), service);
    }
}

void BusNamesTest::theTimeLimitComesFromTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("limit");

    QTest::newRow("nothing: two seconds") << QByteArray() << 2000;
    QTest::newRow("the shortest") << QByteArray("1") << 1;
    QTest::newRow("the longest") << QByteArray("600000") << 600000;
}

void BusNamesTest::theTimeLimitComesFromTheEnvironment()
{
    QFETCH(QByteArray, text);
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", text);
    const MessageLog warnings;

    QTEST(callTimeLimit(), "limit");

    QCOMPARE(warnings.texts(), QStringList());
}

void BusNamesTest::aBadTimeLimitWarnsOnceAndCountsAsTheDefault()
{
    const MessageLog warnings;
    for (const char *text : {"soon", "soon", "0", "600001", "-5", "1.5"}) {
        qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", text);

        QCOMPARE(callTimeLimit(), 2000);
    }

    qunsetenv("PROCESSDATA_DBUS_TIMEOUT_MS");
    QCOMPARE(warnings.texts().size(), 5);
    QCOMPARE(
        warnings.texts().first(),
        QString("processdata.bus: PROCESSDATA_DBUS_TIMEOUT_MS is \"soon\" and must be a number of "
                "milliseconds from 1 to 600000 - using 2000"));
}

void BusNamesTest::aTimeLimitOfTheProgramGoesBeforeTheEnvironments()
{
    qputenv("PROCESSDATA_DBUS_TIMEOUT_MS", "70");
    setCallTimeLimit(900000);
    QCOMPARE(callTimeLimit(), 900000);
    setCallTimeLimit(0);
    QCOMPARE(callTimeLimit(), 70);
    qunsetenv("PROCESSDATA_DBUS_TIMEOUT_MS");
}

void BusNamesTest::theBusComesFromTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("label");

    QTest::newRow("nothing: the system bus") << QByteArray() << "the system bus at unix:path=/sys";
    QTest::newRow("system") << QByteArray("system") << "the system bus at unix:path=/sys";
    QTest::newRow("session") << QByteArray("session") << "the session bus at unix:path=/ses";
    QTest::newRow("an address") << QByteArray("unix:path=/x") << "the bus at unix:path=/x";
}

void BusNamesTest::theBusComesFromTheEnvironment()
{
    QFETCH(QByteArray, text);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/sys");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/ses");
    qputenv("PROCESSDATA_BUS", text);

    QTEST(BusChoice::fromEnvironment().label(), "label");
}

void BusNamesTest::anErrorIsPrintedWithCodeAndTextAndLeavesTheStreamAsItWas()
{
    QString text;

    QDebug(&text) << "DBus error" << ErrorContainer(4, "no \"one\" there") << "after" << 1;

    QCOMPARE(text.trimmed(),
             QString("DBus error ErrorContainer(4, \"no \\\"one\\\" there\") after 1"));
}

QTEST_GUILESS_MAIN(BusNamesTest)

#include "BusNamesTest.moc"
