// "Opciones → Resultados...": how times are published, how many awards, and the teams, kept in
// the program's settings for the next race.
#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;

class ResultsOptionsWindow final : public QDialog
{
    Q_OBJECT

public:
    explicit ResultsOptionsWindow(QWidget* parent);
    // Shows the kept options; Aceptar keeps the ones shown.
    void edit();

private:
    void keep();
    void followTeams();

    QComboBox* precision;
    QSpinBox* perCategory;
    QSpinBox* overall;
    QCheckBox* overallExcluded;
    QCheckBox* withTeams;
    QSpinBox* scorers;
    QComboBox* teamScore;
    QCheckBox* teamsBySex;
};
