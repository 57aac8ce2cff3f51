#include "resultsreport.h"

#include "results/core/plaintext.h"

namespace resultsreport
{

namespace
{

using classification::Row;
using classification::Status;

QString optionalClock(const std::optional<qint64>& ms, int fractionDigits)
{
    return ms ? clockText(*ms, fractionDigits) : QString();
}

QString gapText(const std::optional<qint64>& ms, int fractionDigits)
{
    // The leader's own gap is left blank.
    return ms && *ms > 0 ? u'+' + clockText(*ms, fractionDigits) : QString();
}

const entrants::Entrant* entrantOf(const Row& row, const QList<entrants::Entrant>& entrants)
{
    return row.entrant >= 0 ? &entrants[row.entrant] : nullptr;
}

QString statusText(Status status)
{
    switch (status) {
    case Status::BeforeStart:
        return QStringLiteral("Llegada antes de su salida");
    case Status::NoStart:
        return QStringLiteral("Sin hora de salida");
    case Status::Unidentified:
        return QStringLiteral("Sin identificar");
    case Status::Repeated:
        return QStringLiteral("Repetidos");
    case Status::Ranked:
        break;
    }
    return QString();
}

// The status of an unclassified runner, with a disqualification's reason.
QString kindText(const Row& row, const runnerstatus::Marks& marks)
{
    QString text = runnerstatus::label(row.kind);
    const QString reason = marks.value(row.bib).reason;
    if (row.kind == runnerstatus::Kind::Disqualified && !reason.isEmpty())
        text += QStringLiteral(" (%1)").arg(reason);
    return text;
}

// The columns of a classification and of a table of finishes that are not ranked.
struct Columns {
    const classification::Results& results;
    const QList<entrants::Entrant>& entrants;
    int digits;

    static void add(Table& t, const QString& header, Column column, Place place)
    {
        t.header << header;
        t.columns << column;
        t.places << place;
    }
    void entrantHeader(Table& t) const
    {
        if (!results.withEntrants)
            return;
        add(t, QStringLiteral("Nombre"), Column::WideText, Place::Main);
        add(t, QStringLiteral("Club"), Column::WideText, Place::Detail);
        add(t, QStringLiteral("Categoría"), Column::Text, Place::Detail);
    }
    void entrantCells(QStringList& cells, const Row& row) const
    {
        if (!results.withEntrants)
            return;
        const entrants::Entrant* e = entrantOf(row, entrants);
        cells << (e ? e->fullName() : QString()) << (e ? e->club : QString())
              << (e ? e->categoria : QString());
    }

    Table ranked(const QString& title, const QString& label) const
    {
        Table t{title, label, {}, {}, {}, {}};
        add(t, QStringLiteral("Pos."), Column::Number, Place::Main);
        add(t, QStringLiteral("Dorsal"), Column::Number, Place::Main);
        entrantHeader(t);
        if (results.timeTrial) {
            add(t, QStringLiteral("Salida"), Column::Number, Place::NamedDetail);
            add(t, QStringLiteral("Tiempo neto"), Column::Number, Place::Main);
        } else {
            add(t, QStringLiteral("Tiempo"), Column::Number, Place::Main);
        }
        add(t, QStringLiteral("Diferencia"), Column::Number, Place::Detail);
        return t;
    }
    QStringList rankedCells(const Row& row, int position, const std::optional<qint64>& gap) const
    {
        QStringList cells{QString::number(position), QString::number(row.bib)};
        entrantCells(cells, row);
        if (results.timeTrial)
            cells << optionalClock(row.startMs, digits);
        cells << optionalClock(row.timeMs, digits) << gapText(gap, digits);
        return cells;
    }

