// SPDX-License-Identifier: MIT
// A publisher in a process of its own that replaces a description on request.
#include "ChangingService.h"

#include "ProcessDataPublisher.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

int leavesOf(int instance, int leavesOfFirst)
{
    constexpr int leavesOfOthers = 100;
    return instance == 1 ? leavesOfFirst : leavesOfOthers;
}

QString nextModule()
{
    static int last = 0;
    return QStringLiteral("Change%1x%2").arg(getpid()).arg(++last);
}

QJsonObject describe(int leaves, int version)
{
    QJsonArray elements;
    for (int i = 0; i < leaves; ++i) {
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

ChangingService::ChangingService(int sources, int leaves)
    : sources(sources)
    , leaves(leaves)
    , module(nextModule())
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(
        QCoreApplication::applicationFilePath(),
        {QStringLiteral("--service"), module, QString::number(sources), QString::number(leaves)});
    constexpr int startLimit = 120000; // milliseconds
    if (!process.waitForReadyRead(startLimit)) {
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
    return QStringLiteral("/com/orvalis/ProcessData/") + module;
}

QString ChangingService::interface()
{
    return QStringLiteral("com.orvalis.ProcessDescription1");
}

QVector<QString> ChangingService::urls() const
{
    QVector<QString> result;
    for (int instance = 1; instance <= sources; ++instance) {
        for (int i = 0; i < leavesOf(instance, leaves); ++i) {
            result.append(
                QStringLiteral("processdata://%1/%1/%2/leaf%3").arg(module).arg(instance).arg(i));
        }
    }
    return result;
}

void ChangingService::change()
{
    process.write("change\n");
    process.waitForBytesWritten();
}

int ChangingService::serve(const QString &module, int sources, int leaves)
{
    QString error;
    QVector<QSharedPointer<ProcessDataPublisher>> publishers;
    for (int instance = 1; instance <= sources; ++instance) {
        publishers += ProcessDataPublisher::create(module, module, QString::number(instance),
                                                   describe(leavesOf(instance, leaves), 0), &error);
        if (publishers.last().isNull()) {
            qFatal("%s", qPrintable(error));
        }
    }
    QFile input;
    static_cast<void>(input.open(0, QIODevice::ReadOnly | QIODevice::Unbuffered));
    int version = 0;
    const QSocketNotifier orders(0, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, publishers.first().data(), [&] {
        if (input.readLine().isEmpty()) {
            QCoreApplication::quit();
        } else if (!publishers.first()->replaceDescription(describe(leaves, ++version), &error)) {
            qFatal("%s", qPrintable(error));
        }
    });
    static_cast<void>(write(1, "ready\n", 6));
    return QCoreApplication::exec();
}
