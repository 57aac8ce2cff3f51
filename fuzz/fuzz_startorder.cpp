// The start-order reader on any bytes: one line per whole record, never a crash.
#include "files/core/startorder.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QBuffer buffer(&bytes);
    const startorder::StartOrderImport result = startorder::readStartOrder(buffer);
    if (result.lines.size() != static_cast<qsizetype>(size) / startorder::recordSize)
        std::abort();
    for (const QString& line : result.lines) {
        if (line.size() != 19)
            std::abort();
    }
    return 0;
}
