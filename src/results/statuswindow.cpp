#include "statuswindow.h"

#include "app/look.h"

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "results/core/entrants.h"
#include "results/core/plaintext.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using runnerstatus::Kind;

namespace
{

enum Column { BibColumn, NameColumn, ClubColumn, CategoryColumn, FinishColumn, StatusColumn };
// On the bib's cell: the bib, and the text the filter searches.
constexpr int bibRole = Qt::UserRole;
constexpr int searchRole = Qt::UserRole + 1;

// The rank of the first line of each bib in the results list (0 when the line has none).
QMap<int, int> finishRanks(const QStringList& list1)
{
    QMap<int, int> ranks;
    for (const QString& line : list1) {
        const double bib = resultline::bibOf(line);
        if (bib < 1 || bib > entrants::maxBib || bib != std::floor(bib))
            continue;
        if (!ranks.contains(int(bib)))
            ranks.insert(int(bib), std::max(0, resultline::rankOf(line)));
    }
    return ranks;
}

QString statusText(const runnerstatus::Marks& marks, int bib, bool finished)
{
    const Kind kind = runnerstatus::of(marks, bib, finished);
    const QString reason = marks.value(bib).reason;
    if (kind == Kind::Disqualified && !reason.isEmpty())
        return QStringLiteral("%1: %2").arg(runnerstatus::label(kind), reason);
    return runnerstatus::label(kind);
}

// A row of the list: an entrant, a bib that finished or a bib with a status, once each.
struct Runner {
    const entrants::Entrant* entrant = nullptr;
    std::optional<int> rank; // set when the bib finished
};

QMap<int, Runner> runnersOf(const Race& race)
{
    QMap<int, Runner> runners;
    for (const entrants::Entrant& e : race.entrants())
        runners[e.bib].entrant = &e;
    const QMap<int, int> ranks = finishRanks(race.list1());
    for (auto it = ranks.cbegin(); it != ranks.cend(); ++it)
        runners[it.key()].rank = it.value();
    for (auto it = race.marks().cbegin(); it != race.marks().cend(); ++it)
        runners[it.key()];
    return runners;
}

void setCell(QTableWidget* table, int row, int column, const QString& text)
{
    QTableWidgetItem* item = table->item(row, column);
    if (!item)
        table->setItem(row, column, new QTableWidgetItem(text));
    else if (item->text() != text)
        item->setText(text);
}

bool allDigits(const QString& word)
{
    return std::all_of(word.begin(), word.end(), [](QChar c) { return c.isDigit(); });
}

// A field whose own undo would hide the program's: Ctrl+Z goes to "Deshacer".
bool undoKey(QEvent* event)
{
    return event->type() == QEvent::ShortcutOverride &&
           static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo);
}

} // namespace

StatusWindow::StatusWindow(QWidget* parentWindow, RaceSession& raceSession, Dialogs& dialogSource,
                           QAction* undoAction)
    : QObject(parentWindow), window(parentWindow), session(raceSession), dialogs(dialogSource),
      undo(undoAction)
{
    const Race& race = session.race();
    // A finish is recorded first; the list follows once the finish key's work is done, once
    // for a burst of finishes.
    laterRefresh.setSingleShot(true);
    laterRefresh.setInterval(0);
    connect(&laterRefresh, &QTimer::timeout, this, &StatusWindow::refresh);
    connect(&race, &Race::changed, this, [this](const RaceChange& change) {
        // A mark changes a status; a finish, or a bib corrected, whether a runner finished.
        if (change.kind == RaceChange::Kind::Mark)
            refresh();
        else if (change.changesLines() && ventana && ventana->isVisible())
            laterRefresh.start();
    });
    connect(&race, &Race::entrantsChanged, this, &StatusWindow::refresh);
    connect(&race, &Race::restored, this, &StatusWindow::refresh);
}

