#include "savefile.h"

#include "fileerror.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace savefile
{

namespace
{

// The reason in the operator's language, from the system's error number taken where the
// operation failed.
QString reason(const QFileDevice& file, const QString& path, int systemError)
{
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir())
        return QStringLiteral("la carpeta %1 no existe").arg(QFileInfo(path).absolutePath());
    return fileerror::describe(file, systemError);
}

} // namespace

void syncFolder(const QString& path)
{
#ifdef Q_OS_UNIX
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    Q_UNUSED(path);
#endif
}

QString write(const QString& path, const QByteArray& bytes, FolderSync sync)
{
    if (QFileInfo(path).isDir())
        return QStringLiteral("%1 es una carpeta").arg(path);
    QSaveFile file(path);
    // A folder where no new file can be made may still hold a file that can be written: then
    // it is written in place, as the old program always did.
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return reason(file, path, errno);
    // A write cut short without an error is how a full disk shows (and commit() would then
    // report success over the truncated file).
    const qint64 written = file.write(bytes);
    if (written != bytes.size() || !file.flush()) {
        const QString why = reason(file, path, errno);
        file.cancelWriting();
        return why;
    }
    if (!file.commit())
        return reason(file, path, errno);
    if (sync == FolderSync::Now)
        syncFolder(path);
    return {};
}

} // namespace savefile
