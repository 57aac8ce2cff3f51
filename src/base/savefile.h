// Replacing a file whole: the new contents are written beside it and renamed over it, so a
// crash or a full disk in the middle leaves the previous complete file. Where the folder takes
// no new file but the file itself can be written, it is written in place instead.
#pragma once

#include <QByteArray>
#include <QString>

namespace savefile
{

// Whether write() makes the rename itself durable by syncing the folder; a batch of files in
// one folder syncs it once at the end instead.
enum class FolderSync { Now, Later };

// Writes bytes to path, checking every write and the flush (a full disk must not pass as a
// success), and syncs the folder after the rename where the system allows it. Returns an
// empty text on success, otherwise the reason in Spanish.
QString write(const QString& path, const QByteArray& bytes, FolderSync sync = FolderSync::Now);

// Makes the renames done in the folder of path durable.
void syncFolder(const QString& path);

} // namespace savefile
