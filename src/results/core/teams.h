// The team classification of a race. The first finishers of each team score: their times
// summed, or their places summed, the lower total winning. A team is its runners' club as
// written, case, accents and extra blanks aside, and named as its first finisher spells it;
// runners without a team are passed over.
//
// By sex, men's and women's teams are scored apart, and a runner's place is the place among
// the runners of the same sex (the first woman scores 1 point whatever her overall place).
// The sex is read from M, H, Hombre, Masculino or F, Mujer, Femenino (case, accents and plural
// aside); a team runner whose sex is none of these is left out and told (withoutSex).
//
// Two teams with the same total are parted by their last scorer: the team whose last scorer
// finished ahead comes first. Teams that could not field all their scorers come after the
// complete ones, without a place: the most runners first, then by their total, then by their
// last runner.
#pragma once

#include "results/core/resultsreport.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace teams
{

struct Runner {
    int bib = 0;
    QString name;
    QString team;
    QString sexo;
    int place = 0; // overall place, from 1
    qint64 timeMs = 0;
};

struct Rules {
    int scorers = 3; // the first finishers of a team who score
    enum class Score { Time, Points } score = Score::Time;
    bool bySex = false;
};

struct Team {
    QString name;
    QString sex;           // "Masculino" or "Femenino" by sex; empty otherwise
    int position = 0;      // 0 for an incomplete team
    QList<Runner> scorers; // by sex, their place is the place among their sex
    QList<Runner> others;
    qint64 totalMs = 0;
    int points = 0;
    bool complete = false;
};

// Why the rules cannot score; empty when they can.
QString refusal(const Rules& rules);

// The teams in order: by sex (men, then women), the complete teams ranked, then the
// incomplete. Empty when the rules are refused.
QList<Team> score(const QList<Runner>& runners, const Rules& rules);

// The team runners left out of a classification by sex, their sex not being recognised.
QList<Runner> withoutSex(const QList<Runner>& runners);
// What the operator is told about them; empty when there is none.
QString withoutSexMessage(const QList<Runner>& runners);

// For the printed and web pages: one table, or one a sex by sex, with the place, the team, its
// total and its scorers as "Name (place)".
QList<resultsreport::Table> tables(const QList<Team>& teams, const Rules& rules,
                                   int fractionDigits);

// The spreadsheet: one row a team, its scorers and its other runners.
QByteArray csv(const QList<Team>& teams, const Rules& rules, int fractionDigits);

} // namespace teams
