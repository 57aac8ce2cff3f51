// The window read at any scale: CTest runs this test at QT_SCALE_FACTOR 1, 1.5 and 2. In every
// layout and time format, with the widest lines a race can have, no caption is cut by its
// control or covered by another, the lists show their lines without scrolling sideways, and
// the column header stands over the columns of the results list, pixel for pixel.
#include "app/core/statefile.h"
#include "chrono/core/timevalue.h"
#include "results/core/resultline.h"
#include "support/formfixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QtMath>

#include <algorithm>
#include <cstdlib>

class ScalingTest : public QObject
{
    Q_OBJECT

private slots:
    void captionsAreWholeAndUncovered_data() { layouts(); }
    void captionsAreWholeAndUncovered();
    void linesFitTheirLists_data() { layouts(); }
    void linesFitTheirLists();
    void headerStandsOverTheColumns_data();
    void headerStandsOverTheColumns();

private:
    static void layouts();
};

namespace
{

constexpr double startOfRace = 9 * 3600.0;
constexpr double momentShown = startOfRace + 47 * 60 + 13.482;

// A running race of 40 finishers with four-digit ranks and bibs: the widest lines there are.
RaceState widestRace(int formato, int modo)
{
    RaceState s;
    s.inicio = startOfRace;
    s.horaSalida = QStringLiteral("09:00");
    s.formato = formato;
    s.modoCaptura = modo;
    const auto format = static_cast<TimeFormat>(formato);
    using resultline::Target;
    const double first = 38 * 60 + 12.25;
    s.tempsPrimer = timevalue::tempsexaMil(first / timevalue::secondsPerHour);
    for (int i = 0; i < 40; ++i) {
        const double seconds = first + i * 97.125;
        const QString rank = resultline::rankField(QString::number(9960 + i));
        const QString bib = resultline::bibField(QString::number(9000 + 37 * i));
        const QString time = timevalue::tempsexaMil(seconds / timevalue::secondsPerHour);
        const QString difference =
            timevalue::tempsexaMil((seconds - first) / timevalue::secondsPerHour).mid(1);
        if (modo == 2) {
            s.list1 << resultline::bibLine(rank, bib);
            s.combo1 << resultline::bibLine(rank, bib);
            continue;
        }
        s.list1 << resultline::fullLine(
            rank, bib, resultline::cutTime(time, format, Target::List1),
            resultline::cutDifference(difference, format, Target::List1));
        s.combo1 << resultline::comboLine(
            rank, resultline::cutTime(time, format, Target::Combo1),
            resultline::cutDifference(difference, format, Target::Combo1));
    }
    for (int i = 0; i < 40; ++i)
        s.list2 << resultline::rankField(QString::number(9960 + i)) + u'-' +
                       resultline::bibField(QString::number(9000 + i)) + QStringLiteral(" - ") +
                       timevalue::tempsexaMil((600 + 30 * i) / timevalue::secondsPerHour).mid(1, 7);
    return s;
}

// Opens the window on that race, the clock standing at 00:47:13.482; the compact window is
// the normal one after "Minimizar".
void openLayout(FormFixture& f, int formato, int modo, bool compact)
{
    f.writeFile(QStringLiteral("MARVO.dat"), statefile::encode(widestRace(formato, modo)));
    f.clock.seconds = momentShown;
    f.open();
    if (compact)
        f.trigger(QStringLiteral("opp4"));
    f.tick(0);
    // A bib being typed, as in the bib modes.
    f.child<QLineEdit>(QStringLiteral("Text1"))->setText(QStringLiteral("9999"));
    QCoreApplication::processEvents();
}

// The rectangle the caption of a label or a button takes inside it.
QRect captionRect(const QWidget* w, const QString& text)
{
    const QFontMetrics fm = w->fontMetrics();
    const QRect ink = fm.tightBoundingRect(text);
    Qt::Alignment align = Qt::AlignCenter;
    if (const auto* l = qobject_cast<const QLabel*>(w))
        align = l->alignment();
    const QSize size(fm.horizontalAdvance(text), ink.height());
    return QStyle::alignedRect(w->layoutDirection(), align, size, w->contentsRect());
}

// The captions the operator reads: labels and buttons with a one-line text, shown and lying
// within the window (the compact window leaves the results area below its edge).
QList<QWidget*> captions(FormMarvolendo& form)
{
    QList<QWidget*> found;
    const QWidget* area = form.centralWidget();
    for (QWidget* w : area->findChildren<QWidget*>()) {
        const auto* label = qobject_cast<QLabel*>(w);
        const auto* button = qobject_cast<QAbstractButton*>(w);
        if (!w->isVisibleTo(&form) || (!label && !button))
            continue;
        if (label && (label->wordWrap() || label->text().isEmpty()))
            continue;
        if (button && button->text().isEmpty())
            continue;
        const QRect inArea(w->mapTo(area, QPoint(0, 0)), w->size());
        if (area->rect().contains(inArea))
            found << w;
    }
    return found;
}

QString captionOf(const QWidget* w)
{
    if (const auto* l = qobject_cast<const QLabel*>(w))
        return l->text();
    return qobject_cast<const QAbstractButton*>(w)->text();
}

// Columns of a device-pixel row range that hold dark ink (text), from x0 to x1.
QList<bool> inkColumns(const QImage& image, const QRect& device, int x0, int x1)
{
    QList<bool> columns(x1 - x0, false);
    for (int x = std::max(x0, device.left()); x <= std::min(x1 - 1, device.right()); ++x) {
        for (int y = device.top(); y <= device.bottom(); ++y) {
            if (qGray(image.pixel(x, y)) < 100) {
                columns[x - x0] = true;
                break;
            }
        }
    }
    return columns;
}

QRect toDevice(const QRect& logical, qreal ratio)
{
    return QRect(QPoint(qRound(logical.left() * ratio), qRound(logical.top() * ratio)),
                 QPoint(qRound((logical.right() + 1) * ratio) - 1,
                        qRound((logical.bottom() + 1) * ratio) - 1));
}

} // namespace

