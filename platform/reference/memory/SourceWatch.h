// SPDX-License-Identifier: MIT
// Lets whoever reads a lost or outdated source have its service asked what was missed.
#ifndef SOURCEWATCH_H
#define SOURCEWATCH_H

#include "SourceName.h"

#include <QEnableSharedFromThis>
#include <QSharedPointer>
#include <QString>

#include <atomic>

struct ProcessDataDescription;

/// One for each attached tree. Costs a read of a living source nothing: it is not touched.
///
/// Threads: any.
class SourceWatch : public QEnableSharedFromThis<SourceWatch>
{
public:
    /// Takes over a source that was read while it was lost or outdated; called in the reading thread, once until
    /// takeRead() was false.
    using Handler = void (*)(const QSharedPointer<SourceWatch> &source);

    /// @param handler  null for nobody
    static void setHandler(Handler handler);

    /// @param token  of the description's text
    explicit SourceWatch(const ProcessDataDescription &description, QString token = QString());

    /// The source was read and is lost, or has changed since its description was fetched. Only the first such read calls the handler.
    void noteLostRead();

    /// Whether it was read since this was last asked. False ends the watch: the next read starts a
    /// new one.
    bool takeRead();

    /// Ends the watch whether it was read or not.
    void forgetReads() { state = Unwatched; }

    /// Nobody can read it any more.
    void end() { ended = true; }
    bool hasEnded() const { return ended; }

    const SourceName name;
    const QString bufferName; ///< with its leading slash
    const QString token; ///< of the text that it was built of

private:
    enum State {
        Unwatched, // the next read reports it
        Watched, // waits to be read again
        Read, // waits for takeRead()
    };

    std::atomic<State> state{Unwatched};
    std::atomic<bool> ended{false};
};

#endif