    // The finish time on the race clock; before the runner's start, the start beside it.
    Table apart(Status status) const
    {
        Table t{statusText(status), {}, {}, {}, {}, {}};
        add(t, QStringLiteral("Llegada"), Column::Number, Place::Main);
        add(t, QStringLiteral("Dorsal"), Column::Number, Place::Main);
        entrantHeader(t);
        if (status == Status::BeforeStart)
            add(t, QStringLiteral("Salida"), Column::Number, Place::NamedDetail);
        add(t, QStringLiteral("Tiempo"), Column::Number, Place::Main);
        return t;
    }
    // The entrants not classified, by category, with their status.
    Table unclassified() const
    {
        Table t{
            QStringLiteral("No clasificados"), QStringLiteral("No clasificados"), {}, {}, {}, {}};
        add(t, QStringLiteral("Dorsal"), Column::Number, Place::Main);
        add(t, QStringLiteral("Nombre"), Column::WideText, Place::Main);
        add(t, QStringLiteral("Club"), Column::WideText, Place::Detail);
        add(t, QStringLiteral("Categoría"), Column::Text, Place::Detail);
        add(t, QStringLiteral("Situación"), Column::Text, Place::Main);
        return t;
    }
    QStringList unclassifiedCells(const Row& row, const runnerstatus::Marks& marks) const
    {
        const entrants::Entrant* e = entrantOf(row, entrants);
        return {QString::number(row.bib), e ? e->fullName() : QString(), e ? e->club : QString(),
                e ? e->categoria : QString(), kindText(row, marks)};
    }
    QStringList apartCells(const Row& row) const
    {
        QStringList cells{QString::number(row.arrival), QString::number(row.bib)};
        entrantCells(cells, row);
        if (row.status == Status::BeforeStart)
            cells << optionalClock(row.startMs, digits);
        cells << optionalClock(row.finishMs, digits);
        return cells;
    }
};

QString escaped(const QString& text)
{
    return text.toHtmlEscaped();
}

} // namespace

QString clockText(qint64 ms, int fractionDigits)
{
    const bool negative = ms < 0;
    if (negative)
        ms = -ms;
    const qint64 seconds = ms / 1000;
    QString text = QStringLiteral("%1%2:%3:%4")
                       .arg(negative ? QStringLiteral("-") : QString())
                       .arg(seconds / 3600)
                       .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                       .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    if (fractionDigits == 3)
        text += QStringLiteral(",%1").arg(ms % 1000, 3, 10, QLatin1Char('0'));
    else if (fractionDigits == 1)
        text += QStringLiteral(",%1").arg(ms % 1000 / 100);
    else if (fractionDigits == 2)
        text += QStringLiteral(",%1").arg(ms % 1000 / 10, 2, 10, QLatin1Char('0'));
    return text;
}

int fractionDigitsOf(int format, classification::Precision precision)
{
    if (precision == classification::Precision::Tenth)
        return 1;
    if (precision == classification::Precision::WholeSecond)
        return 0;
    return format == 1 ? 2 : format == 2 ? 3 : 0;
}

Report report(const classification::Results& results, const QList<entrants::Entrant>& entrants,
              int fractionDigits, const QString& raceName, const QDate& date,
              const runnerstatus::Marks& marks)
{
    const Columns columns{results, entrants, fractionDigits};
    Report report{raceName, date, {}, {}};

    Table general =
        columns.ranked(QStringLiteral("Clasificación general"), QStringLiteral("General"));
    QList<Table> byCategory;
    for (const QString& category : results.categories)
        byCategory << columns.ranked(QStringLiteral("Categoría %1").arg(category), category);
    QList<Table> apart;
    Status apartStatus = Status::Ranked;
    for (const Row& row : results.rows) {
        if (row.status == Status::Ranked) {
            general.rows << columns.rankedCells(row, row.position, row.gapMs);
            if (row.categoryPosition > 0) {
                const qsizetype c = results.categories.indexOf(entrants[row.entrant].categoria);
                byCategory[c].rows
                    << columns.rankedCells(row, row.categoryPosition, row.categoryGapMs);
            }
            continue;
        }
        if (row.status != apartStatus) {
            apartStatus = row.status;
            apart << columns.apart(row.status);
        }
        apart.last().rows << columns.apartCells(row);
    }
    report.summary << Summary{QStringLiteral("Clasificados: %1").arg(general.rows.size()), 0};
    report.tables << general;
    for (const Table& t : byCategory)
        if (!t.rows.isEmpty())
            report.tables << t;
    for (const Table& t : apart) {
        report.summary << Summary{QStringLiteral("%1: %2").arg(t.title).arg(t.rows.size()),
                                  static_cast<int>(report.tables.size())};
        report.tables << t;
    }
    if (!results.unclassified.isEmpty()) {
        // A count a status, in the order the table lists them.
        QMap<int, std::pair<runnerstatus::Kind, int>> counts;
        Table t = columns.unclassified();
        for (const Row& row : results.unclassified) {
            t.rows << columns.unclassifiedCells(row, marks);
            auto& count = counts[runnerstatus::listOrder(row.kind)];
            count.first = row.kind;
            ++count.second;
        }
        for (const auto& [kind, count] : std::as_const(counts))
            report.summary << Summary{
                QStringLiteral("%1: %2").arg(runnerstatus::label(kind)).arg(count),
                static_cast<int>(report.tables.size())};
        report.tables << t;
    }
    return report;
}

namespace
{

// How the columns of a table look, the same for every table with the same columns: each
// column's part in the page's rules, as selectors of its cells.
struct Looks {
    // The rules' selectors: numbers, short texts kept on one line, and on a phone the cells of
    // the first line's name and time, the second line's cells, the short texts there, and the
    // cells shown after their header.
    QStringList number, shortText, name, time, detail, shortDetail;
    QList<std::pair<QString, QString>> named; // selector, header
    QStringList signatures;                   // one a kind of table, its class "kN"

