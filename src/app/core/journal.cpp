#include "journal.h"

#include "base/basic.h"
#include "base/cp1252.h"
#include "base/fileerror.h"
#include "results/core/resultline.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <optional>
#include <thread>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace journal
{

namespace
{

// An entry is one line: its kind, its fields separated by tabs, and a checksum of what precedes
// it, so that a line cut off by a crash is recognised and left out.
QByteArray escape(const QString& text)
{
    QByteArray out;
    const QByteArray bytes = cp1252::encode(text);
    out.reserve(bytes.size());
    for (const char c : bytes) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString unescape(QByteArrayView field)
{
    QByteArray out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        char c = field[i];
        if (c == '\\' && i + 1 < field.size()) {
            const char n = field[++i];
            c = n == 't' ? '\t' : n == 'r' ? '\r' : n == 'n' ? '\n' : n;
        }
        out += c;
    }
    return cp1252::decode(out);
}

QList<QByteArrayView> fields(QByteArrayView line)
{
    QList<QByteArrayView> out;
    qsizetype from = 0;
    for (qsizetype i = 0; i <= line.size(); ++i) {
        if (i == line.size() || line[i] == '\t') {
            out << line.sliced(from, i - from);
            from = i + 1;
        }
    }
    return out;
}

QByteArray entry(char kind, const QStringList& fields)
{
    QByteArray line(1, kind);
    for (const QString& f : fields) {
        line += '\t';
        line += escape(f);
    }
    const quint16 sum = qChecksum(line);
    line += '\t';
    line += QByteArray::number(sum);
    line += "\r\n";
    return line;
}

QString variantText(const Variant& v)
{
    return v ? basic::digits(*v) : QString();
}

Variant variantOf(const QString& text)
{
    double v = 0;
    if (basic::isNumber(text, &v))
        return v;
    return std::nullopt;
}

QString exact(double v)
{
    return QString::number(v, 'g', 17);
}

bool applySnapshot(const QList<QByteArrayView>& f, RaceRecord* r)
{
    // S inicio desfase horaSalida tempsPrimer label5 label8 formato modo label1 label2 label4
    //   N combo1/list1 pairs... M list2... [K bib code reason...]
    if (f.size() < 14)
        return false;
    RaceRecord rec;
    RaceState& s = rec.state;
    bool ok1 = false;
    bool ok2 = false;
    s.inicio = unescape(f[1]).toDouble(&ok1);
    s.desfase = unescape(f[2]).toDouble(&ok2);
    if (!ok1 || !ok2)
        return false;
    s.horaSalida = unescape(f[3]);
    s.tempsPrimer = unescape(f[4]);
    s.label5 = unescape(f[5]);
    s.label8 = unescape(f[6]);
    s.formato = variantOf(unescape(f[7]));
    s.modoCaptura = variantOf(unescape(f[8]));
    rec.label1 = unescape(f[9]);
    rec.label2 = unescape(f[10]);
    rec.label4 = unescape(f[11]);
    bool ok = false;
    const qsizetype n = unescape(f[12]).toLongLong(&ok);
    if (!ok || n < 0 || 13 + 2 * n >= f.size())
        return false;
    for (qsizetype i = 0; i < n; ++i) {
        s.combo1 << unescape(f[13 + 2 * i]);
        s.list1 << unescape(f[14 + 2 * i]);
    }
    const qsizetype mAt = 13 + 2 * n;
    const qsizetype m = unescape(f[mAt]).toLongLong(&ok);
    if (!ok || m < 0 || mAt + 1 + m > f.size())
        return false;
    for (qsizetype j = 0; j < m; ++j)
        s.list2 << unescape(f[mAt + 1 + j]);
    // The timekeeper's marks, when the race has any: their count, then bib, code and reason.
    const qsizetype kAt = mAt + 1 + m;
    if (kAt < f.size()) {
        const qsizetype k = unescape(f[kAt]).toLongLong(&ok);
        if (!ok || k < 0 || kAt + 1 + 3 * k != f.size())
            return false;
        for (qsizetype j = 0; j < k; ++j) {
            const qsizetype at = kAt + 1 + 3 * j;
            const int bib = unescape(f[at]).toInt(&ok);
            const std::optional<runnerstatus::Kind> kind =
                runnerstatus::fromCode(unescape(f[at + 1]));
            if (!ok || bib <= 0 || !kind)
                return false;
            rec.marks.insert(bib, runnerstatus::Mark{*kind, unescape(f[at + 2])});
        }
    }
    *r = rec;
    return true;
}

// The change an entry describes, or none when the entry is not one.
std::optional<RaceChange> changeOf(char kind, const QList<QByteArrayView>& f)
{
    using Kind = RaceChange::Kind;
    bool ok = true;
    const auto index = [&](qsizetype at) {
        const qlonglong i = unescape(f[at]).toLongLong(&ok);
        ok = ok && i >= 0 && i <= std::numeric_limits<int>::max();
        return static_cast<int>(i);
    };
    RaceChange c;
    if (kind == 'F' && f.size() == 9) {
        c.label2 = unescape(f[1]);
        c.hasLines = f[2] == "1";
        c.combo1Line = unescape(f[3]);
        c.list1Line = unescape(f[4]);
        c.tempsPrimer = unescape(f[5]);
        c.label4 = unescape(f[6]);
        c.label5 = unescape(f[7]);
        c.label8 = unescape(f[8]);
    } else if (kind == 'B' && f.size() == 3) {
        c = RaceChange::bib(index(1), unescape(f[2]));
    } else if (kind == 'R' && f.size() == 2) {
        c = RaceChange::remove(index(1));
    } else if (kind == 'I' && f.size() == 4) {
        c = RaceChange::insert(index(1), unescape(f[2]), unescape(f[3]));
    } else if (kind == 'O') {
        QStringList lines;
        for (qsizetype i = 1; i < f.size(); ++i)
            lines << unescape(f[i]);
        c = RaceChange::startOrder(lines);
    } else if (kind == 'Z' && f.size() == 1) {
        c = RaceChange::of(Kind::StartOrderEmptied);
    } else if (kind == 'C' && f.size() == 1) {
        c = RaceChange::of(Kind::ResultsEmptied);
    } else if (kind == 'D' && f.size() == 2) {
        c = RaceChange::differences(index(1));
    } else if (kind == 'M' && (f.size() == 2 || f.size() == 4)) {
        std::optional<runnerstatus::Mark> mark;
        if (f.size() == 4) {
            const std::optional<runnerstatus::Kind> k = runnerstatus::fromCode(unescape(f[2]));
            if (!k)
                return std::nullopt;
            mark = runnerstatus::Mark{*k, unescape(f[3])};
        }
        c = RaceChange::marked(index(1), mark);
    } else if (kind == 'L' && f.size() == 6) {
        c = RaceChange::of(Kind::Captions);
        c.label2 = unescape(f[1]);
        c.tempsPrimer = unescape(f[2]);
        c.label4 = unescape(f[3]);
        c.label5 = unescape(f[4]);
        c.label8 = unescape(f[5]);
    } else {
        return std::nullopt;
    }
    if (!ok)
        return std::nullopt;
    return c;
}

struct Entry {
    char kind = 0;
    QList<QByteArrayView> fields; // the kind first, without the checksum
};

// The entry a line holds, when its checksum matches.
std::optional<Entry> entryOf(QByteArrayView line)
{
    if (line.size() > maxLineLength)
        return std::nullopt;
    const qsizetype lastTab = line.lastIndexOf('\t');
    if (lastTab < 1)
        return std::nullopt;
    bool ok = false;
    const uint sum = line.sliced(lastTab + 1).toUInt(&ok);
    if (!ok || sum != qChecksum(line.first(lastTab)))
        return std::nullopt;
    return Entry{line[0], fields(line.first(lastTab))};
}

// A finish whose lines already stand at their rank.
bool alreadyThere(const RaceState& s, const RaceChange& c)
{
    if (c.kind != RaceChange::Kind::Finish || !c.hasLines)
        return false;
    const qsizetype at = resultline::rankOf(c.list1Line) - 1;
    return at >= 0 && at < s.list1.size() && at < s.combo1.size() && s.list1[at] == c.list1Line &&
           s.combo1[at] == c.combo1Line;
}

bool ranksInOrder(const QStringList& lines)
{
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (resultline::rankOf(lines[i]) != i + 1)
            return false;
    }
    return true;
}

void renumber(QStringList& lines)
{
    for (qsizetype i = 0; i < lines.size(); ++i)
        lines[i] = resultline::withRank(lines[i], static_cast<int>(i + 1));
}

// After a lost entry (a finish, an insertion) the ranks are numbered 1 to n again, as a removal
// leaves them, and the rank counter follows.
void closeRankGaps(RaceRecord& r)
{
    RaceState& s = r.state;
    bool renumbered = false;
    for (QStringList* lines : {&s.list1, &s.combo1}) {
        if (!ranksInOrder(*lines)) {
            renumber(*lines);
            renumbered = true;
        }
    }
    if (renumbered)
        r.label2 = basic::digits(double(s.list1.size()));
}

} // namespace

