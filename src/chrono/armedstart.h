// A start at a given time of day: a past one starts the clock at once as if Start had been
// pressed then; a coming one is armed, and the clock shows the countdown to it until it starts
// by itself, to the millisecond. And the beeps of the last seconds before the selected start of
// the start order.
#pragma once

#include "chrono/core/startat.h"

#include <QObject>
#include <QPalette>
#include <QTime>

#include <functional>
#include <optional>

class Clock;
class Dialogs;
class Notices;
class QAction;
class QLabel;
class QListWidget;
class QPushButton;
class QTimer;
class QWidget;
class RaceSession;
class Sound;

class ArmedStart : public QObject
{
    Q_OBJECT

public:
    // The controls it shows the countdown on and hides while a start is armed.
    struct Controls {
        QLabel* clock = nullptr;    // Label1
        QLabel* fraction = nullptr; // Label6
        QPushButton* start = nullptr;
        QPushButton* stop = nullptr;
        QPushButton* plus = nullptr;
        QPushButton* minus = nullptr;
        QPushButton* clear = nullptr;
        QListWidget* startOrder = nullptr; // List2
        QAction* beepsOn = nullptr;        // "Pitidos de salida"
        QAction* followOrder = nullptr;    // "La cuenta atrás sigue el orden de salida"
        QTimer* tick = nullptr;            // the clock's tick
    };
    // `format` answers the checked time format (-1 when none).
    ArmedStart(QWidget* window, const Controls& controls, RaceSession& session, const Clock& clock,
               Dialogs& dialogs, Sound* sound, Notices& notices, std::function<int()> format);

    bool armed() const { return armedMono.has_value(); }
    // "Salida a una hora...": asks the time, then starts or arms; a second choice takes an
    // armed start back.
    void startAtTimeOfDay();
    // Takes the armed start back: the clock at zero, Start and the clock's buttons again.
    void cancel();
    // The beeps for the selected start, `remaining` seconds away (none: no start selected).
    void countdown(std::optional<double> remaining);
    // With the option on, the countdown goes on to the next start of the start order once the
    // selected one has passed (by a second, so its last beep sounds), the race clock reading
    // `runningHours`. The bib field is not touched: only a click on a start puts its bib there.
    void followStartOrder(double runningHours);
    bool following() const;

signals:
    // The clock is to start from `startTimer` (seconds since midnight), the moment of `at`.
    void startNow(double startTimer, const QTime& at);
    // A beep falls due before the next tick: the clock is to be read now.
    void beepDue();

private:
    void tick();
    // Tells once that the beeps cannot sound, as soon as they are wanted: switched on, or a
    // start order loaded to count down.
    void checkSound();

    QWidget* window;
    Controls c;
    RaceSession& session;
    const Clock& clock;
    Dialogs& dialogs;
    Sound* sound;
    Notices& notices;
    std::function<int()> format;

    // The monotonic moment an armed start starts, and its time of day.
    std::optional<double> armedMono;
    QTime armedTime;
    QPalette clockPalette; // the clock's colours before the countdown
    bool clockFill = false;
    QTimer* armTimer;
    CountdownBeeps beeps;
    int beepsRow = -1;
    bool soundMissingShown = false;
    QTimer* beepTimer;
};
