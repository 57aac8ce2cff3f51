// resultados.html in a real browser (Debian's chromium, headless): on a phone 390 px wide the
// place, bib, name and time of every row are on its first line with nothing to swipe sideways,
// the other cells below them, and the index reaches every classification; on a desktop the
// rows are plain table rows.
#include "results/core/classification.h"
#include "results/core/resultsreport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

// Measures the page in two frames, a phone's and a desktop's, and writes what it found into
// the document, which chromium prints once the page has loaded.
constexpr char measure[] = R"(
<script>
function check(frame, phone) {
  const w = frame.contentWindow, d = frame.contentDocument;
  const out = {width: w.innerWidth, scroll: d.documentElement.scrollWidth, rows: 0, details: 0,
               links: 0, targets: 0, bad: []};
  for (const a of d.querySelectorAll('nav a')) {
    out.links++;
    if (d.getElementById(a.getAttribute('href').slice(1))) out.targets++;
  }
  for (const tr of d.querySelectorAll('tbody tr')) {
    out.rows++;
    // Place, bib, name and time, found by their headers.
    const header = [...tr.closest('table').querySelectorAll('th')].map(th => th.textContent);
    const cells = [...tr.cells];
    const main = cells.filter((c, i) => i < 2 || ['Nombre', 'Tiempo', 'Tiempo neto'].includes(header[i]));
    const top = main[0].getBoundingClientRect().top;
    for (const c of (phone ? main : cells).filter(c => c.textContent)) {
      const r = c.getBoundingClientRect();
      if (r.width <= 0 || r.left < 0 || r.right > w.innerWidth + 0.5 || Math.abs(r.top - top) > 2)
        out.bad.push(out.rows + ':' + c.textContent + ':' + Math.round(r.left) + '-' +
                     Math.round(r.right) + '@' + Math.round(r.top - top));
    }
    if (!phone) continue;
    for (const c of cells.filter(c => !main.includes(c) && c.textContent)) {
      out.details++;
      const r = c.getBoundingClientRect();
      if (r.width <= 0 || r.left < 0 || r.right > w.innerWidth + 0.5 || r.top <= top + 2)
        out.bad.push(out.rows + ' detail ' + c.textContent);
    }
  }
  return out;
}
window.onload = () => {
  document.getElementById('out').textContent = JSON.stringify(
      {phone: check(document.getElementById('phone'), true),
       desktop: check(document.getElementById('desktop'), false)});
};
</script>
)";

entrants::Entrant entrant(int bib, const QString& name, const QString& club,
                          const QString& category, qint64 start)
{
    entrants::Entrant e;
    e.bib = bib;
    e.nombre = name;
    e.apellidos = QStringLiteral("Fernández de Retana Ruiz de Gauna");
    e.club = club;
    e.categoria = category;
    e.salidaMs = start;
    return e;
}

} // namespace

