// SPDX-License-Identifier: MIT
// Places that can be browsed.
#include "BrowsePlace.h"

#include <QtTest>

class BrowsePlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesAreTakenApart_data();
    void placesAreTakenApart();
    void emptyPartsAreRefused_data();
    void emptyPartsAreRefused();
};

void BrowsePlaceTest::placesAreTakenApart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("parts");

    QTest::newRow("a module") << "M" << int(BrowsePlace::Module) << "M|||";
    QTest::newRow("a module with a slash") << "M/" << int(BrowsePlace::Module) << "M|||";
    QTest::newRow("an object") << "M/O" << int(BrowsePlace::Object) << "M|O||";
    QTest::newRow("the instance without a name") << "M/O/" << int(BrowsePlace::Instance) << "M|O||";
    QTest::newRow("an instance") << "M/O/1" << int(BrowsePlace::Instance) << "M|O|1|";
    QTest::newRow("an instance with a slash") << "M/O/1/" << int(BrowsePlace::Instance) << "M|O|1|";
    QTest::newRow("a group") << "M/O/1/a/b" << int(BrowsePlace::Instance) << "M|O|1|a/b";
    QTest::newRow("a group of the instance without a name")
        << "M/O//a" << int(BrowsePlace::Instance) << "M|O||a";
    QTest::newRow("a selector URL")
        << "processdata://M/O/1/a" << int(BrowsePlace::Instance) << "M|O|1|a";
    QTest::newRow("encoded names") << "M%20x/O" << int(BrowsePlace::Object) << "M x|O||";
}

void BrowsePlaceTest::placesAreTakenApart()
{
    QFETCH(QString, text);
    QFETCH(int, level);
    QFETCH(QString, parts);
    BrowsePlace place;
    QString error;

    QVERIFY2(parseBrowsePlace(text, place, error), qPrintable(error));

    QCOMPARE(int(place.level), level);
    QCOMPARE(QStringList({place.module, place.object, place.instance, place.group}).join('|'),
             parts);
}

void BrowsePlaceTest::emptyPartsAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << "";
    QTest::newRow("no module") << "/O";
    QTest::newRow("no object") << "M//1";
    QTest::newRow("an empty group") << "M/O/1//a";
}

void BrowsePlaceTest::emptyPartsAreRefused()
{
    QFETCH(QString, text);
    BrowsePlace place;
    QString error;

    QVERIFY(!parseBrowsePlace(text, place, error));

    QCOMPARE(error, QString("\"%1\" has an empty part; expected MODULE/OBJECT/INSTANCE").arg(text));
}

QTEST_APPLESS_MAIN(BrowsePlaceTest)
#include "BrowsePlaceTest.moc"
