#pragma once

#include <QString>
#include <QStringView>

/// What the data controller needs of the control's surface, and nothing more. The control
/// implements it with its widgets (labels found by object name, the list view lvBU); tests fake
/// it. Keeping the controller behind this seam keeps the model library free of widgets.
class DLVSurface
{
public:
    virtual ~DLVSurface() = default;

    /// Sets the caption of the label named controlName ("lblLastRefreshTime", ...).
    virtual void setCaption(QStringView controlName, const QString &text) = 0;
    /// Shows or hides the control named controlName ("lblLastTime", ...).
    virtual void setVisible(QStringView controlName, bool visible) = 0;

    /// Items of the list view lvBU, 0-based, in list order. A key is "_" followed by the unit id.
    [[nodiscard]] virtual int buListCount() const = 0;
    [[nodiscard]] virtual QString buListKey(int index) const = 0;
    [[nodiscard]] virtual bool buListSelected(int index) const = 0;
};
