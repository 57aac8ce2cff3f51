// A change of the race record the operator can take back: the change itself, and the change
// that undoes it, both made through the record so that the lists and the journal follow.
#pragma once

#include "app/core/race.h"

#include <QList>
#include <QUndoCommand>

#include <functional>

class RaceCommand : public QUndoCommand
{
public:
    RaceCommand(Race& record, QList<RaceChange> redo, QList<RaceChange> undo, const QString& text)
        : QUndoCommand(text), race(record), forward(std::move(redo)), backward(std::move(undo))
    {
    }
    RaceCommand(Race& record, const RaceChange& redo, const RaceChange& undo, const QString& text)
        : RaceCommand(record, QList<RaceChange>{redo}, QList<RaceChange>{undo}, text)
    {
    }

    // What the window works out again after the lines changed, either way.
    std::function<void()> after;

    void redo() override
    {
        for (const RaceChange& c : forward)
            race.apply(c);
        if (after)
            after();
    }
    void undo() override
    {
        for (const RaceChange& c : backward)
            race.apply(c);
        if (after)
            after();
    }

private:
    Race& race;
    QList<RaceChange> forward;
    QList<RaceChange> backward;
};
