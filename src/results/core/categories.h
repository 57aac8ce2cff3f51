// Categories worked out from the runners' dates of birth: a table of age ranges, each for men,
// for women or for both, and the rule that says on which day the age is counted.
//
// A table is used only when it passes validate(): every category named, its ages in order, no
// two categories that a runner could both fall in, and no age left uncovered between the
// youngest and the oldest category of a sex. A runner who fits no category (no date of birth, no
// sex where the table needs one, or an age outside the table) is reported, never guessed.
//
// The table travels as a CSV file, UTF-8 with its mark, ";" between fields and CR LF after each
// line. The first line holds the rule, "regla;31_diciembre" or "regla;dia_carrera", so that the
// rest of the file stays a plain table a spreadsheet opens; then the header
// "categoria;sexo;edad_desde;edad_hasta" and one line a category. sexo is "M" (men), "F" (women)
// or "Ambos"; a file read back also takes the other ways of writing a sex that readSex() knows,
// and an empty sexo for both.
#pragma once

#include "results/core/entrants.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QSettings>
#include <QString>
#include <QStringView>

#include <optional>

namespace categories
{

enum class Sex { Both, Male, Female };

// The day the age is counted on: the race day, or 31 December of the race's year (a runner is in
// one category the whole season).
enum class AgeRule { RaceDay, EndOfYear };

// The oldest age a category may reach; the top category of a table usually runs to it.
inline constexpr int maxAge = 120;

struct Category {
    QString name;
    Sex sex = Sex::Both;
    int ageFrom = 0; // both ends included
    int ageTo = maxAge;
};

struct Table {
    QList<Category> categories;
    AgeRule rule = AgeRule::EndOfYear;
};

// The sex of an entrant's sexo field, case and accents aside: "M", "H", "Masculino", "Hombre" for
// a man, "F", "Mujer", "Femenino" for a woman. None for an empty or unknown text.
std::optional<Sex> readSex(QStringView text);

// What is wrong with a table, in Spanish, each problem on its own line naming the categories:
// a category without a name, two with the same name, ages out of 0 to maxAge or in the wrong
// order, two categories of the same sex (Both counts as either) whose ages overlap, and for each
// sex the ages between its youngest and oldest category that no category covers. Empty when the
// table can be used; an empty table is fine and assigns nothing.
QString validate(const Table& table);

// The age of a runner on the day the rule gives. With a whole date, on the race day it is the
// years completed (someone born on 29 February has a birthday on 28 February in a common year),
// and at 31 December the race's year less the year of birth. With the year alone the day of the
// birthday is unknown: either rule gives the race's year less the year of birth, the age the
// runner reaches in the race's year, as federations count with the year alone.
int age(const entrants::BirthDate& birth, QDate raceDay, AgeRule rule);

// The category of an entrant under a valid table, regardless of the one the file gave; none when
// the entrant fits no category.
std::optional<QString> assign(const Table& table, const entrants::Entrant& entrant, QDate raceDay);

// Why an entrant was left without a category.
enum class Reason { NoBirthDate, NoSex, NoCategory };

struct Unassigned {
    int bib = 0;
    Reason reason = Reason::NoCategory;
    int age = 0;            // NoCategory: the runner's age
    std::optional<Sex> sex; // NoCategory: the runner's sex when known
    QString sexo;           // NoSex: the file's text, empty when it gave none
};

// Gives each entrant whose file gave no category the one of the table (which must be valid);
// categories the file gave are kept. Returns the entrants that fit no category, in list order.
// An empty table changes nothing and reports nobody.
QList<Unassigned> apply(QList<entrants::Entrant>& list, const Table& table, QDate raceDay);

// What the operator is told after loading: "Sin categoría: dorsal 12 (sin fecha de nacimiento),
// dorsal 40 (61 años, ninguna categoría masculina)...", the first 20 then how many more. Empty
// when everyone has a category.
QString unassignedMessage(const QList<Unassigned>& unassigned);

// The table as a CSV file (see above).
QByteArray exportCsv(const Table& table);

struct Imported {
    Table table;
    QString refusal; // why nothing was taken, naming the lines or the categories; empty if taken
};

// A table file, read with the entrants' reader (any encoding and separator it takes). Refused
// whole when the rule line or the header is missing, a line cannot be read, or the table is
// not valid.
Imported importCsv(QByteArrayView bytes);

// The table kept for the next race, under the group "categorias". A stored table that cannot be
// read or is not valid loads as an empty table, as does nothing stored.
void save(QSettings& settings, const Table& table);
Table load(const QSettings& settings);

// Common road-running categories, by sex: Sub-20 up to 19, Senior 20 to 34, Veteranos A 35 to
// 44, B 45 to 54 and C from 55, the age counted at 31 December.
Table defaultTable();

} // namespace categories
