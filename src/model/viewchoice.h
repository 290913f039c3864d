#pragma once

#include "model/dlvsurface.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <optional>
#include <vector>

/// What the user chose to see, kept in one place: the units of the unit list lvBU in list order,
/// each chosen or not; whether the chosen units show by themselves or with everything below them
/// (the summary option optBU); and whether the hierarchy counts work orders or points (the display
/// option optDisplay). The control binds its widgets to it both ways, the data controller reads
/// the chosen units from it (it is the controller's surface), and profiles store and restore it.
///
/// Until the control's first layout neither option is set: both read as false, as two radio
/// buttons of which none is checked would. Setting an option always tells, even to its value, so
/// that the widgets show what was set.
class ViewChoice final : public QObject, public DLVSurface
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ViewChoice)

public:
    explicit ViewChoice(QObject *parent = nullptr);
    ~ViewChoice() override;

    // --- the units of the list; a key is "_" followed by the unit id
    [[nodiscard]] int unitCount() const noexcept { return int(m_keys.size()); }
    [[nodiscard]] const QString &unitKey(int index) const;
    [[nodiscard]] bool isChosen(int index) const;
    /// Replaces the list; chosen holds one flag per key (missing flags count as not chosen).
    void setUnits(std::vector<QString> keys, std::vector<char> chosen);
    void setChosen(int index, bool chosen);
    /// Takes the choice of every unit at once (a selection made in the list); tells once.
    void setAllChosen(std::vector<char> chosen);
    /// The chosen unit ids (keys less their first character), in list order.
    [[nodiscard]] QStringList chosenIds() const;

    // --- the two options
    /// optBU(0): the chosen units by themselves (false: with everything below them).
    [[nodiscard]] bool singleUnits() const noexcept { return m_singleUnits.value_or(false); }
    void setSingleUnits(bool single);
    /// optDisplay(0): the hierarchy counts work orders (false: points).
    [[nodiscard]] bool byWorkOrders() const noexcept { return m_byWorkOrders.value_or(false); }
    void setByWorkOrders(bool workOrders);

    // --- DLVSurface, for the data controller
    [[nodiscard]] int buListCount() const override { return unitCount(); }
    [[nodiscard]] QString buListKey(int index) const override { return unitKey(index); }
    [[nodiscard]] bool buListSelected(int index) const override { return isChosen(index); }
    [[nodiscard]] QString buListId(int index) const override;
    /// The list's unit ids (each key less its first character) as a set, made once per list:
    /// a drill-down into a large subtree tests every id of it.
    [[nodiscard]] const QSet<QString> &idSet() const;
    [[nodiscard]] quint64 buListRevision() const override { return m_revision; }
    [[nodiscard]] quint64 buListItemsRevision() const override { return m_itemsRevision; }

Q_SIGNALS:
    /// The list was replaced.
    void unitsReset();
    /// The choice of one unit changed (index), or of any number of them (-1).
    void chosenChanged(int index);
    void singleUnitsSet(bool single);
    void byWorkOrdersSet(bool workOrders);

private:
    std::vector<QString> m_keys;
    std::vector<QString> m_ids;    // the keys less their first character, made once per list
    mutable QSet<QString> m_idSet; // m_ids as a set, made on first use after the list changed
    mutable bool m_idSetValid = false;
    std::vector<char> m_chosen;
    std::optional<bool> m_singleUnits;
    std::optional<bool> m_byWorkOrders;
    quint64 m_revision = 1;      // counts changes of the list and of the choice
    quint64 m_itemsRevision = 1; // counts changes of the list
};
