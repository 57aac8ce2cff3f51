// The stopwatch window. It holds the whole race for the life of the process: a handful of
// window-level values and, above all, the lines of List1, Combo1 and List2, which are the race
// record itself. Every operation is the handler of one event of one control; the handlers of
// each subsystem are defined beside that subsystem's logic:
//   src/app      start-up, restore, the state file, clearing, the compact window
//   src/chrono   run control, the clock tick, the time-format and capture-mode options
//   src/results  recording a finish, the list handlers
//   src/entry    the bib fields
//   src/files    results files, start-order import, the readings database link
#pragma once

#include "app/core/archive.h"
#include "app/core/journal.h"
#include "app/core/race.h"
#include "app/core/racestate.h"
#include "app/core/statefile.h"
#include "app/dialogs.h"
#include "chrono/core/startat.h"
#include "entry/core/entrada.h"
#include "results/core/entrants.h"
#include "results/core/finishedit.h"

#include <QMainWindow>
#include <QString>
#include <QTime>
#include <QUndoStack>

#include <memory>
#include <optional>

class Clock;
class Sound;
class QAction;
class QComboBox;
class QDialog;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QProgressBar;
class QPushButton;
class QTimer;
class AdoDataControl;
namespace readings
{
class ReadingsLink;
}

class FormMarvolendo : public QMainWindow
{
    Q_OBJECT

public:
    // The window runs Form_Load as it is built. The clock, the dialogs and the sound (none: no
    // beeps) outlive it.
    FormMarvolendo(Clock& clock, Dialogs& dialogs, Sound* sound = nullptr,
                   QWidget* parent = nullptr);
    ~FormMarvolendo() override;

    // The clock tick and the time of day, also run by hand where no event loop turns.
    void Timer1_Timer();
    void Timer2_Timer();
    // Opens the link to the readings database afresh; returns why it failed, empty when open.
    // The unopened link is kept when it fails.
    QString conectarLecturas();

    // A short notice in the window for a failure the operator must know of while timing: it
    // takes no focus and needs no click.
    void avisar(const QString& text);
    // The same notice, kept until the window takes it back.
    void avisoFijo(const QString& text);

signals:
    // Emitted when the program is to end (Command5); main() quits the application on it.
    void terminar();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // --- procedures ---
    void marcar();
    void recuperar();
    bool guardarEstado();
    void carregar(const QString& cami);
    void controles();
    void tempsMarvo(double tempsInicial, QString& temps);

    // --- handlers ---
    void Form_Load();
    void Form_KeyDown(int keyCode, Qt::KeyboardModifiers shift);
    void Command1_Click(int index);
    void Command2_Click(int index);
    void Command3_Click();
    void Command4_Click();
    void Command5_Click();
    void Command6_Click();
    void Command7_Click();
    void Command8_Click();
    void op2_Click(int index);
    void opp2_Click();
    void opp22_Click();
    void opp4_Click();
    void List1_Click();
    void List1_DblClick();
    void List2_Click();
    void Text1_GotFocus();
    void Text1_KeyPress(int& keyAscii);
    void Text1_DblClick();
    void Text1_LostFocus();
    void Text2_GotFocus();
    void Text2_KeyPress(int& keyAscii);
    void Text2_DblClick();
    void Text2_LostFocus();

    // Window-level values of the race.
    double inicio = 0;
    double desfase = 0;
    QString horaSalida;
    QString intervalo;
    QString tempsActual;
    QString tempsPrimer;
    QString tempsText;
    Variant formato = 2.0;
    Variant modoCaptura;
    QString carpeta;
    int respuesta = 0;
    qint16 errores = 0;
    // The field that has the focus, as the keystroke filter sees it.
    double tipoCampo = 0;
    double minCampo = 0;
    double maxCampo = 0;
    int enterCampo = 0;
    EntradaState entradaState;

    // The lists read from the state file at start-up, put back by the first recuperar.
    std::optional<statefile::Restored> restored;

