#include "control/unitlistpane.h"

#include "common/displaytext.h"
#include "common/sharedtext.h"
#include "model/viewchoice.h"
#include "views/gridcelldelegate.h"

#include <QItemSelection>
#include <QLineEdit>
#include <QPushButton>
#include <QRect>
#include <QTreeWidget>
#include <algorithm>

UnitListPane::UnitListPane(QWidget *frame, QTreeWidget *list, ViewChoice &choice,
                           CaptionLookup caption)
    : QObject(frame), m_list(list), m_choice(&choice), m_filter(new QLineEdit(frame)),
      m_all(new QPushButton(frame)), m_none(new QPushButton(frame)), m_caption(std::move(caption))
{
    m_list->setItemDelegate(new GridCellDelegate(m_list)); // owned by the list
    m_filter->setObjectName(QStringLiteral("txtBUFilter"));
    m_filter->setClearButtonEnabled(true);
    m_all->setObjectName(QStringLiteral("cmdSelectAll"));
    m_none->setObjectName(QStringLiteral("cmdSelectNone"));
    for (QWidget *w : std::initializer_list<QWidget *>{m_filter, m_all, m_none})
        w->hide();
    connect(m_filter, &QLineEdit::textChanged, this, &UnitListPane::applyFilter);
    connect(m_all, &QPushButton::clicked, this, &UnitListPane::selectAllShown);
    connect(m_none, &QPushButton::clicked, this, &UnitListPane::selectNone);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &UnitListPane::takeSelection);
    // A choice made in code (a profile, a test) shows in the list; the list's own changes come
    // back here too and find it already showing them.
    connect(m_choice, &ViewChoice::chosenChanged, this, [this](int index) {
        if (m_syncing)
            return;
        if (index >= 0 && std::size_t(index) < m_widgets.size()) {
            m_syncing = true;
            m_widgets[std::size_t(index)]->setSelected(m_choice->isChosen(index));
            m_syncing = false;
            syncChecks();
        } else {
            showChoice();
        }
    });
}

UnitListPane::~UnitListPane() = default;

int UnitListPane::count() const
{
    return m_choice->unitCount();
}

const QString &UnitListPane::key(int index) const
{
    return m_choice->unitKey(index);
}

bool UnitListPane::isSelected(int index) const
{
    return m_choice->isChosen(index);
}

void UnitListPane::setSelected(int index, bool selected)
{
    m_choice->setChosen(index, selected);
}

void UnitListPane::takeSelection()
{
    if (m_syncing || !m_choice)
        return;
    std::vector<char> chosen(m_widgets.size());
    for (std::size_t i = 0; i < m_widgets.size(); ++i)
        chosen[i] = m_widgets[i]->isSelected();
    m_syncing = true;
    m_choice->setAllChosen(std::move(chosen));
    m_syncing = false;
    syncChecks();
}

void UnitListPane::refill(const std::function<bool(std::vector<BUSelection::Item> &)> &update,
                          const std::function<bool(const BUSelection::Item &)> &keep)
{
    // A refresh mostly lists the same units with the same descriptions: the list's items then
    // stay, and only the choice is shown anew (ten thousand items cost tens of milliseconds to
    // build and as much to destroy).
    const bool sameItems = !update(m_items) && !m_widgets.empty();
    m_parents = BUSelection::treeParents(m_items);
    std::vector<char> chosen;
    chosen.reserve(m_items.size());
    for (const BUSelection::Item &item : m_items)
        chosen.push_back(keep(item));
    m_syncing = true;
    // The same units keep their place in the choice: only what is chosen is taken anew.
    const auto choiceHoldsTheItems = [this] {
        if (m_choice->unitCount() != int(m_items.size()))
            return false;
        for (std::size_t i = 0; i < m_items.size(); ++i) {
            if (!SharedText::equal(m_choice->unitKey(int(i)), m_items[i].key))
                return false;
        }
        return true;
    };
    if (sameItems && choiceHoldsTheItems()) {
        m_choice->setAllChosen(std::move(chosen));
    } else {
        std::vector<QString> keys;
        keys.reserve(m_items.size());
        for (const BUSelection::Item &item : m_items)
            keys.push_back(item.key);
        m_choice->setUnits(std::move(keys), std::move(chosen));
    }
    m_syncing = false;
    if (sameItems)
        m_list->setColumnWidth(0, std::max(0, m_list->width() - 21));
    else
        rebuild();
    showChoice();
    applyFilter();
}

