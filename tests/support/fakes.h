// Test doubles of the window's seams: a clock the test moves by hand and dialogs that answer
// from a script.
#pragma once

#include "app/dialogs.h"
#include "chrono/sound.h"
#include "support/fakeclock.h"

#include <QList>
#include <QString>
#include <QStringList>

// Counts the beeps, each with the clock's second it sounded at.
class FakeSound final : public Sound
{
public:
    explicit FakeSound(const FakeClock* timeSource = nullptr) : clock(timeSource) {}
    bool device = true;
    QList<std::pair<Tone, double>> played;
    const FakeClock* clock;
    bool play(Tone tone) override
    {
        if (!device)
            return false;
        played.append({tone, clock ? clock->steady : 0.0});
        return true;
    }
    bool available() const override { return device; }
};

class ScriptedDialogs final : public Dialogs
{
public:
    struct Shown {
        QString kind; // "confirm", "warn", "ask", "open", "save", "text"
        QString title;
        QString text;
    };
    QList<int> answers;              // answers to confirm/ask, in order
    QStringList files;               // answers to openFile and saveFile, in order ("" cancels)
    QStringList texts;               // answers to askText, in order ("" cancels)
    QList<QStringList> fieldAnswers; // answers to askFields, in order ({} cancels)
    QList<Shown> shown;              // every dialog shown, in order
    bool unexpected = false;         // a dialog came without a scripted answer
    FileRequest lastRequest;

    int confirm(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("confirm"), title, text});
        return next(answers, int(Cancel));
    }
    void warn(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("warn"), title, text});
    }
    int ask(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("ask"), title, text});
        return next(answers, int(No));
    }
    QString openFile(QWidget*, const FileRequest& request) override
    {
        lastRequest = request;
        shown.append({QStringLiteral("open"), request.title, request.proposedName});
        return next(files, QString());
    }
    QString saveFile(QWidget*, const FileRequest& request) override
    {
        lastRequest = request;
        shown.append({QStringLiteral("save"), request.title, request.proposedName});
        return next(files, QString());
    }
    QString askText(QWidget*, const QString& title, const QString& label) override
    {
        shown.append({QStringLiteral("text"), title, label});
        return next(texts, QString());
    }
    QStringList askFields(QWidget*, const QString& title, const QStringList& labels) override
    {
        shown.append({QStringLiteral("fields"), title, labels.join(u'|')});
        return next(fieldAnswers, QStringList());
    }
    void inform(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("inform"), title, text});
    }

private:
    // The next scripted answer; none left is a test fault, answered as a cancel.
    template <typename T> T next(QList<T>& script, const T& cancel)
    {
        if (script.isEmpty()) {
            unexpected = true;
            return cancel;
        }
        return script.takeFirst();
    }
};