    // The class of a table's <table>, its columns added to the rules the first time.
    QString of(const Table& t)
    {
        QString signature;
        for (qsizetype c = 0; c < t.header.size(); ++c)
            signature +=
                QStringLiteral("%1%2%3|")
                    .arg(int(t.columns.value(c)))
                    .arg(int(t.places.value(c)))
                    .arg(t.places.value(c) == Place::NamedDetail ? t.header[c] : QString());
        qsizetype k = signatures.indexOf(signature);
        if (k >= 0)
            return QStringLiteral("k%1").arg(k);
        k = signatures.size();
        signatures << signature;
        // The time is the last number of the first line; every table begins with two numbers,
        // the place and the bib, which the rules set apart on their own.
        qsizetype last = -1;
        for (qsizetype c = 0; c < t.header.size(); ++c)
            if (t.places.value(c) == Place::Main && t.columns.value(c) == Column::Number)
                last = c;
        bool wide = false;
        for (qsizetype c = 0; c < t.header.size(); ++c) {
            const QString cell = QStringLiteral("table.k%1 td:nth-child(%2)").arg(k).arg(c + 1);
            const Column column = t.columns.value(c);
            const Place place = t.places.value(c);
            if (column == Column::Number)
                number << cell << QStringLiteral("table.k%1 th:nth-child(%2)").arg(k).arg(c + 1);
            else if (column == Column::Text)
                shortText << cell;
            if (place == Place::Main) {
                if (column == Column::WideText && !wide) {
                    name << cell;
                    wide = true;
                }
                if (c == last && c > 1)
                    time << cell;
                continue;
            }
            detail << cell;
            if (column == Column::Text)
                shortDetail << cell;
            if (place == Place::NamedDetail)
                named.append({cell, t.header[c]});
        }
        return QStringLiteral("k%1").arg(k);
    }

