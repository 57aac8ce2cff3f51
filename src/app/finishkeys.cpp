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
    // Every event of the program passes here: anything but a key leaves at once.
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    const int code = key->key() == Qt::Key_F1 ? 112 : key->key() == Qt::Key_F3 ? 114 : 0;
    if (code == 0 || key->modifiers() != Qt::NoModifier)
        return false;
    // A key reaches the native window first and the widget with the focus next: the widget
    // decides. Before the main window shows (the recovery question at start-up) there is no
    // race to take a finish in.
    if (!watched->isWidgetType() || !mainWindow->isVisible() ||
        !ofMainWindow(static_cast<QWidget*>(watched)->window()))
        return false;
    quint64& released = code == 112 ? releasedF1 : releasedF3;
    if (type == QEvent::KeyRelease) {
        released = key->timestamp();
        return true;
    }
    // One finish a press: a key held down repeats its press, and X sends each repeat as a
    // release and a press of the same moment, which Qt does not always mark as a repeat.
    const bool repeat =
        key->isAutoRepeat() || (key->timestamp() != 0 && key->timestamp() == released);
    if (!repeat)
        finish(code);
    return true;
}

bool FinishKeys::ofMainWindow(const QWidget* window) const
{
    for (const QWidget* w = window; w; w = w->parentWidget()) {
        if (w == mainWindow)
            return true;
    }
    return false;
}
