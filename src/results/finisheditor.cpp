#include "finisheditor.h"

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "app/look.h"
#include "app/notices.h"
#include "base/basic.h"
#include "chrono/core/startat.h"
#include "chrono/core/timevalue.h"
#include "entry/keyfilter.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QScreen>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <QWidget>
#include <algorithm>

namespace
{

const QColor noBibColour{255, 224, 178};
const QColor repeatedColour{255, 188, 188};
const QColor notEnteredColour{200, 222, 255};

} // namespace

FinishEditor::FinishEditor(QWidget* parentWindow, QMenu* carrera, QListWidget* results,
                           QComboBox* splits, RaceSession& raceSession, Dialogs& dialogSource,
                           Notices& noticeArea)
    : QObject(parentWindow), window(parentWindow), list1(results), combo1(splits),
      session(raceSession), dialogs(dialogSource), notices(noticeArea)
{
    QAction* asignar = carrera->addAction(QStringLiteral("Asignar dorsales..."));
    asignar->setObjectName(QStringLiteral("asignar"));
    asignar->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    connect(asignar, &QAction::triggered, this, &FinishEditor::openAssignBibs);

    QAction* borrar = carrera->addAction(QStringLiteral("Borrar llegada"));
    borrar->setObjectName(QStringLiteral("borrar"));
    // Supr removes the chosen line while the list has the focus; a field keeps its own Supr.
    borrar->setShortcut(QKeySequence(Qt::Key_Delete));
    borrar->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    list1->addAction(borrar);
    combo1->addAction(borrar);
    connect(borrar, &QAction::triggered, this, &FinishEditor::removeFinish);

    QAction* anadir = carrera->addAction(QStringLiteral("Añadir llegada..."));
    anadir->setObjectName(QStringLiteral("anadir"));
    connect(anadir, &QAction::triggered, this, &FinishEditor::addFinish);

    deshacer = carrera->addAction(QStringLiteral("Deshacer"));
    deshacer->setObjectName(QStringLiteral("deshacer"));
    deshacer->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    deshacer->setEnabled(false);
    connect(deshacer, &QAction::triggered, &session, &RaceSession::undo);
    connect(&session, &RaceSession::undoChanged, this, [this] {
        deshacer->setEnabled(session.canUndo());
        const QString text = session.undoText();
        deshacer->setText(text.isEmpty() ? QStringLiteral("Deshacer")
                                         : QStringLiteral("Deshacer: %1").arg(text.toLower()));
    });

    // The counts of the bib checks, right under the results list, wherever the list stands.
    estadoDorsales = new QLabel(list1->parentWidget());
    estadoDorsales->setObjectName(QStringLiteral("estadoDorsales"));
    estadoDorsales->setFont(look::fixedFont(7));
    estadoDorsales->setAutoFillBackground(true); // its counts repaint it alone
    estadoDorsales->setVisible(false);
    list1->installEventFilter(this);

    // The bibs window: the next finish without a bib, how many wait, the bib field.
    asignarVentana = new QDialog(window);
    asignarVentana->setObjectName(QStringLiteral("asignarVentana"));
    asignarVentana->setWindowTitle(QStringLiteral("Asignar dorsales"));
    asignarVentana->setModal(false);
    auto* layout = new QVBoxLayout(asignarVentana);
    asignarSiguiente = new QLabel(asignarVentana);
    asignarSiguiente->setObjectName(QStringLiteral("asignarSiguiente"));
    asignarSiguiente->setFont(look::fixedFont(11));
    asignarPendientes = new QLabel(asignarVentana);
    asignarPendientes->setObjectName(QStringLiteral("asignarPendientes"));
    asignarDorsal = new QLineEdit(asignarVentana);
    asignarDorsal->setObjectName(QStringLiteral("asignarDorsal"));
    asignarDorsal->setMaxLength(4);
    asignarDorsal->setAlignment(Qt::AlignCenter);
    QFont big = asignarDorsal->font();
    big.setPointSize(18);
    asignarDorsal->setFont(big);
    asignarDorsal->setToolTip(QStringLiteral("Dorsal de esta llegada; Intro lo asigna y pasa a "
                                             "la siguiente"));
    asignarCorredor = new QLabel(asignarVentana);
    asignarCorredor->setObjectName(QStringLiteral("asignarCorredor"));
    asignarCorredor->setMinimumWidth(look::px(4200));
    layout->addWidget(asignarSiguiente);
    layout->addWidget(asignarPendientes);
    layout->addWidget(asignarDorsal);
    layout->addWidget(asignarCorredor);
    asignarDorsal->installEventFilter(this);
    connect(asignarDorsal, &QLineEdit::textChanged, this, &FinishEditor::showRunner);
    // Ctrl+Z here takes back the last assignment, as in the main window, not the field's text.
    asignarVentana->addAction(deshacer);
}

