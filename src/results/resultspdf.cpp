#include "resultspdf.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRawFont>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace resultspdf
{

namespace
{

using resultsreport::Column;
using resultsreport::Table;

constexpr int dpi = 300;

// Qt's PDF writer takes two 10 MB buffers to compress each page. glibc maps such a block afresh
// every time, or grows its heap and trims it back, for each of a big race's hundreds of pages:
// a third of the drawing went into page faults. While a report is drawn the heap keeps what it
// has taken, and gives it back at the end.
class HeapKept
{
public:
    HeapKept()
    {
#if defined(__GLIBC__)
        const std::lock_guard<std::mutex> lock(mutex);
        if (users++ == 0) {
            mallopt(M_MMAP_THRESHOLD, 32 << 20);
            mallopt(M_TRIM_THRESHOLD, 64 << 20);
        }
#endif
    }
    ~HeapKept()
    {
#if defined(__GLIBC__)
        const std::lock_guard<std::mutex> lock(mutex);
        if (--users == 0) {
            // glibc's own starting values.
            mallopt(M_TRIM_THRESHOLD, 128 << 10);
            mallopt(M_MMAP_THRESHOLD, 128 << 10);
            malloc_trim(0);
        }
#endif
    }
    HeapKept(const HeapKept&) = delete;
    HeapKept& operator=(const HeapKept&) = delete;

private:
    static inline std::mutex mutex;
    static inline int users = 0;
};

// The rows are set from the font's own glyphs and advances: a cell of plain Latin text needs
// neither the layout nor the shaping that drawText would give it, and the thousands of rows of
// a big race draw in a fraction of the time.
class GlyphSetter
{
public:
    GlyphSetter(const QFont& font, qreal pixelSize) : raw(QRawFont::fromFont(font))
    {
        raw.setPixelSize(pixelSize);
        // Latin-1 is looked up once: the cells of a race seldom hold anything else.
        QString latin1(256, QChar());
        for (int c = 0; c < 256; ++c)
            latin1[c] = QChar(c);
        const QList<quint32> glyphs = raw.glyphIndexesForString(latin1);
        const QList<QPointF> advances = raw.advancesForGlyphIndexes(glyphs);
        for (int c = 0; c < 256 && c < glyphs.size() && c < advances.size(); ++c)
            latin[c] = {glyphs[c], advances[c].x()};
        const QList<quint32> dots = raw.glyphIndexesForString(QStringLiteral("…"));
        ellipsis = {dots.value(0), dots.isEmpty() ? 0 : raw.advancesForGlyphIndexes(dots)[0].x()};
    }

    // The glyphs of text added to a row's, from x = left, or ending at x = right when left is
    // not given; cut with an ellipsis where they pass maxWidth (when given).
    void add(const QString& text, std::optional<qreal> left, qreal right, qreal maxWidth,
             QList<quint32>& rowGlyphs, QList<QPointF>& rowPositions) const
    {
        std::vector<Glyph> glyphs = set(text);
        qreal x = 0;
        for (Glyph& g : glyphs)
            x += std::exchange(g.x, x); // the advance becomes the glyph's offset
        if (maxWidth > 0 && x > maxWidth) {
            std::size_t keep = glyphs.size();
            while (keep > 0 && glyphs[keep - 1].x + ellipsis.x > maxWidth)
                --keep;
            // The last glyph kept ends where the next one would start.
            x = keep < glyphs.size() ? glyphs[keep].x : x;
            glyphs.resize(keep);
            glyphs.push_back({ellipsis.index, x});
            x += ellipsis.x;
        }
        // Whole device pixels (a 300th of an inch) write shorter positions, and the spaces,
        // which leave no ink, are not written at all: a smaller page to compress.
        const qreal start = std::round(left ? *left : right - x);
        for (const Glyph& g : glyphs)
            if (g.index != latin[' '].index) {
                rowGlyphs.append(g.index);
                rowPositions.append(QPointF(start + g.x, 0));
            }
    }

    QGlyphRun run(const QList<quint32>& glyphs, const QList<QPointF>& positions) const
    {
        QGlyphRun glyphRun;
        glyphRun.setRawFont(raw);
        glyphRun.setGlyphIndexes(glyphs);
        glyphRun.setPositions(positions);
        return glyphRun;
    }

private:
    struct Glyph {
        quint32 index = 0;
        qreal x = 0; // its advance, or its offset in the cell
    };

    // The glyphs of text with their advances.
    std::vector<Glyph> set(const QString& text) const
    {
        std::vector<Glyph> glyphs;
        glyphs.reserve(static_cast<std::size_t>(text.size()));
        for (const QChar c : text) {
            if (c.unicode() >= 256)
                break;
            glyphs.push_back(latin[c.unicode()]);
        }
        if (glyphs.size() == static_cast<std::size_t>(text.size()))
            return glyphs;
        glyphs.clear();
        const QList<quint32> indexes = raw.glyphIndexesForString(text);
        const QList<QPointF> advances = raw.advancesForGlyphIndexes(indexes);
        for (qsizetype g = 0; g < indexes.size() && g < advances.size(); ++g)
            glyphs.push_back({indexes[g], advances[g].x()});
        return glyphs;
    }

    QRawFont raw;
    std::array<Glyph, 256> latin;
    Glyph ellipsis;
};

// The pages are laid out twice: once to count them, for "Página N de M", then to draw.
class Pages
{
public:
    // Without `draw` the pages are only counted.
    Pages(QPdfWriter& pdf, bool draw, const resultsreport::Report& content, int pages)
        : device(&pdf), writer(draw ? &pdf : nullptr), report(content), total(pages)
    {
        body.setPointSizeF(8.5);
        // Latin text needs no shaping; without it "fi" stays two letters for a search of the
        // page, and the many rows draw faster.
        body.setStyleStrategy(QFont::PreferNoShaping);
        // Whole-pixel advances write shorter glyph positions: a smaller page, drawn faster.
        body.setHintingPreference(QFont::PreferFullHinting);
        bold = body;
        bold.setBold(true);
        heading = bold;
        heading.setPointSizeF(11);
        banner = bold;
        banner.setPointSizeF(12);
        if (writer) {
            painter.begin(writer);
            painter.setPen(Qt::black);
            setter.emplace(body, body.pointSizeF() * pdf.logicalDpiY() / 72.0);
        }
        // Metrics at the writer's resolution, with or without a painter.
        const QFontMetricsF m(body, device);
        rowHeight = m.height() * 1.35;
        bodyAscent = m.ascent();
        bodyDescent = m.descent();
        pad = m.averageCharWidth() * 0.8;
        width = pdf.width();
        height = pdf.height();
    }

    int run()
    {
        newPage();
        for (const Table& t : report.tables)
            table(t);
        if (writer)
            painter.end();
        return page;
    }

private:
    void newPage()
    {
        if (page > 0 && writer)
            writer->newPage();
        ++page;
        const QFontMetricsF m(banner, device);
        const qreal line = m.height();
        if (writer) {
            painter.setFont(banner);
            const QRectF top(0, 0, width, line);
            painter.drawText(top, Qt::AlignLeft | Qt::AlignVCenter,
                             m.elidedText(report.raceName, Qt::ElideRight, width * 0.55));
            painter.setFont(body);
            painter.drawText(top, Qt::AlignHCenter | Qt::AlignVCenter,
                             report.date.toString(QStringLiteral("dd/MM/yyyy")));
            painter.drawText(top, Qt::AlignRight | Qt::AlignVCenter,
                             QStringLiteral("Página %1 de %2").arg(page).arg(total));
            painter.drawLine(QPointF(0, line * 1.2), QPointF(width, line * 1.2));
        }
        y = line * 1.8;
    }

    // The widths of the columns: the narrow ones as wide as their longest text, the wide ones
    // sharing what is left, the first twice as much as the others.
    std::vector<qreal> widths(const Table& t) const
    {
        const QFontMetricsF m(body, device);
        const QFontMetricsF b(bold, device);
        std::vector<qreal> w(static_cast<std::size_t>(t.header.size()));
        qreal narrow = 0;
        int shares = 0;
        for (qsizetype c = 0; c < t.header.size(); ++c) {
            if (t.columns.value(c) == Column::WideText) {
                shares += shares == 0 ? 2 : 1;
                continue;
            }
            qsizetype longest = -1;
            for (qsizetype r = 0; r < t.rows.size(); ++r)
                if (longest < 0 || t.rows[r].value(c).size() > t.rows[longest].value(c).size())
                    longest = r;
            qreal need = b.horizontalAdvance(t.header[c]);
            if (longest >= 0)
                need = std::max(need, m.horizontalAdvance(t.rows[longest].value(c)));
            w[static_cast<std::size_t>(c)] = need + 2 * pad;
            narrow += need + 2 * pad;
        }
        const qreal share = shares > 0 ? std::max<qreal>(0, width - narrow) / shares : 0;
        bool first = true;
        for (qsizetype c = 0; c < t.header.size(); ++c)
            if (t.columns.value(c) == Column::WideText) {
                w[static_cast<std::size_t>(c)] = share * (first ? 2 : 1);
                first = false;
            }
        return w;
    }

    void row(const QStringList& cells, const Table& t, const std::vector<qreal>& w, bool header,
             bool shaded)
    {
        if (writer) {
            if (header || shaded)
                painter.fillRect(QRectF(0, y, width, rowHeight),
                                 header ? QColor(225, 225, 225) : QColor(244, 244, 244));
            if (header) {
                painter.setFont(bold);
                const QFontMetricsF m(bold, device);
                const qreal baseline = y + (rowHeight + m.ascent() - m.descent()) / 2;
                qreal x = 0;
                for (qsizetype c = 0; c < cells.size() && c < qsizetype(w.size()); ++c) {
                    painter.drawText(QPointF(x + pad, baseline), cells[c]);
                    x += w[static_cast<std::size_t>(c)];
                }
            } else {
                // The whole row is one run of glyphs: one text object on the page, not one
                // a cell.
                const qreal baseline = std::round(y + (rowHeight + bodyAscent - bodyDescent) / 2);
                QList<quint32> glyphs;
                QList<QPointF> positions;
                qreal x = 0;
                for (qsizetype c = 0; c < cells.size() && c < qsizetype(w.size()); ++c) {
                    const qreal cw = w[static_cast<std::size_t>(c)];
                    const Column kind = t.columns.value(c);
                    setter->add(cells[c],
                                kind == Column::Number ? std::nullopt
                                                       : std::optional<qreal>(x + pad),
                                x + cw - pad, kind == Column::WideText ? cw - 2 * pad : 0, glyphs,
                                positions);
                    x += cw;
                }
                painter.drawGlyphRun(QPointF(0, baseline), setter->run(glyphs, positions));
            }
        }
        y += rowHeight;
    }

    void title(const QString& text)
    {
        const QFontMetricsF m(heading, device);
        if (writer) {
            painter.setFont(heading);
            painter.drawText(QRectF(0, y, width, m.height()), Qt::AlignLeft | Qt::AlignVCenter,
                             text);
        }
        y += m.height() * 1.3;
    }

    void table(const Table& t)
    {
        const QFontMetricsF m(heading, device);
        const std::vector<qreal> w = widths(t);
        // A title is not left alone at the foot of a page: it goes with its first rows.
        y += rowHeight * 0.6;
        if (y + m.height() * 1.3 + rowHeight * 3 > height)
            newPage();
        title(t.title);
        row(t.header, t, w, true, false);
        for (qsizetype r = 0; r < t.rows.size(); ++r) {
            if (y + rowHeight > height) {
                newPage();
                title(QStringLiteral("%1 (continuación)").arg(t.title));
                row(t.header, t, w, true, false);
            }
            row(t.rows[r], t, w, false, r % 2 == 1);
        }
    }

    QPdfWriter* device;
    QPdfWriter* writer; // none while counting
    const resultsreport::Report& report;
    int total;
    QPainter painter;
    QFont body, bold, heading, banner;
    std::optional<GlyphSetter> setter;
    qreal rowHeight = 0, pad = 0, width = 0, height = 0, y = 0;
    qreal bodyAscent = 0, bodyDescent = 0;
    int page = 0;
};

} // namespace

QByteArray render(const resultsreport::Report& report)
{
    const HeapKept heap;
    QByteArray bytes;
    // About 250 bytes a row once compressed: the buffer need not grow as the pages come.
    qsizetype rows = 0;
    for (const Table& t : report.tables)
        rows += t.rows.size();
    bytes.reserve(4096 + rows * 256);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(dpi);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(15, 12, 15, 12), QPageLayout::Millimeter));
        writer.setTitle(report.raceName.isEmpty() ? QStringLiteral("Resultados") : report.raceName);
        writer.setCreator(QStringLiteral("Marvolendo"));
        const int total = Pages(writer, false, report, 0).run();
        Pages(writer, true, report, total).run();
    }
    return bytes;
}

} // namespace resultspdf
