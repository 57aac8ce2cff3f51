// Recording a finish and the results-list handlers.
#include "app/formmarvolendo.h"

void FormMarvolendo::marcar() {}
void FormMarvolendo::Command3_Click() {}
void FormMarvolendo::List1_Click() {}
void FormMarvolendo::List1_DblClick() {}
void FormMarvolendo::List2_Click() {}
