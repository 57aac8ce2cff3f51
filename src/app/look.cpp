#include "look.h"

#include <QApplication>
#include <QComboBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPalette>
#include <QPushButton>
#include <QScreen>
#include <QWidget>

namespace look
{

void setBox(QWidget* w, const QRect& box)
{
    // A placed control keeps the size it is given, so a caption that changes (the clock's, with
    // every tick) does not ask the window to lay itself out again.
    if (w->size() != box.size()) {
        w->setMinimumSize(0, 0);
        w->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    w->setGeometry(box);
    w->setFixedSize(box.size());
}

void place(QWidget* w, int left, int top, int width, int height)
{
    setBox(w, QRect(px(left), px(top), px(width), px(height)));
}

void move(QWidget* w, int left, int top)
{
    w->move(px(left), px(top));
}

void setLeft(QWidget* w, int left)
{
    w->move(px(left), w->y());
}

void setWidth(QWidget* w, int width)
{
    setBox(w, QRect(w->pos(), QSize(px(width), w->height())));
}

int width(const QWidget* w)
{
    return twips(w->width());
}

QColor windowText()
{
    return QApplication::palette().color(QPalette::WindowText);
}

QColor windowBackground()
{
    return QApplication::palette().color(QPalette::Base);
}

QColor buttonText()
{
    return QApplication::palette().color(QPalette::ButtonText);
}

QColor buttonShadow()
{
    return QApplication::palette().color(QPalette::Dark);
}

namespace
{

// Which palette roles carry the background and the text of a kind of control.
void roles(const QWidget* w, QPalette::ColorRole* back, QPalette::ColorRole* fore)
{
    if (qobject_cast<const QLabel*>(w)) {
        *back = QPalette::Window;
        *fore = QPalette::WindowText;
    } else if (qobject_cast<const QPushButton*>(w)) {
        *back = QPalette::Button;
        *fore = QPalette::ButtonText;
    } else {
        *back = QPalette::Base;
        *fore = QPalette::Text;
    }
}

void setRole(QWidget* w, bool background, const QColor& colour)
{
    QPalette::ColorRole back = QPalette::Window;
    QPalette::ColorRole fore = QPalette::WindowText;
    roles(w, &back, &fore);
    const QPalette::ColorRole role = background ? back : fore;
    if (background && role == QPalette::Window && !w->autoFillBackground())
        w->setAutoFillBackground(true);
    QPalette palette = w->palette();
    if (palette.color(QPalette::Active, role) == colour &&
        palette.color(QPalette::Inactive, role) == colour &&
        palette.color(QPalette::Disabled, role) == colour)
        return;
    palette.setColor(role, colour);
    w->setPalette(palette);
}

} // namespace

void setColours(QWidget* w, const QColor& backColour, const QColor& foreColour)
{
    setRole(w, true, backColour);
    setRole(w, false, foreColour);
}

void setBack(QWidget* w, const QColor& colour)
{
    setRole(w, true, colour);
}

void setFore(QWidget* w, const QColor& colour)
{
    setRole(w, false, colour);
}

QColor back(const QWidget* w)
{
    QPalette::ColorRole b = QPalette::Window;
    QPalette::ColorRole f = QPalette::WindowText;
    roles(w, &b, &f);
    return w->palette().color(b);
}

QFont fixedFont(qreal pointSize)
{
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::Monospace);
    if (!QFontInfo(font).fixedPitch())
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(pointSize);
    // The lines are plain text in fixed columns: nothing to shape, and a list of thousands
    // redraws faster without it.
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

void setPointSize(QWidget* w, qreal pointSize)
{
    if (w->font().pointSizeF() == pointSize)
        return;
    QFont font = w->font();
    font.setPointSizeF(pointSize);
    w->setFont(font);
}

void placeBeside(QWidget* tool, const QWidget* main)
{
    const QRect frame = main->frameGeometry();
    const QScreen* screen = main->screen();
    const QRect room = screen ? screen->availableGeometry() : QRect();
    const QSize size = tool->frameGeometry().size();
    const QPoint places[] = {{frame.right() + 8, frame.top()},
                             {frame.left() - size.width() - 8, frame.top()},
                             {frame.left(), frame.bottom() + 8},
                             {frame.left(), frame.top() - size.height() - 8}};
    for (const QPoint& at : places) {
        if (!room.isValid() || room.contains(QRect(at, size))) {
            tool->move(at);
            return;
        }
    }
    tool->move(places[0]);
}

} // namespace look
