// SPDX-License-Identifier: MIT
// Renders leaves as the script says.
#include "ConfigurationAndProcessDataParser.h"

#include "CallRecord.h"
#include "Script.h"
#include "ScriptedTree.h"

namespace {

const QString className = QStringLiteral("ConfigurationAndProcessDataParser");

} // namespace

ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser()
{
    CallRecord::instance().born(className);
    CallRecord::instance().called(className, QString(), className);
}

ConfigurationAndProcessDataParser::~ConfigurationAndProcessDataParser()
{
    CallRecord::instance().died(className, QString());
}

bool ConfigurationAndProcessDataParser::frameToByteArray(
    const QSharedPointer<ConfigurationAndProcessDataBase> &node, QByteArray &bytes,
    QJsonDocument::JsonFormat format) const
{
    const auto *leaf = dynamic_cast<const ScriptedLeafNode *>(node.data());
    const QString id = leaf != nullptr ? leaf->nodeId() : QStringLiteral("null");
    CallRecord::instance().called(className, QString(), QStringLiteral("frameToByteArray"),
                                  {id, CallRecord::quoted(QString::fromUtf8(bytes)),
                                   format == QJsonDocument::Compact ? QStringLiteral("Compact")
                                                                    : QStringLiteral("Indented")});
    if (leaf != nullptr && bytes.isEmpty()) {
        bytes = leaf->rendering(); // as the script has it, also without a zero byte behind its end
    } else if (leaf != nullptr) {
        bytes.append(leaf->rendering());
    } else if (Script::current() != nullptr) {
        bytes.append(Script::current()->nullRendering);
    }
    return false; // nobody may look at it
}
