// SPDX-License-Identifier: MIT
// Which faults there are, and which keys each takes.
#include "FaultTable.h"

namespace {

const QString source = QStringLiteral("source");
const QString module = QStringLiteral("module");

} // namespace

const QHash<QString, FaultKeys> &faults()
{
    const QString count = QStringLiteral("count");
    const QString text = QStringLiteral("text");
    const QString leaf = QStringLiteral("leaf");
    static const QHash<QString, FaultKeys> table{
        {QStringLiteral("reply-normally"), {Fault::ReplyNormally, {source}, {}}},
        {QStringLiteral("reply-late"),
         {Fault::ReplyLate, {source, QStringLiteral("delay")}, {count}}},
        {QStringLiteral("reply-never"), {Fault::ReplyNever, {source}, {count}}},
        {QStringLiteral("reply-error"),
         {Fault::ReplyError, {source}, {QStringLiteral("error"), text, count}}},
        {QStringLiteral("reply-text"), {Fault::ReplyText, {source, text}, {count}}},
        {QStringLiteral("reply-huge"),
         {Fault::ReplyHuge, {source, QStringLiteral("bytes")}, {count}}},
        {QStringLiteral("vanish"), {Fault::Vanish, {module}, {}}},
        {QStringLiteral("return"), {Fault::Return, {module}, {}}},
        {QStringLiteral("kill"), {Fault::Kill, {}, {}}},
        {QStringLiteral("kill-in-write"),
         {Fault::KillInWrite, {source, leaf}, {QStringLiteral("writer")}}},
        {QStringLiteral("retype"),
         {Fault::Retype, {source, leaf, QStringLiteral("type")}, {QStringLiteral("capacity")}}},
        {QStringLiteral("storm"), {Fault::Storm, {source, count}, {QStringLiteral("change")}}},
        {QStringLiteral("permissions"), {Fault::Permissions, {source, QStringLiteral("mode")}, {}}},
    };
    return table;
}

QString placeKeyOf(const QString &fault)
{
    const QStringList required = faults().value(fault).required;
    for (const QString &key : {source, module}) {
        if (required.contains(key)) {
            return key;
        }
    }
    return {};
}

bool takesNumber(const QString &key)
{
    static const QStringList numbers{QStringLiteral("at"), QStringLiteral("delay"),
                                     QStringLiteral("count"), QStringLiteral("bytes"),
                                     QStringLiteral("capacity")};
    return numbers.contains(key);
}

bool endsSimulator(const ScenarioStep &step)
{
    return step.fault == Fault::Kill || (step.fault == Fault::KillInWrite && !step.byClient);
}
