// SPDX-License-Identifier: MIT
// Root and leaves of a scripted tree.
#ifndef SCRIPTEDTREE_H
#define SCRIPTEDTREE_H

#include "LeafScript.h"
#include "ProcessDataValue.h"
#include "SourceScript.h"

#include <QHash>
#include <QSharedPointer>

/// A leaf's link to its script.
class ProcessDataValuePrivate
{
public:
    bool sourceLost() const { return service->gone || service->session != session; }

    QString id; ///< path#tree
    QString path;
    QSharedPointer<ServiceScript> service;
    QSharedPointer<LeafScript> script;
    LeafDescriptionScript described; ///< as of the tree's making
    int session = 0; ///< of the service, as of the tree's making
};

class ScriptedLeafNode : private ProcessDataValuePrivate, public ProcessDataValue
{
public:
    ScriptedLeafNode(const SourceScript &source, const QString &path, const ScriptedLeaf &leaf,
                     int tree);
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
    ScriptedRootNode(const QSharedPointer<SourceScript> &source, int tree);
    ~ScriptedRootNode() override;

    ProcessDataValueSharedPointer getLeafProcessDataValue(const QString &url) override;
    QVariant readLeafProperty(const QString &name) const override;
    bool hasLeafProperty(const QString &name) const override;

private:
    const QString id;
    const QSharedPointer<SourceScript> source;
    QHash<QString, ProcessDataValueSharedPointer> leaves; ///< by path
};

#endif
