#include "webdata/qzwebtable.h"

#include "common/dlverror.h"
#include "common/ordereddict.h"
#include "webdata/qzwebtable_p.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmlstreamreader_p.h"
#include "webdata/webxmltext_p.h"
#include "webdata/webxmlwriter_p.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>

namespace {

constexpr std::size_t maxTextChars = std::numeric_limits<std::uint32_t>::max();

[[noreturn]] void throwTextOverflow(const QString &table)
{
    throw DLVError(DLVError::Overflow,
                   QStringLiteral("Overflow: table '%1' holds more text than it can address "
                                  "(4G characters)")
                       .arg(table));
}

std::size_t countValues(pugi::xml_node row)
{
    std::size_t count = 0;
    for (pugi::xml_node v = row.first_child(); v; v = v.next_sibling())
        count += WebXmlText::isNamed(v, "V") ? 1 : 0;
    return count;
}

} // namespace

// ---- QZWebRow ----

QString QZWebRow::field(QStringView column) const
{
    return m_table->field(m_row, column);
}

QStringView QZWebRow::value(int column) const
{
    return m_table->value(m_row, column);
}

// ---- QZWebTable ----

QZWebTable::QZWebTable(QString name, const QStringList &columns) : m_name(std::move(name))
{
    for (const QString &column : columns)
        addColumn(column);
}

QString QZWebTable::fieldList() const
{
    return m_columns.join(u',');
}

void QZWebTable::addColumn(const QString &name)
{
    if (columnIndex(name) >= 0)
        throw DLVError::duplicateKey(name);
    const std::size_t oldCount = m_columns.size();
    m_columns.append(name);
    if (m_rows == 0)
        return;
    // Re-lay the row-major cells with an empty span at the end of every row.
    std::vector<Span> cells;
    cells.reserve(std::size_t(m_rows) * (oldCount + 1));
    for (int r = 0; r < m_rows; ++r) {
        const auto first = m_cells.begin() + std::ptrdiff_t(std::size_t(r) * oldCount);
        cells.insert(cells.end(), first, first + std::ptrdiff_t(oldCount));
        cells.push_back(Span{});
    }
    m_cells = std::move(cells);
}

int QZWebTable::columnIndex(QStringView name) const
{
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (QStringView(m_columns[i]).compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    }
    return -1;
}

int QZWebTable::requireColumn(QStringView name) const
{
    const int index = columnIndex(name);
    if (index < 0)
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("Table '%1' has no column '%2'").arg(m_name, name));
    return index;
}

int QZWebTable::rowCount() const
{
    return m_rows;
}

QZWebRow QZWebTable::row(int row) const
{
    if (row < 1 || row > m_rows)
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("Table '%1' has no row %2 (it has %3 rows)")
                           .arg(m_name)
                           .arg(row)
                           .arg(m_rows));
    return QZWebRow(*this, row);
}

QStringView QZWebTable::value(int row, int column) const
{
    if (row < 1 || row > m_rows || column < 0 || column >= columnCount())
        throw DLVError(DLVError::SubscriptOutOfRange,
                       QStringLiteral("Table '%1' has no cell at row %2, column %3 (it has %4 rows "
                                      "and %5 columns)")
                           .arg(m_name)
                           .arg(row)
                           .arg(column)
                           .arg(m_rows)
                           .arg(columnCount()));
    const Span &span = m_cells[std::size_t(row - 1) * m_columns.size() + std::size_t(column)];
    return QStringView(m_text.data() + span.offset, qsizetype(span.length));
}

QString QZWebTable::field(int row, QStringView column) const
{
    return value(row, requireColumn(column)).toString();
}

int QZWebTable::addRow()
{
    if (m_rows == std::numeric_limits<int>::max())
        throw DLVError::overflow();
    m_cells.resize(m_cells.size() + m_columns.size());
    return ++m_rows;
}

void QZWebTable::appendRow(const QStringList &values)
{
    if (values.size() != m_columns.size())
        throw DLVError(DLVError::InvalidCall,
                       QStringLiteral("a row of table '%1' needs %2 values, got %3")
                           .arg(m_name)
                           .arg(m_columns.size())
                           .arg(values.size()));
    qsizetype chars = 0;
    for (const QString &v : values)
        chars += v.size();
    if (m_text.size() + std::size_t(chars) > maxTextChars)
        throwTextOverflow(m_name);
    const int row = addRow();
    Span *cell = m_cells.data() + std::size_t(row - 1) * m_columns.size();
    for (const QString &v : values) {
        cell->offset = std::uint32_t(m_text.size());
        cell->length = std::uint32_t(v.size());
        m_text.insert(m_text.end(), v.utf16(), v.utf16() + v.size());
        ++cell;
    }
}

