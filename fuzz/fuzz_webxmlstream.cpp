// Fuzzes the streaming reader of the table, data and message text forms against the tree
// reader: for every input, read as UTF-8 bytes, as the text those bytes decode to and as raw
// UTF-16 code units (NULs and lone surrogates included), both readers must load the same object
// or refuse with the same error number and description. The first byte picks the form and the
// reading; the rest is the document.

#include "fuzzsupport.h"
#include "webdata/webxmlcomparison.h"

#include <string>

namespace {

using WebXmlComparison::DocumentForm;

template <typename Text> void compare(DocumentForm form, Text text, const char *reading)
{
    const QString tree = WebXmlComparison::treeOutcome(form, text);
    const QString stream = WebXmlComparison::streamOutcome(form, text);
    if (tree != stream) {
        const std::string detail = std::string(reading) + "\n tree:   " + tree.toStdString() +
                                   "\n stream: " + stream.toStdString();
        FuzzSupport::fail("the streaming reader differs from the tree reader", detail.c_str());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const DocumentForm forms[] = {DocumentForm::Table, DocumentForm::Data, DocumentForm::Message};
    const DocumentForm form = forms[data[0] % 3];
    const QByteArray bytes = FuzzSupport::bytes(data + 1, size - 1);
    switch ((data[0] / 3) % 3) {
    case 0:
        compare(form, QByteArrayView(bytes), "UTF-8 bytes");
        break;
    case 1: {
        const QString text = QString::fromUtf8(bytes);
        compare(form, QStringView(text), "UTF-16 text of the bytes");
        break;
    }
    case 2: {
        // Pairs of bytes as code units: text no UTF-8 can carry.
        const QString units(reinterpret_cast<const QChar *>(bytes.constData()), bytes.size() / 2);
        compare(form, QStringView(units), "raw UTF-16 code units");
        break;
    }
    }
    return 0;
}
