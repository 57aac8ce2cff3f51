// Files that cannot be written while a race runs: the operator is told, the race goes on.
#include "app/core/journal.h"
#include "support/formfixture.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>

#include <unistd.h>

class FaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void stateFileUnwritable_data();
    void stateFileUnwritable();
    void exportTargetIsAFolder();
    void fullDiskThenFreed();
};

void FaultsTest::stateFileUnwritable_data()
{
    QTest::addColumn<bool>("fallbackBlocked");
    QTest::newRow("the fallback takes it silently") << false;
    QTest::newRow("both unwritable: a notice, no box") << true;
}

void FaultsTest::stateFileUnwritable()
{
    QFETCH(bool, fallbackBlocked);
    FormFixture f;
    // As root permissions stop nothing: folders stand where the files should be.
    QDir(f.dir.path()).mkdir(QStringLiteral("MARVO.dat"));
    if (fallbackBlocked)
        QDir(f.dir.path()).mkpath(QStringLiteral("D/MARVO.dat"));
    f.open();
    f.click("Command1(0)"); // Start saves
    for (int i = 0; i < 3; ++i) {
        f.tick(2);
        f.pressF(1);
    }
    QLabel* notice = f.label("aviso");
    QCOMPARE(notice->isHidden(), !fallbackBlocked);
    if (fallbackBlocked)
        QVERIFY(notice->text().contains(QStringLiteral("No se pudo guardar la carrera")));
    else
        QVERIFY(f.readFile("D/MARVO.dat").contains("00:00:02:000"));
    QVERIFY(f.dialogs.shown.isEmpty()); // no box in the way of the timekeeper
    QCOMPARE(f.lines("List1").size(), 3);
    QCOMPARE(f.label("Label2")->text(), QStringLiteral("3"));
}

void FaultsTest::exportTargetIsAFolder()
{
    FormFixture f;
    const QString folder = f.makeResultsFolder();
    QDir(folder).mkdir(QStringLiteral("dorsales-Marvo.txt"));
    f.open();
    f.click("Command1(0)");
    f.tick(1);
    f.click("Command3");
    f.click("Command6");
    QCOMPARE(f.dialogs.shown.size(), 1);
    QCOMPARE(f.dialogs.shown[0].kind, QStringLiteral("warn"));
    QVERIFY(f.dialogs.shown[0].text.contains(QStringLiteral("Carreras/copias")));
    QCOMPARE(f.lines("List1").size(), 1);
}

void FaultsTest::fullDiskThenFreed()
{
    // The race's folder on a small tmpfs: 30 finishes, the disk fills, 60 more, the disk is
    // freed, 10 more, then a crash. The journal tells at once that it cannot be written, and
    // once there is room again it holds every finish.
    if (::geteuid() != 0)
        QSKIP("a full disk needs a tmpfs mount, which needs root");
    struct Mount {
        QString disk;
        ~Mount()
        {
            if (!disk.isEmpty())
                QProcess::execute(QStringLiteral("umount"), {QStringLiteral("-l"), disk});
        }
    } mount; // declared before the window, so unmounted after it is gone
    {
        FormFixture f;
        if (QProcess::execute(QStringLiteral("mount"),
                              {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                               QStringLiteral("size=256k"), QStringLiteral("tmpfs"),
                               f.dir.path()}) != 0)
            QSKIP("mounting a small tmpfs is not allowed here");
        mount.disk = f.dir.path();
        QDir::setCurrent(mount.disk); // into the mounted folder, not the one under it
        QDir(mount.disk).mkpath(QStringLiteral("D"));
        f.open();
        f.click("Command1(0)");
        const auto finishes = [&](int n) {
            for (int i = 0; i < n; ++i) {
                f.tick(0.5);
                f.pressF(1);
            }
        };
        finishes(30);
        QFile filler(f.path("relleno"));
        QVERIFY(filler.open(QIODevice::WriteOnly));
        while (filler.write(QByteArray(4096, 'x')) == 4096) {
        }
        filler.close();
        finishes(60); // more than what is left of the journal's last page
        QLabel* notice = f.label("avisoDiario");
        QVERIFY(!notice->isHidden());
        QVERIFY(notice->text().contains(QStringLiteral("diario")));
        QVERIFY(notice->geometry().top() > f.button("Command3")->geometry().bottom());
        QFile::remove(f.path("relleno"));
        QTRY_VERIFY_WITH_TIMEOUT(notice->isHidden(), 5000);
        finishes(10);
        QCOMPARE(f.lines("List1").size(), 100);
        const QStringList shown = f.lines("List1");
        f.close(); // no normal end
        QCOMPARE(journal::read(f.path("MARVO.jrn")).record.state.list1, shown);
    }
}

QTEST_MAIN(FaultsTest)
#include "tst_faults.moc"
