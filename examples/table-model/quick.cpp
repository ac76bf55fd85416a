// SPDX-License-Identifier: MIT
// Shows the selectors given as arguments in a list of Qt Quick; edit a value to write it.
#include "SelectorTableModel.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQuickView>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    SelectorTableModel model;
    model.setSelectorUrls(QGuiApplication::arguments().mid(1).toVector());
    model.startReading(200);

    QQuickView view;
    view.setTitle(QStringLiteral("Selectors"));
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.rootContext()->setContextProperty(QStringLiteral("selectors"), &model);
    view.setSource(QUrl(QStringLiteral("qrc:/Table.qml")));
    if (view.status() == QQuickView::Error) {
        return 1; // Qt has told why
    }
    view.show();
    return QGuiApplication::exec();
}
