#include "entrada.h"

#include "base/basic.h"
#include "base/cp1252.h"

namespace
{

constexpr int keyBackspace = 8;
constexpr int keyEnter = 13;
constexpr int keySpace = 32;
constexpr int keyMinus = 45;
constexpr int keyPoint = 46;

bool isDigit(int key)
{
    return key >= '0' && key <= '9';
}

// 32-175 and 224-255: codes below 32 and the block 176-223 are not typed into a field.
bool isPrintable(int key)
{
    return (key >= 32 && key <= 175) || (key >= 224 && key <= 255);
}

// The case change of a code-page character; a character whose other case lies outside the
// code page keeps its code, and 0 stays 0.
int toUpper(int key)
{
    const int upper = cp1252::code(cp1252::character(key).toUpper());
    return upper != 0 ? upper : key;
}

int toLower(int key)
{
    const int lower = cp1252::code(cp1252::character(key).toLower());
    return lower != 0 ? lower : key;
}

int filterKey(EntradaState& state, int key, int tipo, QStringView variable)
{
    switch (tipo) {
    case 1: {
        const bool letter = (key >= 'A' && key <= 'Z') || (key >= 'a' && key <= 'z');
        // Ñ, ñ, Ç and ç as the DOS code page numbers them.
        const bool dosLetter = key == 165 || key == 164 || key == 128 || key == 135;
        return letter || dosLetter ? key : 0;
    }
    case 2:
        return key == 209 || isPrintable(key) ? key : 0;
    case 3:
        return isPrintable(key) ? toUpper(key) : 0;
    case 4:
        return isDigit(key) ? key : 0;
    case 5:
    case 6:
        if (isDigit(key))
            return key;
        if (key == keyPoint)
            return variable.contains(u'.') ? 0 : key;
        // A minus after one digit ("5-") passes as well.
        if (tipo == 6 && key == keyMinus)
            return !variable.startsWith(u'-') && variable.size() <= 1 ? key : 0;
        return 0;
    case 7:
        if (!isPrintable(key))
            return 0;
        if (state.espacios == 1) {
            state.espacios = 0;
            return toUpper(key);
        }
        if (key == keySpace)
            ++state.espacios;
        return variable.isEmpty() ? toUpper(key) : toLower(key);
    case 8:
    case 9:
    case 10:
    case 11:
        return key >= 48 && key <= 59 ? key : 0;
    default:
        return key;
    }
}

} // namespace

EntradaResult entrada(EntradaState& state, int keyAscii, int tipo, QStringView variable, double min,
                      double max)
{
    EntradaResult result;
    result.keyAscii = keyAscii;
    if (keyAscii == keyEnter) {
        if (tipo == 4 || tipo == 5 || tipo == 6) {
            const double value = basic::val(variable);
            if (value > max) {
                result = {0, false, RangeMessage::AboveMax, max};
            } else if (value < min && tipo != 6) {
                result = {0, false, RangeMessage::BelowMin, min};
            }
        }
        result.enter = result.keyAscii == keyEnter;
        return result;
    }
    if (keyAscii == keyBackspace)
        return result;
    result.keyAscii = filterKey(state, keyAscii, tipo, variable);
    return result;
}

QString rangeMessageText(RangeMessage message, double bound)
{
    switch (message) {
    case RangeMessage::AboveMax:
        return QStringLiteral("El valor no puede ser mayor que ") + basic::str(bound);
    case RangeMessage::BelowMin:
        return QStringLiteral("El valor no puede ser menor que ") + basic::str(bound);
    case RangeMessage::None:
        break;
    }
    return {};
}

QString rangeMessageTitle(RangeMessage message)
{
    switch (message) {
    case RangeMessage::AboveMax:
        return QStringLiteral("Valor demasiado alto");
    case RangeMessage::BelowMin:
        return QStringLiteral("Valor demasiado bajo");
    case RangeMessage::None:
        break;
    }
    return {};
}
