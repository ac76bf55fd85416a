// SPDX-License-Identifier: MIT
// One connection to a history's database.
#ifndef HISTORYCONNECTION_H
#define HISTORYCONNECTION_H

#include "HistoryPlace.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <QVector>

#include <memory>

/// Used in the thread that opened it.
class HistoryConnection
{
public:
    enum class Purpose { Reading, Writing };

    /// @param error  set when nothing is returned: names the place, what is wrong, what to do
    static std::unique_ptr<HistoryConnection> open(const HistoryPlace &place, Purpose purpose,
                                                   QString *error);
    ~HistoryConnection();
    HistoryConnection(const HistoryConnection &) = delete;
    HistoryConnection &operator=(const HistoryConnection &) = delete;

    const HistoryPlace &place() const { return where; }
    bool isSqlite() const { return where.isFile(); }

    /// Check with isActive(). Of a server the whole result is held in memory.
    QSqlQuery query() const;
    /// For long results. Of a server: no other query before its last row was read, or it is gone.
    QSqlQuery stream() const;
    /// A statement without a result.
    bool run(const QString &statement);
    /// One with values for its question marks, and its first row; empty when there is none.
    bool run(const QString &statement, const QVector<QVariant> &values,
             QVector<QVariant> *row = nullptr);
    /// Begins so that writing cannot fail halfway for another writer's lock.
    bool begin();
    bool commit();
    void rollBack();

    /// Of the last statement that run() failed.
    const QString &lastError() const { return failure; }
    /// A sentence about a database error: what it means and what to do, where that is known.
    QString explain(const QSqlError &error) const;
    bool note(const QSqlQuery &query);

    /// It is read without locks, because its folder cannot be written and nobody writes it.
    bool isFrozen() const { return frozen; }

private:
    HistoryConnection(HistoryPlace place, Purpose purpose);
    QString openFile();
    QString openServer();
    QString tune();

    HistoryPlace where;
    Purpose purpose;
    QString name;
    QString failure;
    bool frozen = false;
    int lockFile = -1;
    QString lock();
};

#endif
