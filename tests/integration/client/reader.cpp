// SPDX-License-Identifier: MIT
// A client that reads its only selector again and again, and prints what it reads when that changes:
// error type and value; with a property's name, also that property when it is announced.
//
// usage: integration-reader URL [PROPERTY]
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    SelectorHandlerProcessValue handler({QString(argv[1])}, nullptr);
    QObject::connect(
        &handler, QOverload<QVector<int>>::of(&SelectorHandlerProcessValue::propertyChanged), [&] {
            if (argc > 2) {
                const QVariant property = handler.getProperty(QString(argv[2]), 0);
                std::printf("%s %s\n", argv[2], qPrintable(property.toString()));
                std::fflush(stdout);
            }
        });
    QByteArray last;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        const ProcessValue value = handler.getValue(0);
        const QByteArray line = QByteArray::number(int(value.getErrorType())) + ' '
            + value.getValue().toString().toUtf8();
        if (line != last) {
            std::puts(line.constData());
            std::fflush(stdout);
        }
        last = line;
    });
    timer.start(20);
    return QCoreApplication::exec();
}
