// SPDX-License-Identifier: MIT
// Shows the selectors given as arguments in a table of Qt Widgets; double-click a value to write it.
#include "SelectorTableModel.h"

#include <QApplication>
#include <QHeaderView>
#include <QTableView>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    SelectorTableModel model;
    model.setSelectorUrls(QApplication::arguments().mid(1).toVector());
    model.startReading(200);

    QTableView view;
    view.setModel(&model);
    view.setWindowTitle(QStringLiteral("Selectors"));
    view.horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view.horizontalHeader()->setStretchLastSection(true);
    view.resize(800, 300);
    view.show();
    return QApplication::exec();
}
