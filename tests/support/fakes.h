// Test doubles of the window's seams: a clock the test moves by hand and dialogs that answer
// from a script.
#pragma once

#include "app/dialogs.h"
#include "chrono/core/clock.h"

#include <QList>
#include <QString>
#include <QStringList>

class FakeClock final : public Clock
{
public:
    double seconds = 10 * 3600.0; // 10:00:00
    double timer() const override { return seconds; }
    QTime timeOfDay() const override
    {
        return QTime::fromMSecsSinceStartOfDay(static_cast<int>(seconds * 1000.0 + 0.5) % 86400000);
    }
    void advance(double s) { seconds += s; }
};

class ScriptedDialogs final : public Dialogs
{
public:
    struct Shown {
        QString kind; // "confirm", "warn", "ask", "open"
        QString title;
        QString text;
    };
    QList<int> answers;      // answers to confirm/ask, in order
    QStringList files;       // answers to openFile, in order ("" cancels)
    QList<Shown> shown;      // every dialog shown, in order
    bool unexpected = false; // a dialog came without a scripted answer
    FileRequest lastRequest;

    int confirm(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("confirm"), title, text});
        return next(Cancel);
    }
    void warn(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("warn"), title, text});
    }
    int ask(QWidget*, const QString& title, const QString& text) override
    {
        shown.append({QStringLiteral("ask"), title, text});
        return next(No);
    }
    QString openFile(QWidget*, const FileRequest& request) override
    {
        lastRequest = request;
        shown.append({QStringLiteral("open"), request.title, request.proposedName});
        if (files.isEmpty()) {
            unexpected = true;
            return {};
        }
        return files.takeFirst();
    }

private:
    int next(int fallback)
    {
        if (answers.isEmpty()) {
            unexpected = true;
            return fallback;
        }
        return answers.takeFirst();
    }
};
