// Run control: Start and Stop, moving the stopped clock, the clock tick and the time of day.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "app/texts.h"
#include "base/basic.h"
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
        if (armedMono) {
            // Stop before an armed start only takes the start back.
            cancelArmedStart();
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
        inicio = 0;
        desfase = 0;
        horaSalida = basic::fitFixed(QStringLiteral("0"), 5);
        for (QAction* a : op2)
            a->setEnabled(true);
        opp2->setEnabled(true);
        opp22->setEnabled(true);
        journalSnapshot();
    }
}

// Start: the race clock runs from startTimer (seconds since midnight), the moment whose time
// of day is startTime: now for the button, an earlier or armed moment for a start at a time.
void FormMarvolendo::startRun(double startTimer, const QTime& startTime)
{
    Command1[0]->setVisible(false);
    Command1[1]->setVisible(true);
    // The run resumes from the displayed whole seconds.
    if (Label1->text() != zeroClock)
        desfase = timevalue::decimalMil(Label1->text());
    Timer1->start();
    inicio = startTimer;
    if (inicio == 0)
        inicio = 1e-6; // exactly midnight: 0 would read as a stopped clock
    anchorRun();
    const double timeOfDay = timevalue::decimalMil(startTime.toString(QStringLiteral("hh:mm:ss")));
    tempsActual = timevalue::tempsexaMil(timeOfDay - desfase);
    horaSalida = basic::fitFixed(basic::left(basic::left(tempsActual, 8), 5), 5);
    guardarEstado();
    marcar();
    for (QAction* a : op2)
        a->setEnabled(false);
    if (number(modoCaptura) == 0)
        Command3->setFocus();
    else
        Text1->setFocus();
    opp2->setEnabled(false);
    opp22->setEnabled(false);
    runningColours();
    journalSnapshot();
}

void FormMarvolendo::Command2_Click(int index)
{
    if (index == 0) {
        const double t = timevalue::decimalMil(Label1->text()) +
                         timevalue::decimalMil(QStringLiteral("00:01:00"));
        Label1->setText(basic::left(timevalue::tempsexaMil(t), 8));
        journalSnapshot();
    } else if (index == 1) {
        // The guard compares eight characters with a nine-character text, so it never blocks:
        // the clock can be moved below zero.
        if (basic::left(Label1->text(), 8) != QLatin1String("00:00:000")) {
            const double t = timevalue::decimalMil(Label1->text()) -
                             timevalue::decimalMil(QStringLiteral("00:01:000"));
            Label1->setText(basic::left(timevalue::tempsexaMil(t), 8));
            journalSnapshot();
        }
    }
}

void FormMarvolendo::Timer1_Timer()
{
    tempsMarvo(inicio, tempsActual);
}

void FormMarvolendo::Timer2_Timer()
{
    const QString now = clock.timeOfDay().toString(QStringLiteral("hh:mm:ss"));
    if (basic::left(now, 5) != basic::right(hhora->text(), 5))
        hhora->setText(QStringLiteral("Hora actual : ") + basic::left(now, 5));
}

void FormMarvolendo::tempsMarvo(double tempsInicial, QString& temps)
{
    if (tempsInicial == 0)
        return;
    // The monotonic clock since the anchor: a step of the system time moves nothing.
    const double elapsed =
        (anchorElapsed + clock.monotonic() - anchorMono) / timevalue::secondsPerHour;
    const double running = elapsed + desfase;
    temps = timevalue::tempsexaMil(running);
    // The first finisher's time changes only with a finish or an edit: read once a change.
    if (tempsPrimer != primerRead) {
        primerRead = tempsPrimer;
        primerHours = timevalue::decimalMil(tempsPrimer);
    }
    const double ref = primerHours;
    const int format = checkedFormat();

    // Countdown to the selected start of the start order.
    std::optional<double> toStart;
    if (List2->count() >= 1) {
        const QListWidgetItem* selected = List2->currentItem();
        const QString line = selected ? selected->text() : QString();
        if (!line.isEmpty()) {
            const double start = timevalue::decimalMil(u'0' + resultline::startTimeText(line));
            toStart = (start - running) * timevalue::secondsPerHour;
            const QString remaining = timevalue::tempsexaMil(start - running);
            if (basic::val(Text1->text()) > 0) {
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

    if (ref > 0) {
        tempsText = timevalue::tempsexaMil(running - ref);
        if (number(modoCaptura) != 1 && format >= 0)
            Label7->setText(basic::mid(
                tempsText, 2, timevalue::differenceWidth(static_cast<TimeFormat>(format))));
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
    countdownBeeps(toStart);
}

void FormMarvolendo::controles()
{
    if (Label1->text() != zeroClock)
        return;
    Label1->setText(zeroClock);
    const int format = checkedFormat();
    if (format < 0)
        return;
    const auto f = static_cast<TimeFormat>(format);
    Label4->setText(timevalue::clockTemplate(f));
    for (QLabel* l : {Label7, Label5, Label8})
        l->setText(timevalue::shortTemplate(f));
}
