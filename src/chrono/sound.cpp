#include "chrono/sound.h"

#include <QAudioDevice>
#include <QFile>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QTemporaryDir>
#include <QUrl>
#include <QtEndian>

#include <cmath>
#include <numbers>

namespace
{

// A sine tone as a 16-bit mono WAV file, with a short fade at both ends so it does not click.
QByteArray tone(double hz, int ms)
{
    constexpr int rate = 44100;
    const int samples = rate * ms / 1000;
    const int fade = rate / 200;
    QByteArray pcm(samples * 2, Qt::Uninitialized);
    for (int i = 0; i < samples; ++i) {
        const double envelope = std::min({1.0, double(i) / fade, double(samples - i) / fade});
        const double v = 0.6 * envelope * std::sin(2 * std::numbers::pi * hz * i / rate);
        qToLittleEndian<qint16>(static_cast<qint16>(v * 32767), pcm.data() + 2 * i);
    }
    QByteArray wav("RIFF");
    const auto u32 = [&wav](quint32 v) {
        char b[4];
        qToLittleEndian(v, b);
        wav.append(b, 4);
    };
    const auto u16 = [&wav](quint16 v) {
        char b[2];
        qToLittleEndian(v, b);
        wav.append(b, 2);
    };
    u32(static_cast<quint32>(36 + pcm.size()));
    wav += "WAVEfmt ";
    u32(16);
    u16(1); // PCM
    u16(1); // mono
    u32(rate);
    u32(rate * 2);
    u16(2);
    u16(16);
    wav += "data";
    u32(static_cast<quint32>(pcm.size()));
    return wav + pcm;
}

} // namespace

struct QtSound::Effects {
    QTemporaryDir dir;
    QSoundEffect shortBeep;
    QSoundEffect longBeep;

    void load(QSoundEffect& effect, const QString& name, const QByteArray& wav)
    {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::WriteOnly) && file.write(wav) == wav.size()) {
            file.close();
            effect.setSource(QUrl::fromLocalFile(file.fileName()));
        }
    }
};

QtSound::QtSound() : effects(std::make_unique<Effects>())
{
    if (QMediaDevices::audioOutputs().isEmpty())
        return;
    effects->load(effects->shortBeep, QStringLiteral("corto.wav"), tone(880, 150));
    effects->load(effects->longBeep, QStringLiteral("largo.wav"), tone(880, 700));
}

QtSound::~QtSound() = default;

bool QtSound::play(Tone t)
{
    QSoundEffect& effect = t == Tone::Short ? effects->shortBeep : effects->longBeep;
    if (QMediaDevices::audioOutputs().isEmpty() || effect.status() == QSoundEffect::Error ||
        effect.source().isEmpty())
        return false;
    effect.play();
    return true;
}
