// SPDX-License-Identifier: MIT
// One leaf of a tree in shared memory: what a read needs first, its description behind.
#ifndef PROCESSDATALEAF_H
#define PROCESSDATALEAF_H

#include "BufferLayout.h"
#include "LeafDescription.h"
#include "ProcessDataDefinitions.h"
#include "ProcessDataValue.h"
#include "RenderableNode.h"

struct LeafBlock;

/// State of a leaf, held inside it. Immutable: any number of threads may read and write values.
class ProcessDataValuePrivate
{
public:
    const char *slot; // null when there is no buffer to read
    const LeafBlock *block; // owns this leaf, so it lives as long
    quint32 payloadSize; // of a number its exact length
    ValueType type;
    bool isReadableDouble; // of the type that is read most, and with a buffer

    bool read(ProcessValue &value) const;
    bool isLost(quint32 length) const;
    void noteIfOutdated() const;
    bool readAny(ProcessValue &value) const;
    bool readBytes(ProcessValue &value) const;
    bool write(const LeafDescription &description, const ProcessValue &value, QString &error) const;
};

/// The reference platform's leaf. Small: a long list's leaves shall stay in the processor's cache.
class ProcessDataLeaf final : public ProcessDataValue, public RenderableNode
{
public:
    explicit ProcessDataLeaf(const ProcessDataValuePrivate &state);

    const LeafDescription &description() const;

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;
    QJsonObject renderedProperties() const override;
    void renderCompact(QByteArray &bytes) const override;

private:
    ProcessDataValuePrivate state;
};

static_assert(sizeof(ProcessDataLeaf) <= 48, "a leaf holds only what a read needs");

#endif
