// Recording a finish and correcting a bib in the real window, with 10,000 lines already in the
// results list. Prints the median and the worst of many runs of each, the handler alone and
// the handler with the redraw it causes.
#include "app/core/journal.h"
#include "app/core/statefile.h"
#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "base/basic.h"
#include "benchutil.h"
#include "chrono/core/clock.h"
#include "results/core/finishedit.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace
{

constexpr int runs = 200;
constexpr int listed = 10000;

// A clock the benchmark moves by hand, so every finish gets a new time.
class StepClock final : public Clock
{
public:
    double seconds = 9 * 3600.0;
    double timer() const override { return seconds; }
    double monotonic() const override { return seconds; }
    QTime timeOfDay() const override
    {
        return QTime::fromMSecsSinceStartOfDay(static_cast<int>(seconds * 1000.0) % 86400000);
    }
};

// Dialogs must not appear in a benchmark: every question is answered Cancel.
class SilentDialogs final : public Dialogs
{
public:
    int shown = 0;
    int answer = Cancel;
    int confirm(QWidget*, const QString&, const QString&) override { return ++shown, answer; }
    void warn(QWidget*, const QString&, const QString&) override { ++shown; }
    int ask(QWidget*, const QString&, const QString&) override { return ++shown, No; }
    QString openFile(QWidget*, const FileRequest&) override { return ++shown, QString(); }
    QString saveFile(QWidget*, const FileRequest&) override { return ++shown, QString(); }
    QString askText(QWidget*, const QString&, const QString&) override
    {
        return ++shown, QString();
    }
    QStringList askFields(QWidget*, const QString&, const QStringList&) override
    {
        return ++shown, QStringList();
    }
    void inform(QWidget*, const QString&, const QString&) override {}
};

// Times work(); withRedraw also counts the events it leaves pending (the redraw).
Figures measureRuns(const std::function<void(int)>& work, bool withRedraw)
{
    return measure(
        runs, work, [](int) { QApplication::processEvents(); },
        [withRedraw](int) {
            if (withRedraw)
                QApplication::processEvents();
        });
}

// A race in Milesimas in the bibs-and-times mode, stopped, with its results lines.
RaceState bigRace()
{
    RaceState s;
    s.formato = 2.0;
    s.modoCaptura = 1.0;
    s.tempsPrimer = finishTime(1);
    for (int i = 1; i <= listed; ++i) {
        const QString rank = basic::field4(i);
        const QString diff = u'0' + finishTime(i - 1).mid(2);
        s.list1 << rank + u'-' + basic::field4(i * 7 % 3000) + QStringLiteral("- ") +
                       finishTime(i) + QStringLiteral(" - ") + diff;
        s.combo1 << rank + QStringLiteral("- ") + finishTime(i) + QStringLiteral(" - ") + diff;
    }
    return s;
}

// Removes the first finisher, timed with its redraw; puts it back untimed before each next run.
Figures removeFirstRuns(FormMarvolendo& form, SilentDialogs& dialogs)
{
    auto* borrar = form.findChild<QAction*>(QStringLiteral("borrar"));
    auto* deshacer = form.findChild<QAction*>(QStringLiteral("deshacer"));
    auto* list1 = form.findChild<QListWidget*>(QStringLiteral("List1"));
    auto* combo1 = form.findChild<QComboBox*>(QStringLiteral("Combo1"));
    dialogs.answer = Dialogs::Ok;
    const Figures figures = measure(
        20,
        [&](int) {
            list1->setCurrentRow(0);
            combo1->setCurrentIndex(0);
            borrar->trigger();
        },
        [&](int i) {
            if (i > 0)
                deshacer->trigger();
            QApplication::processEvents();
        },
        [](int) { QApplication::processEvents(); });
    deshacer->trigger();
    dialogs.answer = Dialogs::Cancel;
    return figures;
}

// The resident set of this process, from the kernel's own count.
double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return 0;
}