QByteArray encodeSnapshot(const RaceRecord& r)
{
    const RaceState& s = r.state;
    QStringList f{exact(s.inicio),
                  exact(s.desfase),
                  s.horaSalida,
                  s.tempsPrimer,
                  s.label5,
                  s.label8,
                  variantText(s.formato),
                  variantText(s.modoCaptura),
                  r.label1,
                  r.label2,
                  r.label4,
                  QString::number(s.combo1.size())};
    f.reserve(f.size() + 2 * s.combo1.size() + s.list2.size() + 1);
    for (qsizetype i = 0; i < s.combo1.size(); ++i)
        f << s.combo1[i] << s.list1.value(i);
    f << QString::number(s.list2.size());
    f << s.list2;
    if (!r.marks.isEmpty()) {
        f << QString::number(r.marks.size());
        for (auto it = r.marks.cbegin(); it != r.marks.cend(); ++it)
            f << QString::number(it.key()) << runnerstatus::code(it->kind) << it->reason;
    }
    return entry('S', f);
}

QByteArray encodeChange(const RaceChange& c)
{
    using Kind = RaceChange::Kind;
    switch (c.kind) {
    case Kind::Finish:
        return entry('F', {c.label2, c.hasLines ? QStringLiteral("1") : QStringLiteral("0"),
                           c.combo1Line, c.list1Line, c.tempsPrimer, c.label4, c.label5, c.label8});
    case Kind::Bib:
        return entry('B', {QString::number(c.index), c.list1Line});
    case Kind::Remove:
        return entry('R', {QString::number(c.index)});
    case Kind::Insert:
        return entry('I', {QString::number(c.index), c.combo1Line, c.list1Line});
    case Kind::StartOrder:
        return entry('O', c.lines);
    case Kind::StartOrderEmptied:
        return entry('Z', {});
    case Kind::ResultsEmptied:
        return entry('C', {});
    case Kind::Differences:
        return entry('D', {QString::number(c.index)});
    case Kind::Captions:
        return entry('L', {c.label2, c.tempsPrimer, c.label4, c.label5, c.label8});
    case Kind::Values:
        break;
    case Kind::Mark:
        if (!c.mark)
            return entry('M', {QString::number(c.index)});
        return entry('M',
                     {QString::number(c.index), runnerstatus::code(c.mark->kind), c.mark->reason});
    }
    return {};
}

