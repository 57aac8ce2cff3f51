// The keystroke filter on any sequence of keys and field kinds: no crash, and a key it lets
// through is a key code of the code page.
#include "entry/core/entrada.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    EntradaState state;
    QString text;
    for (size_t i = 0; i + 2 < size; i += 3) {
        const int tipo = data[i] % 13;
        const int key = data[i + 1] | ((data[i + 2] & 1) << 8);
        const EntradaResult r = entrada(state, key, tipo, text, 0, 9999);
        if (r.keyAscii < 0 || r.keyAscii > 511 || (r.enter && r.keyAscii != 13))
            std::abort();
        if (r.keyAscii == 8)
            text.chop(1);
        else if (r.keyAscii != 0 && r.keyAscii != 13 && text.size() < 40)
            text += QChar(r.keyAscii);
    }
    return 0;
}
