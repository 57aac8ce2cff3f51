// How the results lists draw a line: its background (the bib checks' colour or the
// selection), then its text from the baseline. The lines are plain text in fixed columns, so
// the full item layout of the style (icons, wrapping, eliding, focus frames) is work a finish
// need not wait for.
#pragma once

#include <QStyledItemDelegate>

class LineDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};
