// SPDX-License-Identifier: MIT
// How long changes of a large description hold up the event loop of a client that has ten of its
// leaves.
//
// Needs PROCESSDATA_BUS to name a private bus that takes messages of 64 MiB and more.
// Usage: benchmark_large-change [LEAVES [ROUNDS]], 420,000 and 11 by default.
#include "ChangingService.h"
#include "SelectorHandlerProcessValue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr auto changed
    = qOverload<QVector<int>>(&SelectorHandlerProcessValue::processDataDescriptionChanged);

struct Round
{
    double longestTurn = 0; // milliseconds
    double total = 0;
};

// A timer that is always due: the time between two of its turns is what others take.
Round change(ChangingService &service, SelectorHandlerProcessValue &handler)
{
    Round round;
    QEventLoop loop;
    QElapsedTimer sinceTurn;
    QElapsedTimer sinceBegin;
    const auto turn = [&] {
        round.longestTurn = std::max(round.longestTurn, double(sinceTurn.nsecsElapsed()) / 1e6);
        sinceTurn.start();
    };
    bool isDone = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        turn();
        if (isDone) {
            loop.quit();
        }
    });
    QObject::connect(&handler, changed, &loop, [&] { isDone = true; });
    sinceTurn.start();
    sinceBegin.start();
    service.change();
    timer.start(1);
    loop.exec();
    round.total = double(sinceBegin.nsecsElapsed()) / 1e6;
    return round;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--service")) {
        return ChangingService::serve(arguments.value(2), arguments.value(3).toInt(),
                                      arguments.value(4).toInt());
    }
    const int leaves = arguments.value(1, QStringLiteral("420000")).toInt();
    const int rounds = arguments.value(2, QStringLiteral("11")).toInt();
    ChangingService service(1, leaves);
    constexpr int selected = 10;
    SelectorHandlerProcessValue handler(service.urls().mid(0, selected), nullptr);
    std::vector<double> turns;
    std::vector<double> totals;
    for (int i = 0; i < rounds; ++i) {
        const Round round = change(service, handler);
        turns.push_back(round.longestTurn);
        totals.push_back(round.total);
    }
    std::printf("%d leaves, %d rounds: longest turn of the event loop %.1f ms (median), %.1f ms "
                "(most); change %.1f ms (median)\n",
                leaves, rounds, median(turns), *std::max_element(turns.begin(), turns.end()),
                median(totals));
    return 0;
}
