// SPDX-License-Identifier: MIT
// What a node shows of itself when it is rendered as JSON.
#ifndef RENDERABLENODE_H
#define RENDERABLENODE_H

#include <QByteArray>
#include <QJsonObject>

/// Implemented by nodes beside ConfigurationAndProcessDataBase.
class RenderableNode
{
public:
    virtual ~RenderableNode() = default;

    /// What clients get of the node: nodes that are equal for a client give equal objects.
    ///
    /// All keys of the leaf's description but "offset", which is not a property of the value; added to
    /// them "session", so that clients learn of a publisher's restart.
    virtual QJsonObject renderedProperties() const = 0;

    /// Appends the same as compact JSON text.
    virtual void renderCompact(QByteArray &bytes) const = 0;
};

#endif
