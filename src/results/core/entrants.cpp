#include "entrants.h"

#include "base/cp1252.h"

#include <QHash>
#include <QSet>
#include <QStringDecoder>

namespace entrants
{

namespace
{

enum Column {
    Dorsal,
    Nombre,
    Apellidos,
    Club,
    Equipo,
    Categoria,
    Sexo,
    Nacimiento,
    Salida,
    Columns
};

// A number written with ASCII digits only, of minDigits to maxDigits of them.
std::optional<int> readDigits(QStringView text, qsizetype minDigits, qsizetype maxDigits)
{
    if (text.size() < minDigits || text.size() > maxDigits)
        return std::nullopt;
    for (const QChar c : text)
        if (c < u'0' || c > u'9')
            return std::nullopt;
    return text.toInt();
}

std::optional<int> readBib(const QString& text)
{
    if (text.isEmpty() || text.size() > 9)
        return std::nullopt;
    for (const QChar c : text)
        if (!c.isDigit() || c.unicode() > '9')
            return std::nullopt;
    const int bib = text.toInt();
    if (bib < 1 || bib > maxBib)
        return std::nullopt;
    return bib;
}

QString lineList(const QList<int>& lines)
{
    constexpr qsizetype shown = 20;
    QStringList numbers;
    for (qsizetype i = 0; i < lines.size() && i < shown; ++i)
        numbers << QString::number(lines[i]);
    QString text = numbers.join(QStringLiteral(", "));
    if (lines.size() > shown)
        text += QStringLiteral(" y %1 más").arg(lines.size() - shown);
    return text;
}

} // namespace

QString plainHeader(const QString& header)
{
    QString plain;
    for (const QChar c : header.trimmed().normalized(QString::NormalizationForm_D))
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c.toLower();
    return plain;
}

QString Entrant::fullName() const
{
    if (nombre.isEmpty())
        return apellidos;
    if (apellidos.isEmpty())
        return nombre;
    return nombre + u' ' + apellidos;
}

QString Entrant::team() const
{
    return equipo.isEmpty() ? club : equipo;
}

QString decode(QByteArrayView bytes)
{
    // A spreadsheet's "Unicode text": UTF-16 after its byte order mark.
    const bool littleEndian = bytes.startsWith("\xFF\xFE");
    if (littleEndian || bytes.startsWith("\xFE\xFF")) {
        QStringDecoder utf16(littleEndian ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE,
                             QStringDecoder::Flag::Stateless);
        return utf16.decode(bytes.sliced(2));
    }
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return cp1252::decode(bytes);
}

QChar detectSeparator(QStringView text)
{
    int counts[3] = {};
    const QChar candidates[3] = {u';', u'\t', u','};
    bool quoted = false;
    for (const QChar c : text) {
        if (c == u'"')
            quoted = !quoted;
        else if (!quoted && (c == u'\n' || c == u'\r'))
            break;
        else if (!quoted)
            for (int i = 0; i < 3; ++i)
                counts[i] += c == candidates[i];
    }
    int best = 0;
    for (int i = 1; i < 3; ++i)
        if (counts[i] > counts[best])
            best = i;
    return candidates[best];
}

QList<Record> parse(QStringView text, QChar separator)
{
    QList<Record> records;
    Record record;
    QString field;
    bool quoted = false;    // inside a quoted field
    bool wasQuoted = false; // the field being read began with a quote
    bool anything = false;  // the record holds a character that is not a blank
    int line = 1;
    record.line = 1;
    qsizetype openedAt = 0; // where the quote of the quoted field is
    int openedLine = 0;     // and the line it is on

    const auto endField = [&] {
        record.fields << (wasQuoted ? field : field.trimmed());
        field.clear();
        wasQuoted = false;
    };
    const auto endRecord = [&] {
        endField();
        if (anything)
            records << record;
        record = Record();
        anything = false;
    };
    const auto lineBreak = [&](qsizetype i) { return text[i] == u'\n' || text[i] == u'\r'; };

    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (quoted) {
            // A quote that is never closed, or whose field runs over lines only to meet a quote
            // that no separator follows, was left open: it closes at the end of its own line,
            // and the reading goes on from there, that line named to the operator.
            const bool atEnd = i == text.size();
            bool badClose = false;
            if (!atEnd && line > openedLine && text[i] == u'"' &&
                (i + 1 == text.size() || text[i + 1] != u'"')) {
                qsizetype next = i + 1;
                while (next < text.size() && text[next] != separator &&
                       (text[next] == u' ' || text[next] == u'\t'))
                    ++next;
                badClose = next < text.size() && text[next] != separator && !lineBreak(next);
            }
            if (atEnd || badClose) {
                qsizetype end = openedAt + 1;
                while (end < text.size() && !lineBreak(end))
                    ++end;
                field = text.sliced(openedAt + 1, end - openedAt - 1).toString();
                field.replace(QStringLiteral("\"\""), QStringLiteral("\""));
                line = openedLine;
                record.openQuote = true;
                quoted = false;
                i = end - 1;
                continue;
            }
        }
        if (i == text.size())
            break;
        const QChar c = text[i];
        if (quoted) {
            if (c == u'"') {
                if (i + 1 < text.size() && text[i + 1] == u'"') {
                    field += u'"';
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                if (c == u'\n' || (c == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n')))
                    ++line;
                field += c;
            }
        } else if (c == u'"' && field.trimmed().isEmpty()) {
            quoted = true;
            wasQuoted = true;
            anything = true;
            field.clear();
            openedAt = i;
            openedLine = line;
        } else if (c == separator) {
            endField();
        } else if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
            endRecord();
            record.line = ++line;
        } else {
            // Text after a closing quote joins the field, as spreadsheets read it.
            field += c;
            anything = anything || !c.isSpace();
        }
    }
    if (anything || !field.isEmpty() || !record.fields.isEmpty())
        endRecord();
    return records;
}

std::optional<BirthDate> readBirthDate(QStringView text, QDate today)
{
    text = text.trimmed();
    BirthDate birth;
    std::optional<int> day, month, year;
    if (text.contains(u'/')) {
        const QList<QStringView> parts = text.split(u'/');
        if (parts.size() != 3)
            return std::nullopt;
        day = readDigits(parts[0], 1, 2);
        month = readDigits(parts[1], 1, 2);
        year = readDigits(parts[2], 4, 4);
    } else if (text.contains(u'-')) {
        const QList<QStringView> parts = text.split(u'-');
        if (parts.size() != 3)
            return std::nullopt;
        year = readDigits(parts[0], 4, 4);
        month = readDigits(parts[1], 1, 2);
        day = readDigits(parts[2], 1, 2);
    } else {
        year = readDigits(text, 4, 4);
        if (!year)
            return std::nullopt;
        birth.year = *year;
        if (birth.year < firstBirthYear || birth.year > today.year())
            return std::nullopt;
        return birth;
    }
    if (!day || !month || !year)
        return std::nullopt;
    const QDate date(*year, *month, *day);
    if (!date.isValid() || *year < firstBirthYear || date > today)
        return std::nullopt;
    birth.year = *year;
    birth.date = date;
    return birth;
}

std::optional<qint64> readClockTime(QStringView text)
{
    text = text.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    QStringView whole = text;
    qint64 fractionMs = 0;
    qsizetype point = text.indexOf(u'.');
    if (point < 0)
        point = text.indexOf(u',');
    if (point >= 0) {
        whole = text.left(point);
        const QStringView fraction = text.sliced(point + 1);
        if (fraction.isEmpty() || fraction.size() > 3)
            return std::nullopt;
        for (const QChar c : fraction)
            if (c < u'0' || c > u'9')
                return std::nullopt;
        fractionMs = fraction.toInt();
        for (qsizetype n = fraction.size(); n < 3; ++n)
            fractionMs *= 10;
    }
    const QList<QStringView> parts = whole.split(u':');
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    qint64 seconds = 0;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QStringView part = parts[i];
        if (part.isEmpty() || part.size() > 2)
            return std::nullopt;
        for (const QChar c : part)
            if (c < u'0' || c > u'9')
                return std::nullopt;
        const int value = part.toInt();
        if (i > 0 && value > 59)
            return std::nullopt;
        seconds = seconds * 60 + value;
    }
    return seconds * 1000 + fractionMs;
}

Loaded read(QByteArrayView bytes)
{
    Loaded loaded;
    if (bytes.size() > maxFileBytes) {
        loaded.refusal = QStringLiteral("El fichero ocupa más de 20 MB: no parece una lista de "
                                        "inscritos.");
        return loaded;
    }
    const QString text = decode(bytes);
    const QList<Record> records = parse(text, detectSeparator(text));
    if (records.isEmpty()) {
        loaded.refusal = QStringLiteral("El fichero está vacío.");
        return loaded;
    }

    static const QHash<QString, Column> known = {
        {QStringLiteral("dorsal"), Dorsal},       {QStringLiteral("nombre"), Nombre},
        {QStringLiteral("apellidos"), Apellidos}, {QStringLiteral("club"), Club},
        {QStringLiteral("equipo"), Equipo},       {QStringLiteral("categoria"), Categoria},
        {QStringLiteral("sexo"), Sexo},           {QStringLiteral("nacimiento"), Nacimiento},
        {QStringLiteral("salida"), Salida}};
    qsizetype at[Columns];
    std::fill(std::begin(at), std::end(at), -1);
    const QStringList& header = records.first().fields;
    for (qsizetype i = 0; i < header.size(); ++i) {
        const auto column = known.constFind(plainHeader(header[i]));
        if (column != known.cend() && at[*column] < 0)
            at[*column] = i;
    }
    if (at[Dorsal] < 0) {
        loaded.refusal = QStringLiteral("La primera fila del fichero no tiene una columna "
                                        "«dorsal»: no se ha cargado nada.");
        return loaded;
    }

    const auto fieldOf = [&at](const Record& record, Column column) {
        return at[column] >= 0 ? record.fields.value(at[column]).trimmed() : QString();
    };
    // A date of birth that cannot be read refuses the file whole, whatever else the row holds.
    const QDate today = QDate::currentDate();
    QList<int> badBirthLines;
    for (qsizetype r = 1; r < records.size(); ++r) {
        const QString nacimiento = fieldOf(records[r], Nacimiento);
        if (!nacimiento.isEmpty() && !readBirthDate(nacimiento, today))
            badBirthLines << records[r].line;
    }
    if (!badBirthLines.isEmpty()) {
        loaded.refusal =
            QStringLiteral("No se entiende la fecha de nacimiento de %1 %2. Escríbala como "
                           "dd/mm/aaaa, aaaa-mm-dd o solo el año, de %3 a %4. No se ha cargado "
                           "nada.")
                .arg(badBirthLines.size() == 1 ? QStringLiteral("la línea")
                                               : QStringLiteral("las líneas"),
                     lineList(badBirthLines))
                .arg(firstBirthYear)
                .arg(today.year());
        return loaded;
    }

    QSet<int> seen;
    for (const Record& record : records)
        if (record.openQuote)
            loaded.openQuoteLines << record.line;
    for (qsizetype r = 1; r < records.size(); ++r) {
        const Record& record = records[r];
        const auto field = [&record, &at](Column column) {
            return at[column] >= 0 ? record.fields.value(at[column]) : QString();
        };
        const std::optional<int> bib = readBib(field(Dorsal));
        if (!bib || seen.contains(*bib)) {
            loaded.skippedLines << record.line;
            continue;
        }
        seen.insert(*bib);
        Entrant entrant;
        entrant.bib = *bib;
        entrant.nombre = field(Nombre);
        entrant.apellidos = field(Apellidos);
        entrant.club = field(Club);
        entrant.equipo = field(Equipo);
        entrant.categoria = field(Categoria);
        entrant.sexo = field(Sexo);
        const QString nacimiento = fieldOf(record, Nacimiento);
        if (!nacimiento.isEmpty())
            entrant.nacimiento = readBirthDate(nacimiento, today);
        const QString salida = field(Salida);
        if (!salida.isEmpty()) {
            entrant.salidaMs = readClockTime(salida);
            if (!entrant.salidaMs)
                loaded.badStartLines << record.line;
        }
        loaded.entrants << entrant;
    }
    return loaded;
}

QString skippedMessage(const Loaded& loaded)
{
    QStringList parts;
    if (!loaded.skippedLines.isEmpty())
        parts << QStringLiteral("No se han cargado las filas con un dorsal que falta, no es un "
                                "número de 1 a %1 o está repetido (líneas %2).")
                     .arg(maxBib)
                     .arg(lineList(loaded.skippedLines));
    if (!loaded.badStartLines.isEmpty())
        parts << QStringLiteral("Se han cargado sin hora de salida las filas cuya salida no es "
                                "una hora h:mm:ss (líneas %1).")
                     .arg(lineList(loaded.badStartLines));
    if (!loaded.openQuoteLines.isEmpty())
        parts << QStringLiteral("Unas comillas se abren y no se cierran (%1 %2): %3 hasta el "
                                "final de su línea. %4 en la hoja de cálculo.")
                     .arg(loaded.openQuoteLines.size() == 1 ? QStringLiteral("línea")
                                                            : QStringLiteral("líneas"),
                          lineList(loaded.openQuoteLines),
                          loaded.openQuoteLines.size() == 1
                              ? QStringLiteral("esa fila se ha leído")
                              : QStringLiteral("esas filas se han leído"),
                          loaded.openQuoteLines.size() == 1 ? QStringLiteral("Revísela")
                                                            : QStringLiteral("Revíselas"));
    return parts.join(u'\n');
}

} // namespace entrants
