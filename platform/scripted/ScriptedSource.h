// SPDX-License-Identifier: MIT
// What one scripted source of process data answers.
#ifndef SCRIPTEDSOURCE_H
#define SCRIPTEDSOURCE_H

#include "ScriptedLeaf.h"
#include "ScriptedReply.h"

#include <QSharedPointer>
#include <QString>
#include <QVariant>

class SourceScript;

/// The script of one instance (module, object, instance): everything works unless told otherwise.
///
/// Made by ScriptedPlatform::source. Announcements run the slots of clients before they return, so
/// a test needs no event loop and waits for nothing.
///
/// A handle: copies speak of the same source. Threads: the one that the handlers under test live
/// in.
class PROCESSDATAPLATFORM_EXPORT ScriptedSource
{
public:
    /// Adds a leaf, or gives it another value. Groups stand before the name: "drive/speed".
    ScriptedSource &leaf(const QString &path, const QVariant &value = {});
    /// The script of a leaf that was added; ends the program when there is no such leaf.
    ScriptedLeaf &at(const QString &path);
    /// The selector URL of a leaf, whether it was added or not.
    QString urlOf(const QString &path) const;

    /// The service dies: reading gives the last value with SourceLost, writing and fetching fail,
    /// clients hear nothing. Goes for all instances of the object, which are one service.
    void disappears();
    /// The service is back and announces all instances of the object. Clients that fetch find
    /// their leaves again, and every index of theirs has changed, as after a real restart.
    ///
    /// @returns how many fetches that set off
    int returns();

    /// Announces that the description changed and ends the fetches that clients begin thereupon:
    /// with the description, or with an error while fetches fail.
    ///
    /// @returns how many clients fetched; 0 when nobody uses the source
    int changeDescription();
    /// The same for a change of properties alone.
    int changeProperties();

    /// Fetches fail with this text until fetchesGive is called.
    ScriptedSource &fetchesFail(const QString &message);
    /// Fetches give this description from now on; what it says is of no account.
    ScriptedSource &fetchesGive(const QVariant &newDescription);
    /// What fetches give.
    QVariant description() const;

    /// There is no connection to the bus: goes for handlers that are made later.
    ScriptedSource &connectorMissing(bool on = true);
    /// Nobody owns the service's name. Goes for all instances of the object.
    ScriptedSource &interfaceInvalid(bool on = true);
    /// The buffer is retired, or lost its publisher, when it is attached.
    ScriptedSource &bufferInvalid(bool on = true);
    /// The description is refused when it is attached.
    ScriptedSource &rootMissing(bool on = true);
    /// No asynchronous fetch can be begun.
    ScriptedSource &asynchronousCallsMissing(bool on = true);

    /// The announcements alone; the test ends the fetches itself, late, never, or out of order.
    void announceDescription();
    /// @param instanceName  announced in place of this source's own
    void announceDescription(const QString &instanceName);
    /// The same for a change of properties.
    void announceProperties();
    /// @param instanceName  announced in place of this source's own
    void announceProperties(const QString &instanceName);
    /// The fetches that clients began, in order; a dead handle past the last one.
    ScriptedReply reply(int position) const;
    /// How many fetches clients began, ended ones included.
    int replyCount() const;

private:
    friend class SourceScript;
    explicit ScriptedSource(const QSharedPointer<SourceScript> &script);

    QSharedPointer<SourceScript> d;
};

#endif
