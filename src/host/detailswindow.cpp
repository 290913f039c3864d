#include "host/detailswindow.h"

#include "host/csvwriter.h"
#include "host/detailtablemodel.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace {

// The folder of the last export, shared by all details windows of the session.
QString &lastExportFolder()
{
    static QString folder = QDir::homePath();
    return folder;
}

} // namespace

DetailsWindow::DetailsWindow(DetailTableModel *model, const QString &summary, const QString &note,
                             QWidget *parent)
    : QWidget(parent, Qt::Window), m_model(model), m_proxy(new QSortFilterProxyModel(this)),
      m_view(new QTableView(this)), m_search(new QLineEdit(this)), m_count(new QLabel(this)),
      m_note(note)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("DetailsWindow"));
    m_model->setParent(this);
    const bool orders = m_model->kind() == DetailTableModel::Kind::WorkOrders;
    setWindowTitle(orders ? tr("Work orders – Dashlon Viewer")
                          : tr("Technicians – Dashlon Viewer"));

    auto *summaryLabel = new QLabel(summary, this);
    summaryLabel->setWordWrap(true);
    summaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_search->setObjectName(QStringLiteral("search"));
    m_count->setObjectName(QStringLiteral("count"));
    m_search->setPlaceholderText(tr("Search all columns"));
    m_search->setClearButtonEnabled(true);
    auto *searchLabel = new QLabel(tr("&Search:"), this);
    searchLabel->setBuddy(m_search);

    m_proxy->setSourceModel(m_model);
    m_proxy->setSortRole(DetailTableModel::SortRole);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setFilterKeyColumn(-1);
    m_proxy->setSortCaseSensitivity(Qt::CaseInsensitive);

    m_view->setModel(m_proxy);
    m_view->setSortingEnabled(true);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_view->horizontalHeader()->setSectionsMovable(true);
    // Work orders by due time, technicians by name: the order people look for first.
    m_view->sortByColumn(orders ? 7 : 0, Qt::AscendingOrder);
    m_view->resizeColumnsToContents();

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *exportButton =
        buttons->addButton(tr("&Export CSV…"), QDialogButtonBox::ActionRole);
    QPushButton *closeButton = buttons->addButton(QDialogButtonBox::Close);
    exportButton->setObjectName(QStringLiteral("exportButton"));

    auto *searchRow = new QHBoxLayout;
    searchRow->addWidget(searchLabel);
    searchRow->addWidget(m_search, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(summaryLabel);
    layout->addLayout(searchRow);
    layout->addWidget(m_view, 1);
    layout->addLayout(bottom);

    auto *findAction = new QAction(this);
    findAction->setShortcut(QKeySequence::Find);
    addAction(findAction);
    auto *saveAction = new QAction(this);
    saveAction->setShortcut(QKeySequence::Save);
    addAction(saveAction);
    auto *closeAction = new QAction(this);
    closeAction->setShortcut(Qt::Key_Escape);
    addAction(closeAction);

    connect(m_search, &QLineEdit::textChanged, m_proxy,
            &QSortFilterProxyModel::setFilterFixedString);
    connect(m_proxy, &QAbstractItemModel::rowsInserted, this, &DetailsWindow::updateCount);
    connect(m_proxy, &QAbstractItemModel::rowsRemoved, this, &DetailsWindow::updateCount);
    connect(m_proxy, &QAbstractItemModel::modelReset, this, &DetailsWindow::updateCount);
    connect(m_proxy, &QAbstractItemModel::layoutChanged, this, &DetailsWindow::updateCount);
    connect(findAction, &QAction::triggered, m_search, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    connect(saveAction, &QAction::triggered, this, &DetailsWindow::exportToFile);
    connect(exportButton, &QPushButton::clicked, this, &DetailsWindow::exportToFile);
    connect(closeAction, &QAction::triggered, this, &QWidget::close);
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);

    updateCount();
    resize(920, 520);
    m_view->setFocus();
}

DetailsWindow::~DetailsWindow() = default;

int DetailsWindow::visibleRowCount() const
{
    return m_proxy->rowCount();
}

void DetailsWindow::updateCount()
{
    const bool orders = m_model->kind() == DetailTableModel::Kind::WorkOrders;
    const int total = m_model->rowCount();
    const int shown = m_proxy->rowCount();
    QString text = orders ? tr("%1 of %2 work orders").arg(shown).arg(total)
                          : tr("%1 of %2 technicians").arg(shown).arg(total);
    if (total == 0 && !m_note.isEmpty())
        text = m_note;
    m_count->setText(text);
}

bool DetailsWindow::exportCsv(const QString &fileName, QString *error) const
{
    QList<QStringList> rows;
    rows.reserve(m_proxy->rowCount() + 1);
    rows.append(m_model->headers());
    for (int r = 0; r < m_proxy->rowCount(); ++r)
        rows.append(m_model->rowTexts(m_proxy->mapToSource(m_proxy->index(r, 0)).row()));
    return CsvWriter::writeFile(fileName, rows, error);
}

void DetailsWindow::exportToFile()
{
    const bool orders = m_model->kind() == DetailTableModel::Kind::WorkOrders;
    const QString suggested = QDir(lastExportFolder())
                                  .filePath(orders ? QStringLiteral("work-orders.csv")
                                                   : QStringLiteral("technicians.csv"));
    const QString fileName = QFileDialog::getSaveFileName(
        this, tr("Export details"), suggested, tr("Comma-separated files (*.csv);;All files (*)"));
    if (fileName.trimmed().isEmpty())
        return;
    lastExportFolder() = QFileInfo(fileName).absolutePath();
    QString error;
    if (!exportCsv(fileName, &error))
        QMessageBox::warning(this, tr("Export details"),
                             tr("The details could not be saved to %1:\n%2").arg(fileName, error));
}
