// SPDX-License-Identifier: MIT
// Publishes one instance with a counter and a setpoint that clients may write, until it is ended.
#include <ProcessDataPublisher.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTextStream>
#include <QTimer>

#include <csignal>

namespace {

const char *const description = R"({
  "format": "process-data-description/1", "module": "Example", "object": "Counter", "instance": "1",
  "elements": [
    { "name": "count", "type": "uint32", "readOnly": true, "description": "Seconds since the start" },
    { "name": "step", "type": "int32", "minimum": 1, "maximum": 100, "description": "Added each time" } ] })";

volatile std::sig_atomic_t ended = 0;

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv); // its event loop answers clients
    QTextStream out(stdout);
    QString error;
    const auto publisher = ProcessDataPublisher::create(
        QStringLiteral("Example"), QStringLiteral("Counter"), QStringLiteral("1"),
        QJsonDocument::fromJson(description).object(), &error);
    if (!publisher) {
        QTextStream(stderr) << error << '\n';
        return 1;
    }
    publisher->publish(QStringLiteral("count"), QVariant(0U));
    publisher->publish(QStringLiteral("step"), QVariant(1));
    QObject::connect(publisher.data(), &ProcessDataPublisher::valueWritten,
                     [&out](const QString &path, const ProcessValue &value) {
                         out << path << " is now " << value.getValue().toString() << Qt::endl;
                     });

    std::signal(SIGINT, [](int) { ended = 1; });
    std::signal(SIGTERM, [](int) { ended = 1; });

    QTimer timer;
    uint count = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        count += publisher->value(QStringLiteral("step")).getValue().toUInt();
        publisher->publish(QStringLiteral("count"), QVariant(count));
        if (ended != 0) {
            QCoreApplication::quit(); // the publisher's destructor removes the buffer
        }
    });
    timer.start(1000);

    out << "publishing processdata://Example/Counter/1/count" << Qt::endl;
    return QCoreApplication::exec();
}
