// From a spreadsheet of entrants to results people read, in the real window: the entrants
// load (bad rows reported), check the bibs, survive a restart and go with a clear; the
// printed results carry the race name, the date and the page on every page.
#include "app/core/statefile.h"
#include "support/formfixture.h"

#include <QLabel>
#include <QListWidget>
#include <QProcess>

namespace
{

QString pdfText(const QString& path)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    if (!p.waitForFinished(30000) || p.exitCode() != 0)
        return QStringLiteral("pdftotext failed: ") + p.readAllStandardError();
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class PublishingTest : public QObject
{
    Q_OBJECT

private slots:
    void entrantsToPrintedResults()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");
        FormFixture f;
        f.makeResultsFolder();
        // 120 finishers a second apart, then bib 0, a bib nobody entered and a repeat.
        RaceState s;
        s.formato = 2;
        s.modoCaptura = 1;
        const auto line = [](int rank, int bib, int second) {
            return QStringLiteral("%1-%2- 00:%3:%4:000 - 0:00:00:000")
                .arg(rank, 4)
                .arg(bib, 4)
                .arg(10 + second / 60, 2, 10, QLatin1Char('0'))
                .arg(second % 60, 2, 10, QLatin1Char('0'));
        };
        QByteArray csv = "Dorsal;Nombre;Apellidos;Club;Categoría\n";
        for (int i = 1; i <= 120; ++i) {
            s.list1 << line(i, i, i);
            csv += QStringLiteral("%1;Nombre%1;Apellido;Club %2;%3\n")
                       .arg(i)
                       .arg(i % 7)
                       .arg(i % 2 ? QStringLiteral("Sub-23") : QStringLiteral("Élite"))
                       .toUtf8();
        }
        s.list1 << line(121, 0, 130) << line(122, 500, 131) << line(123, 7, 132);
        csv += "x;sin dorsal;;;\n";
        s.combo1 = s.list1;
        f.writeFile("MARVO.dat", statefile::encode(s));
        f.writeFile("inscritos.csv", csv);
        f.open();

        f.dialogs.files << f.path("inscritos.csv");
        f.trigger("inscritos");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("inform"));
        QVERIFY(f.dialogs.shown.last().text.contains(QStringLiteral("Cargados 120 inscritos")));
        QVERIFY(f.dialogs.shown.last().text.contains(QStringLiteral("(líneas 122)")));
        QLabel* status = f.label("estadoDorsales");
        QCOMPARE(status->text(),
                 QStringLiteral("sin dorsal: 1   dorsales repetidos: 1   no inscritos: 1"));
        QVERIFY(f.list("List1")->item(121)->toolTip().contains(QStringLiteral("inscritos")));

        // The race name is asked once, and kept.
        f.dialogs.texts << QStringLiteral("Trail de Prueba");
        f.trigger("resultados");
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("Resultados guardados")));
        // The race's own folder in the results folder, by its date and name.
        const QString folder =
            f.path("C/Carreras/copias/") +
            QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) + " Trail de Prueba/";
        const QString text = pdfText(folder + "resultados.pdf");
        // Every page has the header: 120 + 120 rows and the tables apart fill five pages.
        const int pages = static_cast<int>(text.count(QStringLiteral("Trail de Prueba")));
        QVERIFY2(pages >= 4, qPrintable(text.left(400)));
        QCOMPARE(text.count(QStringLiteral(" de %1").arg(pages)), pages);
        QVERIFY(text.contains(QStringLiteral("Página %1 de %1").arg(pages)));
        QVERIFY(text.contains(QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy"))));
        QVERIFY(text.indexOf(QStringLiteral("Categoría Élite")) > text.indexOf("Categoría Sub-23"));
        QVERIFY(text.contains(QRegularExpression(
            QStringLiteral("1 +1 +Nombre1 Apellido +Club 1 +Sub-23 +0:10:01,000"))));
        QVERIFY(QFile::exists(folder + "resultados.csv") &&
                QFile::exists(folder + "resultados.html"));

        // A restart keeps the entrants and the name: nothing is asked again.
        f.click("Command5");
        f.close();
        f.open();
        QCOMPARE(f.label("estadoDorsales")->text(),
                 QStringLiteral("sin dorsal: 1   dorsales repetidos: 1   no inscritos: 1"));
        QDir(f.path("C/Carreras/copias/")).removeRecursively();
        f.trigger("resultados");
        QVERIFY(!f.dialogs.unexpected);
        // A missing results folder: the notice says so, and the race goes on untouched.
        QTRY_VERIFY(f.label("aviso")->text().contains(QStringLiteral("No se pudieron guardar")));
        QCOMPARE(f.lines("List1").size(), 123);

        // Clearing the race empties the entrants too; with nothing recorded it still asks first.
        f.dialogs.answers << Dialogs::Ok;
        f.click("Command4");
        QVERIFY(!QFile::exists(f.path("MARVO-inscritos.csv")));
        f.dialogs.files << f.path("inscritos.csv");
        f.trigger("inscritos");
        f.dialogs.answers << Dialogs::Cancel;
        f.click("Command4");
        QCOMPARE(f.dialogs.shown.last().kind, QStringLiteral("confirm"));
        QVERIFY(QFile::exists(f.path("MARVO-inscritos.csv")));
    }
};

QTEST_MAIN(PublishingTest)
#include "tst_publishing.moc"
