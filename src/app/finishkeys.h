// F1 and F3 take a finish from every window of the program: the main window with whatever
// control has the focus, and a dialog, a message box, a file dialog or a menu opened over it,
// which would otherwise swallow the keys. A filter of the whole application takes them first.
#pragma once

#include <QObject>

#include <functional>

class QWidget;

class FinishKeys final : public QObject
{
    Q_OBJECT

public:
    // Takes the presses in `mainWindow` and the windows opened over it while it is shown;
    // `finish` gets the old key code, 112 for F1 and 114 for F3.
    FinishKeys(QWidget* mainWindow, std::function<void(int)> finish);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool ofMainWindow(const QWidget* window) const;

    QWidget* mainWindow;
    std::function<void(int)> finish;
    // When each key was last let go, in the window system's milliseconds.
    quint64 releasedF1 = 0;
    quint64 releasedF3 = 0;
};
