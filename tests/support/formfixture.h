// A window of the real program in a folder of its own: the state file, the drive mapping and
// the results folder all live in a temporary folder, the clock and the dialogs are the test's.
#pragma once

#include "app/formmarvolendo.h"
#include "fakes.h"

#include <QAction>
#include <QByteArray>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class FormFixture
{
public:
    // Creates the folder and points the current directory and the drives at it; the window is
    // made by open(), so that a test can first write a state file.
    FormFixture();
    ~FormFixture();

    QString path(const QString& name) const { return dir.filePath(name); }
    void writeFile(const QString& name, const QByteArray& bytes) const;
    QByteArray readFile(const QString& name) const;
    // The results folder C:\Carreras\copias, made on request (the program never makes it).
    QString makeResultsFolder() const;

    FormMarvolendo& open();
    // Opens on a race saved as the state file keeps it.
    FormMarvolendo& open(const RaceState& saved);
    void close() { window.reset(); }
    FormMarvolendo& form() { return *window; }

    template <typename T> T* child(const QString& name) const
    {
        T* c = window->findChild<T*>(name);
        if (!c)
            qFatal("no control named %s", qPrintable(name));
        return c;
    }
    QPushButton* button(const QString& name) const { return child<QPushButton>(name); }
    QLabel* label(const QString& name) const { return child<QLabel>(name); }
    QAction* action(const QString& name) const { return child<QAction>(name); }
    QListWidget* list(const QString& name) const { return child<QListWidget>(name); }
    QStringList lines(const QString& listName) const;
    QStringList comboLines() const;

    void click(const QString& buttonName) { QTest::mouseClick(button(buttonName), Qt::LeftButton); }
    void trigger(const QString& actionName) { action(actionName)->trigger(); }
    // Keys typed into a control; Enter included where the text ends with "\n".
    void type(const QString& controlName, const QString& text);
    void pressF(int number);
    // Moves the clock and lets the display redraw.
    void tick(double seconds);

    FakeClock clock;
    ScriptedDialogs dialogs;
    // The boxes the window shows: the scripted ones, unless a test gives real ones before open().
    Dialogs* shownDialogs = &dialogs;
    FakeSound sound{&clock};
    QTemporaryDir dir;

private:
    std::unique_ptr<FormMarvolendo> window;
    QString previousDir;
};
