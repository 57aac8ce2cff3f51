// Twips, colours and fonts of the window. Positions and sizes are kept in twips, as the
// layouts are drawn, at 15 twips per logical pixel; Qt's scaling keeps the proportions.
#pragma once

#include <QColor>
#include <QFont>

class QWidget;

namespace look
{

constexpr int twipsPerPixel = 15;
inline int px(int twips)
{
    return (twips + twipsPerPixel / 2) / twipsPerPixel;
}
inline int twips(int pixels)
{
    return pixels * twipsPerPixel;
}

void place(QWidget* w, int left, int top, int width, int height);
// The same in pixels: the control is moved and given that fixed size.
void setBox(QWidget* w, const QRect& box);
void move(QWidget* w, int left, int top);
void setLeft(QWidget* w, int left);
void setWidth(QWidget* w, int width);
int width(const QWidget* w);

// The fixed colours of the window.
inline const QColor darkRed{128, 0, 0};
inline const QColor teal{0, 128, 128};
inline const QColor lightYellow{255, 255, 192};
inline const QColor lightGrey{224, 224, 224};
inline const QColor grey{128, 128, 128};
inline const QColor olive{192, 192, 0};
inline const QColor navy{0, 0, 128};

// The system colours the window uses.
QColor windowText();
QColor windowBackground();
QColor buttonText();
QColor buttonShadow();

// Background and text of a control; nothing is redrawn when they are already so.
void setColours(QWidget* w, const QColor& back, const QColor& fore);
void setBack(QWidget* w, const QColor& back);
void setFore(QWidget* w, const QColor& fore);
QColor back(const QWidget* w);

// Courier New where the system has it, otherwise the system's fixed-pitch font.
QFont fixedFont(qreal pointSize);
void setPointSize(QWidget* w, qreal pointSize);

// A tool window placed clear of the main window: to its right, else its left, below, above,
// wherever the screen has room; with room nowhere, to its right.
void placeBeside(QWidget* tool, const QWidget* main);

} // namespace look
