// List1, Combo1 and List2 show the lines of the race record: every change of the record
// reaches them here, and nowhere else are their lines set.
#include "app/formmarvolendo.h"

#include <QComboBox>
#include <QListWidget>
#include <QSignalBlocker>

namespace
{

// The last line just added becomes the list's selected line, scrolled into view. Selecting it
// is not a click of the operator: a bib correction under way keeps the line it was opened on.
void showLast(QListWidget* list)
{
    const int last = list->count() - 1;
    const QSignalBlocker quiet(list);
    list->setCurrentRow(last);
    list->scrollToItem(list->item(last));
}

void showLast(QComboBox* combo)
{
    combo->setCurrentIndex(combo->count() - 1);
}

// The texts of the lines from `from` on, after a removal or an insertion renumbered them.
void refresh(QListWidget* list, const QStringList& lines, int from)
{
    for (int i = from; i < list->count(); ++i)
        list->item(i)->setText(lines[i]);
}

void refresh(QComboBox* combo, const QStringList& lines, int from)
{
    for (int i = from; i < combo->count(); ++i)
        combo->setItemText(i, lines[i]);
}

} // namespace

void FormMarvolendo::showChange(const RaceChange& c)
{
    using Kind = RaceChange::Kind;
    switch (c.kind) {
    case Kind::Finish:
        if (c.hasLines) {
            List1->addItem(c.list1Line);
            showLast(List1);
            Combo1->addItem(c.combo1Line);
            showLast(Combo1);
        }
        break;
    case Kind::Bib:
        List1->item(c.index)->setText(c.list1Line);
        break;
    case Kind::Remove:
        delete List1->takeItem(c.index);
        Combo1->removeItem(c.index);
        refresh(List1, race.list1(), c.index);
        refresh(Combo1, race.combo1(), c.index);
        break;
    case Kind::Insert:
        List1->insertItem(c.index, c.list1Line);
        Combo1->insertItem(c.index, c.combo1Line);
        refresh(List1, race.list1(), c.index + 1);
        refresh(Combo1, race.combo1(), c.index + 1);
        break;
    case Kind::StartOrder:
        List2->addItems(c.lines);
        break;
    case Kind::StartOrderEmptied:
        List2->clear();
        break;
    case Kind::ResultsEmptied:
        Combo1->clear();
        List1->clear();
        // What could be taken back belongs to the race that is gone.
        undoStack.clear();
        break;
    case Kind::Results:
        for (int i = 0; i < List1->count(); ++i) {
            if (List1->item(i)->text() != c.list1Lines[i])
                List1->item(i)->setText(c.list1Lines[i]);
        }
        for (int i = 0; i < Combo1->count(); ++i) {
            if (Combo1->itemText(i) != c.lines[i])
                Combo1->setItemText(i, c.lines[i]);
        }
        break;
    case Kind::Captions:
        break;
    }
    checkBibs(c);
}

void FormMarvolendo::showRestored()
{
    Combo1->clear();
    List1->clear();
    Combo1->addItems(race.combo1());
    List1->addItems(race.list1());
    List2->clear();
    List2->addItems(race.list2());
    undoStack.clear();
    checkBibs(RaceChange::of(RaceChange::Kind::Results));
}
