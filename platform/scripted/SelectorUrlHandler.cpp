// SPDX-License-Identifier: MIT
// Selector URLs as the script parses them.
#include "SelectorUrlHandler.h"

#include "CallRecord.h"
#include "Script.h"

namespace {

const QString className = QStringLiteral("SelectorUrlHandler");

void called(const QString &url, const char *operation)
{
    CallRecord::instance().called(className, url, QLatin1String(operation));
}

} // namespace

SelectorUrlHandler::SelectorUrlHandler(const QString &selectorUrl)
{
    const ScriptedUrl answers = Script::answersFor(selectorUrl);
    url = answers.url;
    scheme = answers.scheme;
    moduleName = answers.moduleName;
    objectName = answers.objectName;
    instance = answers.instance;
    valid = answers.valid;
    deactivated = answers.deactivated;
    CallRecord::instance().born(className);
    CallRecord::instance().called(className, QString(), className,
                                  {CallRecord::quoted(selectorUrl)});
}

SelectorUrlHandler::~SelectorUrlHandler()
{
    CallRecord::instance().died(className, url);
}

bool SelectorUrlHandler::isValid() const
{
    called(url, "isValid");
    return valid;
}

QString SelectorUrlHandler::getScheme() const
{
    called(url, "getScheme");
    return scheme;
}

QString SelectorUrlHandler::getModuleName() const
{
    called(url, "getModuleName");
    return moduleName;
}

QString SelectorUrlHandler::getObjectName() const
{
    called(url, "getObjectName");
    return objectName;
}

QString SelectorUrlHandler::getInstance() const
{
    called(url, "getInstance");
    return instance;
}

QString SelectorUrlHandler::getUrl() const
{
    called(url, "getUrl");
    return url;
}

bool SelectorUrlHandler::isSelectorDeactivated() const
{
    called(url, "isSelectorDeactivated");
    return deactivated;
}
