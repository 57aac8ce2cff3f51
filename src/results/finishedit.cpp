// Editing the results after the fact, beside the old window: bibs given afterwards in arrival
// order, a false finish removed, a missed one added, each of them undoable, and the bib
// checks drawn on the results list. The lines keep exactly the forms a Lap writes.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "app/racecommand.h"
#include "base/basic.h"
#include "chrono/core/clock.h"
#include "chrono/core/startat.h"
#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

using finishedit::Problem;

namespace
{

const QColor noBibColour{255, 224, 178};
const QColor repeatedColour{255, 188, 188};
const QColor notEnteredColour{200, 222, 255};

} // namespace

void FormMarvolendo::buildEditing()
{
    asignar = carrera->addAction(QStringLiteral("Asignar dorsales..."));
    asignar->setObjectName(QStringLiteral("asignar"));
    asignar->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    connect(asignar, &QAction::triggered, this, &FormMarvolendo::openAssignBibs);

    borrar = carrera->addAction(QStringLiteral("Borrar llegada"));
    borrar->setObjectName(QStringLiteral("borrar"));
    // Supr removes the chosen line while the list has the focus; a field keeps its own Supr.
    borrar->setShortcut(QKeySequence(Qt::Key_Delete));
    borrar->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    List1->addAction(borrar);
    Combo1->addAction(borrar);
    connect(borrar, &QAction::triggered, this, &FormMarvolendo::removeFinish);

    anadir = carrera->addAction(QStringLiteral("Añadir llegada..."));
    anadir->setObjectName(QStringLiteral("anadir"));
    connect(anadir, &QAction::triggered, this, &FormMarvolendo::addFinish);

    deshacer = carrera->addAction(QStringLiteral("Deshacer"));
    deshacer->setObjectName(QStringLiteral("deshacer"));
    deshacer->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    deshacer->setEnabled(false);
    connect(deshacer, &QAction::triggered, &undoStack, &QUndoStack::undo);
    connect(&undoStack, &QUndoStack::canUndoChanged, deshacer, &QAction::setEnabled);
    connect(&undoStack, &QUndoStack::undoTextChanged, this, [this](const QString& text) {
        deshacer->setText(text.isEmpty() ? QStringLiteral("Deshacer")
                                         : QStringLiteral("Deshacer: %1").arg(text.toLower()));
    });
    undoStack.setUndoLimit(100);

    // The counts of the bib checks, right under the results list, wherever the list stands.
    estadoDorsales = new QLabel(List1->parentWidget());
    estadoDorsales->setObjectName(QStringLiteral("estadoDorsales"));
    estadoDorsales->setFont(look::fixedFont(7));
    estadoDorsales->setAutoFillBackground(true); // its counts repaint it alone
    estadoDorsales->setVisible(false);
    List1->installEventFilter(this);

    // The bibs window: the next finish without a bib, how many wait, the bib field.
    asignarVentana = new QDialog(this);
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
    layout->addWidget(asignarSiguiente);
    layout->addWidget(asignarPendientes);
    layout->addWidget(asignarDorsal);
    asignarDorsal->installEventFilter(this);
    // The finish keys go on taking finishes while this window has the focus.
    const std::pair<Qt::Key, int> finishKeys[] = {{Qt::Key_F1, 112}, {Qt::Key_F3, 114}};
    for (const auto& finishKey : finishKeys) {
        // Named apart: a lambda cannot capture a structured binding in every compiler.
        const Qt::Key key = finishKey.first;
        const int code = finishKey.second;
        auto* shortcut = new QShortcut(QKeySequence(key), asignarVentana);
        shortcut->setAutoRepeat(false);
        connect(shortcut, &QShortcut::activated, this,
                [this, code] { Form_KeyDown(code, Qt::NoModifier); });
    }
}

void FormMarvolendo::openAssignBibs()
{
    showNextWithoutBib();
    asignarVentana->show();
    asignarVentana->raise();
    asignarVentana->activateWindow();
    asignarDorsal->setFocus();
}

