// The race files through the window: the export button in both capture modes, the start-times
// file after F1, the GUARDADO notice, a missing results folder, the start-order import through
// the file dialog and the link to the readings database.
#include "app/core/paths.h"
#include "app/core/statefile.h"
#include "files/adodatacontrol.h"
#include "files/core/startorder.h"
#include "support/formfixture.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QtEndian>

namespace
{

const QString resultsFolder = QStringLiteral("C/Carreras/copias/");
const QStringList allFiles = {"dorsales-Tiempos-Marvo.txt", "dorsales-Marvo.txt",
                              "Tiempos-Marvo.txt", "TiemposSalida.txt"};

// A stopped race with these lines, as the state file brings it back at start-up.
void writeRace(FormFixture& f, int format, int mode, const QStringList& list1,
               const QStringList& combo1)
{
    RaceState race;
    race.formato = format;
    race.modoCaptura = mode;
    race.list1 = list1;
    race.combo1 = combo1;
    f.writeFile(QStringLiteral("MARVO.dat"), statefile::encode(race));
}

// The time format the files read: the first checked entry of the format menu.
int checkedFormat(FormFixture& f)
{
    for (int i = 0; i < 3; ++i) {
        if (f.action(QStringLiteral("op2(%1)").arg(i))->isChecked())
            return i;
    }
    return -1;
}

// Every results file, "<missing>" where there is none.
QStringList resultsFiles(const FormFixture& f)
{
    QStringList out;
    for (const QString& name : allFiles)
        out << (QFile::exists(f.path(resultsFolder + name))
                    ? QString::fromLatin1(f.readFile(resultsFolder + name))
                    : QStringLiteral("<missing>"));
    return out;
}

// The one-second timer that hides the GUARDADO notice.
QTimer* guardadoTimer(FormFixture& f)
{
    for (QTimer* t : f.form().findChildren<QTimer*>()) {
        if (t->isSingleShot() && t->interval() == 1000)
            return t;
    }
    return nullptr;
}

QByteArray record(qint16 bib, QByteArrayView startTime)
{
    QByteArray r(99, ' ');
    qToLittleEndian(bib, r.data());
    r.replace(91, 8, startTime.toByteArray());
    return r;
}

} // namespace

class TstRaceFiles : public QObject
{
    Q_OBJECT

private slots:
    void exportFiles_data();
    void exportFiles();
    void guardadoNotice();
    void exportWithoutFolder_data();
    void exportWithoutFolder();
    void startTimesAfterF1_data();
    void startTimesAfterF1();
    void f1WithoutFolder();
    void importStartOrder_data();
    void importStartOrder();
    void importDialogRequest();
    void importAbsurdSize();
    void readingsDatabase();
};

void TstRaceFiles::exportFiles_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("opp2");
    QTest::addColumn<QStringList>("list1");
    QTest::addColumn<QStringList>("combo1");
    QTest::addColumn<QStringList>("files"); // in the order of allFiles

    // The split lines carry other hours than the results lines, so the source of a time shows.
    const QStringList segundos = {"   1-   7- 00:12:34 - 0:00:00", "   2-  12- 00:12:40 - 0:00:06",
                                  "   3- 345- 00:13:01 - 0:00:27"};
    const QStringList segundosSplits = {"   1- 01:12:34 - 0:00:00", "   2- 01:12:40 - 0:00:06",
                                        "   3- 01:13:01 - 0:00:27"};
    const QStringList milesimas = {"   1-   7- 00:12:34:567 - 0:00:00:000",
                                   "   2-  12- 00:12:40:012 - 0:00:05:445"};
    const QStringList milesimasSplits = {"   1- 01:12:34:567 - 0:00:00:000",
                                         "   2- 01:12:40:012 - 0:00:05:445"};
    const QString bibs = "   7\r\n  12\r\n 345\r\n";
    const QString bibsAndTimes = "   7,00:12:34\r\n  12,00:12:40\r\n 345,00:13:01\r\n";

    QTest::newRow("bibs and times, Segundos")
        << 0 << true << segundos << segundosSplits
        << QStringList{bibsAndTimes, bibs, bibs, bibsAndTimes};
    // A results line cut short gives a shorter time, nothing padded.
    QTest::newRow("bibs and times, Milesimas, short line")
        << 2 << true << QStringList{milesimas[0], milesimas[1], "   3-  99- 00:13"}
        << milesimasSplits + QStringList{"   3- 01:13:01:999 - 0:00:27:432"}
        << QStringList{"   7,00:12:34:567\r\n  12,00:12:40:012\r\n  99,00:13\r\n",
                       "   7\r\n  12\r\n  99\r\n", "   7\r\n  12\r\n  99\r\n",
                       "   7,00:12:34:567\r\n  12,00:12:40:012\r\n  99,00:13\r\n"};
    // Without bib capture the one file, named dorsales, holds the split times.
    QTest::newRow("single file, Segundos")
        << 0 << false << segundos << segundosSplits
        << QStringList{"<missing>", "01:12:34\r\n01:12:40\r\n01:13:01\r\n", "<missing>",
                       "<missing>"};
    QTest::newRow("single file, Milesimas")
        << 2 << false << milesimas << milesimasSplits
        << QStringList{"<missing>", "01:12:34:567\r\n01:12:40:012\r\n", "<missing>", "<missing>"};
    QTest::newRow("bibs and times, empty race")
        << 1 << true << QStringList() << QStringList() << QStringList{"", "", "", ""};
    QTest::newRow("single file, empty race")
        << 1 << false << QStringList() << QStringList()
        << QStringList{"<missing>", "", "<missing>", "<missing>"};
}

