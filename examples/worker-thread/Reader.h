// SPDX-License-Identifier: MIT
// Reads selectors in the thread that it lives in, and notifies other threads by signals.
#ifndef READER_H
#define READER_H

#include <ProcessValue.h>

#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>

class SelectorHandlerProcessValue;

/// Make it, move it to a thread with an event loop, and call start() there, by a signal or
/// QMetaObject::invokeMethod. It is to be destroyed in that thread too.
class Reader : public QObject
{
    Q_OBJECT

public:
    explicit Reader(QVector<QString> urls);
    ~Reader() override;

public Q_SLOTS:
    void start();

Q_SIGNALS:
    /// The values of one cycle, in the order of the URLs.
    void valuesRead(const QVector<ProcessValue> &values);

    /// These selectors changed their unit, range or type, or their service came up.
    void selectorsChanged(const QVector<int> &indices);

private:
    void readAll();

    const QVector<QString> urls;
    std::unique_ptr<SelectorHandlerProcessValue> handler;
    QTimer timer;
};

#endif
