#include "entry/core/entrada.h"

#include <QTest>

class EntradaTest : public QObject
{
    Q_OBJECT

private slots:
    // Keys are Windows-1252 codes typed one by one, with a fresh counter, into a field of the kind
    // bounded by 1 and 9999. "kept" is the text the field ends with when it applies what the filter
    // lets through: Backspace takes the last character away, an accepted Enter is kept as "\r".
    void keys_data()
    {
        QTest::addColumn<int>("tipo");
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QByteArray>("kept");
        QTest::addColumn<QString>("message"); // the range message shown, title and text
        QTest::addColumn<int>("espacios");    // the counter afterwards
        const auto row = [](const char* name, int tipo, const char* keys, const char* kept,
                            const char* message = "", int espacios = 0) {
            QTest::newRow(name) << tipo << QByteArray(keys) << QByteArray(kept)
                                << QString::fromLatin1(message) << espacios;
        };
        const char* high = "Valor demasiado alto: El valor no puede ser mayor que  9999";
        const char* low = "Valor demasiado bajo: El valor no puede ser menor que  1";

        row("1 letters, DOS codes", 1, "@Ab\bz5 [`{\xD1\xF1\xA5\xA4\x80\x87\r",
            "Az\xA5\xA4\x80\x87\r");
        row("2 printable and 209", 2, "\xD1\xD0\x1F \xAF\xB0\xDF\xE0\xFF~\b", "\xD1 \xAF\xE0\xFF");
        row("3 upper case", 3, "a7\xF1\x9A\xFF\xC8\xD1x\b", "A7\xD1\x8A\x9F");
        row("4 digits", 4, "/9.-:a12\b0\r", "910\r");
        row("4 below", 4, "0\r", "0", low);
        row("5 one point", 5, "-1.5.a2\b\r", "1.5\r");
        row("5 below", 5, ".5\r", ".5", low);
        row("5 above", 5, "9999.5\r", "9999.5", high);
        row("6 minus after one digit", 6, "5--3..7\r", "5-3.7\r");
        row("6 minus first, no lower bound", 6, "--12-\r", "-12\r");
        row("6 no minus after two", 6, "12-a:", "12");
        row("6 point first", 6, ".5.\b", ".");
        row("6 empty", 6, "\r", "\r");
        row("6 at max", 6, "9999\r", "9999\r");
        row("6 above", 6, "12345\r", "12345", high);
        row("7 proper case", 7, "JUAN PEREZ", "Juan Perez");
        // The second space uses the counter up: the letter after it stays lower case.
        row("7 two spaces", 7, "ana  maria", "Ana  maria");
        row("7 space pending", 7, "luis ", "Luis ", "", 1);
        row("7 not printable", 7, "\xF1\xD1\xBENx\b", "\xD1n");
        row("7 not checked", 7, "-99999\r", "-99999\r");
        for (const char* name : {"8", "9", "10", "11"})
            row(name, QByteArray(name).toInt(), "/0:;<.9\b12345678901234", "0:;12345678901234");
        row("0 every key", 0, "\x01\xC8z\b", "\x01\xC8");
        row("12 every key", 12, "99999\r\xDF-", "99999\r\xDF-");
    }

    void keys()
    {
        QFETCH(int, tipo);
        QFETCH(QByteArray, keys);
        QFETCH(QByteArray, kept);
        QFETCH(QString, message);
        QFETCH(int, espacios);

        EntradaState state;
        QByteArray text;
        QString shown;
        for (const char c : keys) {
            const EntradaResult r =
                entrada(state, static_cast<uchar>(c), tipo, QString::fromLatin1(text), 1, 9999);
            QCOMPARE(r.enter, r.keyAscii == 13);
            if (r.message != RangeMessage::None)
                shown = rangeMessageTitle(r.message) + ": " + rangeMessageText(r.message, r.bound);
            if (r.keyAscii == 8)
                text.chop(1);
            else if (r.keyAscii != 0)
                text += static_cast<char>(r.keyAscii);
        }
        QCOMPARE(text, kept);
        QCOMPARE(shown, message);
        QCOMPARE(state.espacios, espacios);
    }
};

QTEST_APPLESS_MAIN(EntradaTest)
#include "tst_entrada.moc"
