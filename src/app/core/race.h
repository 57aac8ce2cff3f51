// The race: the window-level values, the captions a finish leaves, the lines of Combo1, List1
// and List2 exactly as the lists show them and the state file keeps them, the race name and the
// entrants. Every change goes through this model and is announced once (Race::changed): the
// window shows the race from there, the journal writes it, and the journal's reader replays a
// change through the same function (applyChange).
#pragma once

#include "app/core/racestate.h"
#include "results/core/entrants.h"

#include <QList>
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
        Values,            // window-level values or captions changed outside a finish or an
                           // edit (Start, Stop, the clock, a clear, a format): the journal takes
                           // the race whole
        Mark,              // the status of bib `index` set to `mark`, or cleared when none
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
    std::optional<runnerstatus::Mark> mark;

    static RaceChange bib(int index, const QString& list1Line);
    static RaceChange remove(int index);
    static RaceChange insert(int index, const QString& combo1Line, const QString& list1Line);
    static RaceChange startOrder(const QStringList& lines);
    static RaceChange differences(int format);
    static RaceChange of(Kind kind);
    static RaceChange marked(int bib, const std::optional<runnerstatus::Mark>& mark);

    // Changes the lines (not only the captions or the values).
    bool changesLines() const;
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
// The same on a whole race: its lines, and the captions a finish or a Captions change sets.
bool applyChange(RaceRecord& record, const RaceChange& change);

class Race : public QObject
{
    Q_OBJECT

public:
    Race();

    const RaceRecord& record() const { return current; }
    const RaceState& state() const { return current.state; }
    const QStringList& combo1() const { return current.state.combo1; }
    const QStringList& list1() const { return current.state.list1; }
    const QStringList& list2() const { return current.state.list2; }
    const runnerstatus::Marks& marks() const { return current.marks; }
    bool running() const { return current.state.inicio != 0; }
    // The race as the journal takes it: the clock's caption only while the clock stands.
    RaceRecord snapshot() const;
    // The race as its results were taken: a format chosen since, with the results still
    // there, is not theirs.
    RaceState asTaken() const;

    // Makes the change and announces it; false (and no announcement) when it does not fit.
    bool apply(const RaceChange& change);
    // The lines of a saved race: the results replaced, the start order appended to. Not a
    // change of the race, so not journaled; announced by restored().
    void restore(const QStringList& combo1, const QStringList& list1, const QStringList& list2);

    // The window-level values and captions. Each change is announced as a Values change at
    // once, or once for all when the outermost Batch open ends.
    void setInicio(double v);
    void setDesfase(double v);
    void setHoraSalida(const QString& v);
    void setTempsPrimer(const QString& v);
    void setFormato(const Variant& v);
    void setModoCaptura(const Variant& v);
    void setClock(const QString& label1);
    void setRank(const QString& label2);
    void setFirst(const QString& label4);
    void setLast(const QString& label5);
    void setLastDifference(const QString& label8);

    // Values changed while a Batch lives are announced when the outermost one ends: a handler
    // that sets five values makes one journal entry.
    class Batch
    {
    public:
        explicit Batch(Race& race);
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        Race& race;
    };

    // The race replaced whole (a kept race made the current one). The changes made while a
    // Replacement lives are announced as they come, for the screen, but the journal leaves them
    // out (replacing() is true); its end is one Values change, which the journal takes as one
    // snapshot. A program killed half-way is found with the race before, never with a mix.
    class Replacement
    {
    public:
        explicit Replacement(Race& race);
        ~Replacement();
        Replacement(const Replacement&) = delete;
        Replacement& operator=(const Replacement&) = delete;

    private:
        Race& race;
    };
    bool replacing() const { return replacingDepth > 0; }

    // The entrants loaded for the race and its name, which the results print.
    const QList<entrants::Entrant>& entrants() const { return inscritos; }
    const QString& name() const { return nombre; }
    void setEntrants(const QList<entrants::Entrant>& list);
    // The marks of a saved race, read back at start-up: not a change, so not journaled.
    void restoreMarks(const runnerstatus::Marks& marks);
    void setName(const QString& name);

signals:
    void changed(const RaceChange& change);
    void restored();
    void entrantsChanged();

private:
    template <typename T> void setValue(T& field, const T& value);
    void valuesChanged();

    RaceRecord current;
    Variant linesFormato; // the format the results lines were written in
    int batchDepth = 0;
    int replacingDepth = 0;
    bool valuesPending = false;
    QList<entrants::Entrant> inscritos;
    QString nombre;
};
