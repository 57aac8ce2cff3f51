#include "seasonwindow.h"

#include "base/paths.h"
#include "files/core/exports.h"
#include "results/categorieswindow.h"
#include "results/core/raceresults.h"
#include "results/core/season.h"
#include "results/resultspdf.h"

#include <QCheckBox>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <optional>

namespace
{

const QString usualPoints = QStringLiteral(
    "100, 95, 91, 88, 85, 82, 80, 78, 76, 74, 72, 70, 68, 66, 64, 62, 60, 58, 56, 54");
const QString pointsKey = QStringLiteral("temporada/puntos");
const QString bestOfKey = QStringLiteral("temporada/mejores");
const QString byCategoryKey = QStringLiteral("temporada/porCategorias");

QSettings programSettings()
{
    return QSettings(QStringLiteral("Marvolendo"), QStringLiteral("Marvolendo"));
}

// The points by place written as "100, 95, 91"; none when a value is not a whole number, with
// that value in *bad. An empty text gives an empty table: the places are summed.
std::optional<QList<int>> parsePoints(const QString& text, QString* bad)
{
    QList<int> parsed;
    if (text.trimmed().isEmpty())
        return parsed;
    for (const QString& part : text.split(u',')) {
        bool ok = false;
        const int v = part.trimmed().toInt(&ok);
        if (!ok || v < 0) {
            *bad = part.trimmed();
            return std::nullopt;
        }
        parsed << v;
    }
    return parsed;
}

struct Outcome {
    QString refusal;
    QString error;
    QString folder;
};

// Scores the races and writes the three files into their folder inside the results folder.
Outcome publishSeason(const QList<archive::Kept>& chosen, const categories::Table& table,
                      const season::Rules& rules, const QDate& today)
{
    QList<season::RaceResult> races;
    for (const archive::Kept& k : chosen) {
        const raceresults::Input input = archive::resultsInput(k, table);
        races << season::fromResults(raceresults::compute(input, {}), input);
    }
    const season::Series series = season::compute(races, rules);
    if (!series.refusal.isEmpty())
        return {series.refusal, {}, {}};

    const QString name = QStringLiteral("Temporada %1").arg(today.toString(Qt::ISODate));
    const QString base = QString::fromLatin1(exports::folder);
    // Only the season's own folder is made: the results folder is the operator's.
    QDir(paths::local(base)).mkdir(name);
    const QString windowsFolder = base + name + u'\\';
    resultsreport::Report report;
    report.raceName = QStringLiteral("Temporada");
    report.date = today;
    report.tables = season::tables(series, races);
    const exports::WriteResult written = exports::write(
        {{windowsFolder + QStringLiteral("temporada.pdf"), resultspdf::render(report)},
         {windowsFolder + QStringLiteral("temporada.html"), resultsreport::html(report)},
         {windowsFolder + QStringLiteral("temporada.csv"), season::csv(series, races)}});
    if (!written.ok())
        return {{}, written.message, {}};
    return {
        {}, {}, QDir::toNativeSeparators(QFileInfo(paths::local(windowsFolder)).absolutePath())};
}

} // namespace

