// SPDX-License-Identifier: MIT
// A list of selectors as a table, for views of Qt Widgets and Qt Quick.
#ifndef SELECTORTABLEMODEL_H
#define SELECTORTABLEMODEL_H

#include <SelectorHandlerProcessValue.h>

#include <QAbstractTableModel>
#include <QString>
#include <QTimer>
#include <QVector>

/// One row for each selector, in the list's order: its URL, value, unit and error type. A value can
/// be edited when its leaf can be written.
///
/// Views of Qt Quick, which know rows and names, find the same as roles: selector, value, unit,
/// error, writable. They write by assigning to "value".
///
/// Threads: the user interface's.
class SelectorTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { SelectorColumn, ValueColumn, UnitColumn, ErrorColumn, ColumnCount };
    enum Role { SelectorRole = Qt::UserRole, ValueRole, UnitRole, ErrorRole, WritableRole };

    explicit SelectorTableModel(QObject *parent = nullptr);

    /// Replaces all rows.
    void setSelectorUrls(const QVector<QString> &urls);

    /// How often the values are read, in milliseconds; not by itself until this was called.
    void startReading(int period);

    /// Reads all values once and notifies views of the rows that differ.
    void readValues();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// A value was not written: it does not fit the leaf's type or limits, or the service is gone.
    ///
    /// @param selector  whose value was edited
    /// @param text      what was typed
    void valueRefused(const QString &selector, const QString &text);

    /// A value that was edited has been written.
    void valueWritten();

private:
    struct Row
    {
        QString url;
        QVariant value;
        int errorType;
        QString unit;
        bool writable;
    };

    bool updateValue(int row, const ProcessValue &value);
    void readProperties(int row);
    void updateRows(const QVector<int> &indices);
    QVariant display(const Row &row, int column) const;

    SelectorHandlerProcessValue handler;
    QVector<Row> rows;
    QTimer timer;
};

#endif
