// SPDX-License-Identifier: MIT
// Stops a pump whose bearing gets too hot.
#ifndef PUMPGUARD_H
#define PUMPGUARD_H

#include <SelectorHandlerProcessValue.h>

#include <QObject>
#include <QString>

/// Watches one pump. The application calls check() once a second.
class PumpGuard : public QObject
{
    Q_OBJECT

public:
    enum State {
        Blind, ///< the temperature cannot be trusted
        Normal,
        TooHot, ///< the drive has been told to stop
        NotStopping, ///< too hot, and the drive does not take the order
    };
    Q_ENUM(State)

    /// @param pump  the start of its selector URLs: processdata://MODULE/OBJECT/INSTANCE
    explicit PumpGuard(const QString &pump, QObject *parent = nullptr);

    void check();
    State state() const { return current; }
    /// The temperature as people read it, such as "71.5 °C".
    QString temperature();

Q_SIGNALS:
    void stateChanged();
    /// The unit is another one, or the pump's description changed.
    void temperatureChanged();

private:
    State judged();

    SelectorHandlerProcessValue handler;
    State current = Blind;
};

#endif
