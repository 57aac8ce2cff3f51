// Start-up, the restore of a saved race, the state file and the window-wide keys.
#include "app/formmarvolendo.h"

#include "app/artwork.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/texts.h"
#include "base/basic.h"
#include "base/cp1252.h"
#include "base/paths.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "files/adodatacontrol.h"
#include "files/core/latestwriter.h"
#include "files/odbc/readingslink.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QTimer>

namespace
{

// The clock is redrawn 28 times a second: the thousandths still run before the eye, at about
// half the cost of following the screen's rate on a battery. A finish takes a fresh reading of
// its own, so the stamped time does not depend on this rate.
constexpr int displayIntervalMs = 36;
// The time of day only changes its caption once a minute.
constexpr int timeOfDayIntervalMs = 250;

} // namespace

FormMarvolendo::FormMarvolendo(Clock& clockSource, Dialogs& dialogSource, Sound* soundSource,
                               QWidget* parent)
    : QMainWindow(parent), sound(soundSource), clock(clockSource), dialogs(dialogSource)
{
    setObjectName(QStringLiteral("FormMarvolendo"));
    setWindowIcon(artwork::appIcon());
    buildControls();
    buildMenus();
    buildRaceMenu();
    connectHandlers();
    // The window as drawn: the wide layout with the results list.
    setFormTwips(layouts::drawn.width, layouts::drawn.height);
    // After an abnormal end the journal may hold finishes the state file lacks.
    offerRecovery();
    reloadEntrants();
    Form_Load();
    startJournal();
}

FormMarvolendo::~FormMarvolendo()
{
    // Results still being written finish first: their files are never left half made.
    if (resultsThread)
        resultsThread->wait();
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
    resize(look::px(widthTwips), look::px(heightTwips));
}

void FormMarvolendo::setFormWidthTwips(int widthTwips)
{
    resize(look::px(widthTwips), height());
}

void FormMarvolendo::setFormHeightTwips(int heightTwips)
{
    resize(width(), look::px(heightTwips));
}

