#include "exports.h"

#include "base/cp1252.h"
#include "base/paths.h"
#include "base/savefile.h"
#include "results/core/resultline.h"

#include <QDir>

#include <QFileInfo>
#include <future>
#include <vector>

namespace exports
{

namespace
{

constexpr qsizetype bibLength = 4; // the longest bib a line holds

// Every line of the files is short: reserving by the line count avoids regrowing.
QByteArray reserved(const Source& source, qsizetype lineLength)
{
    QByteArray bytes;
    bytes.reserve(source.list1.size() * (lineLength + 2));
    return bytes;
}

void append(QByteArray& bytes, const QString& line)
{
    bytes += cp1252::encode(line);
    bytes += "\r\n";
}

} // namespace

QByteArray bibTimeLines(const Source& source)
{
    const qsizetype width = source.format ? timevalue::timeWidth(*source.format) : 0;
    QByteArray bytes = reserved(source, bibLength + 1 + width);
    for (const QString& line : source.list1)
        append(bytes, resultline::bibText(line) + u',' + resultline::list1TimeText(line, width));
    return bytes;
}

QByteArray bibLines(const Source& source)
{
    QByteArray bytes = reserved(source, bibLength);
    for (const QString& line : source.list1)
        append(bytes, resultline::bibText(line));
    return bytes;
}

QByteArray splitTimeLines(const Source& source)
{
    if (!source.format)
        return {};
    const qsizetype width = timevalue::timeWidth(*source.format);
    QByteArray bytes = reserved(source, width);
    for (qsizetype i = 0; i < source.list1.size(); ++i) {
        const QString split = i < source.combo1.size() ? source.combo1.at(i) : QString();
        append(bytes, resultline::combo1TimeText(split, width));
    }
    return bytes;
}

QList<File> resultsFiles(const Source& source)
{
    if (!source.opp2)
        return {{QString::fromLatin1(singleFile), splitTimeLines(source)}};
    const QByteArray bibs = bibLines(source);
    const QByteArray bibsAndTimes = bibTimeLines(source);
    return {{QString::fromLatin1(dorsalesFile), bibs},
            {QString::fromLatin1(dorsalesTiemposFile), bibsAndTimes},
            {QString::fromLatin1(tiemposFile), bibs},
            {QString::fromLatin1(tiemposSalidaFile), bibsAndTimes}};
}

File startTimesFile(const Source& source)
{
    return {QString::fromLatin1(tiemposSalidaFile),
            source.opp2 ? bibTimeLines(source) : QByteArray()};
}

WriteResult write(const QList<File>& files)
{
    // Each file is made durable on its own (a sync of a few milliseconds each): the files are
    // written side by side so that the syncs overlap, and the folder's renames are made
    // durable once, after the last file. A failure is reported for the first file in order.
    std::vector<std::future<QString>> reasons;
    reasons.reserve(static_cast<std::size_t>(files.size()));
    for (const File& file : files) {
        const QString path = paths::local(file.windowsPath);
        reasons.push_back(std::async(std::launch::async, [path, bytes = file.contents] {
            return savefile::write(path, bytes, savefile::FolderSync::Later);
        }));
    }
    WriteResult result;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString reason = reasons[static_cast<std::size_t>(i)].get();
        if (!reason.isEmpty() && result.message.isEmpty()) {
            const QString path = paths::local(files[i].windowsPath);
            const QString where = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
            result = {files[i].windowsPath,
                      QStringLiteral("No se pudieron guardar los resultados en %1: %2")
                          .arg(where, reason)};
        }
    }
    if (!files.isEmpty())
        savefile::syncFolder(paths::local(files.constLast().windowsPath));
    return result;
}

WriteResult exportResults(const Source& source)
{
    return write(resultsFiles(source));
}

WriteResult saveStartTimes(const Source& source)
{
    return write({startTimesFile(source)});
}

} // namespace exports
