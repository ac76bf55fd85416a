// SPDX-License-Identifier: MIT
// Shows the selectors given as arguments in a table of Qt Widgets; double-click a value to write it.
#include "SelectorTableModel.h"
#include "TableWindow.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    SelectorTableModel model;
    model.setSelectorUrls(QApplication::arguments().mid(1).toVector());
    model.startReading(200);

    TableWindow window(model);
    window.resize(800, 300);
    window.show();
    return QApplication::exec();
}