void FormMarvolendo::Form_Load()
{
    formato = 2.0;
    intervalo = basic::fitFixed(QStringLiteral("1"), 8);
    setWindowTitle(QStringLiteral("Marvolendo"));
    Label1->setText(QStringLiteral("00:00:00"));
    Timer1->setInterval(displayIntervalMs);
    Timer1->stop();
    Timer2->setInterval(timeOfDayIntervalMs);
    Timer2->start();
    ProgressBar1->setValue(0);
    inicio = 0;
    desfase = 0;
    horaSalida = basic::fitFixed(QString(), 5);
    tempsPrimer.clear();

    // Lines 1-4 of the state file; a value whose line could not be read keeps the above.
    // A race recovered from the journal is taken as recovered, wherever its save could go.
    restored = recoveredLabels ? statefile::Restored{recoveredLabels->state, 8, true}
                               : statefile::read(carpeta + QLatin1String(statefile::fileName));
    const RaceState& saved = restored->state;
    const int lines = restored->headerLines;
    if (lines >= 1)
        inicio = saved.inicio;
    if (lines >= 2)
        desfase = saved.desfase;
    if (lines >= 3)
        horaSalida = saved.horaSalida;
    if (lines >= 4)
        tempsPrimer = saved.tempsPrimer;

    if (op2[0]->isChecked()) {
        if (tempsPrimer.isEmpty())
            tempsPrimer = timevalue::clockTemplate(TimeFormat::Segundos);
        Label4->setText(basic::left(tempsPrimer, 8));
    } else if (op2[1]->isChecked()) {
        if (tempsPrimer.isEmpty())
            tempsPrimer = timevalue::clockTemplate(TimeFormat::Centesimas);
        Label4->setText(basic::left(tempsPrimer, 11));
    } else if (op2[2]->isChecked()) {
        if (tempsPrimer.isEmpty())
            tempsPrimer = timevalue::clockTemplate(TimeFormat::Milesimas);
        Label4->setText(tempsPrimer);
    }

    if (inicio > 0) {
        // The race was running when it was saved: it goes on running.
        anchorRun();
        Timer1->start();
        Command1[0]->setVisible(false);
        Command1[1]->setVisible(true);
        Command2[0]->setVisible(false);
        Command2[1]->setVisible(false);
        Command4->setVisible(false);
        if (basic::left(Label4->text(), 8) != QLatin1String("00:00:00")) {
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
        formato = saved.formato;
    if (lines >= 8)
        modoCaptura = saved.modoCaptura;
    if (number(modoCaptura) == 1)
        Image1->setVisible(true);
    recuperar();

    // The next finish continues the numbering of the restored list, and the last finisher's
    // labels show the last restored line.
    const QStringList& finishes = race.list1();
    Label2->setText(basic::digits(double(finishes.size())));
    if (!finishes.isEmpty()) {
        const std::optional<QString> time = resultline::list1Time(finishes.last());
        if (time && !time->isEmpty()) {
            Label5->setText(*time);
            Label8->setText(resultline::list1Difference(finishes.last()).value_or(QString()));
        }
    }
}

void FormMarvolendo::recuperar()
{
    // The lists come back only from the state file read at start-up; at any other time no file
    // is open and the results lists are simply emptied (List2 keeps its lines).
    if (restored) {
        const RaceState& saved = restored->state;
        race.restore(saved.combo1, saved.list1, saved.list2);
        restored.reset();
    } else {
        // The results are about to be emptied: the race with them is kept first.
        if (!race.list1().isEmpty() || !race.combo1().isEmpty())
            keepCurrentRace();
        race.apply(RaceChange::of(RaceChange::Kind::ResultsEmptied));
    }

    const double format = number(formato);
    for (int i = 0; i < 3; ++i) {
        if (format == i)
            op2[i]->setChecked(true);
    }

    const double mode = number(modoCaptura);
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

    if (inicio == 0) {
        const TimeFormat zero = format == 0   ? TimeFormat::Segundos
                                : format == 1 ? TimeFormat::Centesimas
                                              : TimeFormat::Milesimas;
        if (format == 0 || format == 1 || format == 2) {
            Label4->setText(timevalue::clockTemplate(zero));
            Label7->setText(timevalue::shortTemplate(zero));
        }
    }

    placeClock(op2[0]->isChecked());

    opp22->setEnabled(false);
    for (QAction* a : op2)
        a->setEnabled(false);
    opp4->setEnabled(false);
    if (inicio == 0 && mode != 2) {
        for (QAction* a : op2)
            a->setEnabled(true);
        opp2->setEnabled(true);
        opp4->setEnabled(true);
        opp22->setEnabled(true);
    }
    if (inicio != 0) {
        if (op2[0]->isChecked()) {
            Label4->setText(basic::left(tempsPrimer, 8));
            look::setPointSize(List1, 11);
        } else if (op2[1]->isChecked()) {
            Label4->setText(basic::left(tempsPrimer, 11));
            look::setPointSize(List1, 9);
        } else if (op2[2]->isChecked()) {
            Label4->setText(tempsPrimer);
            look::setPointSize(List1, 9);
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

RaceState FormMarvolendo::currentState() const
{
    RaceState s;
    s.inicio = inicio;
    s.desfase = desfase;
    s.horaSalida = horaSalida;
    s.tempsPrimer = tempsPrimer;
    s.label5 = Label5->text();
    s.label8 = Label8->text();
    s.formato = formato;
    s.modoCaptura = modoCaptura;
    s.combo1 = race.combo1();
    s.list1 = race.list1();
    s.list2 = race.list2();
    return s;
}

bool FormMarvolendo::guardarEstado()
{
    const statefile::SaveResult result =
        statefile::save(currentState(), carpeta + QLatin1String(statefile::fileName),
                        paths::local(QLatin1String(statefile::fallbackPath)));
    if (result.outcome != statefile::SaveOutcome::Failed)
        stateFileInUse = result.outcome == statefile::SaveOutcome::Primary
                             ? carpeta + QLatin1String(statefile::fileName)
                             : paths::local(QLatin1String(statefile::fallbackPath));
    if (result.outcome == statefile::SaveOutcome::Failed) {
        avisar(QStringLiteral("No se pudo guardar la carrera en %1 (%2) ni en %3 (%4). "
                              "Los tiempos siguen en pantalla: no cierre el programa.")
                   .arg(QLatin1String(statefile::fileName), result.primaryError,
                        paths::local(QLatin1String(statefile::fallbackPath)),
                        result.fallbackError));
        return false;
    }
    return true;
}

void FormMarvolendo::Form_KeyDown(int keyCode, Qt::KeyboardModifiers shift)
{
    Q_UNUSED(shift);
    if (keyCode == 112 || keyCode == 114) {
        recordFinish();
        Text1->setText(QString());
        guardarSalidas();
    }
}

void FormMarvolendo::recordFinish()
{
    // Stamp the finish with the time of this moment, not of the last redraw.
    if (Timer1->isActive())
        tempsMarvo(inicio, tempsActual);
    Command3_Click();
}

void FormMarvolendo::Command8_Click()
{
    race.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
}

void FormMarvolendo::Command5_Click()
{
    guardarEstado();
    journal.markClean();
    emit terminar();
}

void FormMarvolendo::closeEvent(QCloseEvent* event)
{
    // Closing the window ends the program without saving. When the state file holds the race
    // as it stands, that is a normal end; otherwise the journal is left as after an abnormal
    // end, so that the next start offers to bring the changes back.
    QFile saved(stateFileInUse.isEmpty() ? carpeta + QLatin1String(statefile::fileName)
                                         : stateFileInUse);
    if (saved.open(QIODevice::ReadOnly) && saved.readAll() == statefile::encode(currentState()))
        journal.markClean();
    event->accept();
}

namespace
{

// A notice under the row of "Lap" (the clock, Start and Stop and "Lap" stay in sight), or
// under the other notice when that one is up.
void showNotice(QLabel* notice, const QString& text, int top)
{
    QWidget* area = notice->parentWidget();
    notice->setText(text);
    const int h = notice->heightForWidth(area->width() - 8);
    notice->setGeometry(4, top, area->width() - 8, qMax(h, 24));
    notice->raise();
    notice->show();
}

} // namespace

void FormMarvolendo::avisar(const QString& text)
{
    const int top = avisoDiario->isHidden() ? Command3->geometry().bottom() + 4
                                            : avisoDiario->geometry().bottom() + 2;
    showNotice(aviso, text, top);
    avisoTimer->start();
}

void FormMarvolendo::avisoFijo(const QString& text)
{
    showNotice(avisoDiario, text, Command3->geometry().bottom() + 4);
    if (!aviso->isHidden())
        aviso->move(aviso->x(), avisoDiario->geometry().bottom() + 2);
}

bool FormMarvolendo::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == List1->viewport()) {
        if (event->type() == QEvent::MouseButtonDblClick)
            List1_DblClick();
        return false;
    }
    if (watched == List1) {
        // The bib checks' counts stand under the list wherever a layout puts it.
        switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::ShowToParent:
        case QEvent::HideToParent:
            placeBibStatus();
            break;
        default:
            break;
        }
        return false;
    }
    if (watched == asignarDorsal) {
        if (event->type() == QEvent::FocusIn) {
            bibFieldGotFocus(asignarDorsal);
            return false;
        }
        if (event->type() != QEvent::KeyPress)
            return false;
    }
    const bool first = watched == Text1;
    if (!first && watched != Text2 && watched != asignarDorsal)
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
    auto* key = static_cast<QKeyEvent*>(event);
    int code = 0;
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        code = 13;
    else if (key->key() == Qt::Key_Backspace)
        code = 8;
    else if (key->text().size() == 1 && key->text()[0].isPrint())
        code = cp1252::code(key->text()[0]);
    else
        return false; // arrows, Delete and the like are the field's own business
    if (code == 0)
        return true; // a character outside the code page is swallowed
    const int typed = code;
    if (watched == asignarDorsal) {
        // The bibs window's field: the bib fields' filter, Enter gives the bib.
        bibFieldKeyPress(asignarDorsal, code);
        if (enterCampo == 1)
            assignBib();
        if (code != 0 && code != 13 && code != typed) {
            asignarDorsal->insert(QString(cp1252::character(code)));
            return true;
        }
        return code == 0 || typed == 13;
    }
    first ? Text1_KeyPress(code) : Text2_KeyPress(code);
    if (code != 0 && code != 13 && code != typed) {
        // The filter changed the key (upper case, say): type the changed character instead.
        (first ? Text1 : Text2)->insert(QString(cp1252::character(code)));
        return true;
    }
    // An accepted key is typed by the field itself; Enter has been handled already.
    return code == 0 || typed == 13;
}
