// SPDX-License-Identifier: MIT
// Shows the list of Qt Quick in a window that nobody sees, and edits a value in it.
#include "SelectorTableModel.h"

#include <ScriptedPlatform.h>

#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QtTest>

namespace {

// Depth first, in the order in which the lines stand.
void collectTexts(const QQuickItem *item, QStringList &texts, QQuickItem *&input)
{
    const auto children = item->childItems();
    for (QQuickItem *const child : children) {
        if (child->property("text").isValid()) {
            texts += child->property("text").toString();
            if (child->inherits("QQuickTextInput") && !child->property("readOnly").toBool()) {
                input = child;
            }
        }
        collectTexts(child, texts, input);
    }
}

// A list of one value, shown and focused.
struct List
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source("PumpStation", "Pump", "1");
    SelectorTableModel model;
    QQuickView view;
    QQuickItem *input = nullptr;

    List()
    {
        source.leaf("setpoint", 1450);
        source.at("setpoint").property("unit", "1/min");
        model.setSelectorUrls({source.urlOf("setpoint")});
        view.rootContext()->setContextProperty("selectors", &model);
        view.setSource(QUrl("qrc:/Table.qml"));
        view.show();
        view.requestActivate();
    }

    QStringList texts()
    {
        QStringList found;
        collectTexts(view.rootObject(), found, input);
        return found;
    }

    QString text() const { return input->property("text").toString(); }
    QString refusal() const
    {
        return view.rootObject()->findChild<QQuickItem *>("refusal")->property("text").toString();
    }
    int writes() { return source.at("setpoint").written().size(); }

    void type(const char *keys)
    {
        QMetaObject::invokeMethod(input, "selectAll");
        for (const char *key = keys; *key != '\0'; ++key) {
            QTest::keyClick(&view, *key);
        }
    }
};

const QStringList line{"1450", "1/min", "", ""}; // behind the selector
}

#define OPEN(list)                                                                                 \
    QCOMPARE(list.view.status(), QQuickView::Ready);                                               \
    QTRY_COMPARE_WITH_TIMEOUT(list.texts(), QStringList{list.source.urlOf("setpoint")} + line,     \
                              20000);                                                              \
    QVERIFY(list.input != nullptr);                                                                \
    list.input->forceActiveFocus();                                                                \
    QTRY_VERIFY_WITH_TIMEOUT(list.input->hasActiveFocus(), 20000)

class TableQuickTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsTypedIsWritten();
    void aValueThatIsLeftWithoutTypingIsNotWritten();
    void whatIsTypedStaysWhileItsValueChanges();
    void aRefusedValueIsReported();
};

void TableQuickTest::whatIsTypedIsWritten()
{
    List list;
    OPEN(list);

    list.type("900");
    QTest::keyClick(&list.view, Qt::Key_Return);

    QCOMPARE(list.source.at("setpoint").value().getValue(), QVariant("900"));
    list.source.at("setpoint").holds(1000);
    list.model.readValues();
    QTRY_COMPARE_WITH_TIMEOUT(list.text(), QString("1000"), 20000);
}

void TableQuickTest::aValueThatIsLeftWithoutTypingIsNotWritten()
{
    List list;
    OPEN(list);

    list.source.at("setpoint").holds(1000);
    list.model.readValues();
    QTRY_COMPARE_WITH_TIMEOUT(list.text(), QString("1000"), 20000);
    list.source.at("setpoint").holds(1100); // not shown yet
    QTest::keyClick(&list.view, Qt::Key_Return);

    QCOMPARE(list.writes(), 0);
    QCOMPARE(list.source.at("setpoint").value().getValue(), QVariant(1100));
}

void TableQuickTest::whatIsTypedStaysWhileItsValueChanges()
{
    List list;
    OPEN(list);

    list.type("90");
    list.source.at("setpoint").holds(1000);
    list.model.readValues();
    list.input->setProperty("cursorPosition", 2);
    QTest::keyClick(&list.view, '0');
    QCOMPARE(list.text(), QString("900"));
    QTest::keyClick(&list.view, Qt::Key_Return);
    QCOMPARE(list.source.at("setpoint").value().getValue(), QVariant("900"));

    list.type("5");
    QTest::keyClick(&list.view, Qt::Key_Escape);
    QCOMPARE(list.text(), QString("900"));
    QTest::keyClick(&list.view, Qt::Key_Return);
    QCOMPARE(list.writes(), 1);
}

void TableQuickTest::aRefusedValueIsReported()
{
    List list;
    OPEN(list);
    list.source.at("setpoint").refusesWrites();

    list.type("99999");
    QTest::keyClick(&list.view, Qt::Key_Return);

    QCOMPARE(list.text(), QString("1450"));
    QCOMPARE(list.refusal(),
             "\"99999\" was refused, " + list.source.urlOf("setpoint") + " keeps its value");
}

QTEST_MAIN(TableQuickTest)
#include "table_quick_test.moc"
