// SPDX-License-Identifier: MIT
// Renders a node of a process-data tree as JSON.
#include "ConfigurationAndProcessDataParser.h"

#include "ConfigurationAndProcessDataBase.h"
#include "RenderableNode.h"

ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser() = default;

ConfigurationAndProcessDataParser::~ConfigurationAndProcessDataParser() = default;

bool ConfigurationAndProcessDataParser::frameToByteArray(
    const QSharedPointer<ConfigurationAndProcessDataBase> &node, QByteArray &bytes,
    QJsonDocument::JsonFormat format) const
{
    const auto *renderable = dynamic_cast<const RenderableNode *>(node.data());
    if (renderable == nullptr) {
        return false;
    }
    if (format == QJsonDocument::Compact) {
        renderable->renderCompact(bytes);
        return true;
    }
    bytes += QJsonDocument(renderable->renderedProperties()).toJson(format);
    return true;
}
