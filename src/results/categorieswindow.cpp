#include "categorieswindow.h"

#include "app/dialogs.h"
#include "app/look.h"
#include "base/fileerror.h"
#include "base/programsettings.h"
#include "base/savefile.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

using categories::Category;
using categories::Sex;
using categories::Table;

const QString title = QStringLiteral("Categorías por edad");
// The key the settings hold a table under: present once a table has been kept.
const QString countKey = QStringLiteral("categorias/cantidad");
// importCsv() refuses a file past 1 MB: one byte more is enough to know.
constexpr qint64 readAtMost = 1024 * 1024 + 1;

enum Column { Name, SexColumn, From, To, Columns };

// In the order of categories::Sex.
const QStringList sexNames{QStringLiteral("Ambos"), QStringLiteral("Masculino"),
                           QStringLiteral("Femenino")};

class SexDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale&) const override
    {
        return sexNames.value(value.toInt());
    }
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex&) const override
    {
        auto* combo = new QComboBox(parent);
        combo->addItems(sexNames);
        return combo;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        static_cast<QComboBox*>(editor)->setCurrentIndex(index.data(Qt::EditRole).toInt());
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override
    {
        model->setData(index, static_cast<QComboBox*>(editor)->currentIndex(), Qt::EditRole);
    }
};

class AgeDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex&) const override
    {
        auto* spin = new QSpinBox(parent);
        spin->setRange(0, categories::maxAge);
        spin->setFrame(false);
        return spin;
    }
};

// Enter edits the cell with the keyboard (F2 does too), rather than closing the window.
class Grid final : public QTableWidget
{
public:
    using QTableWidget::QTableWidget;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter && event->modifiers() == Qt::NoModifier && state() != EditingState &&
            currentIndex().isValid()) {
            edit(currentIndex());
            return;
        }
        QTableWidget::keyPressEvent(event);
    }
};

void setRow(QTableWidget* grid, int row, const Category& c)
{
    grid->setItem(row, Name, new QTableWidgetItem(c.name));
    const int values[] = {static_cast<int>(c.sex), c.ageFrom, c.ageTo};
    for (int column = SexColumn; column < Columns; ++column) {
        auto* item = new QTableWidgetItem;
        item->setData(Qt::EditRole, values[column - SexColumn]);
        grid->setItem(row, column, item);
    }
}

Category rowOf(const QTableWidget* grid, int row)
{
    const auto number = [&](int column) { return grid->item(row, column)->data(Qt::EditRole); };
    Category c;
    c.name = grid->item(row, Name)->text();
    c.sex = static_cast<Sex>(number(SexColumn).toInt());
    c.ageFrom = number(From).toInt();
    c.ageTo = number(To).toInt();
    return c;
}

QPushButton* button(QWidget* parent, QLayout* layout, const QString& name, const QString& caption)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    layout->addWidget(b);
    return b;
}

} // namespace

