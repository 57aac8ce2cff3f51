// Texts of the window that more than one handler shows or compares.
#pragma once

#include <QString>

namespace texts
{

// The clock standing at zero.
inline const QString zeroClock = QStringLiteral("00:00:00");

// The tool tips of the export button, by capture mode.
inline const QString tipOneFile =
    QStringLiteral("Crea un fichero en C:\\carreras\\copias / Tiempos-Marvo.TXT");
inline const QString tipLapMode =
    QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Tiempos-Marvo.TXT");
inline const QString tipThreeFiles =
    QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Dorsales-Marvo.TXT - "
                   "dorsales-Tiempos-Marvo.TXT y Tiempos-Marvo.TXT");
inline const QString tipBibsOnly =
    QStringLiteral("Crea tres ficheros en C:\\carreras\\copias / Dorsales-Marvo.TXT");

} // namespace texts
