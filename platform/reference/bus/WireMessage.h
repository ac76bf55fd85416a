// SPDX-License-Identifier: MIT
// Messages of a serving connection, as libdbus holds them.
#ifndef WIREMESSAGE_H
#define WIREMESSAGE_H

#include <QString>
#include <QVariantList>

#include <memory>

struct DBusMessage;

/// A message with its reference. Null for none.
using WireMessage = std::shared_ptr<DBusMessage>;

/// What a serving object says to one call.
struct BusAnswer
{
    enum class Kind {
        NotMine, ///< the object has no such method
        Withheld, ///< the object answers later, or never
        Values,
        Error,
    };

    static BusAnswer values(const QVariantList &values) { return {Kind::Values, values, {}, {}}; }
    static BusAnswer withheld() { return {Kind::Withheld, {}, {}, {}}; }

    /// @param text  for people; cut to a few hundred characters, whatever of the call it repeats
    static BusAnswer error(const QString &name, const QString &text)
    {
        return {Kind::Error, {}, name, text};
    }

    Kind kind = Kind::NotMine;
    QVariantList content; ///< see Wire::append()
    QString errorName;
    QString errorText;
};

/// Threads: any, each message in one at a time.
namespace Wire {

WireMessage adopt(DBusMessage *message); ///< takes a reference over
WireMessage share(DBusMessage *message); ///< takes one of its own

/// A call that starts no service.
WireMessage call(const QString &service, const QString &path, const QString &interface,
                 const QString &member, const QVariantList &values = {});
WireMessage signal(const QString &path, const QString &interface, const QString &member,
                   const QVariantList &values = {});

/// @param answer  values or an error
WireMessage reply(const WireMessage &call, const BusAnswer &answer);

/// Appends values: QString and QByteArray (UTF-8) as "s", bool as "b", unsigned as "u", QStringList
/// as "as", QDBusVariant as "v", QVariantMap as "a{sv}". False for anything else.
bool append(const WireMessage &message, const QVariantList &values);

/// An argument that is a text; null otherwise.
QString text(const WireMessage &message, int position);
quint32 number(const WireMessage &message, int position);

bool isReturn(const WireMessage &message);
QString errorName(const WireMessage &message);

/// Bytes that the arguments take, about.
///
/// @param limit  at which counting stops
qint64 size(const WireMessage &message, qint64 limit);

/// Bytes that values take in a message, about.
qint64 size(const QVariantList &values);

/// The beginning of a text that came from others, short enough to be repeated.
QString shortened(const QString &text, int length);
}

#endif
