// SPDX-License-Identifier: MIT
// Rows of modules.
#include "ModuleEntries.h"

#include <QJsonArray>

Entry moduleEntry(const Module &module)
{
    Entry entry;
    entry.subject = module.name;
    entry.json
        = {{QStringLiteral("module"), module.name},
           {QStringLiteral("status"), QStringLiteral("ok")},
           {QStringLiteral("selectorTypeList"), QJsonArray::fromStringList(module.selectorTypes)}};
    if (module.name.isNull()) {
        entry.state = Entry::Failed;
        entry.subject = QStringLiteral("provider list");
        entry.reason = QStringLiteral("a module without a readable name");
        entry.json.insert(QStringLiteral("status"), QStringLiteral("failed"));
        entry.json.insert(QStringLiteral("reason"), entry.reason);
    }
    const QStringList types
        = module.selectorTypes.isEmpty() ? QStringList{QString()} : module.selectorTypes;
    for (const QString &type : types) {
        entry.rows.append({module.name, type, entry.reason});
    }
    return entry;
}

Entry moduleFailure(const Module &module, const Finding &finding)
{
    Entry entry = moduleEntry(module);
    entry.state = Entry::Failed;
    entry.failure = finding.exitCode();
    entry.reason = finding.text;
    entry.json.insert(QStringLiteral("status"), QStringLiteral("failed"));
    entry.json.insert(QStringLiteral("code"), finding.codeName());
    entry.json.insert(QStringLiteral("reason"), finding.text);
    for (Row &row : entry.rows) {
        row.last() = finding.text;
    }
    return entry;
}

QVector<Column> moduleColumns()
{
    return columnsOf("module selectorType note");
}