void TstRaceFiles::exportFiles()
{
    QFETCH(int, format);
    QFETCH(bool, opp2);
    QFETCH(QStringList, list1);
    QFETCH(QStringList, combo1);
    QFETCH(QStringList, files);

    FormFixture f;
    f.makeResultsFolder();
    writeRace(f, format, opp2 ? 1 : 0, list1, combo1);
    f.open();
    // Start-up applies the saved format and mode to the check marks the files read.
    QCOMPARE(checkedFormat(f), format);
    QCOMPARE(f.action("opp2")->isChecked(), opp2);
    QCOMPARE(f.lines("List1"), list1);

    f.click("Command6");
    QCOMPARE(resultsFiles(f), files);
    QVERIFY(f.dialogs.shown.isEmpty());

    // A second export replaces the files whole.
    f.list("List1")->clear();
    f.click("Command6");
    for (int i = 0; i < allFiles.size(); ++i) {
        if (files[i] != "<missing>")
            QCOMPARE(f.readFile(resultsFolder + allFiles[i]), QByteArray());
    }
}

void TstRaceFiles::guardadoNotice()
{
    FormFixture f;
    f.makeResultsFolder();
    f.open();
    auto* frame = f.child<QGroupBox>("Frame3");
    QCOMPARE(f.label("Label17")->text(), QStringLiteral("GUARDADO"));
    QVERIFY(frame->isHidden());

    f.click("Command6");
    // The click has returned and the notice is still up, for about a second.
    QVERIFY(!frame->isHidden());
    QTimer* timer = guardadoTimer(f);
    QVERIFY(timer && timer->isActive());
    QMetaObject::invokeMethod(timer, "timeout");
    QVERIFY(frame->isHidden());
}

void TstRaceFiles::exportWithoutFolder_data()
{
    QTest::addColumn<bool>("opp2");
    QTest::newRow("bibs and times") << true;
    QTest::newRow("single file") << false;
}

void TstRaceFiles::exportWithoutFolder()
{
    QFETCH(bool, opp2);
    FormFixture f;
    writeRace(f, 0, opp2 ? 1 : 0, {"   1-   7- 00:12:34 - 0:00:00"}, {"   1- 00:12:34 - 0:00:00"});
    f.open();
    QCOMPARE(checkedFormat(f), 0);
    QCOMPARE(f.action("opp2")->isChecked(), opp2);

    f.click("Command6");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("warn"));
    QVERIFY(!f.dialogs.shown[0].title.isEmpty());
    const QString folder = QDir::toNativeSeparators(f.path("C/Carreras/copias"));
    QVERIFY2(f.dialogs.shown[0].text.contains(folder), qPrintable(f.dialogs.shown[0].text));
    // Nothing is made, the notice does not claim a save, and the race is untouched.
    QVERIFY(!QFileInfo::exists(f.path("C/Carreras")));
    QVERIFY(f.child<QGroupBox>("Frame3")->isHidden());
    QCOMPARE(f.lines("List1").size(), 1);
}

void TstRaceFiles::startTimesAfterF1_data()
{
    QTest::addColumn<bool>("opp2");
    QTest::addColumn<QByteArray>("afterFirst");
    QTest::addColumn<QByteArray>("afterSecond");
    // Start at 10:00:00; finishes at 12.5 s with bib 7 and at 75.25 s with bib 345.
    QTest::newRow("bibs and times") << true << QByteArray("   7,00:00:12:500\r\n")
                                    << QByteArray("   7,00:00:12:500\r\n 345,00:01:15:250\r\n");
    QTest::newRow("Lap mode") << false << QByteArray() << QByteArray();
}