void UnitListPane::showChoice()
{
    // The user's choice survives a refresh: one selection change however long the list. Chosen
    // neighbours under one parent make one range, so that the selection of a whole list is one
    // range (the selection model compares the old and the new selection range by range).
    QItemSelection selection;
    const QAbstractItemModel *model = m_list->model();
    std::vector<QModelIndex> &indexes = m_indexes;
    indexes.assign(m_widgets.size(), QModelIndex());
    std::vector<int> childRows(m_widgets.size() + 1, 0); // next row under each item; last: top
    QModelIndex top;
    QModelIndex bottom;
    for (std::size_t i = 0; i < m_widgets.size(); ++i) {
        const int parent = m_treeShown ? m_parents[i] : -1;
        const std::size_t slot = parent < 0 ? m_widgets.size() : std::size_t(parent);
        const QModelIndex index = model->index(
            childRows[slot]++, 0, parent < 0 ? QModelIndex() : indexes[std::size_t(parent)]);
        indexes[i] = index;
        if (!m_choice->isChosen(int(i)))
            continue;
        if (bottom.isValid() && index.parent() == bottom.parent() &&
            index.row() == bottom.row() + 1) {
            bottom = index;
            continue;
        }
        if (top.isValid())
            selection.append(QItemSelectionRange(top, bottom));
        top = bottom = index;
    }
    if (top.isValid())
        selection.append(QItemSelectionRange(top, bottom));
    m_syncing = true;
    m_list->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    m_syncing = false;
    syncChecks();
}

void UnitListPane::rebuild()
{
    m_syncing = true;
    m_list->clear();
    m_list->setColumnCount(1);
    m_list->setColumnWidth(0, std::max(0, m_list->width() - 21));
    m_widgets.clear();
    m_widgets.reserve(m_items.size());
    m_anyHidden = false;
    QList<QTreeWidgetItem *> top;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        const BUSelection::Item &item = m_items[i];
        auto *widget = new QTreeWidgetItem(QStringList{DisplayText::shown(item.text)});
        widget->setData(0, Qt::UserRole, item.key);
        // The check box only shows the choice: a click or Space toggles the choice itself, so
        // the box must not take the click for its own.
        widget->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        if (DisplayText::isCut(item.text))
            widget->setToolTip(0, DisplayText::toolTip(item.text));
        const int parent = m_treeShown ? m_parents[i] : -1;
        if (parent >= 0)
            m_widgets[std::size_t(parent)]->addChild(widget); // the parent owns it
        else
            top.push_back(widget);
        m_widgets.push_back(widget);
    }
    m_list->addTopLevelItems(top); // the list takes ownership
    if (m_treeShown)
        m_list->expandAll();
    m_syncing = false;
}

void UnitListPane::setTreeShown(bool on)
{
    if (on == m_treeShown)
        return;
    m_treeShown = on;
    m_list->setRootIsDecorated(on);
    // In the tree a click toggles a unit, as a check box would; the flat list keeps the usual
    // extended selection.
    m_list->setSelectionMode(on ? QAbstractItemView::MultiSelection
                                : QAbstractItemView::ExtendedSelection);
    for (QWidget *w : std::initializer_list<QWidget *>{m_filter, m_all, m_none})
        w->setVisible(on);
    if (!on)
        m_filter->clear();
    rebuild();
    showChoice();
    applyFilter();
}

void UnitListPane::setFilter(const QString &text)
{
    m_filter->setText(text);
}

void UnitListPane::applyFilter()
{
    const QString filter = m_treeShown ? m_filter->text().trimmed() : QString();
    const std::vector<char> visible = BUSelection::filterMatches(m_items, m_parents, filter);
    const bool allVisible = std::all_of(visible.begin(), visible.end(), [](char v) { return v; });
    if (allVisible && !m_anyHidden)
        return; // hiding and showing goes item by item through the view: only when it changes
    for (std::size_t i = 0; i < m_widgets.size(); ++i) {
        if (m_widgets[i]->isHidden() != !visible[i])
            m_widgets[i]->setHidden(!visible[i]);
    }
    m_anyHidden = !allVisible;
}

void UnitListPane::syncChecks()
{
    if (m_syncing)
        return;
    m_syncing = true;
    for (QTreeWidgetItem *widget : m_widgets) {
        if (m_treeShown)
            widget->setCheckState(0, widget->isSelected() ? Qt::Checked : Qt::Unchecked);
        else if (widget->data(0, Qt::CheckStateRole).isValid())
            widget->setData(0, Qt::CheckStateRole, QVariant());
    }
    m_syncing = false;
}

void UnitListPane::selectAllShown()
{
    QItemSelection selection;
    for (std::size_t i = 0; i < m_widgets.size(); ++i) {
        if (!m_widgets[i]->isHidden())
            selection.select(m_indexes[i], m_indexes[i]);
    }
    m_list->selectionModel()->select(selection, QItemSelectionModel::Select);
}

void UnitListPane::selectNone()
{
    m_list->clearSelection();
}

void UnitListPane::setCaptions()
{
    m_filter->setPlaceholderText(m_caption(QStringLiteral("UnitFilter")));
    m_all->setText(m_caption(QStringLiteral("SelectAllUnits")));
    m_none->setText(m_caption(QStringLiteral("SelectNoUnits")));
}

void UnitListPane::layout(const QRect &area)
{
    int top = area.top();
    if (m_treeShown) {
        const int h = m_filter->sizeHint().height();
        m_filter->setGeometry(area.left(), top, area.width(), h);
        top += h + 4;
        const int bh = m_all->sizeHint().height();
        const int half = (area.width() - 4) / 2;
        m_all->setGeometry(area.left(), top, half, bh);
        m_none->setGeometry(area.left() + half + 4, top, area.width() - half - 4, bh);
        top += bh + 4;
    }
    m_list->setGeometry(area.left(), top, area.width(), std::max(40, area.bottom() - top));
}
