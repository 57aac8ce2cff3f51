#include "paths.h"

#include <QDir>

namespace paths
{

QString driveRoot(QChar drive)
{
#ifdef Q_OS_WIN
    return QString(drive.toUpper()) + QStringLiteral(":/");
#else
    const QByteArray name = "MARVOLENDO_DRIVE_" + QString(drive.toUpper()).toLatin1();
    const QString mapped = qEnvironmentVariable(name.constData());
    return mapped.isEmpty() ? QDir::homePath() : mapped;
#endif
}

QString local(const QString& windowsPath)
{
#ifdef Q_OS_WIN
    return windowsPath;
#else
    QString path = windowsPath;
    path.replace(u'\\', u'/');
    if (path.size() >= 2 && path[1] == u':' && path[0].isLetter() && path[0].unicode() < 128) {
        const QChar drive = path[0];
        QString rest = path.mid(2);
        while (rest.startsWith(u'/'))
            rest.remove(0, 1);
        return QDir(driveRoot(drive)).filePath(rest);
    }
    return path;
#endif
}

} // namespace paths
