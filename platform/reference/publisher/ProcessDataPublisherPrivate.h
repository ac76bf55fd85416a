// SPDX-License-Identifier: MIT
// What a publisher holds: its module's service, its description and its buffer.
#ifndef PROCESSDATAPUBLISHERPRIVATE_H
#define PROCESSDATAPUBLISHERPRIVATE_H

#include "ForkedChild.h"
#include "ModuleHost.h"
#include "ProcessDataPublisher.h"
#include "PublishedBuffer.h"
#include "PublishedDescription.h"

#include <QPair>
#include <QString>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

class ProcessDataPublisherPrivate
{
public:
    using FirstValues = ProcessDataPublisher::FirstValues;

    /// Reads and checks a description in whichever form it is given.
    using Reader
        = std::function<std::optional<PublishedDescription>(const SourceName &, QString &)>;

    /// Reads the description, takes the module's name and makes the buffer. Null with the reason,
    /// and nothing left behind, when one of them fails.
    static std::unique_ptr<ProcessDataPublisherPrivate> start(const SourceName &source,
                                                              const Reader &read, QString &error);

    /// Withdraws the instance first, so that nobody fetches a description whose buffer is retired.
    ~ProcessDataPublisherPrivate();

    /// Serves the description for the first time, once its values are there.
    void announceFirst(ProcessDataPublisher *q, const FirstValues &firstValues);

    bool replaceDescription(ProcessDataPublisher *q, const Reader &read,
                            const FirstValues &firstValues, QString &error);
    bool replaceProperties(const Reader &read, QString &error);
    void reportClientWrites(ProcessDataPublisher *q);

    /// Whether this process was forked since the publisher was made; says so once.
    bool isForkedChild() const { return home.refusesChild("publisher"); }

    /// For callers that are told why.
    bool isForkedChild(QString &error) const;

    const SourceName source;
    ModuleHost::Pointer host;
    PublishedDescription description;
    std::unique_ptr<PublishedBuffer> buffer;
    QTimer writeDetection;

private:
    using ClientWrites = QVector<QPair<QString, ProcessValue>>;

    explicit ProcessDataPublisherPrivate(SourceName source);
    std::optional<PublishedDescription> readReplacement(const Reader &read, const char *what,
                                                        QString &error) const;
    void serve(AnnouncedChange change);
    void publishFirst(ProcessDataPublisher *q, const FirstValues &firstValues);
    void carryLateWrites(PublishedBuffer &old, const QVector<QPair<int, int>> &kept);
    ClientWrites takeClientWrites();
    static void report(ProcessDataPublisher *q, const ClientWrites &writes);

    const HomeProcess home;
    bool reserved = false;
    bool publishingFirst = false; ///< a replacement inside would leave the outer one astray
    QVector<int>
        pendingWrites; // of clients, seen while a description was replaced, not reported yet
};

#endif
