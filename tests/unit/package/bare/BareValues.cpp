// SPDX-License-Identifier: MIT
// Values: the tree of a description, and its leaves in the device's file.
#include "BareDevice.h"
#include "ConfigurationAndProcessDataParser.h"
#include "ProcessDataManager.h"
#include "ProcessDataValue.h"
#include "ProcessValue.h"

#include <QDateTime>
#include <QJsonArray>
#include <QUrl>

namespace {

constexpr qint64 microsecondsPerMillisecond = 1000;

int typeOf(const QString &name)
{
    return name == QLatin1String("bool")  ? QMetaType::Bool
        : name == QLatin1String("int32")  ? QMetaType::Int
        : name == QLatin1String("string") ? QMetaType::QString
                                          : QMetaType::Double;
}

} // namespace

int ProcessValue::made = 0;
int ProcessValue::copied = 0;
ProcessValue::ProcessValue(ProcessDataDefinitions::ErrorTypes errorType)
    : errorType(errorType)
{
    ++made;
}
ProcessValue::ProcessValue(const QVariant &content, ProcessDataDefinitions::ErrorTypes state,
                           qint64 since)
    : value(content)
    , errorType(state)
    , time(since)
{
}
ProcessValue::~ProcessValue() = default;
ProcessValue::ProcessValue(const ProcessValue &other)
    : value(other.value)
    , errorType(other.errorType)
    , time(other.time)
{
    ++copied;
}
ProcessValue &ProcessValue::operator=(const ProcessValue &other) = default;

ConfigurationAndProcessDataBase::ConfigurationAndProcessDataBase() = default;
ConfigurationAndProcessDataBase::~ConfigurationAndProcessDataBase() = default;
ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ConfigurationAndProcessDataBase::getLeafProcessDataValue(const QString &url)
{
    const QString key = url.section(QStringLiteral("://"), 1).section(QLatin1Char('?'), 0, 0);
    return leaves.value(QUrl::fromPercentEncoding(key.toUtf8()));
}
QVariant ConfigurationAndProcessDataBase::readLeafProperty(const QString &name)
{
    return properties.value(name).toVariant();
}
bool ConfigurationAndProcessDataBase::hasLeafProperty(const QString &name)
{
    return properties.contains(name);
}

ProcessDataValue::ProcessDataValue() = default;
ProcessDataValue::~ProcessDataValue() = default;
bool ProcessDataValue::getValue(ProcessValue &value, bool) const
{
    const QJsonObject now = BareDevice::value(key);
    if (now.isEmpty()) {
        value = ProcessValue(ProcessDataDefinitions::ErrorTypes::Unobtained);
        return true;
    }
    QVariant content = now.value(QLatin1String("value")).toVariant();
    content.convert(typeOf(properties.value(QLatin1String("type")).toString()));
    const auto state = static_cast<ProcessDataDefinitions::ErrorTypes>(
        now.value(QLatin1String("state")).toInt());
    value = ProcessValue(content, state, now.value(QLatin1String("since")).toString().toLongLong());
    return true;
}
bool ProcessDataValue::setValue(const ProcessValue &value)
{
    QVariant content = value.content();
    if (properties.value(QLatin1String("readOnly")).toBool()
        || !content.convert(typeOf(properties.value(QLatin1String("type")).toString()))) {
        return false;
    }
    const qint64 now = QDateTime::currentMSecsSinceEpoch() * microsecondsPerMillisecond;
    return BareDevice::setValue(key,
                                {{QStringLiteral("value"), QJsonValue::fromVariant(content)},
                                 {QStringLiteral("since"), QString::number(now)}});
}

ConfigurationAndProcessDataParser::ConfigurationAndProcessDataParser() = default;
ConfigurationAndProcessDataParser::~ConfigurationAndProcessDataParser() = default;
bool ConfigurationAndProcessDataParser::frameToByteArray(
    const QSharedPointer<ConfigurationAndProcessDataBase> &node, QByteArray &bytes,
    QJsonDocument::JsonFormat format) const
{
    if (node.isNull()) {
        return false;
    }
    bytes.append(QJsonDocument(node->properties).toJson(format));
    return true;
}

SharedMemory::SharedMemory() = default;
SharedMemory::~SharedMemory() = default;
ProcessDataManager::ProcessDataManager() = default;
ProcessDataManager::~ProcessDataManager() = default;
void ProcessDataManager::addLeaves(const QJsonArray &elements, const QString &prefix)
{
    for (const QJsonValue &element : elements) {
        const QJsonObject properties = element.toObject();
        const QString key = prefix + properties.value(QLatin1String("name")).toString();
        if (properties.contains(QLatin1String("elements"))) {
            addLeaves(properties.value(QLatin1String("elements")).toArray(),
                      key + QLatin1Char('/'));
            continue;
        }
        const QSharedPointer<ProcessDataValue> leaf(new ProcessDataValue);
        leaf->properties = properties;
        leaf->key = key;
        root->leaves.insert(key, leaf);
    }
}
QSharedPointer<ConfigurationAndProcessDataBase>
ProcessDataManager::createProcessDataFromJson(const QVariant &description, const QString &,
                                              InitTypeSharedMemory)
{
    const QJsonObject document = QJsonDocument::fromJson(description.toByteArray()).object();
    if (document.isEmpty()) {
        return {};
    }
    root.reset(new ConfigurationAndProcessDataBase);
    QString place;
    for (const char *part : {"module", "object", "instance"}) {
        place += document.value(QLatin1String(part)).toString() + QLatin1Char('/');
    }
    addLeaves(document.value(QLatin1String("elements")).toArray(), place);
    return root;
}
bool ProcessDataManager::isBufferValid() const
{
    return !root.isNull();
}
