#include "cp1252.h"

#include <QStringList>

#include <array>

namespace cp1252
{

namespace
{

// 0x80-0x9F; 0 marks the five unassigned codes, which map to the C1 control of the same value.
constexpr std::array<char16_t, 32> high = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

} // namespace

QChar character(int code)
{
    if (code < 0 || code > 255)
        return QChar(0);
    if (code >= 0x80 && code <= 0x9F) {
        const char16_t c = high[static_cast<std::size_t>(code - 0x80)];
        return QChar(c != 0 ? c : static_cast<char16_t>(code));
    }
    return QChar(static_cast<char16_t>(code));
}

int code(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF))
        return u;
    for (std::size_t i = 0; i < high.size(); ++i) {
        if (high[i] == u || (high[i] == 0 && u == 0x80 + i))
            return static_cast<int>(0x80 + i);
    }
    return 0;
}

QString decode(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (qsizetype i = 0; i < bytes.size(); ++i)
        out[i] = character(static_cast<unsigned char>(bytes[i]));
    return text;
}

QByteArray encode(QStringView text)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const int k = c.unicode() < 0x80 ? c.unicode() : code(c);
        bytes[i] = static_cast<char>(k != 0 || c.unicode() == 0 ? k : '?');
    }
    return bytes;
}

QByteArray encodeLines(const QStringList& lines)
{
    QByteArray bytes;
    qsizetype size = 0;
    for (const QString& line : lines)
        size += line.size() + 2;
    bytes.reserve(size);
    for (const QString& line : lines) {
        bytes += encode(line);
        bytes += "\r\n";
    }
    return bytes;
}

} // namespace cp1252
