// SPDX-License-Identifier: MIT
// Root and leaves of a scripted tree.
#ifndef SCRIPTEDTREE_H
#define SCRIPTEDTREE_H

#include "ProcessDataValue.h"
#include "ScriptedSource.h"

#include <QHash>
#include <QSharedPointer>

/// A leaf's link to its script.
class ProcessDataValuePrivate
{
public:
    QString id; ///< name#tree
    QSharedPointer<ScriptedSource> source;
    QString name;
    ScriptedLeaf snapshot; ///< properties and rendering as of the tree's making

    ScriptedLeaf &script() const { return source->at(name); }
};

class ScriptedLeafNode : private ProcessDataValuePrivate, public ProcessDataValue
{
public:
    ScriptedLeafNode(const QSharedPointer<ScriptedSource> &source, const QString &name, int tree);
    ~ScriptedLeafNode() override;

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;

    QString nodeId() const { return id; }
    QByteArray rendering() const;
};

class ScriptedRootNode : public ConfigurationAndProcessDataBase
{
public:
    ScriptedRootNode(const QSharedPointer<ScriptedSource> &source, int tree);
    ~ScriptedRootNode() override;

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;

private:
    const QString id;
    QHash<QString, ProcessDataValueSharedPointer> leaves; ///< by URL
};

#endif
