// The results files for the results office, written into the fixed folder
// C:\Carreras\copias\ (which is neither created nor checked). The contents are taken from the
// display lines as they stand, blanks included, by fixed character positions:
//   bib  = characters 6 to 9 of a results line (List1)
//   time = L characters from position 12 of a results line, or from position 7 of a split
//          line (Combo1); L = 8, 11 or 12 for Segundos, Centesimas, Milesimas.
// The number of results lines bounds every file; a missing split line counts as empty.
// Every line ends with CR LF, in Windows-1252; no header, no blank line at the end.
#pragma once

#include "chrono/core/timevalue.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace exports
{

inline constexpr char folder[] = "C:\\Carreras\\copias\\";
inline constexpr char dorsalesTiemposFile[] = "C:\\Carreras\\copias\\dorsales-Tiempos-Marvo.txt";
inline constexpr char dorsalesFile[] = "C:\\Carreras\\copias\\dorsales-Marvo.txt";
inline constexpr char tiemposFile[] = "C:\\Carreras\\copias\\Tiempos-Marvo.txt";
inline constexpr char tiemposSalidaFile[] = "C:\\Carreras\\copias\\TiemposSalida.txt";
// The one file of the export without bib capture: the same file as dorsalesFile.
inline constexpr char singleFile[] = "c:\\Carreras\\copias\\dorsales-Marvo.txt";

// What the export reads: the two lists, whether bibs-and-times capture (opp2) is checked and
// the checked time format, if any.
struct Source {
    QStringList list1;
    QStringList combo1;
    bool opp2 = false;
    std::optional<TimeFormat> format;
};

struct File {
    QString windowsPath; // one of the names above, as the program writes it
    QByteArray contents;
};

// One line per results line: bib, a comma, time. Without a checked format the time is empty.
QByteArray bibTimeLines(const Source& source);
// One line per results line: the bib.
QByteArray bibLines(const Source& source);
// One line per results line: the time of the split line at the same index. Without a checked
// format nothing is written.
QByteArray splitTimeLines(const Source& source);

// The full export, in the order the files are written: with opp2 checked dorsales (bibs),
// dorsales-Tiempos (bib,time), Tiempos (bibs as well, deliberately) and TiemposSalida
// (bib,time); otherwise the single file with the split times.
QList<File> resultsFiles(const Source& source);

// The start-times file rewritten after every finish taken by F1 or F3: bib,time lines with
// opp2 checked, empty otherwise.
File startTimesFile(const Source& source);

struct WriteResult {
    QString failedFile; // the Windows name of the file that could not be written
    QString message;    // for the operator, in Spanish; empty on success
    bool ok() const { return message.isEmpty(); }
};

// Writes the files, each replaced whole; a file that cannot be written keeps its previous
// contents and does not hold back the others. The result names the first such file in order.
WriteResult write(const QList<File>& files);

// resultsFiles and startTimesFile, written.
WriteResult exportResults(const Source& source);
WriteResult saveStartTimes(const Source& source);

} // namespace exports
