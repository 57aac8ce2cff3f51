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
#include <limits>
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

    // The width of text set in one line.
    qreal width(const QString& text) const
    {
        qreal x = 0;
        for (const QChar c : text) {
            if (c.unicode() >= 256) {
                x = 0;
                for (const Glyph& g : set(text))
                    x += g.x;
                return x;
            }
            x += latin[c.unicode()].x;
        }
        return x;
    }

    // The lines of text within maxWidth, broken between words, a word wider than a line cut
    // where the line is full; at most maxLines, the last one holding whatever is left (add()
    // ends it with an ellipsis).
    QStringList wrap(const QString& text, qreal maxWidth, int maxLines) const
    {
        QStringList lines;
        QString line;
        const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
        for (qsizetype w = 0; w < words.size(); ++w) {
            const QString joined = line.isEmpty() ? words[w] : line + u' ' + words[w];
            if (width(joined) <= maxWidth) {
                line = joined;
                continue;
            }
            if (lines.size() == maxLines - 1) {
                line = (QStringList{joined} + words.sliced(w + 1)).join(u' ');
                break;
            }
            if (!line.isEmpty()) {
                lines << line;
                line.clear();
            }
            QString word = words[w];
            while (width(word) > maxWidth && lines.size() < maxLines - 1) {
                qsizetype fits = 1;
                while (fits < word.size() && width(word.first(fits + 1)) <= maxWidth)
                    ++fits;
                lines << word.first(fits);
                word = word.sliced(fits);
            }
            line = word;
            if (width(word) > maxWidth) {
                line = (QStringList{word} + words.sliced(w + 1)).join(u' ');
                break;
            }
        }
        if (!line.isEmpty() || lines.isEmpty())
            lines << line;
        return lines;
    }

    // The glyphs of text added to a row's, from x = left, or ending at x = right when left is
    // not given, dy below the row's baseline; cut with an ellipsis where they pass maxWidth
    // (when given).
    void add(const QString& text, std::optional<qreal> left, qreal right, qreal maxWidth, qreal dy,
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
                rowPositions.append(QPointF(start + g.x, dy));
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
        }
        // The cells are measured with the glyphs they are drawn with, counting or drawing.
        setter.emplace(body, body.pointSizeF() * pdf.logicalDpiY() / 72.0);
        // Metrics at the writer's resolution, with or without a painter.
        const QFontMetricsF m(body, device);
        rowHeight = m.height() * 1.35;
        lineStep = m.lineSpacing();
        bodyAscent = m.ascent();
        bodyDescent = m.descent();
        pad = m.averageCharWidth() * 0.8;
        width = pdf.width();
        height = pdf.height();
        layOutHeader();
    }

    int run()
    {
        newPage();
        summary();
        for (const Table& t : report.tables)
            table(t);
        if (writer)
            painter.end();
        return page;
    }

