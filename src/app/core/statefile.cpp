#include "statefile.h"

#include "base/basic.h"
#include "base/cp1252.h"
#include "base/savefile.h"

#include <QFile>

#include <cmath>

namespace statefile
{

namespace
{

// Walks the lines of the file: CR LF, a lone CR or a lone LF ends a line; a last line without
// an end is still a line.
class LineReader
{
public:
    explicit LineReader(QByteArrayView bytes) : m_bytes(bytes) {}

    bool next(QString* line)
    {
        if (m_pos >= m_bytes.size())
            return false;
        qsizetype end = m_pos;
        while (end < m_bytes.size() && m_bytes[end] != '\r' && m_bytes[end] != '\n')
            ++end;
        *line =
            cp1252::decode(m_bytes.sliced(m_pos, std::min<qsizetype>(end - m_pos, maxLineLength)));
        m_pos = end;
        if (m_pos < m_bytes.size() && m_bytes[m_pos] == '\r')
            ++m_pos;
        if (m_pos < m_bytes.size() && m_bytes[m_pos] == '\n')
            ++m_pos;
        return true;
    }

private:
    QByteArrayView m_bytes;
    qsizetype m_pos = 0;
};

// A delimited field: leading blanks skipped, a quoted field without its quotes, otherwise
// up to the next comma.
QString field(const QString& line)
{
    qsizetype i = 0;
    while (i < line.size() && (line[i] == u' ' || line[i] == u'\t'))
        ++i;
    if (i < line.size() && line[i] == u'"') {
        const qsizetype close = line.indexOf(u'"', i + 1);
        return close < 0 ? line.mid(i + 1) : line.mid(i + 1, close - i - 1);
    }
    const qsizetype comma = line.indexOf(u',', i);
    return comma < 0 ? line.mid(i) : line.mid(i, comma - i);
}

// A numeric field: empty gives 0 (or an empty variant), anything else must be a number.
bool numberField(const QString& line, Variant* out)
{
    const QString f = field(line);
    if (f.trimmed().isEmpty()) {
        *out = std::nullopt;
        return true;
    }
    double v = 0;
    if (!basic::isNumber(f, &v))
        return false;
    *out = v;
    return true;
}

QString variantLine(const Variant& v)
{
    return v ? numberLine(*v) : QString();
}

// Loop bound of a count read from the file: For i = 1 To n.
qint64 count(double n)
{
    if (!(n >= 1))
        return 0;
    return n > 1e12 ? qint64(1e12) : static_cast<qint64>(std::floor(n));
}

} // namespace

QString numberLine(double value)
{
    return basic::str(value) + u' ';
}

QByteArray encode(const RaceState& s)
{
    QStringList lines;
    lines.reserve(12 + 2 * s.combo1.size() + s.list2.size());
    lines << numberLine(std::trunc(s.inicio * 1e6)) << numberLine(std::trunc(s.desfase * 1e12))
          << basic::fitFixed(s.horaSalida, 5) << s.tempsPrimer << s.label5 << s.label8
          << variantLine(s.formato) << variantLine(s.modoCaptura);
    lines << numberLine(double(s.combo1.size()));
    for (qsizetype i = 0; i < s.combo1.size(); ++i) {
        lines << s.combo1[i];
        lines << (i < s.list1.size() ? s.list1[i] : QString());
    }
    lines << numberLine(double(s.list2.size()));
    lines << s.list2;
    return cp1252::encodeLines(lines);
}

Restored decode(QByteArrayView bytes)
{
    Restored r;
    RaceState& s = r.state;
    LineReader in(bytes);
    QString line;
    Variant v;

    // Lines 1-8: each value is taken only when its line could be read as such; a line that
    // is not a number is skipped and the next one is read all the same.
    if (!in.next(&line))
        return r;
    if (numberField(line, &v))
        s.inicio = number(v) / 1e6;
    r.headerLines = 1;
    if (!in.next(&line))
        return r;
    if (numberField(line, &v))
        s.desfase = number(v) / 1e12;
    r.headerLines = 2;
    if (!in.next(&line))
        return r;
    s.horaSalida = basic::fitFixed(line, 5);
    r.headerLines = 3;
    if (!in.next(&line))
        return r;
    s.tempsPrimer = field(line);
    r.headerLines = 4;
    if (!in.next(&line))
        return r;
    s.label5 = line;
    r.headerLines = 5;
    if (!in.next(&line))
        return r;
    s.label8 = line;
    r.headerLines = 6;
    if (!in.next(&line))
        return r;
    if (numberField(line, &v))
        s.formato = v;
    r.headerLines = 7;
    if (!in.next(&line))
        return r;
    if (numberField(line, &v))
        s.modoCaptura = v;
    r.headerLines = 8;

    // Line 9 onward: the pairs, then the start order. A count that is not a number counts 0.
    if (!in.next(&line))
        return r;
    const qint64 n = numberField(line, &v) ? count(number(v)) : 0;
    for (qint64 i = 0; i < n; ++i) {
        if (!in.next(&line))
            return r;
        s.combo1 << line;
        if (!in.next(&line))
            return r;
        s.list1 << line;
    }
    double m = 0;
    if (!in.next(&line))
        return r;
    if (!basic::isNumber(line, &m))
        m = 0;
    const qint64 mm = count(m);
    for (qint64 j = 0; j < mm; ++j) {
        if (!in.next(&line))
            return r;
        s.list2 << line;
    }
    r.complete = true;
    return r;
}

Restored read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const qint64 size = file.size();
    if (size > 0) {
        if (uchar* data = file.map(0, size))
            return decode(QByteArrayView(reinterpret_cast<const char*>(data), size));
    }
    return decode(file.readAll());
}

SaveResult save(const RaceState& state, const QString& primary, const QString& fallback)
{
    const QByteArray bytes = encode(state);
    SaveResult result;
    result.primaryError = savefile::write(primary, bytes);
    if (result.primaryError.isEmpty()) {
        result.outcome = SaveOutcome::Primary;
        return result;
    }
    result.fallbackError = savefile::write(fallback, bytes);
    result.outcome = result.fallbackError.isEmpty() ? SaveOutcome::Fallback : SaveOutcome::Failed;
    return result;
}

} // namespace statefile
