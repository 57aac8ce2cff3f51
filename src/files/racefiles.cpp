// Results files, start-order import and the readings database link.
#include "app/formmarvolendo.h"
#include "files/odbc/readingslink.h"

void FormMarvolendo::Command6_Click() {}
void FormMarvolendo::guardarSalidas() {}
void FormMarvolendo::Command7_Click() {}
void FormMarvolendo::carregar(const QString& cami) { Q_UNUSED(cami); }
void FormMarvolendo::conectarLecturas() {}
