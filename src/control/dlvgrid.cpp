#include "control/dlvgrid.h"

#include "views/outlinegrid.h"

bool DLVGrid::validRow(int row) const
{
    return m_grid && row >= 0 && row < m_grid->rowCount();
}

bool DLVGrid::validCell(int row, int col) const
{
    return validRow(row) && col >= 0 && col < m_grid->colCount();
}

int DLVGrid::Rows() const
{
    return m_grid ? m_grid->rowCount() : 0;
}

int DLVGrid::Cols() const
{
    return m_grid ? m_grid->colCount() : 0;
}

int DLVGrid::FixedRows() const
{
    return m_grid ? m_grid->fixedRows() : 0;
}

QString DLVGrid::TextMatrix(int row, int col) const
{
    return validCell(row, col) ? m_grid->text(row, col) : QString();
}

QString DLVGrid::RowData(int row) const
{
    return validRow(row) ? m_grid->rowData(row) : QString();
}

bool DLVGrid::IsNode(int row) const
{
    return validRow(row) && row >= m_grid->fixedRows() && m_grid->isNode(row);
}

int DLVGrid::Level(int row) const
{
    return validRow(row) && row >= m_grid->fixedRows() ? m_grid->outlineLevel(row) : -1;
}

bool DLVGrid::IsCollapsed(int row) const
{
    return IsNode(row) && m_grid->isCollapsed(row);
}

bool DLVGrid::IsVisible(int row) const
{
    return validRow(row) && (row < m_grid->fixedRows() || m_grid->isRowVisible(row));
}

QColor DLVGrid::BackColor(int row, int col) const
{
    return validCell(row, col) ? m_grid->backColor(row, col) : QColor();
}

bool DLVGrid::IsBold(int row, int col) const
{
    return validCell(row, col) && m_grid->isBold(row, col);
}

int DLVGrid::FindRow(const QString &key) const
{
    return m_grid ? m_grid->findRow(key) : -1;
}
