// The race files through the window: TiemposSalida.txt after F1/F3 and the export button in both
// capture modes, a missing results folder, the start-order import through the file dialog.
#include "support/formfixture.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QtEndian>

const QString folder = QStringLiteral("C/Carreras/copias/");

// Opens the window on a stopped, empty race in Milesimas and the given capture mode, starts the
// clock at 10:00:00 and takes finishes by F1 at 12.5 s with bib 7, by F3 at 75.25 s with 345.
static void twoFinishes(FormFixture& f, bool opp2,
                        const std::optional<QByteArray>& salidaAfterFirst = {})
{
    RaceState race;
    race.formato = 2; // Milesimas
    race.modoCaptura = opp2 ? 1 : 0;
    f.open(race);
    auto* text1 = f.child<QLineEdit>("Text1");
    f.click("Command1(0)");
    f.clock.advance(12.5);
    text1->setText("7");
    f.pressF(1);
    // The file is written away from the window: the test waits for it.
    if (salidaAfterFirst)
        QTRY_COMPARE(f.readFile(folder + "TiemposSalida.txt"), *salidaAfterFirst);
    f.clock.advance(62.75);
    text1->setText("345");
    f.pressF(3);
    QVERIFY(text1->text().isEmpty()); // each key took the typed bib with its finish
}

// A start-order record.
static QByteArray record(qint16 bib, const char* startTime)
{
    const qint16 le = qToLittleEndian(bib);
    return QByteArray(reinterpret_cast<const char*>(&le), 2) + QByteArray(89, ' ') + startTime;
}

class RaceFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void finishesAndExport_data()
    {
        QTest::addColumn<bool>("opp2");
        QTest::addColumn<QByteArray>("salida");       // TiemposSalida.txt after the second finish
        QTest::addColumn<QList<QByteArray>>("files"); // after the export
        const QByteArray bibsAndTimes = "   7,00:00:12:500\r\n 345,00:01:15:250\r\n";
        const QByteArray bibs = "   7\r\n 345\r\n";
        QTest::newRow("bibs and times")
            << true << bibsAndTimes << QList<QByteArray>{bibs, bibsAndTimes, bibs, bibsAndTimes};
        // F1 and F3 empty TiemposSalida; the export writes the split times to the dorsales file.
        QTest::newRow("Lap mode") << false << QByteArray()
                                  << QList<QByteArray>{"00:00:12:500\r\n00:01:15:250\r\n",
                                                       "<missing>", "<missing>", ""};
    }

    void finishesAndExport()
    {
        QFETCH(bool, opp2);
        QFETCH(QByteArray, salida);
        QFETCH(QList<QByteArray>, files);
        FormFixture f;
        f.makeResultsFolder();
        // A stale file from an earlier race is replaced at the first finish.
        f.writeFile(folder + "TiemposSalida.txt", "  99,01:00:00:000\r\n");
        twoFinishes(f, opp2, salida.left(salida.indexOf('\n') + 1));
        QTRY_COMPARE(f.readFile(folder + "TiemposSalida.txt"), salida);
        QCOMPARE(QDir(f.path(folder)).entryList(QDir::Files), QStringList{"TiemposSalida.txt"});

        f.click("Command6");
        QList<QByteArray> written;
        for (const QString name : {"dorsales-Marvo.txt", "dorsales-Tiempos-Marvo.txt",
                                   "Tiempos-Marvo.txt", "TiemposSalida.txt"})
            written << (QFile::exists(f.path(folder + name)) ? f.readFile(folder + name)
                                                             : QByteArray("<missing>"));
        QCOMPARE(written, files);
        QVERIFY(f.dialogs.shown.isEmpty());
        QVERIFY(f.label("aviso")->isHidden());

        // The GUARDADO notice stays up after the click until its one-second timer hides it.
        auto* frame = f.child<QGroupBox>("Frame3");
        QVERIFY(!frame->isHidden());
        for (QTimer* t : f.form().findChildren<QTimer*>()) {
            if (t->isSingleShot() && t->isActive() && t->interval() == 1000)
                QMetaObject::invokeMethod(t, "timeout");
        }
        QVERIFY(frame->isHidden());
    }

    void missingFiles()
    {
        FormFixture f;
        twoFinishes(f, true);
        const QString where = QDir::toNativeSeparators(f.path("C/Carreras/copias"));
        // F1 and F3: both finishes recorded, the failure a notice and not a box to click.
        QCOMPARE(f.lines("List1").size(), 2);
        QVERIFY(f.dialogs.shown.isEmpty());
        QTRY_VERIFY2(!f.label("aviso")->isHidden() && f.label("aviso")->text().contains(where),
                     qPrintable(f.label("aviso")->text()));
        // The export button warns, and the notice does not claim a save.
        f.click("Command6");
        QCOMPARE(f.dialogs.shown.size(), 1);
        QVERIFY2(f.dialogs.shown[0].kind == "warn" && f.dialogs.shown[0].text.contains(where),
                 qPrintable(f.dialogs.shown[0].text));
        QVERIFY(f.child<QGroupBox>("Frame3")->isHidden());
        QVERIFY(!QFileInfo::exists(f.path("C/Carreras")));
    }

    void importStartOrder_data()
    {
        QTest::addColumn<QList<QByteArray>>("contents"); // one file per dialog answer
        QTest::addColumn<QStringList>("answers");        // files named in the dialog, "" cancels
        QTest::addColumn<QStringList>("expected");
        const QByteArray three = record(12345, "00:10:00") + record(-5, "00:10:15") +
                                 record(27, "00:10:30") + QByteArray(50, 'x');
        const QStringList lines = {"   1-2345 - 0:10:00", "   2-  -5 - 0:10:15",
                                   "   3-  27 - 0:10:30"};
        // Every import appends (a trailing part of a record is not read); an empty file adds
        // nothing.
        QTest::newRow("same file twice, an empty one between")
            << QList{three, QByteArray(), three} << QStringList{"a.ent", "b.ent", "a.ent"}
            << lines + lines;
        QTest::newRow("cancel, then a missing file")
            << QList<QByteArray>{} << QStringList{"", "nada.ent"} << QStringList{};
    }

    void importStartOrder()
    {
        QFETCH(QList<QByteArray>, contents);
        QFETCH(QStringList, answers);
        QFETCH(QStringList, expected);
        FormFixture f;
        f.open();
        for (qsizetype i = 0; i < answers.size(); ++i) {
            if (i < contents.size())
                f.writeFile(answers[i], contents[i]);
            f.dialogs.files << (answers[i].isEmpty() ? QString() : f.path(answers[i]));
            f.click("Command7");
        }
        QCOMPARE(f.lines("List2"), expected);
        // Only the file dialog was shown: a failed import says nothing.
        QCOMPARE(f.dialogs.shown.size(), answers.size());
        const FileRequest& asked = f.dialogs.lastRequest;
        QCOMPARE(asked.title, QStringLiteral("Cargar un fichero que contenga (dorsal,tiempo) y lo "
                                             "adjudicara a tiempo de salida"));
        QCOMPARE(asked.defaultSuffix, QStringLiteral("ENT"));
        QCOMPARE(asked.filter, QStringLiteral("Ficheros de Entrada-ent (*)"));
        QCOMPARE(asked.proposedName, QDir(f.path("C")).filePath("cri.ent")); // c:\cri.ent
    }
};

QTEST_MAIN(RaceFilesTest)
#include "tst_racefiles.moc"
