// Start-up, the restore of a saved race, the state file and the window-wide keys.
#include "app/formmarvolendo.h"

#include "app/artwork.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/notices.h"
#include "app/texts.h"
#include "base/basic.h"
#include "chrono/core/timevalue.h"
#include "entry/keyfilter.h"
#include "files/core/latestwriter.h"
#include "files/odbc/readingslink.h"
#include "results/core/resultline.h"
#include "results/resultspublisher.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace
{

// The clock is redrawn 28 times a second: the thousandths still run before the eye, at about
// half the cost of following the screen's rate on a battery. A finish takes a fresh reading of
// its own, so the stamped time does not depend on this rate.
constexpr int displayIntervalMs = 36;
// The time of day only changes its caption once a minute.
constexpr int timeOfDayIntervalMs = 250;

// After an abnormal end the journal may hold finishes the state file lacks: the operator is
// asked whether to bring them back.
void offerRecovery(RaceSession& session, Dialogs& dialogs, QWidget* window)
{
    const std::optional<JournalKeeper::Unfinished> found = session.journal().unfinished();
    if (!found)
        return;
    QString text =
        QStringLiteral("El programa no terminó normalmente. El diario de la carrera guarda "
                       "%1 cambios que no están en MARVO.dat (%2 llegadas en la lista).")
            .arg(found->contents.changes)
            .arg(found->contents.record.state.list1.size());
    if (found->contents.skipped > 0)
        text += QStringLiteral(" %1 anotaciones del diario estaban dañadas y se pasan por alto.")
                    .arg(found->contents.skipped);
    text += QStringLiteral("\n\n¿Recuperar la carrera tal como estaba?");
    if (dialogs.ask(window, QStringLiteral("Recuperar la carrera"), text) == Dialogs::Yes)
        session.recover(*found);
    else
        session.setAside(*found);
}

} // namespace

FormMarvolendo::FormMarvolendo(Clock& clockSource, Dialogs& dialogSource, Sound* soundSource,
                               QWidget* parent)
    : QMainWindow(parent), session(clockSource, carpeta), race(session.race()), clock(clockSource),
      dialogs(dialogSource), sound(soundSource)
{
    setObjectName(QStringLiteral("FormMarvolendo"));
    setWindowIcon(artwork::appIcon());
    buildControls();
    buildMenus();
    buildRaceMenu();
    connectHandlers();
    // The window as drawn: the wide layout with the results list.
    setFormTwips(layouts::drawn.width, layouts::drawn.height);
    offerRecovery(session, dialogs, this);
    publisher->reload();
    Form_Load();
    session.startJournal();
}

FormMarvolendo::~FormMarvolendo()
{
    // The last start-times file is written before the window goes.
    startTimesWriter.reset();
}

int FormMarvolendo::checkedFormat() const
{
    for (int i = 0; i < 3; ++i) {
        if (op2[i]->isChecked())
            return i;
    }
    return -1;
}

void FormMarvolendo::setFormTwips(int widthTwips, int heightTwips)
{
    resize(widthTwips < 0 ? width() : look::px(widthTwips),
           heightTwips < 0 ? height() : look::px(heightTwips));
}

