// resultados.pdf read back with poppler's pdftotext, word by word with their boxes: nothing is
// drawn over anything else (the date over a long race name, a wrapped name over the next row),
// no name or club is cut short, and the first page counts the finishes kept apart.
#include "results/core/classification.h"
#include "results/core/resultsreport.h"
#include "results/resultspdf.h"

#include <QProcess>
#include <QRectF>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace
{

struct Word {
    QString text;
    QRectF box;
};

// The words of each page, from pdftotext -bbox.
QList<QList<Word>> pageWords(const QByteArray& pdf)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("resultados.pdf")));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(pdf);
    file.close();
    QProcess p;
    p.start(QStringLiteral("pdftotext"),
            {QStringLiteral("-bbox"), file.fileName(), QStringLiteral("-")});
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        return {};
    const QString out = QString::fromUtf8(p.readAllStandardOutput());
    QList<QList<Word>> pages;
    static const QRegularExpression tag(
        QStringLiteral("<page |<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" "
                       "yMax=\"([\\d.]+)\">([^<]*)</word>"));
    for (QRegularExpressionMatchIterator it = tag.globalMatch(out); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        if (m.captured(0).startsWith(QStringLiteral("<page"))) {
            pages.append(QList<Word>());
            continue;
        }
        const QPointF from(m.captured(1).toDouble(), m.captured(2).toDouble());
        const QPointF to(m.captured(3).toDouble(), m.captured(4).toDouble());
        QString text = m.captured(5);
        text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
        if (!pages.isEmpty())
            pages.last().append(Word{text, QRectF(from, to)});
    }
    return pages;
}

} // namespace

class ResultsPdfTest : public QObject
{
    Q_OBJECT

private slots:
    void longNamesAndClubs()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");

        // A time trial in Milesimas: eight columns. Long names and clubs, short ones beside
        // them, and a rider who finished before his start.
        const QStringList clubs{
            QStringLiteral("Sociedad Deportiva Recreativa Valle del Najerilla"),
            QStringLiteral("C.D. Ochoa"), QString(),
            QStringLiteral("Club Atletismo Rioja Trail Running Asociación Deportiva")};
        const QStringList names{QStringLiteral("María del Carmen"), QStringLiteral("Eva"),
                                QStringLiteral("Francisco Javier")};
        QList<entrants::Entrant> entered;
        QStringList list1;
        for (int i = 0; i < 70; ++i) {
            entrants::Entrant e;
            e.bib = 101 + i;
            e.nombre = names[i % 3];
            e.apellidos =
                i % 2 ? QStringLiteral("Fernández de Retana Ruiz de Gauna") : QStringLiteral("Gil");
            e.club = clubs[i % 4];
            e.categoria = i % 2 ? QStringLiteral("Máster 40 M") : QStringLiteral("Sénior F");
            e.salidaMs = i == 5 ? 3 * 3600000 : 60000 * i;
            entered << e;
            list1 << QStringLiteral("%1-%2- 01:%3:%4:%5 - 0:00:00:000")
                         .arg(i + 1, 4)
                         .arg(e.bib, 4)
                         .arg(10 + i / 2, 2)
                         .arg(i % 60, 2, 10, QLatin1Char('0'))
                         .arg(i * 7, 3, 10, QLatin1Char('0'));
        }
        const QString race = QStringLiteral("Carrera Popular de Logroño 2026 – 10 km");
        const classification::Results results = classification::classify(list1, entered, {});
        const QList<QList<Word>> pages = pageWords(resultspdf::render(
            resultsreport::report(results, entered, 3, race, QDate(2026, 11, 23))));
        QVERIFY(pages.size() >= 2);

        QStringList overlaps;
        for (qsizetype p = 0; p < pages.size(); ++p) {
            const QList<Word>& words = pages[p];
            for (qsizetype a = 0; a < words.size(); ++a)
                for (qsizetype b = a + 1; b < words.size(); ++b)
                    if (words[a].box.adjusted(0.3, 0.3, -0.3, -0.3).intersects(words[b].box))
                        overlaps << QStringLiteral("page %1: «%2» over «%3»")
                                        .arg(p + 1)
                                        .arg(words[a].text, words[b].text);
        }
        QVERIFY2(overlaps.isEmpty(), qPrintable(overlaps.mid(0, 10).join(u'\n')));

        QString text;
        for (const QList<Word>& words : pages)
            for (const Word& w : words)
                text += w.text + u' ';
        QVERIFY2(!text.contains(u'…'), qPrintable(text.left(3000)));
        // Every word of the clubs and names is on the pages.
        for (const QString& club : clubs + names)
            for (const QString& word : club.split(u' ', Qt::SkipEmptyParts))
                QVERIFY2(text.contains(word + u' '), qPrintable(word));

        // The whole race name on every page, the date below it.
        for (const QList<Word>& words : pages) {
            qreal nameBottom = 0;
            for (const QString& part : race.split(u' ')) {
                const auto it = std::find_if(words.begin(), words.end(),
                                             [&](const Word& w) { return w.text == part; });
                QVERIFY2(it != words.end(), qPrintable(part));
                nameBottom = std::max(nameBottom, it->box.bottom());
            }
            const auto date = std::find_if(words.begin(), words.end(), [](const Word& w) {
                return w.text == QStringLiteral("23/11/2026");
            });
            QVERIFY(date != words.end());
            QVERIFY(date->box.top() >= nameBottom);
        }

        // The first page counts what is kept apart.
        QString first;
        for (const Word& w : pages.first())
            first += w.text + u' ';
        QVERIFY2(first.contains(QStringLiteral("Llegada antes de su salida: 1 ")),
                 qPrintable(first.left(600)));
    }
};

QTEST_MAIN(ResultsPdfTest)
#include "tst_resultspdf.moc"
