// Message boxes and the file dialog of the window go through this interface, so that tests
// answer them with scripted replies while the real window shows real dialogs.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// What a file dialog is asked for.
struct FileRequest {
    QString title;
    QString filter;
    QString defaultSuffix;
    QString proposedName;

    // A spreadsheet saved as CSV to open (text files too, which some save it as).
    static FileRequest csvToOpen(const QString& title)
    {
        return {title,
                QStringLiteral("Hojas de cálculo CSV (*.csv *.CSV *.txt *.TXT);;Todos los "
                               "ficheros (*)"),
                QStringLiteral("csv"),
                {}};
    }
};

class Dialogs
{
public:
    // The answers keep the old numbering: 1 OK, 2 Cancel, 6 Yes, 7 No.
    enum Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

    virtual ~Dialogs() = default;
    // OK and Cancel, critical icon, Cancel as the default button.
    virtual int confirm(QWidget* parent, const QString& title, const QString& text) = 0;
    // A critical message with an OK button.
    virtual void warn(QWidget* parent, const QString& title, const QString& text) = 0;
    // Yes and No, question icon, Yes as the default button.
    virtual int ask(QWidget* parent, const QString& title, const QString& text) = 0;
    // The chosen file, or an empty text when the operator cancels.
    virtual QString openFile(QWidget* parent, const FileRequest& request) = 0;
    // The file to write, or an empty text when the operator cancels; a file that exists is
    // replaced only when the operator says so.
    virtual QString saveFile(QWidget* parent, const FileRequest& request) = 0;
    // A line of text typed by the operator, or an empty text when the operator cancels.
    virtual QString askText(QWidget* parent, const QString& title, const QString& label) = 0;
    // One line of text for each label, in one box; an empty list when the operator cancels.
    virtual QStringList askFields(QWidget* parent, const QString& title,
                                  const QStringList& labels) = 0;
    // An information box with an OK button.
    virtual void inform(QWidget* parent, const QString& title, const QString& text) = 0;
};

class QtDialogs final : public Dialogs
{
public:
    int confirm(QWidget* parent, const QString& title, const QString& text) override;
    void warn(QWidget* parent, const QString& title, const QString& text) override;
    int ask(QWidget* parent, const QString& title, const QString& text) override;
    QString openFile(QWidget* parent, const FileRequest& request) override;
    QString saveFile(QWidget* parent, const FileRequest& request) override;
    QString askText(QWidget* parent, const QString& title, const QString& label) override;
    QStringList askFields(QWidget* parent, const QString& title,
                          const QStringList& labels) override;
    void inform(QWidget* parent, const QString& title, const QString& text) override;
};
