// The start order of a time trial: a file of fixed 99-byte records, no header, prepared by
// another program. Only the bib (signed 16-bit little-endian at offset 0) and the start time
// (8 characters at offset 91) are used; the six text fields between them are skipped.
//
// Each record gives one line of the start-order list:
//   field4(record number) + "-" + field4(bib) + " - " + last 7 characters of the start time
// e.g. record 3, bib 27, "00:10:30" -> "   3-  27 - 0:10:30".
//
// Failures follow the import's counting rule: `errores` starts at 0, every failed step adds
// 1; when that makes it 1 the step is tried once more, from the second failure on the step is
// skipped and the import goes on with the next one. The steps are: open, take the length,
// then for every record read it and append its line. A skipped read leaves the record as it
// last stood (the previous record of this import; before any, bib 0 and a blank start time),
// and its line is still appended. A missing file thus gives no lines and errores 3 (the open
// fails twice, the length cannot be taken).
//
// The file's size is never trusted: records are read one at a time, and one import reads at
// most maxRecords records. The records past that are refused as one failed step (the list
// cannot take more lines): counted once, retried once when that makes errores 1.
#pragma once

#include <QIODevice>
#include <QString>
#include <QStringList>

namespace startorder
{

inline constexpr int recordSize = 99;
inline constexpr int bibOffset = 0;
inline constexpr int timeOffset = 91;
inline constexpr int timeLength = 8;
// A start order is numbered by a 16-bit count: no more runners than that are loaded at once.
inline constexpr qint64 maxRecords = 32767;

// The proposed file of the open dialog.
inline constexpr char defaultFile[] = "c:\\cri.ent";

struct StartOrderImport {
    QStringList lines; // to be appended to the start-order list, in file order
    int errores = 0;   // the failure count the import leaves behind
};

// The line of one record (1-based record number).
QString line(qint64 recordNumber, qint16 bib, QByteArrayView startTime);

// Imports the file at path (a local path), opened read-only: it is never created or emptied.
StartOrderImport readStartOrder(const QString& path);

// The same on any device; it is opened read-only unless it is open already, and closed at
// the end.
StartOrderImport readStartOrder(QIODevice& device);

} // namespace startorder
