#include "spanish.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

bool installSpanish(QCoreApplication& app)
{
    auto* translator = new QTranslator(&app);
    if (!translator->load(QLocale(QLocale::Spanish, QLocale::Spain), QStringLiteral("qt"),
                          QStringLiteral("_"),
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    return true;
}
