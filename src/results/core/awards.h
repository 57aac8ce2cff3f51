// The awards of a race: the first of each sex overall and the first of each category. With
// "los premiados de la general no repiten", the overall winners are taken out of their
// categories and the next runners move up. Places follow the classification: runners who share
// a place (the same rounded time) share the award.
#pragma once

#include "results/core/classification.h"
#include "results/core/resultsreport.h"

#include <QList>
#include <QString>

namespace awards
{

struct Rules {
    int perCategory = 3;
    int overall = 3; // of each sex; 0: no overall awards
    bool overallExcluded = false;
};

struct Winner {
    int place = 0;
    int row = 0; // in Results::rows
};

struct Podium {
    QString title;
    QList<Winner> winners; // in podium order
};

// The overall podiums (men, then women), then one a category in the order of the categories.
QList<Podium> podiums(const classification::Results& results,
                      const QList<entrants::Entrant>& entrants, const Rules& rules);

// The awards page: a table a podium, place, bib, name, club and time.
QList<resultsreport::Table> tables(const QList<Podium>& podiums,
                                   const classification::Results& results,
                                   const QList<entrants::Entrant>& entrants, int fractionDigits);

} // namespace awards