    // The race record: List1, Combo1 and List2 show its lines (results/lists.cpp). Changes the
    // operator can take back go through the undo stack.
    Race race;
    QUndoStack undoStack;
    void showChange(const RaceChange& change);
    void showRestored();

    // Controls, named as the operator's manual and the handlers know them.
    QPushButton* Command1[2] = {};
    QPushButton* Command2[2] = {};
    QPushButton* Command3 = nullptr;
    QPushButton* Command4 = nullptr;
    QPushButton* Command5 = nullptr;
    QPushButton* Command6 = nullptr;
    QPushButton* Command7 = nullptr;
    QPushButton* Command8 = nullptr;
    QLineEdit* Text1 = nullptr;
    QLineEdit* Text2 = nullptr;
    QListWidget* List1 = nullptr;
    QListWidget* List2 = nullptr;
    QComboBox* Combo1 = nullptr;
    QLabel* Label1 = nullptr;
    QLabel* Label2 = nullptr;
    QLabel* Label3 = nullptr;
    QLabel* Label4 = nullptr;
    QLabel* Label5 = nullptr;
    QLabel* Label6 = nullptr;
    QLabel* Label7 = nullptr;
    QLabel* Label8 = nullptr;
    QLabel* Label9 = nullptr;
    QLabel* Label10 = nullptr;
    QLabel* Label11 = nullptr;
    QLabel* Label12 = nullptr;
    QLabel* Label13 = nullptr;
    QLabel* Label14 = nullptr;
    QLabel* Label15 = nullptr;
    QLabel* Label16 = nullptr;
    QLabel* Label17 = nullptr;
    QLabel* Label18 = nullptr;
    QGroupBox* Frame1 = nullptr;
    QGroupBox* Frame2 = nullptr;
    QGroupBox* Frame3 = nullptr;
    QProgressBar* ProgressBar1 = nullptr;
    QTimer* Timer1 = nullptr;
    QTimer* Timer2 = nullptr;
    QLabel* Image1 = nullptr;
    AdoDataControl* Adodc1 = nullptr;
    FileRequest CommonDialog1;
    QLabel* aviso = nullptr;
    QLabel* avisoDiario = nullptr; // stays while the journal cannot be written
    QTimer* avisoTimer = nullptr;
    QTimer* guardadoTimer = nullptr;

    QMenu* op1 = nullptr;
    QAction* op2[3] = {};
    QAction* opp = nullptr;
    QAction* opp2 = nullptr;
    QAction* opp22 = nullptr;
    QAction* opp3 = nullptr;
    QAction* opp4 = nullptr;
    QAction* hhora = nullptr;

    std::unique_ptr<readings::ReadingsLink> conexion;

    // The menu "Carrera" and the option "Pitidos de salida".
    QMenu* carrera = nullptr;
    QAction* salidaHora = nullptr;
    QAction* pitidos = nullptr;
    void buildRaceMenu();

    // Every race kept (archiving.cpp).
    QDialog* carrerasVentana = nullptr;
    class QTableWidget* carrerasLista = nullptr;
    QList<archive::Kept> carrerasGuardadas;
    QString archiveFolder() const;
    void keepRace(const RaceState& raceToKeep);
    void keepCurrentRace();
    void showPastRaces();
    const archive::Kept* chosenPastRace();
    void exportPastRace();
    void recoverPastRace();
    void aboutMarvolendo();
    // Where the last save of the race went: the state file beside the program's folder, or
    // the fallback.
    QString stateFileInUse;

