#include "categories.h"

#include "results/core/plaintext.h"
#include "results/core/sexes.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

namespace categories
{

namespace
{

constexpr qint64 maxTableBytes = 1024 * 1024;
constexpr qsizetype shownInMessages = 20;

const QString endOfYearWord = QStringLiteral("31_diciembre");
const QString raceDayWord = QStringLiteral("dia_carrera");

QString ruleWord(AgeRule rule)
{
    return rule == AgeRule::EndOfYear ? endOfYearWord : raceDayWord;
}

// The rule as written in a file, also in words: "31 de diciembre", "día de la carrera".
std::optional<AgeRule> readRule(const QString& text)
{
    QStringList words = entrants::plainHeader(text).split(
        QRegularExpression(QStringLiteral("[ _]+")), Qt::SkipEmptyParts);
    words.removeAll(QStringLiteral("de"));
    words.removeAll(QStringLiteral("la"));
    const QString plain = words.join(u'_');
    if (plain == endOfYearWord)
        return AgeRule::EndOfYear;
    if (plain == raceDayWord)
        return AgeRule::RaceDay;
    return std::nullopt;
}

QString sexWord(Sex sex)
{
    switch (sex) {
    case Sex::Male:
        return QStringLiteral("M");
    case Sex::Female:
        return QStringLiteral("F");
    case Sex::Both:
        break;
    }
    return QStringLiteral("Ambos");
}

// The sex column of a table: a sex readSex() knows, or "Ambos" or nothing for both.
std::optional<Sex> readTableSex(const QString& text)
{
    const QString plain = entrants::plainHeader(text);
    if (plain.isEmpty() || plain == u"ambos")
        return Sex::Both;
    return readSex(plain);
}

std::optional<int> readAge(const QString& text)
{
    if (text.isEmpty() || text.size() > 3)
        return std::nullopt;
    for (const QChar c : text)
        if (c < u'0' || c > u'9')
            return std::nullopt;
    return text.toInt();
}

bool sexesMeet(Sex a, Sex b)
{
    return a == Sex::Both || b == Sex::Both || a == b;
}

// "las edades 40 a 44", or "la edad 40" for one age.
QString agesText(int from, int to)
{
    if (from == to)
        return QStringLiteral("la edad %1").arg(from);
    return QStringLiteral("las edades %1 a %2").arg(from).arg(to);
}

// The ages no category of the list covers between its youngest and its oldest, as problems.
// adjective qualifies "categoría" ("femenina"), or is empty when the list serves both sexes.
QStringList gaps(const QList<const Category*>& list, const QString& adjective)
{
    QStringList problems;
    if (list.isEmpty())
        return problems;
    std::array<bool, maxAge + 1> covered{};
    int lowest = maxAge;
    int highest = 0;
    for (const Category* c : list) {
        std::fill(covered.begin() + c->ageFrom, covered.begin() + c->ageTo + 1, true);
        lowest = std::min(lowest, c->ageFrom);
        highest = std::max(highest, c->ageTo);
    }
    const auto endingAt = [&list](int age) {
        return std::find_if(list.cbegin(), list.cend(),
                            [age](const Category* c) { return c->ageTo == age; });
    };
    const auto startingAt = [&list](int age) {
        return std::find_if(list.cbegin(), list.cend(),
                            [age](const Category* c) { return c->ageFrom == age; });
    };
    for (int age = lowest; age <= highest; ++age) {
        if (covered[age])
            continue;
        const int from = age;
        while (age + 1 <= highest && !covered[age + 1])
            ++age;
        // A gap inside the range has a category just below it and one just above it.
        problems << QStringLiteral("Ninguna categoría%1 cubre %2 (entre «%3» y «%4»).")
                        .arg(adjective.isEmpty() ? QString() : u' ' + adjective,
                             agesText(from, age), (*endingAt(from - 1))->name,
                             (*startingAt(age + 1))->name);
    }
    return problems;
}

// The category of an entrant, or why there is none.
std::optional<QString> fit(const Table& table, const entrants::Entrant& entrant, QDate raceDay,
                           Unassigned* miss)
{
    miss->bib = entrant.bib;
    if (!entrant.nacimiento) {
        miss->reason = Reason::NoBirthDate;
        return std::nullopt;
    }
    const int years = age(*entrant.nacimiento, raceDay, table.rule);
    const std::optional<Sex> sex = readSex(entrant.sexo);
    bool needsSex = false;
    for (const Category& c : table.categories) {
        if (years < c.ageFrom || years > c.ageTo)
            continue;
        if (c.sex == Sex::Both || (sex && c.sex == *sex))
            return c.name;
        needsSex = needsSex || !sex;
    }
    if (needsSex) {
        miss->reason = Reason::NoSex;
        miss->sexo = entrant.sexo;
    } else {
        miss->reason = Reason::NoCategory;
        miss->age = years;
        miss->sex = sex;
    }
    return std::nullopt;
}

QString describe(const Unassigned& u)
{
    QString why;
    switch (u.reason) {
    case Reason::NoBirthDate:
        why = QStringLiteral("sin fecha de nacimiento");
        break;
    case Reason::NoSex:
        why = u.sexo.isEmpty() ? QStringLiteral("sin sexo")
                               : QStringLiteral("sexo «%1» desconocido").arg(u.sexo);
        break;
    case Reason::NoCategory:
        why = QStringLiteral("%1 %2, ninguna categoría")
                  .arg(u.age)
                  .arg(u.age == 1 ? QStringLiteral("año") : QStringLiteral("años"));
        if (u.sex == Sex::Male)
            why += QStringLiteral(" masculina");
        else if (u.sex == Sex::Female)
            why += QStringLiteral(" femenina");
        break;
    }
    return QStringLiteral("dorsal %1 (%2)").arg(u.bib).arg(why);
}

} // namespace

std::optional<Sex> readSex(QStringView text)
{
    switch (sexes::of(text.toString())) {
    case sexes::Sex::Male:
        return Sex::Male;
    case sexes::Sex::Female:
        return Sex::Female;
    case sexes::Sex::None:
        break;
    }
    return std::nullopt;
}

QString validate(const Table& table)
{
    const QList<Category>& list = table.categories;
    QStringList problems;
    QHash<QString, int> names;
    for (qsizetype i = 0; i < list.size(); ++i) {
        const Category& c = list[i];
        if (c.name.trimmed().isEmpty()) {
            problems
                << QStringLiteral("La categoría número %1 de la tabla no tiene nombre.").arg(i + 1);
            continue;
        }
        // Results rank a category by its name: two with one name would be ranked together.
        const QString key = c.name.trimmed().toCaseFolded();
        if (names.contains(key) && names[key] == 1)
            problems << QStringLiteral("Hay más de una categoría llamada «%1»: cada una "
                                       "necesita su propio nombre.")
                            .arg(c.name);
        ++names[key];
        if (c.ageFrom < 0 || c.ageTo > maxAge)
            problems << QStringLiteral("Las edades de la categoría «%1» deben estar entre 0 y %2.")
                            .arg(c.name)
                            .arg(maxAge);
        else if (c.ageFrom > c.ageTo)
            problems << QStringLiteral("La categoría «%1» empieza en %2 años y acaba en %3: la "
                                       "primera edad no puede ser mayor que la última.")
                            .arg(c.name)
                            .arg(c.ageFrom)
                            .arg(c.ageTo);
    }
    if (!problems.isEmpty())
        return problems.join(u'\n');

    for (qsizetype i = 0; i < list.size(); ++i)
        for (qsizetype j = i + 1; j < list.size(); ++j) {
            const Category& a = list[i];
            const Category& b = list[j];
            const int from = std::max(a.ageFrom, b.ageFrom);
            const int to = std::min(a.ageTo, b.ageTo);
            if (sexesMeet(a.sex, b.sex) && from <= to)
                problems << QStringLiteral("Las categorías «%1» y «%2» se solapan en %3.")
                                .arg(a.name, b.name, agesText(from, to));
        }

    const bool bySex = std::any_of(list.cbegin(), list.cend(),
                                   [](const Category& c) { return c.sex != Sex::Both; });
    if (!bySex) {
        QList<const Category*> all;
        for (const Category& c : list)
            all << &c;
        problems << gaps(all, QString());
    } else {
        for (const Sex sex : {Sex::Male, Sex::Female}) {
            QList<const Category*> ofSex;
            for (const Category& c : list)
                if (sexesMeet(c.sex, sex))
                    ofSex << &c;
            problems << gaps(ofSex, sex == Sex::Male ? QStringLiteral("masculina")
                                                     : QStringLiteral("femenina"));
        }
    }
    return problems.join(u'\n');
}

int age(const entrants::BirthDate& birth, QDate raceDay, AgeRule rule)
{
    if (rule == AgeRule::EndOfYear || !birth.date)
        return raceDay.year() - birth.year;
    // addYears() puts 29 February on 28 February in a common year.
    int years = raceDay.year() - birth.date->year();
    if (birth.date->addYears(years) > raceDay)
        --years;
    return years;
}

std::optional<QString> assign(const Table& table, const entrants::Entrant& entrant, QDate raceDay)
{
    Unassigned miss;
    return fit(table, entrant, raceDay, &miss);
}

QList<Unassigned> apply(QList<entrants::Entrant>& list, const Table& table, QDate raceDay)
{
    QList<Unassigned> unassigned;
    if (table.categories.isEmpty())
        return unassigned;
    for (entrants::Entrant& entrant : list) {
        if (!entrant.categoria.isEmpty())
            continue;
        Unassigned miss;
        if (const std::optional<QString> name = fit(table, entrant, raceDay, &miss))
            entrant.categoria = *name;
        else
            unassigned << miss;
    }
    return unassigned;
}

QString unassignedMessage(const QList<Unassigned>& unassigned)
{
    if (unassigned.isEmpty())
        return QString();
    QStringList shown;
    for (qsizetype i = 0; i < unassigned.size() && i < shownInMessages; ++i)
        shown << describe(unassigned[i]);
    QString text = QStringLiteral("Sin categoría: ") + shown.join(QStringLiteral(", "));
    if (unassigned.size() > shownInMessages)
        text += QStringLiteral(" y %1 más").arg(unassigned.size() - shownInMessages);
    return text + u'.';
}

QByteArray exportCsv(const Table& table)
{
    QList<QStringList> rows{{QStringLiteral("regla"), ruleWord(table.rule)},
                            {QStringLiteral("categoria"), QStringLiteral("sexo"),
                             QStringLiteral("edad_desde"), QStringLiteral("edad_hasta")}};
    for (const Category& c : table.categories)
        rows << QStringList{c.name, sexWord(c.sex), QString::number(c.ageFrom),
                            QString::number(c.ageTo)};
    return plaintext::csv(rows);
}

Imported importCsv(QByteArrayView bytes)
{
    Imported imported;
    if (bytes.size() > maxTableBytes) {
        imported.refusal = QStringLiteral("El fichero ocupa más de 1 MB: no parece una tabla de "
                                          "categorías.");
        return imported;
    }
    const QString text = entrants::decode(bytes);
    const QList<entrants::Record> records = entrants::parse(text, entrants::detectSeparator(text));
    if (records.isEmpty()) {
        imported.refusal = QStringLiteral("El fichero está vacío.");
        return imported;
    }

    const entrants::Record& ruleLine = records.first();
    const std::optional<AgeRule> rule = entrants::plainHeader(ruleLine.fields.value(0)) == u"regla"
                                            ? readRule(ruleLine.fields.value(1))
                                            : std::nullopt;
    if (!rule) {
        imported.refusal =
            QStringLiteral("La línea %1 debe dar la regla de la edad: «regla;31_diciembre» (la "
                           "edad a 31 de diciembre) o «regla;dia_carrera» (la edad el día de la "
                           "carrera). No se ha cargado la tabla.")
                .arg(ruleLine.line);
        return imported;
    }

    enum Column { Name, SexColumn, From, To, Columns };
    const QString headers[Columns] = {QStringLiteral("categoria"), QStringLiteral("sexo"),
                                      QStringLiteral("edad_desde"), QStringLiteral("edad_hasta")};
    if (records.size() < 2) {
        imported.refusal = QStringLiteral("Después de la regla falta la cabecera "
                                          "«categoria;sexo;edad_desde;edad_hasta».");
        return imported;
    }
    const entrants::Record& header = records[1];
    qsizetype at[Columns];
    for (int c = 0; c < Columns; ++c) {
        at[c] = -1;
        for (qsizetype i = 0; i < header.fields.size() && at[c] < 0; ++i)
            if (entrants::plainHeader(header.fields[i]).replace(u' ', u'_') == headers[c])
                at[c] = i;
        if (at[c] < 0) {
            imported.refusal = QStringLiteral("A la cabecera de la línea %1 le falta la columna "
                                              "«%2». No se ha cargado la tabla.")
                                   .arg(header.line)
                                   .arg(headers[c]);
            return imported;
        }
    }
    if (records.size() < 3) {
        imported.refusal = QStringLiteral("El fichero no tiene ninguna categoría.");
        return imported;
    }

    QStringList bad;
    Table table;
    table.rule = *rule;
    for (qsizetype r = 2; r < records.size(); ++r) {
        const entrants::Record& record = records[r];
        const auto field = [&record, &at](Column c) { return record.fields.value(at[c]); };
        Category category;
        category.name = field(Name).trimmed();
        const std::optional<Sex> sex = readTableSex(field(SexColumn));
        const std::optional<int> from = readAge(field(From).trimmed());
        const std::optional<int> to = readAge(field(To).trimmed());
        QString why;
        if (record.openQuote)
            why = QStringLiteral("unas comillas se abren y no se cierran");
        else if (category.name.isEmpty())
            why = QStringLiteral("la categoría no tiene nombre");
        else if (!sex)
            why = QStringLiteral("el sexo «%1» no es M, F ni Ambos").arg(field(SexColumn));
        else if (!from)
            why = QStringLiteral("la edad «%1» no es un número").arg(field(From));
        else if (!to)
            why = QStringLiteral("la edad «%1» no es un número").arg(field(To));
        if (!why.isEmpty()) {
            bad << QStringLiteral("Línea %1: %2.").arg(record.line).arg(why);
            continue;
        }
        category.sex = *sex;
        category.ageFrom = *from;
        category.ageTo = *to;
        table.categories << category;
    }
    if (bad.size() > shownInMessages) {
        const qsizetype more = bad.size() - shownInMessages;
        bad.resize(shownInMessages);
        bad << QStringLiteral("Y %1 %2 más.")
                   .arg(more)
                   .arg(more == 1 ? QStringLiteral("línea") : QStringLiteral("líneas"));
    }
    const QString problems = bad.isEmpty() ? validate(table) : bad.join(u'\n');
    if (!problems.isEmpty()) {
        imported.refusal = QStringLiteral("No se ha cargado la tabla de categorías:\n") + problems;
        return imported;
    }
    imported.table = table;
    return imported;
}

void save(QSettings& settings, const Table& table)
{
    settings.remove(QStringLiteral("categorias"));
    settings.beginGroup(QStringLiteral("categorias"));
    settings.setValue(QStringLiteral("regla"), ruleWord(table.rule));
    settings.setValue(QStringLiteral("cantidad"), table.categories.size());
    for (qsizetype i = 0; i < table.categories.size(); ++i) {
        const Category& c = table.categories[i];
        const QString key = QString::number(i + 1) + u'/';
        settings.setValue(key + QStringLiteral("nombre"), c.name);
        settings.setValue(key + QStringLiteral("sexo"), sexWord(c.sex));
        settings.setValue(key + QStringLiteral("desde"), c.ageFrom);
        settings.setValue(key + QStringLiteral("hasta"), c.ageTo);
    }
    settings.endGroup();
}

Table load(const QSettings& settings)
{
    // QSettings is read through whole keys: beginGroup() is not available on a const object.
    const QString group = QStringLiteral("categorias/");
    const auto value = [&](const QString& key) { return settings.value(group + key); };
    bool ok = false;
    const int count = value(QStringLiteral("cantidad")).toInt(&ok);
    const std::optional<AgeRule> rule = readRule(value(QStringLiteral("regla")).toString());
    if (!ok || count < 0 || count > 1000 || !rule)
        return Table();
    Table table;
    table.rule = *rule;
    for (int i = 1; i <= count; ++i) {
        const QString key = QString::number(i) + u'/';
        Category c;
        c.name = value(key + QStringLiteral("nombre")).toString();
        const std::optional<Sex> sex = readTableSex(value(key + QStringLiteral("sexo")).toString());
        bool fromOk = false;
        bool toOk = false;
        c.ageFrom = value(key + QStringLiteral("desde")).toInt(&fromOk);
        c.ageTo = value(key + QStringLiteral("hasta")).toInt(&toOk);
        if (!sex || !fromOk || !toOk)
            return Table();
        c.sex = *sex;
        table.categories << c;
    }
    if (!validate(table).isEmpty())
        return Table();
    return table;
}

Table defaultTable()
{
    Table table;
    table.rule = AgeRule::EndOfYear;
    table.categories = {
        {QStringLiteral("Sub-20 masculino"), Sex::Male, 0, 19},
        {QStringLiteral("Senior masculino"), Sex::Male, 20, 34},
        {QStringLiteral("Veteranos A"), Sex::Male, 35, 44},
        {QStringLiteral("Veteranos B"), Sex::Male, 45, 54},
        {QStringLiteral("Veteranos C"), Sex::Male, 55, maxAge},
        {QStringLiteral("Sub-20 femenino"), Sex::Female, 0, 19},
        {QStringLiteral("Senior femenino"), Sex::Female, 20, 34},
        {QStringLiteral("Veteranas A"), Sex::Female, 35, 44},
        {QStringLiteral("Veteranas B"), Sex::Female, 45, 54},
        {QStringLiteral("Veteranas C"), Sex::Female, 55, maxAge},
    };
    return table;
}

} // namespace categories
