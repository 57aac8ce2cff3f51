// "Temporada": a series scored from the kept races the operator checks, with a points table, the
// best results that count and whether by category. Published as a PDF, a web page and a
// spreadsheet in a folder of its own inside the results folder, drawn and written away from the
// window so that the clock never waits; a series that cannot be scored is told in the window,
// never in a box.
#pragma once

#include "app/core/archive.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;
class QThread;

class SeasonWindow : public QDialog
{
    Q_OBJECT

public:
    explicit SeasonWindow(QWidget* window);
    // Files still being written finish first.
    ~SeasonWindow() override;

    // Lists the readable races kept in the folder, none checked, and shows the window.
    void choose(const QString& archiveFolder);

private:
    void publish();
    void setRefusal(const QString& text);
    void setStatus(const QString& text);

    QTableWidget* races;
    QLineEdit* points;
    QSpinBox* bestOf;
    QCheckBox* byCategory;
    QLabel* refusal; // why nothing was published, in red
    QLabel* status;  // where the files went, or why they could not be written
    QList<archive::Kept> kept;
    QThread* writing = nullptr;
};
