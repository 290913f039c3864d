#pragma once

#include <QByteArrayView>
#include <QLoggingCategory>
#include <QStringView>
#include <cstddef>
#include <pugixml.hpp>

Q_DECLARE_LOGGING_CATEGORY(lcWebData)

/// Which document a text is meant to hold: its root element and how errors name it.
struct WebXmlKind
{
    const char *root;        ///< "Table", "WebData", ...
    const char *description; ///< "table document", ...
};

namespace WebXmlKinds {
inline constexpr WebXmlKind Table{"Table", "table document"};
inline constexpr WebXmlKind Data{"WebData", "data document"};
inline constexpr WebXmlKind Message{"WebMessage", "message document"};
inline constexpr WebXmlKind Profile{"WebProfile", "profile document"};
inline constexpr WebXmlKind Profiles{"WebProfiles", "profile set document"};
} // namespace WebXmlKinds

/// A parsed host document whose root element has been checked. Construction throws DLVError(5)
/// with the kind of document, what was wrong, the parser's description and the position.
class WebXmlDocument
{
public:
    WebXmlDocument(QStringView xml, const WebXmlKind &kind);
    WebXmlDocument(QByteArrayView utf8, const WebXmlKind &kind);
    WebXmlDocument(const WebXmlDocument &) = delete;
    WebXmlDocument &operator=(const WebXmlDocument &) = delete;

    [[nodiscard]] pugi::xml_node root() const { return m_root; }

    /// Runs build(root) and prefixes the description of any DLVError it throws with the kind of
    /// document, so that an error deep inside a table still says which document failed. Memory
    /// exhaustion on a huge document becomes DLVError(7).
    template <typename Build> auto build(Build &&build) const -> decltype(build(pugi::xml_node()))
    {
        try {
            return build(m_root);
        } catch (...) {
            rethrowWithContext();
        }
    }

    /// Offset of the first character reference that the parser cannot carry without loss (to
    /// U+0000, or too large for a code point), or -1. Any reader of host documents refuses such a
    /// document with error 5 before parsing.
    template <typename Char>
    [[nodiscard]] static qsizetype firstLossyReference(const Char *begin, const Char *end);

    // The refusals and error texts every reader of host documents shares, so that the tree reader
    // and the streaming reader (WebXmlStreamReader) fail alike. All throw DLVError.

    /// Refusals before any parsing: a NUL, an unpaired surrogate, a lossy character reference.
    static void checkText(QStringView xml, const WebXmlKind &kind);
    static void checkText(QByteArrayView utf8, const WebXmlKind &kind);
    /// The first half of checkText for UTF-16: only the NULs and unpaired surrogates.
    static void checkUnits(QStringView xml, const WebXmlKind &kind);
    /// A text that is not well-formed: the parser's description at an offset into the UTF-8 form
    /// of the text (for UTF-16 text, mapped back to a character index).
    [[noreturn]] static void throwParseError(QStringView xml, const WebXmlKind &kind,
                                             const char *description, std::ptrdiff_t offset);
    [[noreturn]] static void throwParseError(QByteArrayView utf8, const WebXmlKind &kind,
                                             const char *description, std::ptrdiff_t offset);
    [[noreturn]] static void throwOutOfMemory(const WebXmlKind &kind);
    [[noreturn]] static void throwWrongRoot(const WebXmlKind &kind, const QString &found);
    [[noreturn]] static void throwSecondRoot(const WebXmlKind &kind, const QString &found);
    /// Inside a catch block: the current DLVError prefixed with the kind of document, or
    /// DLVError(7) for memory exhaustion.
    [[noreturn]] static void rethrowWithContext(const WebXmlKind &kind);

private:
    [[noreturn]] void rethrowWithContext() const { rethrowWithContext(m_kind); }
    void checkRoot();

    pugi::xml_document m_doc;
    pugi::xml_node m_root;
    const WebXmlKind &m_kind;
};
