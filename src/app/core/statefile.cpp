#include "statefile.h"

#include <QFileInfo>

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

namespace
{

// Lines 9 on: the count N, the N pairs of Combo1 and List1 lines, the count M and the M lines of
// List2, in `rest`.
void readLists(const QStringList& rest, Restored& r)
{
    RaceState& s = r.state;
    const qsizetype size = rest.size();
    // The count N is read as a delimited field, M as a whole line; a count that is not a number
    // counts 0.
    Variant v;
    const bool countRead = numberField(rest[0], &v);
    const qint64 n = countRead ? count(number(v)) : 0;
    const auto takePairs = [&](qsizetype end) {
        for (qsizetype i = 1; i < end; ++i)
            (i % 2 == 1 ? s.combo1 : s.list1) << rest[i];
    };

    // A whole file: the count M stands right after the pairs, and M lines end the file.
    double m = 0;
    if (countRead && 1 + 2 * n < size && basic::isNumber(rest[1 + 2 * n], &m) &&
        2 + 2 * n + count(m) == size) {
        takePairs(1 + 2 * n);
        s.list2 = rest.mid(2 + 2 * n);
        r.complete = true;
        return;
    }

    // The counts and the lines disagree: a count was damaged, or the file was cut. No results or
    // start-order line is a number, so the first number line after N is M, and the lines before
    // it are the pairs, whatever N says. With no number line there, M itself was damaged: the
    // pairs are as many as N says, when that many lines follow; otherwise every line to the end
    // of a cut file is a pair line. The start order runs from M to the end of the file.
    r.damaged = true;
    qsizetype mAt = -1;
    for (qsizetype i = 1; i < size && mAt < 0; ++i) {
        if (basic::isNumber(rest[i]))
            mAt = i;
    }
    if (mAt < 0 && countRead && 1 + 2 * n < size)
        mAt = 1 + 2 * n;
    takePairs(mAt < 0 ? size : mAt);
    if (mAt < 0)
        return;
    s.list2 = rest.mid(mAt + 1);
    const bool mRead = basic::isNumber(rest[mAt], &m);
    // Blank lines past the start order its count announces are no start lines.
    while (mRead && s.list2.size() > count(m) && s.list2.last().isEmpty())
        s.list2.removeLast();
    r.complete = mRead && count(m) <= s.list2.size();
}

void readInto(QByteArrayView bytes, Restored& r)
{
    RaceState& s = r.state;
    LineReader in(bytes);
    QString line;
    Variant v;

    // Lines 1-8: each value is taken only when its line could be read as such; a line that
    // is not a number is skipped and the next one is read all the same.
    if (!in.next(&line))
        return;
    if (numberField(line, &v))
        s.inicio = number(v) / 1e6;
    else
        r.damaged = true;
    r.headerLines = 1;
    if (!in.next(&line))
        return;
    if (numberField(line, &v))
        s.desfase = number(v) / 1e12;
    else
        r.damaged = true;
    r.headerLines = 2;
    if (!in.next(&line))
        return;
    s.horaSalida = basic::fitFixed(line, 5);
    r.headerLines = 3;
    if (!in.next(&line))
        return;
    s.tempsPrimer = field(line);
    r.headerLines = 4;
    if (!in.next(&line))
        return;
    s.label5 = line;
    r.headerLines = 5;
    if (!in.next(&line))
        return;
    s.label8 = line;
    r.headerLines = 6;
    if (!in.next(&line))
        return;
    if (numberField(line, &v))
        s.formato = v;
    else
        r.damaged = true;
    r.headerLines = 7;
    if (!in.next(&line))
        return;
    if (numberField(line, &v))
        s.modoCaptura = v;
    else
        r.damaged = true;
    r.headerLines = 8;

    QStringList rest;
    while (in.next(&line))
        rest << line;
    if (!rest.isEmpty())
        readLists(rest, r);
}

} // namespace

Restored decode(QByteArrayView bytes)
{
    Restored r;
    readInto(bytes, r);
    // A file that ends before its last value did not read cleanly either; an empty one holds
    // nothing to keep.
    if (!r.complete && !bytes.isEmpty())
        r.damaged = true;
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

QString newerOf(const QString& primary, const QString& fallback)
{
    const QFileInfo p(primary);
    const QFileInfo f(fallback);
    const bool fallbackNewer =
        f.isFile() && f != p && (!p.isFile() || f.lastModified() > p.lastModified());
    return fallbackNewer ? fallback : primary;
}

} // namespace statefile
