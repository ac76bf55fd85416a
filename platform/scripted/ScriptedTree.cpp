// SPDX-License-Identifier: MIT
// Trees with the leaves of the script.
#include "ScriptedTree.h"

#include "CallRecord.h"
#include "Script.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>

namespace {

const QString baseClass = QStringLiteral("ConfigurationAndProcessDataBase");
const QString leafClass = QStringLiteral("ProcessDataValue");

QString textOf(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString textOf(const ProcessValue &value)
{
    return QStringLiteral("{%1, %2}").arg(value.getValue().toString()).arg(value.getErrorType());
}

LeafDescriptionScript describedBy(const LeafScript &leaf)
{
    const QMutexLocker lock(&leaf.mutex);
    return leaf.described;
}

} // namespace

ConfigurationAndProcessDataBase::ConfigurationAndProcessDataBase() = default;
ConfigurationAndProcessDataBase::~ConfigurationAndProcessDataBase() = default;

ProcessDataValue::ProcessDataValue(ProcessDataValuePrivate *state)
    : d(state)
{
}

ProcessDataValue::~ProcessDataValue() = default;

bool ProcessDataValue::getValue(ProcessValue &value, bool flag) const
{
    CallRecord::instance().called(leafClass, d->id, QStringLiteral("getValue"),
                                  {textOf(value), textOf(flag)});
    const QMutexLocker lock(&d->script->mutex);
    const LeafScript &script = *d->script;
    if (script.readsRefused) {
        return false;
    }
    value.set(script.current.getValue(),
              d->sourceLost() ? ProcessDataDefinitions::SourceLost : script.current.getErrorType(),
              script.current.getTimestamp());
    return true;
}

bool ProcessDataValue::setValue(const ProcessValue &value)
{
    CallRecord::instance().called(leafClass, d->id, QStringLiteral("setValue"), {textOf(value)});
    const QMutexLocker lock(&d->script->mutex);
    LeafScript &script = *d->script;
    if (script.writesRefused || d->sourceLost()) {
        return false;
    }
    script.written.append(value);
    script.current = value;
    return true;
}

ScriptedLeafNode::ScriptedLeafNode(const SourceScript &source, const QString &path,
                                   const ScriptedLeaf &leaf, int tree)
    : ProcessDataValuePrivate{QStringLiteral("%1#%2").arg(path).arg(tree),
                              path,
                              source.service,
                              LeafScript::of(leaf),
                              describedBy(*LeafScript::of(leaf)),
                              source.service->session}
    , ProcessDataValue(this)
{
    CallRecord::instance().born(leafClass);
}

ScriptedLeafNode::~ScriptedLeafNode()
{
    CallRecord::instance().died(leafClass, id);
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ScriptedLeafNode::getLeafProcessDataValue(const QString &url)
{
    CallRecord::instance().called(leafClass, id, QStringLiteral("getLeafProcessDataValue"),
                                  {CallRecord::quoted(url)});
    return {};
}

QVariant ScriptedLeafNode::readLeafProperty(const QString &name) const
{
    CallRecord::instance().called(leafClass, id, QStringLiteral("readLeafProperty"),
                                  {CallRecord::quoted(name)});
    return described.properties.value(name, described.unknownProperty);
}

bool ScriptedLeafNode::hasLeafProperty(const QString &name) const
{
    CallRecord::instance().called(leafClass, id, QStringLiteral("hasLeafProperty"),
                                  {CallRecord::quoted(name)});
    return described.properties.contains(name);
}

QByteArray ScriptedLeafNode::rendering() const
{
    if (described.scriptedRendering) {
        return described.rendering;
    }
    QJsonObject object = QJsonObject::fromVariantMap(described.properties);
    object.insert(QStringLiteral("name"), path.section(QLatin1Char('/'), -1));
    if (session > 0) {
        object.insert(QStringLiteral("session"), session); // other text after each restart
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

ScriptedRootNode::ScriptedRootNode(const QSharedPointer<SourceScript> &source, int tree)
    : id(QString::number(tree))
    , source(source)
{
    CallRecord::instance().born(baseClass);
    for (auto leaf = source->leaves.cbegin(); leaf != source->leaves.cend(); ++leaf) {
        if (!describedBy(*LeafScript::of(*leaf)).missing) {
            leaves.insert(
                leaf.key(),
                QSharedPointer<ScriptedLeafNode>::create(*source, leaf.key(), *leaf, tree));
        }
    }
}

ScriptedRootNode::~ScriptedRootNode()
{
    CallRecord::instance().died(baseClass, id);
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ScriptedRootNode::getLeafProcessDataValue(const QString &url)
{
    CallRecord::instance().called(baseClass, id, QStringLiteral("getLeafProcessDataValue"),
                                  {CallRecord::quoted(url)});
    const ScriptedUrl asked = Script::parsed(url);
    const bool own = asked.valid && asked.moduleName == source->moduleName
        && asked.objectName == source->objectName && asked.instance == source->instance;
    return own ? leaves.value(asked.path) : ProcessDataValueSharedPointer();
}

QVariant ScriptedRootNode::readLeafProperty(const QString &name) const
{
    CallRecord::instance().called(baseClass, id, QStringLiteral("readLeafProperty"),
                                  {CallRecord::quoted(name)});
    return {};
}

bool ScriptedRootNode::hasLeafProperty(const QString &name) const
{
    CallRecord::instance().called(baseClass, id, QStringLiteral("hasLeafProperty"),
                                  {CallRecord::quoted(name)});
    return false;
}