SeasonWindow::SeasonWindow(QWidget* window) : QDialog(window)
{
    setObjectName(QStringLiteral("temporadaVentana"));
    setWindowTitle(QStringLiteral("Temporada"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Marque las carreras de la temporada:"), this));
    races = new QTableWidget(0, 3, this);
    races->setObjectName(QStringLiteral("temporadaCarreras"));
    races->setHorizontalHeaderLabels(
        {QStringLiteral("Fecha"), QStringLiteral("Carrera"), QStringLiteral("Llegadas")});
    races->setSelectionMode(QAbstractItemView::NoSelection);
    races->setEditTriggers(QAbstractItemView::NoEditTriggers);
    races->verticalHeader()->hide();
    races->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(races);

    QSettings settings = programSettings();
    auto* form = new QFormLayout;
    points = new QLineEdit(settings.value(pointsKey, usualPoints).toString(), this);
    points->setObjectName(QStringLiteral("temporadaPuntos"));
    points->setPlaceholderText(QStringLiteral("vacío: se suman los puestos"));
    points->setToolTip(QStringLiteral("Los puntos del primero, del segundo... separados por "
                                      "comas; vacío: se suman los puestos y gana el que menos"));
    form->addRow(QStringLiteral("Puntos por puesto:"), points);
    bestOf = new QSpinBox(this);
    bestOf->setObjectName(QStringLiteral("temporadaMejores"));
    bestOf->setRange(0, 99);
    bestOf->setSpecialValueText(QStringLiteral("todas"));
    bestOf->setValue(settings.value(bestOfKey, 0).toInt());
    form->addRow(QStringLiteral("Cuentan las mejores:"), bestOf);
    byCategory = new QCheckBox(QStringLiteral("Por categorías"), this);
    byCategory->setObjectName(QStringLiteral("temporadaCategorias"));
    byCategory->setChecked(settings.value(byCategoryKey, true).toBool());
    form->addRow(byCategory);
    layout->addLayout(form);

    refusal = new QLabel(this);
    refusal->setObjectName(QStringLiteral("temporadaProblemas"));
    refusal->setStyleSheet(QStringLiteral("color: #c00000;"));
    refusal->setWordWrap(true);
    refusal->hide();
    layout->addWidget(refusal);
    status = new QLabel(this);
    status->setObjectName(QStringLiteral("temporadaEstado"));
    status->setWordWrap(true);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(status);

    auto* buttons = new QHBoxLayout;
    auto* publicar = new QPushButton(QStringLiteral("Publicar"), this);
    publicar->setObjectName(QStringLiteral("temporadaPublicar"));
    publicar->setToolTip(QStringLiteral("Escribe temporada.pdf, temporada.html y temporada.csv "
                                        "en una carpeta de C:\\Carreras\\copias"));
    publicar->setAutoDefault(false);
    auto* cerrar = new QPushButton(QStringLiteral("Cerrar"), this);
    cerrar->setAutoDefault(false);
    buttons->addWidget(publicar);
    buttons->addStretch();
    buttons->addWidget(cerrar);
    layout->addLayout(buttons);
    connect(publicar, &QPushButton::clicked, this, &SeasonWindow::publish);
    connect(cerrar, &QPushButton::clicked, this, &QDialog::hide);
    resize(560, 420);
}

SeasonWindow::~SeasonWindow()
{
    if (writing)
        writing->wait();
}

void SeasonWindow::choose(const QString& archiveFolder)
{
    kept.clear();
    for (const archive::Kept& k : archive::list(archiveFolder))
        if (k.readable)
            kept << k;
    races->setRowCount(int(kept.size()));
    for (int row = 0; row < kept.size(); ++row) {
        const archive::Kept& k = kept[row];
        auto* date = new QTableWidgetItem(k.when.toString(QStringLiteral("dd/MM/yyyy")));
        date->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        date->setCheckState(Qt::Unchecked);
        races->setItem(row, 0, date);
        races->setItem(row, 1,
                       new QTableWidgetItem(k.details.name.isEmpty()
                                                ? QStringLiteral("(sin nombre)")
                                                : k.details.name));
        races->setItem(row, 2, new QTableWidgetItem(QString::number(k.race.list1.size())));
    }
    races->resizeColumnsToContents();
    setRefusal({});
    show();
    raise();
}

void SeasonWindow::setRefusal(const QString& text)
{
    refusal->setText(text);
    refusal->setVisible(!text.isEmpty());
}

void SeasonWindow::setStatus(const QString& text)
{
    status->setText(text);
}

void SeasonWindow::publish()
{
    if (writing) {
        setStatus(QStringLiteral("La temporada anterior se está guardando todavía."));
        return;
    }
    setStatus({});
    QSettings settings = programSettings();
    settings.setValue(pointsKey, points->text());
    settings.setValue(bestOfKey, bestOf->value());
    settings.setValue(byCategoryKey, byCategory->isChecked());

    QString bad;
    const std::optional<QList<int>> table = parsePoints(points->text(), &bad);
    if (!table) {
        setRefusal(QStringLiteral("«%1» no es un número de puntos: escriba los puntos de cada "
                                  "puesto separados por comas, o deje el campo vacío para sumar "
                                  "los puestos.")
                       .arg(bad));
        return;
    }
    QList<archive::Kept> chosen;
    for (int row = 0; row < races->rowCount(); ++row)
        if (races->item(row, 0)->checkState() == Qt::Checked)
            chosen << kept[row];
    if (chosen.size() < 2) {
        setRefusal(QStringLiteral("Marque al menos dos carreras: una temporada tiene varias."));
        return;
    }
    // The columns go from the oldest race to the newest.
    std::stable_sort(
        chosen.begin(), chosen.end(),
        [](const archive::Kept& a, const archive::Kept& b) { return a.when < b.when; });
    setRefusal({});
    setStatus(QStringLiteral("Publicando la temporada..."));

    // Scored, drawn and written away from the window: the clock and the finish keys never wait.
    auto outcome = std::make_shared<Outcome>();
    writing =
        QThread::create([outcome, chosen, categoryTable = CategoriesWindow::stored(),
                         rules = season::Rules{*table, bestOf->value(), byCategory->isChecked()},
                         today = QDate::currentDate()] {
            *outcome = publishSeason(chosen, categoryTable, rules, today);
        });
    writing->setParent(this);
    connect(writing, &QThread::finished, this, [this, outcome] {
        writing->deleteLater();
        writing = nullptr;
        setRefusal(outcome->refusal);
        if (!outcome->refusal.isEmpty())
            setStatus({});
        else if (!outcome->error.isEmpty())
            setStatus(outcome->error);
        else
            setStatus(QStringLiteral("Temporada publicada en %1: temporada.pdf, temporada.html "
                                     "y temporada.csv.")
                          .arg(outcome->folder));
    });
    writing->start(QThread::LowPriority);
}
