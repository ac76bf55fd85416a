// SPDX-License-Identifier: MIT
// Publishes the process data of one instance: buffer, description, announcements.
#ifndef PROCESSDATAPUBLISHER_H
#define PROCESSDATAPUBLISHER_H

#include "ProcessDataPlatformExport.h"
#include "ProcessValue.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QPair>
#include <QScopedPointer>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>

class ProcessDataPublisherPrivate;

/// Everything that a service needs to publish one instance.
///
/// create() lays out and creates the buffer, exports the D-Bus object, registers the provider and
/// announces the instance. Destruction retires the buffer, removes its name and takes everything
/// back. Publishers of one process that share a module share its D-Bus service name.
///
/// Survives a restart of the bus daemon: the buffer goes on, and all is served and announced again.
///
/// Threads: create, use and destroy it in one thread; its event loop looks for client writes and
///          delivers the signals. A thread of the platform answers clients' fetches, so that a busy
///          publisher keeps nobody waiting and a client in the publisher's own thread can wait for
///          it.
///
/// A service that publishes a counter and takes a step from clients:
/// @include publish-counter/main.cpp
class PROCESSDATAPLATFORM_EXPORT ProcessDataPublisher : public QObject
{
    Q_OBJECT

public:
    /// Publishes what a new buffer holds before any client hears of it. Called once, with the
    /// publisher whose values to publish; it must neither end the publisher nor replace its
    /// description (that fails).
    using FirstValues = std::function<void(ProcessDataPublisher &)>;

    /// Publishes an instance.
    ///
    /// @param moduleName    not empty, without "_" and control characters
    /// @param objectName    the same
    /// @param instanceName  may be empty; without control characters
    /// @param description   document without "buffer" and "offset" keys; its "module", "object" and
    ///                      "instance", where present, must be the ones given. A QJsonObject keeps
    ///                      the digits of whole numbers up to an int64; createFromText() keeps all.
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns the running publisher; null when the description is refused, the buffer cannot be
    ///          made, the bus is out of reach or another process owns the module's service name.
    ///          Nothing is left behind then.
    static QSharedPointer<ProcessDataPublisher>
    create(const QString &moduleName, const QString &objectName, const QString &instanceName,
           const QJsonObject &description, QString *errorMessage = nullptr);

    /// The same, with values: a client that is told of the instance reads them at once. Without,
    /// it may read NotInitialized until they are published.
    ///
    /// @param moduleName    as above, and so on
    /// @param objectName    as above
    /// @param instanceName  as above
    /// @param description   as above
    /// @param firstValues   called once, when the buffer is made and before it is announced
    /// @param errorMessage  as above
    /// @returns as above
    static QSharedPointer<ProcessDataPublisher>
    create(const QString &moduleName, const QString &objectName, const QString &instanceName,
           const QJsonObject &description, const FirstValues &firstValues,
           QString *errorMessage = nullptr);

    /// Retires the buffer and removes its name: attached clients read the last values as
    /// SourceLost. Unregisters the module with its last publisher.
    ~ProcessDataPublisher() override;

    /// Publishes one value.
    ///
    /// @param path   names from the top joined by "/"
    /// @param value  as ProcessDataValue::setValue takes it, but also for read-only leaves and with
    ///               any error type; a value that is invalid keeps the stored one and only sets
    ///               error type and time
    /// @returns whether it was published
    /// Errors:  an unknown path, a value that does not fit: one warning, nothing written.
    bool publish(const QString &path, const ProcessValue &value);

    /// Publishes one value with NoError and the time of now; otherwise as above.
    bool publish(const QString &path, const QVariant &value);

    /// Publishes several values under one lock. All are checked first; with one bad value none is
    /// written.
    ///
    /// @param values  paths and values, as above
    /// @returns whether all were published
    /// Errors:  one warning for the first that is bad. Readers see each leaf whole, perhaps some
    ///          leaves before others.
    bool publish(const QVector<QPair<QString, ProcessValue>> &values);

