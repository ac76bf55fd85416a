// SPDX-License-Identifier: MIT
// Value access by index: range rule, reading, writing.
#include "SelectorHandlerProcessValue.h"

#include "ProcessDataValue.h"
#include "SelectorUrlHandler.h"

#include <QDebug>
#include <QMutexLocker>

#include <new>
#include <utility>

namespace {

// How many positions before its turn a selector's memory is asked for; twice as many are no faster.
constexpr int positionsAhead = 8;

constexpr auto noValue = static_cast<ProcessDataDefinitions::ErrorTypes>(3);

} // namespace

// What a vector of a given length is filled with: error values, each made by its constructor, as a
// platform may expect, and in its place. A value has no default constructor; copies, or values made
// elsewhere and moved in, would cost more than reading them.
template <>
inline void QVector<ProcessValue>::defaultConstruct(ProcessValue *from, ProcessValue *to)
{
    while (from != to) {
        new (from++) ProcessValue(noValue);
    }
}

ProcessValue SelectorHandlerProcessValue::getValue(int index)
{
    QVector<ProcessValue> values = getValues(index, 1);
    if (values.isEmpty()) {
        return ProcessValue(noValue);
    }
    return std::move(values.first());
}

QVector<ProcessValue> SelectorHandlerProcessValue::getValues(int startIndex, int count)
{
    QVector<ProcessValue> values;
    const QMutexLocker lock(&mutex);
    getValuesInternal(startIndex, count, values);
    return values;
}

QVector<ProcessValue> SelectorHandlerProcessValue::getValues()
{
    QVector<ProcessValue> values;
    const QMutexLocker lock(&mutex);
    getValuesInternal(0, processDataInformationList.size(), values);
    return values;
}

bool SelectorHandlerProcessValue::setValue(const ProcessValue &value, int index)
{
    const QVector<ProcessValue> values{value};
    const QMutexLocker lock(&mutex);
    return setValuesInternal(index, 1, values);
}

bool SelectorHandlerProcessValue::setValues(const QVector<ProcessValue> &values, int startIndex)
{
    const QMutexLocker lock(&mutex);
    return setValuesInternal(startIndex, values.size(), values);
}

bool SelectorHandlerProcessValue::checkSetGetValuesInternalData(int startIndex, int count,
                                                                int size) const
{
    if (count <= 0 || startIndex < 0) {
        return false;
    }
    const qint64 lastIndex = static_cast<qint64>(startIndex) + count - 1; // may exceed an int
    if (lastIndex >= size) {
        qWarning() << "Access to Index Max index" << lastIndex
                   << "Index is not valid. Max possible index:" << size - 1;
        return false;
    }
    return true;
}

bool SelectorHandlerProcessValue::getValuesInternal(int startIndex, int count,
                                                    QVector<ProcessValue> &values) const
{
    bool ok = checkSetGetValuesInternalData(startIndex, count, processDataInformationList.size());
    if (!ok) {
        return false;
    }
    QVector<ProcessValue> run(count); // error values, see above; each is read in its place
    ProcessValue *value = run.data();
    const ProcessDataInformation *const records = processDataInformationList.constData();
    const ProcessDataInformation *record = records + startIndex;
    const ProcessDataInformation *const end = record + count;
    for (; record != end; ++record, ++value) {
        if (Q_LIKELY(end - record > positionsAhead)) {
            __builtin_prefetch(record[positionsAhead].processDataLeaf.data());
            __builtin_prefetch(record[positionsAhead].selectorUrlHandler.data());
        }
        if (Q_UNLIKELY(record->selectorUrlHandler.isNull())) {
            qWarning() << "No SelectorUrlHander selected (Nullpointer)";
            ok = false;
        } else if (record->selectorUrlHandler->isSelectorDeactivated()) {
            // keeps its place; not a failure
        } else if (Q_LIKELY(!record->processDataLeaf.isNull()
                            && record->sharedMemoryIterator != SharedMemoryIterator())) {
            record->processDataLeaf->getValue(*value, false);
        } else {
            *value = getValueInternal(ok, record->sharedMemoryIterator,
                                      static_cast<int>(record - records));
        }
    }
    if (values.isEmpty()) {
        values.swap(run);
    } else {
        values += run;
    }
    return ok;
}

ProcessValue
SelectorHandlerProcessValue::getValueInternal(bool &ok, SharedMemoryIterator sharedMemoryIterator,
                                              int index) const
{
    ProcessValue value(noValue);
    const ProcessDataInformation &record = processDataInformationList.at(index);
    if (record.processDataLeaf.isNull()) {
        ok = false;
        return value;
    }
    if (sharedMemoryIterator == SharedMemoryIterator()) {
        qWarning() << "No valid sharedMemory iterator. Index:" << index;
        ok = false;
        return value;
    }
    record.processDataLeaf->getValue(value, false);
    return value;
}

bool SelectorHandlerProcessValue::setValuesInternal(int startIndex, int count,
                                                    const QVector<ProcessValue> &values) const
{
    bool result
        = checkSetGetValuesInternalData(startIndex, count, processDataInformationList.size());
    if (!result) {
        return false;
    }
    for (int i = startIndex; i < startIndex + count; ++i) {
        const ProcessDataInformation &record = processDataInformationList.at(i);
        if (record.selectorUrlHandler.isNull()) {
            qWarning() << "No SelectorUrlHander selected (Nullpointer)";
            result = false;
        } else if (!record.selectorUrlHandler->isSelectorDeactivated()) {
            // The last attempted write decides; an earlier refusal is not remembered. Reading
            // remembers it.
            result = setValueInternal(record.sharedMemoryIterator, i, values.at(i - startIndex));
        }
    }
    return result;
}

bool SelectorHandlerProcessValue::setValueInternal(SharedMemoryIterator sharedMemoryIterator,
                                                   int index, const ProcessValue &value) const
{
    const ProcessDataInformation &record = processDataInformationList.at(index);
    if (record.processDataLeaf.isNull()) {
        return false;
    }
    if (sharedMemoryIterator == SharedMemoryIterator()) {
        qWarning() << "No valid sharedMemory iterator. Index:" << index;
        return false;
    }
    if (record.readOnly) {
        return false;
    }
    return record.processDataLeaf->setValue(value);
}
