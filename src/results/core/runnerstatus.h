// What the timekeeper says of a runner beyond his finish: classified, did not finish, did not
// start, disqualified (with the referee's reason) or out of the time limit. A bib without a mark
// is classified when it finished and did not start when it did not.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

namespace runnerstatus
{

// The marks of the race, kept beside the state file.
inline constexpr char keptFile[] = "MARVO-situaciones.txt";

enum class Kind { Classified, DidNotFinish, DidNotStart, Disqualified, OutOfTime };

struct Mark {
    Kind kind = Kind::Classified;
    QString reason; // a disqualification's; empty otherwise
    bool operator==(const Mark&) const = default;
};

// The marks of a race, by bib.
using Marks = QMap<int, Mark>;

// The status of a bib: its mark, else classified when it finished, else did not start.
Kind of(const Marks& marks, int bib, bool finished);

// "No terminado", "No salió", "Descalificado", "Fuera de control"; "Clasificado".
QString label(Kind kind);
// The short form of the results' columns: "DNF", "DNS", "DSQ", "F.C."; empty when classified.
QString shortLabel(Kind kind);
// The order the unclassified are listed in: did not finish, out of time, disqualified, did
// not start.
int listOrder(Kind kind);

// The kind a typed word names: the Spanish words or the international abbreviations, case
// and accents aside ("dnf", "no terminado", "retirado", "dsq", "descalificado", "fc",
// "fuera de control", "dns", "no salio", "clasificado").
std::optional<Kind> parse(QStringView word);

// The code a kind is written as in the race's files ("C", "DNF", "DNS", "DSQ", "FC"), and back.
QString code(Kind kind);
std::optional<Kind> fromCode(QStringView code);

// One line a mark, "bib<TAB>kind<TAB>reason", UTF-8, for the race's own files; a line that
// cannot be read is passed over.
QByteArray encode(const Marks& marks);
Marks decode(QByteArrayView bytes);

} // namespace runnerstatus
