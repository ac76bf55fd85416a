// SPDX-License-Identifier: MIT
// The selectors in a table of Qt Widgets, and what was refused below it.
#include "TableWindow.h"

#include "SelectorTableModel.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QStatusBar>
#include <QTableView>

QWidget *ValueDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    Q_UNUSED(option)
    Q_UNUSED(index)
    auto *const editor = new QLineEdit(parent);
    editor->setFrame(false);
    return editor;
}

// Also called each time that the value changes while its editor is open.
void ValueDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const line = qobject_cast<QLineEdit *>(editor);
    if (line != nullptr && !line->isModified()) {
        line->setText(index.data(Qt::EditRole).toString());
    }
}

void ValueDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                 const QModelIndex &index) const
{
    const auto *const line = qobject_cast<QLineEdit *>(editor);
    if (line != nullptr && line->isModified()) {
        model->setData(index, line->text(), Qt::EditRole);
    }
}

TableWindow::TableWindow(SelectorTableModel &model)
    : view(new QTableView(this))
{
    view->setModel(&model);
    view->setItemDelegateForColumn(SelectorTableModel::ValueColumn, new ValueDelegate(view));
    view->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view->horizontalHeader()->setStretchLastSection(true);
    setCentralWidget(view);
    setWindowTitle(tr("Selectors"));
    connect(&model, &SelectorTableModel::valueRefused, this,
            [this](const QString &selector, const QString &text) {
                statusBar()->showMessage(
                    tr("\"%1\" was refused, %2 keeps its value").arg(text, selector));
            });
    connect(&model, &SelectorTableModel::valueWritten, statusBar(), &QStatusBar::clearMessage);
}
