// SPDX-License-Identifier: MIT
// One leaf of a tree in shared memory: its properties.
#include "ProcessDataLeaf.h"

#include "LeafBlock.h"

#include <QJsonDocument>

#include <iterator>

namespace {

const QString &sessionKey()
{
    static const QString key = QStringLiteral("session");
    return key;
}

}

ProcessDataLeaf::ProcessDataLeaf(const ProcessDataValuePrivate &state)
    : ProcessDataValue(&this->state)
    , state(state)
{
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ProcessDataLeaf::getLeafProcessDataValue(const QString &url)
{
    Q_UNUSED(url)
    return {}; // only the root knows leaves
}

const LeafDescription &ProcessDataLeaf::description() const
{
    const auto position = std::distance<const ProcessDataLeaf *>(state.block->leaves, this);
    return state.block->description.leaves.at(int(position));
}

QVariant ProcessDataLeaf::readLeafProperty(const QString &name) const
{
    if (name == sessionKey()) {
        return state.block->session.toVariant();
    }
    return description().properties.value(name);
}

bool ProcessDataLeaf::hasLeafProperty(const QString &name) const
{
    return name == sessionKey() || description().properties.contains(name);
}

QJsonObject ProcessDataLeaf::renderedProperties() const
{
    QByteArray compact;
    renderCompact(compact);
    return QJsonDocument::fromJson(compact).object();
}

void ProcessDataLeaf::renderCompact(QByteArray &bytes) const
{
    description().properties.render(state.block->sessionText, bytes);
}
