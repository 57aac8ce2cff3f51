// The window shows the race: every change of it reaches the lists and the captions here, and
// nowhere else are their lines and captions set.
#include "app/formmarvolendo.h"
#include "chrono/armedstart.h"
#include "results/finisheditor.h"

#include <QComboBox>
#include <QLabel>
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

// The list made to show `lines` again after a line left it (count one more than the lines),
// came in (one less) or the texts changed in place, from row `from` on. The items stay where
// they are and only their texts move, and one line is dropped or added at the end: an item
// that changes row has to be looked for by the list on every later change, which over
// thousands of lines costs far more than moving texts. The views are told once, with a
// repaint: the lines keep their length, so nothing needs a new layout.
void follow(QListWidget* list, const QStringList& lines, int from)
{
    const int n = static_cast<int>(lines.size());
    while (list->count() > n)
        delete list->takeItem(list->count() - 1);
    if (list->count() < n)
        list->addItem(lines.last());
    {
        const QSignalBlocker quiet(list->model());
        for (int i = from; i < n; ++i) {
            QListWidgetItem* item = list->item(i);
            if (item->text() != lines[i])
                item->setText(lines[i]);
        }
    }
    list->viewport()->update();
}

void follow(QComboBox* combo, const QStringList& lines, int from)
{
    const int current = combo->currentIndex();
    const int n = static_cast<int>(lines.size());
    while (combo->count() > n)
        combo->removeItem(combo->count() - 1);
    if (combo->count() < n)
        combo->addItem(lines.last());
    {
        const QSignalBlocker quiet(combo->model());
        for (int i = from; i < n; ++i) {
            if (combo->itemText(i) != lines[i])
                combo->setItemText(i, lines[i]);
        }
    }
    combo->setCurrentIndex(std::min(current, combo->count() - 1));
    combo->update();
}

} // namespace

void FormMarvolendo::showChange(const RaceChange& c)
{
    using Kind = RaceChange::Kind;
    switch (c.kind) {
    case Kind::Finish:
        if (c.hasLines) {
            List1->addItem(c.list1Line);
            // The line's colour first: a change of an item after the list has been laid out
            // would have it laid out again, all ten thousand lines, when it is drawn.
            finishEditor->showChecks(c);
            showLast(List1);
            Combo1->addItem(c.combo1Line);
            showLast(Combo1);
        }
        showCaptions();
        return;
    case Kind::Bib:
        List1->item(c.index)->setText(c.list1Line);
        break;
    case Kind::Remove:
    case Kind::Insert:
    case Kind::Differences: {
        const int from = c.kind == Kind::Differences ? 0 : c.index;
        follow(List1, race.list1(), from);
        follow(Combo1, race.combo1(), from);
        break;
    }
    case Kind::StartOrder:
        List2->addItems(c.lines);
        break;
    case Kind::StartOrderEmptied:
        List2->clear();
        break;
    case Kind::ResultsEmptied:
        Combo1->clear();
        List1->clear();
        break;
    case Kind::Captions:
    case Kind::Values:
        showCaptions();
        return;
    case Kind::Mark:
        return;
    }
    finishEditor->showChecks(c);
}

void FormMarvolendo::showRestored()
{
    Combo1->clear();
    List1->clear();
    Combo1->addItems(race.combo1());
    List1->addItems(race.list1());
    List2->clear();
    List2->addItems(race.list2());
    finishEditor->showAllChecks();
}

// The captions the race keeps: the rank counter, the first and the last finisher, and the
// clock while it stands (a running or armed clock is drawn by its tick).
void FormMarvolendo::showCaptions()
{
    const RaceRecord& r = race.record();
    Label2->setText(r.label2);
    Label4->setText(r.label4);
    Label5->setText(r.state.label5);
    Label8->setText(r.state.label8);
    if (!race.running() && !armedStart->armed())
        Label1->setText(r.label1);
}
