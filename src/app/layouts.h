// Where each layout puts the window and the controls it moves, in twips: the window as drawn,
// the Lap and bibs-and-times widths, the compact window, and the bibs-only sheet. Every
// handler that changes the layout takes its sizes from here.
#pragma once

namespace layouts
{

struct Size {
    int width;
    int height;
};

// The window as drawn: the wide layout with the results list.
inline constexpr Size drawn{13440, 5115};
// The full height the compact toggle restores; leaving the bibs-only sheet gives a window 15
// twips shorter, as it always has.
inline constexpr int fullHeight = 5115;
inline constexpr Size compact{4545, 2050};
// The bibs-and-times mode shows the results list and the start order; the Lap mode only the
// clock and its frame, with the window moved to a fixed left edge.
inline constexpr int bibsAndTimesWidth = 13440;
inline constexpr int lapWidth = 4545;
inline constexpr int lapLeft = 3000;
inline constexpr Size bibsOnly{3700, 4700};
inline constexpr Size leavingBibsOnly{4545, 5100};

// The clock is widened over the emptied fraction label in "Segundos".
inline constexpr int clockWidth = 3015;
inline constexpr int clockWidthSeconds = 4215;
// "Lap" keeps a narrow width behind the bib field in the bibs-and-times mode.
inline constexpr int lapButtonWidth = 3135;
inline constexpr int lapButtonWidthBehindBib = 1815;

// A control's place; a negative value keeps what the control has.
struct Rect {
    int left;
    int top;
    int width = -1;
    int height = -1;
};

// The controls the bibs-only sheet moves: where the other layouts have them, and where the
// sheet puts them.
struct Moved {
    const char* control;
    Rect normal;
    Rect bibsOnly;
};
inline constexpr Moved sheetControls[] = {
    {"Text1", {960, 1080, 1455, 570}, {120, 240}},
    {"Frame1", {120, 2040, 4215, 1815}, {120, 0, 3375, 975}},
    {"Command5", {3840, 0, 480, 405}, {2950, 2000}},
    {"Command6", {3360, 0, 480, 405}, {2950, 2500}},
    {"List1", {4440, 240, 4335, 3420}, {120, 1030, 2000, 2790}},
    {"Text2", {7560, 3840, 1215, 450}, {2300, 3333}},
    {"Label15", {3600, 3870, 3900, 420}, {480, -1}},
};

} // namespace layouts
