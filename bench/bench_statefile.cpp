// The state file and the journal with a big race: 10,000 finishers (20,000 list lines) and a
// start order of 500 lines.
//   build/bench/bench_statefile
#include "app/core/archive.h"
#include "app/core/journal.h"
#include "app/core/statefile.h"
#include "benchutil.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace
{

RaceState bigRace()
{
    RaceState s;
    s.inicio = 36000.5;
    s.desfase = 0.25;
    s.horaSalida = QStringLiteral("09:45");
    s.tempsPrimer = QStringLiteral("00:12:30:125");
    s.formato = 2.0;
    s.modoCaptura = 1.0;
    for (int i = 1; i <= 10000; ++i) {
        s.combo1 << QStringLiteral("%1- 00:%2:30:125 - 0:00:%3:000")
                        .arg(i % 10000, 4)
                        .arg(i % 60, 2, 10, QChar(u'0'))
                        .arg(i % 60, 2, 10, QChar(u'0'));
        s.list1 << QStringLiteral("%1-%2- 00:%3:30:125 - 0:00:%4:000")
                       .arg(i % 10000, 4)
                       .arg(i % 9000, 4)
                       .arg(i % 60, 2, 10, QChar(u'0'))
                       .arg(i % 60, 2, 10, QChar(u'0'));
    }
    for (int i = 1; i <= 500; ++i)
        s.list2 << QStringLiteral("%1-%2 - 0:%3:30")
                       .arg(i, 4)
                       .arg(i, 4)
                       .arg(i % 60, 2, 10, QChar(u'0'));
    return s;
}

} // namespace

int main()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("MARVO.dat"));
    const QString fallback = dir.filePath(QStringLiteral("fallback.dat"));
    const RaceState race = bigRace();

    const auto write = measure(21, [&] { statefile::save(race, path, fallback); });
    const auto read = measure(21, [&] {
        if (statefile::read(path).state.list1.size() != 10000)
            std::abort();
    });
    const auto encode = measure(21, [&] { statefile::encode(race); });

    Journal journal;
    RaceRecord record;
    record.state = race;
    journal.start(dir.filePath(QStringLiteral("MARVO.jrn")), record);
    RaceChange finish;
    finish.label2 = QStringLiteral("10001");
    finish.hasLines = true;
    finish.combo1Line = race.combo1.last();
    finish.list1Line = race.list1.last();
    finish.tempsPrimer = race.tempsPrimer;
    finish.label4 = finish.label5 = race.tempsPrimer;
    finish.label8 = QStringLiteral("0:00:00:000");
    const auto entry = measure(2001, [&] { journal.append(journal::encodeChange(finish)); });
    const auto snapshot = measure(5, [&] { journal.append(journal::encodeSnapshot(record)); });

    std::printf("state file, 10,000 finishers + 500 start lines (%lld bytes):\n",
                static_cast<long long>(QFileInfo(path).size()));
    std::printf("  write (atomic, synced): median %.2f ms, worst %.2f ms\n", write.median,
                write.worst);
    std::printf("  of which encoding:      median %.2f ms\n", encode.median);
    std::printf("  read:                   median %.2f ms, worst %.2f ms\n", read.median,
                read.worst);
    std::printf("journal entry of a finish: median %.4f ms, worst %.4f ms\n", entry.median,
                entry.worst);
    std::printf("journal snapshot of the whole race: median %.2f ms\n", snapshot.median);

    // Keeping the race before a clear, and the list of 500 kept races of a long season (a
    // race of 60 finishers each).
    const QString kept = dir.filePath(QLatin1String(archive::folderName));
    int keeps = 0;
    const auto keep = measure(21, [&] {
        QString error;
        archive::keep(kept, race, QDateTime::currentDateTime().addSecs(++keeps), &error);
    });
    const QString season = dir.filePath(QStringLiteral("temporada"));
    RaceState small = race;
    small.combo1 = race.combo1.first(60);
    small.list1 = race.list1.first(60);
    small.list2.clear();
    const QDateTime first(QDate(2026, 1, 1), QTime(9, 0));
    for (int i = 0; i < 500; ++i) {
        QString error;
        archive::keep(season, small, first.addSecs(3600LL * i), &error);
    }
    const auto listing = measure(11, [&] {
        if (archive::list(season).size() != 500)
            std::abort();
    });
    std::printf(
        "keep a race of 10,000 finishers: median %.2f ms, worst %.2f ms  (target < 50 ms)\n",
        keep.median, keep.worst);
    std::printf(
        "list 500 kept races:             median %.2f ms, worst %.2f ms  (target < 200 ms)\n",
        listing.median, listing.worst);
    return 0;
}
