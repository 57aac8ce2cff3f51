// Everything a race director publishes, computed at once from the race: the classification
// with the timekeeper's statuses and the chosen precision, the awards, the teams, and the
// incidents to look at before signing ("Incidencias"): a bib that finished twice, a bib that is
// not an entrant, an entrant without a category, a runner whose club is not his team's.
#pragma once

#include "results/core/awards.h"
#include "results/core/classification.h"
#include "results/core/resultsreport.h"
#include "results/core/teams.h"

#include <QDate>
#include <QList>
#include <QSettings>
#include <QString>

#include <optional>

namespace raceresults
{

struct Settings {
    classification::Precision precision = classification::Precision::AsTaken;
    awards::Rules awards;
    std::optional<teams::Rules> teams; // none: no team classification
};

struct Input {
    QStringList list1;
    QStringList list2;
    QList<entrants::Entrant> entrants;
    runnerstatus::Marks marks;
    int format = 2; // the time format of the lines: Segundos, Centesimas, Milesimas
    QString name;
    QDate date;
};

struct Incident {
    int bib = 0;
    QString kind;
    QString detail;
};

struct Computed {
    classification::Results results;
    QList<awards::Podium> podiums;
    QList<teams::Team> teams;
    QList<Incident> incidents;
    int fractionDigits = 3;
};

// How results are published, kept for the next race under the group "resultados"; the
// defaults when nothing is kept: times as taken, three awards a category and three overall a
// sex, the overall winners awarded in their categories too, no team classification.
Settings load(const QSettings& settings);
void save(QSettings& settings, const Settings& kept);

// The folder of a race's results inside the results folder, by its date and name
// ("2026-05-10 Trail de la Sierra"), without the characters a file name cannot hold.
QString folderName(const QDate& date, const QString& raceName);

Computed compute(const Input& input, const Settings& settings);

// The results: the classifications, the unclassified, then the incidents on a page of their own.
resultsreport::Report results(const Computed& computed, const Input& input);
// The awards, podium by podium.
resultsreport::Report awardsPage(const Computed& computed, const Input& input);
// The teams; empty when the race has no team classification.
resultsreport::Report teamsPage(const Computed& computed, const Input& input,
                                const Settings& settings);

} // namespace raceresults
