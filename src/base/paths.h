// The program's fixed paths are Windows paths ("C:\Carreras\copias\", "d:\MARVO.dat").
// On Windows they are used as written. Elsewhere a path "X:\dir\file" lives under the folder
// named by MARVOLENDO_DRIVE_X (upper-case drive letter), or under the home folder when that
// variable is unset; backslashes become slashes and relative paths stay relative to the
// current directory.
#pragma once

#include <QString>

namespace paths
{

QString local(const QString& windowsPath);

// The folder that stands for a drive letter on this machine.
QString driveRoot(QChar drive);

} // namespace paths
