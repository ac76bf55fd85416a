// SPDX-License-Identifier: MIT
// A parsed URL that cannot be copied.
#ifndef SELECTORURLHANDLER_H
#define SELECTORURLHANDLER_H

#include <QString>

class SelectorUrlHandler
{
public:
    explicit SelectorUrlHandler(const QString &selectorUrl);
    virtual ~SelectorUrlHandler();
    SelectorUrlHandler(const SelectorUrlHandler &) = delete;
    bool isValid() const;
    QString getScheme() const;
    QString getModuleName() const;
    QString getObjectName() const;
    QString getInstance() const;
    QString getUrl() const;
    bool isSelectorDeactivated() const;

private:
    QString parts[5];
    bool deactivated = false;
};

#endif