void pressEnter(QWidget* field)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    QApplication::sendEvent(field, &press);
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    // The state file goes to a folder of its own, and so do both drives.
    QTemporaryDir folder;
    if (!folder.isValid() || !QDir(folder.path()).mkpath(QStringLiteral("C/Carreras/copias")) ||
        !QDir(folder.path()).mkpath(QStringLiteral("D"))) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    const QString previous = QDir::currentPath();
    QDir::setCurrent(folder.path());
    qputenv("MARVOLENDO_DRIVE_C", QFile::encodeName(folder.filePath(QStringLiteral("C"))));
    qputenv("MARVOLENDO_DRIVE_D", QFile::encodeName(folder.filePath(QStringLiteral("D"))));
    // Each window starts from this file alone: the journal of the window before is not offered.
    const auto writeState = [](const RaceState& race) {
        QFile::remove(QLatin1String(journal::fileName));
        QFile file{QLatin1String(statefile::fileName)};
        const QByteArray bytes = statefile::encode(race);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    if (!writeState(bigRace())) {
        std::fprintf(stderr, "cannot write the state file\n");
        return 1;
    }

    // The Lap mode first: a window of its own, where removing the first finisher recomputes
    // every difference.
    StepClock clock;
    Figures removeFirstLap{};
    double startupMs = 0;
    double residentMb = 0;
    {
        RaceState lap = bigRace();
        lap.modoCaptura = 0.0;
        SilentDialogs quiet;
        if (!writeState(lap))
            return 1;
        // Start-up: the state file read, the window built and drawn.
        QElapsedTimer up;
        up.start();
        FormMarvolendo form(clock, quiet);
        form.show();
        QApplication::processEvents();
        startupMs = static_cast<double>(up.nsecsElapsed()) / 1e6;
        residentMb = residentMegabytes();
        removeFirstLap = removeFirstRuns(form, quiet);
    }
    if (!writeState(bigRace()))
        return 1;

    SilentDialogs dialogs;
    bool failed = false;
    {
        FormMarvolendo form(clock, dialogs);
        // The controls of the bibs-and-times layout.
        for (const char* name : {"Text1", "List1", "Text2", "Label14", "Label16"})
            form.findChild<QWidget*>(QLatin1String(name))->setVisible(true);
        form.show();
        QApplication::processEvents();
        auto* List1 = form.findChild<QListWidget*>(QStringLiteral("List1"));
        auto* Text2 = form.findChild<QLineEdit*>(QStringLiteral("Text2"));
        auto* Command3 = form.findChild<QPushButton*>(QStringLiteral("Command3"));
        if (List1->count() != listed) {
            std::fprintf(stderr, "the race was not restored: %d lines\n", List1->count());
            return 1;
        }

        auto* Start = form.findChild<QPushButton*>(QStringLiteral("Command1(0)"));
        auto* Stop = form.findChild<QPushButton*>(QStringLiteral("Command1(1)"));
        Start->click();
        // The Lap, as the button runs it: a fresh clock reading, then the lines.
        auto lap = [&](int) {
            clock.seconds += 0.731;
            Command3->click();
        };
        const Figures lapAlone = measureRuns(lap, false);
        const Figures lapDrawn = measureRuns(lap, true);
        Stop->click();

        // A correction: the line is chosen, Text2 gets the bib, Enter writes it.
        auto correct = [&](int i) {
            List1->setCurrentRow(1000 + i * 37 % 8000);
            QMouseEvent dbl(QEvent::MouseButtonDblClick, QPointF(4, 4), QPointF(4, 4),
                            Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(List1->viewport(), &dbl);
            Text2->setText(QString::number(100 + i));
            pressEnter(Text2);
        };
        const Figures correctAlone = measureRuns(correct, false);
        const Figures correctDrawn = measureRuns(correct, true);

        // Removing the first finisher: every rank after it rewritten (the differences stand
        // still in this mode, as the clock's do). Put back (untimed) before the next run.
        const Figures removeFirst = removeFirstRuns(form, dialogs);
        const int shownByRemovals = dialogs.shown;

        // Bibs in arrival order: the finishes above were taken without one.
        auto* asignar = form.findChild<QAction*>(QStringLiteral("asignar"));
        auto* asignarDorsal = form.findChild<QLineEdit*>(QStringLiteral("asignarDorsal"));
        asignar->trigger();
        const Figures assign = measureRuns(
            [&](int i) {
                asignarDorsal->setText(QString::number(3000 + i));
                pressEnter(asignarDorsal);
            },
            false);

        // The bib checks of one finish, alone: a line appended to the checks of 10,000.
        finishedit::BibChecks checks;
        const RaceState sample = bigRace();
        checks.reset(sample.list1, std::nullopt);
        const Figures check = measure(runs, [&] { checks.append(sample.list1[7]); });

        std::printf("Results list of %d lines, %d runs each (QT_QPA_PLATFORM=%s)\n", listed, runs,
                    qgetenv("QT_QPA_PLATFORM").constData());
        report("record one finish (handler)", lapAlone, 1);
        report("record one finish (handler and redraw)", lapDrawn, 1, 5);
        report("correct one bib (handler)", correctAlone, 2);
        report("correct one bib (handler and redraw)", correctDrawn, 1, 5);
        report("remove the first finish, with its redraw (20 runs)", removeFirst, 20);
        report("  the same in the Lap mode, every difference recomputed", removeFirstLap, 20);
        report("assign a bib in arrival order (handler)", assign, 2);
        std::printf("%-58s %8.1f ms  (target < 300 ms) %s\n",
                    "start-up with 10,000 finishers, to a drawn window", startupMs,
                    startupMs < 300 ? "ok" : "SLOW");
        std::printf("%-58s %8.1f MB  (target < 60 MB) %s\n",
                    "resident memory, 10,000 finishers listed", residentMb,
                    residentMb < 60 ? "ok" : "HIGH");
        std::printf("%-58s median %8.4f ms  (target < 0.2 ms)\n", "bib checks of one finish",
                    check.median);
        failed = startupMs >= 300 || residentMb >= 60 || lapAlone.median >= 1 ||
                 correctAlone.median >= 2 || removeFirst.median >= 20 ||
                 removeFirstLap.median >= 20 || assign.median >= 2 || lapDrawn.median >= 1 ||
                 lapDrawn.worst >= 5 || correctDrawn.median >= 1 || correctDrawn.worst >= 5;

        // The work was done: every finish added its line, every correction found its line.
        const int expected = listed + 2 * runs;
        if (List1->count() != expected || !Text2->text().isEmpty() ||
            dialogs.shown != shownByRemovals || shownByRemovals != 20) {
            std::fprintf(stderr, "unexpected state: %d lines, Text2 \"%s\", %d dialogs\n",
                         List1->count(), qPrintable(Text2->text()), dialogs.shown);
            failed = true;
        }
    }

    // The same finishes with 10,000 entrants loaded: their bibs join the bib checks.
    {
        QByteArray entrants = "dorsal;nombre;categoria\n";
        for (int bib = 1; bib <= listed; ++bib)
            entrants +=
                QByteArray::number(bib) + ";Nombre;Cat " + QByteArray::number(bib % 20) + "\n";
        QFile kept(QStringLiteral("MARVO-inscritos.csv"));
        if (!writeState(bigRace()) || !kept.open(QIODevice::WriteOnly) ||
            kept.write(entrants) != entrants.size())
            return 1;
        kept.close();
        FormMarvolendo form(clock, dialogs);
        form.show();
        QApplication::processEvents();
        form.findChild<QPushButton*>(QStringLiteral("Command1(0)"))->click();
        auto* Command3 = form.findChild<QPushButton*>(QStringLiteral("Command3"));
        const auto lap = [&](int) {
            clock.seconds += 0.731;
            Command3->click();
        };
        const Figures withEntrants = measureRuns(lap, false);
        report("record one finish, 10,000 entrants loaded (handler)", withEntrants, 1);
        report("  the same, with its redraw", measureRuns(lap, true), 1, 5);
        failed = failed || withEntrants.median >= 1;
    }
    QDir::setCurrent(previous);
    return failed ? 1 : 0;
}