QByteArray encodeClean()
{
    return entry('E', {});
}

Contents decode(QByteArrayView bytes, const std::optional<RaceRecord>& base)
{
    Contents c;
    int lostSinceSnapshot = 0;    // entries passed over since the snapshot the race comes from
    bool replayingOnBase = false; // the race comes from the base, not from a snapshot
    const auto skip = [&] {
        ++c.skipped;
        ++lostSinceSnapshot;
    };
    qsizetype pos = 0;
    while (pos < bytes.size()) {
        const qsizetype end = bytes.indexOf("\r\n", pos);
        if (end < 0) {
            skip(); // cut off by the crash
            break;
        }
        const QByteArrayView line = bytes.sliced(pos, end - pos);
        pos = end + 2;
        // A line torn by a crash or a full disk, damaged, emptied, or of absurd length is passed
        // over: the entries after it are still read.
        const std::optional<Entry> entry = entryOf(line);
        if (!entry) {
            skip();
            continue;
        }
        if (entry->kind == 'S') {
            if (!applySnapshot(entry->fields, &c.record)) {
                skip();
                continue;
            }
            if (c.valid)
                ++c.changes;
            c.valid = true;
            c.clean = false;
            lostSinceSnapshot = 0;
            replayingOnBase = false;
            continue;
        }
        if (entry->kind == 'E' && entry->fields.size() == 1) {
            c.clean = c.valid;
            continue;
        }
        const std::optional<RaceChange> change = changeOf(entry->kind, entry->fields);
        if (!change || (!c.valid && !base)) {
            skip();
            continue;
        }
        if (!c.valid) {
            // The first snapshot is lost: the changes go onto the race of the state file.
            c.record = *base;
            c.valid = true;
            c.onBase = true;
            replayingOnBase = true;
        }
        RaceChange applied = *change;
        // The state file was saved after this finish: only its captions are taken.
        if (replayingOnBase && alreadyThere(c.record.state, applied))
            applied.hasLines = false;
        // A change that does not fit the lines (a line past the end) is left out.
        ::applyChange(c.record, applied);
        ++c.changes;
        c.clean = false;
    }
    if (c.valid && lostSinceSnapshot > 0)
        closeRankGaps(c.record);
    return c;
}

