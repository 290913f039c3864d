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
    const std::size_t oldCount = std::size_t(m_columns.size());
    m_columns.append(name);
    if (m_rows == 0)
        return;
    // Re-lay the row-major cells with an empty value at the end of every row.
    std::vector<std::uint32_t> ends;
    ends.reserve(std::size_t(m_rows) * (oldCount + 1));
    std::uint32_t last = 0;
    for (std::size_t r = 0; r < std::size_t(m_rows); ++r) {
        for (std::size_t c = 0; c < oldCount; ++c)
            ends.push_back(last = m_ends[r * oldCount + c]);
        ends.push_back(last);
    }
    m_ends = std::move(ends);
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
    const std::size_t cell = cellIndex(row, column);
    const std::uint32_t begin = cellBegin(cell);
    return QStringView(m_text.data() + begin, qsizetype(m_ends[cell] - begin));
}

QString QZWebTable::field(int row, QStringView column) const
{
    return value(row, requireColumn(column)).toString();
}

int QZWebTable::addRow()
{
    if (m_rows == std::numeric_limits<int>::max())
        throw DLVError::overflow();
    m_ends.resize(m_ends.size() + std::size_t(m_columns.size()), std::uint32_t(m_text.size()));
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
    if (m_rows == std::numeric_limits<int>::max())
        throw DLVError::overflow();
    m_ends.reserve(m_ends.size() + std::size_t(values.size()));
    for (const QString &v : values) {
        m_text.insert(m_text.end(), v.utf16(), v.utf16() + v.size());
        m_ends.push_back(std::uint32_t(m_text.size()));
    }
    ++m_rows;
}

void QZWebTable::setValue(int row, int column, QStringView value)
{
    (void)this->value(row, column); // range check with the usual error
    const std::size_t cell = cellIndex(row, column);
    const std::size_t begin = cellBegin(cell);
    const std::size_t oldLength = m_ends[cell] - begin;
    const std::size_t length = std::size_t(value.size());
    if (length > oldLength && m_text.size() + (length - oldLength) > maxTextChars)
        throwTextOverflow(m_name);
    // A view into our own buffer would move with the text: copy it first.
    const char16_t *src = value.utf16();
    std::vector<char16_t> copy;
    if (!m_text.empty() && !std::less<const char16_t *>()(src, m_text.data()) &&
        std::less<const char16_t *>()(src, m_text.data() + m_text.size())) {
        copy.assign(src, src + length);
        src = copy.data();
    }
    const auto at = m_text.begin() + std::ptrdiff_t(begin);
    if (length > oldLength)
        m_text.insert(at + std::ptrdiff_t(oldLength), length - oldLength, u'\0');
    else if (length < oldLength)
        m_text.erase(at + std::ptrdiff_t(length), at + std::ptrdiff_t(oldLength));
    std::copy(src, src + length, m_text.begin() + std::ptrdiff_t(begin));
    // Filling the last row in order moves nothing: the cells after it are empty.
    if (length != oldLength) {
        const std::uint32_t grow = std::uint32_t(length);
        const std::uint32_t shrink = std::uint32_t(oldLength);
        for (std::size_t i = cell; i < m_ends.size(); ++i)
            m_ends[i] = m_ends[i] - shrink + grow;
    }
}

void QZWebTable::setField(int row, QStringView column, QStringView value)
{
    setValue(row, requireColumn(column), value);
}

void QZWebTable::removeRow(int row)
{
    (void)this->row(row); // range check with the usual error
    const std::size_t columns = std::size_t(m_columns.size());
    const std::size_t first = std::size_t(row - 1) * columns;
    if (columns > 0) {
        const std::uint32_t begin = cellBegin(first);
        const std::uint32_t end = m_ends[first + columns - 1];
        m_text.erase(m_text.begin() + begin, m_text.begin() + end);
        m_ends.erase(m_ends.begin() + std::ptrdiff_t(first),
                     m_ends.begin() + std::ptrdiff_t(first + columns));
        for (std::size_t i = first; i < m_ends.size(); ++i)
            m_ends[i] -= end - begin;
    }
    --m_rows;
    if (m_rows == 0) {
        m_text.clear();
        m_ends.clear();
    }
}

void QZWebTable::clearRows()
{
    m_ends.clear();
    m_text.clear();
    m_rows = 0;
}

void QZWebTable::reserve(int rows, qsizetype textChars)
{
    if (rows > 0)
        m_ends.reserve(std::size_t(rows) * std::max<std::size_t>(std::size_t(m_columns.size()), 1));
    if (textChars > 0)
        m_text.reserve(std::min(std::size_t(textChars), maxTextChars));
}

bool operator==(const QZWebTable &a, const QZWebTable &b)
{
    // The layout is canonical (values back to back in cell order), so equal tables store alike.
    return a.m_name == b.m_name && a.m_columns == b.m_columns && a.m_rows == b.m_rows &&
           a.m_ends == b.m_ends && a.m_text == b.m_text;
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
                appendElementText(table.m_text, v);
                if (table.m_text.size() > maxTextChars)
                    throwTextOverflow(table.m_name);
                table.m_ends.push_back(std::uint32_t(table.m_text.size()));
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
    if (table.m_ends.capacity() > table.m_ends.size() + table.m_ends.size() / 4 + 256)
        table.m_ends.shrink_to_fit();
    return table;
}

qsizetype QZWebTablePrivate::estimatedXmlSize(const QZWebTable &table)
{
    // "<V>" + "</V>" per cell, "<Row>" + "</Row>\n" per row, plus the live text.
    return qsizetype(table.m_text.size()) + qsizetype(table.m_ends.size()) * 8 +
           qsizetype(table.m_rows) * 12 + (table.m_columns.size() + 1) * 32 + table.m_name.size();
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
    std::size_t cell = 0;
    for (int r = 0; r < table.m_rows; ++r) {
        writer.raw(QLatin1StringView("<Row>"));
        for (qsizetype c = 0; c < table.m_columns.size(); ++c, ++cell) {
            const std::uint32_t begin = table.cellBegin(cell);
            writer.textElement(
                QLatin1StringView("V"),
                QStringView(table.m_text.data() + begin, qsizetype(table.m_ends[cell] - begin)));
        }
        writer.raw(QLatin1StringView("</Row>\n"));
    }
    writer.raw(QLatin1StringView("</"));
    writer.raw(tag);
    writer.raw(QLatin1StringView(">\n"));
}
