#pragma once

#include <QString>
#include <QWidget>

class DetailTableModel;
class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

/// A non-modal window listing the records behind one figure of the control: sortable by any
/// column, filtered by a search box over all columns, and exportable as comma-separated text
/// (the rows as shown, in the order shown). Deletes itself when closed.
class DetailsWindow final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DetailsWindow)

public:
    /// Takes ownership of model. summary describes the request in a line for people; note, when
    /// not empty, says why the list may be empty (e.g. a data source without records).
    DetailsWindow(DetailTableModel *model, const QString &summary, const QString &note,
                  QWidget *parent);
    ~DetailsWindow() override;

    [[nodiscard]] QTableView *view() const { return m_view; }
    [[nodiscard]] QLineEdit *searchBox() const { return m_search; }
    [[nodiscard]] int visibleRowCount() const;

    /// Writes the header and the visible rows in view order. Returns false with the reason.
    [[nodiscard]] bool exportCsv(const QString &fileName, QString *error) const;

private:
    void exportToFile();
    void updateCount();

    DetailTableModel *m_model;
    QSortFilterProxyModel *m_proxy;
    QTableView *m_view;
    QLineEdit *m_search;
    QLabel *m_count;
    QString m_note;
};
