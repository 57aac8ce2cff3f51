// F1 and F3 take a finish from every window of the program. The main window has shortcuts of
// its own; a dialog, a message box, a file dialog or a menu that has the keyboard would swallow
// the keys, so this filter of the whole application takes them there and hands them to the
// window's finish.
#pragma once

#include <QObject>

#include <functional>

class QWidget;

class FinishKeys final : public QObject
{
    Q_OBJECT

public:
    // Watches the presses of the windows opened over `mainWindow` while it is shown; `finish`
    // gets the old key code, 112 for F1 and 114 for F3.
    FinishKeys(QWidget* mainWindow, std::function<void(int)> finish);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool overMainWindow(const QWidget* window) const;

    QWidget* mainWindow;
    std::function<void(int)> finish;
};
