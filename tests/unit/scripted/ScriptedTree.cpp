// SPDX-License-Identifier: MIT
// Trees with the leaves of the script.
#include "ScriptedTree.h"

#include "CallRecord.h"

#include <QJsonDocument>
#include <QJsonObject>

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
    const ScriptedLeaf &script = d->script();
    if (!script.untouched) {
        value.set(script.value, script.errorType, 0);
    }
    return !script.untouched;
}

bool ProcessDataValue::setValue(const ProcessValue &value)
{
    CallRecord::instance().called(leafClass, d->id, QStringLiteral("setValue"), {textOf(value)});
    ScriptedLeaf &script = d->script();
    if (script.writesRefused) {
        return false;
    }
    script.written.append(value);
    script.holds(value.getValue(), value.getErrorType());
    return true;
}

ScriptedLeafNode::ScriptedLeafNode(const QSharedPointer<ScriptedSource> &source,
                                   const QString &name, int tree)
    : ProcessDataValuePrivate{QStringLiteral("%1#%2").arg(name).arg(tree), source, name,
                              source->at(name)}
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
    return snapshot.properties.value(name, snapshot.unknownProperty);
}

bool ScriptedLeafNode::hasLeafProperty(const QString &name) const
{
    CallRecord::instance().called(leafClass, id, QStringLiteral("hasLeafProperty"),
                                  {CallRecord::quoted(name)});
    return snapshot.properties.contains(name);
}

QByteArray ScriptedLeafNode::rendering() const
{
    if (snapshot.scriptedRendering) {
        return snapshot.rendering;
    }
    QJsonObject object = QJsonObject::fromVariantMap(snapshot.properties);
    object.insert(QStringLiteral("name"), name);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

ScriptedRootNode::ScriptedRootNode(const QSharedPointer<ScriptedSource> &source, int tree)
    : id(QString::number(tree))
{
    CallRecord::instance().born(baseClass);
    for (auto leaf = source->leaves.cbegin(); leaf != source->leaves.cend(); ++leaf) {
        if (!leaf->missing) {
            leaves.insert(source->urlOf(leaf.key()),
                          QSharedPointer<ScriptedLeafNode>::create(source, leaf.key(), tree));
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
    return leaves.value(url);
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
