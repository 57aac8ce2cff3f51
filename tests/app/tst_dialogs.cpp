// The standard boxes and key names of the window speak Spanish (Qt's own translations, as
// Debian ships them, are loaded at start), and a long message stays on the screen.
#include "app/dialogs.h"
#include "app/spanish.h"
#include "support/formfixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QScreen>
#include <QTimer>

namespace
{

// The next modal box to open is looked at, then closed.
void whenABoxOpens(const std::function<void(QWidget*)>& look)
{
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, look] {
        QWidget* open = QApplication::activeModalWidget();
        if (!open)
            return;
        look(open);
        timer->deleteLater();
        QMetaObject::invokeMethod(open, "reject", Qt::QueuedConnection);
    });
    timer->start(10);
}

} // namespace

class DialogsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(installSpanish(*QApplication::instance())); }

    void standardButtons_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QStringList>("buttons");
        QTest::newRow("confirm") << "confirm" << QStringList{"Aceptar", "Cancelar"};
        QTest::newRow("warn") << "warn" << QStringList{"Aceptar"};
        QTest::newRow("askText") << "askText" << QStringList{"Aceptar", "Cancelar"};
    }

    void standardButtons()
    {
        QFETCH(QString, box);
        QFETCH(QStringList, buttons);
        QtDialogs dialogs;
        QStringList seen;
        whenABoxOpens([&seen](QWidget* open) {
            for (const QAbstractButton* b : open->findChildren<QAbstractButton*>())
                if (b->isVisibleTo(open) && !b->text().isEmpty())
                    seen << QString(b->text()).remove(u'&');
        });
        if (box == "confirm")
            dialogs.confirm(nullptr, "Borrado de tiempos", "¿Seguro?");
        else if (box == "warn")
            dialogs.warn(nullptr, "Aviso", "Texto");
        else
            dialogs.askText(nullptr, "Resultados", "Nombre:");
        seen.sort();
        buttons.sort();
        QCOMPARE(seen, buttons);
    }

    void aLongMessageStaysOnTheScreen()
    {
        // Forty lines of a file that could not be read, some of them very long.
        QStringList lines{QStringLiteral("Cargados 3 inscritos.")};
        for (int i = 1; i <= 40; ++i)
            lines << QStringLiteral("Línea %1: %2").arg(i).arg(QString(i % 3 ? 20 : 400, u'x'));
        QtDialogs dialogs;
        QRect box;
        QRect screen;
        whenABoxOpens([&](QWidget* open) {
            box = open->frameGeometry();
            screen = open->screen()->availableGeometry();
        });
        dialogs.inform(nullptr, QStringLiteral("Inscritos"), lines.join(u'\n'));
        QVERIFY(box.isValid());
        QVERIFY2(screen.contains(box), qPrintable(QStringLiteral("%1x%2 on %3x%4")
                                                      .arg(box.width())
                                                      .arg(box.height())
                                                      .arg(screen.width())
                                                      .arg(screen.height())));
    }

    void keyNamesInTheMenu()
    {
        FormFixture f;
        f.open();
        QCOMPARE(f.action("borrar")->shortcut().toString(QKeySequence::NativeText),
                 QStringLiteral("Suprimir"));
    }
};

QTEST_MAIN(DialogsTest)
#include "tst_dialogs.moc"