void FormMarvolendo::Form_Load()
{
    const Race::Batch batch(race);
    race.setFormato(2.0);
    intervalo = basic::fitFixed(QStringLiteral("1"), 8);
    setWindowTitle(QStringLiteral("Marvolendo"));
    race.setClock(QStringLiteral("00:00:00"));
    Timer1->setInterval(displayIntervalMs);
    Timer1->stop();
    Timer2->setInterval(timeOfDayIntervalMs);
    Timer2->start();
    ProgressBar1->setValue(0);
    race.setInicio(0);
    race.setDesfase(0);
    race.setHoraSalida(basic::fitFixed(QString(), 5));
    race.setTempsPrimer(QString());

    // Lines 1-4 of the state file; a value whose line could not be read keeps the above.
    restored = session.readSaved();
    const RaceState& saved = restored->state;
    const int lines = restored->headerLines;
    if (lines >= 1)
        race.setInicio(saved.inicio);
    if (lines >= 2)
        race.setDesfase(saved.desfase);
    if (lines >= 3)
        race.setHoraSalida(saved.horaSalida);
    if (lines >= 4)
        race.setTempsPrimer(saved.tempsPrimer);

    const TimeFormat formats[] = {TimeFormat::Segundos, TimeFormat::Centesimas,
                                  TimeFormat::Milesimas};
    const int format = checkedFormat();
    if (format >= 0) {
        if (race.state().tempsPrimer.isEmpty())
            race.setTempsPrimer(timevalue::clockTemplate(formats[format]));
        race.setFirst(resultline::cutTime(race.state().tempsPrimer, formats[format],
                                          resultline::Target::List1));
    }

    if (race.running()) {
        // The race was running when it was saved: it goes on running.
        session.anchorRun();
        Timer1->start();
        Command1[0]->setVisible(false);
        Command1[1]->setVisible(true);
        Command2[0]->setVisible(false);
        Command2[1]->setVisible(false);
        Command4->setVisible(false);
        if (basic::left(race.record().label4, 8) != QLatin1String("00:00:00")) {
            Label4->setEnabled(true);
            look::setColours(Label4, look::darkRed, Qt::white);
            Label7->setEnabled(true);
            look::setColours(Label7, look::teal, Qt::white);
            Label5->setEnabled(true);
            Label8->setEnabled(true);
            look::setBack(Label5, look::lightYellow);
            look::setBack(Label8, look::lightYellow);
        }
        marcar();
    }

    if (lines >= 7)
        race.setFormato(saved.formato);
    if (lines >= 8)
        race.setModoCaptura(saved.modoCaptura);
    if (number(race.state().modoCaptura) == 1)
        Image1->setVisible(true);
    recuperar();

    // The next finish continues the numbering of the restored list, and the last finisher's
    // labels show the last restored line.
    const QStringList& finishes = race.list1();
    race.setRank(basic::digits(double(finishes.size())));
    if (!finishes.isEmpty()) {
        const std::optional<QString> time = resultline::list1Time(finishes.last());
        if (time && !time->isEmpty()) {
            race.setLast(*time);
            race.setLastDifference(
                resultline::list1Difference(finishes.last()).value_or(QString()));
        }
    }
    // A race running on after the wall clock was set back.
    if (const std::optional<RaceSession::ClockSetBack> wrong = session.clockSetBack()) {
        const auto hms = [](double hours) { return basic::left(timevalue::tempsexaMil(hours), 8); };
        const QString text =
            QStringLiteral("La hora del equipo (%1) no cuadra con la carrera guardada: el "
                           "reloj de carrera marcaría %2, y la última llegada anotada es de "
                           "%3. Puede que se haya atrasado la hora del equipo.\n\n¿Seguir "
                           "con el reloj de carrera en %3, donde estaba en la última "
                           "llegada?")
                .arg(clock.timeOfDay().toString(QStringLiteral("hh:mm:ss")), hms(wrong->reads),
                     hms(wrong->lastFinish));
        if (dialogs.ask(this, QStringLiteral("Reloj de carrera"), text) == Dialogs::Yes)
            session.resumeAt(wrong->lastFinish);
    }
}

