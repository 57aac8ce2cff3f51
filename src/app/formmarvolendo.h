// The stopwatch window. It shows the race of a race session and takes the operator's clicks and
// keys: every operation is the handler of one event of one control. The handlers of each
// subsystem are defined beside that subsystem's logic:
//   src/app      start-up, restore, the state file, clearing, the compact window
//   src/chrono   run control, the clock tick, the time-format and capture-mode options
//   src/results  recording a finish, the list handlers
//   src/entry    the bib fields
//   src/files    results files, start-order import, the readings database link
// What the program adds to the old window is each a class of its own, given the window's
// controls and the session: the notices, the armed start, the finish editor, the results
// publisher, the runners' status window and the archive window.
#pragma once

#include "app/core/racesession.h"
#include "app/dialogs.h"
#include "entry/core/entrada.h"

#include <QMainWindow>
#include <QString>
#include <QTime>

#include <memory>
#include <optional>

class ArchiveWindow;
class ArmedStart;
class Clock;
class FinishEditor;
class Notices;
class ResultsPublisher;
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

    // The folder of MARVO.dat: the current folder.
    QString carpeta;
    // The race: every value of it lives in the session's model, which the controls show.
    RaceSession session;
    Race& race;
    void showChange(const RaceChange& change);
    void showRestored();
    void showCaptions();

    // Values of the window alone.
    QString intervalo;
    int respuesta = 0;
    qint16 errores = 0;
    bool clearRefused = false; // the last clear found no room to keep the race first
    // The field that has the focus, as the keystroke filter sees it.
    double tipoCampo = 0;
    double minCampo = 0;
    double maxCampo = 0;
    int enterCampo = 0;
    EntradaState entradaState;

    // The lists read from the state file at start-up, put back by the first recuperar.
    std::optional<statefile::Restored> restored;

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

    // The menu "Carrera" and the option "Pitidos de salida", and what the program adds.
    QMenu* carrera = nullptr;
    QAction* salidaHora = nullptr;
    QAction* pitidos = nullptr;
    void buildRaceMenu();
    Notices* notices = nullptr;
    ArmedStart* armedStart = nullptr;
    FinishEditor* finishEditor = nullptr;
    ResultsPublisher* publisher = nullptr;
    ArchiveWindow* archiveWindow = nullptr;
    void startRun(double startTimer, const QTime& startTime);
    Clock& clock;
    Dialogs& dialogs;
    Sound* sound = nullptr;

    // Building the window (formlayout.cpp).
    void buildControls();
    void buildMenus();
    void connectHandlers();

    // Helpers shared by the handlers.
    void guardarSalidas();
    std::unique_ptr<class LatestWriter> startTimesWriter;
    void rewriteCorrectedLine();
    QString lineToCorrect; // the List1 line Label14 shows
    void bibFieldGotFocus(QLineEdit* field);
    void bibFieldKeyPress(QLineEdit* field, int& keyAscii);
    void runningColours();
    int checkedFormat() const; // index of the first checked op2 entry, -1 when none
    QList<QWidget*> bibsOnlyHidden() const;
    void placeClock(bool wholeSeconds); // the clock's width for the format, and its stacking
    // The window's size in twips; a negative value keeps that side as it is.
    void setFormTwips(int widthTwips, int heightTwips);
    void placeSheet(bool bibsOnly);
};
