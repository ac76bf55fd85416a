// SPDX-License-Identifier: MIT
// The selectors in a table of Qt Widgets, and what was refused below it.
#ifndef TABLEWINDOW_H
#define TABLEWINDOW_H

#include <QMainWindow>
#include <QStyledItemDelegate>

class QTableView;
class SelectorTableModel;

/// Edits values as text. An editor follows its value until somebody types, and writes only what was
/// typed: Qt's own editors write when they are left, in the digits that they show.
class ValueDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};

/// A table, and a status line that says what was refused. The model must outlive it.
class TableWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit TableWindow(SelectorTableModel &model);

    QTableView &table() const { return *view; }

private:
    QTableView *const view;
};

#endif
