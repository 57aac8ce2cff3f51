#include "resultsoptionswindow.h"

#include "base/programsettings.h"
#include "results/core/raceresults.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QSpinBox>
#include <QVBoxLayout>

ResultsOptionsWindow::ResultsOptionsWindow(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("opcionesResultados"));
    setWindowTitle(QStringLiteral("Opciones de los resultados"));

    precision = new QComboBox(this);
    precision->setObjectName(QStringLiteral("precision"));
    precision->addItems(
        {QStringLiteral("Como se tomaron"), QStringLiteral("A la décima, redondeando hacia arriba"),
         QStringLiteral("Al segundo, redondeando hacia arriba (carreras en ruta)")});
    perCategory = new QSpinBox(this);
    perCategory->setObjectName(QStringLiteral("premiosCategoria"));
    perCategory->setRange(0, 20);
    overall = new QSpinBox(this);
    overall->setObjectName(QStringLiteral("premiosGeneral"));
    overall->setRange(0, 20);
    overallExcluded = new QCheckBox(
        QStringLiteral("Los premiados de la general no repiten en su categoría"), this);
    overallExcluded->setObjectName(QStringLiteral("generalNoRepite"));
    withTeams =
        new QCheckBox(QStringLiteral("Clasificación por equipos (columna club o equipo)"), this);
    withTeams->setObjectName(QStringLiteral("conEquipos"));
    scorers = new QSpinBox(this);
    scorers->setObjectName(QStringLiteral("equipoPuntuan"));
    scorers->setRange(1, 50);
    teamScore = new QComboBox(this);
    teamScore->setObjectName(QStringLiteral("equipoPor"));
    teamScore->addItems(
        {QStringLiteral("Suma de sus tiempos"), QStringLiteral("Suma de sus puestos")});
    teamsBySex = new QCheckBox(QStringLiteral("Hombres y mujeres aparte"), this);
    teamsBySex->setObjectName(QStringLiteral("equipoSexo"));

    auto* times = new QGroupBox(QStringLiteral("Tiempos"), this);
    auto* timesForm = new QFormLayout(times);
    timesForm->addRow(QStringLiteral("&Precisión publicada:"), precision);
    auto* prizes = new QGroupBox(QStringLiteral("Premios"), this);
    auto* prizesForm = new QFormLayout(prizes);
    prizesForm->addRow(QStringLiteral("Premiados por &categoría:"), perCategory);
    prizesForm->addRow(QStringLiteral("Premiados de la &general, por sexo:"), overall);
    prizesForm->addRow(overallExcluded);
    auto* teamsBox = new QGroupBox(QStringLiteral("Equipos"), this);
    auto* teamsForm = new QFormLayout(teamsBox);
    teamsForm->addRow(withTeams);
    teamsForm->addRow(QStringLiteral("P&untúan los primeros:"), scorers);
    teamsForm->addRow(QStringLiteral("&Clasifica la:"), teamScore);
    teamsForm->addRow(teamsBySex);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(times);
    layout->addWidget(prizes);
    layout->addWidget(teamsBox);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        keep();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(withTeams, &QCheckBox::toggled, this, &ResultsOptionsWindow::followTeams);
}

void ResultsOptionsWindow::edit()
{
    const raceresults::Settings kept = raceresults::load(ProgramSettings());
    precision->setCurrentIndex(int(kept.precision));
    perCategory->setValue(kept.awards.perCategory);
    overall->setValue(kept.awards.overall);
    overallExcluded->setChecked(kept.awards.overallExcluded);
    withTeams->setChecked(kept.teams.has_value());
    scorers->setValue(kept.teams ? kept.teams->scorers : 3);
    teamScore->setCurrentIndex(kept.teams && kept.teams->score == teams::Rules::Score::Points);
    teamsBySex->setChecked(kept.teams && kept.teams->bySex);
    followTeams();
    precision->setFocus();
    show();
    raise();
    activateWindow();
}

void ResultsOptionsWindow::followTeams()
{
    for (QWidget* w : {static_cast<QWidget*>(scorers), static_cast<QWidget*>(teamScore),
                       static_cast<QWidget*>(teamsBySex)})
        w->setEnabled(withTeams->isChecked());
}

void ResultsOptionsWindow::keep()
{
    raceresults::Settings s;
    s.precision = classification::Precision(precision->currentIndex());
    s.awards.perCategory = perCategory->value();
    s.awards.overall = overall->value();
    s.awards.overallExcluded = overallExcluded->isChecked();
    if (withTeams->isChecked())
        s.teams = teams::Rules{scorers->value(),
                               teamScore->currentIndex() == 1 ? teams::Rules::Score::Points
                                                              : teams::Rules::Score::Time,
                               teamsBySex->isChecked()};
    ProgramSettings settings;
    raceresults::save(settings, s);
}
