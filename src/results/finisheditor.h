// Editing the results after the fact, beside the old window: bibs given afterwards in arrival
// order (Ctrl+D), a false finish removed, a missed one added, each of them undoable, and the bib
// checks drawn on the results list. The edits themselves are the race session's.
#pragma once

#include "entry/core/entrada.h"

#include <QObject>

class Dialogs;
class Notices;
class QAction;
class QComboBox;
class QDialog;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QWidget;
class RaceSession;
struct RaceChange;

class FinishEditor : public QObject
{
    Q_OBJECT

public:
    // Its entries go into `menu`; `list1` and `combo1` are the lists the lines are chosen in.
    FinishEditor(QWidget* window, QMenu* menu, QListWidget* list1, QComboBox* combo1,
                 RaceSession& session, Dialogs& dialogs, Notices& notices);

    // The bib checks drawn again after a change of the race, once the lists show it.
    void showChecks(const RaceChange& change);
    void showAllChecks();

signals:
    // The answer of the last box shown.
    void answered(int answer);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openAssignBibs();
    void assignBib();
    void showNextWithoutBib();
    void showRunner(const QString& typed);
    void placeBesideTheList();
    void removeFinish();
    void addFinish();
    void showCounts();
    void colour(int row);
    void placeStatus();

    QWidget* window;
    QListWidget* list1;
    QComboBox* combo1;
    RaceSession& session;
    Dialogs& dialogs;
    Notices& notices;
    QAction* deshacer;
    QDialog* asignarVentana;
    QLabel* asignarSiguiente;
    QLabel* asignarPendientes;
    QLineEdit* asignarDorsal;
    QLabel* asignarCorredor; // the runner of the bib being typed
    QLabel* estadoDorsales;
    EntradaState entradaState;
};
