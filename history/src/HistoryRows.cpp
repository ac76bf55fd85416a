// SPDX-License-Identifier: MIT
// Puts many rows into the table of samples with few statements.
#include "HistoryRows.h"

#include "HistorySchema.h"
#include "HistorySummary.h"

#include <QByteArrayList>
#include <QSqlError>

#include <array>
#include <utility>

namespace {

// Rows of one statement: Qt's share of a row shrinks with it, SQLite's grows from about here on.
constexpr size_t together = 8;
constexpr size_t arrayLength = 8192;

QString insertion(size_t rows)
{
    QStringList places;
    for (size_t i = 0; i < rows; ++i) {
        places << QStringLiteral("(?,?,?,?,?,?)");
    }
    return QStringLiteral("INSERT INTO samples (series, time, turn, value, error, late) VALUES ")
        + places.join(QLatin1Char(','));
}

// One column as the literal of an array; one constant while all of its rows are the same.
class Column
{
public:
    Column(const char *type, QByteArray constant)
        : type(type)
        , constant(std::move(constant))
    {
    }

    void add(const QByteArray &value)
    {
        array += array.isEmpty() ? '{' : ',';
        array += value;
        varies = varies || value != constant;
    }

    void finish(QByteArrayList *arrays, QByteArrayList *names, QByteArrayList *results) const
    {
        if (!varies) {
            results->append(constant + "::" + type);
            return;
        }
        names->append("c" + QByteArray::number(names->size()));
        results->append(names->constLast());
        arrays->append("'" + array + "}'::" + type + "[]");
    }

private:
    QByteArray type;
    QByteArray constant;
    QByteArray array;
    bool varies = false;
};

class Arrays
{
public:
    void add(const HistoryRow &row)
    {
        const int type = row.value.userType();
        static const QByteArray null("NULL");
        columns[0].add(QByteArray::number(row.series));
        columns[1].add(QByteArray::number(row.time));
        columns[2].add(QByteArray::number(row.turn));
        columns[3].add(type == QMetaType::LongLong ? QByteArray::number(row.value.toLongLong())
                                                   : null);
        columns[4].add(type == QMetaType::Double ? QByteArray::number(row.value.toDouble(), 'g', 17)
                                                 : null);
        columns[5].add(type == QMetaType::QByteArray
                           ? "\"\\\\x" + row.value.toByteArray().toHex() + '"'
                           : null);
        columns[6].add(QByteArray::number(row.error));
        columns[7].add(QByteArray::number(int(row.late)));
    }

    QString statement() const
    {
        QByteArrayList arrays;
        QByteArrayList names;
        QByteArrayList results;
        for (const Column &column : columns) {
            column.finish(&arrays, &names, &results);
        }
        return QString::fromLatin1(
            "INSERT INTO samples (series, time, turn, whole, real, bytes, error, late) SELECT "
            + results.join(',') + " FROM unnest(" + arrays.join(',') + ") AS rows("
            + names.join(',') + ')');
    }

private:
    // Series and time have no constant: without any array there would be no rows.
    std::array<Column, 8> columns{{{"bigint", {}},
                                   {"bigint", {}},
                                   {"int", "0"},
                                   {"bigint", "NULL"},
                                   {"float8", "NULL"},
                                   {"bytea", "NULL"},
                                   {"int", "0"},
                                   {"int", "0"}}};
};

} // namespace

HistoryRows::HistoryRows(HistoryConnection &connection)
    : connection(connection)
    , single(connection.query())
    , several(connection.query())
{
}

bool HistoryRows::add(HistoryRow row)
{
    rows.push_back(std::move(row));
    return rows.size() < (connection.isSqlite() ? together : arrayLength) || flush();
}

bool HistoryRows::flush()
{
    const bool done = rows.empty() || (connection.isSqlite() ? flushBound() : flushArrays());
    rows.clear();
    return done;
}

void HistoryRows::clear()
{
    rows.clear();
    days.clear(); // a partition may have been made in a transaction that failed
}

bool HistoryRows::bind(QSqlQuery &statement, size_t first, size_t count)
{
    int place = 0;
    for (size_t i = first; i < first + count; ++i) {
        const HistoryRow &row = rows[i];
        statement.bindValue(place++, row.series);
        statement.bindValue(place++, row.time);
        statement.bindValue(place++, row.turn);
        statement.bindValue(place++, row.value);
        statement.bindValue(place++, row.error);
        statement.bindValue(place++, int(row.late));
    }
    statement.exec();
    return connection.note(statement);
}

bool HistoryRows::flushBound()
{
    if (!prepared) {
        prepared = single.prepare(insertion(1)) && several.prepare(insertion(together));
    }
    if (rows.size() == together) {
        return bind(several, 0, together);
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        if (!bind(single, i, 1)) {
            return false;
        }
    }
    return true;
}

bool HistoryRows::flushArrays()
{
    if (!makeDays()) {
        return false;
    }
    Arrays arrays;
    for (const HistoryRow &row : rows) {
        arrays.add(row);
    }
    return connection.run(arrays.statement());
}

bool HistoryRows::makeDays()
{
    for (const HistoryRow &row : rows) {
        const qint64 day = HistoryLevels::piece(row.time, HistorySchema::dayLength);
        if (days.contains(day) || !HistorySchema::hasPartition(day)) {
            continue;
        }
        if (!HistorySchema::makeDay(connection, day)) {
            return false;
        }
        days.insert(day);
    }
    return true;
}
