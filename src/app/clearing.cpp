// Clearing a race and the compact window.
#include "app/formmarvolendo.h"
#include "app/layouts.h"
#include "app/look.h"
#include "app/texts.h"
#include "base/basic.h"

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
    // Nothing recorded and the clock at zero: there is nothing to lose, so no question, unless
    // entrants are loaded, which go with the race.
    if (Label1->text() != zeroClock || !race.list1().isEmpty() || hasEntrants()) {
        respuesta = dialogs.confirm(this, QStringLiteral("Borrado de tiempos"),
                                    QStringLiteral("Cuidado si continua borrara todos los datos "
                                                   "almacenados"));
        if (respuesta == Dialogs::Cancel)
            return;
        // Nothing is lost by a click: the race as it stands is kept first.
        keepCurrentRace();
    }

    inicio = 0;
    desfase = 0;
    horaSalida = basic::fitFixed(QString(), 5);
    tempsPrimer.clear();
    // Saved while the lists still hold the old race: the file keeps them, with the clock reset,
    // until the next save.
    guardarEstado();

    Label2->setText(QStringLiteral("0"));
    Label1->setText(zeroClock);
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
    forgetEntrants();

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
    journalSnapshot();
}

void FormMarvolendo::opp4_Click()
{
    // Checked means compact; the caption names what the next click does.
    opp4->setChecked(!opp4->isChecked());
    // No state file is open here: the results lists come back empty, List2 keeps its lines,
    // and the format, mode and colours are applied again.
    recuperar();

    if (opp4->isChecked()) {
        setFormHeightTwips(layouts::compact.height);
        setFormWidthTwips(layouts::compact.width);
        Command6->setVisible(false);
        opp2->setEnabled(false);
        opp22->setEnabled(false);
        opp4->setText(QStringLiteral("Maximizar"));
    } else {
        setFormHeightTwips(layouts::fullHeight);
        if (opp2->isChecked())
            setFormWidthTwips(layouts::bibsAndTimesWidth);
        else
            Command6->setVisible(true);
        if (inicio == 0) {
            opp2->setEnabled(true);
            opp22->setEnabled(true);
        }
        opp4->setText(QStringLiteral("Minimizar"));
    }
}
