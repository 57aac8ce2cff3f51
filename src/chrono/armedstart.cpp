#include "armedstart.h"

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "app/look.h"
#include "app/notices.h"
#include "app/texts.h"
#include "base/basic.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "chrono/sound.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double secondsPerDay = 86400.0;
// The armed start's countdown is redrawn at the clock's rate; its last interval is timed
// exactly.
constexpr int armedTickMs = 20;
// The countdown to an armed start: a minus sign before it, dark red on amber.
const QString armedSign = QStringLiteral("\u2212");
const QColor armedBack{255, 200, 80};

QTime timeOfDayAt(double seconds)
{
    const auto ms = static_cast<int>(std::llround(seconds * 1000.0)) % 86400000;
    return QTime::fromMSecsSinceStartOfDay(ms);
}

} // namespace

ArmedStart::ArmedStart(QWidget* parentWindow, const Controls& controls, RaceSession& raceSession,
                       const Clock& clockSource, Dialogs& dialogSource, Sound* soundSource,
                       Notices& noticeArea, std::function<int()> checkedFormat)
    : QObject(parentWindow), window(parentWindow), c(controls), session(raceSession),
      clock(clockSource), dialogs(dialogSource), sound(soundSource), notices(noticeArea),
      format(std::move(checkedFormat)), armTimer(new QTimer(this)), beepTimer(new QTimer(this))
{
    armTimer->setObjectName(QStringLiteral("armTimer"));
    armTimer->setSingleShot(true);
    armTimer->setTimerType(Qt::PreciseTimer);
    connect(armTimer, &QTimer::timeout, this, &ArmedStart::tick);
    beepTimer->setSingleShot(true);
    beepTimer->setTimerType(Qt::PreciseTimer);
    connect(beepTimer, &QTimer::timeout, this, &ArmedStart::beepDue);
    // The beeps switched on, or a start order to count down with them on.
    connect(c.beepsOn, &QAction::toggled, this, [this](bool on) {
        if (on)
            checkSound();
    });
    const auto startOrder = [this] {
        if (c.beepsOn->isChecked() && !session.race().list2().isEmpty())
            checkSound();
    };
    connect(&session.race(), &Race::changed, this, [startOrder](const RaceChange& change) {
        if (change.kind == RaceChange::Kind::StartOrder)
            startOrder();
    });
    connect(&session.race(), &Race::restored, this, startOrder);
}

void ArmedStart::checkSound()
{
    if (soundMissingShown || !sound || sound->available())
        return;
    soundMissingShown = true;
    notices.show(QStringLiteral("Este equipo no tiene salida de sonido: los pitidos de salida "
                                "no sonarán."));
}

void ArmedStart::startAtTimeOfDay()
{
    if (armedMono) {
        cancel();
        return;
    }
    if (session.race().running() || session.clockCaption() != texts::zeroClock) {
        notices.show(QStringLiteral("La salida a una hora solo se puede fijar con el reloj "
                                    "parado a cero."));
        return;
    }
    const QString typed = dialogs.askText(
        window, QStringLiteral("Salida a una hora"),
        QStringLiteral("Hora de la salida (hh:mm:ss, con centésimas o milésimas si se "
                       "quiere):"));
    if (typed.isEmpty())
        return;
    const std::optional<double> target = startat::parseTimeOfDay(typed);
    if (!target) {
        dialogs.warn(window, QStringLiteral("Salida a una hora"),
                     QStringLiteral("«%1» no es una hora válida. Escríbala como hh:mm:ss, por "
                                    "ejemplo 10:30:00 o 10:30:00,250.")
                         .arg(typed));
        return;
    }
    const double now = clock.timer();
    const startat::Decision d = startat::decide(now, *target);
    switch (d.kind) {
    case startat::Decision::Kind::TooOld:
        dialogs.warn(window, QStringLiteral("Salida a una hora"),
                     QStringLiteral("La salida de las %1 fue hace más de %2 horas. No se ha "
                                    "cambiado nada.")
                         .arg(timeOfDayAt(*target).toString(QStringLiteral("hh:mm:ss")))
                         .arg(startat::maxHoursAgo));
        return;
    case startat::Decision::Kind::Started: {
        double startTimer = now - d.seconds;
        if (startTimer < 0)
            startTimer += secondsPerDay;
        emit startNow(startTimer, timeOfDayAt(*target));
        return;
    }
    case startat::Decision::Kind::Armed:
        armedMono = clock.monotonic() + d.seconds;
        armedTime = timeOfDayAt(*target);
        c.start->setVisible(false);
        c.stop->setVisible(true);
        c.plus->setVisible(false);
        c.minus->setVisible(false);
        c.clear->setVisible(false);
        c.clock->setToolTip(QStringLiteral("Salida en: cuenta atrás hasta la salida de las %1")
                                .arg(armedTime.toString(QStringLiteral("hh:mm:ss.zzz"))));
        // A countdown must not pass for a running clock: another colour, and a minus sign.
        clockPalette = c.clock->palette();
        clockFill = c.clock->autoFillBackground();
        look::setColours(c.clock, armedBack, look::darkRed);
        tick();
        return;
    }
}

