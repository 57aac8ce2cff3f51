#include "entry/core/entrada.h"

#include <QTest>

Q_DECLARE_METATYPE(RangeMessage)

class TstEntrada : public QObject
{
    Q_OBJECT

private slots:
    void singleKey_data();
    void singleKey();
    void properCaseCounter();
    void minusAfterOneDigit();
    void messageTexts();
};

void TstEntrada::singleKey_data()
{
    QTest::addColumn<int>("tipo");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("expectedKey");
    QTest::addColumn<bool>("expectedEnter");
    QTest::addColumn<RangeMessage>("message");
    QTest::addColumn<double>("bound");

    const auto none = RangeMessage::None;
    // Bounds of every row: 0 to 9999, as the bib fields set them.
    // Enter
    QTest::newRow("6 enter empty") << 6 << "" << 13 << 13 << true << none << 0.0;
    QTest::newRow("6 enter negative") << 6 << "-12" << 13 << 13 << true << none << 0.0;
    QTest::newRow("6 enter above")
        << 6 << "12345" << 13 << 0 << false << RangeMessage::AboveMax << 9999.0;
    QTest::newRow("6 enter at max") << 6 << "9999" << 13 << 13 << true << none << 0.0;
    QTest::newRow("4 enter below")
        << 4 << "-1" << 13 << 0 << false << RangeMessage::BelowMin << 0.0;
    QTest::newRow("5 enter below")
        << 5 << "-.5" << 13 << 0 << false << RangeMessage::BelowMin << 0.0;
    QTest::newRow("5 enter above")
        << 5 << "9999.5x" << 13 << 0 << false << RangeMessage::AboveMax << 9999.0;
    QTest::newRow("1 enter unchecked") << 1 << "99999" << 13 << 13 << true << none << 0.0;
    QTest::newRow("7 enter unchecked") << 7 << "-5" << 13 << 13 << true << none << 0.0;
    // Backspace, in every kind and in an empty field
    for (int tipo = 1; tipo <= 12; ++tipo)
        QTest::addRow("%d backspace", tipo) << tipo << "" << 8 << 8 << false << none << 0.0;
    // 1: letters and the DOS codes of Ñ ñ Ç ç
    QTest::newRow("1 A") << 1 << "" << 65 << 65 << false << none << 0.0;
    QTest::newRow("1 z") << 1 << "ab" << 122 << 122 << false << none << 0.0;
    QTest::newRow("1 digit") << 1 << "" << 53 << 0 << false << none << 0.0;
    QTest::newRow("1 space") << 1 << "a" << 32 << 0 << false << none << 0.0;
    QTest::newRow("1 dos 165") << 1 << "" << 165 << 165 << false << none << 0.0;
    QTest::newRow("1 dos 164") << 1 << "" << 164 << 164 << false << none << 0.0;
    QTest::newRow("1 dos 128") << 1 << "" << 128 << 128 << false << none << 0.0;
    QTest::newRow("1 dos 135") << 1 << "" << 135 << 135 << false << none << 0.0;
    QTest::newRow("1 ansi N tilde") << 1 << "" << 209 << 0 << false << none << 0.0;
    QTest::newRow("1 ansi n tilde") << 1 << "" << 241 << 0 << false << none << 0.0;
    // 2: code 209 and printable keys
    QTest::newRow("2 209") << 2 << "" << 209 << 209 << false << none << 0.0;
    QTest::newRow("2 208") << 2 << "" << 208 << 0 << false << none << 0.0;
    QTest::newRow("2 space") << 2 << "" << 32 << 32 << false << none << 0.0;
    QTest::newRow("2 175") << 2 << "" << 175 << 175 << false << none << 0.0;
    QTest::newRow("2 176") << 2 << "" << 176 << 0 << false << none << 0.0;
    QTest::newRow("2 224") << 2 << "" << 224 << 224 << false << none << 0.0;
    QTest::newRow("2 control") << 2 << "" << 31 << 0 << false << none << 0.0;
    QTest::newRow("2 above 255") << 2 << "" << 256 << 0 << false << none << 0.0;
    // 3: printable, upper-cased through the code page
    QTest::newRow("3 a") << 3 << "" << 97 << 65 << false << none << 0.0;
    QTest::newRow("3 A") << 3 << "" << 65 << 65 << false << none << 0.0;
    QTest::newRow("3 n tilde") << 3 << "" << 241 << 209 << false << none << 0.0;
    QTest::newRow("3 s caron") << 3 << "" << 154 << 138 << false << none << 0.0;
    QTest::newRow("3 y diaeresis") << 3 << "" << 255 << 159 << false << none << 0.0;
    QTest::newRow("3 digit") << 3 << "" << 55 << 55 << false << none << 0.0;
    QTest::newRow("3 rejected") << 3 << "" << 200 << 0 << false << none << 0.0;
    // 4: digits
    QTest::newRow("4 0") << 4 << "" << 48 << 48 << false << none << 0.0;
    QTest::newRow("4 9") << 4 << "12" << 57 << 57 << false << none << 0.0;
    QTest::newRow("4 point") << 4 << "1" << 46 << 0 << false << none << 0.0;
    QTest::newRow("4 minus") << 4 << "" << 45 << 0 << false << none << 0.0;
    // 5: digits and one point
    QTest::newRow("5 point") << 5 << "1" << 46 << 46 << false << none << 0.0;
    QTest::newRow("5 second point") << 5 << "1.5" << 46 << 0 << false << none << 0.0;
    QTest::newRow("5 minus") << 5 << "" << 45 << 0 << false << none << 0.0;
    QTest::newRow("5 letter") << 5 << "" << 97 << 0 << false << none << 0.0;
    // 6: digits, one point, a minus at the start or after one character
    QTest::newRow("6 digit") << 6 << "" << 55 << 55 << false << none << 0.0;
    QTest::newRow("6 point") << 6 << "" << 46 << 46 << false << none << 0.0;
    QTest::newRow("6 second point") << 6 << "." << 46 << 0 << false << none << 0.0;
    QTest::newRow("6 minus empty") << 6 << "" << 45 << 45 << false << none << 0.0;
    QTest::newRow("6 minus after digit") << 6 << "5" << 45 << 45 << false << none << 0.0;
    QTest::newRow("6 second minus") << 6 << "-" << 45 << 0 << false << none << 0.0;
    QTest::newRow("6 minus after two") << 6 << "12" << 45 << 0 << false << none << 0.0;
    QTest::newRow("6 letter") << 6 << "" << 97 << 0 << false << none << 0.0;
    QTest::newRow("6 colon") << 6 << "" << 58 << 0 << false << none << 0.0;
    // 7: proper case (a fresh counter)
    QTest::newRow("7 first letter") << 7 << "" << 97 << 65 << false << none << 0.0;
    QTest::newRow("7 later letter") << 7 << "A" << 66 << 98 << false << none << 0.0;
    QTest::newRow("7 first n tilde") << 7 << "" << 241 << 209 << false << none << 0.0;
    QTest::newRow("7 N tilde not printable") << 7 << "A" << 209 << 0 << false << none << 0.0;
    QTest::newRow("7 rejected") << 7 << "A" << 190 << 0 << false << none << 0.0;
    // 8-11: codes 48-59, whatever the length of the text
    for (int tipo = 8; tipo <= 11; ++tipo) {
        QTest::addRow("%d 0", tipo) << tipo << "" << 48 << 48 << false << none << 0.0;
        QTest::addRow("%d colon", tipo) << tipo << "00" << 58 << 58 << false << none << 0.0;
        QTest::addRow("%d semicolon", tipo) << tipo << "" << 59 << 59 << false << none << 0.0;
        QTest::addRow("%d point", tipo) << tipo << "" << 46 << 0 << false << none << 0.0;
        QTest::addRow("%d '<'", tipo) << tipo << "" << 60 << 0 << false << none << 0.0;
        QTest::addRow("%d long text", tipo)
            << tipo << "00:00:00:000:00" << 57 << 57 << false << none << 0.0;
    }
    // Other kinds: every key
    QTest::newRow("0 control") << 0 << "" << 1 << 1 << false << none << 0.0;
    QTest::newRow("12 block") << 12 << "" << 200 << 200 << false << none << 0.0;
    QTest::newRow("12 enter unchecked") << 12 << "99999" << 13 << 13 << true << none << 0.0;
}

