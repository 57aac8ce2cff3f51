// Recording a finish and the results-list handlers.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "results/core/resultline.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

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
    // The Lap itself is the session's: a fresh reading of the clock, the rank, the captions
    // and the two lines. What is left here is how the window shows it.
    const int format = checkedFormat();
    if (format >= 0) {
        if (opp22->isChecked()) {
            look::setPointSize(List1, 14);
        } else if (format == 0) {
            look::setPointSize(List1, 11);
            look::setPointSize(Combo1, 12);
        } else {
            look::setPointSize(List1, 9);
        }
    }
    if (session.recordFinish(Text1->text()) == 1) {
        Label4->setEnabled(true);
        look::setColours(Label4, look::darkRed, Qt::white);
        Label7->setEnabled(true);
        look::setColours(Label7, look::teal, Qt::white);
        look::setBack(Label5, look::lightYellow);
        look::setBack(Label8, look::lightYellow);
    }
    Label5->setEnabled(true);
    Label8->setEnabled(true);
    look::setColours(Label18, look::lightGrey, look::buttonShadow());
    Label18->setText(QStringLiteral("0"));
}

void FormMarvolendo::List1_Click()
{
    const QListWidgetItem* selected = List1->currentItem();
    lineToCorrect = selected ? selected->text() : QString();
    Label14->setText(lineToCorrect);
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
