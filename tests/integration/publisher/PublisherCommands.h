// SPDX-License-Identifier: MIT
// Runs the commands that a test gives to its publisher process.
#ifndef PUBLISHERCOMMANDS_H
#define PUBLISHERCOMMANDS_H

#include "ProcessDataPublisher.h"
#include "ProviderRegistryService.h"
#include "Shortage.h"
#include "SystemStatusService.h"

#include <QByteArray>
#include <QJsonObject>
#include <QSharedPointer>

#include <memory>

/// One JSON object is one command; the answer is "ok" or "error" and the reason.
class PublisherCommands
{
public:
    QByteArray run(const QByteArray &line);

private:
    QByteArray create(const QJsonObject &command);
    QByteArray publish(const QJsonObject &command);
    QByteArray replace(const QJsonObject &command, bool layout);
    QByteArray playStatusManager();
    QByteArray playRegistry();
    QByteArray starve(const QString &what);

    QSharedPointer<ProcessDataPublisher> publisher; // the one made last
    QVector<QSharedPointer<ProcessDataPublisher>> publishers;
    QSharedPointer<SystemStatusService> status;
    QSharedPointer<ProviderRegistryService> registry;
    std::unique_ptr<DescriptorShortage> descriptorShortage;
    std::unique_ptr<MemoryShortage> memoryShortage;
};

/// Prints one line at once: the test waits for it.
void printLine(const QByteArray &line);

#endif
