// SPDX-License-Identifier: MIT
// Renders a node of a process-data tree as JSON.
#ifndef CONFIGURATIONANDPROCESSDATAPARSER_H
#define CONFIGURATIONANDPROCESSDATAPARSER_H

#include "ProcessDataPlatformExport.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QSharedPointer>

class ConfigurationAndProcessDataBase;

/// Short-lived: the library makes one on the stack for each rendering.
///
/// Threads: reentrant; distinct objects may be used in distinct threads.
class PROCESSDATAPLATFORM_EXPORT ConfigurationAndProcessDataParser
{
public:
    ConfigurationAndProcessDataParser();
    // NOLINTNEXTLINE(performance-trivially-destructible): each platform brings its own body
    ~ConfigurationAndProcessDataParser();
    ConfigurationAndProcessDataParser(const ConfigurationAndProcessDataParser &) = delete;
    ConfigurationAndProcessDataParser &operator=(const ConfigurationAndProcessDataParser &)
        = delete;

    /// Appends the JSON text of a node.
    ///
    /// Called by the library for each selector that gets a leaf, and after each change of a source
    /// for each of its selectors, then also with a null node. The library compares the texts: nodes
    /// that are equal for a client must render to equal text, and nodes that differ to different
    /// text.
    ///
    /// @param node    a leaf as its base; may be null
    /// @param bytes   receives the text, UTF-8, appended; empty when the library calls
    /// @param format  the library passes QJsonDocument::Compact
    /// @returns whether a text was appended; the library does not look at it
    bool frameToByteArray(const QSharedPointer<ConfigurationAndProcessDataBase> &node,
                          QByteArray &bytes, QJsonDocument::JsonFormat format) const;
};

#endif
