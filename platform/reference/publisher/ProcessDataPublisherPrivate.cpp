// SPDX-License-Identifier: MIT
// What a publisher holds: its module's service, its description and its buffer.
#include "ProcessDataPublisherPrivate.h"

#include <QPointer>

#include <utility>

namespace {

constexpr int defaultWriteDetectionInterval = 20; // milliseconds

// Leaves of the old description that the new one has under the same path and with the same type.
QVector<QPair<int, int>> keptLeaves(const PublishedDescription &before,
                                    const PublishedDescription &after)
{
    QVector<QPair<int, int>> kept;
    const QVector<LeafDescription> &leaves = before.parsed().leaves;
    for (int i = 0; i < leaves.size(); ++i) {
        const int leaf = after.indexOf(leaves.at(i).path);
        if (leaf >= 0 && after.parsed().leaves.at(leaf).type == leaves.at(i).type) {
            kept += qMakePair(i, leaf);
        }
    }
    return kept;
}
}

std::unique_ptr<ProcessDataPublisherPrivate>
ProcessDataPublisherPrivate::start(const SourceName &source, const Reader &read, QString &error)
{
    auto description = read(source, error);
    if (!description.has_value()) {
        return nullptr;
    }
    std::unique_ptr<ProcessDataPublisherPrivate> state(new ProcessDataPublisherPrivate(source));
    state->description = std::move(*description);
    // The name comes before the buffer: whoever owns the name owns the module's buffers.
    state->host = ModuleHost::acquire(source.module, error);
    if (state->host == nullptr) {
        return nullptr;
    }
    state->reserved = state->host->reserve(source, error);
    if (!state->reserved) {
        return nullptr;
    }
    QString reason;
    state->buffer = PublishedBuffer::create(state->description.parsed(), reason);
    if (state->buffer == nullptr) {
        error = QStringLiteral("%1: %2").arg(label(source), reason);
        return nullptr;
    }
    ProcessDataDescription &parsed = state->description.parsed();
    parsed.session = parsed.buffer.has_value() ? parsed.buffer->generation : 0;
    return state;
}

ProcessDataPublisherPrivate::ProcessDataPublisherPrivate(SourceName source)
    : source(std::move(source))
{
    writeDetection.setInterval(defaultWriteDetectionInterval);
}

ProcessDataPublisherPrivate::~ProcessDataPublisherPrivate()
{
    if (reserved) {
        host->withdraw(source);
    }
    buffer.reset(); // before the host: the name is given back last
}

bool ProcessDataPublisherPrivate::isForkedChild(QString &error) const
{
    if (!isForkedChild()) {
        return false;
    }
    error = QStringLiteral("%1: it belongs to the process that this one was forked from")
                .arg(label(source));
    return true;
}

void ProcessDataPublisherPrivate::serve(AnnouncedChange change)
{
    description.parsed().buffer->revision = buffer->nextRevision();
    host->serve(source, QString::fromUtf8(description.served()), description.selectorTypes(),
                change, [this] { buffer->countChange(); });
}

void ProcessDataPublisherPrivate::publishFirst(ProcessDataPublisher *q,
                                               const FirstValues &firstValues)
{
    if (firstValues) {
        publishingFirst = true;
        firstValues(*q);
        publishingFirst = false;
    }
}

void ProcessDataPublisherPrivate::announceFirst(ProcessDataPublisher *q,
                                                const FirstValues &firstValues)
{
    publishFirst(q, firstValues);
    serve(AnnouncedChange::Description);
}

std::optional<PublishedDescription>
ProcessDataPublisherPrivate::readReplacement(const Reader &read, const char *what,
                                             QString &error) const
{
    if (isForkedChild(error)) {
        return std::nullopt;
    }
    if (publishingFirst) {
        error = QStringLiteral("%1: first values cannot replace the %2 they belong to")
                    .arg(label(source), QLatin1String(what));
        return std::nullopt;
    }
    return read(source, error);
}

bool ProcessDataPublisherPrivate::replaceDescription(ProcessDataPublisher *q, const Reader &read,
                                                     const FirstValues &firstValues, QString &error)
{
    auto fresh = readReplacement(read, "description", error);
    if (!fresh.has_value()) {
        return false;
    }
    QString reason;
    std::unique_ptr<PublishedBuffer> freshBuffer = PublishedBuffer::create(fresh->parsed(), reason);
    if (freshBuffer == nullptr) {
        error = QStringLiteral("%1: %2").arg(label(source), reason);
        return false;
    }
    fresh->parsed().session = description.parsed().session;
    ClientWrites writes = takeClientWrites();
    const QVector<QPair<int, int>> kept = keptLeaves(description, *fresh);
    for (const auto &leaf : kept) {
        freshBuffer->carryOver(leaf.second, *buffer, leaf.first);
    }
    std::swap(description, *fresh);
    std::swap(buffer, freshBuffer);
    publishFirst(q, firstValues);
    serve(AnnouncedChange::Description);
    freshBuffer->retire(); // the old one now
    carryLateWrites(*freshBuffer, kept);
    writes += takeClientWrites();
    report(q, writes);
    return true;
}

// What clients wrote into the old buffer after it was copied would be lost otherwise. Who has
// written into the new one already is newer.
void ProcessDataPublisherPrivate::carryLateWrites(PublishedBuffer &old,
                                                  const QVector<QPair<int, int>> &kept)
{
    const QVector<int> late = old.takeClientWrites();
    if (late.isEmpty()) {
        return;
    }
    const QVector<int> newer = buffer->takeClientWrites();
    for (const auto &leaf : kept) {
        const bool isNewer = newer.contains(leaf.second);
        if (late.contains(leaf.first) && !isNewer) {
            buffer->carryOver(leaf.second, old, leaf.first);
        }
        if (late.contains(leaf.first) || isNewer) {
            pendingWrites += leaf.second;
        }
    }
}

bool ProcessDataPublisherPrivate::replaceProperties(const Reader &read, QString &error)
{
    auto fresh = readReplacement(read, "properties", error);
    if (!fresh.has_value()) {
        return false;
    }
    QString difference;
    if (!fresh->hasLayoutOf(description, difference)) {
        error = QStringLiteral("%1: new properties must keep the layout, but %2")
                    .arg(label(source), difference);
        return false;
    }
    fresh->takeLayoutFrom(description);
    description = *fresh;
    buffer->setLeafDescriptions(description.parsed().leaves);
    serve(AnnouncedChange::Properties);
    return true;
}

void ProcessDataPublisherPrivate::reportClientWrites(ProcessDataPublisher *q)
{
    if (isForkedChild()) {
        return; // they are its parent's to hear of
    }
    report(q, takeClientWrites());
}

ProcessDataPublisherPrivate::ClientWrites ProcessDataPublisherPrivate::takeClientWrites()
{
    QVector<int> leaves = buffer->takeClientWrites();
    const QVector<int> written = std::exchange(pendingWrites, QVector<int>());
    for (const int leaf : written) {
        if (!leaves.contains(leaf)) {
            leaves += leaf;
        }
    }
    ClientWrites writes;
    for (const int leaf : std::as_const(leaves)) {
        writes += qMakePair(description.parsed().leaves.at(leaf).path, buffer->value(leaf));
    }
    return writes;
}

// Touches no member: a slot may end the publisher.
void ProcessDataPublisherPrivate::report(ProcessDataPublisher *q, const ClientWrites &writes)
{
    const QPointer<ProcessDataPublisher> alive(q);
    for (const auto &write : writes) {
        if (alive.isNull()) {
            return;
        }
        Q_EMIT q->valueWritten(write.first, write.second);
    }
}
