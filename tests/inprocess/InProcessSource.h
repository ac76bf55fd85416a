// SPDX-License-Identifier: MIT
// A published source in this process, for tests and measurements without a bus.
#ifndef INPROCESSSOURCE_H
#define INPROCESSSOURCE_H

#include "ProcessDataPlatformExport.h"

#include <QByteArray>
#include <QScopedPointer>
#include <QString>
#include <QVector>

class InProcessSourcePrivate;

/// One instance with float64 leaves in real shared memory, served by InProcessBus.
///
/// Each leaf is described with 8 properties in about 145 bytes.
class PROCESSDATAPLATFORM_EXPORT InProcessSource
{
public:
    /// @param leafCount  leaves named leaf0, leaf1, …; each holds its number as value
    InProcessSource(const QString &moduleName, const QString &instanceName, int leafCount);
    ~InProcessSource();
    InProcessSource(const InProcessSource &) = delete;
    InProcessSource &operator=(const InProcessSource &) = delete;

    QVector<QString> urls() const;

    /// The description as a service would send it.
    QByteArray description() const;

    /// Name of the shared-memory object, with its leading slash.
    QString bufferName() const;

    /// Where each leaf's slot stands in the buffer, in bytes.
    QVector<quint64> offsets() const;

    /// Publishes one value.
    void publish(int leaf, double value);

private:
    const QScopedPointer<InProcessSourcePrivate> d;
};

#endif