void StatusWindow::build()
{
    ventana = new QDialog(window);
    ventana->setObjectName(QStringLiteral("situacionesVentana"));
    ventana->setWindowTitle(QStringLiteral("Situación de los corredores"));
    ventana->setModal(false);
    auto* layout = new QVBoxLayout(ventana);

    auto* top = new QHBoxLayout;
    auto* buscar = new QLabel(QStringLiteral("&Buscar:"), ventana);
    filtro = new QLineEdit(ventana);
    filtro->setObjectName(QStringLiteral("situacionesFiltro"));
    filtro->setPlaceholderText(QStringLiteral("Dorsal, nombre, club o categoría"));
    filtro->setClearButtonEnabled(true);
    buscar->setBuddy(filtro);
    top->addWidget(buscar);
    top->addWidget(filtro);
    layout->addLayout(top);

    lista = new QTableWidget(0, 6, ventana);
    lista->setObjectName(QStringLiteral("situacionesLista"));
    lista->setHorizontalHeaderLabels({QStringLiteral("Dorsal"), QStringLiteral("Nombre"),
                                      QStringLiteral("Club"), QStringLiteral("Categoría"),
                                      QStringLiteral("Llegada"), QStringLiteral("Situación")});
    lista->setSelectionBehavior(QAbstractItemView::SelectRows);
    lista->setSelectionMode(QAbstractItemView::SingleSelection);
    lista->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lista->setTabKeyNavigation(false);
    lista->verticalHeader()->hide();
    lista->horizontalHeader()->setStretchLastSection(true);
    const int widths[] = {60, 200, 150, 100, 90};
    for (int c = 0; c < 5; ++c)
        lista->setColumnWidth(c, widths[c]);
    layout->addWidget(lista);
    cuentas = new QLabel(ventana);
    cuentas->setObjectName(QStringLiteral("situacionesCuentas"));
    layout->addWidget(cuentas);
    auto* ayuda = new QLabel(QStringLiteral("En la lista: T no terminado · S no salió · "
                                            "D descalificado · F fuera de control · C o Supr "
                                            "por defecto · Ctrl+Z deshace"),
                             ventana);
    ayuda->setEnabled(false);
    layout->addWidget(ayuda);

    // The same for the mouse: buttons that take no focus, so the keys stay in the list.
    auto* buttons = new QHBoxLayout;
    const struct {
        const char* name;
        QString text;
        Kind kind;
    } actions[] = {
        {"situacionNoTerminado", QStringLiteral("No &terminado"), Kind::DidNotFinish},
        {"situacionNoSalio", QStringLiteral("No &salió"), Kind::DidNotStart},
        {"situacionDescalificado", QStringLiteral("&Descalificado..."), Kind::Disqualified},
        {"situacionFueraControl", QStringLiteral("&Fuera de control"), Kind::OutOfTime},
        {"situacionPorDefecto", QStringLiteral("Por defe&cto"), Kind::Classified},
    };
    for (const auto& a : actions) {
        auto* b = new QPushButton(a.text, ventana);
        b->setObjectName(QLatin1String(a.name));
        b->setAutoDefault(false);
        b->setFocusPolicy(Qt::NoFocus);
        connect(b, &QPushButton::clicked, this, [this, kind = a.kind] { setChosen(kind); });
        buttons->addWidget(b);
    }
    buttons->addStretch();
    layout->addLayout(buttons);

    // A bib typed directly, in the list or not.
    auto* byBib = new QHBoxLayout;
    auto* dorsalLabel = new QLabel(QStringLiteral("D&orsal:"), ventana);
    dorsal = new QLineEdit(ventana);
    dorsal->setObjectName(QStringLiteral("situacionesDorsal"));
    dorsal->setMaxLength(8);
    dorsal->setMaximumWidth(80);
    dorsalLabel->setBuddy(dorsal);
    situacion = new QComboBox(ventana);
    situacion->setObjectName(QStringLiteral("situacionesTipo"));
    for (const Kind kind :
         {Kind::DidNotFinish, Kind::DidNotStart, Kind::Disqualified, Kind::OutOfTime})
        situacion->addItem(runnerstatus::label(kind), int(kind));
    situacion->addItem(QStringLiteral("Por defecto"), int(Kind::Classified));
    auto* motivoLabel = new QLabel(QStringLiteral("&Motivo:"), ventana);
    motivo = new QLineEdit(ventana);
    motivo->setObjectName(QStringLiteral("situacionesMotivo"));
    motivo->setEnabled(false);
    motivoLabel->setBuddy(motivo);
    auto* aplicar = new QPushButton(QStringLiteral("&Aplicar"), ventana);
    aplicar->setObjectName(QStringLiteral("situacionesAplicar"));
    aplicar->setAutoDefault(false);
    byBib->addWidget(dorsalLabel);
    byBib->addWidget(dorsal);
    byBib->addWidget(situacion);
    byBib->addWidget(motivoLabel);
    byBib->addWidget(motivo, 1);
    byBib->addWidget(aplicar);
    layout->addLayout(byBib);
    connect(situacion, &QComboBox::currentIndexChanged, this, [this] {
        motivo->setEnabled(Kind(situacion->currentData().toInt()) == Kind::Disqualified);
    });
    connect(dorsal, &QLineEdit::returnPressed, this, &StatusWindow::applyByBib);
    connect(motivo, &QLineEdit::returnPressed, this, &StatusWindow::applyByBib);
    connect(aplicar, &QPushButton::clicked, this, &StatusWindow::applyByBib);

    // What the last key or click did, or why it did nothing: no box interrupts the timing.
    estado = new QLabel(ventana);
    estado->setObjectName(QStringLiteral("situacionesEstado"));
    layout->addWidget(estado);

    connect(filtro, &QLineEdit::textChanged, this, &StatusWindow::filter);
    for (QObject* o : {static_cast<QObject*>(filtro), static_cast<QObject*>(lista),
                       static_cast<QObject*>(dorsal), static_cast<QObject*>(motivo)})
        o->installEventFilter(this);
    if (undo)
        ventana->addAction(undo);
    ventana->resize(780, 520);
}

