#include "chrono/core/startat.h"

#include <QtTest>

class StartAtTest : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds"); // -1: refused
        QTest::newRow("whole seconds") << "9:05:07" << 32707.0;
        QTest::newRow("hundredths") << " 09:05:07,25 " << 32707.25;
        QTest::newRow("thousandths") << "09:05:07:125" << 32707.125;
        QTest::newRow("tenths") << "09:05:07.5" << 32707.5;
        QTest::newRow("hour 24") << "24:00:00" << -1.0;
        QTest::newRow("minute 60") << "10:60:00" << -1.0;
        QTest::newRow("no seconds") << "10:30" << -1.0;
        QTest::newRow("four decimals") << "10:30:00.1234" << -1.0;
        QTest::newRow("words") << "las diez" << -1.0;
    }

    void parse()
    {
        QFETCH(QString, text);
        QFETCH(double, seconds);
        const std::optional<double> got = startat::parseTimeOfDay(text);
        QCOMPARE(got.value_or(-1.0), seconds);
    }

    void decide_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<double>("target");
        QTest::addColumn<int>("kind");
        QTest::addColumn<double>("seconds");
        const int armed = int(startat::Decision::Kind::Armed);
        const int started = int(startat::Decision::Kind::Started);
        const int tooOld = int(startat::Decision::Kind::TooOld);
        QTest::newRow("later today") << 36000.0 << 36005.5 << armed << 5.5;
        QTest::newRow("a minute ago") << 36000.0 << 35940.0 << started << 60.0;
        QTest::newRow("exactly now") << 36000.0 << 36000.0 << started << 0.0;
        QTest::newRow("12 hours ago") << 72000.0 << 28800.0 << started << 43200.0;
        QTest::newRow("more than 12 hours ago") << 72000.0 << 28799.0 << tooOld << 43201.0;
        QTest::newRow("yesterday, across midnight") << 600.0 << 85800.0 << started << 1200.0;
    }

    void decide()
    {
        QFETCH(double, now);
        QFETCH(double, target);
        QFETCH(int, kind);
        QFETCH(double, seconds);
        const startat::Decision d = startat::decide(now, target);
        QCOMPARE(int(d.kind), kind);
        QCOMPARE(d.seconds, seconds);
    }

    void beepSchedule_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("step");
        QTest::addColumn<QString>("heard"); // s short, L long, at the seconds left
        QTest::newRow("every tick") << 7.0 << 0.02 << "s5 s4 s3 s2 s1 L0";
        // A late tick that jumps two moments sounds only the last.
        QTest::newRow("slow ticks") << 6.3 << 1.7 << "s5 s3 s2 L0";
        // Ten minutes and a few seconds: the countdown shows, nothing sounds.
        QTest::newRow("ten minutes") << 606.0 << 0.02 << "";
    }

    void beepSchedule()
    {
        QFETCH(double, from);
        QFETCH(double, step);
        QFETCH(QString, heard);
        CountdownBeeps beeps;
        QStringList got;
        const double until = from > 100 ? from - 10 : -1.0;
        for (double left = from; left > until; left -= step) {
            const CountdownBeeps::Beep b = beeps.update(left);
            if (b != CountdownBeeps::Beep::None)
                got << (b == CountdownBeeps::Beep::Long ? QStringLiteral("L")
                                                        : QStringLiteral("s")) +
                           QString::number(std::max(0.0, std::ceil(left - 1e-9)));
            // The next moment is never further than a second, never in the past.
            if (const auto next = CountdownBeeps::untilNext(left); next && left <= 6)
                QVERIFY(*next > 0 && *next <= 1.0 + 1e-9);
        }
        QCOMPARE(got.join(u' '), heard);
        // No start selected: the countdown begins afresh, the first reading beeps nothing.
        QCOMPARE(beeps.update(std::nullopt), CountdownBeeps::Beep::None);
        QCOMPARE(beeps.update(0.5), CountdownBeeps::Beep::None);
    }
};

QTEST_APPLESS_MAIN(StartAtTest)
#include "tst_startat.moc"
