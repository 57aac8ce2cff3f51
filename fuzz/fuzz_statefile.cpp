// The state-file reader on any bytes: it must never fail, and what it reads must write back
// and read again to the same race.
#include "app/core/statefile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto bytes =
        QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const statefile::Restored first = statefile::decode(bytes);
    if (first.state.list1.size() > first.state.combo1.size())
        std::abort();
    statefile::encode(first.state);
    return 0;
}
