// Building the window: every control with its name, caption, font, colour and place.
#include "app/archivewindow.h"
#include "app/artwork.h"
#include "app/core/statefile.h"
#include "app/finishkeys.h"
#include "app/formmarvolendo.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/notices.h"
#include "app/texts.h"
#include "app/version.h"
#include "base/programsettings.h"
#include "chrono/armedstart.h"
#include "files/adodatacontrol.h"
#include "files/core/latestwriter.h"
#include "results/categorieswindow.h"
#include "results/finisheditor.h"
#include "results/linedelegate.h"
#include "results/resultsoptionswindow.h"
#include "results/resultspublisher.h"
#include "results/statuswindow.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace
{

QFont sansFont(qreal points, bool bold = false)
{
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

// The font of a caption of digits that changes with the clock: digits need no shaping, which
// is most of the cost of drawing them again and again.
QFont digitsFont(qreal points, bool bold = false)
{
    QFont font = sansFont(points, bold);
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

template <typename W> W* make(QWidget* parent, const QString& name)
{
    auto* w = new W(parent);
    w->setObjectName(name);
    return w;
}

QLabel* label(QWidget* parent, const QString& name, const QString& caption, const QFont& font,
              Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter)
{
    auto* l = make<QLabel>(parent, name);
    l->setText(caption);
    l->setFont(font);
    l->setAlignment(align);
    return l;
}

QPushButton* pictureButton(QWidget* parent, const QString& name, const QIcon& icon,
                           const QString& tip)
{
    auto* b = make<QPushButton>(parent, name);
    b->setIcon(icon);
    b->setIconSize(QSize(22, 22));
    b->setToolTip(tip);
    b->setFocusPolicy(Qt::TabFocus);
    return b;
}

// A check entry of a menu kept from one start to the next in the program's settings.
QAction* settingOption(QMenu* menu, const QString& text, const QString& name, const QString& key,
                       bool byDefault)
{
    QAction* option = menu->addAction(text);
    option->setObjectName(name);
    option->setCheckable(true);
    option->setChecked(ProgramSettings().value(key, byDefault).toBool());
    QObject::connect(option, &QAction::toggled, option,
                     [key](bool on) { ProgramSettings().setValue(key, on); });
    return option;
}

} // namespace

void FormMarvolendo::buildControls()
{
    auto* area = new QWidget(this);
    area->setObjectName(QStringLiteral("area"));
    setCentralWidget(area);

    const QFont clockFont = digitsFont(26, true);
    const QFont titleFont = sansFont(7.5);
    const QFont timeFont = digitsFont(11, true);

    // Frame2 stands behind the clock and its buttons; Frame1 groups the results.
    Frame2 = make<QGroupBox>(area, QStringLiteral("Frame2"));
    look::place(Frame2, 60, 0, 4335, 1650);
    Frame2->setFlat(true);
    Frame2->setStyleSheet(QStringLiteral("QGroupBox#Frame2 { border: none; }"));

    // Top row: run control and the picture buttons.
    Command1[0] = make<QPushButton>(area, QStringLiteral("Command1(0)"));
    Command1[0]->setText(QStringLiteral("Start"));
    Command1[1] = make<QPushButton>(area, QStringLiteral("Command1(1)"));
    Command1[1]->setText(QStringLiteral("Stop"));
    for (QPushButton* b : Command1) {
        b->setFont(sansFont(10, true));
        look::place(b, 120, 0, 1095, 405);
    }
    Command1[1]->setVisible(false);
    Command2[0] = make<QPushButton>(area, QStringLiteral("Command2(0)"));
    Command2[0]->setText(QStringLiteral("+"));
    Command2[1] = make<QPushButton>(area, QStringLiteral("Command2(1)"));
    Command2[1]->setText(QStringLiteral("-"));
    for (int i = 0; i < 2; ++i) {
        Command2[i]->setFont(sansFont(11, true));
        look::place(Command2[i], 1260 + i * 450, 0, 420, 405);
    }
    Command2[0]->setToolTip(QStringLiteral("Adelantar el reloj un minuto"));
    Command2[1]->setToolTip(QStringLiteral("Retrasar el reloj un minuto"));
    Command4 = pictureButton(area, QStringLiteral("Command4"), artwork::clearIcon(),
                             QStringLiteral("Borrar todos los tiempos"));
    look::place(Command4, 2220, 0, 480, 405);
    // The countdown has no caption until the first finish or the first second counted.
    Label18 =
        label(area, QStringLiteral("Label18"), QString(), digitsFont(12, true), Qt::AlignCenter);
    look::place(Label18, 2760, 0, 555, 405);
    Label18->setToolTip(QStringLiteral("Cuenta atrás hasta la salida seleccionada"));
    Command6 =
        pictureButton(area, QStringLiteral("Command6"), artwork::exportIcon(), texts::tipOneFile);
    Command5 = pictureButton(area, QStringLiteral("Command5"), artwork::saveAndEndIcon(),
                             QStringLiteral("Guardar y salir"));

    // The clock: hh:mm:ss, the fraction beside it, the thousandths and the seconds bar.
    Label1 = label(area, QStringLiteral("Label1"), QStringLiteral("00:00:00"), clockFont,
                   Qt::AlignCenter);
    look::place(Label1, 120, 420, 3015, 510);
    Label6 = label(area, QStringLiteral("Label6"), QStringLiteral("000"), digitsFont(20, true),
                   Qt::AlignLeft | Qt::AlignVCenter);
    look::place(Label6, 3120, 420, 1215, 510);
    // The fraction label lies above the clock's last pixel column, so that its ticks do not
    // repaint the clock as well; in "Segundos" the widened clock goes on top (options.cpp).
    Label6->raise();
    ProgressBar1 = make<QProgressBar>(area, QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, 59);
    ProgressBar1->setValue(0);
    ProgressBar1->setTextVisible(false);
    look::place(ProgressBar1, 120, 960, 3615, 75);
    Label3 = label(area, QStringLiteral("Label3"), QStringLiteral("000"), digitsFont(7),
                   Qt::AlignRight | Qt::AlignVCenter);
    look::place(Label3, 3765, 930, 570, 150);
    look::setFore(Label3, look::grey);
    // Opaque, in the window's own colour: its thousandths repaint it alone, not the frame
    // behind the clock.
    Label3->setAutoFillBackground(true);

    // The recording row: "Lap" (or the bib field in its place) and the rank counter.
    Command3 = make<QPushButton>(area, QStringLiteral("Command3"));
    Command3->setText(QStringLiteral("Lap"));
    Command3->setFont(sansFont(14, true));
    look::place(Command3, 120, 1080, 3135, 570);
    Command3->setEnabled(false);
    Text1 = make<QLineEdit>(area, QStringLiteral("Text1"));
    Text1->setMaxLength(4);
    Text1->setFont(sansFont(18));
    Text1->setAlignment(Qt::AlignCenter);
    Text1->setToolTip(QStringLiteral("Dorsal del corredor que llega; Intro toma el tiempo"));
    Text1->setVisible(false);
    Text1->setEnabled(false);
    Label2 = label(area, QStringLiteral("Label2"), QStringLiteral("0"), digitsFont(16, true),
                   Qt::AlignCenter);
    Label2->setAutoFillBackground(true);
    Label2->setToolTip(QStringLiteral("Llegados"));
    look::place(Label2, 3360, 1080, 975, 570);

    // The results area.
    Frame1 = make<QGroupBox>(area, QStringLiteral("Frame1"));
    Frame1->setTitle(QStringLiteral("Tiempos Parciales"));
    Label9 =
        label(Frame1, QStringLiteral("Label9"), QStringLiteral("Tiempo del Primero"), titleFont);
    look::place(Label9, 60, 255, 2010, 165);
    Label10 = label(Frame1, QStringLiteral("Label10"), QStringLiteral("Diferencia con el Primero"),
                    titleFont);
    look::place(Label10, 2145, 255, 2010, 165);
    Label4 = label(Frame1, QStringLiteral("Label4"), QStringLiteral("00:00:00:000"), timeFont,
                   Qt::AlignCenter);
    look::place(Label4, 60, 420, 2010, 285);
    Label7 = label(Frame1, QStringLiteral("Label7"), QStringLiteral("0:00:00:000"), timeFont,
                   Qt::AlignCenter);
    look::place(Label7, 2145, 420, 2010, 285);
    Label12 =
        label(Frame1, QStringLiteral("Label12"), QStringLiteral("Ultimo en llegar"), titleFont);
    look::place(Label12, 60, 735, 2010, 165);
    Label11 = label(Frame1, QStringLiteral("Label11"), QStringLiteral("Diferencia con el Primero"),
                    titleFont);
    look::place(Label11, 2145, 735, 2010, 165);
    Label5 = label(Frame1, QStringLiteral("Label5"), QStringLiteral("00:00:00:000"), timeFont,
                   Qt::AlignCenter);
    look::place(Label5, 60, 900, 2010, 285);
    Label8 = label(Frame1, QStringLiteral("Label8"), QStringLiteral("0:00:00:000"), timeFont,
                   Qt::AlignCenter);
    look::place(Label8, 2145, 900, 2010, 285);
    // The times change with every finish (Label7 with every tick in the Lap mode): opaque, they
    // repaint alone, not the frame around them.
    for (QLabel* l : {Label4, Label5, Label7, Label8})
        l->setAutoFillBackground(true);
    Label13 = label(Frame1, QStringLiteral("Label13"), QStringLiteral("Tiempos"), titleFont);
    look::place(Label13, 60, 1215, 2010, 165);
    Combo1 = make<QComboBox>(Frame1, QStringLiteral("Combo1"));
    Combo1->setFont(look::fixedFont(10));
    Combo1->setFocusPolicy(Qt::ClickFocus);
    look::place(Combo1, 15, 1395, 4185, 345);
    for (QLabel* l : {Label4, Label7, Label5, Label8})
        look::setColours(l, look::lightGrey, Qt::black);
    for (QLabel* l : {Label4, Label7, Label5, Label8})
        l->setEnabled(false);
    // In the bibs-only layout the bib field lies within the frame's rectangle: it stays on top.
    Text1->raise();

    // The results list with its header, the line under correction and the correction field.
    Label16 = label(area, QStringLiteral("Label16"),
                    QStringLiteral(" Ord. Dor.  Tiempo      Diferen."), look::fixedFont(9));
    look::place(Label16, 4500, 0, 4275, 240);
    List1 = make<QListWidget>(area, QStringLiteral("List1"));
    List1->setFont(look::fixedFont(9));
    List1->setUniformItemSizes(true);
    List1->setItemDelegate(new LineDelegate(List1));
    Label14 = label(area, QStringLiteral("Label14"), QString(), look::fixedFont(9));
    look::place(Label14, 4440, 3690, 4335, 240);
    Label15 = label(area, QStringLiteral("Label15"),
                    QStringLiteral("Pulsar 'doble click' sobre la lista para cambiar el dorsal"),
                    titleFont);
    Label15->setWordWrap(true);
    Label15->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    Text2 = make<QLineEdit>(area, QStringLiteral("Text2"));
    Text2->setFont(sansFont(13.5));
    Text2->setAlignment(Qt::AlignCenter);
    Text2->setEnabled(false);
    Text2->setToolTip(QStringLiteral("Dorsal corregido; Intro lo escribe en la línea"));
    // As drawn, the window is the wide one with the results list; the copy of the line under
    // correction is never shown.
    Label14->setVisible(false);

    // The start order and the picture of the bibs-and-times mode.
    Command7 = make<QPushButton>(area, QStringLiteral("Command7"));
    Command7->setText(QStringLiteral("Cargar orden de salida"));
    look::place(Command7, 8880, 0, 3900, 405);
    Command8 = pictureButton(area, QStringLiteral("Command8"), artwork::emptyListIcon(),
                             QStringLiteral("Vaciar el orden de salida"));
    look::place(Command8, 12840, 0, 480, 405);
    List2 = make<QListWidget>(area, QStringLiteral("List2"));
    List2->setFont(look::fixedFont(9));
    List2->setUniformItemSizes(true);
    look::place(List2, 8880, 465, 4440, 1890);
    Image1 = make<QLabel>(area, QStringLiteral("Image1"));
    Image1->setPixmap(artwork::finishLine());
    Image1->setScaledContents(true);
    look::place(Image1, 9555, 2445, 3075, 1845);
    Image1->setVisible(false);

    // The "GUARDADO" notice of the results files.
    Frame3 = make<QGroupBox>(area, QStringLiteral("Frame3"));
    look::place(Frame3, 1200, 1080, 2115, 570);
    Label17 = label(Frame3, QStringLiteral("Label17"), QStringLiteral("GUARDADO"),
                    sansFont(14, true), Qt::AlignCenter);
    look::place(Label17, 30, 30, 2055, 510);
    look::setColours(Frame3, look::darkRed, Qt::white);
    Frame3->setAutoFillBackground(true);
    look::setColours(Label17, look::darkRed, Qt::white);
    Frame3->setVisible(false);

    // The notices of a failure, under the row of "Lap": no focus, no click.
    notices = new Notices(area, Command3);
    guardadoTimer = new QTimer(this);
    guardadoTimer->setSingleShot(true);
    guardadoTimer->setInterval(1000);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer2 = new QTimer(this);
    Timer2->setObjectName(QStringLiteral("Timer2"));
    Adodc1 = new AdoDataControl(this);
    Adodc1->setObjectName(QStringLiteral("Adodc1"));

    placeSheet(false);
}

void FormMarvolendo::placeSheet(bool bibsOnly)
{
    const auto px = [](int twips, int current) { return twips < 0 ? current : look::px(twips); };
    for (const layouts::Moved& m : layouts::sheetControls) {
        const layouts::Rect& r = bibsOnly ? m.bibsOnly : m.normal;
        auto* w = findChild<QWidget*>(QLatin1String(m.control));
        const QRect now = w->geometry();
        look::setBox(w, QRect(px(r.left, now.x()), px(r.top, now.y()), px(r.width, now.width()),
                              px(r.height, now.height())));
    }
}

void FormMarvolendo::buildMenus()
{
    // Alt+O and Alt+C open the menus; the ampersand only underlines the letter.
    op1 = menuBar()->addMenu(QStringLiteral("&Opciones"));
    op1->setObjectName(QStringLiteral("op1"));
    const QString formats[3] = {QStringLiteral("Segundos"), QStringLiteral("Centesimas"),
                                QStringLiteral("Milesimas")};
    for (int i = 0; i < 3; ++i) {
        op2[i] = op1->addAction(formats[i]);
        op2[i]->setObjectName(QStringLiteral("op2(%1)").arg(i));
        op2[i]->setCheckable(true);
    }
    op2[2]->setChecked(true);
    opp = op1->addSeparator();
    opp->setObjectName(QStringLiteral("opp"));
    opp2 = op1->addAction(QStringLiteral("Activar captura de dorsales y tiempos"));
    opp2->setObjectName(QStringLiteral("opp2"));
    opp2->setCheckable(true);
    opp22 = op1->addAction(QStringLiteral("Activar solo captura de dorsales"));
    opp22->setObjectName(QStringLiteral("opp22"));
    opp22->setCheckable(true);
    opp3 = op1->addSeparator();
    opp3->setObjectName(QStringLiteral("opp3"));
    opp4 = op1->addAction(QStringLiteral("Minimizar"));
    opp4->setObjectName(QStringLiteral("opp4"));
    opp4->setCheckable(true);
    hhora = menuBar()->addAction(QStringLiteral("hora"));
    hhora->setObjectName(QStringLiteral("hhora"));
}

// What the program adds to the old window: the menu "Carrera" after "Opciones", and the
// options at the end of "Opciones".
void FormMarvolendo::buildRaceMenu()
{
    op1->addSeparator();
    pitidos = settingOption(op1, QStringLiteral("Pitidos de salida"), QStringLiteral("pitidos"),
                            QStringLiteral("pitidosSalida"), true);
    // The countdown may go on to the next rider by itself, for a time trial at one keyboard.
    QAction* seguirOrden =
        settingOption(op1, QStringLiteral("La cuenta atrás sigue el orden de salida"),
                      QStringLiteral("seguirOrden"), QStringLiteral("seguirOrdenSalida"), false);
    op1->addSeparator();
    QAction* categoriasEdad = op1->addAction(QStringLiteral("Categorías por edad..."));
    categoriasEdad->setObjectName(QStringLiteral("categoriasEdad"));
    connect(categoriasEdad, &QAction::triggered, this, [this] {
        auto* window = findChild<CategoriesWindow*>(QString(), Qt::FindDirectChildrenOnly);
        if (!window)
            window = new CategoriesWindow(this, dialogs);
        window->edit();
    });
    QAction* opcionesResultados =
        op1->addAction(QStringLiteral("Resultados: precisión, premios y equipos..."));
    opcionesResultados->setObjectName(QStringLiteral("resultadosOpciones"));
    connect(opcionesResultados, &QAction::triggered, this, [this] {
        auto* window = findChild<ResultsOptionsWindow*>(QString(), Qt::FindDirectChildrenOnly);
        if (!window)
            window = new ResultsOptionsWindow(this);
        window->edit();
    });

    carrera = new QMenu(QStringLiteral("&Carrera"), this);
    carrera->setObjectName(QStringLiteral("carrera"));
    menuBar()->insertMenu(hhora, carrera);
    salidaHora = carrera->addAction(QStringLiteral("Salida a una hora..."));
    salidaHora->setObjectName(QStringLiteral("salidaHora"));
    armedStart = new ArmedStart(this,
                                {Label1, Label6, Command1[0], Command1[1], Command2[0], Command2[1],
                                 Command4, List2, pitidos, seguirOrden, Timer1},
                                session, clock, dialogs, sound, *notices,
                                [this] { return checkedFormat(); });
    connect(salidaHora, &QAction::triggered, armedStart, &ArmedStart::startAtTimeOfDay);
    connect(armedStart, &ArmedStart::startNow, this, &FormMarvolendo::startRun);
    connect(armedStart, &ArmedStart::beepDue, this, &FormMarvolendo::Timer1_Timer);
    carrera->addSeparator();
    finishEditor = new FinishEditor(this, carrera, List1, Combo1, session, dialogs, *notices);
    connect(finishEditor, &FinishEditor::answered, this,
            [this](int answer) { respuesta = answer; });
    carrera->addSeparator();
    publisher = new ResultsPublisher(this, session, dialogs, *notices);
    QAction* inscritosCsv = carrera->addAction(QStringLiteral("Cargar inscritos (CSV)..."));
    inscritosCsv->setObjectName(QStringLiteral("inscritos"));
    connect(inscritosCsv, &QAction::triggered, publisher, &ResultsPublisher::loadEntrants);
    QAction* resultados = carrera->addAction(QStringLiteral("Resultados..."));
    resultados->setObjectName(QStringLiteral("resultados"));
    connect(resultados, &QAction::triggered, publisher, &ResultsPublisher::publish);
    auto* statusWindow = new StatusWindow(this, session, dialogs,
                                          carrera->findChild<QAction*>(QStringLiteral("deshacer")));
    QAction* situaciones = carrera->addAction(QStringLiteral("Situación de los corredores..."));
    situaciones->setObjectName(QStringLiteral("situaciones"));
    connect(situaciones, &QAction::triggered, statusWindow, &StatusWindow::show);
    carrera->addSeparator();
    archiveWindow = new ArchiveWindow(this, session, dialogs);
    QAction* anteriores = carrera->addAction(QStringLiteral("Carreras anteriores..."));
    anteriores->setObjectName(QStringLiteral("anteriores"));
    connect(anteriores, &QAction::triggered, archiveWindow, &ArchiveWindow::show);
    connect(archiveWindow, &ArchiveWindow::resultsWanted, publisher,
            &ResultsPublisher::publishKept);
    connect(archiveWindow, &ArchiveWindow::answered, this,
            [this](int answer) { respuesta = answer; });
    connect(archiveWindow, &ArchiveWindow::recovered, this, [this](const archive::Kept& kept) {
        const RaceState& chosen = kept.race;
        // The window reads the kept race as at start-up; the journal takes the race after.
        const Race::Replacement replacement(race);
        race.setInicio(0);
        race.setDesfase(chosen.desfase);
        race.setHoraSalida(chosen.horaSalida);
        race.setTempsPrimer(chosen.tempsPrimer);
        race.setFormato(chosen.formato);
        race.setModoCaptura(chosen.modoCaptura);
        race.apply(RaceChange::of(RaceChange::Kind::StartOrderEmptied));
        restored = statefile::Restored{chosen, 8, true};
        recuperar();
        race.apply(raceedits::relabelled(race.record(), session.editContext()));
        // Its name, entrants and statuses come back with it.
        session.adopt(kept.details);
        publisher->reload();
    });
    carrera->addSeparator();
    QAction* acerca = carrera->addAction(QStringLiteral("Acerca de Marvolendo"));
    acerca->setObjectName(QStringLiteral("acerca"));
    connect(acerca, &QAction::triggered, this, [this] {
        const QString state = QFileInfo(session.stateFile()).absoluteFilePath();
        dialogs.inform(this, QStringLiteral("Acerca de Marvolendo"),
                       QStringLiteral("Marvolendo %1\nCronómetro de llegada para carreras.\n\n"
                                      "Carpeta de la carrera: %2\nFichero de estado: %3")
                           .arg(QLatin1String(version::text),
                                QDir::toNativeSeparators(QFileInfo(state).absolutePath()),
                                QDir::toNativeSeparators(state)));
    });
    // Like "+" and "-": only with the clock stopped at zero, or to take an armed start back.
    connect(carrera, &QMenu::aboutToShow, this, [this] {
        salidaHora->setEnabled(
            armedStart->armed() ||
            (!race.running() && session.clockCaption() == texts::zeroClock && !opp22->isChecked()));
    });
}

void FormMarvolendo::connectHandlers()
{
    // The controls show the race; the session has journaled each change before they hear of it.
    connect(&race, &Race::changed, this, &FormMarvolendo::showChange);
    connect(&race, &Race::restored, this, &FormMarvolendo::showRestored);
    connect(&race, &Race::entrantsChanged, finishEditor, &FinishEditor::showAllChecks);
    connect(&session, &RaceSession::differenceChanged, Label7, &QLabel::setText);
    connect(&session, &RaceSession::notice, notices, &Notices::show);
    connect(&session.journal(), &JournalKeeper::refused, notices, &Notices::keep);
    connect(&session.journal(), &JournalKeeper::whole, notices, &Notices::takeBack);
    // A Lap asks the menu's check marks, in index order.
    session.setLapOptions([this] {
        return RaceSession::LapOptions{checkedFormat(), opp22->isChecked()};
    });
    startTimesWriter = std::make_unique<LatestWriter>();
    connect(startTimesWriter.get(), &LatestWriter::written, this, [this](const QString& message) {
        if (!message.isEmpty())
            notices->show(QStringLiteral("%1. La llegada ha quedado registrada.").arg(message));
    });

    connect(Command1[0], &QPushButton::clicked, this, [this] { Command1_Click(0); });
    connect(Command1[1], &QPushButton::clicked, this, [this] { Command1_Click(1); });
    connect(Command2[0], &QPushButton::clicked, this, [this] { Command2_Click(0); });
    connect(Command2[1], &QPushButton::clicked, this, [this] { Command2_Click(1); });
    connect(Command3, &QPushButton::clicked, this, &FormMarvolendo::Command3_Click);
    connect(Command4, &QPushButton::clicked, this, &FormMarvolendo::Command4_Click);
    connect(Command5, &QPushButton::clicked, this, &FormMarvolendo::Command5_Click);
    connect(Command6, &QPushButton::clicked, this, &FormMarvolendo::Command6_Click);
    connect(Command7, &QPushButton::clicked, this, &FormMarvolendo::Command7_Click);
    connect(Command8, &QPushButton::clicked, this, &FormMarvolendo::Command8_Click);
    connect(Timer1, &QTimer::timeout, this, &FormMarvolendo::Timer1_Timer);
    connect(Timer2, &QTimer::timeout, this, &FormMarvolendo::Timer2_Timer);
    // Qt toggles a check item before it reports the click, while these handlers move their
    // own check marks: the mark is put back as it stood, then the handler runs. A format or
    // mode choice changes window-level values all through its handler (and may clear the
    // race): the journal takes the race whole once, after it.
    const auto menuClick = [this](QAction* action, auto handler) {
        connect(action, &QAction::triggered, this, [this, action, handler](bool checked) {
            const Race::Batch batch(race);
            action->setChecked(!checked);
            handler();
        });
    };
    for (int i = 0; i < 3; ++i)
        menuClick(op2[i], [this, i] { op2_Click(i); });
    menuClick(opp2, [this] { opp2_Click(); });
    menuClick(opp22, [this] { opp22_Click(); });
    menuClick(opp4, [this] { opp4_Click(); });
    connect(List1, &QListWidget::itemClicked, this, &FormMarvolendo::List1_Click);
    connect(List1, &QListWidget::currentRowChanged, this, &FormMarvolendo::List1_Click);
    connect(List2, &QListWidget::itemClicked, this, &FormMarvolendo::List2_Click);
    connect(guardadoTimer, &QTimer::timeout, Frame3, &QGroupBox::hide);

    // The finish keys, before any control takes them and from every window of the program.
    // Form_KeyDown takes the old key codes: 112 for F1, 114 for F3.
    new FinishKeys(this, [this](int code) { Form_KeyDown(code, Qt::NoModifier); });

    // Key presses, double-clicks and focus changes of the fields and the list.
    Text1->installEventFilter(this);
    Text2->installEventFilter(this);
    List1->viewport()->installEventFilter(this);
}
