// SPDX-License-Identifier: MIT
// Root of a source's process-data tree: finds leaves by URL.
#include "ProcessDataRoot.h"

#include "ConfigurationAndProcessDataDefinitions.h"
#include "SelectorUrlParser.h"

#include <algorithm>

namespace {

constexpr int notFound = -1; // as groups are in the description

// A pointer to one leaf keeps all of them: they are destroyed together, by their block.
ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
leafPointer(const QSharedPointer<LeafBlock> &block, int position)
{
    const auto release = [block](ProcessDataLeaf *) {};
    return QSharedPointer<ProcessDataLeaf>(block->leafAt(position), release);
}

bool readsAsWritten(QChar c)
{
    return c != QLatin1Char('%') && c != QLatin1Char('?') && c != QLatin1Char('#');
}

bool isPlainName(const QString &name)
{
    return std::all_of(name.begin(), name.end(), readsAsWritten)
        && !name.contains(QLatin1Char('/'));
}

// How the URL of each leaf begins; empty when names have to be encoded in it.
QString plainBeginOfUrls(const SourceName &source)
{
    if (!isPlainName(source.module) || !isPlainName(source.object)
        || !isPlainName(source.instance)) {
        return QString();
    }
    return ConfigurationAndProcessDataDefinitions::getSelectorUrlSchemeProcessData()
        + QStringLiteral("://%1/").arg(source.toString());
}

}

ProcessDataRoot::ProcessDataRoot(PreparedDescriptionPointer prepared,
                                 QSharedPointer<SharedMemoryPrivate> memory)
    : block(QSharedPointer<LeafBlock>::create(std::move(prepared), std::move(memory)))
    , leaves(block->description.leaves.size())
{
    beginOfUrls = plainBeginOfUrls(block->description.source);
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer ProcessDataRoot::leafAt(int position)
{
    ProcessDataValueSharedPointer &leaf = leaves[position];
    if (leaf.isNull()) {
        leaf = leafPointer(block, position);
    }
    return leaf;
}

// A URL that is spelled without encoding is not taken apart a second time: whoever asks has checked
// it, and only a valid one spells the path of a leaf.
int ProcessDataRoot::positionOfPlainUrl(const QString &url) const
{
    if (beginOfUrls.isEmpty() || url.size() > selectorUrlSurelyShortEnough
        || !url.startsWith(beginOfUrls)) {
        return notFound;
    }
    const int begin = beginOfUrls.size();
    if (!std::all_of(url.begin() + begin, url.end(), readsAsWritten)) {
        return notFound;
    }
    const QString path = QString::fromRawData(url.constData() + begin, url.size() - begin);
    return block->description.positions.value(path, notFound);
}

ConfigurationAndProcessDataBase::ProcessDataValueSharedPointer
ProcessDataRoot::getLeafProcessDataValue(const QString &url)
{
    const int plain = positionOfPlainUrl(url);
    if (plain != notFound) {
        return leafAt(plain);
    }
    const SelectorUrlParts parts = parseSelectorUrl(url);
    const ProcessDataDescription &description = block->description;
    if (!parts.valid || parts.source != description.source || parts.path.isNull()) {
        return {};
    }
    const int position = description.positions.value(parts.path, notFound);
    return position == notFound ? ProcessDataValueSharedPointer() : leafAt(position);
}

QVariant ProcessDataRoot::readLeafProperty(const QString &name) const
{
    Q_UNUSED(name)
    return QVariant(); // properties belong to leaves
}

bool ProcessDataRoot::hasLeafProperty(const QString &name) const
{
    Q_UNUSED(name)
    return false;
}
