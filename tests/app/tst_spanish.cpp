// The standard boxes and key names of the window speak Spanish: Qt's own translations, as
// Debian ships them, are loaded at start.
#include "app/dialogs.h"
#include "app/spanish.h"
#include "support/formfixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>

class SpanishTest : public QObject
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
        QTimer::singleShot(0, [&seen] {
            auto* timer = new QTimer;
            QObject::connect(timer, &QTimer::timeout, [timer, &seen] {
                QWidget* open = QApplication::activeModalWidget();
                if (!open)
                    return;
                for (const QAbstractButton* b : open->findChildren<QAbstractButton*>())
                    if (b->isVisibleTo(open) && !b->text().isEmpty())
                        seen << QString(b->text()).remove(u'&');
                timer->deleteLater();
                QMetaObject::invokeMethod(open, "reject", Qt::QueuedConnection);
            });
            timer->start(10);
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

    void keyNamesInTheMenu()
    {
        FormFixture f;
        f.open();
        QCOMPARE(f.action("borrar")->shortcut().toString(QKeySequence::NativeText),
                 QStringLiteral("Suprimir"));
    }
};

QTEST_MAIN(SpanishTest)
#include "tst_spanish.moc"
