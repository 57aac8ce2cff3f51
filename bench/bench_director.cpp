// The results a race director signs, for a big race: 10,000 entrants with dates of birth and
// no category (8 categories from the table), 300 clubs, 10,000 finishers with statuses; then a
// season of 20 kept races of 2,000 runners.
//   build/bench/bench_director
#include "benchutil.h"
#include "results/core/categories.h"
#include "results/core/raceresults.h"
#include "results/core/season.h"
#include "results/resultspdf.h"

#include <QGuiApplication>

namespace
{

// Eight categories, four a sex, ages 0 to 120.
categories::Table eightCategories()
{
    using categories::Sex;
    categories::Table t;
    t.rule = categories::AgeRule::EndOfYear;
    for (const Sex sex : {Sex::Male, Sex::Female}) {
        const QString s = sex == Sex::Male ? QStringLiteral("M") : QStringLiteral("F");
        t.categories << categories::Category{QStringLiteral("Sub-23 ") + s, sex, 0, 22}
                     << categories::Category{QStringLiteral("Senior ") + s, sex, 23, 34}
                     << categories::Category{QStringLiteral("Veteranos A ") + s, sex, 35, 49}
                     << categories::Category{QStringLiteral("Veteranos B ") + s, sex, 50, 120};
    }
    return t;
}

// A race of `n` runners from the entrant `first` on, finishing in an order of their own.
raceresults::Input race(int n, int first, int seed)
{
    QByteArray csv = "Dorsal;Nombre;Apellidos;Club;Sexo;Nacimiento\r\n";
    QStringList list1;
    for (int i = 1; i <= n; ++i) {
        const int person = first + i;
        csv += QStringLiteral("%1;Nombre%2;Apellido%3;Club %4;%5;%6\r\n")
                   .arg(i)
                   .arg(person)
                   .arg(person % 997)
                   .arg(person % 300)
                   .arg(person % 2 ? QStringLiteral("M") : QStringLiteral("F"))
                   .arg(1950 + person % 55)
                   .toUtf8();
        const int bib = (i * 7919 + seed) % n + 1;
        list1 << QStringLiteral("%1-%2- %3 - 0:00:00:000").arg(i, 4).arg(bib, 4).arg(finishTime(i));
    }
    raceresults::Input input;
    input.list1 = list1;
    input.entrants = entrants::read(csv).entrants;
    categories::apply(input.entrants, eightCategories(), QDate(2026, 11, 23));
    for (int bib = 7; bib <= n; bib += 97)
        input.marks.insert(bib, {runnerstatus::Kind::DidNotFinish, {}});
    input.name = QStringLiteral("Carrera %1").arg(seed);
    input.date = QDate(2026, 1, 1).addDays(seed * 7);
    return input;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    raceresults::Settings settings;
    settings.precision = classification::Precision::WholeSecond;
    settings.awards.overallExcluded = true;
    settings.teams = teams::Rules{4, teams::Rules::Score::Points, true};

    const raceresults::Input big = race(10000, 0, 1);
    std::printf(
        "10,000 entrants in %lld categories, 10,000 finishers, %lld statuses\n",
        static_cast<long long>(raceresults::compute(big, settings).results.categories.size()),
        static_cast<long long>(big.marks.size()));
    raceresults::Computed computed;
    report("classify with statuses, awards, teams and incidents",
           measure(11, [&] { computed = raceresults::compute(big, settings); }), 100);
    const resultsreport::Report results = raceresults::results(computed, big);
    report("resultados.pdf of 10,000", measure(5, [&] { resultspdf::render(results); }), 500);
    report("premios.pdf",
           measure(5, [&] { resultspdf::render(raceresults::awardsPage(computed, big)); }));
    report("equipos.pdf", measure(5, [&] {
               resultspdf::render(raceresults::teamsPage(computed, big, settings));
           }));

    // A season: 20 races of 2,000 runners drawn from 3,000 people.
    QList<season::RaceResult> races;
    for (int r = 0; r < 20; ++r) {
        const raceresults::Input input = race(2000, (r * 50) % 1000, r + 2);
        races << season::fromResults(raceresults::compute(input, {}), input);
    }
    season::Rules rules;
    rules.points = {100, 95, 91, 88, 85, 82, 80, 78, 76, 74,
                    72,  70, 68, 66, 64, 62, 60, 58, 56, 54};
    rules.bestOf = 12;
    season::Series series;
    report("a season of 20 races of 2,000 runners, best 12",
           measure(11, [&] { series = season::compute(races, rules); }), 500);
    if (!series.refusal.isEmpty())
        std::printf("refused: %s\n", qPrintable(series.refusal));
    return 0;
}
