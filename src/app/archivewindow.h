// "Carreras anteriores": the list of every race kept, from which one can be exported or made
// the current race again, and several scored as a season.
#pragma once

#include "app/core/archive.h"

#include <QObject>

class Dialogs;
class QDialog;
class QTableWidget;
class QWidget;
class RaceSession;
class SeasonWindow;

class ArchiveWindow : public QObject
{
    Q_OBJECT

public:
    ArchiveWindow(QWidget* window, RaceSession& session, Dialogs& dialogs);

    void show();

signals:
    // The operator chose to make `race` the current race; it is already the state file.
    void recovered(const archive::Kept& race);
    // The operator asked for the results of a kept race.
    void resultsWanted(const archive::Kept& race);
    // The answer of the last box shown.
    void answered(int answer);

private:
    void build();
    const archive::Kept* chosen();
    void exportChosen();
    void recoverChosen();
    void openSeason();

    QWidget* window;
    RaceSession& session;
    Dialogs& dialogs;
    QDialog* carrerasVentana = nullptr;
    QTableWidget* carrerasLista = nullptr;
    QList<archive::Kept> carrerasGuardadas;
    SeasonWindow* temporadaVentana = nullptr;
};
