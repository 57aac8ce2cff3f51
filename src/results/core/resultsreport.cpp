#include "resultsreport.h"

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

QString csvField(const QString& text)
{
    if (!text.contains(u';') && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r'))
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
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
    else if (fractionDigits == 2)
        text += QStringLiteral(",%1").arg(ms % 1000 / 10, 2, 10, QLatin1Char('0'));
    return text;
}

int fractionDigitsOf(int format)
{
    return format == 1 ? 2 : format == 2 ? 3 : 0;
}

Report report(const classification::Results& results, const QList<entrants::Entrant>& entrants,
              int fractionDigits, const QString& raceName, const QDate& date)
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
    return report;
}

QByteArray html(const Report& report)
{
    QString page;
    page.reserve(1024 + report.tables.size() * 256);
    const QString title =
        report.raceName.isEmpty() ? QStringLiteral("Resultados") : escaped(report.raceName);
    page +=
        QStringLiteral("<!DOCTYPE html>\n<html lang=\"es\">\n<head>\n<meta charset=\"utf-8\"/>\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                       "<title>%1</title>\n<style>\n"
                       "body{font-family:system-ui,sans-serif;margin:1em;color:#222}\n"
                       "h1{font-size:1.4em;margin:0}\np.fecha{color:#555;margin:.2em 0 1em}\n"
                       "h2{font-size:1.1em;margin:1.4em 0 .4em}\n"
                       ".tabla{overflow-x:auto;-webkit-overflow-scrolling:touch}\n"
                       "table{border-collapse:collapse;white-space:nowrap}\n"
                       "th,td{padding:.25em .6em;border-bottom:1px solid #ddd;text-align:left}\n"
                       "th{background:#eee}\ntd.n{text-align:right}\n"
                       "tr:nth-child(even) td{background:#f7f7f7}\n"
                       "</style>\n</head>\n<body>\n<h1>%1</h1>\n<p class=\"fecha\">%2</p>\n")
            .arg(title, report.date.toString(QStringLiteral("dd/MM/yyyy")));
    for (const Table& t : report.tables) {
        page +=
            QStringLiteral("<section>\n<h2>%1</h2>\n<div class=\"tabla\">\n<table>\n<thead><tr>")
                .arg(escaped(t.title));
        for (const QString& h : t.header)
            page += QStringLiteral("<th>%1</th>").arg(escaped(h));
        page += QStringLiteral("</tr></thead>\n<tbody>\n");
        for (const QStringList& cells : t.rows) {
            page += QStringLiteral("<tr>");
            for (qsizetype i = 0; i < cells.size(); ++i) {
                page += t.columns.value(i) == Column::Number ? QStringLiteral("<td class=\"n\">")
                                                             : QStringLiteral("<td>");
                page += escaped(cells[i]);
                page += QStringLiteral("</td>");
            }
            page += QStringLiteral("</tr>\n");
        }
        page += QStringLiteral("</tbody>\n</table>\n</div>\n</section>\n");
    }
    page += QStringLiteral("</body>\n</html>\n");
    return page.toUtf8();
}

QByteArray csv(const classification::Results& results, const QList<entrants::Entrant>& entrants,
               int fractionDigits)
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
        for (qsizetype i = 0; i < cells.size(); ++i) {
            if (i > 0)
                text += u';';
            text += csvField(cells[i]);
        }
        text += QStringLiteral("\r\n");
    }
    return "\xEF\xBB\xBF" + text.toUtf8();
}

} // namespace resultsreport