int FormMarvolendo::nextWithoutBib() const
{
    const int n = static_cast<int>(race.list1().size());
    for (int i = 0; i < n; ++i) {
        if (bibChecks.problem(i) & finishedit::NoBib)
            return i;
    }
    return -1;
}

void FormMarvolendo::showNextWithoutBib()
{
    if (!asignarVentana)
        return;
    const int next = nextWithoutBib();
    if (next < 0) {
        asignarSiguiente->setText(QStringLiteral("No hay llegadas sin dorsal"));
        asignarPendientes->setText(QString());
        return;
    }
    const QString& line = race.list1()[next];
    const std::optional<QString> time = resultline::list1Time(line);
    asignarSiguiente->setText(
        QStringLiteral("Puesto %1   %2").arg(resultline::rankText(line), time.value_or(QString())));
    const int waiting = bibChecks.noBib();
    asignarPendientes->setText(waiting == 1
                                   ? QStringLiteral("Queda 1 llegada sin dorsal")
                                   : QStringLiteral("Quedan %1 llegadas sin dorsal").arg(waiting));
}

void FormMarvolendo::assignBib()
{
    const int next = nextWithoutBib();
    const QString typed = asignarDorsal->text();
    asignarDorsal->clear();
    if (next < 0 || typed.isEmpty())
        return;
    // The line is rewritten as a correction in the list rewrites it.
    const std::optional<QString> line = resultline::rewriteBib(race.list1()[next], typed);
    if (!line)
        return;
    undoStack.push(new RaceCommand(race, RaceChange::bib(next, *line),
                                   RaceChange::bib(next, race.list1()[next]),
                                   QStringLiteral("Asignar dorsal")));
}

// The line chosen for removal: in the results list, or in the drop-down where the Lap layout
// shows no list.
void FormMarvolendo::removeFinish()
{
    const int row = List1->isHidden() ? Combo1->currentIndex() : List1->currentRow();
    if (row < 0 || row >= race.list1().size()) {
        avisar(QStringLiteral("Elija en la lista la llegada que quiere borrar."));
        return;
    }
    const QString& line = race.list1()[row];
    respuesta = dialogs.confirm(this, QStringLiteral("Borrar llegada"),
                                QStringLiteral("Se borrará la llegada\n\n%1\n\ny los puestos "
                                               "siguientes subirán uno.")
                                    .arg(line));
    if (respuesta == Dialogs::Cancel)
        return;
    pushEdit(RaceChange::remove(row),
             RaceChange::insert(row, race.combo1().value(row), race.list1()[row]),
             QStringLiteral("Borrar llegada"), row == 0 && number(modoCaptura) != 1);
}