Contents read(const QString& path, const std::optional<RaceRecord>& base)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return decode(file.readAll(), base);
}

} // namespace journal

// The file and the thread that makes its data durable.
struct Journal::Writer {
    QFile file;
    QString error;
    std::mutex mutex;
    std::condition_variable wake;
    bool dirty = false;
    bool stopping = false;
    std::thread syncer;

    void sync()
    {
#ifdef Q_OS_UNIX
#ifdef Q_OS_LINUX
        ::fdatasync(file.handle());
#else
        ::fsync(file.handle());
#endif
#endif
    }

    void run()
    {
        std::unique_lock lock(mutex);
        while (!stopping) {
            wake.wait(lock, [this] { return dirty || stopping; });
            if (stopping)
                break;
            dirty = false;
            lock.unlock();
            sync();
            // Several finishes in a burst share one sync; the next one comes within 0.2 s.
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            lock.lock();
        }
    }

    void stop()
    {
        {
            std::lock_guard lock(mutex);
            stopping = true;
        }
        wake.notify_all();
        if (syncer.joinable())
            syncer.join();
        if (file.isOpen()) {
            sync();
            file.close();
        }
    }
};

Journal::Journal() = default;

Journal::~Journal()
{
    if (writer)
        writer->stop();
}

bool Journal::start(const QString& path, const RaceRecord& snapshot)
{
    if (writer)
        writer->stop();
    writer = std::make_unique<Writer>();
    writer->file.setFileName(path);
    if (QFileInfo(path).isDir()) {
        writer->error = QStringLiteral("%1 es una carpeta").arg(path);
        return false;
    }
    if (!writer->file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        writer->error = fileerror::describe(writer->file, errno);
        writer->file.close();
        return false;
    }
    writer->syncer = std::thread([w = writer.get()] { w->run(); });
    return append(journal::encodeSnapshot(snapshot));
}

bool Journal::append(const QByteArray& bytes)
{
    if (!writer || !writer->file.isOpen())
        return false;
    if (writer->file.write(bytes) != bytes.size()) {
        // A write the disk cut short (it is full) leaves no error of Qt's: the reason comes from
        // the system's error number.
        writer->error = fileerror::describe(writer->file, errno);
        return false;
    }
    {
        std::lock_guard lock(writer->mutex);
        writer->dirty = true;
    }
    writer->wake.notify_one();
    return true;
}

void Journal::markClean()
{
    if (!writer || !writer->file.isOpen())
        return;
    append(journal::encodeClean());
    writer->stop();
}

bool Journal::isOpen() const
{
    return writer && writer->file.isOpen();
}

QString Journal::error() const
{
    return writer ? writer->error : QString();
}
