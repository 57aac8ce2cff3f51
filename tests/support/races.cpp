#include "races.h"

RaceState stoppedRace(double formato, double modo)
{
    RaceState s;
    s.horaSalida = QStringLiteral("0    ");
    s.tempsPrimer = QStringLiteral("00:12:30:125");
    s.label5 = QStringLiteral("00:14:02:500");
    s.label8 = QStringLiteral("0:01:32:375");
    s.formato = formato;
    s.modoCaptura = modo;
    s.combo1 = {QStringLiteral("   1- 00:12:30:125 - 0:00:00:000"),
                QStringLiteral("   2- 00:14:02:500 - 0:01:32:375")};
    s.list1 = {QStringLiteral("   1-  57- 00:12:30:125 - 0:00:00:000"),
               QStringLiteral("   2- 112- 00:14:02:500 - 0:01:32:375")};
    s.list2 = {QStringLiteral("   1-  27 - 0:10:30"), QStringLiteral("   2-  31 - 0:11:00")};
    return s;
}

RaceState runningRace()
{
    RaceState s = stoppedRace(2, 0);
    s.inicio = 9 * 3600.0;
    s.horaSalida = QStringLiteral("09:00");
    return s;
}
