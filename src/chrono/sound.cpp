#include "chrono/sound.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QSoundEffect>

struct QtSound::Effects {
    QSoundEffect shortBeep;
    QSoundEffect longBeep;
};

QUrl QtSound::source(Tone t)
{
    return QUrl(t == Tone::Short ? QStringLiteral("qrc:/sonidos/corto.wav")
                                 : QStringLiteral("qrc:/sonidos/largo.wav"));
}

QtSound::QtSound() : effects(std::make_unique<Effects>())
{
    if (QMediaDevices::audioOutputs().isEmpty())
        return;
    effects->shortBeep.setSource(source(Tone::Short));
    effects->longBeep.setSource(source(Tone::Long));
}

QtSound::~QtSound() = default;

bool QtSound::available() const
{
    return !QMediaDevices::audioOutputs().isEmpty();
}

bool QtSound::play(Tone t)
{
    QSoundEffect& effect = t == Tone::Short ? effects->shortBeep : effects->longBeep;
    if (QMediaDevices::audioOutputs().isEmpty() || effect.status() == QSoundEffect::Error ||
        effect.source().isEmpty())
        return false;
    effect.play();
    return true;
}
