// The time-format and capture-mode options.
#include "app/formmarvolendo.h"

void FormMarvolendo::op2_Click(int index) { Q_UNUSED(index); }
void FormMarvolendo::opp2_Click() {}
void FormMarvolendo::opp22_Click() {}
