#include "linedelegate.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

void LineDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const
{
    const bool selected = option.state & QStyle::State_Selected;
    const QPalette::ColorGroup group = !(option.state & QStyle::State_Enabled) ? QPalette::Disabled
                                       : option.state & QStyle::State_Active   ? QPalette::Active
                                                                               : QPalette::Inactive;
    if (selected) {
        painter->fillRect(option.rect, option.palette.brush(group, QPalette::Highlight));
    } else {
        const QVariant back = index.data(Qt::BackgroundRole);
        if (back.isValid())
            painter->fillRect(option.rect, back.value<QBrush>());
    }
    painter->setPen(
        option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(option.font);
    // The text starts where the style's own item text would.
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    const QFontMetrics metrics(option.font);
    const int baseline =
        option.rect.top() + (option.rect.height() + metrics.ascent() - metrics.descent()) / 2;
    painter->drawText(QPoint(option.rect.left() + margin, baseline),
                      index.data(Qt::DisplayRole).toString());
}
