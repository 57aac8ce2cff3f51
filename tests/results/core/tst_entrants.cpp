// The entrants' CSV as spreadsheets save it: separators, encodings, quoted fields and the rows
// that cannot be loaded.
#include "results/core/entrants.h"

#include <QStringEncoder>
#include <QtTest>

namespace
{

// The text as a spreadsheet's "Texto Unicode" saves it: UTF-16 with its byte order mark.
QByteArray utf16(const QString& text, QStringEncoder::Encoding encoding)
{
    QStringEncoder encoder(encoding, QStringEncoder::Flag::WriteBom);
    return encoder.encode(text);
}

} // namespace

class EntrantsTest : public QObject
{
    Q_OBJECT

private slots:
    void reading_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("loaded");  // bib:name:club:category:start(ms), one per entrant
        QTest::addColumn<QString>("skipped"); // file lines
        QTest::addColumn<QString>("badStarts");
        QTest::addColumn<QString>("openQuotes"); // lines where a quote is never closed

        QTest::newRow("semicolons, UTF-8 with mark, accents in the headers")
            << QByteArray("\xEF\xBB\xBF"
                          "DORSAL;Nombre;Apellidos;Categoría;Salida\r\n"
                          "7;Ana;Núñez;Élite;0:01:30\r\n"
                          "12;Luis;Pérez;;\r\n")
            << "7:Ana Núñez::Élite:90000|12:Luis Pérez:::"
            << ""
            << ""
            << "";
        QTest::newRow("commas, Windows-1252, extra columns ignored")
            << QByteArray("Licencia,Dorsal,Club,Nombre\n"
                          "X1,3,C.D. Ca\xF1"
                          "ada,Mar\xED"
                          "a\n")
            << "3:María:C.D. Cañada::"
            << ""
            << ""
            << "";
        QTest::newRow("tabs, quoted separators, doubled quotes and a line break")
            << QByteArray("dorsal\tnombre\tclub\n"
                          "1\t\"Eva \"\"la Rápida\"\"\"\t\"Club\tuno\"\n"
                          "2\t\"Dos\nlíneas\"\tx\n"
                          "oops\tz\tz\n")
            << "1:Eva \"la Rápida\":Club\tuno::|2:Dos\nlíneas:x::"
            << "5"
            << ""
            << "";
        QTest::newRow("bad bibs: missing, not a number, zero, too large, repeated; blank lines")
            << QByteArray("dorsal;nombre\n"
                          ";a\n"
                          "12a;b\n"
                          "\n"
                          "0;c\n"
                          "10000;d\n"
                          " 8 ;e\n"
                          "8;f\n"
                          "-3;g\n")
            << "8:e:::"
            << "2,3,5,6,8,9"
            << ""
            << "";
        QTest::newRow("start times: h:mm:ss, mm:ss, a fraction; unreadable ones kept without")
            << QByteArray("dorsal;salida\n"
                          "1;1:00:00\n"
                          "2;02:30\n"
                          "3;0:00:10,5\n"
                          "4;10h\n"
                          "5;0:61:00\n")
            << "1::::3600000|2::::150000|3::::10500|4::::|5::::"
            << ""
            << "5,6"
            << "";
        QTest::newRow("UTF-16 little-endian with its mark, tabs (Texto Unicode)")
            << utf16(QStringLiteral("Dorsal\tNombre\tClub\r\n4\tÁngel\tPeña Ñ\r\n"),
                     QStringEncoder::Utf16LE)
            << "4:Ángel:Peña Ñ::"
            << ""
            << ""
            << "";
        QTest::newRow("UTF-16 big-endian with its mark")
            << utf16(QStringLiteral("dorsal;categoría\n8;Máster 40\n"), QStringEncoder::Utf16BE)
            << "8:::Máster 40:"
            << ""
            << ""
            << "";
        QTest::newRow("a quote never closed ends with its line; the rows after it still load")
            << QByteArray("dorsal;nombre\n"
                          "1;\"Ana\n"
                          "2;Luis\n"
                          "3;Eva\n")
            << "1:Ana:::|2:Luis:::|3:Eva:::"
            << ""
            << ""
            << "2";
        QTest::newRow("a quote left open is not closed by a quote lines later")
            << QByteArray("dorsal;nombre;club\n"
                          "1;\"Ana;C.A. Uno\n"
                          "2;Luis;\"\"\"Los\"\" de siempre\"\n"
                          "3;Eva;Tres\n")
            << "1:Ana;C.A. Uno:::|2:Luis:\"Los\" de siempre::|3:Eva:Tres::"
            << ""
            << ""
            << "2";
    }

    void reading()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, loaded);
        QFETCH(QString, skipped);
        QFETCH(QString, badStarts);
        QFETCH(QString, openQuotes);

        const entrants::Loaded got = entrants::read(bytes);
        QVERIFY2(got.refusal.isEmpty(), qPrintable(got.refusal));
        QStringList entries;
        for (const entrants::Entrant& e : got.entrants)
            entries << QStringLiteral("%1:%2:%3:%4:%5")
                           .arg(e.bib)
                           .arg(e.fullName(), e.club, e.categoria,
                                e.salidaMs ? QString::number(*e.salidaMs) : QString());
        QCOMPARE(entries.join(u'|'), loaded);
        const auto join = [](const QList<int>& lines) {
            QStringList l;
            for (const int n : lines)
                l << QString::number(n);
            return l.join(u',');
        };
        QCOMPARE(join(got.skippedLines), skipped);
        QCOMPARE(join(got.badStartLines), badStarts);
        QCOMPARE(join(got.openQuoteLines), openQuotes);
    }

    void refusals()
    {
        QVERIFY(!entrants::read("nombre;club\nAna;X\n").refusal.isEmpty());
        QVERIFY(!entrants::read("").refusal.isEmpty());
        QByteArray huge("dorsal\n");
        huge.append(entrants::maxFileBytes, '1');
        const entrants::Loaded tooLarge = entrants::read(huge);
        QVERIFY(tooLarge.refusal.contains(QStringLiteral("20 MB")));
        QVERIFY(tooLarge.entrants.isEmpty());
    }

    void skippedMessage()
    {
        entrants::Loaded loaded;
        for (int line = 2; line < 27; ++line)
            loaded.skippedLines << line;
        const QString message = entrants::skippedMessage(loaded);
        QVERIFY2(
            message.contains(QStringLiteral("(líneas 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, "
                                            "15, 16, 17, 18, 19, 20, 21 y 5 más)")),
            qPrintable(message));
        QVERIFY(entrants::skippedMessage({}).isEmpty());

        entrants::Loaded quoted;
        quoted.openQuoteLines << 14;
        QCOMPARE(entrants::skippedMessage(quoted),
                 QStringLiteral("Unas comillas se abren y no se cierran (línea 14): esa fila se "
                                "ha leído hasta el final de su línea. Revísela en la hoja de "
                                "cálculo."));
    }
};

QTEST_APPLESS_MAIN(EntrantsTest)
#include "tst_entrants.moc"
