// Pictures of the window in its four layouts and of what the menu "Carrera" adds, for the
// operator's guide:
//   screenshots <folder> [published folder]
// writes ventana-normal.png, ventana-dorsales-tiempos.png, ventana-solo-dorsales.png,
// ventana-compacta.png, menu-carrera.png, asignar-dorsales.png, salida-armada.png and the
// results office's windows, situacion-corredores.png, categorias-edad.png,
// opciones-resultados.png and temporada.png, into the folder. Given a second folder, the files a
// race publishes (resultados.pdf, resultados.html, premios.pdf, equipos.pdf) are copied into it,
// for scripts/screenshots.sh to turn into pictures. Each window is the real one, opened on a race
// written beforehand into a temporary folder, with a clock that stands still and the program's
// settings in a temporary folder too; run it with QT_QPA_PLATFORM=offscreen to need no display.
#include "app/core/archive.h"
#include "app/core/statefile.h"
#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "app/spanish.h"
#include "base/basic.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "results/core/categories.h"
#include "results/core/entrants.h"
#include "results/core/raceresults.h"
#include "results/core/resultline.h"
#include "results/core/runnerstatus.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QStyleFactory>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <cstdio>
#include <memory>

namespace
{

// A clock that stands at the moment of the picture.
class StillClock final : public Clock
{
public:
    double seconds = 0;
    double timer() const override { return seconds; }
    double monotonic() const override { return seconds; }
    QTime timeOfDay() const override
    {
        return QTime::fromMSecsSinceStartOfDay(static_cast<int>(seconds * 1000.0 + 0.5));
    }
};

// Every question is answered OK and written to the terminal, so that a change in what the
// window asks shows up when the pictures are made.
class AnsweringDialogs final : public Dialogs
{
public:
    int confirm(QWidget*, const QString& title, const QString& text) override
    {
        std::fprintf(stderr, "  pregunta \"%s\": %s -> Aceptar\n", qPrintable(title),
                     qPrintable(text));
        return Ok;
    }
    void warn(QWidget*, const QString& title, const QString& text) override
    {
        std::fprintf(stderr, "  aviso \"%s\": %s\n", qPrintable(title), qPrintable(text));
    }
    // The time of an armed start, the only text the pictures type.
    QString askText(QWidget*, const QString&, const QString&) override { return startTime; }
    QString startTime;
    QStringList askFields(QWidget*, const QString&, const QStringList&) override { return {}; }
    void inform(QWidget*, const QString&, const QString&) override {}
    int ask(QWidget*, const QString& title, const QString& text) override
    {
        std::fprintf(stderr, "  pregunta \"%s\": %s -> Si\n", qPrintable(title), qPrintable(text));
        return Yes;
    }
    QString openFile(QWidget*, const FileRequest&) override { return {}; }
    QString saveFile(QWidget*, const FileRequest&) override { return {}; }
};

constexpr double startOfRace = 9 * 3600.0;                         // 09:00:00
constexpr double momentOfPicture = startOfRace + 47 * 60 + 13.482; // 00:47:13.482 on the clock

struct Finish {
    int bib;
    double seconds; // race time
};

const Finish finishes[] = {{57, 38 * 60 + 12.250}, {112, 39 * 60 + 5.125}, {8, 40 * 60 + 47.900},
                           {231, 41 * 60 + 2.015}, {94, 43 * 60 + 30.675}, {160, 44 * 60 + 1.340},
                           {17, 45 * 60 + 58.008}};

// A race of seven finishers in thousandths, running or stopped, in the given capture mode.
RaceState race(double modo, bool running)
{
    RaceState s;
    s.inicio = running ? startOfRace : 0;
    s.horaSalida = running ? QStringLiteral("09:00") : QStringLiteral("0    ");
    s.formato = 2.0;
    s.modoCaptura = modo;
    const auto format = TimeFormat::Milesimas;
    using resultline::Target;
    const double first = finishes[0].seconds / timevalue::secondsPerHour;
    s.tempsPrimer = timevalue::tempsexaMil(first);
    int rank = 0;
    for (const Finish& f : finishes) {
        const QString rankText = QString::number(++rank);
        const QString bib = QString::number(f.bib);
        const double t = f.seconds / timevalue::secondsPerHour;
        const QString time = timevalue::tempsexaMil(t);
        const QString difference = basic::mid(timevalue::tempsexaMil(t - first), 2);
        if (modo == 2) {
            const QString line =
                resultline::bibLine(resultline::rankField(rankText), resultline::bibField(bib));
            s.list1 << line;
            s.combo1 << line;
            continue;
        }
        s.list1 << resultline::fullLine(
            resultline::rankField(rankText), resultline::bibField(modo == 1 ? bib : QString()),
            resultline::cutTime(time, format, Target::List1),
            resultline::cutDifference(difference, format, Target::List1));
        s.combo1 << resultline::comboLine(
            resultline::rankField(rankText), resultline::cutTime(time, format, Target::Combo1),
            resultline::cutDifference(difference, format, Target::Combo1));
    }
    const int bibs[] = {57, 112, 8, 231, 94, 160, 17, 45, 73};
    for (int i = 0; i < 9; ++i) {
        const int start = 10 * 60 + 30 * i;
        s.list2 << resultline::startLine(
            i + 1, static_cast<qint16>(bibs[i]),
            timevalue::tempsexaMil(start / timevalue::secondsPerHour).left(8));
    }
    return s;
}

// The race the results office works on: entrants with their dates of birth, sexes, clubs and
// teams, most without a category (the age table gives it), finishes in the bibs-and-times
// mode with a tie to the second, a bib that is no entrant's, a bib recorded twice, and the
// timekeeper's statuses.
const Finish officeFinishes[] = {
    {7, 33 * 60 + 41.210},  {4, 34 * 60 + 2.120},  {9, 34 * 60 + 2.880},   {13, 35 * 60 + 10.450},
    {1, 36 * 60 + 20.030},  {2, 37 * 60 + 5.700},  {19, 37 * 60 + 40.100}, {305, 38 * 60 + 2.500},
    {6, 38 * 60 + 55.000},  {5, 39 * 60 + 31.420}, {10, 40 * 60 + 12.900}, {3, 41 * 60 + 7.330},
    {16, 41 * 60 + 50.010}, {7, 42 * 60 + 10.000}, {11, 43 * 60 + 45.600}, {21, 44 * 60 + 20.000},
    {12, 45 * 60 + 2.250},  {8, 46 * 60 + 30.800}, {14, 48 * 60 + 12.400}, {15, 49 * 60 + 5.070},
    {20, 65 * 60 + 40.000}};

const char officeEntrants[] = "dorsal;nombre;apellidos;sexo;nacimiento;club;equipo\n"
                              "1;Lucía;Ortega Ruiz;F;12/03/1990;CA Valle;CA Valle\n"
                              "2;Javier;Marín Soto;M;1978;Trotadores;Trotadores\n"
                              "3;Nerea;Gil Soto;F;2008;CA Valle;CA Valle\n"
                              "4;Pablo;Ibáñez Mora;M;15/07/1995;Trotadores;Trotadores\n"
                              "5;Andrés;Vidal Prieto;M;1969;CA Valle;CA Valle\n"
                              "6;Marta;Llorente Gil;F;1983;Trotadores;Trotadores\n"
                              "7;Sergio;Campos Ruiz;M;2001;Running Sierra;Running Sierra\n"
                              "8;Elena;Navarro Sanz;F;1972;Running Sierra;Running Sierra\n"
                              "9;Raúl;Domínguez Paz;M;1986;CA Valle;CA Valle\n"
                              "10;Irene;Castillo Vera;F;1999;Running Sierra;Running Sierra\n"
                              "11;Tomás;Herrero Gil;M;1960;Trotadores;Trotadores\n"
                              "12;Carmen;Rubio León;F;1965;CA Valle;CA Valle\n"
                              "13;Diego;Fuentes Mora;M;1992;Running Sierra;Running Sierra\n"
                              "14;Alba;Serrano Díaz;F;2006;;\n"
                              "15;Hugo;Molina Cruz;M;;Trotadores;Trotadores\n"
                              "16;Rosa;Delgado Ríos;F;1988;Atletismo Norte;Trotadores\n"
                              "17;Iván;Prieto Sanz;M;1975;Running Sierra;Running Sierra\n"
                              "18;Laura;Méndez Vidal;F;1994;CA Valle;CA Valle\n"
                              "19;Óscar;Lozano Gil;M;1981;Trotadores;Trotadores\n"
                              "20;Sonia;Cano Ruiz;F;1970;;\n"
                              "21;Marcos;Peña Ortiz;M;1985;Club Alcor;Club Alcor\n";

const char officeRaceName[] = "Carrera Popular de Valdeoro";

runnerstatus::Marks officeMarks()
{
    using runnerstatus::Kind;
    return {{17, {Kind::DidNotFinish, {}}},
            {19, {Kind::Disqualified, QStringLiteral("Atajó en el km 7")}},
            {20, {Kind::OutOfTime, {}}}};
}

// The results office's race, stopped, in thousandths and in the bibs-and-times mode.
RaceState officeRace()
{
    RaceState s;
    s.formato = 2.0;
    s.modoCaptura = 1;
    const auto format = TimeFormat::Milesimas;
    using resultline::Target;
    const double first = officeFinishes[0].seconds / timevalue::secondsPerHour;
    s.tempsPrimer = timevalue::tempsexaMil(first);
    int rank = 0;
    for (const Finish& f : officeFinishes) {
        const QString rankText = QString::number(++rank);
        const double t = f.seconds / timevalue::secondsPerHour;
        const QString time = timevalue::tempsexaMil(t);
        const QString difference = basic::mid(timevalue::tempsexaMil(t - first), 2);
        s.list1 << resultline::fullLine(
            resultline::rankField(rankText), resultline::bibField(QString::number(f.bib)),
            resultline::cutTime(time, format, Target::List1),
            resultline::cutDifference(difference, format, Target::List1));
        s.combo1 << resultline::comboLine(
            resultline::rankField(rankText), resultline::cutTime(time, format, Target::Combo1),
            resultline::cutDifference(difference, format, Target::Combo1));
    }
    return s;
}

// The director's choices, in the program's settings: the usual age table, times to the second,
// three awards, the overall winners not repeating, teams of three scoring by time.
void keepOfficeSettings()
{
    QSettings settings(QStringLiteral("Marvolendo"), QStringLiteral("Marvolendo"));
    categories::save(settings, categories::defaultTable());
    raceresults::Settings results;
    results.precision = classification::Precision::WholeSecond;
    results.awards.overallExcluded = true;
    results.teams = teams::Rules{};
    raceresults::save(settings, results);
    settings.sync();
}

// Writes the office's race, its entrants, name and statuses into the current folder, and three
// earlier races of the season into its archive.
bool writeOfficeRace()
{
    const auto write = [](const QString& name, const QByteArray& bytes) {
        QFile f(name);
        return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
    };
    const QByteArray entered(officeEntrants);
    if (!write(QString::fromLatin1(statefile::fileName), statefile::encode(officeRace())) ||
        !write(QString::fromLatin1(entrants::keptFile), entered) ||
        !write(QString::fromLatin1(entrants::raceNameFile), QByteArray(officeRaceName)) ||
        !write(QString::fromLatin1(runnerstatus::keptFile), runnerstatus::encode(officeMarks())))
        return false;
    const QString folder = QDir::current().filePath(QString::fromLatin1(archive::folderName));
    const struct {
        const char* name;
        QDate day;
    } earlier[] = {{"Cross de las Eras", QDate(2026, 2, 8)},
                   {"Carrera de San Isidro", QDate(2026, 3, 15)},
                   {"Subida al Castillo", QDate(2026, 4, 19)}};
    for (const auto& e : earlier) {
        QString error;
        if (archive::keep(folder, officeRace(), QDateTime(e.day, QTime(13, 30)), &error,
                          {QString::fromUtf8(e.name), entered, officeMarks()})
                .isEmpty())
            return false;
    }
    return QDir().mkpath(QStringLiteral("Carreras/copias"));
}

// Every file the race published, copied into `into`.
bool copyPublished(const QString& into)
{
    QDir published(QStringLiteral("Carreras/copias"));
    const QStringList folders = published.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (folders.size() != 1 || !QDir().mkpath(into))
        return false;
    QDir race(published.filePath(folders.first()));
    bool copied = true;
    for (const char* name : {"resultados.pdf", "resultados.html", "premios.pdf", "equipos.pdf"}) {
        const QString file = QString::fromLatin1(name);
        QFile::remove(QDir(into).filePath(file));
        copied = QFile::copy(race.filePath(file), QDir(into).filePath(file)) && copied;
    }
    return copied;
}

enum class Layout {
    Normal,
    BibsAndTimes,
    BibsOnly,
    Compact,
    RaceMenu,
    AssignBibs,
    Armed,
    Statuses,
    Categories,
    ResultsOptions,
    Season,
    Published
};

bool isOffice(Layout layout)
{
    return layout == Layout::Statuses || layout == Layout::Categories ||
           layout == Layout::ResultsOptions || layout == Layout::Season ||
           layout == Layout::Published;
}

// The window with its open menu drawn over it.
QPixmap withMenu(QMainWindow& form, QMenu* menu)
{
    const QPoint at = form.menuBar()->mapTo(
        &form, form.menuBar()->actionGeometry(menu->menuAction()).bottomLeft());
    menu->popup(form.mapToGlobal(at));
    QApplication::processEvents();
    QPixmap picture = form.grab();
    QPainter painter(&picture);
    painter.drawPixmap(at, menu->grab());
    painter.end();
    menu->hide();
    return picture;
}

bool picture(Layout layout, const QString& file)
{
    QTemporaryDir dir;
    if (!dir.isValid())
        return false;
    // The window works in the current folder; the picture's folder is put back afterwards.
    struct Restore {
        QString path = QDir::currentPath();
        ~Restore() { QDir::setCurrent(path); }
    } restore;
    QDir::setCurrent(dir.path());
    qputenv("MARVOLENDO_DRIVE_C", QFile::encodeName(dir.path()));
    qputenv("MARVOLENDO_DRIVE_D", QFile::encodeName(dir.path()));

    const double modo = layout == Layout::BibsAndTimes || layout == Layout::AssignBibs ? 1
                        : layout == Layout::BibsOnly                                   ? 2
                                                                                       : 0;
    const bool running =
        layout != Layout::BibsOnly && layout != Layout::AssignBibs && layout != Layout::Armed;
    RaceState saved = race(modo, running);
    if (layout == Layout::Armed)
        saved = RaceState{};
    if (layout == Layout::AssignBibs) {
        // Bibs given afterwards: the last four finishes still without one, and the entrants.
        for (int i = 3; i < saved.list1.size(); ++i)
            saved.list1[i] = *resultline::rewriteBib(saved.list1[i], u"0");
        QFile entered(QStringLiteral("MARVO-inscritos.csv"));
        if (!entered.open(QIODevice::WriteOnly) ||
            entered.write("dorsal;nombre;apellidos;club;categoria\n"
                          "57;Lucía;Ortega Ruiz;CA Valle;Senior\n"
                          "112;Javier;Marín;Trotadores;Veterano\n"
                          "8;Nerea;Gil Soto;CA Valle;Junior\n"
                          "231;Pablo;Ibáñez;;Senior\n") < 0)
            return false;
    }
    if (isOffice(layout)) {
        keepOfficeSettings();
        if (!writeOfficeRace())
            return false;
    } else {
        QFile state(QString::fromLatin1(statefile::fileName));
        if (!state.open(QIODevice::WriteOnly) || state.write(statefile::encode(saved)) < 0)
            return false;
    }

    StillClock clock;
    clock.seconds = momentOfPicture;
    AnsweringDialogs dialogs;
    bool written = false;
    {
        FormMarvolendo form(clock, dialogs);
        form.move(0, 0);
        form.show();
        QApplication::processEvents();
        form.Timer1_Timer();
        form.Timer2_Timer();
        // The bib of the runner about to finish, typed in the bib field.
        if (layout == Layout::BibsAndTimes || layout == Layout::BibsOnly) {
            if (auto* bib = form.findChild<QLineEdit*>(QStringLiteral("Text1")))
                bib->setText(QStringLiteral("45"));
        }
        if (layout == Layout::Compact) {
            if (QAction* opp4 = form.findChild<QAction*>(QStringLiteral("opp4")))
                opp4->trigger();
            form.Timer1_Timer();
        }
        QApplication::processEvents();
        if (layout == Layout::RaceMenu) {
            written =
                withMenu(form, form.findChild<QMenu*>(QStringLiteral("carrera"))).save(file, "PNG");
        } else if (layout == Layout::AssignBibs) {
            form.findChild<QAction*>(QStringLiteral("asignar"))->trigger();
            auto* bibs = form.findChild<QDialog*>(QStringLiteral("asignarVentana"));
            form.findChild<QLineEdit*>(QStringLiteral("asignarDorsal"))
                ->setText(QStringLiteral("231"));
            QApplication::processEvents();
            written = bibs->grab().save(file, "PNG");
        } else if (layout == Layout::Armed) {
            // Armed for 09:00:00, 12 minutes 46.518 s before the picture's moment.
            dialogs.startTime = QStringLiteral("09:00:00");
            clock.seconds = startOfRace - 12 * 60 - 46.518;
            form.findChild<QAction*>(QStringLiteral("salidaHora"))->trigger();
            QApplication::processEvents();
            written = form.grab().save(file, "PNG");
        } else if (layout == Layout::Statuses) {
            form.findChild<QAction*>(QStringLiteral("situaciones"))->trigger();
            auto* list = form.findChild<QTableWidget*>(QStringLiteral("situacionesLista"));
            for (int row = 0; row < list->rowCount(); ++row)
                if (list->item(row, 0) && list->item(row, 0)->text().trimmed() == u"19")
                    list->setCurrentCell(row, 0);
            list->scrollToItem(list->currentItem(), QAbstractItemView::PositionAtCenter);
            QApplication::processEvents();
            written = form.findChild<QDialog*>(QStringLiteral("situacionesVentana"))
                          ->grab()
                          .save(file, "PNG");
        } else if (layout == Layout::Categories) {
            form.findChild<QAction*>(QStringLiteral("categoriasEdad"))->trigger();
            QApplication::processEvents();
            written = form.findChild<QDialog*>(QStringLiteral("categoriasVentana"))
                          ->grab()
                          .save(file, "PNG");
        } else if (layout == Layout::ResultsOptions) {
            form.findChild<QAction*>(QStringLiteral("resultadosOpciones"))->trigger();
            QApplication::processEvents();
            written = form.findChild<QDialog*>(QStringLiteral("opcionesResultados"))
                          ->grab()
                          .save(file, "PNG");
        } else if (layout == Layout::Season) {
            form.findChild<QAction*>(QStringLiteral("anteriores"))->trigger();
            QApplication::processEvents();
            form.findChild<QPushButton*>(QStringLiteral("temporada"))->click();
            QApplication::processEvents();
            auto* season = form.findChild<QDialog*>(QStringLiteral("temporadaVentana"));
            auto* races = season->findChild<QTableWidget*>(QStringLiteral("temporadaCarreras"));
            for (int row = 0; row < races->rowCount(); ++row)
                races->item(row, 0)->setCheckState(Qt::Checked);
            QApplication::processEvents();
            written = season->grab().save(file, "PNG");
        } else if (layout == Layout::Published) {
            // "Resultados..." writes away from the window: wait for it, then take the files.
            form.findChild<QAction*>(QStringLiteral("resultados"))->trigger();
            for (QThread* writing : form.findChildren<QThread*>())
                writing->wait(60000);
            QApplication::processEvents();
            written = copyPublished(file);
        } else {
            written = form.grab().save(file, "PNG");
        }
    }
    return written;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    installSpanish(app);
    // The program's settings go to a folder of their own, never the user's.
    QTemporaryDir settingsFolder;
    if (!settingsFolder.isValid())
        return 1;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsFolder.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsFolder.path());
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs");
    const QString publishedFolder = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "no se pudo crear la carpeta %s\n", qPrintable(folder));
        return 1;
    }
    const struct {
        Layout layout;
        const char* name;
    } pictures[] = {{Layout::Normal, "ventana-normal.png"},
                    {Layout::BibsAndTimes, "ventana-dorsales-tiempos.png"},
                    {Layout::BibsOnly, "ventana-solo-dorsales.png"},
                    {Layout::Compact, "ventana-compacta.png"},
                    {Layout::RaceMenu, "menu-carrera.png"},
                    {Layout::AssignBibs, "asignar-dorsales.png"},
                    {Layout::Armed, "salida-armada.png"},
                    {Layout::Statuses, "situacion-corredores.png"},
                    {Layout::Categories, "categorias-edad.png"},
                    {Layout::ResultsOptions, "opciones-resultados.png"},
                    {Layout::Season, "temporada.png"},
                    {Layout::Published, nullptr}};
    int failed = 0;
    for (const auto& p : pictures) {
        if (!p.name && publishedFolder.isEmpty())
            continue;
        const QString file = p.name ? QDir(folder).absoluteFilePath(QString::fromLatin1(p.name))
                                    : QDir(publishedFolder).absolutePath();
        std::fprintf(stderr, "%s\n", qPrintable(file));
        if (!picture(p.layout, file)) {
            std::fprintf(stderr, "  no se pudo escribir\n");
            ++failed;
        }
    }
    return failed == 0 ? 0 : 1;
}
