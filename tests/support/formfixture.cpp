#include "formfixture.h"

#include "app/core/statefile.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QSettings>
#include <QStyleFactory>

FormFixture::FormFixture()
{
    previousDir = QDir::currentPath();
    QDir::setCurrent(dir.path());
    QDir(dir.path()).mkpath(QStringLiteral("C"));
    QDir(dir.path()).mkpath(QStringLiteral("D"));
    qputenv("MARVOLENDO_DRIVE_C", QFile::encodeName(dir.filePath(QStringLiteral("C"))));
    qputenv("MARVOLENDO_DRIVE_D", QFile::encodeName(dir.filePath(QStringLiteral("D"))));
    // The program's settings too live in the folder, never in the real home.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir.path());
    if (QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

FormFixture::~FormFixture()
{
    close();
    QDir::setCurrent(previousDir);
}

void FormFixture::writeFile(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(name));
}

QByteArray FormFixture::readFile(const QString& name) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QString FormFixture::makeResultsFolder() const
{
    const QString folder = dir.filePath(QStringLiteral("C/Carreras/copias"));
    QDir().mkpath(folder);
    return folder;
}

FormMarvolendo& FormFixture::open()
{
    window = std::make_unique<FormMarvolendo>(clock, *shownDialogs, &sound);
    window->show();
    window->activateWindow();
    QApplication::setActiveWindow(window.get());
    return *window;
}

FormMarvolendo& FormFixture::open(const RaceState& saved)
{
    writeFile(QLatin1String(statefile::fileName), statefile::encode(saved));
    return open();
}

QStringList FormFixture::lines(const QString& listName) const
{
    QStringList out;
    const QListWidget* l = list(listName);
    for (int i = 0; i < l->count(); ++i)
        out << l->item(i)->text();
    return out;
}

QStringList FormFixture::comboLines() const
{
    QStringList out;
    const auto* combo = child<QComboBox>(QStringLiteral("Combo1"));
    for (int i = 0; i < combo->count(); ++i)
        out << combo->itemText(i);
    return out;
}

void FormFixture::type(const QString& controlName, const QString& text)
{
    auto* w = child<QWidget>(controlName);
    w->setFocus();
    QApplication::processEvents();
    for (const QChar c : text) {
        if (c == u'\n')
            QTest::keyClick(w, Qt::Key_Return);
        else if (c == u'\b')
            QTest::keyClick(w, Qt::Key_Backspace);
        else
            QTest::keyClicks(w, QString(c));
    }
}

void FormFixture::pressF(int number)
{
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : window.get(), number == 1 ? Qt::Key_F1 : Qt::Key_F3);
}

void FormFixture::tick(double seconds)
{
    clock.advance(seconds);
    window->Timer1_Timer();
}