void FinishEditor::openAssignBibs()
{
    showNextWithoutBib();
    showRunner(asignarDorsal->text());
    if (!asignarVentana->isVisible())
        placeBesideTheList();
    asignarVentana->show();
    asignarVentana->raise();
    asignarVentana->activateWindow();
    asignarDorsal->setFocus();
}

void FinishEditor::showNextWithoutBib()
{
    const int next = session.nextWithoutBib();
    if (next < 0) {
        asignarSiguiente->setText(QStringLiteral("No hay llegadas sin dorsal"));
        asignarPendientes->setText(QString());
        return;
    }
    // The line being given its bib stays in sight in the results list.
    if (QListWidgetItem* item = list1->item(next))
        list1->scrollToItem(item, QAbstractItemView::PositionAtCenter);
    const QString& line = session.race().list1()[next];
    asignarSiguiente->setText(QStringLiteral("Puesto %1   %2")
                                  .arg(QString::number(resultline::rankOf(line)),
                                       resultline::list1Time(line).value_or(QString())));
    const int waiting = session.bibChecks().noBib();
    asignarPendientes->setText(waiting == 1
                                   ? QStringLiteral("Queda 1 llegada sin dorsal")
                                   : QStringLiteral("Quedan %1 llegadas sin dorsal").arg(waiting));
}

void FinishEditor::assignBib()
{
    const QString typed = asignarDorsal->text();
    asignarDorsal->clear();
    if (typed.isEmpty())
        return;
    session.perform(
        raceedits::bibAssignment(session.race().record(), session.nextWithoutBib(), typed));
}

// Who wears the bib being typed, so that a mistyped bib is caught before it is given.
void FinishEditor::showRunner(const QString& typed)
{
    const QList<entrants::Entrant>& entered = session.race().entrants();
    bool number = false;
    const int bib = typed.trimmed().toInt(&number);
    if (!number || entered.isEmpty()) {
        asignarCorredor->setText(QString());
        return;
    }
    const auto runner = std::find_if(entered.begin(), entered.end(),
                                     [bib](const entrants::Entrant& e) { return e.bib == bib; });
    if (runner == entered.end()) {
        asignarCorredor->setText(QStringLiteral("Dorsal %1: no está entre los inscritos").arg(bib));
        return;
    }
    QString text = runner->fullName();
    if (!runner->categoria.isEmpty())
        text += QStringLiteral(" · %1").arg(runner->categoria);
    asignarCorredor->setText(text);
}

// The window opens beside the main window, where it covers none of the results list: to its
// right, or left, or else below or above it, as the screen has room.
void FinishEditor::placeBesideTheList()
{
    asignarVentana->adjustSize();
    look::placeBeside(asignarVentana, window);
}

// The line chosen for removal: in the results list, or in the drop-down where the Lap layout
// shows no list.
void FinishEditor::removeFinish()
{
    const int row = list1->isHidden() ? combo1->currentIndex() : list1->currentRow();
    const QStringList& lines = session.race().list1();
    if (row < 0 || row >= lines.size()) {
        notices.show(QStringLiteral("Elija en la lista la llegada que quiere borrar."));
        return;
    }
    const int answer = dialogs.confirm(window, QStringLiteral("Borrar llegada"),
                                       QStringLiteral("Se borrará la llegada\n\n%1\n\ny los "
                                                      "puestos siguientes subirán uno.")
                                           .arg(lines[row]));
    emit answered(answer);
    if (answer == Dialogs::Cancel)
        return;
    session.perform(raceedits::removal(session.race().record(), row, session.editContext()));
}

void FinishEditor::addFinish()
{
    const raceedits::Context context = session.editContext();
    if (context.format < 0 || session.lapOptions().bibsOnly) {
        dialogs.warn(window, QStringLiteral("Añadir llegada"),
                     QStringLiteral("Solo se pueden añadir llegadas con tiempos: elija un "
                                    "formato de tiempo y un modo con reloj."));
        return;
    }
    const QStringList answers =
        dialogs.askFields(window, QStringLiteral("Añadir llegada"),
                          {QStringLiteral("Tiempo de carrera (hh:mm:ss, con centésimas o "
                                          "milésimas si se quiere):"),
                           QStringLiteral("Dorsal:")});
    if (answers.size() != 2)
        return;
    const std::optional<double> seconds = startat::parseTimeOfDay(answers[0]);
    if (!seconds) {
        dialogs.warn(window, QStringLiteral("Añadir llegada"),
                     QStringLiteral("«%1» no es un tiempo válido. Escríbalo como hh:mm:ss, por "
                                    "ejemplo 0:42:17 o 0:42:17,35.")
                         .arg(answers[0]));
        return;
    }
    const QString bib = answers[1].trimmed();
    double bibValue = 0;
    if (!bib.isEmpty() && (!basic::isNumber(bib, &bibValue) || bibValue < 0 || bibValue > 9999)) {
        dialogs.warn(window, QStringLiteral("Añadir llegada"),
                     QStringLiteral("«%1» no es un dorsal válido (de 0 a 9999).").arg(bib));
        return;
    }
    // Not later than the race clock reads now.
    const double hours = *seconds / timevalue::secondsPerHour;
    if (hours > session.latestHours()) {
        dialogs.warn(window, QStringLiteral("Añadir llegada"),
                     QStringLiteral("El tiempo %1 es posterior al reloj de la carrera: no se ha "
                                    "añadido nada.")
                         .arg(answers[0].trimmed()));
        return;
    }
    session.perform(
        raceedits::addition(session.race().record(), hours, bib, context, session.difference()));
}