void TstRaceFiles::startTimesAfterF1()
{
    QFETCH(bool, opp2);
    QFETCH(QByteArray, afterFirst);
    QFETCH(QByteArray, afterSecond);

    FormFixture f;
    f.makeResultsFolder();
    // A stale file from an earlier race is replaced at the first finish.
    f.writeFile(resultsFolder + "TiemposSalida.txt", "  99,01:00:00:000\r\n");
    writeRace(f, 2, opp2 ? 1 : 0, {}, {});
    f.open();
    QCOMPARE(checkedFormat(f), 2);
    QCOMPARE(f.action("opp2")->isChecked(), opp2);
    auto* text1 = f.child<QLineEdit>("Text1");

    f.click("Command1(0)");
    f.clock.advance(12.5);
    text1->setText("7");
    f.pressF(1);
    QCOMPARE(f.lines("List1").size(), 1);
    QCOMPARE(f.readFile(resultsFolder + "TiemposSalida.txt"), afterFirst);
    QCOMPARE(text1->text(), QString());

    f.clock.advance(62.75);
    text1->setText("345");
    f.pressF(3);
    QCOMPARE(f.lines("List1").size(), 2);
    QCOMPARE(f.readFile(resultsFolder + "TiemposSalida.txt"), afterSecond);
    // Only the start-times file is written by F1 and F3.
    QCOMPARE(QDir(f.path(resultsFolder)).entryList(QDir::Files), QStringList{"TiemposSalida.txt"});
    QVERIFY(f.label("aviso")->isHidden());
}

void TstRaceFiles::f1WithoutFolder()
{
    FormFixture f;
    writeRace(f, 2, 1, {}, {});
    f.open();
    QCOMPARE(checkedFormat(f), 2);
    QCOMPARE(f.action("opp2")->isChecked(), true);
    f.click("Command1(0)");
    f.clock.advance(3);
    f.child<QLineEdit>("Text1")->setText("21");
    f.pressF(1);

    // The finish is recorded; the failure is a notice, not a box the timekeeper must click.
    QCOMPARE(f.lines("List1").size(), 1);
    QCOMPARE(f.lines("List1")[0].mid(5, 4), QStringLiteral("  21"));
    QVERIFY(f.dialogs.shown.isEmpty());
    QLabel* aviso = f.label("aviso");
    QVERIFY(!aviso->isHidden());
    QVERIFY2(aviso->text().contains(QDir::toNativeSeparators(f.path("C/Carreras/copias"))),
             qPrintable(aviso->text()));
    QVERIFY(!QFileInfo::exists(f.path("C/Carreras")));

    // The next finish is taken as well.
    f.pressF(3);
    QCOMPARE(f.lines("List1").size(), 2);
}

void TstRaceFiles::importStartOrder_data()
{
    QTest::addColumn<QList<QByteArray>>("contents"); // one file per dialog answer
    QTest::addColumn<QStringList>("answers");        // "" cancels; "*" names a missing file
    QTest::addColumn<QStringList>("expected");

    const QByteArray three = record(12345, "00:10:00") + record(-5, "00:10:15") +
                             record(27, "00:10:30") + QByteArray(50, 'x');
    const QStringList threeLines = {"   1-2345 - 0:10:00", "   2-  -5 - 0:10:15",
                                    "   3-  27 - 0:10:30"};

    QTest::newRow("three records and a partial one")
        << QList<QByteArray>{three} << QStringList{"a.ent"} << threeLines;
    QTest::newRow("same file twice") << QList<QByteArray>{three, three}
                                     << QStringList{"a.ent", "a.ent"} << threeLines + threeLines;
    QTest::newRow("empty file after a start order")
        << QList<QByteArray>{three, {}} << QStringList{"a.ent", "b.ent"} << threeLines;
    QTest::newRow("cancel") << QList<QByteArray>{} << QStringList{""} << QStringList{};
    QTest::newRow("missing file") << QList<QByteArray>{} << QStringList{"*"} << QStringList{};
    // Any bytes make lines: the time field's last 7 characters, whatever they are.
    QTest::newRow("garbage") << QList<QByteArray>{QByteArray(99, '\xff') + QByteArray(98, '\0')}
                             << QStringList{"a.ent"}
                             << QStringList{"   1-  -1 - " + QString(7, QChar(0xFF))};
}

