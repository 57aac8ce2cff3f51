#include "finishkeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

FinishKeys::FinishKeys(QWidget* window, std::function<void(int)> onFinish)
    : QObject(window), mainWindow(window), finish(std::move(onFinish))
{
    qApp->installEventFilter(this);
}

bool FinishKeys::eventFilter(QObject* watched, QEvent* event)
{
    // Every event of the program passes here: anything but a key press leaves at once.
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if ((key->key() != Qt::Key_F1 && key->key() != Qt::Key_F3) ||
        key->modifiers() != Qt::NoModifier)
        return false;
    // A press reaches the native window first and its focus widget next: the widget decides.
    // The main window's own shortcuts take its presses; before it is shown (the recovery
    // question at start-up) there is no race to take a finish in.
    if (!watched->isWidgetType() || !mainWindow->isVisible())
        return false;
    const QWidget* window = static_cast<QWidget*>(watched)->window();
    if (window == mainWindow || !overMainWindow(window))
        return false;
    // One finish a press, as the main window's shortcuts: a held key repeats nothing.
    if (!key->isAutoRepeat())
        finish(key->key() == Qt::Key_F1 ? 112 : 114);
    return true;
}

bool FinishKeys::overMainWindow(const QWidget* window) const
{
    for (const QWidget* w = window; w; w = w->parentWidget()) {
        if (w == mainWindow)
            return true;
    }
    return false;
}
