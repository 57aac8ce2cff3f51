#include "dialogs.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace
{

// A long message (the lines of a file that could not be read, say) is cut to its first lines,
// the whole of it under "Mostrar detalles...", so that the box never grows past the screen. A
// line with a run of characters too long to wrap is cut too.
constexpr int shownLines = 8;
constexpr int longestWord = 60;
constexpr int shownLineLength = 100;

bool unwrappable(const QString& line)
{
    int run = 0;
    for (const QChar c : line) {
        run = c.isSpace() ? 0 : run + 1;
        if (run > longestWord)
            return true;
    }
    return false;
}

void setMessage(QMessageBox& box, const QString& text)
{
    const QStringList lines = text.split(u'\n');
    if (lines.size() <= shownLines && std::none_of(lines.begin(), lines.end(), unwrappable)) {
        box.setText(text);
        return;
    }
    QStringList shown = lines.first(std::min<qsizetype>(lines.size(), shownLines));
    for (QString& l : shown) {
        if (unwrappable(l))
            l = l.left(shownLineLength - 1) + u'…';
    }
    box.setText(shown.join(u'\n') + QStringLiteral("\n…"));
    box.setDetailedText(text);
}

QString chooseFile(QWidget* parent, const FileRequest& request, QFileDialog::AcceptMode mode)
{
    QFileDialog dialog(parent, request.title);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile
                                                       : QFileDialog::AnyFile);
    dialog.setNameFilter(request.filter);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    // Qt's own dialog, never the desktop's: the finish keys reach only the program's windows.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setDefaultSuffix(request.defaultSuffix);
    const QFileInfo proposed(request.proposedName);
    if (proposed.dir().exists())
        dialog.setDirectory(proposed.dir());
    dialog.selectFile(proposed.fileName());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

} // namespace

int QtDialogs::confirm(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Critical, title, text, QMessageBox::Ok | QMessageBox::Cancel,
                    parent);
    box.setDefaultButton(QMessageBox::Cancel);
    box.setEscapeButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok ? Ok : Cancel;
}

void QtDialogs::warn(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Critical, title, QString(), QMessageBox::Ok, parent);
    setMessage(box, text);
    box.exec();
}

int QtDialogs::ask(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.button(QMessageBox::Yes)->setText(QStringLiteral("Sí"));
    box.button(QMessageBox::No)->setText(QStringLiteral("No"));
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes ? Yes : No;
}

QString QtDialogs::openFile(QWidget* parent, const FileRequest& request)
{
    return chooseFile(parent, request, QFileDialog::AcceptOpen);
}

QString QtDialogs::saveFile(QWidget* parent, const FileRequest& request)
{
    // Qt's dialog asks before it lets an existing file be chosen.
    return chooseFile(parent, request, QFileDialog::AcceptSave);
}

QString QtDialogs::askText(QWidget* parent, const QString& title, const QString& label)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.setLabelText(label);
    dialog.setOkButtonText(QStringLiteral("Aceptar"));
    dialog.setCancelButtonText(QStringLiteral("Cancelar"));
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.textValue();
}

QStringList QtDialogs::askFields(QWidget* parent, const QString& title, const QStringList& labels)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(title);
    auto* form = new QFormLayout(&dialog);
    QList<QLineEdit*> fields;
    for (const QString& label : labels) {
        fields << new QLineEdit(&dialog);
        form->addRow(label, fields.last());
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Aceptar"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancelar"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    QStringList answers;
    for (const QLineEdit* f : fields)
        answers << f->text();
    return answers;
}

void QtDialogs::inform(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Information, title, QString(), QMessageBox::Ok, parent);
    setMessage(box, text);
    box.setIconPixmap(parent ? parent->windowIcon().pixmap(64) : QPixmap());
    box.exec();
}
