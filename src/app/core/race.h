// The race record: the lines of Combo1, List1 and List2, exactly as the lists show them and the
// state file keeps them. Every change of the lines is one RaceChange, applied in one place
// (applyChange) and announced once (Race::changed): the window shows the lines from there, the
// journal writes the change, and the journal's reader replays it through the same function.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

struct RaceChange {
    enum class Kind {
        Finish,            // a finish: its two lines (unless none was made) and the captions
        Bib,               // List1 line `index` rewritten
        Remove,            // line `index` of both lists removed, later ranks one less
        Insert,            // two lines put at `index`, later ranks one more
        StartOrder,        // lines appended to List2
        StartOrderEmptied, // List2 emptied
        ResultsEmptied,    // Combo1 and List1 emptied
        Differences,       // every difference written again against the first finisher's
                           // time, in the time format `index`
        Captions,          // no line changes: the captions below, set again after an edit
    };
    Kind kind = Kind::Finish;
    int index = -1;
    bool hasLines = true; // Finish: false when no time format was checked
    QString combo1Line;
    QString list1Line;
    QStringList lines;
    // The captions a finish (or a Captions change) sets: the rank counter, the first finisher's
    // time and its label, the last finisher's time and difference.
    QString label2;
    QString tempsPrimer;
    QString label4;
    QString label5;
    QString label8;

    static RaceChange bib(int index, const QString& list1Line);
    static RaceChange remove(int index);
    static RaceChange insert(int index, const QString& combo1Line, const QString& list1Line);
    static RaceChange startOrder(const QStringList& lines);
    static RaceChange differences(int format);
    static RaceChange of(Kind kind);
};

Q_DECLARE_METATYPE(RaceChange)

struct RaceLines {
    QStringList combo1;
    QStringList list1;
    QStringList list2;
};

// Applies the change to the lines. A change that does not fit them (an index past the end)
// leaves them as they are and returns false.
bool applyChange(RaceLines& lines, const RaceChange& change);

class Race : public QObject
{
    Q_OBJECT

public:
    const RaceLines& lines() const { return current; }
    const QStringList& combo1() const { return current.combo1; }
    const QStringList& list1() const { return current.list1; }
    const QStringList& list2() const { return current.list2; }

    // Makes the change and announces it; false (and no announcement) when it does not fit.
    bool apply(const RaceChange& change);
    // The lines of a saved race: the results replaced, the start order appended to. Not a
    // change of the race, so not journaled; announced by restored().
    void restore(const QStringList& combo1, const QStringList& list1, const QStringList& list2);

signals:
    void changed(const RaceChange& change);
    void restored();

private:
    RaceLines current;
};