    QString rules() const
    {
        const auto rule = [](const QStringList& selectors, const char* declarations) {
            return selectors.isEmpty() ? QString()
                                       : selectors.join(u',') + u'{' + QLatin1String(declarations) +
                                             QStringLiteral("}\n");
        };
        QString css = rule(number, "text-align:right;white-space:nowrap;"
                                   "font-variant-numeric:tabular-nums") +
                      rule(shortText, "white-space:nowrap");
        css += QStringLiteral("@media screen and (max-width:40em){\n");
        css += rule(name, "flex:1 1 0;min-width:0;overflow-wrap:anywhere;font-weight:600") +
               rule(time, "margin-left:auto") +
               rule(detail, "order:2;font-size:.85em;color:#555;text-align:left;"
                            "margin-right:.4em") +
               rule(shortDetail, "white-space:normal");
        for (const auto& [selector, header] : named)
            css += QStringLiteral("%1:not(:empty)::before{content:\"%2 \"}\n")
                       .arg(selector, header.toHtmlEscaped());
        css += QStringLiteral("}\n");
        return css;
    }
};

} // namespace

QByteArray html(const Report& report)
{
    // A phone first: below 40em the table's rows become two lines, place, bib, name and time
    // on the first, the other cells smaller on the second (the start after its header), both
    // to the right of the place and the bib. Wider, and on paper, the tables are plain tables.
    // The cells carry no classes: the rules pick them by their column, which keeps a big
    // race's page small.
    static const QString style = QStringLiteral(
        "body{font-family:system-ui,sans-serif;margin:0 auto;padding:.5em .6em;max-width:72em;"
        "color:#222;line-height:1.35}\n"
        "h1{font-size:1.35em;margin:.2em 0}\np.fecha{color:#555;margin:0}\n"
        "p.resumen{margin:.5em 0}\np.resumen a{color:#a40000;font-weight:bold}\n"
        "nav{margin:.6em 0}\n"
        "nav a{display:inline-block;margin:0 .3em .4em 0;padding:.3em .75em;border:1px solid "
        "#9bb;border-radius:1em;color:#0b4f8a;background:#f2f7fb;text-decoration:none}\n"
        "h2{font-size:1.1em;margin:1.3em 0 .3em}\n"
        "h2 a{font-size:.75em;font-weight:normal;margin-left:.8em;color:#0b4f8a}\n"
        "table{border-collapse:collapse;width:100%}\n"
        "th,td{padding:.3em .5em;border-bottom:1px solid #ddd;text-align:left;"
        "vertical-align:top}\n"
        "th{background:#eee}\n"
        "tbody tr:nth-child(even){background:#f6f6f6}\n"
        "@media screen and (max-width:40em){\n"
        "body{padding:.4em}\nthead{display:none}\ntable,tbody{display:block}\n"
        "tr{display:flex;flex-wrap:wrap;align-items:baseline;position:relative;"
        "padding:.3em 0 .3em 5.7em;border-bottom:1px solid #ddd}\n"
        "td{border:0;padding:0 .25em}\n"
        "td:nth-child(-n+2){position:absolute;top:.3em;box-sizing:border-box;text-align:right}\n"
        "td:nth-child(1){left:0;width:2.9em}\ntd:nth-child(2){left:2.9em;width:2.8em}\n"
        "tr::after{content:\"\";order:1;flex-basis:100%}\n"
        "td:empty{display:none}\n"
        "}\n"
        "@media print{nav,h2 a{display:none}body{max-width:none;padding:0;font-size:9pt}"
        "th,td{padding:.15em .4em}tr{break-inside:avoid}h2{break-after:avoid}}\n");
    const auto anchor = [](qsizetype table) { return QStringLiteral("t%1").arg(table); };

    Looks looks;
    QStringList kinds;
    for (const Table& t : report.tables)
        kinds << looks.of(t);

    QString page;
    qsizetype rows = 0;
    for (const Table& t : report.tables)
        rows += t.rows.size();
    page.reserve(4096 + rows * 160);
    const QString title =
        report.raceName.isEmpty() ? QStringLiteral("Resultados") : escaped(report.raceName);
    page +=
        QStringLiteral("<!DOCTYPE html>\n<html lang=\"es\">\n<head>\n<meta charset=\"utf-8\"/>\n"
                       "<meta name=\"viewport\" content=\"width=device-width, "
                       "initial-scale=1\"/>\n<title>%1</title>\n<style>\n%2%3</style>\n</head>\n"
                       "<body>\n<header id=\"indice\">\n<h1>%1</h1>\n<p class=\"fecha\">%4</p>\n")
            .arg(title, style, looks.rules(), report.date.toString(QStringLiteral("dd/MM/yyyy")));
    // The counts, the kinds kept apart linked to their tables, then the classifications.
    if (!report.summary.isEmpty()) {
        page += QStringLiteral("<p class=\"resumen\">");
        for (qsizetype i = 0; i < report.summary.size(); ++i) {
            const Summary& part = report.summary[i];
            if (i > 0)
                page += QStringLiteral(" · ");
            if (part.table > 0)
                page += QStringLiteral("<a href=\"#%1\">%2</a>")
                            .arg(anchor(part.table), escaped(part.text));
            else
                page += escaped(part.text);
        }
        page += QStringLiteral("</p>\n");
    }
    page += QStringLiteral("<nav aria-label=\"Clasificaciones\">\n");
    for (qsizetype i = 0; i < report.tables.size(); ++i)
        if (!report.tables[i].label.isEmpty())
            page += QStringLiteral("<a href=\"#%1\">%2</a>\n")
                        .arg(anchor(i), escaped(report.tables[i].label));
    page += QStringLiteral("</nav>\n</header>\n");

    for (qsizetype i = 0; i < report.tables.size(); ++i) {
        const Table& t = report.tables[i];
        page += QStringLiteral("<section id=\"%1\">\n<h2>%2<a href=\"#indice\">↑ índice</a></h2>\n"
                               "<table class=\"%3\">\n<thead><tr>")
                    .arg(anchor(i), escaped(t.title), kinds[i]);
        for (const QString& h : t.header) {
            page += QStringLiteral("<th>");
            page += escaped(h);
            page += QStringLiteral("</th>");
        }
        page += QStringLiteral("</tr></thead>\n<tbody>\n");
        for (const QStringList& cells : t.rows) {
            page += QStringLiteral("<tr>");
            for (const QString& cell : cells) {
                page += QStringLiteral("<td>");
                page += escaped(cell);
                page += QStringLiteral("</td>");
            }
            page += QStringLiteral("</tr>\n");
        }
        page += QStringLiteral("</tbody>\n</table>\n</section>\n");
    }
    page += QStringLiteral("</body>\n</html>\n");
    return page.toUtf8();
}

QByteArray csv(const classification::Results& results, const QList<entrants::Entrant>& entrants,
               int fractionDigits, const runnerstatus::Marks& marks)
{
    QStringList header{QStringLiteral("Puesto"), QStringLiteral("Dorsal")};
    if (results.withEntrants)
        header << QStringLiteral("Nombre") << QStringLiteral("Apellidos") << QStringLiteral("Club")
               << QStringLiteral("Categoría") << QStringLiteral("Sexo")
               << QStringLiteral("Puesto categoría");
    if (results.timeTrial)
        header << QStringLiteral("Salida");
    header << QStringLiteral("Llegada")
           << (results.timeTrial ? QStringLiteral("Tiempo neto") : QStringLiteral("Tiempo"))
           << QStringLiteral("Diferencia") << QStringLiteral("Observaciones");

    QString text;
    text.reserve((results.rows.size() + 1) * 96);
    text += header.join(u';');
    text += QStringLiteral("\r\n");
    for (const Row& row : results.rows) {
        const bool ranked = row.status == Status::Ranked;
        QStringList cells{ranked ? QString::number(row.position) : QString(),
                          QString::number(row.bib)};
        if (results.withEntrants) {
            const entrants::Entrant* e = entrantOf(row, entrants);
            cells << (e ? e->nombre : QString()) << (e ? e->apellidos : QString())
                  << (e ? e->club : QString()) << (e ? e->categoria : QString())
                  << (e ? e->sexo : QString())
                  << (row.categoryPosition > 0 ? QString::number(row.categoryPosition) : QString());
        }
        if (results.timeTrial)
            cells << optionalClock(row.startMs, fractionDigits);
        cells << optionalClock(row.finishMs, fractionDigits)
              << (ranked ? optionalClock(row.timeMs, fractionDigits) : QString())
              << (ranked ? gapText(row.gapMs, fractionDigits) : QString())
              << (row.status == Status::Repeated ? QStringLiteral("Repetido")
                                                 : statusText(row.status));
        plaintext::appendCsvRow(text, cells);
    }
    // The entrants not classified: their finish, when they have one, and their status.
    for (const Row& row : results.unclassified) {
        const entrants::Entrant* e = entrantOf(row, entrants);
        QStringList cells{QString(), QString::number(row.bib)};
        cells << (e ? e->nombre : QString()) << (e ? e->apellidos : QString())
              << (e ? e->club : QString()) << (e ? e->categoria : QString())
              << (e ? e->sexo : QString()) << QString();
        if (results.timeTrial)
            cells << optionalClock(row.startMs, fractionDigits);
        cells << optionalClock(row.finishMs, fractionDigits) << QString() << QString()
              << kindText(row, marks);
        plaintext::appendCsvRow(text, cells);
    }
    return "\xEF\xBB\xBF" + text.toUtf8();
}

} // namespace resultsreport