void QZWebTable::setValue(int row, int column, QStringView value)
{
    (void)this->value(row, column); // range check with the usual error
    Span &span = m_cells[std::size_t(row - 1) * m_columns.size() + std::size_t(column)];
    const std::size_t length = std::size_t(value.size());
    if (length <= span.length) {
        // Fits where the old value was; memmove, since value may be a view into this table.
        if (length > 0)
            std::memmove(m_text.data() + span.offset, value.utf16(), length * sizeof(char16_t));
        m_deadChars += span.length - length;
        span.length = std::uint32_t(length);
        return;
    }
    if (m_text.size() + length > maxTextChars)
        throwTextOverflow(m_name);
    // A view into our own buffer would dangle when the buffer grows: copy it first.
    const char16_t *src = value.utf16();
    std::vector<char16_t> copy;
    if (!m_text.empty() && !std::less<const char16_t *>()(src, m_text.data()) &&
        std::less<const char16_t *>()(src, m_text.data() + m_text.size())) {
        copy.assign(src, src + length);
        src = copy.data();
    }
    m_deadChars += span.length;
    span.offset = std::uint32_t(m_text.size());
    span.length = std::uint32_t(length);
    m_text.insert(m_text.end(), src, src + length);
    // Profiles rewrite the same cells on every save; keep the garbage bounded.
    if (m_deadChars > 4096 && m_deadChars > m_text.size() / 2)
        compact();
}

void QZWebTable::setField(int row, QStringView column, QStringView value)
{
    setValue(row, requireColumn(column), value);
}

void QZWebTable::removeRow(int row)
{
    (void)this->row(row); // range check with the usual error
    const auto first = m_cells.begin() + std::ptrdiff_t(std::size_t(row - 1) * m_columns.size());
    const auto last = first + std::ptrdiff_t(m_columns.size());
    for (auto it = first; it != last; ++it)
        m_deadChars += it->length;
    m_cells.erase(first, last);
    --m_rows;
    if (m_rows == 0) {
        m_text.clear();
        m_deadChars = 0;
    } else if (m_deadChars > 4096 && m_deadChars > m_text.size() / 2) {
        compact();
    }
}

void QZWebTable::clearRows()
{
    m_cells.clear();
    m_text.clear();
    m_rows = 0;
    m_deadChars = 0;
}

void QZWebTable::reserve(int rows, qsizetype textChars)
{
    if (rows > 0)
        m_cells.reserve(std::size_t(rows) * std::max<std::size_t>(m_columns.size(), 1));
    if (textChars > 0)
        m_text.reserve(std::min(std::size_t(textChars), maxTextChars));
}

void QZWebTable::compact()
{
    std::vector<char16_t> text;
    text.reserve(m_text.size() - m_deadChars);
    for (Span &span : m_cells) {
        const auto first = m_text.begin() + span.offset;
        span.offset = std::uint32_t(text.size());
        text.insert(text.end(), first, first + span.length);
    }
    m_text = std::move(text);
    m_deadChars = 0;
}

bool operator==(const QZWebTable &a, const QZWebTable &b)
{
    if (a.m_name != b.m_name || a.m_columns != b.m_columns || a.m_rows != b.m_rows)
        return false;
    for (std::size_t i = 0; i < a.m_cells.size(); ++i) {
        const auto &sa = a.m_cells[i];
        const auto &sb = b.m_cells[i];
        if (sa.length != sb.length ||
            !std::equal(a.m_text.begin() + sa.offset, a.m_text.begin() + sa.offset + sa.length,
                        b.m_text.begin() + sb.offset))
            return false;
    }
    return true;
}

// ---- XML ----

QString QZWebTable::toXml() const
{
    WebXmlWriter writer(QZWebTablePrivate::estimatedXmlSize(*this));
    QZWebTablePrivate::write(writer, *this, QLatin1StringView("Table"));
    return writer.take();
}

void QZWebTable::loadXml(QStringView xml)
{
    *this = WebXmlStreamReader::readTable(xml);
}

QZWebTable QZWebTable::fromXml(QStringView xml)
{
    QZWebTable table;
    table.loadXml(xml);
    return table;
}

void QZWebTable::loadXmlUtf8(QByteArrayView xml)
{
    *this = WebXmlStreamReader::readTable(xml);
}

