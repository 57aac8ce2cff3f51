// The bib fields.
#include "app/formmarvolendo.h"

void FormMarvolendo::Text1_GotFocus() {}
void FormMarvolendo::Text1_KeyPress(int& keyAscii) { Q_UNUSED(keyAscii); }
void FormMarvolendo::Text1_DblClick() {}
void FormMarvolendo::Text1_LostFocus() {}
void FormMarvolendo::Text2_GotFocus() {}
void FormMarvolendo::Text2_KeyPress(int& keyAscii) { Q_UNUSED(keyAscii); }
void FormMarvolendo::Text2_DblClick() {}
void FormMarvolendo::Text2_LostFocus() {}
void FormMarvolendo::rewriteCorrectedLine() {}