void StatusWindow::show()
{
    if (!ventana)
        build();
    if (!ventana->isVisible())
        placeBesideTheWindow();
    ventana->show();
    refresh();
    ventana->raise();
    ventana->activateWindow();
    filtro->setFocus();
    filtro->selectAll();
}

// The rows follow the race: the cells that changed are written again, the whole list only
// when the bibs listed changed.
void StatusWindow::refresh()
{
    if (!ventana || !ventana->isVisible())
        return; // show() brings it up to date
    const Race& race = session.race();
    const QMap<int, Runner> runners = runnersOf(race);
    const int chosen = chosenBib();
    const QList<int> bibs = runners.keys();
    const bool sameRows = bibs == shownBibs;
    if (!sameRows) {
        lista->setRowCount(int(bibs.size()));
        shownBibs = bibs;
    }
    int counts[5] = {};
    int row = 0;
    for (auto it = runners.cbegin(); it != runners.cend(); ++it, ++row) {
        const int bib = it.key();
        const entrants::Entrant* e = it->entrant;
        const bool finished = it->rank.has_value();
        const QString name = e                           ? e->fullName()
                             : race.entrants().isEmpty() ? QString()
                                                         : QStringLiteral("(no inscrito)");
        setCell(lista, row, BibColumn, QString::number(bib));
        setCell(lista, row, NameColumn, name);
        setCell(lista, row, ClubColumn, e ? e->club : QString());
        setCell(lista, row, CategoryColumn, e ? e->categoria : QString());
        setCell(lista, row, FinishColumn,
                !finished   ? QStringLiteral("—")
                : *it->rank ? QStringLiteral("Llegó (%1.º)").arg(*it->rank)
                            : QStringLiteral("Llegó"));
        setCell(lista, row, StatusColumn, statusText(race.marks(), bib, finished));
        QTableWidgetItem* item = lista->item(row, BibColumn);
        item->setData(bibRole, bib);
        item->setData(searchRole, plaintext::folded(QStringList{name, e ? e->club : QString(),
                                                                e ? e->categoria : QString()}
                                                        .join(u' ')));
        ++counts[int(runnerstatus::of(race.marks(), bib, finished))];
    }
    cuentas->setText(QStringLiteral("Clasificados %1 · No terminado %2 · No salió %3 · "
                                    "Descalificado %4 · Fuera de control %5")
                         .arg(counts[int(Kind::Classified)])
                         .arg(counts[int(Kind::DidNotFinish)])
                         .arg(counts[int(Kind::DidNotStart)])
                         .arg(counts[int(Kind::Disqualified)])
                         .arg(counts[int(Kind::OutOfTime)]));
    filter();
    // The runner chosen stays chosen wherever his row went.
    if (!sameRows)
        lista->setCurrentCell(chosen > 0 ? int(shownBibs.indexOf(chosen)) : -1, BibColumn);
}

// Every word typed must be found in the name, club or category, case and accents aside; a
// number is also the start of a bib.
void StatusWindow::filter()
{
    const QStringList words = plaintext::folded(filtro->text()).split(u' ', Qt::SkipEmptyParts);
    for (int row = 0; row < lista->rowCount(); ++row) {
        const QTableWidgetItem* item = lista->item(row, BibColumn);
        const QString bib = item->text();
        const QString text = item->data(searchRole).toString();
        const bool shown = std::all_of(words.begin(), words.end(), [&](const QString& w) {
            return text.contains(w) || (allDigits(w) && bib.startsWith(w));
        });
        lista->setRowHidden(row, !shown);
    }
}

int StatusWindow::chosenBib() const
{
    if (!lista)
        return 0;
    const int row = lista->currentRow();
    const QTableWidgetItem* item = lista->item(row, BibColumn);
    if (!item || lista->isRowHidden(row) || !lista->selectionModel()->isRowSelected(row))
        return 0;
    return item->data(bibRole).toInt();
}

