// Clearing a race and the compact window.
#include "app/formmarvolendo.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/texts.h"
#include "base/basic.h"
#include "results/resultspublisher.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

namespace
{

using texts::zeroClock;

} // namespace

void FormMarvolendo::Command4_Click()
{
    clearRefused = false;
    // Nothing recorded and the clock at zero: there is nothing to lose, so no question, unless
    // entrants are loaded, which go with the race.
    if (session.clockCaption() != zeroClock || !race.list1().isEmpty() ||
        publisher->hasEntrants()) {
        respuesta = dialogs.confirm(this, QStringLiteral("Borrado de tiempos"),
                                    QStringLiteral("Cuidado si continua borrara todos los datos "
                                                   "almacenados"));
        if (respuesta == Dialogs::Cancel)
            return;
        // Nothing is lost by a click: the race as it stands is kept first, and a race that
        // cannot be kept is not cleared.
        if (!session.keepCurrent()) {
            clearRefused = true;
            return;
        }
    }

    const Race::Batch batch(race);
    race.setInicio(0);
    race.setDesfase(0);
    race.setHoraSalida(basic::fitFixed(QString(), 5));
    race.setTempsPrimer(QString());
    // Saved while the lists still hold the old race: the file keeps them, with the clock reset,
    // until the next save.
    guardarEstado();

    race.setRank(QStringLiteral("0"));
    race.setClock(zeroClock);
    switch (checkedFormat()) {
    case 0:
        Label6->setText(QString());
        break;
    case 1:
        Label6->setText(QStringLiteral("00"));
        break;
    case 2:
        Label6->setText(QStringLiteral("000"));
        break;
    default:
        break;
    }
    race.apply(RaceChange::of(RaceChange::Kind::ResultsEmptied));
    publisher->forget();

    for (QLabel* l : {Label4, Label7}) {
        look::setColours(l, look::lightGrey, Qt::black);
        l->setEnabled(false);
    }
    Label5->setEnabled(false);
    Label8->setEnabled(false);
    ProgressBar1->setValue(0);
    controles();

    for (QWidget* w : {static_cast<QWidget*>(Label1), static_cast<QWidget*>(Label6),
                       static_cast<QWidget*>(Label8), static_cast<QWidget*>(Label2),
                       static_cast<QWidget*>(Label5), static_cast<QWidget*>(Combo1),
                       static_cast<QWidget*>(List1), static_cast<QWidget*>(Text1)})
        look::setColours(w, look::lightGrey, look::grey);
    Text1->clear();
}

void FormMarvolendo::opp4_Click()
{
    // Checked means compact; the caption names what the next click does.
    opp4->setChecked(!opp4->isChecked());
    // No state file is open here: the results lists come back empty, List2 keeps its lines,
    // and the format, mode and colours are applied again.
    recuperar();

    if (opp4->isChecked()) {
        setFormTwips(layouts::compact.width, layouts::compact.height);
        Command6->setVisible(false);
        opp2->setEnabled(false);
        opp22->setEnabled(false);
        opp4->setText(QStringLiteral("Maximizar"));
    } else {
        setFormTwips(-1, layouts::fullHeight);
        if (opp2->isChecked())
            setFormTwips(layouts::bibsAndTimesWidth, -1);
        else
            Command6->setVisible(true);
        if (!race.running()) {
            opp2->setEnabled(true);
            opp22->setEnabled(true);
        }
        opp4->setText(QStringLiteral("Minimizar"));
    }
}
