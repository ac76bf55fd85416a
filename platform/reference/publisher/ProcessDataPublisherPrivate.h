// SPDX-License-Identifier: MIT
// What a publisher holds: its module's service, its description and its buffer.
#ifndef PROCESSDATAPUBLISHERPRIVATE_H
#define PROCESSDATAPUBLISHERPRIVATE_H

#include "ModuleHost.h"
#include "PublishedBuffer.h"
#include "PublishedDescription.h"

#include <QJsonObject>
#include <QPair>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>

class ProcessDataPublisher;

class ProcessDataPublisherPrivate
{
public:
    /// Takes the module's name, makes the buffer, serves the description. Null with the reason, and
    /// nothing left behind, when one of them fails.
    static std::unique_ptr<ProcessDataPublisherPrivate>
    start(const PublishedSource &source, const QJsonObject &document, QString &error);

    /// Withdraws the instance first, so that nobody fetches a description whose buffer is retired.
    ~ProcessDataPublisherPrivate();

    bool replaceDescription(ProcessDataPublisher *q, const QJsonObject &document, QString &error);
    bool replaceProperties(const QJsonObject &document, QString &error);
    void reportClientWrites(ProcessDataPublisher *q);

    const PublishedSource source;
    ModuleHost::Pointer host;
    PublishedDescription description;
    std::unique_ptr<PublishedBuffer> buffer;
    QTimer writeDetection;

private:
    using ClientWrites = QVector<QPair<QString, ProcessValue>>;

    explicit ProcessDataPublisherPrivate(PublishedSource source);
    void serve(AnnouncedChange change);
    void carryLateWrites(PublishedBuffer &old, const QVector<QPair<int, int>> &kept);
    ClientWrites takeClientWrites();
    static void report(ProcessDataPublisher *q, const ClientWrites &writes);

    bool reserved = false;
    QVector<int>
        pendingWrites; // of clients, seen while a description was replaced, not reported yet
};

#endif
