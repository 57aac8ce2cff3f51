// The state-file reader on any bytes: it must never fail. And a known race with one line
// damaged (replaced by the input's first line, at a line its first byte picks) keeps every
// results line that was not that line, in its place.
#include "app/core/statefile.h"

#include <cstdint>
#include <cstdlib>

namespace
{

RaceState knownRace()
{
    RaceState s;
    s.inicio = 36000.5;
    s.desfase = 0.25;
    s.horaSalida = QStringLiteral("09:45");
    s.tempsPrimer = QStringLiteral("00:12:30:125");
    s.label5 = QStringLiteral("00:17:01:000");
    s.label8 = QStringLiteral("0:04:30:875");
    s.modoCaptura = 1.0;
    for (int i = 1; i <= 6; ++i) {
        s.combo1 << QStringLiteral("%1- 00:1%2:30:125 - 0:00:0%2:000").arg(i, 4).arg(i);
        s.list1
            << QStringLiteral("%1-%2- 00:1%3:30:125 - 0:00:0%3:000").arg(i, 4).arg(i * 7, 4).arg(i);
    }
    for (int i = 1; i <= 3; ++i)
        s.list2 << QStringLiteral("%1-%2 - 0:0%1:30").arg(i, 4).arg(i * 7, 4);
    return s;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto bytes =
        QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const statefile::Restored first = statefile::decode(bytes);
    if (first.state.list1.size() > first.state.combo1.size())
        std::abort();
    statefile::encode(first.state);

    if (bytes.isEmpty())
        return 0;
    static const RaceState race = knownRace();
    static const QList<QByteArray> lines = [] {
        QList<QByteArray> l = statefile::encode(race).split('\n');
        l.removeLast(); // after the last line end
        for (QByteArray& line : l)
            line.chop(1); // its CR
        return l;
    }();
    const qsizetype damaged = static_cast<uint8_t>(bytes[0]) % lines.size();
    QByteArrayView replacement = bytes.sliced(1);
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        if (replacement[i] == '\r' || replacement[i] == '\n') {
            replacement = replacement.first(i);
            break;
        }
    }
    QByteArray file;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        file += i == damaged ? replacement : QByteArrayView(lines[i]);
        file += "\r\n";
    }
    const statefile::Restored r = statefile::decode(file);
    // Line 9 is the count, then Combo1 and List1 of each finish (0-based: 9 + 2i and 10 + 2i).
    for (qsizetype i = 0; i < race.list1.size(); ++i) {
        if (damaged != 9 + 2 * i && r.state.combo1.value(i) != race.combo1[i])
            std::abort();
        if (damaged != 10 + 2 * i && r.state.list1.value(i) != race.list1[i])
            std::abort();
    }
    return 0;
}
