#include "archive.h"

#include "base/savefile.h"
#include "statefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace archive
{

namespace
{

const QString stamp = QStringLiteral("yyyyMMdd-hhmmss");

} // namespace

QString folderBeside(const QString& stateFile)
{
    return QFileInfo(stateFile).absolutePath() + u'/' + QLatin1String(folderName);
}

QString keepFile(const QString& folder, const QByteArray& bytes, const QDateTime& when,
                 QString* error)
{
    if (!QDir().mkpath(folder)) {
        *error = QStringLiteral("no se puede crear la carpeta %1").arg(folder);
        return {};
    }
    // Two races kept in the same second get a number.
    const QString base = folder + QStringLiteral("/MARVO-") + when.toString(stamp);
    QString path = base + QStringLiteral(".dat");
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = base + QStringLiteral("-%1.dat").arg(n);
    *error = savefile::write(path, bytes);
    return error->isEmpty() ? path : QString();
}

QString detailPath(const QString& keptPath, const char* suffix)
{
    QString path = keptPath;
    if (path.endsWith(QLatin1String(".dat")))
        path.chop(4);
    return path + QLatin1String(suffix);
}

QString keep(const QString& folder, const RaceState& race, const QDateTime& when, QString* error,
             const Details& details)
{
    const QString path = keepFile(folder, statefile::encode(race), when, error);
    if (path.isEmpty())
        return path;
    const std::pair<const char*, QByteArray> files[] = {
        {nameSuffix, details.name.toUtf8()},
        {entrantsSuffix, details.entrantsFile},
        {marksSuffix, runnerstatus::encode(details.marks)}};
    for (const auto& [suffix, bytes] : files) {
        if (bytes.isEmpty())
            continue;
        const QString failed = savefile::write(detailPath(path, suffix), bytes);
        if (!failed.isEmpty() && error->isEmpty())
            *error = failed;
    }
    return path;
}

QList<Kept> list(const QString& folder)
{
    QList<Kept> kept;
    const QFileInfoList files =
        QDir(folder).entryInfoList({QStringLiteral("MARVO-*.dat")}, QDir::Files);
    kept.reserve(files.size());
    for (const QFileInfo& file : files) {
        Kept k;
        k.path = file.filePath();
        // The moment is in the name; a name without one takes the file's time.
        k.when = QDateTime::fromString(file.completeBaseName().mid(6, 15), stamp);
        if (!k.when.isValid())
            k.when = file.lastModified();
        const statefile::Restored r = statefile::read(k.path);
        // A kept race is written whole: a file that was cut, damaged or never a state file (random
        // bytes read as a race of no finishes) is unreadable.
        k.readable = r.complete && !r.damaged;
        k.race = r.state;
        const auto detail = [&k](const char* suffix) {
            QFile f(detailPath(k.path, suffix));
            return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        };
        k.details.name = QString::fromUtf8(detail(nameSuffix)).trimmed();
        k.details.entrantsFile = detail(entrantsSuffix);
        k.details.marks = runnerstatus::decode(detail(marksSuffix));
        kept << k;
    }
    // Within one second, the numbered copies came later.
    const auto number = [](const Kept& k) {
        const QString name = QFileInfo(k.path).completeBaseName();
        return name.size() > 21 ? name.mid(22).toInt() : 1;
    };
    std::stable_sort(kept.begin(), kept.end(), [&](const Kept& a, const Kept& b) {
        return a.when != b.when ? a.when > b.when : number(a) > number(b);
    });
    return kept;
}

raceresults::Input resultsInput(const Kept& kept, const categories::Table& table)
{
    raceresults::Input input;
    input.list1 = kept.race.list1;
    input.list2 = kept.race.list2;
    input.entrants = entrants::read(kept.details.entrantsFile).entrants;
    categories::apply(input.entrants, table, kept.when.date());
    input.marks = kept.details.marks;
    input.format = static_cast<int>(number(kept.race.formato));
    input.name = kept.details.name;
    input.date = kept.when.date();
    return input;
}

} // namespace archive
