// Race files: building and writing the results export of a large race, and reading a long
// start order. Prints the median and the worst of several runs of each.
#include "base/basic.h"
#include "benchutil.h"
#include "files/core/exports.h"
#include "files/core/startorder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace
{

constexpr int runs = 21;

} // namespace

int main()
{
    QTemporaryDir drive;
    if (!drive.isValid() || !QDir(drive.path()).mkpath(QStringLiteral("Carreras/copias"))) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    qputenv("MARVOLENDO_DRIVE_C", drive.path().toUtf8());

    // 10,000 finishers in Milesimas, the longest lines.
    constexpr int finishers = 10000;
    exports::Source source;
    source.opp2 = true;
    source.format = TimeFormat::Milesimas;
    for (int i = 1; i <= finishers; ++i) {
        const QString rank = basic::field4(i);
        source.list1.append(rank + u'-' + basic::field4(i * 7 % 3000) + QStringLiteral("- ") +
                            finishTime(i) + QStringLiteral(" - 0:00:00:000"));
        source.combo1.append(rank + QStringLiteral("- ") + finishTime(i) +
                             QStringLiteral(" - 0:00:00:000"));
    }

    bool failed = false;
    const auto exportWith = [&](bool opp2) {
        return [&failed, &source, opp2] {
            source.opp2 = opp2;
            failed = failed || !exports::exportResults(source).ok();
        };
    };
    report("export of 10,000 finishers, four files (bibs and times)",
           measure(runs, exportWith(true)), 50);
    report("export of 10,000 finishers, single file", measure(runs, exportWith(false)), 50);
    report("TiemposSalida of 10,000 finishers (after F1/F3)",
           measure(runs,
                   [&] {
                       source.opp2 = true;
                       failed = failed || !exports::saveStartTimes(source).ok();
                   }),
           50);
    report("building the four files only, no writing",
           measure(runs,
                   [&] {
                       source.opp2 = true;
                       failed = failed || exports::resultsFiles(source).size() != 4;
                   }),
           50);

    // A start order of 5,000 runners.
    constexpr int runners = 5000;
    QByteArray bytes;
    bytes.reserve(runners * startorder::recordSize);
    for (int i = 1; i <= runners; ++i) {
        QByteArray record(startorder::recordSize, ' ');
        qToLittleEndian<qint16>(static_cast<qint16>(i), record.data());
        record.replace(startorder::timeOffset, 8, finishTime(i).left(8).toLatin1());
        bytes += record;
    }
    const QString orderFile = QDir(drive.path()).filePath(QStringLiteral("cri.ent"));
    QFile file(orderFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "cannot write the start order\n");
        return 1;
    }
    file.close();
    qsizetype lines = 0;
    report("start order of 5,000 records",
           measure(runs,
                   [&] {
                       const auto import = startorder::readStartOrder(orderFile);
                       lines = import.lines.size();
                       failed = failed || import.errores != 0;
                   }),
           50);

    if (failed || lines != runners) {
        std::fprintf(stderr, "a run failed\n");
        return 1;
    }
    return 0;
}