class ResultsPageTest : public QObject
{
    Q_OBJECT

private slots:
    void onAPhoneAndADesktop()
    {
        const QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
        if (chromium.isEmpty())
            QSKIP("chromium is not installed (scripts/setup.sh installs it)");

        // A time trial in Milesimas with long names and clubs, up to five-digit places and
        // four-digit bibs: the widest rows a race gives.
        QList<entrants::Entrant> entered;
        QStringList list1;
        const QStringList categories{QStringLiteral("Máster 40 M"), QStringLiteral("Sénior F"),
                                     QStringLiteral("Sub-23")};
        for (int i = 0; i < 30; ++i) {
            const int bib = 9970 + i;
            entered << entrant(bib,
                               i % 2 ? QStringLiteral("María del Carmen") : QStringLiteral("Íñigo"),
                               i % 3 ? QStringLiteral("Sociedad Deportiva Recreativa Valle del "
                                                      "Najerilla")
                                     : QString(),
                               categories[i % 3], 3600000 + i * 30000);
            list1 << QStringLiteral("%1-%2- 10:%3:%4:%5 - 0:00:00:000")
                         .arg(i + 1, 4)
                         .arg(bib, 4)
                         .arg(10 + i, 2)
                         .arg(i, 2, 10, QLatin1Char('0'))
                         .arg(987 - i, 3);
        }
        list1 << QStringLiteral("  31-   0- 10:59:00:000 - 0:00:00:000");
        const classification::Results results = classification::classify(list1, entered, {});
        const QByteArray page = resultsreport::html(resultsreport::report(
            results, entered, 3, QStringLiteral("Carrera Popular de Logroño 2026 – 10 km"),
            QDate(2026, 11, 23)));
        // Self-contained: nothing to fetch.
        QVERIFY(!page.contains("http") && !page.contains("src=") && !page.contains("url(") &&
                !page.contains("<link"));

        QTemporaryDir dir;
        const QString wrapper = dir.filePath(QStringLiteral("medir.html"));
        QFile file(wrapper);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray inner = QString::fromUtf8(page).toHtmlEscaped().toUtf8();
        file.write("<!DOCTYPE html><html><head><meta charset=\"utf-8\"/></head>"
                   "<body style=\"margin:0\"><iframe id=\"phone\" style=\"width:390px;"
                   "height:844px;border:0\" srcdoc=\"" +
                   inner +
                   "\"></iframe><iframe id=\"desktop\" style=\"width:1280px;height:800px;"
                   "border:0\" srcdoc=\"" +
                   inner + "\"></iframe><pre id=\"out\"></pre>" + measure + "</body></html>");
        file.close();

        QProcess browser;
        browser.start(chromium,
                      {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"),
                       QStringLiteral("--disable-gpu"),
                       QStringLiteral("--user-data-dir=") + dir.filePath("perfil"),
                       QStringLiteral("--window-size=1400,1000"),
                       QStringLiteral("--virtual-time-budget=5000"), QStringLiteral("--dump-dom"),
                       QUrl::fromLocalFile(wrapper).toString()});
        QVERIFY(browser.waitForFinished(120000));
        const QString dom = QString::fromUtf8(browser.readAllStandardOutput());
        const QRegularExpressionMatch found =
            QRegularExpression(QStringLiteral("<pre id=\"out\">([^<]*)</pre>")).match(dom);
        QVERIFY2(found.hasMatch() && !found.captured(1).isEmpty(),
                 qPrintable(browser.readAllStandardError().right(2000)));
        const QJsonObject measured =
            QJsonDocument::fromJson(
                found.captured(1).replace(QStringLiteral("&quot;"), "\"").toUtf8())
                .object();
        const QJsonObject phone = measured[QStringLiteral("phone")].toObject();
        const QJsonObject desktop = measured[QStringLiteral("desktop")].toObject();

        // 30 ranked in the general and 30 in the categories, the unidentified apart.
        QCOMPARE(phone[QStringLiteral("width")].toInt(), 390);
        QCOMPARE(phone[QStringLiteral("rows")].toInt(), 61);
        QVERIFY2(phone[QStringLiteral("scroll")].toInt() <= 390,
                 qPrintable(QString::number(phone[QStringLiteral("scroll")].toInt())));
        QCOMPARE(phone[QStringLiteral("bad")].toArray(), QJsonArray());
        // Club, category, start and gap: below, and on the screen too.
        QVERIFY(phone[QStringLiteral("details")].toInt() > 60);
        // The general and each category in the index, every link to a table of the page.
        QCOMPARE(phone[QStringLiteral("links")].toInt(), 4);
        QCOMPARE(phone[QStringLiteral("targets")].toInt(), 4);

        QCOMPARE(desktop[QStringLiteral("width")].toInt(), 1280);
        QVERIFY(desktop[QStringLiteral("scroll")].toInt() <= 1280);
        QCOMPARE(desktop[QStringLiteral("bad")].toArray(), QJsonArray());
    }
};

QTEST_APPLESS_MAIN(ResultsPageTest)
#include "tst_resultspage.moc"