QZWebTable QZWebTable::fromXmlUtf8(QByteArrayView xml)
{
    QZWebTable table;
    table.loadXmlUtf8(xml);
    return table;
}

QZWebTable QZWebTablePrivate::read(pugi::xml_node element, const char *what)
{
    using namespace WebXmlText;
    QZWebTable table(attribute(element, "name"));
    const QString whatText = QString::fromLatin1(what);
    // A hashed set for the duplicate test: a hostile document with very many columns must not
    // make loading quadratic.
    OrderedDict<int> seen(KeyCompare::CaseInsensitive);

    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        if (child.type() != pugi::node_element)
            continue;
        if (isNamed(child, "Row")) {
            if (table.m_rows == std::numeric_limits<int>::max())
                throw DLVError::overflow();
            const std::size_t columns = std::size_t(table.m_columns.size());
            std::size_t count = 0;
            for (pugi::xml_node v = child.first_child(); v; v = v.next_sibling()) {
                if (!isNamed(v, "V"))
                    continue;
                if (count == columns) {
                    count = countValues(child);
                    break;
                }
                ++count;
                QZWebTable::Span span;
                span.offset = std::uint32_t(table.m_text.size());
                appendElementText(table.m_text, v);
                if (table.m_text.size() > maxTextChars)
                    throwTextOverflow(table.m_name);
                span.length = std::uint32_t(table.m_text.size() - span.offset);
                table.m_cells.push_back(span);
            }
            if (count != columns)
                throw DLVError(DLVError::InvalidCall,
                               QStringLiteral("the %1 '%2' has %3 columns, but its row %4 has %5 "
                                              "values")
                                   .arg(whatText, table.m_name)
                                   .arg(columns)
                                   .arg(table.m_rows + 1)
                                   .arg(count));
            ++table.m_rows;
        } else if (isNamed(child, "Column")) {
            if (table.m_rows > 0)
                throw DLVError(DLVError::InvalidCall,
                               QStringLiteral("the %1 '%2' has a <Column> after its rows")
                                   .arg(whatText, table.m_name));
            const QString name = attribute(child, "name");
            if (!seen.addIfAbsent(name, 0))
                throw DLVError(DLVError::DuplicateKey,
                               QStringLiteral("the %1 '%2' has the column '%3' twice")
                                   .arg(whatText, table.m_name, name));
            table.m_columns.append(name);
        } else {
            qCDebug(lcWebData) << "ignoring element" << child.name() << "in" << what
                               << table.m_name;
        }
    }
    // Loading grew the buffers geometrically; give back a large surplus.
    if (table.m_text.capacity() > table.m_text.size() + table.m_text.size() / 4 + 1024)
        table.m_text.shrink_to_fit();
    if (table.m_cells.capacity() > table.m_cells.size() + table.m_cells.size() / 4 + 256)
        table.m_cells.shrink_to_fit();
    return table;
}

qsizetype QZWebTablePrivate::estimatedXmlSize(const QZWebTable &table)
{
    // "<V>" + "</V>" per cell, "<Row>" + "</Row>\n" per row, plus the live text.
    return qsizetype(table.m_text.size() - table.m_deadChars) +
           qsizetype(table.m_cells.size()) * 8 + qsizetype(table.m_rows) * 12 +
           (table.m_columns.size() + 1) * 32 + table.m_name.size();
}

void QZWebTablePrivate::write(WebXmlWriter &writer, const QZWebTable &table, QLatin1StringView tag)
{
    writer.openTag(tag);
    writer.attribute(QLatin1StringView("name"), table.m_name,
                     tag == QLatin1StringView("Section") ? QLatin1StringView("section name")
                                                         : QLatin1StringView("table name"));
    writer.raw(QLatin1StringView(">\n"));
    for (const QString &column : table.m_columns) {
        writer.openTag(QLatin1StringView("Column"));
        writer.attribute(QLatin1StringView("name"), column, QLatin1StringView("column name"));
        writer.raw(QLatin1StringView("/>\n"));
    }
    const QZWebTable::Span *cell = table.m_cells.data();
    for (int r = 0; r < table.m_rows; ++r) {
        writer.raw(QLatin1StringView("<Row>"));
        for (qsizetype c = 0; c < table.m_columns.size(); ++c, ++cell)
            writer.textElement(QLatin1StringView("V"),
                               QStringView(table.m_text.data() + cell->offset, cell->length));
        writer.raw(QLatin1StringView("</Row>\n"));
    }
    writer.raw(QLatin1StringView("</"));
    writer.raw(tag);
    writer.raw(QLatin1StringView(">\n"));
}
