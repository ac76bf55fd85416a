// SPDX-License-Identifier: MIT
// Lists the buffers in shared memory, for checks and for reports of faults.
#include "ReferenceBuffers.h"

#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int octal = 8;

QString stateName(BufferFile::State state)
{
    switch (state) {
    case BufferFile::Live:
        return QStringLiteral("live");
    case BufferFile::Retired:
        return QStringLiteral("retired");
    case BufferFile::Dead:
        return QStringLiteral("dead");
    case BufferFile::OtherLayout:
        return QStringLiteral("otherLayout");
    case BufferFile::NoBuffer:
        return QStringLiteral("noBuffer");
    case BufferFile::Unreadable:
        break;
    }
    return QStringLiteral("unreadable");
}

QJsonObject fileObject(const BufferFile &file)
{
    return {{QStringLiteral("file"), file.path},
            {QStringLiteral("state"), stateName(file.state)},
            {QStringLiteral("problem"), file.problem},
            {QStringLiteral("layoutVersion"), double(file.layoutVersion)},
            {QStringLiteral("generation"), double(file.generation)},
            {QStringLiteral("size"), double(file.size)},
            {QStringLiteral("ownerUid"), double(file.ownerUid)},
            {QStringLiteral("groupId"), double(file.groupId)},
            {QStringLiteral("mode"), QString::number(file.mode, octal)}};
}

} // namespace

QJsonArray ReferenceBuffers::report() const
{
    QJsonArray list;
    for (const BufferFile &file : files) {
        list.append(fileObject(file));
    }
    return list;
}

bool listFiles(const QStringList &only, QVector<BufferFile> &files, QString &error)
{
    QVector<BufferFile> all;
    if (!listBufferFiles(all, error)) {
        return false;
    }
    for (const BufferFile &file : qAsConst(all)) {
        const bool wanted = std::any_of(only.begin(), only.end(), [&](const QString &module) {
            return isNamedAfter(file, module);
        });
        if (only.isEmpty() || wanted) {
            files.append(file);
        }
    }
    return true;
}

std::shared_ptr<PlatformDetails::BufferList> PlatformDetails::listBuffers(const QStringList &only)
{
    auto buffers = std::make_shared<ReferenceBuffers>();
    listFiles(only, buffers->files, buffers->error);
    return buffers;
}
