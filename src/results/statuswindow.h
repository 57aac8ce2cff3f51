// "Situación de los corredores": the entrants and the bibs that finished, each with his status,
// set from the keyboard while the race is timed. The statuses are the race's marks, changed
// through the session (undoable, journaled); the window shows them as the race has them and
// keeps no copy of its own. It is a tool window: the clock and the finish keys go on.
#pragma once

#include "results/core/runnerstatus.h"

#include <QList>
#include <QObject>
#include <QTimer>

class Dialogs;
class QAction;
class QComboBox;
class QDialog;
class QLabel;
class QLineEdit;
class QTableWidget;
class QWidget;
class RaceSession;

class StatusWindow : public QObject
{
    Q_OBJECT

public:
    // `undo` is the program's "Deshacer": Ctrl+Z takes back the last change here too.
    StatusWindow(QWidget* window, RaceSession& session, Dialogs& dialogs, QAction* undo);

    void show();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void refresh();
    void filter();
    bool listKey(int key);
    // The bib of the row chosen in the list; 0 when none is.
    int chosenBib() const;
    void setChosen(runnerstatus::Kind kind);
    void disqualifyChosen();
    void applyByBib();
    // Classified stands for no mark: the status his finish gives the runner.
    bool setStatus(int bib, runnerstatus::Kind kind, const QString& reason);
    QString statusOf(int bib) const;
    void say(const QString& text);
    void placeBesideTheWindow();

    QWidget* window;
    RaceSession& session;
    Dialogs& dialogs;
    QAction* undo;
    QTimer laterRefresh;
    QDialog* ventana = nullptr;
    QLineEdit* filtro = nullptr;
    QTableWidget* lista = nullptr;
    QLabel* cuentas = nullptr;
    QLineEdit* dorsal = nullptr;
    QComboBox* situacion = nullptr;
    QLineEdit* motivo = nullptr;
    QLabel* estado = nullptr;
    QList<int> shownBibs; // the bib of each row of the list, in order
};