CategoriesWindow::CategoriesWindow(QWidget* window, Dialogs& dialogSource)
    : QDialog(window), dialogs(dialogSource)
{
    setObjectName(QStringLiteral("categoriasVentana"));
    setWindowTitle(title);
    auto* layout = new QVBoxLayout(this);

    note = new QLabel(this);
    note->setObjectName(QStringLiteral("categoriasNota"));
    note->setWordWrap(true);
    layout->addWidget(note);

    auto* middle = new QHBoxLayout;
    grid = new Grid(0, Columns, this);
    grid->setObjectName(QStringLiteral("categoriasTabla"));
    grid->setHorizontalHeaderLabels({QStringLiteral("Nombre"), QStringLiteral("Sexo"),
                                     QStringLiteral("Edad desde"), QStringLiteral("Edad hasta")});
    grid->setItemDelegateForColumn(SexColumn, new SexDelegate(grid));
    grid->setItemDelegateForColumn(From, new AgeDelegate(grid));
    grid->setItemDelegateForColumn(To, new AgeDelegate(grid));
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                          QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    // Tab leaves the grid for the buttons; while a cell is edited it goes on to the next cell.
    grid->setTabKeyNavigation(false);
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setSectionResizeMode(Name, QHeaderView::Stretch);
    middle->addWidget(grid);

    auto* side = new QVBoxLayout;
    connect(button(this, side, QStringLiteral("categoriasAnadir"), QStringLiteral("&Añadir")),
            &QPushButton::clicked, this, &CategoriesWindow::addRow);
    connect(button(this, side, QStringLiteral("categoriasQuitar"), QStringLiteral("&Quitar")),
            &QPushButton::clicked, this, &CategoriesWindow::removeRow);
    connect(button(this, side, QStringLiteral("categoriasSubir"), QStringLiteral("&Subir")),
            &QPushButton::clicked, this, [this] { moveRow(-1); });
    connect(button(this, side, QStringLiteral("categoriasBajar"), QStringLiteral("&Bajar")),
            &QPushButton::clicked, this, [this] { moveRow(1); });
    side->addSpacing(12);
    connect(
        button(this, side, QStringLiteral("categoriasHabitual"), QStringLiteral("&Tabla habitual")),
        &QPushButton::clicked, this, &CategoriesWindow::restoreUsual);
    connect(button(this, side, QStringLiteral("categoriasImportar"),
                   QStringLiteral("&Importar CSV...")),
            &QPushButton::clicked, this, &CategoriesWindow::importFile);
    connect(button(this, side, QStringLiteral("categoriasExportar"),
                   QStringLiteral("&Exportar CSV...")),
            &QPushButton::clicked, this, &CategoriesWindow::exportFile);
    side->addStretch();
    middle->addLayout(side);
    layout->addLayout(middle);

    auto* rule = new QGroupBox(QStringLiteral("Edad de cada corredor"), this);
    auto* ruleLayout = new QVBoxLayout(rule);
    raceDay = new QRadioButton(QStringLiteral("Edad el &día de la carrera"), rule);
    raceDay->setObjectName(QStringLiteral("edadDiaCarrera"));
    endOfYear = new QRadioButton(QStringLiteral("Edad a &31 de diciembre"), rule);
    endOfYear->setObjectName(QStringLiteral("edad31Diciembre"));
    ruleLayout->addWidget(raceDay);
    ruleLayout->addWidget(endOfYear);
    layout->addWidget(rule);

    problems = new QLabel(this);
    problems->setObjectName(QStringLiteral("categoriasProblemas"));
    problems->setWordWrap(true);
    look::setFore(problems, look::darkRed);
    problems->hide();
    layout->addWidget(problems);

    auto* answer = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    answer->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Aceptar"));
    answer->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("categoriasAceptar"));
    answer->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancelar"));
    connect(answer, &QDialogButtonBox::accepted, this, &CategoriesWindow::accept);
    connect(answer, &QDialogButtonBox::rejected, this, &CategoriesWindow::reject);
    layout->addWidget(answer);

    resize(640, 560);
}

Table CategoriesWindow::stored()
{
    return categories::load(ProgramSettings());
}

void CategoriesWindow::edit()
{
    if (!isVisible()) {
        const ProgramSettings settings;
        const Table kept = categories::load(settings);
        if (!kept.categories.isEmpty()) {
            fill(kept);
            setNote(QString());
        } else if (settings.contains(countKey) && settings.value(countKey).toInt() == 0) {
            fill(kept);
            setNote(QStringLiteral("La tabla guardada está vacía: no se asigna ninguna "
                                   "categoría por edad."));
        } else {
            fill(categories::defaultTable());
            setNote(settings.contains(countKey)
                        ? QStringLiteral("La tabla guardada no se puede usar: se muestra la tabla "
                                         "habitual, que se guarda al pulsar Aceptar.")
                        : QStringLiteral("No hay ninguna tabla guardada: se muestra la tabla "
                                         "habitual, que se guarda al pulsar Aceptar."));
        }
        setProblems(QString());
        grid->setCurrentCell(0, Name);
        grid->setFocus();
    }
    show();
    raise();
    activateWindow();
}

void CategoriesWindow::accept()
{
    const Table edited = table();
    const QString wrong = categories::validate(edited);
    if (!wrong.isEmpty()) {
        setProblems(QStringLiteral("No se ha guardado la tabla:\n") + wrong);
        return;
    }
    ProgramSettings settings;
    categories::save(settings, edited);
    settings.sync();
    if (settings.status() != QSettings::NoError) {
        setProblems(QStringLiteral("No se pudo guardar la tabla en la configuración del programa "
                                   "(%1).")
                        .arg(QDir::toNativeSeparators(settings.fileName())));
        return;
    }
    QDialog::accept();
}

void CategoriesWindow::fill(const Table& shown)
{
    grid->setRowCount(0);
    grid->setRowCount(static_cast<int>(shown.categories.size()));
    for (int row = 0; row < grid->rowCount(); ++row)
        setRow(grid, row, shown.categories[row]);
    grid->resizeColumnToContents(SexColumn);
    (shown.rule == categories::AgeRule::RaceDay ? raceDay : endOfYear)->setChecked(true);
}

