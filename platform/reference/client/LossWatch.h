// SPDX-License-Identifier: MIT
// When the services of lost and outdated sources are asked whether something was missed.
#ifndef LOSSWATCH_H
#define LOSSWATCH_H

#include "SourceWatch.h"

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVector>

class QTimer;

using LostSources = QVector<QSharedPointer<SourceWatch>>;

/// A bus daemon drops what a client does not read, announcements of owners too, and says nothing of
/// it. So a source that goes on being read while it is lost or outdated has its service asked
/// about: for the first time after a second, in which announcements usually arrive, then after
/// pauses that double up to half a minute. While nobody reads such a source, nothing runs here.
///
/// Threads: lives in the bus thread.
class LossWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int firstPause = 1000; ///< milliseconds
    static constexpr int longestPause = 30000;

    explicit LossWatch(QObject *parent);

    void add(const QString &service, const QSharedPointer<SourceWatch> &source);

    /// Forgets all.
    void clear();

Q_SIGNALS:
    /// It is time to ask.
    void due(const QString &service, const LostSources &sources);

private:
    struct Lost
    {
        LostSources sources;
        QTimer *timer = nullptr;
    };

    void take(const QString &service);

    QHash<QString, Lost> services;
};

#endif
