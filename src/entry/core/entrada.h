// The keystroke filter shared by the bib entry fields: accepts, changes or swallows one key
// according to the kind of field and, on Enter, checks the field's value against its bounds.
#pragma once

#include <QString>
#include <QStringView>

// Kept between calls; only the proper-case kind (7) uses it. Never reset by anything else.
struct EntradaState {
    int espacios = 0; // spaces typed since the last upper-cased key
};

// The range message that an Enter out of bounds calls for.
enum class RangeMessage { None, AboveMax, BelowMin };

struct EntradaResult {
    int keyAscii = 0;   // the key to apply (Windows-1252 code); 0 = swallowed
    bool enter = false; // an Enter was accepted
    RangeMessage message = RangeMessage::None;
    double bound = 0; // the bound named by the message
};

// Filters keyAscii (a Windows-1252 code) typed into a field of kind tipo whose current text,
// right-trimmed, is variable. Enter (13) is checked against min and max for kinds 4, 5 and 6
// (the lower bound not for kind 6, so a negative bib passes); Backspace (8) always passes.
//  1: letters and the DOS codes 165, 164, 128, 135     2: code 209 and printable keys
//  3: printable, upper-cased                           4: digits
//  5: digits and one point                             6: digits, one point, an early minus
//  7: printable, in proper case                        8-11: codes 48-59 (time texts)
//  other kinds: every key
EntradaResult entrada(EntradaState& state, int keyAscii, int tipo, QStringView variable, double min,
                      double max);

// The text and the title of the message box of a range message; the text ends with the bound
// as Str writes it (with its sign blank).
QString rangeMessageText(RangeMessage message, double bound);
QString rangeMessageTitle(RangeMessage message);