Table CategoriesWindow::table()
{
    // A cell still being edited counts as typed.
    const QModelIndex current = grid->currentIndex();
    if (QWidget* editor = grid->indexWidget(current)) {
        QAbstractItemDelegate* delegate = grid->itemDelegateForIndex(current);
        emit delegate->commitData(editor);
        emit delegate->closeEditor(editor);
    }
    Table edited;
    edited.rule =
        raceDay->isChecked() ? categories::AgeRule::RaceDay : categories::AgeRule::EndOfYear;
    for (int row = 0; row < grid->rowCount(); ++row)
        edited.categories << rowOf(grid, row);
    return edited;
}

void CategoriesWindow::setNote(const QString& text)
{
    note->setText(text);
    note->setVisible(!text.isEmpty());
}

void CategoriesWindow::setProblems(const QString& text)
{
    problems->setText(text);
    problems->setVisible(!text.isEmpty());
}

// A new category below the chosen one, of its sex and starting where it ends, its name edited
// at once.
void CategoriesWindow::addRow()
{
    const int current = grid->currentRow();
    Category added;
    if (current >= 0) {
        const Category above = rowOf(grid, current);
        added.sex = above.sex;
        added.ageFrom = std::min(above.ageTo + 1, categories::maxAge);
    }
    const int row = current >= 0 ? current + 1 : grid->rowCount();
    grid->insertRow(row);
    setRow(grid, row, added);
    grid->setCurrentCell(row, Name);
    grid->setFocus();
    grid->editItem(grid->item(row, Name));
}

void CategoriesWindow::removeRow()
{
    const int row = grid->currentRow();
    if (row < 0)
        return;
    const int column = grid->currentColumn();
    grid->removeRow(row);
    const int last = grid->rowCount() - 1;
    if (last >= 0)
        grid->setCurrentCell(row <= last ? row : last, column);
    grid->setFocus();
}

void CategoriesWindow::moveRow(int step)
{
    const int row = grid->currentRow();
    const int other = row + step;
    if (row < 0 || other < 0 || other >= grid->rowCount())
        return;
    const int column = grid->currentColumn();
    for (int c = 0; c < Columns; ++c) {
        QTableWidgetItem* moving = grid->takeItem(row, c);
        grid->setItem(row, c, grid->takeItem(other, c));
        grid->setItem(other, c, moving);
    }
    grid->setCurrentCell(other, column);
    grid->setFocus();
}

void CategoriesWindow::restoreUsual()
{
    if (dialogs.confirm(this, QStringLiteral("Tabla habitual"),
                        QStringLiteral("La tabla de la ventana se sustituirá por la habitual: "
                                       "Sub-20, Senior y Veteranos A, B y C, masculinos y "
                                       "femeninos, con la edad a 31 de diciembre.")) != Dialogs::Ok)
        return;
    fill(categories::defaultTable());
    setNote(QStringLiteral("Tabla habitual: se guarda al pulsar Aceptar."));
    setProblems(QString());
}

void CategoriesWindow::importFile()
{
    const QString heading = QStringLiteral("Importar categorías");
    const QString path = dialogs.openFile(this, FileRequest::csvToOpen(heading));
    if (path.isEmpty())
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        dialogs.warn(this, heading,
                     QStringLiteral("No se pudo abrir %1: %2")
                         .arg(QDir::toNativeSeparators(path), fileerror::describe(file)));
        return;
    }
    const categories::Imported imported = categories::importCsv(file.read(readAtMost));
    if (!imported.refusal.isEmpty()) {
        dialogs.warn(this, heading, imported.refusal);
        return;
    }
    fill(imported.table);
    setNote(QStringLiteral("Tabla importada de %1: se guarda al pulsar Aceptar.")
                .arg(QDir::toNativeSeparators(path)));
    setProblems(QString());
}

void CategoriesWindow::exportFile()
{
    // A table that could not be imported again is not written.
    const Table edited = table();
    const QString wrong = categories::validate(edited);
    if (!wrong.isEmpty()) {
        setProblems(QStringLiteral("No se ha exportado la tabla:\n") + wrong);
        return;
    }
    const QString heading = QStringLiteral("Exportar categorías");
    FileRequest request;
    request.title = heading;
    request.filter = QStringLiteral("Hojas de cálculo CSV (*.csv *.CSV);;Todos los ficheros (*)");
    request.defaultSuffix = QStringLiteral("csv");
    request.proposedName = QStringLiteral("categorias.csv");
    const QString path = dialogs.saveFile(this, request);
    if (path.isEmpty())
        return;
    const QString why = savefile::write(path, categories::exportCsv(edited));
    if (!why.isEmpty()) {
        dialogs.warn(this, heading,
                     QStringLiteral("No se pudo escribir %1: %2. La tabla no se ha exportado.")
                         .arg(QDir::toNativeSeparators(path), why));
        return;
    }
    setProblems(QString());
    setNote(QStringLiteral("Tabla exportada a %1.").arg(QDir::toNativeSeparators(path)));
}
