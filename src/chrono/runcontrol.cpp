// Run control: Start and Stop, moving the stopped clock, the clock tick and the time of day.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "app/texts.h"
#include "base/basic.h"
#include "chrono/armedstart.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace
{

using texts::zeroClock;

} // namespace

void FormMarvolendo::Command1_Click(int index)
{
    if (index == 0) {
        startRun(clock.timer(), clock.timeOfDay());
    } else if (index == 1) {
        if (armedStart->armed()) {
            // Stop before an armed start only takes the start back.
            armedStart->cancel();
            return;
        }
        Command1[1]->setVisible(false);
        Command1[0]->setVisible(true);
        Timer1->stop();
        Command2[1]->setVisible(true);
        Command2[0]->setVisible(true);
        Command4->setVisible(true);
        look::setBack(Command3, look::lightGrey);
        Command3->setEnabled(false);
        look::setBack(Text1, look::lightGrey);
        Text1->setEnabled(false);
        ProgressBar1->setValue(0);
        session.stop();
        for (QAction* a : op2)
            a->setEnabled(true);
        opp2->setEnabled(true);
        opp22->setEnabled(true);
    }
}

// Start: the race clock runs from startTimer (seconds since midnight), the moment whose time
// of day is startTime: now for the button, an earlier or armed moment for a start at a time.
void FormMarvolendo::startRun(double startTimer, const QTime& startTime)
{
    Command1[0]->setVisible(false);
    Command1[1]->setVisible(true);
    Timer1->start();
    session.start(startTimer, startTime);
    marcar();
    for (QAction* a : op2)
        a->setEnabled(false);
    if (number(race.state().modoCaptura) == 0)
        Command3->setFocus();
    else
        Text1->setFocus();
    opp2->setEnabled(false);
    opp22->setEnabled(false);
    runningColours();
}

void FormMarvolendo::Command2_Click(int index)
{
    const QString& shown = race.record().label1;
    if (index == 0) {
        const double t =
            timevalue::decimalMil(shown) + timevalue::decimalMil(QStringLiteral("00:01:00"));
        race.setClock(basic::left(timevalue::tempsexaMil(t), 8));
    } else if (index == 1) {
        // The guard compares eight characters with a nine-character text, so it never blocks:
        // the clock can be moved below zero.
        if (basic::left(shown, 8) != QLatin1String("00:00:000")) {
            const double t =
                timevalue::decimalMil(shown) - timevalue::decimalMil(QStringLiteral("00:01:000"));
            race.setClock(basic::left(timevalue::tempsexaMil(t), 8));
        }
    }
}

void FormMarvolendo::Timer1_Timer()
{
    QString temps;
    tempsMarvo(race.state().inicio, temps);
}

void FormMarvolendo::Timer2_Timer()
{
    // The caption only changes once a minute: an equal text is no change to the menu.
    const QString now = clock.timeOfDay().toString(QStringLiteral("hh:mm:ss"));
    hhora->setText(QStringLiteral("Hora actual : ") + basic::left(now, 5));
}

void FormMarvolendo::tempsMarvo(double tempsInicial, QString& temps)
{
    if (tempsInicial == 0)
        return;
    session.readClock();
    temps = session.tempsActual();
    const double running = session.hours();
    const int format = checkedFormat();

    // Countdown to the selected start of the start order.
    armedStart->followStartOrder(running);
    std::optional<double> toStart;
    if (List2->count() >= 1) {
        const QListWidgetItem* selected = List2->currentItem();
        const QString line = selected ? selected->text() : QString();
        if (!line.isEmpty()) {
            const double start = timevalue::decimalMil(u'0' + resultline::startTimeText(line));
            toStart = (start - running) * timevalue::secondsPerHour;
            const QString remaining = timevalue::tempsexaMil(start - running);
            // The box counts while a bib waits in the field; following the start order, the
            // field stays empty and the box counts all the same.
            if (basic::val(Text1->text()) > 0 || armedStart->following()) {
                if (basic::val(basic::mid(remaining, 5, 1)) == 0) {
                    look::setColours(Label18, look::lightYellow, look::darkRed);
                    Label18->setText(basic::digits(basic::val(basic::mid(remaining, 7, 2)) + 1));
                } else {
                    look::setColours(Label18, look::lightGrey, look::buttonShadow());
                    Label18->setText(QStringLiteral("0"));
                }
            }
        }
    }

    Label1->setText(basic::left(temps, 8));
    if (format == 0)
        Label6->setText(QString());
    else if (format == 1)
        Label6->setText(basic::mid(temps, 10, 2));
    else if (format == 2)
        Label6->setText(basic::mid(temps, 10, 3));
    ProgressBar1->setValue(static_cast<int>(basic::val(basic::mid(temps, 7, 2))));
    Label3->setText(basic::right(temps, 3));
    armedStart->countdown(toStart);
}

void FormMarvolendo::controles()
{
    if (race.record().label1 != zeroClock)
        return;
    const Race::Batch batch(race);
    race.setClock(zeroClock);
    const int format = checkedFormat();
    if (format < 0)
        return;
    const auto f = static_cast<TimeFormat>(format);
    race.setFirst(timevalue::clockTemplate(f));
    session.setDifference(timevalue::shortTemplate(f));
    race.setLast(timevalue::shortTemplate(f));
    race.setLastDifference(timevalue::shortTemplate(f));
}
