// The finish journal of a race: it follows the race's announcements by itself (a change of the
// lines or the captions is one entry, a change of the window-level values a whole snapshot),
// finds the journal an abnormal end left, and mends a journal the disk refused an entry of.
#pragma once

#include "app/core/journal.h"
#include "app/core/race.h"

#include <QFileInfo>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

#include <optional>

class JournalKeeper : public QObject
{
    Q_OBJECT

public:
    // `folder` holds MARVO.dat (empty: the current folder); `fallbackState` is where the state
    // file goes when that folder takes none, and the journal beside it likewise.
    JournalKeeper(Race& race, const QString& folder, const QString& fallbackState);

    // A journal an abnormal end left with changes the state file lacks: the newest of the one
    // beside MARVO.dat and the one of the fallback folder.
    struct Unfinished {
        QString path;
        journal::Contents contents;
    };
    std::optional<Unfinished> unfinished() const;
    // A journal not recovered is kept aside under a dated name; nothing is deleted.
    static void setAside(const QString& path);

    // Starts the journal with a snapshot of the race, beside MARVO.dat or else in the fallback
    // folder; false when neither takes it. The operator is told (notice) when it went elsewhere
    // or nowhere.
    bool start();
    // The clean mark of a normal end.
    void markClean();
    bool isOpen() const { return journal && journal->isOpen(); }

signals:
    // What the operator must know, in his words.
    void notice(const QString& text);
    // The disk refused an entry: a notice to keep until whole() says the journal is whole.
    void refused(const QString& text);
    void whole();

private:
    void follow(const RaceChange& change);
    void append(const QByteArray& entry);
    void repair();
    QString primaryPath() const;
    QString fallbackPath() const;
    bool startAt(const QString& path);

    Race& race;
    QString folder;
    QString fallbackState;
    std::unique_ptr<Journal> journal;
    QString journalPath; // where the open journal is
    QString startError;  // why the last journal could not be started
    bool broken = false;
    QTimer retry;
};
