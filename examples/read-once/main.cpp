// SPDX-License-Identifier: MIT
// Reads the selectors named on the command line once.
#include <SelectorHandlerProcessValue.h>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QVector<QString> urls = QCoreApplication::arguments().mid(1).toVector();

    SelectorHandlerProcessValue handler(urls, nullptr);
    const QVector<ProcessValue> values = handler.getValues(); // one for each URL, in that order

    QTextStream out(stdout);
    bool good = true;
    for (int i = 0; i < values.size(); ++i) {
        out << urls.at(i) << " = " << values.at(i).getValue().toString() << ' '
            << handler.getProperty(QStringLiteral("unit"), i).toString() << '\n';
        good = good && values.at(i).getErrorType() == ProcessDataDefinitions::NoError;
    }
    return good ? 0 : 1;
}