void ScalingTest::layouts()
{
    QTest::addColumn<int>("formato");
    QTest::addColumn<int>("modo");
    QTest::addColumn<bool>("compact");
    const char* const formats[] = {"Segundos", "Centesimas", "Milesimas"};
    for (int formato = 0; formato < 3; ++formato) {
        QTest::addRow("Lap, %s", formats[formato]) << formato << 0 << false;
        QTest::addRow("dorsales y tiempos, %s", formats[formato]) << formato << 1 << false;
        QTest::addRow("compacta, %s", formats[formato]) << formato << 0 << true;
    }
    QTest::addRow("solo dorsales") << 2 << 2 << false;
}

void ScalingTest::captionsAreWholeAndUncovered()
{
    QFETCH(int, formato);
    QFETCH(int, modo);
    QFETCH(bool, compact);
    FormFixture f;
    openLayout(f, formato, modo, compact);
    FormMarvolendo& form = f.form();
    const QList<QWidget*> shown = captions(form);
    // The clock, its buttons and the rank at least; the results area too in the full window.
    QVERIFY(shown.size() >= (modo == 2 ? 0 : compact ? 4 : 10));
    for (QWidget* w : shown) {
        const QString text = captionOf(w);
        const QString what = w->objectName() + QStringLiteral(" \"") + text + u'"';
        const QRect caption = captionRect(w, text);
        QVERIFY2(w->contentsRect().contains(caption),
                 qPrintable(what + QStringLiteral(" needs %1x%2, has %3x%4")
                                       .arg(caption.width())
                                       .arg(caption.height())
                                       .arg(w->contentsRect().width())
                                       .arg(w->contentsRect().height())));
        // Both ends of the caption belong to the control itself: nothing lies over them.
        const int y = caption.center().y();
        for (const QPoint end : {QPoint(caption.left() + 1, y), QPoint(caption.right() - 1, y)}) {
            const QWidget* top = form.childAt(w->mapTo(&form, end));
            QVERIFY2(top == w, qPrintable(what + QStringLiteral(" lies under ") +
                                          (top ? top->objectName() : QStringLiteral("nothing"))));
        }
    }
    // The bib field holds four digits inside its frame and margins.
    auto* bib = f.child<QLineEdit>(QStringLiteral("Text1"));
    if (bib->isVisibleTo(&form)) {
        const int frame = bib->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, bib);
        const QFontMetrics fm = bib->fontMetrics();
        QVERIFY(fm.horizontalAdvance(bib->text()) + 2 * (frame + 2) <= bib->width());
        QVERIFY(fm.height() + 2 * frame <= bib->height());
        QCOMPARE(form.childAt(bib->mapTo(&form, bib->rect().center())), bib);
    }
}