void FormMarvolendo::recuperar()
{
    const Race::Batch batch(race);
    // The lists come back only from the state file read at start-up; at any other time no file
    // is open and the results lists are simply emptied (List2 keeps its lines).
    if (restored) {
        const RaceState& saved = restored->state;
        race.restore(saved.combo1, saved.list1, saved.list2);
        restored.reset();
    } else {
        // The results are about to be emptied: the race with them is kept first, and a race
        // that cannot be kept is not emptied.
        if ((race.list1().isEmpty() && race.combo1().isEmpty()) || session.keepCurrent())
            race.apply(RaceChange::of(RaceChange::Kind::ResultsEmptied));
    }

    const double format = number(race.state().formato);
    for (int i = 0; i < 3; ++i) {
        if (format == i)
            op2[i]->setChecked(true);
    }

    const double mode = number(race.state().modoCaptura);
    if (mode == 0) {
        opp2->setChecked(true);
        opp2_Click();
        Command3->setVisible(true);
        Text1->setVisible(false);
        Command6->setToolTip(texts::tipOneFile);
    } else if (mode == 1) {
        opp2->setChecked(true);
        Text1->setVisible(true);
        Command3->setVisible(false);
        Command6->setToolTip(texts::tipThreeFiles);
    } else if (mode == 2) {
        look::setPointSize(List1, 14);
        opp22->setChecked(false);
        opp22_Click();
        opp2->setChecked(false);
        opp2->setEnabled(false);
        for (QAction* a : op2)
            a->setEnabled(false);
    }
    if (Combo1->count() > 0)
        Combo1->setCurrentIndex(Combo1->count() - 1);

    if (!race.running()) {
        const TimeFormat zero = format == 0   ? TimeFormat::Segundos
                                : format == 1 ? TimeFormat::Centesimas
                                              : TimeFormat::Milesimas;
        if (format == 0 || format == 1 || format == 2) {
            race.setFirst(timevalue::clockTemplate(zero));
            session.setDifference(timevalue::shortTemplate(zero));
        }
    }

    placeClock(op2[0]->isChecked());

    opp22->setEnabled(false);
    for (QAction* a : op2)
        a->setEnabled(false);
    opp4->setEnabled(false);
    if (!race.running() && mode != 2) {
        for (QAction* a : op2)
            a->setEnabled(true);
        opp2->setEnabled(true);
        opp4->setEnabled(true);
        opp22->setEnabled(true);
    }
    // Neither mode can be chosen while the clock runs, a race that runs on after a restart too.
    if (race.running())
        opp2->setEnabled(false);
    if (race.running()) {
        const int checked = checkedFormat();
        if (checked >= 0) {
            race.setFirst(resultline::cutTime(race.state().tempsPrimer,
                                              static_cast<TimeFormat>(checked),
                                              resultline::Target::List1));
            look::setPointSize(List1, checked == 0 ? 11 : 9);
        }
    }

    runningColours();
    opp4->setEnabled(true);
}

// The colours of the data area while a race is on: the clock and the rank in teal, the lists
// and the correction field in light yellow.
void FormMarvolendo::runningColours()
{
    for (QLabel* l : {Label1, Label6, Label2})
        look::setColours(l, look::teal, look::lightYellow);
    for (QWidget* w : {static_cast<QWidget*>(Combo1), static_cast<QWidget*>(List1),
                       static_cast<QWidget*>(Text2)})
        look::setColours(w, look::lightYellow, look::windowText());
}

bool FormMarvolendo::guardarEstado()
{
    return session.save();
}

void FormMarvolendo::Form_KeyDown(int keyCode, Qt::KeyboardModifiers shift)
{
    Q_UNUSED(shift);
    if (keyCode == 112 || keyCode == 114) {
        Command3_Click();
        Text1->setText(QString());
        guardarSalidas();
    }
}

void FormMarvolendo::Command8_Click()
{
    race.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
}

void FormMarvolendo::Command5_Click()
{
    session.end();
    emit terminar();
}

void FormMarvolendo::closeEvent(QCloseEvent* event)
{
    // Closing the window ends the program without saving. When the state file holds the race
    // as it stands, that is a normal end; otherwise the journal is left as after an abnormal
    // end, so that the next start offers to bring the changes back.
    if (session.saved())
        session.journal().markClean();
    event->accept();
}

bool FormMarvolendo::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == List1->viewport()) {
        if (event->type() == QEvent::MouseButtonDblClick)
            List1_DblClick();
        return false;
    }
    const bool first = watched == Text1;
    if (!first && watched != Text2)
        return QMainWindow::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::FocusIn:
        first ? Text1_GotFocus() : Text2_GotFocus();
        return false;
    case QEvent::FocusOut:
        first ? Text1_LostFocus() : Text2_LostFocus();
        return false;
    case QEvent::MouseButtonDblClick:
        first ? Text1_DblClick() : Text2_DblClick();
        return true;
    case QEvent::KeyPress:
        break;
    default:
        return false;
    }

    // A typed character goes through the keystroke filter as its code-page code.
    return filterKey(first ? Text1 : Text2, static_cast<QKeyEvent*>(event), [&](int code) {
        first ? Text1_KeyPress(code) : Text2_KeyPress(code);
        return code;
    });
}
