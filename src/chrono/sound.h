// The beeps of a time-trial start go through this seam: the program plays generated tones with
// Qt Multimedia, tests count what would have sounded.
#pragma once

#include <QUrl>

#include <memory>

class Sound
{
public:
    enum class Tone { Short, Long };
    virtual ~Sound() = default;
    // Plays the tone at once; false when the machine has no way to play it.
    virtual bool play(Tone tone) = 0;
    // The machine has a way to play the tones.
    virtual bool available() const { return true; }
};

// Two tones built into the program (tools/beeps) and loaded when it starts, so that a beep
// sounds at once.
class QtSound final : public Sound
{
public:
    QtSound();
    ~QtSound() override;
    bool play(Tone tone) override;
    bool available() const override;
    // The WAV file of a tone among the program's resources.
    static QUrl source(Tone tone);

private:
    struct Effects;
    std::unique_ptr<Effects> effects;
};
