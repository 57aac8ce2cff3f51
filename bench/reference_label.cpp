// The reference of the CPU benchmark: the least a Qt program can do to show a running
// thousandths clock, one label updated 60 times a second.
//   build/bench/reference_label
#include <QApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QLabel>
#include <QTimer>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QLabel label;
    label.setWindowTitle(QStringLiteral("reference_label"));
    QFont font = label.font();
    font.setPointSize(24);
    label.setFont(font);
    label.resize(320, 80);
    label.move(900, 700); // beside the program's window, not under it
    label.setAlignment(Qt::AlignCenter);
    label.show();

    QElapsedTimer elapsed;
    elapsed.start();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &label, [&] {
        const qint64 ms = elapsed.elapsed();
        label.setText(QStringLiteral("%1:%2:%3:%4")
                          .arg(ms / 3600000, 2, 10, QLatin1Char('0'))
                          .arg(ms / 60000 % 60, 2, 10, QLatin1Char('0'))
                          .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
                          .arg(ms % 1000, 3, 10, QLatin1Char('0')));
    });
    timer.start(1000 / 60);
    return QApplication::exec();
}
