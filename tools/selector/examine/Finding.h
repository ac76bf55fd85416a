// SPDX-License-Identifier: MIT
// What is wrong with a selector, a source or the system.
#ifndef FINDING_H
#define FINDING_H

#include "ExitCode.h"
#include "ProcessDataAccess.h"

#include <QObject>
#include <QString>

/// One reason. The codes are documented and never change their meaning.
struct Finding
{
    Q_GADGET

public:
    enum Code { // scripts read these names, with a small letter first
        None,
        Deactivated,
        InvalidUrl,
        WrongScheme,
        ServiceMissing,
        ServiceFailed,
        NoSuchInstance,
        NoSuchLeaf,
        NotReadable,
        ReadOnly,
        ValueRefused,
        NoSuchProperty,
        Duplicate,
        NotWritten,
        NotVerified,
        LeftOut,
        TimeLimit, ///< a service did not answer in time
        Denied, ///< permission is missing
        NotSupported, ///< the platform has no list that would be needed
        Stale, ///< a value that is older than wanted
        BusOutOfReach, // from here on findings about the system alone
        NotReady,
        NotRegistered,
        BadEntry, ///< of the registry
        BadDescription,
        BufferMissing,
        PublisherDead,
        NotDescribed,
        Leftover,
        OtherLayout,
        NotABuffer,
        OpenToAll,
    };
    Q_ENUM(Code)

    Finding() = default;
    Finding(Code code, const QString &text, const QString &advice = QString())
        : code(code)
        , text(text)
        , advice(advice)
    {
    }

    Code code = None;
    QString text; ///< for people
    QString advice; ///< what to do; empty where nothing is known to help

    bool isNone() const { return code == None; }

    /// The code as it stands in JSON: "noSuchLeaf" and the like; empty for None.
    QString codeName() const;

    /// What the reason means for a script.
    ExitCode exitCode() const;
};

/// How a question ended.
struct Answer
{
    ProcessDataAccess::Result result = ProcessDataAccess::Result::Ok;
    QString error; ///< why it is not Ok, for people

    bool isOk() const { return result == ProcessDataAccess::Result::Ok; }
};

/// Asks with a function that takes a place for the error.
template <typename Fetch> Answer ask(const Fetch &fetch)
{
    Answer answer;
    answer.result = fetch(answer.error);
    return answer;
}

/// What a question that was not answered well means.
///
/// @param service  that was asked; empty where that is said elsewhere
Finding unanswered(const Answer &answer, const QString &service = QString());

#endif
