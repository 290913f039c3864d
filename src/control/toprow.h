#pragma once

#include <QString>
#include <QtGlobal>
#include <array>
#include <functional>

class QLabel;
class QToolBar;
class QWidget;

/// The row beside the toolbar, read from the right edge: the current profile, the last and next
/// refresh times with their headings, and the optional freshness line. Every label is hidden until
/// it has something to say. Laying the row out places the toolbar too, since the toolbar drops its
/// button texts when the labels leave it no room.
class TopRow final
{
public:
    using CaptionLookup = std::function<QString(const QString &key)>;

    /// The labels become children of parent.
    explicit TopRow(QWidget *parent);
    Q_DISABLE_COPY_MOVE(TopRow)

    void setCaptions(const CaptionLookup &caption);
    /// Shows the profile heading and the profile's name (shortened, whole in the tool tip).
    void showCurrentProfile(const QString &name);
    /// Shows the refresh times of the last data message with their headings.
    void showRefreshTimes(const QString &last, const QString &next);

    /// Lays out the toolbar and the labels in a row of the given width starting at top; returns
    /// the top of what comes below.
    int layout(QToolBar *toolbar, int width, int top) const;

    /// The last and next refresh-time figures (the live options colour them).
    [[nodiscard]] std::array<QLabel *, 2> refreshTimeLabels() const
    {
        return {m_lastRefreshTime, m_nextRefreshTime};
    }
    [[nodiscard]] QLabel *freshnessLabel() const { return m_freshness; }

private:
    QLabel *m_profile;
    QLabel *m_currentProfile;
    QLabel *m_lastTime;
    QLabel *m_lastRefreshTime;
    QLabel *m_nextTime;
    QLabel *m_nextRefreshTime;
    QLabel *m_freshness;
};
