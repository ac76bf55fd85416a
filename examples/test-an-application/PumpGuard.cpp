// SPDX-License-Identifier: MIT
// Stops a pump whose bearing gets too hot.
#include "PumpGuard.h"

namespace {

enum Selector { Temperature, Running };
const double highestTemperature = 90;

} // namespace

PumpGuard::PumpGuard(const QString &pump, QObject *parent)
    : QObject(parent)
    , handler(
          {pump + QStringLiteral("/bearing/temperature"), pump + QStringLiteral("/drive/running")},
          nullptr)
{
    using Handler = SelectorHandlerProcessValue;
    const auto look = [this](const QVector<int> &indices) {
        if (indices.contains(Temperature)) {
            Q_EMIT temperatureChanged();
        }
        check();
    };
    connect(&handler, qOverload<QVector<int>>(&Handler::processDataDescriptionChanged), this, look);
    connect(&handler, qOverload<QVector<int>>(&Handler::propertyChanged), this, look);
    check();
}

void PumpGuard::check()
{
    const State next = judged();
    if (next != current) {
        current = next;
        Q_EMIT stateChanged();
    }
}

QString PumpGuard::temperature()
{
    const ProcessValue value = handler.getValue(Temperature);
    if (value.getErrorType() != ProcessDataDefinitions::NoError) {
        return QStringLiteral("?");
    }
    const QString unit = handler.getProperty(QStringLiteral("unit"), Temperature).toString();
    return QStringLiteral("%1 %2").arg(value.getValue().toDouble(), 0, 'f', 1).arg(unit);
}

PumpGuard::State PumpGuard::judged()
{
    const ProcessValue value = handler.getValue(Temperature);
    if (value.getErrorType() != ProcessDataDefinitions::NoError) {
        return Blind;
    }
    if (value.getValue().toDouble() <= highestTemperature) {
        return Normal;
    }
    return handler.setValue(ProcessValue(false), Running) ? TooHot : NotStopping;
}