void TstRaceFiles::importStartOrder()
{
    QFETCH(QList<QByteArray>, contents);
    QFETCH(QStringList, answers);
    QFETCH(QStringList, expected);

    FormFixture f;
    f.open();
    for (qsizetype i = 0; i < answers.size(); ++i) {
        QString answer = answers[i];
        if (answer == "*")
            answer = f.path("nada.ent");
        else if (!answer.isEmpty()) {
            f.writeFile(answer, contents[i]);
            answer = f.path(answer);
        }
        f.dialogs.files = {answer};
        f.click("Command7");
    }

    QCOMPARE(f.lines("List2"), expected);
    // Only the file dialog was shown: a failed import says nothing.
    QCOMPARE(f.dialogs.shown.size(), answers.size());
    for (const auto& shown : f.dialogs.shown)
        QCOMPARE(shown.kind, QStringLiteral("open"));
    QVERIFY(!f.dialogs.unexpected);
}

void TstRaceFiles::importDialogRequest()
{
    FormFixture f;
    f.open();
    f.dialogs.files = {""};
    f.click("Command7");
    const FileRequest& asked = f.dialogs.lastRequest;
    QCOMPARE(asked.title, QStringLiteral("Cargar un fichero que contenga (dorsal,tiempo) y lo "
                                         "adjudicara a tiempo de salida"));
    QCOMPARE(asked.defaultSuffix, QStringLiteral("ENT"));
    QVERIFY(asked.filter.startsWith(QStringLiteral("Ficheros de Entrada-ent")));
    // c: is the folder that stands for drive C.
    QCOMPARE(asked.proposedName, QDir(f.path("C")).filePath("cri.ent"));

    // The filter, shown by Qt's own dialog, lists the start-order files.
    f.writeFile("C/cri.ent", record(1, "00:00:00"));
    QFileDialog dialog(nullptr, asked.title);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilter(asked.filter);
    dialog.setDirectory(f.path("C"));
    dialog.show();
    auto* view = dialog.findChild<QListView*>(QStringLiteral("listView"));
    QVERIFY(view);
    QTRY_COMPARE(view->model()->rowCount(view->rootIndex()), 1);
    QCOMPARE(view->model()->index(0, 0, view->rootIndex()).data().toString(),
             QStringLiteral("cri.ent"));
}

void TstRaceFiles::importAbsurdSize()
{
    // A sparse file of 4 GiB: the window takes the first records and stays usable.
    FormFixture f;
    f.open();
    QFile big(f.path("grande.ent"));
    QVERIFY(big.open(QIODevice::WriteOnly));
    if (!big.resize(qint64(4) << 30))
        QSKIP("this file system cannot hold a sparse file of 4 GiB");
    big.close();
    f.dialogs.files = {big.fileName()};
    f.click("Command7");
    const QStringList lines = f.lines("List2");
    QCOMPARE(lines.size(), startorder::maxRecords);
    QCOMPARE(lines.first(), QStringLiteral("   1-   0 - ") + QString(7, QChar(0)));
}

void TstRaceFiles::readingsDatabase()
{
    FormFixture f;
    f.open();
    // No database beside the program: the link stays closed and says why.
    const QString error = f.form().conectarLecturas();
    QVERIFY(!error.isEmpty());
    QVERIFY2(error.contains("feltrasRFID.mdb") || error == "Enlace ODBC no disponible",
             qPrintable(error));
    auto* adodc = f.child<AdoDataControl>("Adodc1");
    QVERIFY(adodc->connectionString.isEmpty());
    QVERIFY(adodc->recordSource.isEmpty());

    // The companion's database in its place, relative to the current folder.
    const QString sample = QDir(qEnvironmentVariable("MARVOLENDO_TEST_DATA"))
                               .filePath(QStringLiteral("DateTestDatabase.mdb"));
    if (qEnvironmentVariableIsEmpty("MARVOLENDO_TEST_DATA") || !QFile::exists(sample) ||
        error == "Enlace ODBC no disponible")
        QSKIP("no ODBC or no sample database to open");
    const QString place = QStringLiteral("Program Files/Dolvane/Feltrasquino");
    QVERIFY(QDir().mkpath(f.path(place)));
    QVERIFY(QFile::copy(sample, f.path(place + "/feltrasRFID.mdb")));
    const QString opened = f.form().conectarLecturas();
    QVERIFY2(opened.isEmpty(), qPrintable(opened));
}

QTEST_MAIN(TstRaceFiles)
#include "tst_racefiles.moc"