    /// What the buffer holds now, whoever wrote it.
    ///
    /// @param path  names from the top joined by "/"
    /// @returns the value; one with error type NoValue for an unknown path
    ProcessValue value(const QString &path) const;

    /// Paths of all leaves in the order of the description.
    QStringList paths() const;

    /// The description as clients fetch it, but for digits past an int64: see descriptionText().
    QJsonObject description() const;

    /// Replaces the description. A new buffer is made; values of leaves that keep path and type
    /// carry over; clients are told by a description announcement.
    ///
    /// @param description   as for create
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns whether it was replaced; on failure the old description goes on
    bool replaceDescription(const QJsonObject &description, QString *errorMessage = nullptr);

    /// The same, with values for the leaves that are new or have another type.
    ///
    /// @param description   as above
    /// @param firstValues   called once, when the new buffer is made and before it is announced
    /// @param errorMessage  as above
    /// @returns as above
    bool replaceDescription(const QJsonObject &description, const FirstValues &firstValues,
                            QString *errorMessage = nullptr);

    /// Changes properties that do not touch the layout (unit, description, limits and the like);
    /// clients are told by a property announcement. Buffer and values stay.
    ///
    /// @param description   the whole of it, as for create
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns false when a rule is broken, or a leaf was added, removed, moved, retyped, resized
    ///          or its readOnly changed: that takes replaceDescription
    bool replaceProperties(const QJsonObject &description, QString *errorMessage = nullptr);

    /// How often client writes are looked for.
    ///
    /// @param milliseconds  between two looks; 20 unless told, 0 or less: never
    void setWriteDetectionInterval(int milliseconds);

    /// create() from a description as text: whole numbers keep every digit on their way to clients,
    /// as limits of uint64 leaves past an int64 need it. Spellings, order and unknown keys stay;
    /// space between values does not.
    ///
    /// @param moduleName    as for create
    /// @param objectName    as for create
    /// @param instanceName  as for create
    /// @param description   JSON in UTF-8, at most 64 MiB; else as for create
    /// @param firstValues   as for create; may be empty
    /// @param errorMessage  when given, receives one sentence that names what is wrong
    /// @returns as for create; null also for text that is not a JSON object
    static QSharedPointer<ProcessDataPublisher>
    createFromText(const QString &moduleName, const QString &objectName,
                   const QString &instanceName, const QByteArray &description,
                   const FirstValues &firstValues = FirstValues(), QString *errorMessage = nullptr);

    /// replaceDescription() with a description as for createFromText().
    bool replaceDescriptionText(const QByteArray &description,
                                const FirstValues &firstValues = FirstValues(),
                                QString *errorMessage = nullptr);

    /// replaceProperties() with a description as for createFromText().
    bool replacePropertiesText(const QByteArray &description, QString *errorMessage = nullptr);

    /// The description as clients fetch it, to the last digit.
    QByteArray descriptionText() const;

Q_SIGNALS:
    /// A client wrote a leaf. Several writes between two looks are reported once, with the last
    /// value.
    ///
    /// @param path   names from the top joined by "/"
    /// @param value  as value(path) gives it
    /// Threads: emitted in the publisher's thread, from its event loop or from within
    ///          replaceDescription. A slot may publish, and end the publisher.
    void valueWritten(const QString &path, const ProcessValue &value);

    /// The bus went away, or came back and all is exported and announced again.
    ///
    /// @param connected  whether it is there
    void connectedChanged(bool connected);

private:
    explicit ProcessDataPublisher(ProcessDataPublisherPrivate *state);
    static QSharedPointer<ProcessDataPublisher>
    start(std::unique_ptr<ProcessDataPublisherPrivate> state, const FirstValues &firstValues,
          const QString &error, QString *errorMessage);
    const QScopedPointer<ProcessDataPublisherPrivate> d;
};

#endif
