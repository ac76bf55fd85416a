// SPDX-License-Identifier: MIT
// Parses one selector URL.
#ifndef SELECTORURLHANDLER_H
#define SELECTORURLHANDLER_H

#include "ProcessDataPlatformExport.h"

#include <QString>

/// One selector URL and its parts: scheme://module/object/instance/group/…/leaf[?deactivated].
///
/// The library makes one for each URL of a client's list and keeps it for as long as the list.
/// Parsing never fails: an invalid URL is known by isValid(). Parsing depends on no scheme; the
/// library refuses foreign ones itself.
///
/// Threads: immutable after construction; may be read in any thread.
class PROCESSDATAPLATFORM_EXPORT SelectorUrlHandler
{
public:
    /// @param selectorUrl  text as the client gave it
    explicit SelectorUrlHandler(const QString &selectorUrl);
    virtual ~SelectorUrlHandler();
    SelectorUrlHandler(const SelectorUrlHandler &) = default;
    SelectorUrlHandler(SelectorUrlHandler &&) = default;
    SelectorUrlHandler &operator=(const SelectorUrlHandler &) = default;
    SelectorUrlHandler &operator=(SelectorUrlHandler &&) = default;

    /// Whether the text is a selector URL. Asked once, for each URL that is not deactivated.
    bool isValid() const;

    /// The scheme as given. Compared exactly with the scheme of process-data selectors.
    QString getScheme() const;

    /// The module, decoded. Names the D-Bus service; the first part of the source's key.
    QString getModuleName() const;

    /// The object, decoded. Names the D-Bus object; the second part of the source's key.
    QString getObjectName() const;

    /// The instance, decoded; may be empty. The third part of the source's key.
    QString getInstance() const;

    /// The whole text as given: what ConfigurationAndProcessDataBase::getLeafProcessDataValue
    /// takes.
    QString getUrl() const;

    /// Whether the URL marks its selector as deactivated: it keeps its place and is never read or
    /// written. Asked before isValid(), and once for each position of a read or write: must be
    /// cheap.
    bool isSelectorDeactivated() const;

private:
    QString url;
    QString scheme;
    QString moduleName;
    QString objectName;
    QString instance;
    bool valid = false;
    bool deactivated = false;
};

#endif
