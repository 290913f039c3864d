#pragma once

#include "views/buselection.h"

#include <QModelIndex>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <vector>

class QLineEdit;
class QPushButton;
class QRect;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;
class ViewChoice;

/// The unit list lvBU and its optional tree presentation, bound to the units of the view choice:
/// the choice holds which units are chosen, the list shows it and writes the user's selection
/// back. The items, in list order, are what the selection rules read (count, key, selected),
/// whichever way they are shown: flat, as
/// the control always showed them, or (with the tree option) indented under their listed
/// parents with a check box that mirrors the selection, a filter box that narrows the list by
/// name, and buttons that select every shown unit or none. Clicking a unit in the tree toggles
/// it; Space does the same for the current unit. Widgets are children of the selection frame.
class UnitListPane final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UnitListPane)

public:
    using CaptionLookup = std::function<QString(const QString &)>;

    UnitListPane(QWidget *frame, QTreeWidget *list, ViewChoice &choice, CaptionLookup caption);
    ~UnitListPane() override;

    /// Brings the items up to date in place through update, which tells whether it changed any
    /// (BUSelection::updateItems); the items that keep holds are selected again.
    void refill(const std::function<bool(std::vector<BUSelection::Item> &)> &update,
                const std::function<bool(const BUSelection::Item &)> &keep);

    /// The items of the last fill, in list order.
    [[nodiscard]] const std::vector<BUSelection::Item> &items() const { return m_items; }
    [[nodiscard]] int count() const;
    [[nodiscard]] const QString &key(int index) const;
    [[nodiscard]] bool isSelected(int index) const;
    /// Chooses or leaves a unit, as a click would; the list follows the choice.
    void setSelected(int index, bool selected);

    void setTreeShown(bool on);
    [[nodiscard]] bool treeShown() const { return m_treeShown; }
    /// The filter text (narrows the tree only).
    void setFilter(const QString &text);
    void selectAllShown();
    void selectNone();

    void setCaptions();
    /// Places the filter row (when shown) and the list in the rectangle below the list's label.
    void layout(const QRect &area);

private:
    void rebuild();
    /// Selects the widgets of the chosen units, in one selection change.
    void showChoice();
    /// The user changed the selection: the choice takes it.
    void takeSelection();
    void applyFilter();
    void syncChecks();

    QTreeWidget *m_list;
    QPointer<ViewChoice> m_choice; ///< owned by the control, which may go before its widgets
    QLineEdit *m_filter;
    QPushButton *m_all;
    QPushButton *m_none;
    CaptionLookup m_caption;
    std::vector<BUSelection::Item> m_items;
    std::vector<int> m_parents;
    std::vector<QTreeWidgetItem *> m_widgets; ///< owned by the list, in list order
    std::vector<QModelIndex> m_indexes;       ///< the items' indexes until the next fill
    bool m_treeShown = false;
    bool m_anyHidden = false; ///< whether the filter hides any item
    bool m_syncing = false;
};
