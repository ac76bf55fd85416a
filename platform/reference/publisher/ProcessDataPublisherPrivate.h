// SPDX-License-Identifier: MIT
// What a publisher holds: its module's service, its description and its buffer.
#ifndef PROCESSDATAPUBLISHERPRIVATE_H
#define PROCESSDATAPUBLISHERPRIVATE_H

#include "ModuleHost.h"
#include "ProcessDataPublisher.h"
#include "PublishedBuffer.h"
#include "PublishedDescription.h"

#include <QJsonObject>
#include <QPair>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>

class ProcessDataPublisherPrivate
{
public:
    using FirstValues = ProcessDataPublisher::FirstValues;

    /// Takes the module's name and makes the buffer. Null with the reason, and nothing left behind,
    /// when one of them fails.
    static std::unique_ptr<ProcessDataPublisherPrivate>
    start(const PublishedSource &source, const QJsonObject &document, QString &error);

    /// Withdraws the instance first, so that nobody fetches a description whose buffer is retired.
    ~ProcessDataPublisherPrivate();

    /// Serves the description for the first time, once its values are there.
    void announceFirst(ProcessDataPublisher *q, const FirstValues &firstValues);

    bool replaceDescription(ProcessDataPublisher *q, const QJsonObject &document,
                            const FirstValues &firstValues, QString &error);
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
    void publishFirst(ProcessDataPublisher *q, const FirstValues &firstValues);
    void carryLateWrites(PublishedBuffer &old, const QVector<QPair<int, int>> &kept);
    ClientWrites takeClientWrites();
    static void report(ProcessDataPublisher *q, const ClientWrites &writes);

    bool reserved = false;
    bool publishingFirst = false; ///< a replacement inside would leave the outer one astray
    QVector<int>
        pendingWrites; // of clients, seen while a description was replaced, not reported yet
};

#endif
