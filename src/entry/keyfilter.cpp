#include "keyfilter.h"

#include "base/cp1252.h"

#include <QKeyEvent>
#include <QLineEdit>

bool filterKey(QLineEdit* field, const QKeyEvent* key, const std::function<int(int)>& filter)
{
    int typed = 0;
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        typed = 13;
    else if (key->key() == Qt::Key_Backspace)
        typed = 8;
    else if (key->text().size() == 1 && key->text()[0].isPrint())
        typed = cp1252::code(key->text()[0]);
    else
        return false;
    if (typed == 0)
        return true;
    const int code = filter(typed);
    if (code != 0 && code != 13 && code != typed) {
        field->insert(QString(cp1252::character(code)));
        return true;
    }
    // An accepted key is typed by the field itself; Enter has been handled already.
    return code == 0 || typed == 13;
}