void ScalingTest::linesFitTheirLists()
{
    QFETCH(int, formato);
    QFETCH(int, modo);
    QFETCH(bool, compact);
    FormFixture f;
    openLayout(f, formato, modo, compact);
    for (const QString& name : {QStringLiteral("List1"), QStringLiteral("List2")}) {
        QListWidget* list = f.list(name);
        if (!list->isVisibleTo(&f.form()))
            continue;
        QVERIFY(list->verticalScrollBar()->isVisibleTo(list)); // the worst case: a scroll bar
        // Item text is laid out with the focus frame's margin and one pixel on either side.
        const int margin =
            list->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list) + 1;
        const QFontMetrics fm(list->font());
        for (int i = 0; i < list->count(); ++i) {
            const QString line = list->item(i)->text();
            QVERIFY2(fm.horizontalAdvance(line) + 2 * margin <= list->viewport()->width(),
                     qPrintable(name + QStringLiteral(": \"") + line + u'"'));
        }
        QCOMPARE(list->horizontalScrollBar()->maximum(), 0);
    }
    // The compact window empties the lists and leaves Combo1 below its edge.
    auto* combo = f.child<QComboBox>(QStringLiteral("Combo1"));
    if (combo->isVisibleTo(&f.form()) && !compact) {
        QStyleOptionComboBox option;
        option.initFrom(combo);
        option.subControls = QStyle::SC_All;
        option.currentText = combo->currentText();
        const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                           QStyle::SC_ComboBoxEditField, combo);
        QVERIFY(!combo->currentText().isEmpty());
        QVERIFY2(combo->fontMetrics().horizontalAdvance(combo->currentText()) <= field.width(),
                 qPrintable(combo->currentText()));
    }
}

void ScalingTest::headerStandsOverTheColumns_data()
{
    QTest::addColumn<int>("formato");
    // "Segundos" lists in a larger font than the header's: the columns part by design.
    QTest::newRow("Centesimas") << 1;
    QTest::newRow("Milesimas") << 2;
}

void ScalingTest::headerStandsOverTheColumns()
{
    QFETCH(int, formato);
    FormFixture f;
    openLayout(f, formato, 1, false);
    FormMarvolendo& form = f.form();
    QLabel* header = f.label(QStringLiteral("Label16"));
    QListWidget* list = f.list(QStringLiteral("List1"));
    QVERIFY(!header->isHidden() && !list->isHidden());
    QCOMPARE(list->font().pointSizeF(), header->font().pointSizeF());

    // The header's own text as the list's first line, not selected: the ink of the two
    // must fall on the same pixel columns of the screen.
    {
        const QSignalBlocker quiet(list);
        list->insertItem(0, header->text());
        list->clearSelection();
        list->setCurrentRow(-1);
        list->scrollToTop();
    }
    QCoreApplication::processEvents();
    const QImage image = form.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    QCOMPARE(ratio, form.devicePixelRatioF());

    const QRect headerRect(header->mapTo(&form, QPoint(0, 0)), header->size());
    const QRect itemInView = list->visualItemRect(list->item(0));
    const QRect itemRect(list->viewport()->mapTo(&form, itemInView.topLeft()), itemInView.size());
    const int x0 = qRound(std::min(headerRect.left(), itemRect.left()) * ratio);
    const int x1 = qRound(std::max(headerRect.right(), itemRect.right()) * ratio);
    const QList<bool> top = inkColumns(image, toDevice(headerRect, ratio), x0, x1);
    const QList<bool> below = inkColumns(image, toDevice(itemRect, ratio), x0, x1);
    QVERIFY(top.count(true) > 20);
    QVERIFY(below.count(true) > 20);

    // The shift that lays the list's ink best on the header's: at most one pixel of the window.
    const int reach = qRound(12 * ratio);
    int bestShift = 0;
    int bestMatch = -1;
    for (int shift = -reach; shift <= reach; ++shift) {
        int match = 0;
        for (int x = 0; x < top.size(); ++x) {
            const int other = x + shift;
            if (other >= 0 && other < below.size() && top[x] && below[other])
                ++match;
        }
        if (match > bestMatch) {
            bestMatch = match;
            bestShift = shift;
        }
    }
    QVERIFY2(bestMatch >= top.count(true) * 8 / 10,
             qPrintable(QStringLiteral("the header and the line do not look alike (%1 of %2)")
                            .arg(bestMatch)
                            .arg(top.count(true))));
    QVERIFY2(
        std::abs(bestShift) <= qCeil(ratio),
        qPrintable(QStringLiteral("the list's columns stand %1 device pixels from the header's")
                       .arg(bestShift)));
}

QTEST_MAIN(ScalingTest)
#include "tst_scaling.moc"
