// The running clock: the cost of one tick, the process CPU share while the clock runs, and how
// stale the time stamped on a finish is.
//   build/bench/bench_clock [seconds of running clock, default 10]
#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace
{

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir dir;
    QDir::setCurrent(dir.path());
    qputenv("MARVOLENDO_DRIVE_C", dir.path().toLocal8Bit());
    qputenv("MARVOLENDO_DRIVE_D", dir.path().toLocal8Bit());
    QApplication app(argc, argv);
    const double runSeconds = argc > 1 ? QString::fromLocal8Bit(argv[1]).toDouble() : 10.0;

    SystemClock clock;
    QtDialogs dialogs;
    FormMarvolendo form(clock, dialogs);
    form.show();
    const double startedAt = clock.timer();
    form.findChild<QPushButton*>(QStringLiteral("Command1(0)"))->click();

    // One tick, called directly.
    const int ticks = 20000;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < ticks; ++i)
        form.Timer1_Timer();
    const double tickMicros = static_cast<double>(timer.nsecsElapsed()) / 1000.0 / ticks;

    // The clock running in the event loop, as at the finish line.
    QApplication::processEvents();
    const double cpuBefore = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    QTimer::singleShot(static_cast<int>(runSeconds * 1000), &app, &QApplication::quit);
    QApplication::exec();
    const double cpuShare =
        100.0 * (cpuSeconds() - cpuBefore) / (static_cast<double>(wall.nsecsElapsed()) / 1e9);

    // Staleness: the stamped time against the clock read just before the press arrives.
    auto* lap = form.findChild<QPushButton*>(QStringLiteral("Command3"));
    auto* combo = form.findChild<QComboBox*>(QStringLiteral("Combo1"));
    std::vector<double> stale;
    for (int i = 0; i < 200; ++i) {
        // Presses arrive at any moment between two redraws.
        QElapsedTimer pause;
        pause.start();
        while (pause.nsecsElapsed() < 3'000'000 + (i * 7919 % 5'000'000))
            QApplication::processEvents();
        const double pressedAt = clock.timer() - startedAt;
        lap->click();
        const QString line = combo->itemText(combo->count() - 1);
        const double stamped = timevalue::decimalMil(line.mid(6, 12)) * 3600.0;
        stale.push_back(std::abs(pressedAt - stamped) * 1000.0);
    }
    std::sort(stale.begin(), stale.end());

    std::printf("tick (tempsMarvo and the labels): %.2f us\n", tickMicros);
    std::printf("process CPU while the clock runs: %.2f %% of one core over %.0f s\n", cpuShare,
                runSeconds);
    std::printf("finish staleness over 200 presses: median %.3f ms, worst %.3f ms\n",
                stale[stale.size() / 2], stale.back());
    return 0;
}
