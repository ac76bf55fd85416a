// SPDX-License-Identifier: MIT
// The index list as a meta-type: registered when it is needed and not before.
#include "SelectorHandlerProcessValue.h"
#include "Selectors.h"
#include "UnlikePlatform.h"
#include "WarningLog.h"

#include <QMetaMethod>
#include <QSequentialIterable>
#include <QThread>
#include <QtTest>

namespace {

const auto descriptionSignal
    = QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::processDataDescriptionChanged);

} // namespace

class IndexListTypeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The first two: nothing in this process has asked for the type yet.
    void nothingIsRegisteredByMakingUsingAndConnectingAHandlerDirectly()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        received = 0;
        QVERIFY(connect(&handler, SIGNAL(processDataDescriptionChanged(QVector<int>)), this,
                        SLOT(take(QVector<int>))));
        script.at("a").property("unit", "K");

        script.changeDescription();

        QCOMPARE(received, 1);
        QCOMPARE(QMetaType::type("QVector<int>"), int(QMetaType::UnknownType));
    }

    // Qt 5.15 drops queued arguments of a type that nobody registered.
    void anAutomaticConnectionToAnotherThreadDoesNotRegisterTheType()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({on("a")}, nullptr);
        QThread thread;
        QObject client;
        client.moveToThread(&thread);
        connect(&handler, descriptionSignal, &client, [this] { ++received; });
        script.at("a").property("unit", "K");
        received = 0;
        const WarningLog warnings;

        script.changeDescription();

        QCOMPARE(warnings.texts().size(), 1);
        QVERIFY(warnings.texts().first().startsWith(
            "QObject::connect: Cannot queue arguments of type 'QVector<int>'"));
        QCOMPARE(received, 0);
        QCOMPARE(QMetaType::type("QVector<int>"), int(QMetaType::UnknownType));
    }

    void askingTheMetaObjectForTheArgumentRegistersTypeAndConverter_data()
    {
        QTest::addColumn<int>("method");
        QTest::newRow("description") << 0;
        QTest::newRow("properties") << 1;
    }

    void askingTheMetaObjectForTheArgumentRegistersTypeAndConverter()
    {
        QFETCH(int, method);
        const QMetaObject &metaObject = SelectorHandlerProcessValue::staticMetaObject;

        const int type = metaObject.method(metaObject.methodOffset() + method).parameterType(0);

        QVERIFY(type != QMetaType::UnknownType);
        QCOMPARE(QMetaType::typeName(type), "QVector<int>");
        QCOMPARE(QMetaType::type("QVector<int>"), type);
        QVERIFY(QMetaType::hasRegisteredConverterFunction(
            type, qMetaTypeId<QtMetaTypePrivate::QSequentialIterableImpl>()));
        const QVector<int> list{4, 7};
        const QVariant variant(type, &list);
        QCOMPARE(variant.value<QSequentialIterable>().size(), 2);
    }

    void aQueuedConnectionThenDeliversTheList()
    {
        UnlikePlatform platform;
        ScriptedSource &script = platform.source("boiler", "sensors", "1").leaf("a", 1);
        SelectorHandlerProcessValue handler({off("a"), on("a")}, nullptr);
        received = 0;
        const WarningLog warnings;
        QVERIFY(connect(&handler, SIGNAL(propertyChanged(QVector<int>)), this,
                        SLOT(take(QVector<int>)), Qt::QueuedConnection));
        script.at("a").property("unit", "K");

        script.changeProperties();

        QCOMPARE(received, 0);
        QTRY_COMPARE(received, 1);
        QCOMPARE(last, QVector<int>{1});
        QCOMPARE(warnings.texts(), QStringList());
    }

public Q_SLOTS:
    void take(const QVector<int> &indexList)
    {
        ++received;
        last = indexList;
    }

private:
    int received = 0;
    QVector<int> last;
};

QTEST_GUILESS_MAIN(IndexListTypeTest)
#include "IndexListTypeTest.moc"
