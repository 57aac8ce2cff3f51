#include "base/basic.h"
#include "chrono/core/timevalue.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace
{
double hours(double h, double m, double s)
{
    return h + (m + s / 60.0) / 60.0;
}
} // namespace

class TimeValueTest : public QObject
{
    Q_OBJECT

private slots:
    void tempsexaMil_data()
    {
        QTest::addColumn<double>("hours");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << "00:00:00:000";
        QTest::newRow("hour and a half") << 1.5 << "01:30:00:000";
        QTest::newRow("every field") << hours(12, 34, 56.789) << "12:34:56:789";
        QTest::newRow("thousandths carry into the minute")
            << hours(0, 0, 59.9996) << "00:01:00:000";
        QTest::newRow("carry through to the hour") << hours(0, 59, 59.9997) << "01:00:00:000";
        QTest::newRow("half thousandth to even (down)") << hours(0, 0, 0.0005) << "00:00:00:000";
        QTest::newRow("half thousandth to even (up)") << hours(0, 0, 0.0015) << "00:00:00:002";
        QTest::newRow("half thousandth to even, 2.5") << hours(0, 0, 0.0025) << "00:00:00:002";
        QTest::newRow("hundredths are not rounded away") << hours(0, 0, 1.239) << "00:00:01:239";
        QTest::newRow("hours keep two digits") << 125.25 << "25:15:00:000";
        QTest::newRow("one minute below zero") << -1.0 / 60 << "-1:59:00:000";
        QTest::newRow("two minutes below zero") << -2.0 / 60 << "-1:58:00:000";
        QTest::newRow("not a number reads as zero") << std::nan("") << "00:00:00:000";
        QTest::newRow("absurdly large stays 12 characters") << 1e300 << "00:00:00:000";
    }

    void tempsexaMil()
    {
        QFETCH(double, hours);
        QFETCH(QString, text);
        const QString got = timevalue::tempsexaMil(hours);
        if (std::isfinite(hours) && hours < 1e15)
            QCOMPARE(got, text);
        else
            QCOMPARE(got.size(), 12);
    }

    void hairFromAWholeThousandth_data()
    {
        // Sums and differences of hours land a rounding error away from the thousandth they
        // stand for; the text is that thousandth's, digits only, and reads back to itself.
        QTest::addColumn<double>("hours");
        QTest::addColumn<QString>("text");
        const double minute = timevalue::decimalMil(u"00:01:00");
        const double below = -std::numeric_limits<double>::denorm_min();
        // "+" on the stopped clock showing -1:59:00 (it was at zero, then "-" twice, "+" once).
        QTest::newRow("from -1:59:00 a minute up")
            << timevalue::decimalMil(u"-1:59:00") + minute << "00:00:00:000";
        QTest::newRow("a hair below zero") << -5.2e-17 << "00:00:00:000";
        QTest::newRow("the smallest number below zero") << below << "00:00:00:000";
        QTest::newRow("a hair below an hour") << std::nextafter(1.0, 0.0) << "01:00:00:000";
        QTest::newRow("a hair below a second") << std::nextafter(1.0 / 3600, 0.0) << "00:00:01:000";
        QTest::newRow("a hair below minus one minute")
            << std::nextafter(-1.0 / 60, -1.0) << "-1:59:00:000";
    }

    void hairFromAWholeThousandth()
    {
        QFETCH(double, hours);
        QFETCH(QString, text);
        const QString got = timevalue::tempsexaMil(hours);
        QCOMPARE(got, text);
        QCOMPARE(timevalue::tempsexaMil(timevalue::decimalMil(got)), got);
    }

    void decimalMil_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds");
        QTest::newRow("full form") << "00:00:01:500" << 1.5;
        QTest::newRow("whole seconds lose nothing") << "00:00:01" << 1.0;
        QTest::newRow("hundredths are dropped") << "00:00:01:50" << 1.0;
        QTest::newRow("every field") << "01:02:03:004" << 3723.004;
        QTest::newRow("below zero") << "-1:59:00" << -60.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("garbage") << "ab:cd:ef:ghi" << 0.0;
        QTest::newRow("short text reads the hour and its last digit twice")
            << "5" << 5 * 3600.0 + 0.005;
    }

    void decimalMil()
    {
        QFETCH(QString, text);
        QFETCH(double, seconds);
        QVERIFY(qAbs(timevalue::decimalMil(text) * 3600.0 - seconds) < 1e-9);
    }

    void roundTripKeepsThousandths()
    {
        // Every thousandth of a long race reads back to the same text.
        for (int ms = 0; ms < 5 * 3600 * 1000; ms += 7919) {
            const QString text = timevalue::tempsexaMil(ms / 3600000.0);
            QCOMPARE(timevalue::tempsexaMil(timevalue::decimalMil(text)), text);
        }
    }

    void basicText_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("result");
        QTest::newRow("val leading number") << basic::digits(basic::val(u"12abc")) << "12";
        QTest::newRow("val ignores blanks inside") << basic::digits(basic::val(u" 1 2")) << "12";
        QTest::newRow("val no number") << basic::digits(basic::val(u"abc")) << "0";
        QTest::newRow("val sign and point") << basic::digits(basic::val(u"-1.5x")) << "-1.5";
        QTest::newRow("val exponent") << basic::digits(basic::val(u"1E3")) << "1000";
        QTest::newRow("val hexadecimal") << basic::digits(basic::val(u"&H1F")) << "31";
        QTest::newRow("str keeps its blank") << basic::str(7) << " 7";
        QTest::newRow("str of a negative") << basic::str(-7) << "-7";
        QTest::newRow("str without leading zero") << basic::str(0.5) << " .5";
    }

    void basicText()
    {
        QFETCH(QString, expression);
        QFETCH(QString, result);
        QCOMPARE(expression, result);
    }

    void numberForms_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("microseconds of noon and a half") << 43200500000.0 << "43200500000";
        QTest::newRow("fifteen digits") << 999999999999999.0 << "999999999999999";
        QTest::newRow("exponent from 1E15") << 1e15 << "1E+15";
        QTest::newRow("a day in picohours") << 8.64e16 << "8.64E+16";
        QTest::newRow("sixteen digits lose the last")
            << 1234567890123456.0 << "1.23456789012346E+15";
        QTest::newRow("negative") << -16666666666.0 << "-16666666666";
        QTest::newRow("zero") << 0.0 << "0";
    }

    void numberForms()
    {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(basic::digits(value), text);
    }
};

QTEST_APPLESS_MAIN(TimeValueTest)
#include "tst_timevalue.moc"
