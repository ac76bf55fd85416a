// SPDX-License-Identifier: MIT
// One leaf of a tree in shared memory: its properties.
#include "ProcessDataLeaf.h"

#include "CompactJson.h"
#include "LeafBlock.h"

namespace {

const QString &sessionKey()
{
    static const QString key = QStringLiteral("session");
    return key;
}

const QString &offsetKey()
{
    static const QString key = QStringLiteral("offset");
    return key;
}

// Tells clients of a restarted publisher; older descriptions name no session.
QJsonValue sessionOf(const ProcessDataDescription &description)
{
    const quint64 generation = description.buffer ? description.buffer->generation : 0;
    return double(description.session != 0 ? description.session : generation);
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

QVariant ProcessDataLeaf::readLeafProperty(const QString &name) const
{
    if (name == sessionKey()) {
        return sessionOf(state.block->description).toVariant();
    }
    const QJsonObject &properties = state.description->properties;
    const auto property = properties.constFind(name);
    return property == properties.constEnd() ? QVariant() : property->toVariant();
}

bool ProcessDataLeaf::hasLeafProperty(const QString &name) const
{
    return name == sessionKey() || state.description->properties.contains(name);
}

QJsonObject ProcessDataLeaf::renderedProperties() const
{
    QJsonObject rendered = state.description->properties;
    rendered.remove(offsetKey());
    rendered.insert(sessionKey(), sessionOf(state.block->description));
    return rendered;
}

// Without the copy of the object that the other rendering changes.
void ProcessDataLeaf::renderCompact(QByteArray &bytes) const
{
    CompactJsonObjectWriter writer;
    const QJsonValue session = sessionOf(state.block->description);
    const QJsonObject &properties = state.description->properties;
    bool sessionIsDue = true;
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        const QString key = property.key();
        if (sessionIsDue && sessionKey() <= key) {
            writer.write(sessionKey(), session);
            sessionIsDue = false;
        }
        if (key != offsetKey() && key != sessionKey()) {
            writer.write(key, property.value());
        }
    }
    if (sessionIsDue) {
        writer.write(sessionKey(), session);
    }
    writer.appendTo(bytes);
}
