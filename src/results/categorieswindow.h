// "Categorías por edad": the table of age categories kept in the program's settings for the
// next races, edited in a grid, brought from or taken to a CSV file. A table is kept only when
// it passes categories::validate(); its problems are shown in the window until they are put
// right or the edit is cancelled.
#pragma once

#include "results/core/categories.h"

#include <QDialog>

class Dialogs;
class QLabel;
class QRadioButton;
class QTableWidget;

class CategoriesWindow : public QDialog
{
    Q_OBJECT

public:
    CategoriesWindow(QWidget* window, Dialogs& dialogs);

    // The table kept in the program's settings; empty when none is kept or it cannot be used.
    static categories::Table stored();

    // Shows the kept table, or the usual one when none is kept. A window already open keeps
    // the edits under way.
    void edit();

    void accept() override;

private:
    void fill(const categories::Table& table);
    // The table as the grid holds it, an edit under way included.
    categories::Table table();
    void setNote(const QString& text);
    void setProblems(const QString& text);

    void addRow();
    void removeRow();
    void moveRow(int step);
    void restoreUsual();
    void importFile();
    void exportFile();

    Dialogs& dialogs;
    QTableWidget* grid;
    QRadioButton* raceDay;
    QRadioButton* endOfYear;
    QLabel* note;     // where the table came from
    QLabel* problems; // why the table was not kept, in red
};
