// The journal reader on any bytes: no crash, and a valid journal re-encoded reads the same.
#include "app/core/journal.h"

#include <cstdint>
#include <cstdlib>

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
    return 0;
}
