// SPDX-License-Identifier: MIT
// Live process values and properties by their position in a list of selector URLs.
#ifndef SELECTORHANDLERPROCESSVALUE_H
#define SELECTORHANDLERPROCESSVALUE_H

#include "SelectorHandlerExport.h"

#include "ConfigurationAndProcessDataBase.h"
#include "ProcessValue.h"

#include <QMap>
#include <QMutex>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVariant>
#include <QVector>

class SelectorSharedMemoryHandler;
class SelectorUrlHandler;
class SystemStatusManagerDBusConnector;

/// Reads and writes live process values by their position in a list of selector URLs.
///
/// Create it in a thread that runs an event loop: announcements of changes arrive through it.
/// Nothing throws; a failure shows in the result and, where noted, in a warning. Deactivated and
/// unresolved selectors keep their place, so position i always means URL i.
///
/// Threads: setSelectorUrls and destruction belong to the thread that made the handler; all value
///          and property operations may be called in any thread. They wait while another one, or a
///          refresh of a source, holds the handler's lock: at most for one blocking D-Bus call for
///          each source that is being attached.
///
/// A client that reads once:
/// @include read-once/main.cpp
/// One that follows changes:
/// @include watch-changes/main.cpp
class SELECTORHANDLER_EXPORT SelectorHandlerProcessValue : public QObject
{
    Q_OBJECT

public:
    /// Makes a handler without selectors that refreshes its unattached sources once, when the
    /// system has finished starting up.
    ///
    /// @param parent  owner, or null
    /// Errors:  warns when there is no connection to the bus; it never refreshes by itself then.
    /// Threads: the one whose event loop is to deliver announcements.
    explicit SelectorHandlerProcessValue(QObject *parent);

    /// Makes a handler and applies a list at once. Such a handler does not listen for the end of
    /// the system's start-up.
    ///
    /// @param selectorUrls  as for setSelectorUrls
    /// @param parent        owner, or null
    /// Errors:  as setSelectorUrls; there is a handler in any case.
    /// Threads: as above. Blocks as setSelectorUrls does.
    SelectorHandlerProcessValue(const QVector<QString> &selectorUrls, QObject *parent);

    /// Lets go of all sources. Threads: the one that made the handler, when no other uses it.
    ~SelectorHandlerProcessValue() override;

    /// Replaces the whole list of selectors. Sources are built anew, also those that come back.
    ///
    /// @param selectorUrls  in the order in which the client will ask; an empty list drops
    ///                      everything
    /// Errors:  one warning for each URL that is invalid or of a foreign scheme; deactivated URLs
    ///          are not judged. A source that cannot be reached warns through its own operations.
    ///          Each URL gets its position whatever happens.
    /// Threads: the one that made the handler, also from within a change signal. One blocking D-Bus
    ///          call for each source; other threads' reads wait for all of them.
    void setSelectorUrls(const QVector<QString> &selectorUrls);

    /// Reads one selector.
    ///
    /// @param index  position in the URL list, 0-based
    /// @returns the value, in the leaf's own unit; the error value when it cannot be read
    /// Errors:  warns when the index lies past the list; silent when it is negative.
    /// Threads: any.
    virtual ProcessValue getValue(int index);

    /// Reads a run of selectors.
    ///
    /// @param startIndex  first position in the URL list, 0-based
    /// @param count       number of positions, at least 1
    /// @returns Shape:  exactly @p count values in list order; empty when the run leaves the list.
    ///          Units:  each leaf's own; nothing is converted here.
    /// Errors:  a selector that cannot be read holds the error value in its place. Warns when the
    ///          run ends past the list; silent for a negative start or a count below 1.
    /// Threads: any.
    virtual QVector<ProcessValue> getValues(int startIndex, int count);

    /// Reads all selectors.
    ///
    /// @returns one value for each URL, in list order; empty, silently, without selectors
    /// Units:   each leaf's own.
    /// Errors:  a selector that cannot be read holds the error value in its place.
    /// Threads: any.
    virtual QVector<ProcessValue> getValues();

    /// Reads one property of one selector's leaf.
    ///
    /// @param propertyName  a key of the leaf's description, such as "unit"
    /// @param index         position in the URL list, 0-based
    /// @returns the property, as of the last change of its source; what the leaf answers for a name
    ///          that it lacks; an invalid QVariant, after one warning, for an index outside the list
    ///          or a selector without a leaf
    /// Threads: any.
    virtual QVariant getProperty(const QString &propertyName, int index);

    /// Reads the same property of all selectors.
    ///
    /// @param propertyName  as above
    /// @returns one entry for each selector in list order; an invalid one where the leaf lacks the
    ///          property, or, after one warning each, where there is no leaf
    /// Threads: any.
    virtual QVector<QVariant> getProperties(const QString &propertyName);

    /// All properties of one selector as compact JSON text, as of the last change of its source.
    ///
    /// @param index  position in the URL list, 0-based
    /// @returns the text, UTF-8 up to the first zero byte of what the platform rendered. For a
    ///          selector without a leaf: an indented empty object ("{", line feed, "}", line feed)
    ///          as long as no change of its source was followed; after that what the platform
    ///          renders for no leaf. A null string, after one warning, for an index outside the
    ///          list.
    /// Threads: any.
    virtual QString getPropertyAsJsonString(int index);

