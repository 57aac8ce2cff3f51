// Races the window tests start from, as the state file keeps them.
#pragma once

#include "app/core/racestate.h"

// Stopped, two finishes and two runners in the start order.
RaceState stoppedRace(double formato = 2, double modo = 0);
// Running since 09:00:00, the same two finishes.
RaceState runningRace();
