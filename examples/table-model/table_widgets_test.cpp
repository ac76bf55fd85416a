// SPDX-License-Identifier: MIT
// Edits values in a table that nobody sees.
#include "SelectorTableModel.h"
#include "TableWindow.h"

#include <ScriptedPlatform.h>

#include <QLineEdit>
#include <QStatusBar>
#include <QTableView>
#include <QtTest>

namespace {

struct Window
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source("PumpStation", "Pump", "1");
    SelectorTableModel model;
    TableWindow window{model};

    Window()
    {
        source.leaf("setpoint", 0.123456).leaf("running", true);
        model.setSelectorUrls({source.urlOf("setpoint"), source.urlOf("running")});
        window.show();
    }

    // Opens a cell as a double click does.
    QLineEdit *edit(int row)
    {
        const QModelIndex cell = model.index(row, SelectorTableModel::ValueColumn);
        window.table().setCurrentIndex(cell);
        window.table().edit(cell);
        return window.table().findChild<QLineEdit *>();
    }

    int writes(const QString &path) { return source.at(path).written().size(); }
};
}

// Editors take in what was typed when the event loop runs again.
#define LEAVE(shown, editor)                                                                       \
    QTest::keyClick(editor, Qt::Key_Return);                                                       \
    QTRY_VERIFY_WITH_TIMEOUT((shown).window.table().findChild<QLineEdit *>() == nullptr, 20000)

class TableWidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCellThatIsLeftWithoutTypingWritesNothing();
    void anEditorThatNobodyTypedInFollowsItsValue();
    void whatIsTypedIsWrittenAndStaysWhileItIsTyped();
    void aRefusedValueIsReported();
};

void TableWidgetsTest::aCellThatIsLeftWithoutTypingWritesNothing()
{
    Window shown;
    for (const int row : {0, 1}) {
        QLineEdit *const editor = shown.edit(row);
        QVERIFY(editor != nullptr);
        LEAVE(shown, editor);
    }
    QCOMPARE(shown.writes("setpoint"), 0);
    QCOMPARE(shown.writes("running"), 0);
}

void TableWidgetsTest::anEditorThatNobodyTypedInFollowsItsValue()
{
    Window shown;
    QLineEdit *const editor = shown.edit(0);
    QVERIFY(editor != nullptr);
    QCOMPARE(editor->text(), QString("0.123456"));

    shown.source.at("setpoint").holds(7.25);
    shown.model.readValues();

    QCOMPARE(editor->text(), QString("7.25"));
    LEAVE(shown, editor);
    QCOMPARE(shown.writes("setpoint"), 0);
    QCOMPARE(shown.source.at("setpoint").value().getValue(), QVariant(7.25));
}

void TableWidgetsTest::whatIsTypedIsWrittenAndStaysWhileItIsTyped()
{
    Window shown;
    QLineEdit *const editor = shown.edit(0);
    QVERIFY(editor != nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "2.5");

    shown.source.at("setpoint").holds(7.25);
    shown.model.readValues();

    QCOMPARE(editor->text(), QString("2.5"));
    LEAVE(shown, editor);
    QCOMPARE(shown.writes("setpoint"), 1);
    QCOMPARE(shown.source.at("setpoint").value().getValue(), QVariant("2.5"));
}

void TableWidgetsTest::aRefusedValueIsReported()
{
    Window shown;
    shown.source.at("setpoint").refusesWrites();
    QLineEdit *editor = shown.edit(0);
    QVERIFY(editor != nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "99999");
    LEAVE(shown, editor);

    QCOMPARE(shown.window.statusBar()->currentMessage(),
             "\"99999\" was refused, " + shown.source.urlOf("setpoint") + " keeps its value");

    editor = shown.edit(1);
    QVERIFY(editor != nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, "false");
    LEAVE(shown, editor);
    QCOMPARE(shown.window.statusBar()->currentMessage(), QString());
}

QTEST_MAIN(TableWidgetsTest)
#include "table_widgets_test.moc"
