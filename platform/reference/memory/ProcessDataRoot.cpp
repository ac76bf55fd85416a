// SPDX-License-Identifier: MIT
// Root of a source's process-data tree: finds leaves by URL.
#include "ProcessDataRoot.h"

#include "SelectorUrlParser.h"

namespace {

// A pointer to one leaf keeps all of them: they are destroyed together, by their block.
ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
leafPointer(const QSharedPointer<LeafBlock> &block, int position)
{
    const auto release = [block](ProcessDataLeaf *) {};
    return QSharedPointer<ProcessDataLeaf>(block->leaves + position, release);
}

}

ProcessDataRoot::ProcessDataRoot(ProcessDataDescription description,
                                 QSharedPointer<SharedMemoryPrivate> memory)
    : block(QSharedPointer<LeafBlock>::create(std::move(description), std::move(memory)))
{
    const QVector<LeafDescription> &described = block->description.leaves;
    leaves.reserve(described.size());
    positions.reserve(described.size());
    for (int i = 0; i < described.size(); ++i) {
        leaves.append(leafPointer(block, i));
        positions.insert(described.at(i).path, i);
    }
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ProcessDataRoot::getLeafProcessDataValue(const QString &url)
{
    const SelectorUrlParts parts = parseSelectorUrl(url);
    const ProcessDataDescription &source = block->description;
    if (!parts.valid || parts.moduleName != source.module || parts.objectName != source.object
        || parts.instance != source.instance || parts.path.isNull()) {
        return {};
    }
    const auto position = positions.constFind(parts.path);
    return position == positions.constEnd() ? ProcessDataValueSharedPointer()
                                            : leaves.at(*position);
}

QVariant ProcessDataRoot::readLeafProperty(const QString &name) const
{
    Q_UNUSED(name)
    return QVariant(); // properties belong to leaves
}

bool ProcessDataRoot::hasLeafProperty(const QString &name) const
{
    Q_UNUSED(name)
    return false;
}
