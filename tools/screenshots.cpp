// Pictures of the window in its four layouts and of what the menu "Carrera" adds, for the
// operator's guide:
//   screenshots <folder>
// writes ventana-normal.png, ventana-dorsales-tiempos.png, ventana-solo-dorsales.png,
// ventana-compacta.png, menu-carrera.png, asignar-dorsales.png and salida-armada.png into the
// folder. Each window is the real one, opened on a race written
// beforehand into a temporary folder, with a clock that stands still; run it with
// QT_QPA_PLATFORM=offscreen to need no display.
#include "app/core/statefile.h"
#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "app/spanish.h"
#include "base/basic.h"
#include "chrono/core/clock.h"
#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"

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
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>

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

enum class Layout { Normal, BibsAndTimes, BibsOnly, Compact, RaceMenu, AssignBibs, Armed };

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
    QFile state(QString::fromLatin1(statefile::fileName));
    if (!state.open(QIODevice::WriteOnly) || state.write(statefile::encode(saved)) < 0)
        return false;
    state.close();

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
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs");
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
                    {Layout::Armed, "salida-armada.png"}};
    int failed = 0;
    for (const auto& p : pictures) {
        const QString file = QDir(folder).absoluteFilePath(QString::fromLatin1(p.name));
        std::fprintf(stderr, "%s\n", qPrintable(file));
        if (!picture(p.layout, file)) {
            std::fprintf(stderr, "  no se pudo escribir\n");
            ++failed;
        }
    }
    return failed == 0 ? 0 : 1;
}
