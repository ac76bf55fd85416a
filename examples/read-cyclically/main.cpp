// SPDX-License-Identifier: MIT
// Reads the selectors given as arguments every 100 ms and prints a line of comma-separated values
// for each cycle, until it is ended: a small data logger.
#include <SelectorHandlerProcessValue.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int period = 100; // milliseconds

// A value that cannot be trusted leaves its column empty; the columns stay where they are.
QString column(const ProcessValue &value)
{
    return value.getErrorType() == ProcessDataDefinitions::NoError ? value.getValue().toString()
                                                                   : QString();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv); // its event loop brings announcements too
    const QVector<QString> urls = QCoreApplication::arguments().mid(1).toVector();
    QTextStream out(stdout);
    out.setCodec("UTF-8");

    // Services may come, go and change their descriptions: the library attaches again by itself,
    // and until then the values say that they cannot be trusted.
    SelectorHandlerProcessValue handler(nullptr);
    handler.setSelectorUrls(urls);

    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer); // the default may be 5 % late
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // One call for the whole cycle: its lock is taken once.
        const QVector<ProcessValue> values = handler.getValues();
        out << QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
        for (const ProcessValue &value : values) {
            out << ',' << column(value);
        }
        out << Qt::endl;
    });
    timer.start(period);
    return QCoreApplication::exec();
}
