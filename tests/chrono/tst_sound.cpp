// The start beeps: built into the program at the tones they always had, and loaded without
// writing anything to disk, so that a crash leaves nothing behind.
#include "chrono/sound.h"

#include <QDir>
#include <QFile>
#include <QSoundEffect>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

class SoundTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingWrittenToTheTemporaryFolder()
    {
        // The session's runtime folder as a desktop has it: without one, the sound server's
        // library would keep its own files in the temporary folder.
        QTemporaryDir temporary;
        QTemporaryDir runtime;
        const QByteArray tmpBefore = qgetenv("TMPDIR");
        const QByteArray runtimeBefore = qgetenv("XDG_RUNTIME_DIR");
        qputenv("TMPDIR", QFile::encodeName(temporary.path()));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
        QCOMPARE(QDir::tempPath(), temporary.path());
        {
            // What a crash would leave is what there is while the program runs.
            const QtSound sound;
            QCOMPARE(QDir(temporary.path())
                         .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                     QStringList());
        }
        qputenv("TMPDIR", tmpBefore);
        qputenv("XDG_RUNTIME_DIR", runtimeBefore);
    }

    void builtInTones_data()
    {
        QTest::addColumn<Sound::Tone>("tone");
        QTest::addColumn<int>("ms");
        QTest::newRow("short") << Sound::Tone::Short << 150;
        QTest::newRow("long") << Sound::Tone::Long << 700;
    }

    // 16-bit mono PCM at 44.1 kHz: the length, the pitch and the fades.
    void builtInTones()
    {
        QFETCH(Sound::Tone, tone);
        QFETCH(int, ms);
        QFile file(u':' + QtSound::source(tone).path());
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        const QByteArray wav = file.readAll();
        QCOMPARE(wav.size(), 44 + 44100 * ms / 1000 * 2);
        QCOMPARE(wav.left(4), "RIFF");
        QCOMPARE(wav.mid(8, 8), "WAVEfmt ");
        const auto u16 = [&wav](int at) {
            return qFromLittleEndian<quint16>(wav.constData() + at);
        };
        const auto u32 = [&wav](int at) {
            return qFromLittleEndian<quint32>(wav.constData() + at);
        };
        QCOMPARE(u16(20), 1);     // PCM
        QCOMPARE(u16(22), 1);     // mono
        QCOMPARE(u32(24), 44100); // samples a second
        QCOMPARE(u16(34), 16);    // bits a sample
        QCOMPARE(wav.mid(36, 4), "data");
        QCOMPARE(u32(40), quint32(wav.size() - 44));

        const int samples = int(wav.size() - 44) / 2;
        const auto sample = [&wav](int i) {
            return qFromLittleEndian<qint16>(wav.constData() + 44 + 2 * i);
        };
        int rises = 0;
        int peak = 0;
        for (int i = 1; i < samples; ++i) {
            rises += sample(i - 1) < 0 && sample(i) >= 0;
            peak = std::max(peak, std::abs(int(sample(i))));
        }
        QVERIFY2(std::abs(rises - 880 * ms / 1000) <= 1, qPrintable(QString::number(rises)));
        QVERIFY(peak > 19000 && peak < 20000); // 60% of full scale
        // Faded in and out: no click at either end.
        QCOMPARE(sample(0), 0);
        QVERIFY(std::abs(int(sample(samples - 1))) < 200);

        // And Qt Multimedia reads it from there as the program has it play.
        QSoundEffect effect;
        effect.setSource(QtSound::source(tone));
        QTRY_COMPARE_WITH_TIMEOUT(effect.status(), QSoundEffect::Ready, 5000);
    }
};

QTEST_GUILESS_MAIN(SoundTest)
#include "tst_sound.moc"
