// SPDX-License-Identifier: MIT
// One published description file whose leaves move.
#ifndef SIMULATEDSOURCE_H
#define SIMULATEDSOURCE_H

#include "DescriptionFile.h"

#include "ProcessDataPublisher.h"

#include <QElapsedTimer>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

/// Publishes one file for as long as it lives.
///
/// Threads: the main thread, with a running event loop.
class SimulatedSource
{
public:
    /// @param error  receives one sentence that names what is wrong; left alone on success
    /// @returns null when the file or its publication is refused
    static std::unique_ptr<SimulatedSource> create(const QString &fileName, QString &error);

    ~SimulatedSource();
    SimulatedSource(const SimulatedSource &) = delete;
    SimulatedSource &operator=(const SimulatedSource &) = delete;

    const SourceName &source() const { return current.source; }
    bool isPublished() const { return !publisher.isNull(); }
    QStringList leafPaths() const;
    /// The description as clients fetch it; only while it is published.
    QByteArray served() const;

    /// Publishes all leaves that moved since the last step, as one batch.
    void step();

    /// Reads the file again if it changed and announces what is different. A broken file is
    /// reported once and the old description goes on.
    void reload();

    /// Ends the publication, as when the service is stopped.
    void vanish();
    /// Publishes again what vanished; does nothing when nothing did.
    bool comeBack(QString &error);

    // Only while it is published:

    /// Gives a leaf another type, as a new version of the service would.
    ///
    /// @param capacity  bytes; 0 keeps the leaf's own
    bool retype(const QString &path, const QString &type, int capacity, QString &error);

    /// Announces over and over that the description, or the properties, changed.
    bool announce(int count, bool ofProperties, QString &error);

private:
    struct Track
    {
        MovingLeaf moving;
        qint64 begin = 0; ///< when the motion began, on the source's clock
        QVariant last; ///< what was published last
    };

    explicit SimulatedSource(const QString &fileName);
    bool start(QString &error);
    bool publish(QString &error);
    bool replace(const QByteArray &newContent, QString &error);
    void report(const QStringList &newDoubts);
    ProcessDataPublisher::FirstValues firstValues(DescriptionFile &file);
    void step(ProcessDataPublisher &to);
    void publishFirstValues(ProcessDataPublisher &to);
    bool apply(DescriptionFile &file, const QByteArray &newContent, QString &error);
    void takeMotions(std::vector<MovingLeaf> &&leaves);

    const QString name;
    QByteArray content; ///< last seen, also when it was refused
    QByteArray published; ///< what is published: the file, or what a step made of it
    bool missing = false;
    QStringList doubts; ///< reported last
    DescriptionFile current; ///< without its motions, which the tracks hold
    QElapsedTimer clock;
    std::vector<Track> tracks;
    QSharedPointer<ProcessDataPublisher> publisher;
};

#endif
