// SPDX-License-Identifier: MIT
// A service that announces its description again and again while a client fetches it.
#ifndef BURST_H
#define BURST_H

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QThread>

#include <atomic>

/// Serves one instance whose description is another one for each fetch, and counts them.
///
/// Threads: lives in one of its own; arm() and fetches() may be called in any.
class BurstService : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// @param module       names the object, too
    /// @param description  as a publisher serves it, whose buffer clients attach to
    BurstService(const QString &module, const QString &description);
    ~BurstService() override;

    /// Counts from 0 again. While the next fetch waits for its answer, so many announcements follow.
    void arm(int announcements);
    void announce();
    int fetches() const { return count; }

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage announcement() const;

    QString nextDescription();

    const QString path;
    const QString description;
    QDBusConnection connection;
    std::atomic<int> count{0};
    std::atomic<int> armed{0};
    int version = 0; // stands as the session in what is served, so that every leaf's text differs
    QThread thread;
};

#endif
