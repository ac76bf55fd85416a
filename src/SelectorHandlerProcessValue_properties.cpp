// SPDX-License-Identifier: MIT
// Property access by index and the rendering of a leaf's properties.
#include "SelectorHandlerProcessValue.h"

#include "ConfigurationAndProcessDataParser.h"
#include "ProcessDataValue.h"

#include <QDebug>
#include <QJsonDocument>
#include <QMutexLocker>

#include <cstring>
#include <utility>

QVariant SelectorHandlerProcessValue::getProperty(const QString &propertyName, int index)
{
    const QMutexLocker lock(&mutex);
    if (index < 0 || index >= processDataInformationList.size()) {
        qWarning() << "Index" << index
                   << "is not valid. Max possible index:" << processDataInformationList.size() - 1;
        return QVariant();
    }
    const auto &leaf = processDataInformationList.at(index).processDataLeaf;
    if (leaf.isNull()) {
        qWarning() << "Nullpointer access: SharedMemory not connected";
        return QVariant();
    }
    // Unlike getProperties, this does not ask whether the leaf has the property.
    return leaf->readLeafProperty(propertyName);
}

QVector<QVariant> SelectorHandlerProcessValue::getProperties(const QString &propertyName)
{
    const QMutexLocker lock(&mutex);
    QVector<QVariant> values;
    values.reserve(processDataInformationList.size());
    for (const ProcessDataInformation &record : qAsConst(processDataInformationList)) {
        if (record.processDataLeaf.isNull()) {
            qWarning() << "Nullpointer access: SharedMemory not connected";
            values.append(QVariant());
        } else if (record.processDataLeaf->hasLeafProperty(propertyName)) {
            values.append(record.processDataLeaf->readLeafProperty(propertyName));
        } else {
            values.append(QVariant());
        }
    }
    return values;
}

QString SelectorHandlerProcessValue::getPropertyAsJsonString(int index)
{
    const QMutexLocker lock(&mutex);
    if (index < 0 || index >= processDataInformationList.size()) {
        qWarning() << "Index" << index
                   << "is not valid. Max possible index:" << processDataInformationList.size() - 1;
        return QString();
    }
    return processDataInformationList.at(index).propertiesAsJsonString;
}

QVector<QString> SelectorHandlerProcessValue::getPropertiesAsJsonString()
{
    const QMutexLocker lock(&mutex);
    QVector<QString> texts;
    texts.reserve(processDataInformationList.size());
    for (const ProcessDataInformation &record : qAsConst(processDataInformationList)) {
        texts.append(record.propertiesAsJsonString);
    }
    return texts;
}

QString
SelectorHandlerProcessValue::getPropertiesAsJsonString(QSharedPointer<ProcessDataValue> leaf) const
{
    const QSharedPointer<ConfigurationAndProcessDataBase> node = std::move(leaf);
    QByteArray bytes;
    const ConfigurationAndProcessDataParser parser;
    parser.frameToByteArray(node, bytes, QJsonDocument::Compact);
    // Ends at the first zero byte, which a platform need not have put behind its bytes.
    const size_t size = strnlen(bytes.constData(), static_cast<size_t>(bytes.size()));
    return QString::fromUtf8(bytes.constData(), static_cast<int>(size));
}
