// The filter of the finish keys sees every event of the program: the cost it adds to one event
// (a mouse move, a paint request, a key that is not F1 or F3), against no filter at all.
//   build/bench/bench_finishkeys
#include "app/finishkeys.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <cstdio>
#include <memory>

namespace
{

// Nanoseconds of one event sent to `target`, the best of five rounds.
template <typename Make> double nsPerEvent(QWidget* target, Make make)
{
    constexpr int events = 200000;
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < events; ++i) {
            auto event = make(i);
            QApplication::sendEvent(target, &event);
        }
        best = std::min(best, static_cast<double>(timer.nsecsElapsed()) / events);
    }
    return best;
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QWidget window;
    QWidget dialog(&window, Qt::Dialog);
    window.show();
    dialog.show();

    const auto move = [](int i) {
        return QMouseEvent(QEvent::MouseMove, QPointF(i % 100, 10), QPointF(i % 100, 10),
                           Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    };
    const auto update = [](int) { return QEvent(QEvent::UpdateLater); };
    const auto key = [](int) { return QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier); };
    std::unique_ptr<FinishKeys> keys;
    for (const bool filtered : {false, true}) {
        if (filtered)
            keys = std::make_unique<FinishKeys>(&window, [](int) {});
        std::printf("%-22s mouse move %6.1f ns   update %6.1f ns   key A %6.1f ns\n",
                    filtered ? "with the finish keys" : "without", nsPerEvent(&dialog, move),
                    nsPerEvent(&dialog, update), nsPerEvent(&dialog, key));
    }
    keys.reset();
    return 0;
}
