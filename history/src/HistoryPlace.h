// SPDX-License-Identifier: MIT
// Where a history is: a file or a server's database.
#ifndef HISTORYPLACE_H
#define HISTORYPLACE_H

#include <QString>
#include <QUrl>

struct HistoryPlace
{
    enum class Kind { Sqlite, Postgres };

    Kind kind = Kind::Sqlite;
    QString file; ///< of SQLite
    QUrl server; ///< of PostgreSQL

    /// Understands "sqlite:FILE", "FILE" and "postgresql://…".
    ///
    /// @returns an error for people, or empty
    static QString parse(const QString &text, HistoryPlace *place);

    bool isFile() const { return kind == Kind::Sqlite; }
    /// For messages; never with a password.
    QString shown() const;
};

namespace HistoryFile {

/// Why this process cannot open the file, as far as that shows without opening it: opening and
/// closing it would drop the locks that SQLite holds in this process.
///
/// @returns what is wrong and what to do, or empty
QString problem(const QString &file, bool writing);

/// Which file a path leads to now; two zeros for none.
struct Identity
{
    quint64 device = 0;
    quint64 inode = 0;
    bool operator==(const Identity &other) const
    {
        return device == other.device && inode == other.inode;
    }
    bool operator!=(const Identity &other) const { return !(*this == other); }
};
Identity identity(const QString &file);

/// The file and what SQLite keeps beside it.
qint64 bytes(const QString &file);

} // namespace HistoryFile

#endif