void TstEntrada::singleKey()
{
    QFETCH(int, tipo);
    QFETCH(QString, text);
    QFETCH(int, key);
    QFETCH(int, expectedKey);
    QFETCH(bool, expectedEnter);
    QFETCH(RangeMessage, message);
    QFETCH(double, bound);

    EntradaState state;
    const EntradaResult result = entrada(state, key, tipo, text, 0, 9999);
    QCOMPARE(result.keyAscii, expectedKey);
    QCOMPARE(result.enter, expectedEnter);
    QCOMPARE(result.message, message);
    if (message != RangeMessage::None)
        QCOMPARE(result.bound, bound);
}

// Types the keys one by one into a kind-7 field, as the field would apply them.
static QString typeProperCase(EntradaState& state, const QString& keys)
{
    QString text;
    for (const QChar c : keys) {
        const int key = entrada(state, c.unicode(), 7, text, 0, 0).keyAscii;
        if (key != 0)
            text += QChar(key);
    }
    return text;
}

void TstEntrada::properCaseCounter()
{
    EntradaState state;
    QCOMPARE(typeProperCase(state, "JUAN PEREZ"), "Juan Perez");
    QCOMPARE(state.espacios, 0);

    // The second space consumes the counter: the next letter stays lower case.
    state = {};
    QCOMPARE(typeProperCase(state, "ana  maria"), "Ana  maria");

    // A trailing space leaves the counter pending for the next call.
    state = {};
    QCOMPARE(typeProperCase(state, "luis "), "Luis ");
    QCOMPARE(state.espacios, 1);
}

void TstEntrada::minusAfterOneDigit()
{
    EntradaState state;
    QString text;
    for (const int key : {'5', '-', '-', '3', '.', '.', '7'}) {
        const int accepted = entrada(state, key, 6, text, 0, 9999).keyAscii;
        if (accepted != 0)
            text += QChar(accepted);
    }
    QCOMPARE(text, "5-3.7");
    // Val reads 5 from "5-3.7": the Enter passes.
    QVERIFY(entrada(state, 13, 6, text, 0, 9999).enter);
}

void TstEntrada::messageTexts()
{
    QCOMPARE(rangeMessageText(RangeMessage::AboveMax, 9999),
             "El valor no puede ser mayor que  9999");
    QCOMPARE(rangeMessageText(RangeMessage::BelowMin, -2), "El valor no puede ser menor que -2");
    QCOMPARE(rangeMessageTitle(RangeMessage::AboveMax), "Valor demasiado alto");
    QCOMPARE(rangeMessageTitle(RangeMessage::BelowMin), "Valor demasiado bajo");
    QVERIFY(rangeMessageText(RangeMessage::None, 0).isEmpty());
}

QTEST_APPLESS_MAIN(TstEntrada)
#include "tst_entrada.moc"
