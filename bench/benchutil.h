// What the benchmarks share: timing a piece of work many times and printing its figures.
#pragma once

#include "chrono/core/timevalue.h"

#include <QElapsedTimer>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <vector>

struct Figures {
    double median; // ms
    double worst;  // ms
};

// Runs work(i) for i = 0 .. runs-1, each timed; between(i) runs before each, untimed, and
// after(i) right after each, timed with it.
template <typename Work, typename Between, typename After>
Figures measure(int runs, Work&& work, Between&& between, After&& after)
{
    std::vector<double> ms;
    ms.reserve(static_cast<std::size_t>(runs));
    for (int i = 0; i < runs; ++i) {
        between(i);
        QElapsedTimer timer;
        timer.start();
        work(i);
        after(i);
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

template <typename Work> Figures measure(int runs, Work&& work)
{
    const auto nothing = [](int) {};
    return measure(
        runs, [&](int) { work(); }, nothing, nothing);
}

// One line of figures; a target (ms) when there is one.
inline void report(const char* what, Figures figures, double target = 0, double worstTarget = 0)
{
    std::printf("%-58s median %8.3f ms  worst %8.3f ms", what, figures.median, figures.worst);
    if (target > 0 && worstTarget > 0)
        std::printf("  (target < %.0f ms, worst < %.0f ms) %s", target, worstTarget,
                    figures.median < target && figures.worst < worstTarget ? "ok" : "SLOW");
    else if (target > 0)
        std::printf("  (target < %.0f ms) %s", target, figures.median < target ? "ok" : "SLOW");
    std::printf("\n");
}

// The finish time of the n-th finisher of a sample race, as the clock writes it.
inline QString finishTime(int n)
{
    return timevalue::tempsexaMil((600000.0 + n * 731.0) / 3600000.0);
}
