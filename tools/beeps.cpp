// The two beeps of a time-trial start as WAV files, built into the program as resources:
//   beeps <folder>
// writes <folder>/corto.wav (880 Hz, 150 ms) and <folder>/largo.wav (880 Hz, 700 ms). Run at
// build time, so that the sources keep nothing binary and the program writes nothing to play them.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdio>
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

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "uso: beeps <carpeta>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "no se pudo crear %s\n", argv[1]);
        return 1;
    }
    const std::pair<const char*, int> beeps[] = {{"corto.wav", 150}, {"largo.wav", 700}};
    for (const auto& [name, ms] : beeps) {
        const QByteArray wav = tone(880, ms);
        QFile file(folder.filePath(QLatin1String(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(wav) != wav.size() || !file.flush()) {
            std::fprintf(stderr, "no se pudo escribir %s\n", qPrintable(file.fileName()));
            return 1;
        }
    }
    return 0;
}
