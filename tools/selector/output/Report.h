// SPDX-License-Identifier: MIT
// Results of a command as a table, JSON or CSV.
#ifndef REPORT_H
#define REPORT_H

#include "ExitCode.h"
#include "PrintableText.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

enum class Format {
    Table, ///< for people
    Json, ///< one document; one object a line where results come over time
    Csv, ///< with a header line, fields quoted where needed (RFC 4180, lines end in LF)
    Pairs, ///< a selector and its value a line, as files of values have them
};

/// One cell: for people, and for CSV where that differs.
struct Cell
{
    Cell(const QString &text) // implicit: rows are written as lists of texts
        : text(text)
        , machineText(text)
    {
    }
    Cell(const QString &text, const QString &machineText)
        : text(text)
        , machineText(machineText)
    {
    }

    QString text;
    QString machineText;
    bool holdsValue = false; ///< when it is empty, it is an empty text and not nothing
};

using Row = QVector<Cell>;

struct Column
{
    /// Columns of CSV only grow at the end, so one that came later is not where people look for it.
    enum Place { Alike, LastInCsv, CsvAlone };

    QString key; ///< the header in CSV; in capitals the one of the table
    bool alignRight = false;
    Place place = Alike;
};

/// Columns by their keys, which stand with blanks between, in the order of the table. Behind a key
/// stand ">" when it is aligned right, "+" when it is among the last of CSV, "|" when no table has
/// it.
QVector<Column> columnsOf(const char *keys);

/// What came of one selector, module or other thing that was asked for.
struct Entry
{
    enum State {
        Good,
        Skipped, ///< deliberately left out: neither good nor a failure
        Doubtful, ///< a value that must not be trusted
        Failed,
    };

    QString subject; ///< what the reason on standard error is about
    QString reason; ///< empty when there is nothing to say
    State state = Good;
    ExitCode failure = ExitSomeFailed; ///< what it means for a script when it is not good
    QJsonObject json;
    QVector<Row> rows;
    QString pair; ///< its line of Format::Pairs

    /// What it means for a script.
    ExitCode exitCode() const;
};

struct Report
{
    QString schema; ///< name and version of the JSON form, such as "selector.read/1"
    QVector<Column> columns;
    QVector<Entry> entries;
    int quietColumn = -1; ///< the one that is left of --quiet; -1: the command has no such option
    bool quietNames = false; ///< --quiet lists what is there; else each entry has its lines

    /// ExitAllGood; or the gravest of its entries: ExitTimeLimit, ExitDenied, ExitSomeFailed.
    ExitCode exitCode() const;
};

/// Of two codes the one that decides: ExitTimeLimit, ExitDenied, ExitSomeFailed, ExitAllGood.
ExitCode graver(ExitCode one, ExitCode other);

struct Style
{
    Format format = Format::Table;
    bool colour = false; ///< of a table
    bool pretty = false; ///< JSON indented
    bool legend = true; ///< the header of a table or CSV
    bool quiet = false; ///< values only
    int width = 0; ///< columns of the screen that a table is made for; 0: for pipes and files
    qint64 now = 0; ///< what ages on a screen count from, in nanoseconds since the epoch
    bool breaks = false; ///< the screen would cut a line that is wider
};

/// Text in the colour of a state, when one is wanted.
QString inColourOf(Entry::State state, const QString &text, bool wanted);

/// A title, which stands out when colour is wanted.
QString asTitle(const QString &text, bool colour);

/// The whole report, each line ended.
QString render(const Report &report, const Style &style);

/// One line of a table without its end, for results that come over time.
QString renderTableLine(const QVector<Column> &columns, const QVector<int> &widths, const Row &row,
                        Entry::State state, bool colour);

/// The header of such a table.
QString renderTableHeader(const QVector<Column> &columns, const QVector<int> &widths, bool colour);

/// One line of CSV without its end.
QString renderCsvLine(const QStringList &fields);

/// What --quiet leaves of a cell, without the end of its line: its exact text, with escapes;
/// nothing of one that holds none.
QString renderQuietLine(const Cell &cell);

#endif
