// SPDX-License-Identifier: MIT
// A publisher in a process of its own that replaces its description on request.
#include "ChangingService.h"

#include "ProcessDataPublisher.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

const QString objectName = QStringLiteral("Bench");
const QString instanceName = QStringLiteral("1");

QJsonObject describe(int version)
{
    QJsonArray elements;
    for (int i = 0; i < ChangingService::leafCount; ++i) {
        elements.append(QJsonObject{{QStringLiteral("name"), QStringLiteral("leaf%1").arg(i)},
                                    {QStringLiteral("type"), QStringLiteral("float64")},
                                    {QStringLiteral("unit"), QStringLiteral("u%1").arg(version)},
                                    {QStringLiteral("minimum"), 0},
                                    {QStringLiteral("maximum"), 100000},
                                    {QStringLiteral("readOnly"), true},
                                    {QStringLiteral("selectorType"), QStringLiteral("Analog")}});
    }
    return {{QStringLiteral("format"), QStringLiteral("process-data-description/1")},
            {QStringLiteral("elements"), elements}};
}

} // namespace

ChangingService::ChangingService()
    : module(QStringLiteral("Change%1").arg(getpid()))
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--service"), module});
    if (!process.waitForReadyRead()) {
        qFatal("the publisher does not start");
    }
    process.readAll();
}

ChangingService::~ChangingService()
{
    process.closeWriteChannel();
    process.waitForFinished();
}

QString ChangingService::busName() const
{
    return QStringLiteral("com.orvalis.ProcessData.") + module;
}

QString ChangingService::path() const
{
    return QStringLiteral("/com/orvalis/ProcessData/") + objectName;
}

QString ChangingService::interface() const
{
    return QStringLiteral("com.orvalis.ProcessDescription1");
}

QVector<QString> ChangingService::urls() const
{
    QVector<QString> result;
    for (int i = 0; i < leafCount; ++i) {
        result.append(QStringLiteral("processdata://%1/%2/%3/leaf%4")
                          .arg(module, objectName, instanceName)
                          .arg(i));
    }
    return result;
}

void ChangingService::change()
{
    process.write("change\n");
    process.waitForBytesWritten();
}

int ChangingService::serve(const QString &module)
{
    QString error;
    const auto publisher
        = ProcessDataPublisher::create(module, objectName, instanceName, describe(0), &error);
    if (publisher.isNull()) {
        qFatal("%s", qPrintable(error));
    }
    QFile input;
    static_cast<void>(input.open(0, QIODevice::ReadOnly | QIODevice::Unbuffered));
    int version = 0;
    const QSocketNotifier orders(0, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, publisher.data(), [&] {
        if (input.readLine().isEmpty()) {
            QCoreApplication::quit();
        } else if (!publisher->replaceDescription(describe(++version), &error)) {
            qFatal("%s", qPrintable(error));
        }
    });
    static_cast<void>(write(1, "ready\n", 6));
    return QCoreApplication::exec();
}
