// The race clock beside Start: the anchor of the running time on the monotonic clock, a start
// at a given time of day (past or armed), and the beeps of the last seconds before a start.
#include "app/formmarvolendo.h"
#include "app/texts.h"
#include "base/basic.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "chrono/sound.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QTimer>

#include <cmath>

namespace
{

constexpr double secondsPerDay = 86400.0;
// The armed start's countdown is redrawn at the clock's rate; its last interval is timed
// exactly.
constexpr int armedTickMs = 20;

QTime timeOfDayAt(double seconds)
{
    const auto ms = static_cast<int>(std::llround(seconds * 1000.0)) % 86400000;
    return QTime::fromMSecsSinceStartOfDay(ms);
}

} // namespace

void FormMarvolendo::anchorRun()
{
    double elapsed = clock.timer() - inicio;
    // A race that crosses midnight keeps counting.
    if (elapsed < 0)
        elapsed += secondsPerDay;
    anchorElapsed = elapsed;
    anchorMono = clock.monotonic();
}

void FormMarvolendo::startAtTimeOfDay()
{
    if (armedMono) {
        cancelArmedStart();
        return;
    }
    if (inicio != 0 || Label1->text() != texts::zeroClock) {
        avisar(QStringLiteral("La salida a una hora solo se puede fijar con el reloj parado a "
                              "cero."));
        return;
    }
    const QString typed = dialogs.askText(
        this, QStringLiteral("Salida a una hora"),
        QStringLiteral("Hora de la salida (hh:mm:ss, con centésimas o milésimas si se "
                       "quiere):"));
    if (typed.isEmpty())
        return;
    const std::optional<double> target = startat::parseTimeOfDay(typed);
    if (!target) {
        dialogs.warn(this, QStringLiteral("Salida a una hora"),
                     QStringLiteral("«%1» no es una hora válida. Escríbala como hh:mm:ss, por "
                                    "ejemplo 10:30:00 o 10:30:00,250.")
                         .arg(typed));
        return;
    }
    const double now = clock.timer();
    const startat::Decision d = startat::decide(now, *target);
    switch (d.kind) {
    case startat::Decision::Kind::TooOld:
        dialogs.warn(this, QStringLiteral("Salida a una hora"),
                     QStringLiteral("La salida de las %1 fue hace más de %2 horas. No se ha "
                                    "cambiado nada.")
                         .arg(timeOfDayAt(*target).toString(QStringLiteral("hh:mm:ss")))
                         .arg(startat::maxHoursAgo));
        return;
    case startat::Decision::Kind::Started: {
        double startTimer = now - d.seconds;
        if (startTimer < 0)
            startTimer += secondsPerDay;
        startRun(startTimer, timeOfDayAt(*target));
        return;
    }
    case startat::Decision::Kind::Armed:
        armedMono = clock.monotonic() + d.seconds;
        armedTime = timeOfDayAt(*target);
        Command1[0]->setVisible(false);
        Command1[1]->setVisible(true);
        Command2[0]->setVisible(false);
        Command2[1]->setVisible(false);
        Command4->setVisible(false);
        Label1->setToolTip(QStringLiteral("Cuenta atrás hasta la salida de las %1")
                               .arg(armedTime.toString(QStringLiteral("hh:mm:ss.zzz"))));
        armedTick();
        return;
    }
}

void FormMarvolendo::armedTick()
{
    if (!armedMono)
        return;
    const double remaining = *armedMono - clock.monotonic();
    if (remaining <= 0) {
        // The moment has come: Start as if pressed then, from a clock at zero.
        const QTime at = armedTime;
        const double lateness = -remaining;
        cancelArmedStart();
        double startTimer = clock.timer() - lateness;
        if (startTimer < 0)
            startTimer += secondsPerDay;
        startRun(startTimer, at);
        return;
    }
    const QString wait = timevalue::tempsexaMil(remaining / timevalue::secondsPerHour);
    Label1->setText(basic::left(wait, 8));
    const int format = checkedFormat();
    Label6->setText(format == 1   ? basic::mid(wait, 10, 2)
                    : format == 2 ? basic::mid(wait, 10, 3)
                                  : QString());
    // The last interval is timed to the millisecond; the wait before it on the cheaper timer.
    const int ms = static_cast<int>(std::ceil(remaining * 1000.0));
    armTimer->setTimerType(ms <= 2 * armedTickMs ? Qt::PreciseTimer : Qt::CoarseTimer);
    armTimer->start(std::min(ms, armedTickMs));
}

void FormMarvolendo::cancelArmedStart()
{
    armedMono.reset();
    armTimer->stop();
    Label1->setToolTip(QString());
    Label1->setText(texts::zeroClock);
    const int format = checkedFormat();
    Label6->setText(format == 1   ? QStringLiteral("00")
                    : format == 2 ? QStringLiteral("000")
                                  : QString());
    Command1[1]->setVisible(false);
    Command1[0]->setVisible(true);
    Command2[0]->setVisible(true);
    Command2[1]->setVisible(true);
    Command4->setVisible(true);
}

void FormMarvolendo::countdownBeeps(std::optional<double> remaining)
{
    if (!pitidos->isChecked())
        remaining.reset();
    // Another start chosen: its countdown begins afresh.
    if (List2->currentRow() != beepsRow) {
        beepsRow = List2->currentRow();
        beeps.update(std::nullopt);
    }
    const CountdownBeeps::Beep beep = beeps.update(remaining);
    if (beep != CountdownBeeps::Beep::None && sound) {
        const Sound::Tone tone =
            beep == CountdownBeeps::Beep::Long ? Sound::Tone::Long : Sound::Tone::Short;
        if (!sound->play(tone) && !soundMissingShown) {
            soundMissingShown = true;
            avisar(QStringLiteral("Este equipo no tiene salida de sonido: los pitidos de salida "
                                  "no sonarán."));
        }
    }
    // A beep due before the next tick is taken by a timer of its own, on time.
    if (!remaining)
        return;
    if (const std::optional<double> until = CountdownBeeps::untilNext(*remaining);
        until && *until * 1000.0 < Timer1->interval() + 1)
        beepTimer->start(static_cast<int>(std::ceil(*until * 1000.0)));
}
