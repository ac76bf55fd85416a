// SPDX-License-Identifier: MIT
// How samples and events stand in their tables' columns.
#include "HistoryColumns.h"

#include <array>

namespace {

// In the order of HistoryEvent::Kind.
constexpr std::array<const char *, 8> kinds{
    "source lost",    "source returned", "description changed", "recorder started",
    "recorder ended", "samples dropped", "clock set back",      "database replaced"};

} // namespace

QString HistoryEvents::kindName(HistoryEvent::Kind kind)
{
    return QString::fromLatin1(kinds.at(size_t(kind)));
}

bool HistoryEvents::kindOf(const QString &name, HistoryEvent::Kind *kind)
{
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (name == QLatin1String(kinds.at(i))) {
            *kind = HistoryEvent::Kind(i);
            return true;
        }
    }
    return false;
}

QString HistoryColumns::value(bool sqlite)
{
    return sqlite ? QStringLiteral("value") : QStringLiteral("whole, real, bytes");
}

int HistoryColumns::count(bool sqlite)
{
    return sqlite ? 1 : 3;
}

QVariant HistoryColumns::read(const QSqlQuery &query, int column, bool sqlite)
{
    if (sqlite) {
        // The driver gives NULL as a null text, and never a text otherwise: none is stored.
        QVariant value = query.value(column);
        if (value.userType() == QMetaType::QString) {
            return {};
        }
        return value;
    }
    for (int i = column; i < column + 3; ++i) {
        if (!query.isNull(i)) {
            // The driver gives whole numbers without a minus as unsigned ones.
            return i == column ? QVariant(query.value(i).toLongLong()) : query.value(i);
        }
    }
    return {};
}
