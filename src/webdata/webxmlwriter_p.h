#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringView>

/// Writes host documents straight into a QString. Escaping is our own rather than a DOM's: it is
/// linear in the output, never builds nodes for large tables, and is loss-free: CR is written as
/// "&#13;" (a conforming reader would turn a literal CR into LF), and code units that XML 1.0
/// cannot carry at all (most C0 controls, NUL, unpaired surrogates, U+FFFE, U+FFFF) become
/// <C u="hex"/> elements inside the value.
class WebXmlWriter
{
public:
    explicit WebXmlWriter(qsizetype reserveChars = 0) { m_out.reserve(reserveChars); }

    void reserveMore(qsizetype chars) { m_out.reserve(m_out.size() + chars); }

    /// Markup written as is.
    void raw(QLatin1StringView markup) { m_out.append(markup); }

    /// "<tag" + for each attribute: ` name="escaped value"`; the caller closes the tag.
    void openTag(QLatin1StringView tag) { m_out.append(u'<').append(tag); }
    /// An attribute value; throws DLVError(5) naming what when it holds a character that an
    /// attribute cannot carry (what: "table name", ...).
    void attribute(QLatin1StringView name, QStringView value, QLatin1StringView what);

    /// Element content. In a value that needs <C> elements every blank is written as a character
    /// reference, since the reader drops whitespace-only text between elements.
    void text(QStringView value);

    /// <tag>text</tag>, or <tag/> for the empty string.
    void textElement(QLatin1StringView tag, QStringView value);

    [[nodiscard]] QString take() { return std::move(m_out); }

private:
    void mixedText(QStringView value);
    void codeElement(char16_t unit);
    void charRef(char16_t unit);

    QString m_out;
};
