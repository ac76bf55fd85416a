// SPDX-License-Identifier: MIT
// Reads and writes the device's file.
#include "BareDevice.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace {

QJsonObject content()
{
    QFile file(qEnvironmentVariable("BARE_DEVICE"));
    return file.exists() && file.open(QIODevice::ReadOnly)
        ? QJsonDocument::fromJson(file.readAll()).object()
        : QJsonObject();
}

template <typename Wanted> QJsonObject findDescription(const Wanted &wanted)
{
    const QJsonArray descriptions = content().value(QLatin1String("descriptions")).toArray();
    for (const QJsonValue &one : descriptions) {
        if (wanted(one.toObject())) {
            return one.toObject();
        }
    }
    return {};
}

} // namespace

bool BareDevice::isThere()
{
    return !content().isEmpty();
}

bool BareDevice::serves(const QString &module)
{
    return !findDescription([&](const QJsonObject &one) {
                return one.value(QLatin1String("module")) == module;
            }).isEmpty();
}

QJsonObject BareDevice::description(const QString &module, const QString &object,
                                    const QString &instance)
{
    return findDescription([&](const QJsonObject &one) {
        return one.value(QLatin1String("module")) == module
            && one.value(QLatin1String("object")) == object
            && one.value(QLatin1String("instance")) == instance;
    });
}

QJsonObject BareDevice::value(const QString &key)
{
    return content().value(QLatin1String("values")).toObject().value(key).toObject();
}

bool BareDevice::setValue(const QString &key, const QJsonObject &value)
{
    QJsonObject all = content();
    QJsonObject values = all.value(QLatin1String("values")).toObject();
    values.insert(key, value);
    all.insert(QStringLiteral("values"), values);
    QSaveFile file(qEnvironmentVariable("BARE_DEVICE"));
    const QByteArray text = QJsonDocument(all).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}
