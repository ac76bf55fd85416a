// SPDX-License-Identifier: MIT
// Tests the table model without any service: no bus, no shared memory, no other process.
#include "SelectorTableModel.h"

#include <ScriptedPlatform.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

struct Table
{
    ScriptedPlatform platform;
    ScriptedSource source = platform.source("PumpStation", "Pump", "1");
    std::unique_ptr<SelectorTableModel> model;
    std::unique_ptr<QAbstractItemModelTester> tester;

    Table()
    {
        source.leaf("speed", 1450.5).leaf("setpoint", 1450).leaf("serial", QByteArray("\x01\xab"));
        source.at("speed").property("unit", "1/min").property("readOnly", true).readOnly();
        source.at("setpoint").property("unit", "1/min");
        model = std::make_unique<SelectorTableModel>();
        tester = std::make_unique<QAbstractItemModelTester>(
            model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        model->setSelectorUrls({source.urlOf("speed"), source.urlOf("setpoint"),
                                source.urlOf("nothing"), source.urlOf("serial")});
    }

    QVariant at(int row, int column) const { return model->index(row, column).data(); }
};

constexpr int speed = 0;
constexpr int setpoint = 1;
constexpr int nothing = 2;
constexpr int serial = 3;

QPair<int, int> rowsOf(const QList<QVariant> &change)
{
    return {change.at(0).toModelIndex().row(), change.at(1).toModelIndex().row()};
}
}

class SelectorTableModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRowTellsValueUnitAndError();
    void onlyChangedRowsAreTold();
    void aWritableValueIsEditedInItsPlace();
    void aRefusedValueLeavesTheRowAsItWas();
    void bytesAreWrittenAsTheyAreShown();
    void aChangedUnitIsTold();
    void aServiceThatComesUpFillsItsRows();
    void viewsOfQtQuickFindRoles();
};

void SelectorTableModelTest::aRowTellsValueUnitAndError()
{
    const Table table;
    QCOMPARE(table.model->rowCount(), 4);
    QCOMPARE(table.at(speed, SelectorTableModel::ValueColumn), QVariant(1450.5));
    QCOMPARE(table.at(speed, SelectorTableModel::UnitColumn), QVariant("1/min"));
    QCOMPARE(table.at(speed, SelectorTableModel::ErrorColumn), QVariant(QString()));
    QCOMPARE(table.at(nothing, SelectorTableModel::ErrorColumn), QVariant("no value"));
    QVERIFY(!table.at(nothing, SelectorTableModel::ValueColumn).isValid());
    QCOMPARE(table.at(serial, SelectorTableModel::ValueColumn), QVariant("0x01ab"));
    QCOMPARE(table.model->headerData(1, Qt::Horizontal, Qt::DisplayRole), QVariant("Value"));
}

void SelectorTableModelTest::onlyChangedRowsAreTold()
{
    Table table;
    const QSignalSpy changes(table.model.get(), &QAbstractItemModel::dataChanged);
    table.model->readValues();
    QCOMPARE(changes.size(), 0);

    table.source.at("speed").holds(1460.0);
    table.source.at("setpoint").holds(1460);
    table.source.at("serial").holds(QByteArray("\x02"), ProcessDataDefinitions::SourceLost);
    table.model->readValues();
    QCOMPARE(changes.size(), 2);
    QCOMPARE(rowsOf(changes.at(0)), qMakePair(speed, setpoint));
    QCOMPARE(rowsOf(changes.at(1)), qMakePair(serial, serial));
    QCOMPARE(table.at(serial, SelectorTableModel::ErrorColumn), QVariant("service is gone"));
}

void SelectorTableModelTest::aWritableValueIsEditedInItsPlace()
{
    Table table;
    const QModelIndex cell = table.model->index(setpoint, SelectorTableModel::ValueColumn);
    QVERIFY(cell.flags() & Qt::ItemIsEditable);
    QVERIFY(table.model->setData(cell, "900", Qt::EditRole));
    QCOMPARE(table.source.at("setpoint").written().size(), 1);
    QCOMPARE(cell.data(), QVariant("900"));

    for (const int row : {speed, nothing}) {
        const QModelIndex other = table.model->index(row, SelectorTableModel::ValueColumn);
        QVERIFY(!(other.flags() & Qt::ItemIsEditable));
        QVERIFY(!table.model->setData(other, "1", Qt::EditRole));
    }
    QVERIFY(table.source.at("speed").written().isEmpty());
}

void SelectorTableModelTest::aRefusedValueLeavesTheRowAsItWas()
{
    Table table;
    table.source.at("setpoint").refusesWrites();
    const QModelIndex cell = table.model->index(setpoint, SelectorTableModel::ValueColumn);
    const QSignalSpy refusals(table.model.get(), &SelectorTableModel::valueRefused);
    QVERIFY(!table.model->setData(cell, "99999", Qt::EditRole));
    QCOMPARE(cell.data(), QVariant(1450));
    QCOMPARE(refusals.size(), 1);
    QCOMPARE(refusals.at(0), (QVariantList{table.source.urlOf("setpoint"), "99999"}));
}

void SelectorTableModelTest::bytesAreWrittenAsTheyAreShown()
{
    Table table;
    const QModelIndex cell = table.model->index(serial, SelectorTableModel::ValueColumn);
    QVERIFY(table.model->setData(cell, "0x00fF", Qt::EditRole));
    QCOMPARE(table.source.at("serial").value().getValue(), QVariant(QByteArray("\x00\xff", 2)));

    for (const char *const text : {"00ff", "0x0", "0xgg"}) {
        QVERIFY2(!table.model->setData(cell, text, Qt::EditRole), text);
    }
    QCOMPARE(table.source.at("serial").written().size(), 1);
}

void SelectorTableModelTest::aChangedUnitIsTold()
{
    Table table;
    const QSignalSpy changes(table.model.get(), &QAbstractItemModel::dataChanged);
    table.source.at("speed").property("unit", "Hz");
    table.source.changeProperties();
    QVERIFY(changes.size() > 0);
    QCOMPARE(table.at(speed, SelectorTableModel::UnitColumn), QVariant("Hz"));
}

void SelectorTableModelTest::aServiceThatComesUpFillsItsRows()
{
    Table table;
    table.source.disappears();
    table.model->setSelectorUrls({table.source.urlOf("setpoint")});
    QCOMPARE(table.at(0, SelectorTableModel::ErrorColumn), QVariant("no value"));

    table.source.returns();
    QCOMPARE(table.at(0, SelectorTableModel::ValueColumn), QVariant(1450));
    QCOMPARE(table.at(0, SelectorTableModel::UnitColumn), QVariant("1/min"));
}

void SelectorTableModelTest::viewsOfQtQuickFindRoles()
{
    Table table;
    const QHash<int, QByteArray> names = table.model->roleNames();
    const QModelIndex row = table.model->index(setpoint, 0);
    QVariantMap found;
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        found.insert(it.value(), row.data(it.key()));
    }
    QCOMPARE(found,
             (QVariantMap{{"selector", table.source.urlOf("setpoint")},
                          {"value", 1450},
                          {"unit", "1/min"},
                          {"error", QString()},
                          {"writable", true}}));
    QVERIFY(table.model->setData(row, 900, table.model->roleNames().key("value")));
    QCOMPARE(table.source.at("setpoint").value().getValue(), QVariant(900));
}

QTEST_GUILESS_MAIN(SelectorTableModelTest)
#include "selector_table_model_test.moc"
