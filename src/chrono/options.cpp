// The time-format and capture-mode options.
#include "app/formmarvolendo.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/texts.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

namespace
{

using texts::zeroClock;

const QString formatTitle = QStringLiteral("Formato de tiempo");
const QString formatWarning =
    QStringLiteral("Cuidado si cambia el formato borrara todos los tiempos almacenados");

// The entry of the format menu that matches formato; a saved code outside 0-2 has none.
QAction* formatEntry(QAction* const (&entries)[3], const Variant& formato)
{
    const double code = number(formato);
    for (int i = 0; i < 3; ++i) {
        if (code == i)
            return entries[i];
    }
    return nullptr;
}

} // namespace

// What the bibs-only sheet hides besides the run-control buttons: the clock, its buttons and
// the results labels. Leaving the sheet shows them again.
QList<QWidget*> FormMarvolendo::bibsOnlyHidden() const
{
    return {Command2[0],  Command2[1], Command3, Command4, Label1, Label6,
            ProgressBar1, Label9,      Label10,  Label4,   Label7, Label12,
            Label11,      Label5,      Label8,   Label2,   Label13};
}

void FormMarvolendo::op2_Click(int index)
{
    for (QAction* a : op2)
        a->setChecked(false);
    op2[index]->setChecked(true);

    // A click right after a cancelled change only moves the check mark. The start-order
    // import counts its failures in the same variable, so one failed record there has the
    // same effect on the next click.
    const qint16 skip = errores;
    errores = 0;
    if (skip == 1)
        return;

    if (Command1[1]->isHidden() && session.clockCaption() != zeroClock) {
        respuesta = dialogs.confirm(this, formatTitle, formatWarning);
        if (respuesta == Dialogs::Cancel) {
            // The format in use is checked again; the clicked entry stays checked as well.
            errores = 1;
            if (QAction* current = formatEntry(op2, race.state().formato))
                current->setChecked(true);
            return;
        }
    }

    const Variant taken = race.state().formato;
    race.setFormato(double(checkedFormat()));
    if (!race.running()) {
        Command4_Click();
        if (clearRefused) {
            // The race could not be kept, so it was not cleared: it stays in its own format.
            race.setFormato(taken);
            for (QAction* a : op2)
                a->setChecked(false);
            if (QAction* current = formatEntry(op2, taken))
                current->setChecked(true);
            return;
        }
    }

    // The whole-seconds clock also covers the place of the fraction label.
    placeClock(number(race.state().formato) == 0);

    switch (checkedFormat()) {
    case 0:
        Label6->setText(QString());
        look::setPointSize(Combo1, 10);
        break;
    case 1:
        Label6->setText(QStringLiteral("00"));
        look::setPointSize(Combo1, 10);
        break;
    case 2:
        Label6->setText(QStringLiteral("000"));
        look::setPointSize(Combo1, 10);
        break;
    default:
        break;
    }
    controles();
}

void FormMarvolendo::opp2_Click()
{
    opp2->setChecked(!opp2->isChecked());

    if (session.clockCaption() != zeroClock) {
        respuesta = dialogs.confirm(this, formatTitle, formatWarning);
        if (respuesta == Dialogs::Cancel) {
            // The toggle stays; the format entry in use is checked again instead.
            if (QAction* current = formatEntry(op2, race.state().formato))
                current->setChecked(true);
            return;
        }
    }

    if (opp2->isChecked()) {
        // Bibs and times: the bib field replaces "Lap", the wide window shows the list.
        opp4->setChecked(true);
        opp4_Click();
        look::setWidth(Command3, layouts::lapButtonWidthBehindBib);
        look::setPointSize(Combo1, 9);
        Command3->setVisible(false);
        Text1->setVisible(true);
        race.setModoCaptura(1.0);
        for (QWidget* w : {static_cast<QWidget*>(Label15), static_cast<QWidget*>(Label16),
                           static_cast<QWidget*>(List1), static_cast<QWidget*>(Text2)})
            w->setVisible(true);
        Label14->setVisible(false);
        Combo1->setVisible(false);
        setFormTwips(layouts::bibsAndTimesWidth, -1);
        Command6->setToolTip(texts::tipThreeFiles);
        Image1->setVisible(true);
        // The compact toggle above ran the Lap mode's handler once more through the restore,
        // which took the tick away: the mode chosen is this one, and the exports go by the tick.
        opp2->setChecked(true);
    } else {
        race.setModoCaptura(0.0);
        Command3->setVisible(true);
        Text1->setVisible(false);
        look::setWidth(Command3, layouts::lapButtonWidth);
        for (QWidget* w : {static_cast<QWidget*>(Label14), static_cast<QWidget*>(Label15),
                           static_cast<QWidget*>(Label16), static_cast<QWidget*>(List1),
                           static_cast<QWidget*>(Text2)})
            w->setVisible(false);
        Combo1->setVisible(true);
        setFormTwips(layouts::lapWidth, -1);
        Command6->setToolTip(texts::tipLapMode);
        move(look::px(layouts::lapLeft), y());
        Image1->setVisible(false);
    }
}

void FormMarvolendo::opp22_Click()
{
    if (opp22->isChecked()) {
        // Leaving the bibs-only mode clears the race, with the clearing's own question.
        opp22->setChecked(false);
        opp2->setEnabled(true);
        for (QAction* a : op2)
            a->setEnabled(true);
        opp4->setEnabled(true);
        race.setModoCaptura(0.0);
        Command4_Click();
    } else {
        opp22->setChecked(true);
        opp2->setChecked(false);
        opp2->setEnabled(false);
        for (QAction* a : op2)
            a->setEnabled(false);
        opp4->setEnabled(false);
        race.setModoCaptura(2.0);
    }

    // The answer tested is that of the last box the window showed, whichever it was.
    if (respuesta == Dialogs::Cancel) {
        opp22->setChecked(true);
        race.setModoCaptura(0.0);
        return;
    }

    if (opp22->isChecked()) {
        // The bib-entry sheet: no clock, the bib field on top, the list of bibs below.
        Command6->setToolTip(texts::tipBibsOnly);
        Command1[0]->setVisible(false);
        Command1[1]->setVisible(false);
        for (QWidget* w : bibsOnlyHidden())
            w->setVisible(false);
        Frame1->setTitle(QString());
        Text1->setVisible(true);
        placeSheet(true);
        Text1->setEnabled(true);
        look::setBack(Text1, look::olive);
        setFormTwips(layouts::bibsOnly.width, layouts::bibsOnly.height);
        List1->setVisible(true);
        Text2->setVisible(true);
        Combo1->setVisible(false);
        Label15->setVisible(false);
        look::setBack(List1, look::lightYellow);
    } else {
        Command1[0]->setVisible(true);
        for (QWidget* w : bibsOnlyHidden())
            w->setVisible(true);
        Frame1->setTitle(QStringLiteral("Tiempos parciales"));
        placeSheet(false);
        setFormTwips(layouts::leavingBibsOnly.width, layouts::leavingBibsOnly.height);
        Combo1->setVisible(true);
        look::setBack(Text1, look::lightGrey);
        Command6->setToolTip(texts::tipOneFile);
    }
}

void FormMarvolendo::placeClock(bool wholeSeconds)
{
    look::setWidth(Label1, wholeSeconds ? layouts::clockWidthSeconds : layouts::clockWidth);
    // The widened clock covers the emptied fraction label; otherwise the fraction label lies
    // on top of the clock's last pixel column, and its ticks repaint it alone.
    if (wholeSeconds)
        Label1->raise();
    else
        Label6->raise();
}
