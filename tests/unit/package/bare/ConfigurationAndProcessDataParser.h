// SPDX-License-Identifier: MIT
// The renderer.
#ifndef CONFIGURATIONANDPROCESSDATAPARSER_H
#define CONFIGURATIONANDPROCESSDATAPARSER_H

#include "ConfigurationAndProcessDataBase.h"

#include <QByteArray>
#include <QJsonDocument>

class ConfigurationAndProcessDataParser
{
public:
    ConfigurationAndProcessDataParser();
    ~ConfigurationAndProcessDataParser();
    ConfigurationAndProcessDataParser(const ConfigurationAndProcessDataParser &) = delete;
    bool frameToByteArray(const QSharedPointer<ConfigurationAndProcessDataBase> &node,
                          QByteArray &bytes, QJsonDocument::JsonFormat format) const;
};

#endif
