// SPDX-License-Identifier: MIT
// Reads the selectors given as arguments in a thread of its own; the main thread, where an
// application has its user interface, receives finished values and never waits.
#include "Reader.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QThread>

#include <csignal>

namespace {

volatile std::sig_atomic_t ended = 0;

} // namespace

int main(int argc, char *argv[])
{
    // For arguments of signals that cross threads. ProcessValue has no default constructor, so it
    // travels in a vector, which has one.
    qRegisterMetaType<QVector<ProcessValue>>("QVector<ProcessValue>");
    qRegisterMetaType<QVector<int>>("QVector<int>");

    QCoreApplication application(argc, argv);
    std::signal(SIGINT, [](int) { ended = 1; });
    std::signal(SIGTERM, [](int) { ended = 1; });
    QTextStream out(stdout);
    out.setCodec("UTF-8");

    QThread thread;
    auto *const reader = new Reader(QCoreApplication::arguments().mid(1).toVector());
    reader->moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, reader, &Reader::start);
    QObject::connect(&thread, &QThread::finished, reader, &QObject::deleteLater);

    // With the application as context the functions run in its thread.
    QObject::connect(reader, &Reader::valuesRead, &application,
                     [&out](const QVector<ProcessValue> &values) {
                         for (const ProcessValue &value : values) {
                             out << value.getValue().toString() << ' ';
                         }
                         out << Qt::endl;
                         if (ended != 0) {
                             QCoreApplication::quit();
                         }
                     });
    QObject::connect(reader, &Reader::selectorsChanged, &application,
                     [&out](const QVector<int> &indices) {
                         out << "changed: " << indices.size() << " selectors" << Qt::endl;
                     });
    thread.start();

    const int result = QCoreApplication::exec();
    thread.quit(); // the reader is destroyed in it, before it ends
    thread.wait();
    return result;
}