    /// The same of all selectors.
    ///
    /// @returns one text for each URL, in list order; empty, silently, without selectors
    /// Threads: any.
    virtual QVector<QString> getPropertiesAsJsonString();

    /// Writes one selector.
    ///
    /// @param value  in the leaf's unit; must convert to the leaf's type without loss and lie
    ///               within its minimum and maximum
    /// @param index  position in the URL list, 0-based
    /// @returns whether it was written; false, silently, for a read-only or unresolved selector.
    ///          What the result is for a deactivated selector: true, nothing was to be done.
    /// Errors:  warns when the index lies past the list; silent when it is negative. The platform
    ///          warns of a value that it refuses; nothing is written then.
    /// Threads: any. Waits for other writers of the same buffer, for 100 ms at most on the
    ///          reference platform.
    virtual bool setValue(const ProcessValue &value, int index);

    /// Writes a run of selectors, in list order. What is refused ends nothing: the ones behind it
    /// are tried.
    ///
    /// @param values      one for each position; each in its leaf's unit
    /// @param startIndex  position of the first, 0-based
    /// @returns the outcome of the last write that was tried, not of all: to know each outcome,
    ///          write one by one. False when the run leaves the list (warns when it ends past it)
    ///          or is empty; nothing is written then.
    /// Errors:  the platform warns of each value that it refuses.
    /// Threads: any, as setValue.
    virtual bool setValues(const QVector<ProcessValue> &values, int startIndex);

Q_SIGNALS:
    /// The process-data descriptions of these selectors changed, or their source came up.
    ///
    /// @param indexList  positions in the URL list, never empty
    /// Threads: emitted in the handler's thread with its lock free; a slot may call every
    ///          operation. A client in another thread calls
    ///          qRegisterMetaType<QVector<int>>("QVector<int>") first, or connects by pointer to
    ///          member with Qt::QueuedConnection, which registers the argument's type: Qt 5.15
    ///          drops queued arguments of a type that nobody registered, also on an automatic
    ///          connection by pointer to member.
    void
    processDataDescriptionChanged(QVector<int> indexList); // clazy:exclude=function-args-by-ref

    /// Properties of these selectors changed, such as their unit.
    ///
    /// @param indexList  positions in the URL list, never empty
    /// Threads: as above.
    void propertyChanged(QVector<int> indexList); // clazy:exclude=function-args-by-ref

private Q_SLOTS:
    void orvalisStartupReady();
    void processDataDescriptionChanged(const QString &sharedMemoryKey);
    void propertyChanged(const QString &sharedMemoryKey);

private:
    Q_DISABLE_COPY(SelectorHandlerProcessValue)

    using SharedMemoryIterator
        = QMap<QString, QSharedPointer<SelectorSharedMemoryHandler>>::iterator;

    /// One selector, at its position in the client's list.
    struct ProcessDataInformation
    {
        ProcessDataInformation();

        ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
            processDataLeaf; ///< null: unresolved
        QSharedPointer<SelectorUrlHandler> selectorUrlHandler;
        QString propertiesAsJsonString; ///< an indented empty object until a leaf was found
        SharedMemoryIterator sharedMemoryIterator; ///< null iterator: no source
        bool readOnly = false; ///< as of the last setSelectorUrls; deliberately not refreshed
    };

    void connectToSource(ProcessDataInformation &record, int index);
    SharedMemoryIterator createSource(const QString &sharedMemoryKey,
                                      const SelectorUrlHandler &url);

    // All below: caller holds mutex, unless noted.
    bool checkSetGetValuesInternalData(int startIndex, int count, int size) const;
    bool getValuesInternal(int startIndex, int count, QVector<ProcessValue> &values) const;
    bool setValuesInternal(int startIndex, int count, const QVector<ProcessValue> &values) const;
    ProcessValue getValueInternal(bool &ok, SharedMemoryIterator sharedMemoryIterator,
                                  int index) const;
    bool setValueInternal(SharedMemoryIterator sharedMemoryIterator, int index,
                          const ProcessValue &value) const;
    QString getPropertiesAsJsonString(
        QSharedPointer<ProcessDataValue> leaf) const; // clazy:exclude=function-args-by-ref
    QVector<int> setNewSharedMemoryData(const SharedMemoryIterator &sharedMemoryIterator);

    // Caller must not hold mutex. May run client code: the iterator may be gone afterwards.
    void setNewSharedMemoryDataProcessDataDescriptionChanged(
        const SharedMemoryIterator &sharedMemoryIterator);

    QSharedPointer<SystemStatusManagerDBusConnector> statusManagerConnector;
    QMap<QString, QSharedPointer<SelectorSharedMemoryHandler>> sharedMemoryHandlers;
    QVector<ProcessDataInformation> processDataInformationList;
    QMutex mutex;
};

#endif
