// The notices of the window: a failure the operator must know of while timing, shown under the
// row of "Lap" (the clock, Start and Stop and "Lap" stay in sight). It takes no focus and needs
// no click. A notice goes after a while; a kept notice stays until it is taken back.
#pragma once

#include <QObject>
#include <QString>

class QLabel;
class QTimer;
class QWidget;

class Notices : public QObject
{
    Q_OBJECT

public:
    // The notices lie on `area`, under `below`.
    Notices(QWidget* area, QWidget* below);

    void show(const QString& text);
    void keep(const QString& text);
    void takeBack();

private:
    void place(QLabel* notice, const QString& text, int top);

    QWidget* below;
    QLabel* aviso;
    QLabel* avisoDiario; // stays while the journal cannot be written
    QTimer* avisoTimer;
};
