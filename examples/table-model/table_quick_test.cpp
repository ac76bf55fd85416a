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
}

class TableQuickTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineShowsAndWritesItsSelector();
};

void TableQuickTest::aLineShowsAndWritesItsSelector()
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source("PumpStation", "Pump", "1");
    source.leaf("setpoint", 1450);
    source.at("setpoint").property("unit", "1/min");
    SelectorTableModel model;
    model.setSelectorUrls({source.urlOf("setpoint")});

    QQuickView view;
    view.rootContext()->setContextProperty("selectors", &model);
    view.setSource(QUrl("qrc:/Table.qml"));
    QCOMPARE(view.status(), QQuickView::Ready);
    view.show();

    QStringList texts;
    QQuickItem *input = nullptr;
    const auto shown = [&] {
        texts.clear();
        collectTexts(view.rootObject(), texts, input);
        return texts;
    };
    QTRY_COMPARE_WITH_TIMEOUT(shown(), (QStringList{source.urlOf("setpoint"), "1450", "1/min", ""}),
                              20000);
    QVERIFY(input != nullptr);

    input->setProperty("text", "900");
    QVERIFY(QMetaObject::invokeMethod(input, "editingFinished"));
    QCOMPARE(source.at("setpoint").value().getValue().toInt(), 900);

    source.at("setpoint").refusesWrites();
    input->setProperty("text", "99999");
    QVERIFY(QMetaObject::invokeMethod(input, "editingFinished"));
    QCOMPARE(input->property("text").toString(), QString("900"));

    source.at("setpoint").holds(1000);
    model.readValues();
    QTRY_COMPARE_WITH_TIMEOUT(input->property("text").toString(), QString("1000"), 20000);
}

QTEST_MAIN(TableQuickTest)
#include "table_quick_test.moc"