// The bib checks follow every change of the lines: a finish its own line (and the one it
// repeats), anything else the whole list.
void FinishEditor::showChecks(const RaceChange& change)
{
    if (session.allChecked()) {
        showAllChecks();
        return;
    }
    if (!change.changesLines())
        return;
    for (const int row : session.rowsChecked())
        colour(row);
    showCounts();
}

void FinishEditor::showAllChecks()
{
    {
        // One repaint for the whole list, not one a line.
        const QSignalBlocker quiet(list1->model());
        for (int row = 0; row < list1->count(); ++row)
            colour(row);
    }
    list1->viewport()->update();
    showCounts();
}

void FinishEditor::showCounts()
{
    const finishedit::BibChecks& checks = session.bibChecks();
    QStringList counts;
    if (checks.noBib() > 0)
        counts << QStringLiteral("sin dorsal: %1").arg(checks.noBib());
    if (checks.repeated() > 0)
        counts << QStringLiteral("dorsales repetidos: %1").arg(checks.repeated());
    if (checks.notEntered() > 0)
        counts << QStringLiteral("no inscritos: %1").arg(checks.notEntered());
    estadoDorsales->setText(counts.join(QStringLiteral("   ")));
    placeStatus();
    showNextWithoutBib();
}

void FinishEditor::colour(int row)
{
    QListWidgetItem* item = list1->item(row);
    if (!item)
        return;
    const int p = session.bibChecks().problem(row);
    // Most lines are fine and stay as they are: nothing to write.
    if (p == finishedit::NoProblem && item->background().style() == Qt::NoBrush)
        return;
    QStringList why;
    if (p & finishedit::NoBib)
        why << QStringLiteral("Llegada sin dorsal");
    if (p & finishedit::Repeated)
        why << QStringLiteral("Dorsal repetido en la lista");
    if (p & finishedit::NotEntered)
        why << (session.race().entrants().isEmpty()
                    ? QStringLiteral("Dorsal que no está en el orden de salida")
                    : QStringLiteral("Dorsal que no está entre los inscritos"));
    const QColor colour = p & finishedit::Repeated     ? repeatedColour
                          : p & finishedit::NotEntered ? notEnteredColour
                          : p & finishedit::NoBib      ? noBibColour
                                                       : QColor();
    if (item->background().color() != colour || item->background().style() == Qt::NoBrush)
        item->setBackground(colour.isValid() ? QBrush(colour) : QBrush());
    item->setToolTip(why.join(u'\n'));
}

void FinishEditor::placeStatus()
{
    const QRect list = list1->geometry();
    estadoDorsales->setGeometry(list.x(), list.bottom() + 1, list.width(), look::px(150));
    estadoDorsales->setVisible(!list1->isHidden() && !estadoDorsales->text().isEmpty());
}

bool FinishEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == list1) {
        // The counts stand under the list wherever a layout puts it.
        switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::ShowToParent:
        case QEvent::HideToParent:
            placeStatus();
            break;
        default:
            break;
        }
        return false;
    }
    if (watched != asignarDorsal)
        return false;
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo)) {
        // Not the field's own undo: the shortcut of "Deshacer" takes the key.
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::FocusIn) {
        look::setColours(asignarDorsal, look::navy, look::windowBackground());
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    // The bib fields' keystroke filter; Enter gives the bib.
    return filterKey(asignarDorsal, static_cast<QKeyEvent*>(event), [this](int code) {
        const EntradaResult result =
            entrada(entradaState, code, 6, asignarDorsal->text().trimmed(), 0, 9999);
        if (result.message != RangeMessage::None)
            dialogs.warn(window, rangeMessageTitle(result.message),
                         rangeMessageText(result.message, result.bound));
        if (result.enter)
            assignBib();
        return result.keyAscii;
    });
}
