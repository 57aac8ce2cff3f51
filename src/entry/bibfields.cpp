// The bib fields: Text1 takes the bib of the runner crossing the line, Text2 the corrected bib
// of the List1 line copied into Label14.
#include "app/formmarvolendo.h"
#include "app/look.h"
#include "app/notices.h"
#include "entry/core/entrada.h"
#include "results/core/resultline.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

namespace
{

// The field's text without its trailing blanks, as the keystroke filter sees it.
QString rightTrimmed(const QString& text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1) == u' ')
        --end;
    return text.left(end);
}

// A bib field takes the focus with the caret after its last character and nothing selected.
void caretToEnd(QLineEdit* field)
{
    field->deselect();
    field->setCursorPosition(static_cast<int>(field->text().size()));
    // Focus by Tab selects the whole text once this event is over: undo that then.
    QTimer::singleShot(0, field, [field] {
        if (field->hasFocus() && field->hasSelectedText() &&
            field->selectedText() == field->text()) {
            field->deselect();
            field->setCursorPosition(static_cast<int>(field->text().size()));
        }
    });
}

} // namespace

// Both bib fields: on focus, the colours, the field's kind and bounds, the caret at the end.
void FormMarvolendo::bibFieldGotFocus(QLineEdit* field)
{
    look::setColours(field, look::navy, look::windowBackground());
    tipoCampo = 6;
    maxCampo = 9999;
    minCampo = 0;
    caretToEnd(field);
}

// Both bib fields: a key through the filter, with its range message; sets enterCampo.
void FormMarvolendo::bibFieldKeyPress(QLineEdit* field, int& keyAscii)
{
    const EntradaResult result = entrada(entradaState, keyAscii, static_cast<int>(tipoCampo),
                                         rightTrimmed(field->text()), minCampo, maxCampo);
    keyAscii = result.keyAscii;
    enterCampo = result.enter ? 1 : 0;
    if (result.message != RangeMessage::None)
        dialogs.warn(this, rangeMessageTitle(result.message),
                     rangeMessageText(result.message, result.bound));
}

void FormMarvolendo::Text1_GotFocus()
{
    bibFieldGotFocus(Text1);
}

void FormMarvolendo::Text1_KeyPress(int& keyAscii)
{
    bibFieldKeyPress(Text1, keyAscii);
    if (enterCampo == 1) {
        Command3_Click();
        Text1->setText(QString());
    }
}

void FormMarvolendo::Text1_DblClick()
{
    int keyAscii = 13;
    Text1_KeyPress(keyAscii);
}

void FormMarvolendo::Text1_LostFocus()
{
    look::setColours(Text1, look::olive, look::buttonText());
}

void FormMarvolendo::Text2_GotFocus()
{
    bibFieldGotFocus(Text2);
}

void FormMarvolendo::Text2_KeyPress(int& keyAscii)
{
    bibFieldKeyPress(Text2, keyAscii);
    if (enterCampo == 1 && !Text2->text().isEmpty())
        rewriteCorrectedLine();
}

void FormMarvolendo::Text2_DblClick()
{
    int keyAscii = 13;
    Text2_KeyPress(keyAscii);
}

void FormMarvolendo::Text2_LostFocus()
{
    look::setColours(Text2, look::lightYellow, look::windowText());
    Text2->setEnabled(false);
}

void FormMarvolendo::rewriteCorrectedLine()
{
    // The line is found by the rank printed in it: line k of List1 is the finisher of rank
    // k + 1. A line that cannot be placed leaves the list, Label14 and Text2 as they are.
    const std::optional<QString> line = resultline::rewriteBib(lineToCorrect, Text2->text());
    if (!line) {
        notices->show(
            QStringLiteral("No se puede corregir: no hay ninguna línea de la lista elegida"));
        return;
    }
    const int index = resultline::lineIndexOfRank(*line);
    if (index < 0 || index >= race.list1().size()) {
        notices->show(QStringLiteral("No se puede corregir: la línea %1 no está en la lista")
                          .arg(resultline::rankText(*line)));
        return;
    }
    lineToCorrect = *line;
    Label14->setText(lineToCorrect);
    session.perform(raceedits::bibCorrection(race.record(), index, *line));
    Text2->setText(QString());
    lineToCorrect.clear();
    Label14->setText(QString());
}
