#pragma once

#include <QString>

/// What the data controller reads of the control: the unit list lvBU, whose selection decides
/// the units summed. The control implements it with its list; tests fake it. What the controller
/// tells the control (status, fills, refresh times) goes out as signals instead.
class DLVSurface
{
public:
    virtual ~DLVSurface() = default;

    /// Items of the list view lvBU, 0-based, in list order. A key is "_" followed by the unit id.
    [[nodiscard]] virtual int buListCount() const = 0;
    [[nodiscard]] virtual QString buListKey(int index) const = 0;
    [[nodiscard]] virtual bool buListSelected(int index) const = 0;
    /// The unit id of an item: its key less the first character.
    [[nodiscard]] virtual QString buListId(int index) const { return buListKey(index).mid(1); }
    /// A number that changes whenever the list or its selection changes, so that the controller
    /// can keep the lists it computed from them; 0 when the surface cannot tell (nothing is kept).
    [[nodiscard]] virtual quint64 buListRevision() const { return 0; }
    /// A number that changes whenever the list's items change, but not when only the selection
    /// does; 0 when the surface cannot tell.
    [[nodiscard]] virtual quint64 buListItemsRevision() const { return 0; }
};
