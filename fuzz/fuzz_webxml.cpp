// Fuzzes the XML text forms of the host data objects: table, data, message, profile and profile
// set, each read from UTF-16 text and from UTF-8 bytes. The first byte picks the form and the
// reader; the rest is the document.
//
// Beyond "never crash": a document that loads must save (or refuse with error 5, for a name no
// attribute can carry), and what it saves must load back to the same object; when the bytes are
// valid UTF-8 both readers must agree; a reference to U+0000 is refused, not read as the end of
// the text.

#include "common/dlverror.h"
#include "fuzzsupport.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"
#include "webdata/qzwebtable.h"

#include <optional>

namespace {

using FuzzSupport::require;

// What a failed load may throw: 5 malformed, 457 a duplicate name, 6 a table too large, 7 out
// of memory.
bool loadError(qint32 number)
{
    return number == DLVError::InvalidCall || number == DLVError::DuplicateKey ||
           number == DLVError::Overflow || number == 7;
}

// The saved text of an object, or nothing when saving refused a name with error 5.
template <typename T> std::optional<QString> saved(const T &object)
{
    try {
        return object.toXml();
    } catch (const DLVError &e) {
        if (e.number() != DLVError::InvalidCall)
            FuzzSupport::fail("saving failed with an error other than 5", e.what());
        return std::nullopt;
    }
}

template <typename T> bool same(const T &a, const T &b)
{
    if constexpr (requires { a == b; })
        return a == b;
    else
        return saved(a) == saved(b); // data and messages compare by their saved text
}

template <typename T> std::optional<T> load(const QString &text)
{
    try {
        return T::fromXml(text);
    } catch (const DLVError &e) {
        if (!loadError(e.number()))
            FuzzSupport::fail("loading failed with an undocumented error number", e.what());
        return std::nullopt;
    }
}

template <typename T> std::optional<T> loadUtf8(QByteArrayView bytes)
{
    try {
        return T::fromXmlUtf8(bytes);
    } catch (const DLVError &e) {
        if (!loadError(e.number()))
            FuzzSupport::fail("loading failed with an undocumented error number", e.what());
        return std::nullopt;
    }
}

template <typename T> void roundTrip(const T &object)
{
    const std::optional<QString> text = saved(object);
    if (!text)
        return;
    const std::optional<T> again = load<T>(*text);
    require(again.has_value(), "a saved document does not load");
    require(same(object, *again), "a saved document loads as something else");
}

// A reference to U+0000 would end the text at the parser's NUL: such a document must be refused,
// never loaded short. Checked plainly on documents without CDATA, comments or instructions,
// where every "&#0;" is a reference.
bool holdsNulReference(QByteArrayView bytes)
{
    if (bytes.contains("<!") || bytes.contains("<?"))
        return false;
    return bytes.contains("&#0;") || bytes.contains("&#x0;") || bytes.contains("&#00;");
}

template <typename T> void fuzzForm(QByteArrayView bytes, bool utf8)
{
    if (holdsNulReference(bytes)) {
        require(!(utf8 ? loadUtf8<T>(bytes) : load<T>(QString::fromUtf8(bytes))).has_value(),
                "a document with a reference to U+0000 loaded");
        return;
    }
    if (!utf8) {
        if (const std::optional<T> object = load<T>(QString::fromUtf8(bytes)))
            roundTrip(*object);
        return;
    }
    const std::optional<T> object = loadUtf8<T>(bytes);
    if (object)
        roundTrip(*object);
    // Where the bytes are UTF-8 the text reader must see the same document. A byte-order mark
    // is left out: it is a property of the bytes, not of the text.
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() != bytes || bytes.startsWith("\xEF\xBB\xBF"))
        return;
    const std::optional<T> fromText = load<T>(text);
    require(object.has_value() == fromText.has_value(), "the two readers disagree on validity");
    if (object)
        require(same(*object, *fromText), "the two readers disagree on content");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const QByteArray bytes = FuzzSupport::bytes(data + 1, size - 1);
    const bool utf8 = data[0] & 0x80;
    switch (data[0] % 5) {
    case 0:
        fuzzForm<QZWebTable>(bytes, utf8);
        break;
    case 1:
        fuzzForm<QZWebData>(bytes, utf8);
        break;
    case 2:
        fuzzForm<QZWebMessage>(bytes, utf8);
        break;
    case 3:
        fuzzForm<QZWebProfile>(bytes, utf8);
        break;
    case 4:
        fuzzForm<QZWebProfiles>(bytes, utf8);
        break;
    }
    return 0;
}
