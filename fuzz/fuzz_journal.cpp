// The journal reader on any bytes: no crash, and a valid journal re-encoded reads the same. And
// a known journal with one entry damaged (replaced by the input's first line, at an entry its
// first byte picks) keeps every finish of the other entries, ranked 1 to n, whichever race of
// the state file (its second byte) the reader is given to start from.
#include "app/core/journal.h"
#include "results/core/resultline.h"

#include <cstdint>
#include <cstdlib>

namespace
{

constexpr int finishes = 6;
constexpr int inSnapshot = 2; // finishes 1 and 2 are in the snapshot that opens the journal

RaceChange finish(int rank)
{
    RaceChange c;
    c.label2 = QString::number(rank);
    c.combo1Line = QStringLiteral("%1- 00:1%2:00:000 - 0:0%2:00:000").arg(rank, 4).arg(rank);
    c.list1Line = QStringLiteral("%1-%2- 00:1%3:00:000 - 0:0%3:00:000")
                      .arg(rank, 4)
                      .arg(rank * 7, 4)
                      .arg(rank);
    c.tempsPrimer = QStringLiteral("00:11:00:000");
    return c;
}

struct Known {
    QList<QByteArray> entries; // the snapshot, then one finish each
    RaceRecord atStart;        // the state file as the journal began
    RaceRecord afterFirst;     // the state file saved at the first finish after that
};

Known known()
{
    Known k;
    k.atStart.state.list2 = {QStringLiteral("   1-   7 - 0:10:30")};
    for (int rank = 1; rank <= inSnapshot; ++rank)
        applyChange(k.atStart, finish(rank));
    k.entries << journal::encodeSnapshot(k.atStart);
    for (int rank = inSnapshot + 1; rank <= finishes; ++rank)
        k.entries << journal::encodeChange(finish(rank));
    k.afterFirst = k.atStart;
    applyChange(k.afterFirst, finish(inSnapshot + 1));
    return k;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto bytes =
        QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const journal::Contents c = journal::decode(bytes);
    if (c.valid) {
        const journal::Contents again = journal::decode(journal::encodeSnapshot(c.record));
        if (!again.valid || !(again.record.state == c.record.state))
            std::abort();
    }

    if (bytes.size() < 2)
        return 0;
    static const Known k = known();
    const qsizetype damaged = static_cast<uint8_t>(bytes[0]) % k.entries.size();
    const RaceRecord& base = static_cast<uint8_t>(bytes[1]) % 2 == 0 ? k.atStart : k.afterFirst;
    QByteArray replacement = bytes.sliced(2).toByteArray();
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        if (replacement[i] == '\r' || replacement[i] == '\n') {
            replacement.truncate(i);
            break;
        }
    }
    // A replacement that is itself a whole entry is a change of the race, not damage.
    if (!replacement.isEmpty() && journal::decode(k.entries[0] + replacement + "\r\n").skipped == 0)
        return 0;
    QByteArray file;
    for (qsizetype i = 0; i < k.entries.size(); ++i)
        file += i == damaged ? replacement + "\r\n" : k.entries[i];
    const journal::Contents d = journal::decode(file, base);
    if (!d.valid)
        std::abort();
    // The finish of the damaged entry is lost, unless the snapshot or the state file holds it.
    const int lost = damaged == 0 ? 0 : inSnapshot + static_cast<int>(damaged);
    const RaceState& s = d.record.state;
    qsizetype at = 0;
    for (int rank = 1; rank <= finishes; ++rank) {
        if (rank == lost)
            continue;
        const RaceChange f = finish(rank);
        if (at >= s.list1.size() || at >= s.combo1.size() ||
            s.list1[at] != resultline::withRank(f.list1Line, int(at + 1)) ||
            s.combo1[at] != resultline::withRank(f.combo1Line, int(at + 1)))
            std::abort();
        ++at;
    }
    if (s.list1.size() != at || s.combo1.size() != at)
        std::abort();
    return 0;
}