void FormMarvolendo::addFinish()
{
    const int format = checkedFormat();
    if (format < 0 || opp22->isChecked()) {
        dialogs.warn(this, QStringLiteral("Añadir llegada"),
                     QStringLiteral("Solo se pueden añadir llegadas con tiempos: elija un "
                                    "formato de tiempo y un modo con reloj."));
        return;
    }
    const QStringList answers =
        dialogs.askFields(this, QStringLiteral("Añadir llegada"),
                          {QStringLiteral("Tiempo de carrera (hh:mm:ss, con centésimas o "
                                          "milésimas si se quiere):"),
                           QStringLiteral("Dorsal:")});
    if (answers.size() != 2)
        return;
    const std::optional<double> seconds = startat::parseTimeOfDay(answers[0]);
    if (!seconds) {
        dialogs.warn(this, QStringLiteral("Añadir llegada"),
                     QStringLiteral("«%1» no es un tiempo válido. Escríbalo como hh:mm:ss, por "
                                    "ejemplo 0:42:17 o 0:42:17,35.")
                         .arg(answers[0]));
        return;
    }
    const QString bib = answers[1].trimmed();
    double bibValue = 0;
    if (!bib.isEmpty() && (!basic::isNumber(bib, &bibValue) || bibValue < 0 || bibValue > 9999)) {
        dialogs.warn(this, QStringLiteral("Añadir llegada"),
                     QStringLiteral("«%1» no es un dorsal válido (de 0 a 9999).").arg(bib));
        return;
    }
    // Not later than the race clock reads now.
    const double hours = *seconds / timevalue::secondsPerHour;
    const double now =
        inicio != 0
            ? (anchorElapsed + clock.monotonic() - anchorMono) / timevalue::secondsPerHour + desfase
            : timevalue::decimalMil(Label1->text()) + 0.999 / timevalue::secondsPerHour;
    if (hours > now) {
        dialogs.warn(this, QStringLiteral("Añadir llegada"),
                     QStringLiteral("El tiempo %1 es posterior al reloj de la carrera: no se ha "
                                    "añadido nada.")
                         .arg(answers[0].trimmed()));
        return;
    }
    const QStringList& list1 = race.list1();
    const int at = finishedit::insertionIndex(list1, hours);
    const std::optional<QString> first =
        list1.isEmpty() ? std::nullopt : resultline::list1Time(list1.first());
    const double firstHours = at == 0 || !first ? hours : finishedit::hoursOf(*first);
    // In the bibs-and-times mode the clock's difference stands still, and so does a Lap's.
    const bool differenceRuns = number(modoCaptura) != 1;
    const finishedit::FinishLines lines =
        finishedit::linesOf(at + 1, bib, hours, firstHours, static_cast<TimeFormat>(format),
                            differenceRuns ? std::nullopt : std::optional<QString>(Label7->text()));
    pushEdit(RaceChange::insert(at, lines.combo1, lines.list1), RaceChange::remove(at),
             QStringLiteral("Añadir llegada"), at == 0 && differenceRuns);
}

void FormMarvolendo::pushEdit(const RaceChange& redo, const RaceChange& undo, const QString& text,
                              bool firstMayChange)
{
    auto* command = new RaceCommand(race, redo, undo, text);
    command->after = [this, firstMayChange] { settleEdit(firstMayChange); };
    undoStack.push(command);
}

// After a finish is removed or added, either way: the differences when the first finisher
// changed, the captions a Lap would have left, and the state file.
void FormMarvolendo::settleEdit(bool firstMayChange)
{
    const int format = checkedFormat();
    if (firstMayChange && format >= 0 && !race.list1().isEmpty())
        race.apply(RaceChange::differences(format));
    relabel(firstMayChange);
    guardarEstado();
}

// The captions a Lap leaves, from the lines: the rank counter, the last finisher and, when it
// may have changed, the first (its time known to the precision the lines keep).
void FormMarvolendo::relabel(bool firstMayChange)
{
    const QStringList& list1 = race.list1();
    Label2->setText(basic::digits(double(list1.size())));
    const int format = checkedFormat();
    if (format >= 0 && !list1.isEmpty()) {
        const auto f = static_cast<TimeFormat>(format);
        const std::optional<QString> first = resultline::list1Time(list1.first());
        const std::optional<QString> last = resultline::list1Time(list1.last());
        if (first && last) {
            if (firstMayChange) {
                tempsPrimer = timevalue::tempsexaMil(finishedit::hoursOf(*first));
                if (number(modoCaptura) != 1)
                    Label4->setText(resultline::cutTime(*first, f, resultline::Target::List1));
            }
            if (number(modoCaptura) != 1)
                Label5->setText(resultline::cutTime(*last, f, resultline::Target::List1));
            if (const std::optional<QString> d = resultline::combo1Difference(race.combo1().last()))
                Label8->setText(*d);
        }
    } else if (format >= 0 && list1.isEmpty()) {
        const auto f = static_cast<TimeFormat>(format);
        tempsPrimer = timevalue::clockTemplate(f);
        Label4->setText(timevalue::clockTemplate(f));
        Label5->setText(timevalue::shortTemplate(f));
        Label8->setText(timevalue::shortTemplate(f));
    }
    race.apply(withCaptions(RaceChange::of(RaceChange::Kind::Captions)));
}