    // The running time comes from the monotonic clock, anchored to the wall clock when the
    // race starts or resumes (startclock.cpp).
    double anchorElapsed = 0; // seconds run at the anchor
    double anchorMono = 0;    // the monotonic clock at the anchor
    QString primerRead;       // tempsPrimer as the tick last read it, and its hours
    double primerHours = 0;
    void anchorRun();
    void startRun(double startTimer, const QTime& startTime);
    // A start armed for a time of day: the monotonic moment it starts, and that time.
    std::optional<double> armedMono;
    QTime armedTime;
    QTimer* armTimer = nullptr;
    void startAtTimeOfDay();
    void armedTick();
    void cancelArmedStart();
    // The beeps of the last seconds before the selected start.
    Sound* sound = nullptr;
    CountdownBeeps beeps;
    int beepsRow = -1;
    bool soundMissingShown = false;
    QTimer* beepTimer = nullptr;
    void countdownBeeps(std::optional<double> remainingSeconds);

    // Editing the results after the fact (results/finishedit.cpp): bibs given in arrival
    // order, a false finish removed, a missed one added, each undoable; the bib checks.
    QAction* asignar = nullptr;
    QAction* borrar = nullptr;
    QAction* anadir = nullptr;
    QAction* deshacer = nullptr;
    QDialog* asignarVentana = nullptr;
    QLabel* asignarSiguiente = nullptr;
    QLabel* asignarPendientes = nullptr;
    QLineEdit* asignarDorsal = nullptr;
    QLabel* estadoDorsales = nullptr;
    finishedit::BibChecks bibChecks;
    void buildEditing();
    void openAssignBibs();
    void assignBib();
    void showNextWithoutBib();
    int nextWithoutBib() const;
    void removeFinish();
    void addFinish();
    void pushEdit(const RaceChange& redo, const RaceChange& undo, const QString& text,
                  bool firstMayChange);
    void settleEdit(bool firstMayChange);
    void relabel(bool firstMayChange);
    RaceChange withCaptions(RaceChange change) const;
    void checkBibs(const RaceChange& change);
    void recheckAllBibs();
    void showBibCounts();
    void colourBibLine(int row);
    void placeBibStatus();

    // The entrants and the results people read (results/publishing.cpp). The entrants and the
    // race name are kept beside the state file and go with the race when it is cleared.
    QList<entrants::Entrant> inscritos;
    QString nombreCarrera;
    QString besideState(const char* name) const;
    void loadEntrants();
    void reloadEntrants();
    bool hasEntrants() const;
    void forgetEntrants();
    void publishResults();
    class QThread* resultsThread = nullptr; // drawing and writing the results files

    // The finish journal (journalling.cpp): each change of the race record is written as it
    // is made; a change of the window-level values writes a whole snapshot.
    Journal journal;
    std::optional<RaceRecord> recoveredLabels;
    void offerRecovery();
    void startJournal();
    void journalChange(const RaceChange& change);
    void appendToJournal(const QByteArray& entry);
    void repairJournal();
    QString fallbackJournalPath() const;
    bool journalBroken = false;
    QTimer* journalRetry = nullptr;
    void journalSnapshot();
    RaceRecord currentRecord() const;
    Clock& clock;
    Dialogs& dialogs;

    // Building the window (formlayout.cpp).
    void buildControls();
    void buildMenus();
    void connectHandlers();

    // Helpers shared by the handlers.
    void guardarSalidas();
    std::unique_ptr<class LatestWriter> startTimesWriter;
    void startTimesWritten(const QString& message);
    void recordFinish(); // a fresh tick, then the Lap: a finish is stamped when it arrives
    void rewriteCorrectedLine();
    void bibFieldGotFocus(QLineEdit* field);
    void bibFieldKeyPress(QLineEdit* field, int& keyAscii);
    void runningColours();
    int checkedFormat() const;
    QList<QWidget*> bibsOnlyHidden() const; // index of the first checked op2 entry, -1 when none
    RaceState currentState() const;
    void placeClock(bool wholeSeconds); // the clock's width for the format, and its stacking
    void setFormTwips(int widthTwips, int heightTwips);
    void setFormWidthTwips(int widthTwips);
    void setFormHeightTwips(int heightTwips);
    void placeSheet(bool bibsOnly);
};
