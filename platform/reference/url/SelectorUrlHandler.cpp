// SPDX-License-Identifier: MIT
// One parsed selector URL.
#include "SelectorUrlHandler.h"

#include "SelectorUrlParser.h"

SelectorUrlHandler::SelectorUrlHandler(const QString &selectorUrl)
    : url(selectorUrl)
{
    const SelectorUrlParts parts = parseSelectorUrl(selectorUrl);
    scheme = parts.scheme;
    moduleName = parts.source.module;
    objectName = parts.source.object;
    instance = parts.source.instance;
    valid = parts.valid;
    deactivated = parts.deactivated;
}

SelectorUrlHandler::~SelectorUrlHandler() = default;

bool SelectorUrlHandler::isValid() const
{
    return valid;
}

QString SelectorUrlHandler::getScheme() const
{
    return scheme;
}

QString SelectorUrlHandler::getModuleName() const
{
    return moduleName;
}

QString SelectorUrlHandler::getObjectName() const
{
    return objectName;
}

QString SelectorUrlHandler::getInstance() const
{
    return instance;
}

QString SelectorUrlHandler::getUrl() const
{
    return url;
}

bool SelectorUrlHandler::isSelectorDeactivated() const
{
    return deactivated;
}