// The bib checks follow every change of the lines: a finish checks its own line (and the one
// it repeats), anything else the whole list.
void FormMarvolendo::checkBibs(const RaceChange& change)
{
    using Kind = RaceChange::Kind;
    // Neither changes a bib, and the lines keep their items: their colours stand.
    if (change.kind == Kind::Captions || change.kind == Kind::Differences)
        return;
    if (change.kind == Kind::Finish) {
        if (!change.hasLines)
            return;
        for (const int row : bibChecks.append(change.list1Line))
            colourBibLine(row);
    } else if (change.kind == Kind::Bib) {
        for (const int row : bibChecks.rewrite(change.index, change.list1Line))
            colourBibLine(row);
    } else {
        recheckAllBibs();
        return;
    }
    showBibCounts();
}

void FormMarvolendo::recheckAllBibs()
{
    // A bib is entered when the start order or the loaded entrants have it.
    std::optional<QSet<int>> entered;
    if (!race.list2().isEmpty())
        entered = resultline::startBibs(race.list2());
    if (!inscritos.isEmpty()) {
        if (!entered)
            entered.emplace();
        for (const entrants::Entrant& e : inscritos)
            entered->insert(e.bib);
    }
    bibChecks.reset(race.list1(), entered);
    {
        // One repaint for the whole list, not one a line.
        const QSignalBlocker quiet(List1->model());
        for (int row = 0; row < List1->count(); ++row)
            colourBibLine(row);
    }
    List1->viewport()->update();
    showBibCounts();
}

void FormMarvolendo::showBibCounts()
{
    QStringList counts;
    if (bibChecks.noBib() > 0)
        counts << QStringLiteral("sin dorsal: %1").arg(bibChecks.noBib());
    if (bibChecks.repeated() > 0)
        counts << QStringLiteral("repetidos: %1").arg(bibChecks.repeated());
    if (bibChecks.notEntered() > 0)
        counts << QStringLiteral("no inscritos: %1").arg(bibChecks.notEntered());
    estadoDorsales->setText(counts.join(QStringLiteral("   ")));
    placeBibStatus();
    showNextWithoutBib();
}

void FormMarvolendo::colourBibLine(int row)
{
    QListWidgetItem* item = List1->item(row);
    if (!item)
        return;
    const int p = bibChecks.problem(row);
    // Most lines are fine and stay as they are: nothing to write.
    if (p == finishedit::NoProblem && item->background().style() == Qt::NoBrush)
        return;
    QStringList why;
    if (p & finishedit::NoBib)
        why << QStringLiteral("Llegada sin dorsal");
    if (p & finishedit::Repeated)
        why << QStringLiteral("Dorsal repetido en la lista");
    if (p & finishedit::NotEntered)
        why << (inscritos.isEmpty() ? QStringLiteral("Dorsal que no está en el orden de salida")
                                    : QStringLiteral("Dorsal que no está entre los inscritos"));
    const QColor colour = p & finishedit::Repeated     ? repeatedColour
                          : p & finishedit::NotEntered ? notEnteredColour
                          : p & finishedit::NoBib      ? noBibColour
                                                       : QColor();
    if (item->background().color() != colour || item->background().style() == Qt::NoBrush)
        item->setBackground(colour.isValid() ? QBrush(colour) : QBrush());
    item->setToolTip(why.join(u'\n'));
}

void FormMarvolendo::placeBibStatus()
{
    const QRect list = List1->geometry();
    estadoDorsales->setGeometry(list.x(), list.bottom() + 1, list.width(), look::px(150));
    estadoDorsales->setVisible(!List1->isHidden() && !estadoDorsales->text().isEmpty());
}
