// SPDX-License-Identifier: MIT
// Script of a platform without bus and shared memory: what it answers and what it was asked.
#ifndef SCRIPTEDPLATFORM_H
#define SCRIPTEDPLATFORM_H

#include "ScriptedNames.h"
#include "ScriptedSource.h"

#include <QByteArray>
#include <QScopedPointer>
#include <QString>
#include <QStringList>

#include <functional>

class Script;

/// What the platform says of the text of one selector.
struct ScriptedUrl
{
    QString url; ///< what SelectorUrlHandler::getUrl() gives
    QString scheme; ///< what getScheme() gives
    QString moduleName; ///< what getModuleName() gives
    QString objectName; ///< what getObjectName() gives
    QString instance; ///< what getInstance() gives
    bool valid = true; ///< what isValid() gives
    bool deactivated = false; ///< what isSelectorDeactivated() gives
    QString path = QString(); ///< names of groups and leaf, joined by "/"
};

/// The platform of a test: sources, their values and their failures, from a script.
///
/// A handler answers from the script for as long as this object lives, without a bus, shared memory
/// or any other process. Make it before the handlers under test and let it outlive them. One at a
/// time; a second one ends the program.
///
/// Threads: script, announcements and handlers belong to one thread; values may be scripted, read
/// and written in any.
///
/// A test of an application:
/// @include test-an-application/pump_guard_test.cpp
class PROCESSDATAPLATFORM_EXPORT ScriptedPlatform
{
public:
    /// @param names  what the device's platform has otherwise than the reference platform
    explicit ScriptedPlatform(const ScriptedNames &names = ScriptedNames());
    /// Ends the script; the handlers that used it are gone by then.
    ~ScriptedPlatform();
    ScriptedPlatform(const ScriptedPlatform &) = delete;
    ScriptedPlatform &operator=(const ScriptedPlatform &) = delete;

    /// The script of an instance, added when it is asked for the first time. A source that was
    /// never asked for does not exist.
    ScriptedSource &source(const QString &moduleName, const QString &objectName,
                           const QString &instance);

    /// Handlers that are made later find no connection to the bus.
    ScriptedPlatform &statusManagerMissing(bool on = true);
    /// The system has finished starting up: handlers that were made without a list look again at
    /// the sources that they could not attach. Runs their slots before it returns.
    void announceStartupReady();

    /// The answers for one text, prefilled with what parsing gives.
    ScriptedUrl &url(const QString &text);
    /// Bytes that the parser leaves for a selector without a leaf; none unless told.
    ScriptedPlatform &nullNodesRenderAs(const QByteArray &bytes);

    /// What the library has asked since the start or the last forgetCalls(), in order.
    ///
    /// @param classNames  only these contract classes; all when empty
    /// @returns one line a call: class, object in brackets, "::", operation and its arguments in
    ///          parentheses; for a destruction a tilde, class and object
    QStringList calls(const QStringList &classNames = {}) const;
    /// Begins the record anew.
    void forgetCalls();
    /// For long loops: stops writing calls down.
    void stopRecording();
    /// Living objects of a contract class. Roots count as ConfigurationAndProcessDataBase.
    int alive(const QString &className) const;
    /// Runs code of the test inside every call of an operation, in the thread of the call.
    ///
    /// @param operation  written as "ProcessDataValue::getValue"
    /// @param hook       must not call the handler, which holds its lock during most calls
    void during(const QString &operation, const std::function<void()> &hook);

private:
    const QScopedPointer<Script> d;
};

#endif
