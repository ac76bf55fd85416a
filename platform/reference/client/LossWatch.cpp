// SPDX-License-Identifier: MIT
// When the services of lost and outdated sources are asked whether something was missed.
#include "LossWatch.h"

#include <QTimer>

LossWatch::LossWatch(QObject *parent)
    : QObject(parent)
{
}

void LossWatch::add(const QString &service, const QSharedPointer<SourceWatch> &source)
{
    Lost &lost = services[service];
    lost.sources += source;
    if (lost.timer == nullptr) {
        lost.timer = new QTimer(this);
        lost.timer->setSingleShot(true);
        QObject::connect(lost.timer, &QTimer::timeout, this, [this, service] { take(service); });
        lost.timer->start(firstPause);
    }
}

void LossWatch::clear()
{
    for (const Lost &lost : std::as_const(services)) {
        delete lost.timer;
        for (const QSharedPointer<SourceWatch> &source : lost.sources) {
            source->forgetReads();
        }
    }
    services.clear();
}

void LossWatch::take(const QString &service)
{
    Lost &lost = services[service];
    LostSources read;
    for (const QSharedPointer<SourceWatch> &source : std::as_const(lost.sources)) {
        // Whoever was told meanwhile holds another tree.
        if (!source->hasEnded() && source->takeRead()) {
            read += source;
        }
    }
    if (read.isEmpty()) {
        lost.timer->deleteLater();
        services.remove(service);
        return;
    }
    lost.sources = read;
    lost.timer->start(qMin(2 * lost.timer->interval(), longestPause));
    Q_EMIT due(service, read);
}
