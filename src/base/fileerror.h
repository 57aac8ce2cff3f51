// Why an operation on a file failed, in the operator's language. Qt's own texts are English
// ("No space left on device") or say nothing ("Unknown error") when a write is cut short.
#pragma once

#include <QFileDevice>
#include <QString>

#include <cerrno>

namespace fileerror
{

// The reason, from the system's error number (taken where the operation failed: the default
// reads it at the call) and Qt's kind of error. A file that reports no error failed a write the
// system cut short: the system's number tells why only when it is one that cuts a write short
// (a full disk); any other number is left over from an earlier call and is not used.
QString describe(const QFileDevice& file, int systemError = errno);

} // namespace fileerror
