// A race that ends badly: a crash, a refused recovery, a stopped clock, files that cannot be
// written. The operator is told and the race goes on; nothing recorded is lost. (The real
// program killed, closed and run on a full disk: e2e/*_recovery.sh.)
#include "app/core/archive.h"
#include "app/core/journal.h"
#include "support/formfixture.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

#include <csignal>
#include <sys/resource.h>

namespace
{

// The race as the window shows it: both lists, then the rank and the results labels.
QStringList shown(FormFixture& f)
{
    QStringList out = f.lines("List1") + f.comboLines();
    for (const char* l : {"Label2", "Label4", "Label5", "Label8"})
        out << f.label(l)->text();
    return out;
}

// A running race with five finishes by every key, one of them corrected; the window is then
// dropped without a normal end.
QStringList raceAndCrash(FormFixture& f)
{
    f.open();
    f.click("Command1(0)");
    for (int i = 0; i < 5; ++i) {
        f.tick(7.25 + i);
        i % 2 ? f.click("Command3") : f.pressF(i % 4 ? 3 : 1);
    }
    QListWidget* list = f.list("List1");
    const QPoint third = list->visualItemRect(list->item(2)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, third);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, third);
    f.type("Text2", "57\n");
    f.tick(0.5);
    const QStringList before = shown(f);
    f.close();
    return before;
}

// Files stop growing past `bytes` while it lives, as on a full disk: a write past it is
// refused (SIGXFSZ ignored).
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &normal);
        rlimit full = normal;
        full.rlim_cur = static_cast<rlim_t>(bytes);
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &normal); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit normal{};
};

} // namespace

class RecoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void crashRecoversEverything()
    {
        FormFixture f;
        const QStringList before = raceAndCrash(f);
        QVERIFY(before[2].startsWith(QStringLiteral("   3-  57-")));
        QVERIFY(!f.readFile("MARVO.dat").contains("   2-")); // only rank 1 was saved
        f.clock.advance(30);
        f.dialogs.answers = {Dialogs::Yes};
        f.open();
        QCOMPARE(f.dialogs.shown.size(), 1);
        QCOMPARE(f.dialogs.shown[0].title, QStringLiteral("Recuperar la carrera"));
        QCOMPARE(shown(f), before);
        QVERIFY(f.child<QTimer>("Timer1")->isActive());
        // The state file holds the recovered race, the next finish is rank 6, and a second
        // crash brings that one back too.
        QVERIFY(f.readFile("MARVO.dat").contains(before[4].toLatin1()));
        f.pressF(1);
        QVERIFY(f.lines("List1").last().startsWith(QStringLiteral("   6-")));
        f.close();
        f.dialogs.answers = {Dialogs::Yes};
        f.open();
        QCOMPARE(f.lines("List1").size(), 6);
    }

    void declinedRecoveryKeepsTheRaceAside()
    {
        FormFixture f;
        const QStringList before = raceAndCrash(f);
        f.dialogs.answers = {Dialogs::No};
        f.open();
        QVERIFY(f.lines("List1").isEmpty()); // the state file alone
        const QStringList aside =
            QDir(f.dir.path()).entryList({QStringLiteral("MARVO-*.jrn")}, QDir::Files);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(journal::read(f.path(aside[0])).record.state.list1, before.mid(0, 5));
        QCOMPARE(archive::list(f.path(QLatin1String(archive::folderName))).first().race.list1,
                 before.mid(0, 5));
        // Not offered again.
        f.close();
        f.open();
        QCOMPARE(f.dialogs.shown.size(), 1);
    }

    void stoppedClockComesBackStopped()
    {
        FormFixture f;
        f.open();
        f.click("Command1(0)");
        f.tick(65.5);
        f.click("Command3");
        f.click("Command1(1)");
        f.click("Command2(0)"); // 00:02:05
        f.close();
        f.dialogs.answers = {Dialogs::Yes};
        f.open();
        QVERIFY(!f.child<QTimer>("Timer1")->isActive());
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:02:05"));
        QCOMPARE(f.lines("List1").size(), 1);
        f.click("Command1(0)");
        f.tick(1);
        QCOMPARE(f.label("Label1")->text(), QStringLiteral("00:02:06"));
    }

    void unwritableJournalIsReported()
    {
        // A folder stands where the journal should be: it goes to the fallback folder, the
        // operator is told, and after a crash the race comes back from there.
        FormFixture f;
        QDir(f.dir.path()).mkdir(QStringLiteral("MARVO.jrn"));
        f.open();
        QLabel* notice = f.label("aviso");
        QVERIFY(!notice->isHidden());
        QVERIFY(notice->text().contains(QStringLiteral("diario")));
        QVERIFY(notice->geometry().top() > f.button("Command3")->geometry().bottom());
        f.click("Command1(0)");
        for (int i = 0; i < 3; ++i) {
            f.tick(1);
            f.click("Command3");
        }
        const QStringList before = f.lines("List1");
        f.close();
        f.dialogs.answers = {Dialogs::Yes};
        f.open();
        QCOMPARE(f.lines("List1"), before);
    }

    void journalRefusedThenWritableAgain()
    {
        // The file size limit stands in for a full disk: the journal's next entry is refused,
        // the notice stays up while it is, and goes once the journal is whole again. A folder
        // stands where the fallback journal would go.
        FormFixture f;
        QDir(f.path("D")).mkdir(QStringLiteral("MARVO.jrn"));
        f.open();
        f.click("Command1(0)");
        f.tick(1);
        f.pressF(1);
        QLabel* notice = f.label("avisoDiario");
        {
            const FileSizeLimit full(QFileInfo(f.path("MARVO.jrn")).size());
            f.tick(1);
            f.pressF(1);
            QVERIFY(!notice->isHidden() && notice->text().contains(QStringLiteral("diario")));
        }
        QTRY_VERIFY_WITH_TIMEOUT(notice->isHidden(), 5000);
        f.close();
        QCOMPARE(journal::read(f.path("MARVO.jrn")).record.state.list1.size(), 2);
    }

    void anUnreadableJournalIsKeptAside()
    {
        // Nothing of it can be read: no question, and it is kept aside, not written over.
        FormFixture f;
        const QByteArray garbage(4096, '\x7f');
        f.writeFile("MARVO.jrn", garbage);
        f.open();
        QVERIFY(f.dialogs.shown.isEmpty());
        const QStringList aside = QDir(f.dir.path()).entryList({QStringLiteral("MARVO-*.jrn")});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(f.readFile(aside.first()), garbage);
    }

    void unwritableStateFile()
    {
        // As root permissions stop nothing: folders stand where both state files should be.
        // A notice, no box in the way of the timekeeper, every finish taken.
        FormFixture f;
        QDir(f.dir.path()).mkpath(QStringLiteral("MARVO.dat"));
        QDir(f.dir.path()).mkpath(QStringLiteral("D/MARVO.dat"));
        f.open();
        f.click("Command1(0)"); // Start saves
        for (int i = 0; i < 3; ++i) {
            f.tick(2);
            f.pressF(1);
        }
        QVERIFY(f.label("aviso")->text().contains(QStringLiteral("No se pudo guardar la carrera")));
        QVERIFY(f.dialogs.shown.isEmpty());
        QCOMPARE(f.label("Label2")->text(), QStringLiteral("3"));
    }
};

QTEST_MAIN(RecoveryTest)
#include "tst_recovery.moc"
