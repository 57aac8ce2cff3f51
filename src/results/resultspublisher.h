// The entrants loaded from a spreadsheet and the results people read: the classification as a
// printable PDF, a web page and a spreadsheet, in the results folder. The entrants and the race
// name are kept beside the state file and go with the race when it is cleared.
#pragma once

#include "app/core/archive.h"

#include <QObject>

class Dialogs;
class Notices;
class QThread;
class QWidget;
class RaceSession;

class ResultsPublisher : public QObject
{
    Q_OBJECT

public:
    ResultsPublisher(QWidget* window, RaceSession& session, Dialogs& dialogs, Notices& notices);
    // Results still being written finish first: their files are never left half made.
    ~ResultsPublisher() override;

    // "Cargar inscritos (CSV)...".
    void loadEntrants();
    // The entrants and the name kept beside the state file, read at start-up.
    void reload();
    bool hasEntrants() const;
    // The race is cleared: its entrants and name go with it.
    void forget();
    // "Resultados...": asks the race name the first time, then writes the files away from the
    // window.
    void publish();
    // The results of a kept race, as they were published when it was the current one.
    void publishKept(const archive::Kept& kept);

private:
    QString besideState(const char* name) const;
    void write(const raceresults::Input& input);

    QWidget* window;
    RaceSession& session;
    Dialogs& dialogs;
    Notices& notices;
    QThread* resultsThread = nullptr; // drawing and writing the results files
};
