#include "startorder.h"

#include "base/cp1252.h"
#include "results/core/resultline.h"

#include <QFile>
#include <QtEndian>

#include <array>

namespace startorder
{

namespace
{

// The counting rule of one import.
class Attempts
{
public:
    // Runs step; a failure is counted, retried once when it is the first, then skipped.
    template <typename Step> bool run(Step&& step)
    {
        if (step())
            return true;
        ++errores;
        if (errores != 1)
            return false;
        if (step())
            return true;
        ++errores;
        return false;
    }

    int errores = 0;
};

} // namespace

QString line(qint64 recordNumber, qint16 bib, QByteArrayView startTime)
{
    return resultline::startLine(recordNumber, bib, cp1252::decode(startTime));
}

StartOrderImport readStartOrder(QIODevice& device)
{
    Attempts attempts;
    StartOrderImport result;

    attempts.run([&] { return device.isOpen() || device.open(QIODevice::ReadOnly); });

    qint64 count = 0;
    attempts.run([&] {
        if (!device.isOpen())
            return false;
        count = device.size() / recordSize;
        return true;
    });

    const qint64 readable = qMin(count, maxRecords);
    result.lines.reserve(static_cast<qsizetype>(qMax<qint64>(readable, 0)));

    // The record as it last stood: a skipped read leaves it unchanged.
    std::array<char, recordSize> record{};
    std::fill(record.begin() + timeOffset, record.end(), ' ');

    for (qint64 i = 1; i <= readable; ++i) {
        attempts.run([&] {
            std::array<char, recordSize> fresh;
            // Records follow one another: seeking only when a failed read moved elsewhere
            // keeps the device's read buffer.
            const qint64 at = (i - 1) * recordSize;
            if ((device.pos() != at && !device.seek(at)) ||
                device.read(fresh.data(), recordSize) != recordSize)
                return false;
            record = fresh;
            return true;
        });
        const auto bib = qFromLittleEndian<qint16>(record.data() + bibOffset);
        result.lines.append(line(i, bib, QByteArrayView(record.data() + timeOffset, timeLength)));
    }
    if (count > readable)
        attempts.run([] { return false; });

    device.close();
    result.errores = attempts.errores;
    return result;
}

StartOrderImport readStartOrder(const QString& path)
{
    QFile file(path);
    return readStartOrder(file);
}

} // namespace startorder