private:
    // The race name takes the width the page number leaves it, on as many lines as it needs;
    // the date goes on a line of its own below it: the two never meet.
    void layOutHeader()
    {
        const QFontMetricsF b(banner, device);
        const QFontMetricsF m(body, device);
        // The same room while counting the pages as while drawing them.
        pageWidth = m.horizontalAdvance(QStringLiteral("Página 8888 de 8888"));
        const qreal nameWidth = width - pageWidth - 4 * pad;
        nameHeight = b.boundingRect(QRectF(0, 0, nameWidth, height), nameFlags, name()).height();
        nameHeight = std::max(nameHeight, b.height());
        headerHeight = nameHeight + m.height() * 1.5;
    }

    QString name() const
    {
        return report.raceName.isEmpty() ? QStringLiteral("Resultados") : report.raceName;
    }

    void newPage()
    {
        if (page > 0 && writer)
            writer->newPage();
        ++page;
        const QFontMetricsF b(banner, device);
        if (writer) {
            painter.setFont(banner);
            painter.drawText(QRectF(0, 0, width - pageWidth - 4 * pad, nameHeight), nameFlags,
                             name());
            painter.setFont(body);
            painter.drawText(
                QRectF(width - pageWidth - 2 * pad, 0, pageWidth + 2 * pad, b.height()),
                Qt::AlignRight | Qt::AlignVCenter,
                QStringLiteral("Página %1 de %2").arg(page).arg(total));
            painter.drawText(QRectF(0, nameHeight, width, QFontMetricsF(body, device).height()),
                             Qt::AlignLeft | Qt::AlignVCenter,
                             report.date.toString(QStringLiteral("dd/MM/yyyy")));
            painter.drawLine(QPointF(0, headerHeight), QPointF(width, headerHeight));
        }
        y = headerHeight + b.height() * 0.6;
    }

    // The counts under the header of the first page, the kinds kept apart in bold.
    void summary()
    {
        if (report.summary.isEmpty())
            return;
        const QFontMetricsF m(bold, device);
        QString text;
        for (const resultsreport::Summary& part : report.summary)
            text += (text.isEmpty() ? QString() : QStringLiteral("   ·   ")) + part.text;
        const int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
        const qreal h = m.boundingRect(QRectF(0, 0, width, height), flags, text).height();
        if (writer) {
            painter.setFont(bold);
            painter.drawText(QRectF(0, y, width, h), flags, text);
        }
        y += h + rowHeight * 0.3;
    }

    // The widths of the columns. Numbers and times as wide as their longest text; a short text
    // (a category) too, up to a quarter of the page; the names and clubs share what is left,
    // all of it: as they need when they fit, else so that the fewest rows take more than one
    // line. A text that still does not fit goes on more lines.
    std::vector<qreal> widths(const Table& t) const
    {
        const QFontMetricsF b(bold, device);
        const auto columns = static_cast<std::size_t>(t.header.size());
        std::vector<qreal> need(columns), least(columns);
        std::vector<std::size_t> wide;
        std::vector<std::vector<qreal>> wideCells; // what each row needs in each wide column
        qreal left = width;
        for (std::size_t c = 0; c < columns; ++c) {
            const auto column = static_cast<qsizetype>(c);
            const bool isWide = t.columns.value(column) == Column::WideText;
            least[c] = need[c] = b.horizontalAdvance(t.header[column]) + 2 * pad;
            std::vector<qreal> cells;
            if (isWide)
                cells.reserve(static_cast<std::size_t>(t.rows.size()));
            for (const QStringList& row : t.rows) {
                const qreal cell = setter->width(row.value(column)) + 2 * pad;
                need[c] = std::max(need[c], cell);
                if (isWide)
                    cells.push_back(cell);
            }
            if (t.columns.value(column) == Column::Text)
                need[c] = std::min(need[c], width / 4);
            if (isWide) {
                wide.push_back(c);
                wideCells.push_back(std::move(cells));
            } else {
                left -= need[c];
            }
        }
        std::vector<qreal> w = need;
        if (wide.empty())
            return w;
        left = std::max<qreal>(left, 0);
        qreal wanted = 0;
        for (const std::size_t c : wide)
            wanted += need[c];
        if (wanted <= left) {
            // Room to spare goes to the wide columns alike.
            for (const std::size_t c : wide)
                w[c] = need[c] + (left - wanted) / static_cast<qreal>(wide.size());
            return w;
        }
        if (wide.size() == 2) {
            const qreal first =
                split(wideCells[0], wideCells[1], need[wide[0]], need[wide[1]],
                      std::max(least[wide[0]], left / 4), std::max(least[wide[1]], left / 4), left);
            w[wide[0]] = first;
            w[wide[1]] = left - first;
            return w;
        }
        // The narrowest first: each takes what it needs, up to an even share of what is left.
        std::sort(wide.begin(), wide.end(),
                  [&need](std::size_t one, std::size_t other) { return need[one] < need[other]; });
        for (std::size_t i = 0; i < wide.size(); ++i) {
            const qreal share = left / static_cast<qreal>(wide.size() - i);
            w[wide[i]] = std::min(need[wide[i]], share);
            left -= w[wide[i]];
        }
        return w;
    }

    // The width of the first of two columns sharing `room` that leaves the fewest rows with a
    // cell too wide for its column; of equal ones, the nearest to a split in proportion to
    // their longest cells. The widths tried are those that just fit a row's cell in either
    // column, at most some hundred of them, spread over the rows.
    static qreal split(const std::vector<qreal>& a, const std::vector<qreal>& b, qreal longestA,
                       qreal longestB, qreal leastA, qreal leastB, qreal room)
    {
        const qreal even = room * longestA / (longestA + longestB);
        const auto clamp = [&](qreal x) {
            return std::clamp(x, leastA, std::max(leastA, room - leastB));
        };
        std::vector<qreal> tried{clamp(even)};
        std::vector<qreal> sortedA = a, sortedB = b;
        std::sort(sortedA.begin(), sortedA.end());
        std::sort(sortedB.begin(), sortedB.end());
        constexpr std::size_t samples = 64;
        for (std::size_t s = 0; s < samples && !sortedA.empty(); ++s) {
            const std::size_t at = (sortedA.size() - 1) * s / (samples - 1);
            tried.push_back(clamp(sortedA[at]));
            tried.push_back(clamp(room - sortedB[at * sortedB.size() / sortedA.size()]));
        }
        qreal best = tried.front();
        std::size_t fewest = std::numeric_limits<std::size_t>::max();
        for (const qreal x : tried) {
            std::size_t over = 0;
            for (std::size_t r = 0; r < a.size() && r < b.size(); ++r)
                over += a[r] > x + 0.01 || b[r] > room - x + 0.01;
            if (over < fewest || (over == fewest && std::abs(x - even) < std::abs(best - even))) {
                fewest = over;
                best = x;
            }
        }
        return best;
    }

    // The lines of each cell of a row that does not fit on one (none for a cell that does);
    // the number of lines of the row.
    int layOut(const QStringList& cells, const Table& t, const std::vector<qreal>& w)
    {
        int lines = 1;
        wrapped.resize(static_cast<std::size_t>(cells.size()));
        for (qsizetype c = 0; c < cells.size() && c < qsizetype(w.size()); ++c) {
            QStringList& cell = wrapped[static_cast<std::size_t>(c)];
            cell.clear();
            const qreal room = w[static_cast<std::size_t>(c)] - 2 * pad;
            if (t.columns.value(c) == Column::Number || setter->width(cells[c]) <= room)
                continue;
            cell = setter->wrap(cells[c], room, maxCellLines);
            lines = std::max(lines, static_cast<int>(cell.size()));
        }
        return lines;
    }

    qreal heightOf(int lines) const { return rowHeight + (lines - 1) * lineStep; }

    void headerRow(const Table& t, const std::vector<qreal>& w)
    {
        if (writer) {
            painter.fillRect(QRectF(0, y, width, rowHeight), QColor(225, 225, 225));
            painter.setFont(bold);
            const QFontMetricsF m(bold, device);
            const qreal baseline = y + (rowHeight + m.ascent() - m.descent()) / 2;
            qreal x = 0;
            for (qsizetype c = 0; c < t.header.size() && c < qsizetype(w.size()); ++c) {
                const qreal cw = w[static_cast<std::size_t>(c)];
                // Over a column of numbers the header stands to the right, as they do.
                const qreal hx = t.columns.value(c) == Column::Number
                                     ? x + cw - pad - m.horizontalAdvance(t.header[c])
                                     : x + pad;
                painter.drawText(QPointF(hx, baseline), t.header[c]);
                x += cw;
            }
        }
        y += rowHeight;
    }

    void row(const QStringList& cells, const Table& t, const std::vector<qreal>& w, int lines,
             bool shaded)
    {
        const qreal h = heightOf(lines);
        if (writer) {
            if (shaded)
                painter.fillRect(QRectF(0, y, width, h), QColor(244, 244, 244));
            // The whole row is one run of glyphs: one text object on the page, not one a cell.
            const qreal baseline = std::round(y + (rowHeight + bodyAscent - bodyDescent) / 2);
            QList<quint32> glyphs;
            QList<QPointF> positions;
            qreal x = 0;
            for (std::size_t c = 0; c < wrapped.size() && c < w.size(); ++c) {
                const qreal cw = w[c];
                const Column kind = t.columns.value(static_cast<qsizetype>(c));
                const QStringList& lineList = wrapped[c];
                const qsizetype count = std::max<qsizetype>(lineList.size(), 1);
                for (qsizetype l = 0; l < count; ++l)
                    setter->add(lineList.isEmpty() ? cells[static_cast<qsizetype>(c)] : lineList[l],
                                kind == Column::Number ? std::nullopt
                                                       : std::optional<qreal>(x + pad),
                                x + cw - pad, kind == Column::Number ? 0 : cw - 2 * pad,
                                std::round(static_cast<qreal>(l) * lineStep), glyphs, positions);
                x += cw;
            }
            painter.drawGlyphRun(QPointF(0, baseline), setter->run(glyphs, positions));
        }
        y += h;
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
        headerRow(t, w);
        for (qsizetype r = 0; r < t.rows.size(); ++r) {
            const int lines = layOut(t.rows[r], t, w);
            if (y + heightOf(lines) > height) {
                newPage();
                title(QStringLiteral("%1 (continuación)").arg(t.title));
                headerRow(t, w);
            }
            row(t.rows[r], t, w, lines, r % 2 == 1);
        }
    }

    static constexpr int nameFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
    static constexpr int maxCellLines = 3;

    QPdfWriter* device;
    QPdfWriter* writer; // none while counting
    const resultsreport::Report& report;
    int total;
    QPainter painter;
    QFont body, bold, heading, banner;
    std::optional<GlyphSetter> setter;
    std::vector<QStringList> wrapped; // the lines of each cell of the row being laid out
    qreal rowHeight = 0, lineStep = 0, pad = 0, width = 0, height = 0, y = 0;
    qreal bodyAscent = 0, bodyDescent = 0;
    qreal pageWidth = 0, nameHeight = 0, headerHeight = 0;
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
