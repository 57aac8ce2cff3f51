#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "app/spanish.h"
#include "app/version.h"
#include "chrono/core/clock.h"
#include "chrono/sound.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QRegularExpression>
#include <QStyleFactory>

#include <cstdio>

namespace
{

// The command line is read before any window system is needed, so that --version and --help
// answer on a machine without a display. Returns the exit code when the program is to end.
std::optional<int> readCommandLine(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Marvolendo: cronómetro de llegada para carreras. Toma los tiempos de los "
                       "corredores (F1, F3, el botón Lap o Intro en el campo de dorsal), anota "
                       "sus dorsales y guarda la carrera en MARVO.dat, en la carpeta desde la que "
                       "se abre."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Muestra esta ayuda y termina."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Muestra la versión y termina."));
    parser.addOption(help);
    parser.addOption(version);
    // Qt's own options (-platform, -style...) pass on to the application.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
    const bool read = parser.parse(arguments);
    if (parser.isSet(help)) {
        // Qt's help text, with its English headings in Spanish and the program's name.
        QString text = parser.helpText();
        text.replace(QRegularExpression(QStringLiteral("^Usage: \\S+ \\[options\\]")),
                     QStringLiteral("Uso: marvolendo [opciones]"));
        text.replace(QStringLiteral("Options:"), QStringLiteral("Opciones:"));
        text += QStringLiteral(
            "\nLas rutas fijas (C:\\Carreras\\copias\\, d:\\MARVO.dat) están fuera de Windows "
            "bajo la carpeta de la variable MARVOLENDO_DRIVE_C, MARVOLENDO_DRIVE_D..., o bajo "
            "la carpeta personal.\nVea también: man marvolendo\n");
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("marvolendo %s\n", version::text);
        return 0;
    }
    if (!read) {
        // Qt's platform options are not errors: the window system takes them.
        static const QStringList qtOptions{
            QStringLiteral("platform"),      QStringLiteral("style"),
            QStringLiteral("display"),       QStringLiteral("geometry"),
            QStringLiteral("reverse"),       QStringLiteral("qwindowgeometry"),
            QStringLiteral("platformtheme"), QStringLiteral("plugin"),
            QStringLiteral("session")};
        const QStringList unknown = parser.unknownOptionNames();
        const bool onlyQt = std::all_of(unknown.begin(), unknown.end(),
                                        [](const QString& o) { return qtOptions.contains(o); });
        if (!onlyQt) {
            std::fprintf(stderr,
                         "marvolendo: opción desconocida: %s\nPruebe «marvolendo --help».\n",
                         qPrintable(unknown.value(0)));
            return 2;
        }
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> end = readCommandLine(argc, argv))
        return *end;
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Marvolendo"));
    QApplication::setApplicationVersion(QLatin1String(version::text));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    installSpanish(app);
    SystemClock clock;
    QtDialogs dialogs;
    QtSound sound;
    FormMarvolendo form(clock, dialogs, &sound);
    QObject::connect(&form, &FormMarvolendo::terminar, &app, &QApplication::quit);
    form.show();
    return app.exec();
}
