// SPDX-License-Identifier: MIT
// Writes a list of values: all or nothing where wanted.
#ifndef APPLYPLAN_H
#define APPLYPLAN_H

#include "LeafCheck.h"
#include "LeafValue.h"
#include "Report.h"

class SelectorHandlerProcessValue;

struct ApplyItem
{
    enum Verdict {
        Left, ///< not written, because something else failed or it is deactivated
        Checked, ///< would be written
        Written,
        Verified, ///< written and read back
        Failed,
        Restored, ///< written, then set back to what it was
        NotRestored, ///< written, and could not be set back
    };

    CheckedLine checked;
    LeafValue before;
    Verdict verdict = Left;
    Finding finding; ///< why it failed, was left or could not be restored

    bool isWritten() const { return verdict == Written || verdict == Verified; }
};

/// What happens to a checked list.
struct ApplyOptions
{
    bool dryRun = false;
    bool verify = false;
    bool rollback = false;
};

/// How many values would be written; 0 when something is wrong with the list.
int valuesToWrite(const QVector<ApplyItem> &items);

/// Whether a leaf holds what was written to it: NotVerified, and what it holds, when not.
Finding readBack(SelectorHandlerProcessValue &handler, int position, const QVariant &written);

/// The value alone when it is good; else nothing.
QVariant goodValue(const LeafValue &value);

/// Nothing is written unless the whole list is right; the first write that fails ends the writing.
/// With verify each written leaf is read back once all are written. With rollback a failure sets
/// back what was written, last first. A signal that an InterruptHold of the caller keeps back fails
/// the next write.
///
/// @param handler  has the URLs of the items, in their order
void apply(QVector<ApplyItem> &items, const ApplyOptions &options,
           SelectorHandlerProcessValue &handler);

QVector<Column> applyColumns();
Entry applyEntry(const ApplyItem &item);

#endif
