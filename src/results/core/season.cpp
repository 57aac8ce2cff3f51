#include "season.h"

#include "results/core/plaintext.h"

#include <QHash>

#include <algorithm>

namespace season
{

namespace
{

QString raceText(const RaceResult& race)
{
    if (!race.date.isValid())
        return QStringLiteral("«%1»").arg(race.name);
    return QStringLiteral("«%1» del %2")
        .arg(race.name, race.date.toString(QStringLiteral("dd/MM/yyyy")));
}

QString quotedList(const QStringList& names)
{
    QStringList quoted;
    for (const QString& n : names)
        quoted << QStringLiteral("«%1»").arg(n);
    return quoted.join(QStringLiteral(", "));
}

// The names of `table` whose key `other` lacks.
QStringList missingFrom(const QStringList& table, const QStringList& other)
{
    QStringList keys;
    for (const QString& n : other)
        keys << plaintext::folded(n);
    QStringList missing;
    for (const QString& n : table)
        if (!keys.contains(plaintext::folded(n)))
            missing << n.simplified();
    return missing;
}

int placeOf(const Entry& e, const Rules& rules)
{
    return rules.byCategory ? e.categoryPlace : e.place;
}

QString keyOf(const Entry& e)
{
    return e.person.isEmpty() ? personKey(e.name) : e.person;
}

QString refusalOf(const QList<RaceResult>& races, const Rules& rules)
{
    if (races.isEmpty())
        return QStringLiteral("La serie no tiene ninguna carrera.");
    if (rules.bestOf < 0)
        return QStringLiteral("El número de carreras que cuentan no puede ser negativo (%1).")
            .arg(rules.bestOf);
    if (rules.bestOf > races.size()) {
        QStringList names;
        for (const RaceResult& r : races)
            names << raceText(r);
        return QStringLiteral("Cuentan las %1 mejores carreras de cada corredor, pero la serie "
                              "tiene %2: %3.")
            .arg(rules.bestOf)
            .arg(races.size())
            .arg(names.join(QStringLiteral(", ")));
    }
    for (qsizetype i = 1; i < rules.points.size(); ++i)
        if (rules.points[i] > rules.points[i - 1])
            return QStringLiteral("La tabla de puntos da %1 al puesto %2 y %3 al puesto %4: "
                                  "ningún puesto puede dar más puntos que el anterior.")
                .arg(rules.points[i - 1])
                .arg(i)
                .arg(rules.points[i])
                .arg(i + 1);
    if (rules.byCategory) {
        const RaceResult& first = races.first();
        if (first.categoryTable.isEmpty())
            return QStringLiteral("La carrera %1 no tiene categorías: la serie por categorías "
                                  "necesita las de las inscripciones.")
                .arg(raceText(first));
        for (const RaceResult& race : races.mid(1)) {
            const QStringList lacks = missingFrom(first.categoryTable, race.categoryTable);
            const QStringList adds = missingFrom(race.categoryTable, first.categoryTable);
            if (lacks.isEmpty() && adds.isEmpty())
                continue;
            QStringList parts;
            if (!lacks.isEmpty())
                parts << QStringLiteral("le falta %1").arg(quotedList(lacks));
            if (!adds.isEmpty())
                parts << QStringLiteral("tiene además %1").arg(quotedList(adds));
            return QStringLiteral("La carrera %1 usa otras categorías que %2: %3.")
                .arg(raceText(race), raceText(first), parts.join(QStringLiteral("; ")));
        }
    }
    for (const RaceResult& race : races) {
        QStringList keys;
        for (const QString& c : race.categoryTable)
            keys << plaintext::folded(c);
        QHash<QString, QString> seen;
        for (const Entry& e : race.entries) {
            if (placeOf(e, rules) <= 0)
                continue;
            if (rules.byCategory && !keys.contains(plaintext::folded(e.categoria)))
                return QStringLiteral("En la carrera %1, %2 tiene la categoría «%3», que no "
                                      "está entre las categorías de la carrera.")
                    .arg(raceText(race), e.name, e.categoria);
            const QString key = keyOf(e);
            if (key.isEmpty())
                continue;
            if (seen.contains(key))
                return QStringLiteral("En la carrera %1 hay dos corredores llamados «%2»: la "
                                      "serie no puede saber cuál es cuál. Distíngalos en las "
                                      "inscripciones (por ejemplo, con el segundo apellido).")
                    .arg(raceText(race), e.name.simplified());
            seen.insert(key, e.name);
        }
    }
    return QString();
}

// A runner across the races, before the standing is made.
struct Person {
    QString name;
    QString category; // its key by category
    QString categoryName;
    qsizetype latest = -1;
    QList<std::optional<int>> perRace;
};

QString cell(const Standing& s, qsizetype race)
{
    const std::optional<int>& v = s.perRace[race];
    if (!v)
        return QString();
    return s.counted[race] ? QString::number(*v) : QStringLiteral("(%1)").arg(*v);
}

QString shortDate(const RaceResult& race)
{
    return race.date.isValid() ? race.date.toString(QStringLiteral("dd/MM")) : race.name;
}

} // namespace

QString personKey(const QString& fullName)
{
    return plaintext::folded(fullName);
}

RaceResult fromResults(const raceresults::Computed& computed, const raceresults::Input& input)
{
    RaceResult race{input.name, input.date, computed.results.categories, {}};
    for (const classification::Row& row : computed.results.rows) {
        if (row.status != classification::Status::Ranked || row.position <= 0 || row.entrant < 0 ||
            row.entrant >= input.entrants.size())
            continue;
        const entrants::Entrant& e = input.entrants[row.entrant];
        const QString name = e.fullName();
        race.entries << Entry{personKey(name),      name,        e.categoria, e.sexo,
                              row.categoryPosition, row.position};
    }
    return race;
}

Series compute(const QList<RaceResult>& races, const Rules& rules)
{
    Series series;
    series.refusal = refusalOf(races, rules);
    if (!series.refusal.isEmpty())
        return series;

    const qsizetype raceCount = races.size();
    const int counting = rules.bestOf > 0 ? rules.bestOf : int(raceCount);
    const bool summed = rules.points.isEmpty();
    QStringList categoryKeys;
    if (rules.byCategory) {
        for (const QString& c : races.first().categoryTable) {
            if (categoryKeys.contains(plaintext::folded(c)))
                continue;
            categoryKeys << plaintext::folded(c);
            series.categories << c.simplified();
        }
    } else {
        categoryKeys << QString();
        series.categories << QString();
    }

    QList<Person> people;
    QHash<QString, qsizetype> index;
    for (qsizetype r = 0; r < raceCount; ++r) {
        const RaceResult& race = races[r];
        for (const Entry& e : race.entries) {
            const int place = placeOf(e, rules);
            if (place <= 0)
                continue;
            const QString key = keyOf(e);
            if (key.isEmpty())
                continue;
            auto it = index.constFind(key);
            if (it == index.constEnd()) {
                it = index.insert(key, people.size());
                people << Person{{}, {}, {}, -1, QList<std::optional<int>>(raceCount)};
            }
            Person& p = people[*it];
            p.perRace[r] = summed ? place : rules.points.value(place - 1, 0);
            if (p.latest < 0 || race.date >= races[p.latest].date) {
                p.latest = r;
                p.name = e.name.simplified();
                p.category = rules.byCategory ? plaintext::folded(e.categoria) : QString();
                p.categoryName = e.categoria.simplified();
            }
        }
    }

    // The better of two results: more points, or the lower place.
    const auto better = [summed](int a, int b) { return summed ? a < b : a > b; };
    series.standings.resize(series.categories.size());
    for (const Person& p : people) {
        const qsizetype c = categoryKeys.indexOf(p.category);
        Standing s;
        s.name = p.name;
        s.categoria = rules.byCategory ? series.categories[c] : p.categoryName;
        s.perRace = p.perRace;
        s.counted = QList<bool>(raceCount, false);
        QList<qsizetype> run;
        for (qsizetype r = 0; r < raceCount; ++r)
            if (p.perRace[r])
                run << r;
        std::stable_sort(run.begin(), run.end(), [&](qsizetype a, qsizetype b) {
            return better(*p.perRace[a], *p.perRace[b]);
        });
        s.races = int(run.size());
        for (qsizetype i = 0; i < run.size() && i < counting; ++i) {
            s.counted[run[i]] = true;
            s.total += *p.perRace[run[i]];
        }
        series.standings[c] << s;
    }

    const auto ranked = [&](const Standing& s) { return !summed || s.races >= counting; };
    const auto countedResults = [&](const Standing& s) { return std::min(s.races, counting); };
    const auto best = [&](const Standing& s) {
        std::optional<int> b;
        for (const std::optional<int>& v : s.perRace)
            if (v && (!b || better(*v, *b)))
                b = v;
        return b.value_or(0);
    };
    // Equal on the keys that decide: the same position.
    const auto level = [&](const Standing& a, const Standing& b) {
        return a.total == b.total && countedResults(a) == countedResults(b) && best(a) == best(b);
    };
    for (QList<Standing>& list : series.standings) {
        std::stable_sort(list.begin(), list.end(), [&](const Standing& a, const Standing& b) {
            if (ranked(a) != ranked(b))
                return ranked(a);
            if (!ranked(a)) {
                if (a.races != b.races)
                    return a.races > b.races;
                if (a.total != b.total)
                    return a.total < b.total;
            } else if (!level(a, b)) {
                if (a.total != b.total)
                    return better(a.total, b.total);
                if (countedResults(a) != countedResults(b))
                    return countedResults(a) > countedResults(b);
                return better(best(a), best(b));
            }
            return personKey(a.name) < personKey(b.name);
        });
        for (qsizetype i = 0; i < list.size() && ranked(list[i]); ++i)
            list[i].position =
                i > 0 && level(list[i - 1], list[i]) ? list[i - 1].position : int(i) + 1;
    }
    return series;
}

QList<resultsreport::Table> tables(const Series& series, const QList<RaceResult>& races)
{
    using resultsreport::Column;
    using resultsreport::Place;
    QList<resultsreport::Table> made;
    if (!series.refusal.isEmpty())
        return made;
    for (qsizetype c = 0; c < series.categories.size(); ++c) {
        const QList<Standing>& list = series.standings[c];
        if (list.isEmpty())
            continue;
        const QString& category = series.categories[c];
        const bool overall = category.isEmpty();
        resultsreport::Table t;
        t.title = overall ? QStringLiteral("Clasificación general")
                          : QStringLiteral("Categoría %1").arg(category);
        t.label = overall ? QStringLiteral("General") : category;
        t.header = {QStringLiteral("Puesto"), QStringLiteral("Nombre")};
        t.columns = {Column::Number, Column::WideText};
        t.places = {Place::Main, Place::Main};
        if (overall) {
            t.header << QStringLiteral("Categoría");
            t.columns << Column::Text;
            t.places << Place::Detail;
        }
        for (const RaceResult& race : races) {
            t.header << shortDate(race);
            t.columns << Column::Number;
            t.places << Place::NamedDetail;
        }
        t.header << QStringLiteral("Total");
        t.columns << Column::Number;
        t.places << Place::Main;
        for (const Standing& s : list) {
            QStringList cells{s.position > 0 ? QString::number(s.position) : QString(), s.name};
            if (overall)
                cells << s.categoria;
            for (qsizetype r = 0; r < s.perRace.size(); ++r)
                cells << cell(s, r);
            cells << QString::number(s.total);
            t.rows << cells;
        }
        made << t;
    }
    return made;
}

QByteArray csv(const Series& series, const QList<RaceResult>& races)
{
    QStringList header{QStringLiteral("Categoría"), QStringLiteral("Puesto"),
                       QStringLiteral("Nombre")};
    for (const RaceResult& race : races)
        header << (race.date.isValid()
                       ? QStringLiteral("%1 %2").arg(
                             race.name, race.date.toString(QStringLiteral("dd/MM/yyyy")))
                       : race.name);
    header << QStringLiteral("Carreras") << QStringLiteral("Total");
    QList<QStringList> rows{header};
    if (series.refusal.isEmpty())
        for (const QList<Standing>& list : series.standings)
            for (const Standing& s : list) {
                QStringList cells{s.categoria,
                                  s.position > 0 ? QString::number(s.position) : QString(), s.name};
                for (qsizetype r = 0; r < s.perRace.size(); ++r)
                    cells << cell(s, r);
                cells << QString::number(s.races) << QString::number(s.total);
                rows << cells;
            }
    return plaintext::csv(rows);
}

} // namespace season
