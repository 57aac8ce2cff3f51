// Clearing a race and the compact window.
#include "app/formmarvolendo.h"

void FormMarvolendo::Command4_Click() {}
void FormMarvolendo::opp4_Click() {}