void ArmedStart::tick()
{
    if (!armedMono)
        return;
    const double remaining = *armedMono - clock.monotonic();
    if (remaining <= 0) {
        // The moment has come: Start as if pressed then, from a clock at zero.
        const QTime at = armedTime;
        const double lateness = -remaining;
        cancel();
        double startTimer = clock.timer() - lateness;
        if (startTimer < 0)
            startTimer += secondsPerDay;
        emit startNow(startTimer, at);
        return;
    }
    const QString wait = timevalue::tempsexaMil(remaining / timevalue::secondsPerHour);
    c.clock->setText(armedSign + basic::left(wait, 8));
    const int f = format();
    c.fraction->setText(f == 1   ? basic::mid(wait, 10, 2)
                        : f == 2 ? basic::mid(wait, 10, 3)
                                 : QString());
    // The last interval is timed to the millisecond; the wait before it on the cheaper timer.
    const int ms = static_cast<int>(std::ceil(remaining * 1000.0));
    armTimer->setTimerType(ms <= 2 * armedTickMs ? Qt::PreciseTimer : Qt::CoarseTimer);
    armTimer->start(std::min(ms, armedTickMs));
}

void ArmedStart::cancel()
{
    if (armedMono) {
        c.clock->setPalette(clockPalette);
        c.clock->setAutoFillBackground(clockFill);
    }
    armedMono.reset();
    armTimer->stop();
    c.clock->setToolTip(QString());
    c.clock->setText(texts::zeroClock);
    const int f = format();
    c.fraction->setText(f == 1 ? QStringLiteral("00") : f == 2 ? QStringLiteral("000") : QString());
    c.stop->setVisible(false);
    c.start->setVisible(true);
    c.plus->setVisible(true);
    c.minus->setVisible(true);
    c.clear->setVisible(true);
}

void ArmedStart::followStartOrder(double runningHours)
{
    if (!c.followOrder->isChecked())
        return;
    QListWidget* order = c.startOrder;
    const int n = order->count();
    const int row = order->currentRow();
    int next = std::max(row, 0);
    const auto startOf = [order](int i) {
        return timevalue::decimalMil(u'0' + resultline::startTimeText(order->item(i)->text()));
    };
    while (next < n && startOf(next) < runningHours - 1.0 / timevalue::secondsPerHour)
        ++next;
    if (next >= n || next == row)
        return;
    order->setCurrentRow(next);
    order->scrollToItem(order->item(next));
}

bool ArmedStart::following() const
{
    return c.followOrder->isChecked();
}

void ArmedStart::countdown(std::optional<double> remaining)
{
    if (!c.beepsOn->isChecked())
        remaining.reset();
    // Another start chosen: its countdown begins afresh.
    if (c.startOrder->currentRow() != beepsRow) {
        beepsRow = c.startOrder->currentRow();
        beeps.update(std::nullopt);
    }
    const CountdownBeeps::Beep beep = beeps.update(remaining);
    if (beep != CountdownBeeps::Beep::None && sound) {
        const Sound::Tone tone =
            beep == CountdownBeeps::Beep::Long ? Sound::Tone::Long : Sound::Tone::Short;
        if (!sound->play(tone) && !soundMissingShown) {
            soundMissingShown = true;
            notices.show(QStringLiteral("Este equipo no tiene salida de sonido: los pitidos de "
                                        "salida no sonarán."));
        }
    }
    // A beep due before the next tick is taken by a timer of its own, on time.
    if (!remaining)
        return;
    if (const std::optional<double> until = CountdownBeeps::untilNext(*remaining);
        until && *until * 1000.0 < c.tick->interval() + 1)
        beepTimer->start(static_cast<int>(std::ceil(*until * 1000.0)));
}
