// F1 and F3 with the real boxes of the program open: every press takes one finish, whichever
// window has the keyboard, and a key held down takes one.
#include "support/formfixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <QWindow>

namespace
{

// An F1 event stamped with the X server's time, to the widget with the keyboard in `target`.
void sendF1(QWidget* target, QEvent::Type type, quint64 time)
{
    QKeyEvent event(type, Qt::Key_F1, Qt::NoModifier);
    event.setTimestamp(time);
    QApplication::sendEvent(target->focusWidget() ? target->focusWidget() : target, &event);
}

// F1 and F3 through the native window of `target`, then F1 held down for a while. A held key
// repeats as an X server sends it: a release and a press of the same moment for each repeat,
// which Qt does not always mark as repeated.
void pressFinishKeys(QWidget* target)
{
    if (target->windowType() != Qt::Popup)
        QApplication::setActiveWindow(target);
    QWindow* native = target->windowHandle();
    QTest::keyClick(native, Qt::Key_F1);
    QTest::keyClick(native, Qt::Key_F3);
    // Far from the times of the events above, and new at each call.
    static quint64 time = 1000000000;
    time += 10000;
    sendF1(target, QEvent::KeyPress, time);
    for (const quint64 repeat : {660, 700, 740}) {
        sendF1(target, QEvent::KeyRelease, time + repeat);
        sendF1(target, QEvent::KeyPress, time + repeat);
    }
    sendF1(target, QEvent::KeyRelease, time + 760);
}

// While it lives, the first box that opens gets the finish keys and is answered OK (or Yes) when
// `confirm`, closed otherwise; any later box is closed unseen.
class BoxAnswerer
{
public:
    explicit BoxAnswerer(bool confirm)
    {
        QObject::connect(&timer, &QTimer::timeout, [this, confirm] {
            auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            if (++boxes == 1)
                pressFinishKeys(box);
            const auto* message = qobject_cast<QMessageBox*>(box);
            if (message && confirm && boxes == 1) {
                for (const auto answer : {QMessageBox::Ok, QMessageBox::Yes}) {
                    if (QAbstractButton* button = message->button(answer)) {
                        button->click();
                        return;
                    }
                }
            }
            box->reject();
        });
        timer.start(10);
    }
    int boxes = 0;

private:
    QTimer timer;
};

} // namespace

class FinishKeysTest : public QObject
{
    Q_OBJECT

private slots:
    void finishKeysEverywhere_data()
    {
        QTest::addColumn<QString>("action");
        // The window the keys go to when it is no modal box: it stays open after the action.
        QTest::addColumn<QString>("window");
        // The box is answered OK, otherwise it is closed.
        QTest::addColumn<bool>("confirm");
        const auto row = [](const char* name, const char* action, const char* window,
                            bool confirm = false) {
            QTest::newRow(name) << QString(action) << QString(window) << confirm;
        };
        row("main window", "", "FormMarvolendo");
        row("Añadir llegada", "anadir", "");
        row("Borrar llegada, cancelled", "borrar", "");
        row("Borrar llegada, confirmed", "borrar", "", true);
        row("Resultados, race name", "resultados", "");
        row("Cargar inscritos, file dialog", "inscritos", "");
        row("Acerca de", "acerca", "");
        row("Asignar dorsales", "asignar", "asignarVentana");
        row("Carreras anteriores", "anteriores", "carrerasVentana");
        row("menu Carrera", "", "carrera");
    }

    void finishKeysEverywhere()
    {
        QFETCH(QString, action);
        QFETCH(QString, window);
        QFETCH(bool, confirm);

        QtDialogs realDialogs;
        FormFixture f;
        f.shownDialogs = &realDialogs;
        f.makeResultsFolder();
        RaceState s;
        s.formato = 1;
        s.modoCaptura = 1;
        f.open(s);
        f.click("Command1(0)");
        f.tick(5);
        f.click("Command3");
        f.child<QComboBox>("Combo1")->setCurrentIndex(0);
        f.list("List1")->setCurrentRow(0);
        f.tick(5);

        {
            BoxAnswerer answerer(confirm);
            if (!action.isEmpty())
                f.trigger(action);
            QCOMPARE(answerer.boxes, window.isEmpty() ? 1 : 0);
        }
        if (!window.isEmpty()) {
            auto* target = window == f.form().objectName() ? &f.form() : f.child<QWidget>(window);
            if (auto* menu = qobject_cast<QMenu*>(target))
                menu->popup(f.form().mapToGlobal(QPoint(20, 20)));
            QVERIFY(target->isVisible());
            pressFinishKeys(target);
        }

        // The line there was, less the one removed, and the three finishes.
        QCOMPARE(f.comboLines().size(), 1 - int(confirm) + 3);
    }

    // The keys pressed while the recovery question waits at start-up take nothing: there is no
    // window and no race yet. A finish there would be a first finish, which saves the race, and
    // would write a blank race over the state file the operator goes back to.
    void nothingTakenBeforeTheWindow()
    {
        QtDialogs realDialogs;
        FormFixture f;
        f.open();
        f.click("Command1(0)");
        for (int i = 0; i < 2; ++i) {
            f.tick(3);
            f.pressF(1);
        }
        const QByteArray saved = f.readFile("MARVO.dat");
        f.close();
        f.shownDialogs = &realDialogs;
        {
            BoxAnswerer answerer(false); // the journal's changes set aside
            f.open();
            QCOMPARE(answerer.boxes, 1);
        }
        QCOMPARE(f.readFile("MARVO.dat"), saved);
    }
};

QTEST_MAIN(FinishKeysTest)
#include "tst_finishkeys.moc"
