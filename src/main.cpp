#include "app/dialogs.h"
#include "app/formmarvolendo.h"
#include "chrono/core/clock.h"
#include "chrono/sound.h"

#include <QApplication>
#include <QStyleFactory>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Marvolendo"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    SystemClock clock;
    QtDialogs dialogs;
    QtSound sound;
    FormMarvolendo form(clock, dialogs, &sound);
    QObject::connect(&form, &FormMarvolendo::terminar, &app, &QApplication::quit);
    form.show();
    return app.exec();
}
