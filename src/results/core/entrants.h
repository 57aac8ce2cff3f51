// The entrants of a race, loaded from a spreadsheet saved as CSV: a header row, then one row a
// runner. The separator (";", "," or a tab) and the encoding (UTF-8, with or without its mark,
// UTF-16 with its mark, or Windows-1252) are taken from the file itself. Columns are found by their
// header, case and accents aside: dorsal (required), nombre, apellidos, club, equipo, categoria,
// sexo, nacimiento (the date of birth) and salida, the start time of a time trial on the race
// clock (h:mm:ss). Other columns are ignored.
#pragma once

#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace entrants
{

inline constexpr qint64 maxFileBytes = 20 * 1024 * 1024;
// The copy of the loaded file kept beside the state file, read again at start-up.
inline constexpr char keptFile[] = "MARVO-inscritos.csv";
// The race name, kept beside it.
inline constexpr char raceNameFile[] = "MARVO-carrera.txt";
// The bibs a list line can hold.
inline constexpr int maxBib = 9999;

// A date of birth as the file gives it: a whole date, or the year alone when that is all the
// file says. year is always set; date, when present, falls in that year.
struct BirthDate {
    int year = 0;
    std::optional<QDate> date;
};

// The oldest year of birth a file may give.
inline constexpr int firstBirthYear = 1900;

struct Entrant {
    int bib = 0;
    QString nombre;
    QString apellidos;
    QString club;
    QString equipo; // the team the runner scores for, when it is not the club
    QString categoria;
    QString sexo;
    std::optional<BirthDate> nacimiento; // none when the file leaves it empty
    std::optional<qint64> salidaMs;      // start time on the race clock, in milliseconds

    // The name as results print it: first name, then surnames.
    QString fullName() const;
    // The team the runner counts for: the equipo column when given, else the club.
    QString team() const;
};

struct Loaded {
    QList<Entrant> entrants;   // in file order
    QList<int> skippedLines;   // rows without a usable bib, by the file line they start on
    QList<int> badStartLines;  // rows loaded without their unreadable start time
    QList<int> openQuoteLines; // rows whose quote is never closed, read to the end of the line
    QString refusal;           // why nothing was loaded; empty when the file was taken
};

// A header or a word as the file's columns and values are compared: trimmed, lower case, accents
// dropped ("Categoría " gives "categoria").
QString plainHeader(const QString& header);

// The text of the file: UTF-16 after its mark (either byte order), UTF-8 when it is valid
// UTF-8 (its mark dropped), else Windows-1252.
QString decode(QByteArrayView bytes);

// The separator of the file: the one of ";", tab and "," found most often in the header line.
QChar detectSeparator(QStringView text);

// The records of a CSV text: quoted fields may hold separators, doubled quotes and line breaks;
// unquoted fields are trimmed; blank lines are passed over. Each record comes with the line
// (1-based) it starts on. A quote left open (never closed, or "closed" lines later by a quote
// that no separator or line end follows) closes at the end of its own line.
struct Record {
    int line = 0;
    QStringList fields;
    bool openQuote = false; // a quote of the record was left open
};
QList<Record> parse(QStringView text, QChar separator);

// The whole reading: refused when larger than maxFileBytes, without a header row, without a
// "dorsal" column, or when a row's date of birth cannot be read (the rows are named; a wrong date
// would put the runner in a wrong category). Rows with a missing, non-numeric, out-of-range or
// repeated bib are skipped.
Loaded read(QByteArrayView bytes);

// What the operator is told about the skipped rows, the unreadable start times and the quotes
// left open: their lines, the first 20, then how many more. Empty when there is none.
QString skippedMessage(const Loaded& loaded);

// A date of birth: dd/mm/aaaa (d/m/aaaa too), aaaa-mm-dd, or the year alone, "1984". None for
// anything else, a date that does not exist (31/02/1990), a year before firstBirthYear, or a
// date or year after today.
std::optional<BirthDate> readBirthDate(QStringView text, QDate today = QDate::currentDate());

// A time of the race clock, h:mm:ss with an optional fraction after "." or ",", or mm:ss.
std::optional<qint64> readClockTime(QStringView text);

} // namespace entrants
