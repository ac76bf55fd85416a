// SPDX-License-Identifier: MIT
// A list of selectors as a table, for views of Qt Widgets and Qt Quick.
#include "SelectorTableModel.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString errorText(int errorType)
{
    switch (errorType) {
    case ProcessDataDefinitions::NoError:
        return QString();
    case ProcessDataDefinitions::NotInitialized:
        return SelectorTableModel::tr("not published yet");
    case ProcessDataDefinitions::SourceLost:
        return SelectorTableModel::tr("service is gone");
    case ProcessDataDefinitions::NoValue:
        return SelectorTableModel::tr("no value");
    case ProcessDataDefinitions::DeviceFault:
        return SelectorTableModel::tr("device fault");
    case ProcessDataDefinitions::OutOfRange:
        return SelectorTableModel::tr("out of range");
    default:
        return SelectorTableModel::tr("error %1").arg(errorType);
    }
}

QVariant readable(const QVariant &value)
{
    if (value.userType() == QMetaType::QByteArray) {
        return QString::fromLatin1("0x" + value.toByteArray().toHex());
    }
    return value; // numbers stay numbers: the view writes them as its locale does
}

// What the user typed, as the leaf takes it: bytes are typed as they are shown.
QVariant typed(const QVariant &input, const QVariant &shown)
{
    if (shown.userType() != QMetaType::QByteArray || input.userType() != QMetaType::QString) {
        return input;
    }
    const QByteArray digits = input.toString().mid(2).toLatin1().toLower();
    const QByteArray bytes = QByteArray::fromHex(digits);
    const bool isHex = input.toString().startsWith(QLatin1String("0x")) && bytes.toHex() == digits;
    return isHex ? QVariant(bytes) : QVariant();
}

} // namespace

SelectorTableModel::SelectorTableModel(QObject *parent)
    : QAbstractTableModel(parent)
    , handler(nullptr) // without a list, so that it hears of the end of the system's start-up
    , timer(this)
{
    QObject::connect(&timer, &QTimer::timeout, this, &SelectorTableModel::readValues);
    QObject::connect(
        &handler,
        qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged), this,
        &SelectorTableModel::updateRows);
    QObject::connect(&handler,
                     qOverload<QVector<int>>(&SelectorHandlerProcessValue::propertyChanged), this,
                     &SelectorTableModel::updateRows);
}

void SelectorTableModel::setSelectorUrls(const QVector<QString> &urls)
{
    beginResetModel();
    handler.setSelectorUrls(urls);
    rows.clear();
    for (const QString &url : urls) {
        rows.append({url, QVariant(), ProcessDataDefinitions::NoValue, QString(), false});
    }
    const QVector<ProcessValue> values = handler.getValues();
    for (int row = 0; row < rows.size(); ++row) {
        updateValue(row, values.at(row));
        readProperties(row);
    }
    endResetModel();
}

void SelectorTableModel::startReading(int period)
{
    timer.start(period);
}

// Views draw what they are notified of, so only runs of rows that differ are reported.
void SelectorTableModel::readValues()
{
    const QVector<ProcessValue> values = handler.getValues();
    int first = -1;
    for (int row = 0; row <= rows.size(); ++row) {
        const bool differs = row < rows.size() && updateValue(row, values.at(row));
        if (differs && first < 0) {
            first = row;
        } else if (!differs && first >= 0) {
            Q_EMIT dataChanged(index(first, ValueColumn), index(row - 1, ErrorColumn));
            first = -1;
        }
    }
}

bool SelectorTableModel::updateValue(int row, const ProcessValue &value)
{
    Row &held = rows[row];
    if (held.errorType == value.getErrorType() && held.value == value.getValue()) {
        return false;
    }
    held.value = value.getValue();
    held.errorType = value.getErrorType();
    return true;
}

// All properties in one text: asking for a single one of a selector without a leaf would warn.
void SelectorTableModel::readProperties(int row)
{
    const QJsonObject properties
        = QJsonDocument::fromJson(handler.getPropertyAsJsonString(row).toUtf8()).object();
    rows[row].unit = properties.value(QLatin1String("unit")).toString();
    rows[row].writable
        = !properties.isEmpty() && !properties.value(QLatin1String("readOnly")).toBool();
}

void SelectorTableModel::updateRows(const QVector<int> &indices)
{
    for (const int row : indices) {
        updateValue(row, handler.getValue(row));
        readProperties(row);
        Q_EMIT dataChanged(index(row, ValueColumn), index(row, ErrorColumn));
    }
}

int SelectorTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

int SelectorTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SelectorTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    switch (section) {
    case SelectorColumn:
        return tr("Selector");
    case ValueColumn:
        return tr("Value");
    case UnitColumn:
        return tr("Unit");
    case ErrorColumn:
        return tr("Error");
    default:
        return QVariant();
    }
}

QVariant SelectorTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return QVariant();
    }
    const Row &row = rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return display(row, index.column());
    case SelectorRole:
        return display(row, SelectorColumn);
    case ValueRole:
        return display(row, ValueColumn);
    case UnitRole:
        return display(row, UnitColumn);
    case ErrorRole:
        return display(row, ErrorColumn);
    case WritableRole:
        return row.writable;
    default:
        return QVariant();
    }
}

QVariant SelectorTableModel::display(const Row &row, int column) const
{
    switch (column) {
    case SelectorColumn:
        return row.url;
    case ValueColumn:
        return readable(row.value);
    case UnitColumn:
        return row.unit;
    default:
        return errorText(row.errorType);
    }
}

bool SelectorTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const bool isEdit = role == Qt::EditRole && index.column() == ValueColumn;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || (!isEdit && role != ValueRole)
        || !rows.at(index.row()).writable) {
        return false;
    }
    // Text is brought to the leaf's own type; what does not fit, or leaves its range, is refused.
    const Row &row = rows.at(index.row());
    const QVariant input = typed(value, row.value);
    if (!input.isValid() || !handler.setValue(ProcessValue(input), index.row())) {
        Q_EMIT valueRefused(row.url, value.toString());
        return false;
    }
    updateRows({index.row()});
    Q_EMIT valueWritten();
    return true;
}

Qt::ItemFlags SelectorTableModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    const bool editable
        = index.isValid() && index.column() == ValueColumn && rows.at(index.row()).writable;
    return editable ? usual | Qt::ItemIsEditable : usual;
}

QHash<int, QByteArray> SelectorTableModel::roleNames() const
{
    return {{SelectorRole, "selector"},
            {ValueRole, "value"},
            {UnitRole, "unit"},
            {ErrorRole, "error"},
            {WritableRole, "writable"}};
}
