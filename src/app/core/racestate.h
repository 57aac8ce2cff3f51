// The race as the state file keeps it: the window-level values and the three lists; and the
// race as the journal keeps it, with the captions the state file does not carry.
#pragma once

#include "results/core/runnerstatus.h"

#include <QString>
#include <QStringList>

#include <optional>

// A loosely typed number of the old format: empty until it is given a value, and then
// compared as 0.
using Variant = std::optional<double>;

inline double number(const Variant& v)
{
    return v.value_or(0.0);
}

struct RaceState {
    double inicio = 0;     // timer reading (seconds since midnight) at Start; 0 when stopped
    double desfase = 0;    // hours carried into the current run
    QString horaSalida;    // hh:mm of the time of day at which the race clock read zero
    QString tempsPrimer;   // time text of the first finisher
    QString label5;        // caption of the last finisher's time (written, never restored)
    QString label8;        // caption of the last finisher's difference (same)
    Variant formato = 2.0; // time format code
    Variant modoCaptura;   // capture mode code, empty until set
    QStringList combo1;    // results lines without bib
    QStringList list1;     // results lines
    QStringList list2;     // start order

    bool operator==(const RaceState&) const = default;
};

// The race state plus the captions that the state file does not carry: the clock when stopped,
// the rank counter, the first finisher.
struct RaceRecord {
    RaceState state;
    QString label1;            // the clock, hh:mm:ss
    QString label2;            // the rank counter
    QString label4;            // the first finisher's time
    runnerstatus::Marks marks; // what the timekeeper said of the runners, by bib

    bool operator==(const RaceRecord&) const = default;
};
