// Recording a finish and the results-list handlers.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "base/basic.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using resultline::Target;

void FormMarvolendo::marcar()
{
    Command1[0]->setVisible(false);
    Command1[1]->setVisible(true);
    Command2[1]->setVisible(false);
    Command2[0]->setVisible(false);
    Command4->setVisible(false);
    look::setBack(Command3, look::olive);
    Command3->setEnabled(true);
    look::setBack(Text1, look::olive);
    Text1->setEnabled(true);
}

void FormMarvolendo::Command3_Click()
{
    // The rank is the caption of Label2; everything below reads the new caption.
    Label2->setText(basic::digits(basic::val(Label2->text()) + 1));

    const int format = checkedFormat();
    const auto timeFormat = static_cast<TimeFormat>(format);
    const bool timesOnLabels = number(modoCaptura) != 1;

    if (basic::val(Label2->text()) == 1) {
        if (timesOnLabels && format >= 0)
            Label4->setText(resultline::cutTime(tempsActual, timeFormat, Target::List1));
        tempsPrimer = tempsActual;
        Label4->setEnabled(true);
        look::setColours(Label4, look::darkRed, Qt::white);
        Label7->setEnabled(true);
        look::setColours(Label7, look::teal, Qt::white);
        look::setBack(Label5, look::lightYellow);
        look::setBack(Label8, look::lightYellow);
        // The first finisher is the only one a Lap saves; the others reach the file with the
        // next save of the race.
        guardarEstado();
    }

    if (timesOnLabels && format >= 0)
        Label5->setText(resultline::cutTime(tempsActual, timeFormat, Target::List1));

    RaceChange finish;
    finish.hasLines = format >= 0;
    if (format >= 0) {
        // Each field is read afresh for each line, so both lists carry the same rank.
        if (opp22->isChecked()) {
            look::setPointSize(List1, 14);
            finish.list1Line = resultline::bibLine(resultline::rankField(Label2->text()),
                                                   resultline::bibField(Text1->text()));
            finish.combo1Line = resultline::bibLine(resultline::rankField(Label2->text()),
                                                    resultline::bibField(Text1->text()));
        } else {
            Label8->setText(resultline::cutDifference(Label7->text(), timeFormat, Target::Combo1));
            if (timeFormat == TimeFormat::Segundos) {
                look::setPointSize(List1, 11);
                look::setPointSize(Combo1, 12);
            } else {
                look::setPointSize(List1, 9);
            }
            finish.list1Line = resultline::fullLine(
                resultline::rankField(Label2->text()), resultline::bibField(Text1->text()),
                resultline::cutTime(tempsActual, timeFormat, Target::List1),
                resultline::cutDifference(Label7->text(), timeFormat, Target::List1));
            finish.combo1Line = resultline::comboLine(
                resultline::rankField(Label2->text()),
                resultline::cutTime(tempsActual, timeFormat, Target::Combo1),
                resultline::cutDifference(Label7->text(), timeFormat, Target::Combo1));
        }
    }
    race.apply(withCaptions(finish));

    Label5->setEnabled(true);
    Label8->setEnabled(true);
    look::setColours(Label18, look::lightGrey, look::buttonShadow());
    Label18->setText(QStringLiteral("0"));
}

// The captions a finish leaves, as the journal keeps them with the change.
RaceChange FormMarvolendo::withCaptions(RaceChange change) const
{
    change.label2 = Label2->text();
    change.tempsPrimer = tempsPrimer;
    change.label4 = Label4->text();
    change.label5 = Label5->text();
    change.label8 = Label8->text();
    return change;
}

void FormMarvolendo::List1_Click()
{
    const QListWidgetItem* selected = List1->currentItem();
    Label14->setText(selected ? selected->text() : QString());
}

void FormMarvolendo::List1_DblClick()
{
    Text2->setEnabled(true);
    Text2->setFocus();
}

void FormMarvolendo::List2_Click()
{
    const QListWidgetItem* selected = List2->currentItem();
    Text1->setText(resultline::bibOfStartLine(selected ? selected->text() : QString()));
}
