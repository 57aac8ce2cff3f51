// The window read at any scale: CTest runs this test at QT_SCALE_FACTOR 1, 1.5 and 2. In every
// layout and time format, with the widest lines a race can have, no caption is cut by its
// control or covered by another, the lists show their lines without scrolling sideways, and
// the column header stands over the columns of the results list, pixel for pixel. (The
// compact window shows the same controls at the same places, only fewer of them.)
#include "results/core/resultline.h"
#include "support/formfixture.h"
#include "support/races.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionComboBox>

class ScalingTest : public QObject
{
    Q_OBJECT

private slots:
    // Lap (modo 0), bibs and times (1) and bibs only (2), in each time format.
    void readable_data()
    {
        QTest::addColumn<int>("formato");
        QTest::addColumn<int>("modo");
        for (int formato = 0; formato < 3; ++formato)
            for (int modo = 0; modo < 3; ++modo)
                QTest::addRow("formato %d, modo %d", formato, modo) << formato << modo;
    }

    void readable()
    {
        QFETCH(int, formato);
        QFETCH(int, modo);
        // A running race of 40 finishers with four-digit ranks and bibs and the longest times:
        // the widest lines there are in the fixed-pitch lists, and enough for a scroll bar.
        using namespace resultline;
        RaceState race = runningRace();
        race.formato = formato;
        race.modoCaptura = modo;
        const auto format = TimeFormat(formato);
        const QString rank = rankField(u"9999"), bib = bibField(u"9999");
        const auto time = [&](Target t) { return cutTime(u"23:59:59:999", format, t); };
        const auto difference = [&](Target t) { return cutDifference(u"9:59:59:999", format, t); };
        const QString line = fullLine(rank, bib, time(Target::List1), difference(Target::List1));
        const QString combo1 = comboLine(rank, time(Target::Combo1), difference(Target::Combo1));
        race.list1 = QStringList(40, modo == 2 ? bibLine(rank, bib) : line);
        race.combo1 = QStringList(40, modo == 2 ? bibLine(rank, bib) : combo1);
        race.list2 = QStringList(40, rank + u'-' + bib + QStringLiteral(" - 9:59:59"));
        FormFixture f;
        FormMarvolendo& form = f.open(race);
        f.tick(0.482);

        // Both ends of every one-line caption within the window lie inside its control, and
        // belong to it: nothing is cut, nothing lies over them.
        int captions = 0;
        for (QWidget* w : form.centralWidget()->findChildren<QWidget*>()) {
            const auto* label = qobject_cast<QLabel*>(w);
            const QString text = w->property("text").toString();
            if (!(label || w->inherits("QAbstractButton")) || text.isEmpty() ||
                (label && label->wordWrap()) || !w->isVisibleTo(&form) ||
                !form.rect().contains(QRect(w->mapTo(&form, QPoint()), w->size())))
                continue;
            const QFontMetrics fm = w->fontMetrics();
            const QRect caption = QStyle::alignedRect(
                w->layoutDirection(), label ? label->alignment() : Qt::AlignCenter,
                {fm.horizontalAdvance(text), fm.tightBoundingRect(text).height()},
                w->contentsRect());
            const QByteArray what =
                (w->objectName() + QStringLiteral(" \"") + text + u'"').toUtf8();
            QVERIFY2(w->contentsRect().contains(caption), what + " is cut");
            for (const int x : {caption.left() + 1, caption.right() - 1})
                QVERIFY2(form.childAt(w->mapTo(&form, QPoint(x, caption.center().y()))) == w,
                         what + " is covered");
            ++captions;
        }
        QVERIFY(captions >= (modo == 2 ? 0 : 10)); // the clock, its buttons, the results area

        // The lines fit their lists beside the scroll bar: nothing to scroll sideways. (The range
        // is the widest line plus the item margins past the viewport's width.) The drop-down's
        // field shows the last line whole.
        for (const QListWidget* list : {f.list("List1"), f.list("List2")})
            QVERIFY2(!list->isVisibleTo(&form) || list->horizontalScrollBar()->maximum() == 0,
                     qPrintable(list->item(0)->text()));
        auto* combo = f.child<QComboBox>("Combo1");
        QStyleOptionComboBox option;
        option.initFrom(combo);
        const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                           QStyle::SC_ComboBoxEditField, combo);
        QVERIFY2(combo->fontMetrics().horizontalAdvance(combo->currentText()) <= field.width(),
                 qPrintable(combo->currentText()));

        // "Segundos" lists in a larger font than the header's: there the columns part by design.
        if (modo != 1 || formato == 0)
            return;
        // The header's own text as the list's first line: the same text in the same fixed-pitch
        // font, its ink must span the same device-pixel columns of the window as the header's.
        QLabel* header = f.label("Label16");
        QListWidget* list = f.list("List1");
        list->insertItem(0, header->text());
        const QImage image = form.grab().toImage();
        const qreal ratio = image.devicePixelRatio();
        // The first and last device-pixel columns of dark ink (text) in a rectangle of a control.
        const auto ink = [&](const QWidget* w, const QRect& r) {
            const QRect device = QRect(w->mapTo(&form, r.topLeft()) * ratio, r.size() * ratio);
            QPoint span(image.width(), -1);
            for (int x = device.left(); x <= device.right(); ++x)
                for (int y = device.top(); y <= device.bottom(); ++y)
                    if (qGray(image.pixel(x, y)) < 100)
                        span = {std::min(span.x(), x), x};
            return span;
        };
        const QPoint above = ink(header, header->rect());
        const QPoint below = ink(list->viewport(), list->visualItemRect(list->item(0)));
        // The text was found, and the two spans agree to a pixel of the window.
        QVERIFY2(above.y() - above.x() > header->width() / 2 &&
                     std::max(qAbs(below.x() - above.x()), qAbs(below.y() - above.y())) <=
                         qCeil(ratio),
                 qPrintable(QString::asprintf("the line's ink spans %d-%d, the header's %d-%d",
                                              below.x(), below.y(), above.x(), above.y())));
    }
};

QTEST_MAIN(ScalingTest)
#include "tst_scaling.moc"