bool StatusWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (undoKey(event)) {
        event->ignore();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier))
        return false;
    if (watched == filtro && (key->key() == Qt::Key_Down || key->key() == Qt::Key_Return ||
                              key->key() == Qt::Key_Enter)) {
        // Into the list: the row chosen there, or the first one the filter leaves.
        int row = chosenBib() ? lista->currentRow() : -1;
        for (int r = 0; row < 0 && r < lista->rowCount(); ++r)
            if (!lista->isRowHidden(r))
                row = r;
        if (row >= 0)
            lista->setCurrentCell(row, BibColumn);
        lista->setFocus();
        return true;
    }
    if (watched == lista)
        return listKey(key->key());
    return false;
}

// The keys of the list: a letter sets the status of the chosen row; Up from its first row goes
// back to the filter.
bool StatusWindow::listKey(int key)
{
    switch (key) {
    case Qt::Key_T:
        setChosen(Kind::DidNotFinish);
        return true;
    case Qt::Key_S:
        setChosen(Kind::DidNotStart);
        return true;
    case Qt::Key_D:
        setChosen(Kind::Disqualified);
        return true;
    case Qt::Key_F:
        setChosen(Kind::OutOfTime);
        return true;
    case Qt::Key_C:
    case Qt::Key_Delete:
        setChosen(Kind::Classified);
        return true;
    case Qt::Key_Up: {
        for (int r = lista->currentRow() - 1; r >= 0; --r)
            if (!lista->isRowHidden(r))
                return false;
        filtro->setFocus();
        return true;
    }
    default:
        return false;
    }
}

void StatusWindow::setChosen(Kind kind)
{
    const int bib = chosenBib();
    if (bib == 0) {
        say(QStringLiteral("Elija un corredor en la lista."));
        return;
    }
    if (kind == Kind::Disqualified) {
        disqualifyChosen();
        return;
    }
    setStatus(bib, kind, QString());
}

void StatusWindow::disqualifyChosen()
{
    const int bib = chosenBib();
    const QString reason =
        dialogs
            .askText(ventana, QStringLiteral("Descalificar al dorsal %1").arg(bib),
                     QStringLiteral("Motivo de la descalificación:"))
            .trimmed();
    if (reason.isEmpty()) {
        say(QStringLiteral("Descalificación del dorsal %1 cancelada.").arg(bib));
        return;
    }
    setStatus(bib, Kind::Disqualified, reason);
}

void StatusWindow::applyByBib()
{
    const QString typed = dorsal->text().trimmed();
    if (typed.isEmpty()) {
        say(QStringLiteral("Escriba un dorsal."));
        dorsal->setFocus();
        return;
    }
    bool number = false;
    const int bib = typed.toInt(&number);
    if (!number || bib < 1 || bib > entrants::maxBib) {
        say(QStringLiteral("«%1» no es un dorsal válido: escriba un número de 1 a %2.")
                .arg(typed)
                .arg(entrants::maxBib));
        dorsal->setFocus();
        dorsal->selectAll();
        return;
    }
    const Kind kind = Kind(situacion->currentData().toInt());
    const QString reason = motivo->text().trimmed();
    if (kind == Kind::Disqualified && reason.isEmpty()) {
        say(QStringLiteral("Escriba el motivo de la descalificación."));
        motivo->setFocus();
        return;
    }
    const bool listed = shownBibs.contains(bib);
    if (!setStatus(bib, kind, reason))
        return;
    if (!listed)
        say(estado->text() + QStringLiteral(" Aviso: el dorsal %1 no estaba en la lista (ni "
                                            "inscrito ni llegado).")
                                 .arg(bib));
    dorsal->clear();
    motivo->clear();
    dorsal->setFocus();
}

bool StatusWindow::setStatus(int bib, Kind kind, const QString& reason)
{
    std::optional<runnerstatus::Mark> mark;
    if (kind != Kind::Classified)
        mark = runnerstatus::Mark{kind, kind == Kind::Disqualified ? reason : QString()};
    if (!session.setMark(bib, mark)) {
        say(QStringLiteral("El dorsal %1 ya estaba así: %2.").arg(bib).arg(statusOf(bib)));
        return false;
    }
    say(QStringLiteral("Dorsal %1: %2.").arg(bib).arg(statusOf(bib)));
    return true;
}

QString StatusWindow::statusOf(int bib) const
{
    const Race& race = session.race();
    return statusText(race.marks(), bib, finishRanks(race.list1()).contains(bib));
}

void StatusWindow::say(const QString& text)
{
    estado->setText(text);
}

// The window opens beside the main window, where it covers neither the clock nor the results:
// to its right, or left, or else below or above it, as the screen has room.
void StatusWindow::placeBesideTheWindow()
{
    look::placeBeside(ventana, window);
}
