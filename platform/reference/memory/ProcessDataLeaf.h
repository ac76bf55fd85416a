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
    const BufferHeader *header;
    ValueType type;
    quint32 payloadSize; // of a number its exact length
    const LeafDescription *description; // in the block
    const LeafBlock *block; // owns this leaf, so it lives as long

    bool read(ProcessValue &value) const;
    bool readAny(ProcessValue &value) const;
    bool readBytes(ProcessValue &value) const;
    bool write(const ProcessValue &value, QString &error) const;
};

/// The reference platform's leaf. Aligned so that a read touches one cache line of it.
class alignas(64) ProcessDataLeaf final : public ProcessDataValue, public RenderableNode
{
public:
    explicit ProcessDataLeaf(const ProcessDataValuePrivate &state);

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;
    QJsonObject renderedProperties() const override;
    void renderCompact(QByteArray &bytes) const override;

private:
    ProcessDataValuePrivate state;
};

static_assert(sizeof(ProcessDataLeaf) == 64, "a leaf is one cache line");

#endif
