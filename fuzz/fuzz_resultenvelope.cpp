// Fuzzes the decoding of a host's answer to a profile request. The first byte picks how the
// answer arrives: as text, or (when the text loads as one) as the host data object itself. The
// rest is the document.
// Beyond "never crash": a host error the envelope keeps is always reported, and an answer that
// did not report anything left no error behind.

#include "common/dlverror.h"
#include "fuzzsupport.h"
#include "support/recordingreporter.h"
#include "webdata/resultenvelope.h"
#include "webdata/webvariant.h"

#include <memory>

namespace {

using FuzzSupport::require;

template <typename T> QVariant wrapped(const QString &text)
{
    try {
        return WebVariant::wrap(std::make_shared<T>(T::fromXml(text)));
    } catch (const DLVError &) {
        return QVariant(text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const QString text = FuzzSupport::text(data + 1, size - 1);
    QVariant result;
    switch (data[0] % 5) {
    case 0:
        result = QVariant(text);
        break;
    case 1:
        result = wrapped<QZWebTable>(text);
        break;
    case 2:
        result = wrapped<QZWebData>(text);
        break;
    case 3:
        result = wrapped<QZWebProfile>(text);
        break;
    case 4:
        result = wrapped<QZWebProfiles>(text);
        break;
    }
    RecordingReporter reporter;
    ResultEnvelope envelope(&reporter);
    bool recognised = false;
    envelope.ParseResult(result, QStringLiteral("Fuzz.ParseResult"), recognised);
    if (envelope.LastErrorNumber() != 0) {
        require(recognised, "a host error was kept from an unrecognised answer");
        require(reporter.reports.size() == 1, "a host error was not reported exactly once");
        require(reporter.reports.front().number == envelope.LastErrorNumber(),
                "the reported number is not the one kept");
    }
    require(reporter.reports.size() <= 1, "one answer gave several reports");
    for (const RecordingReporter::Report &report : reporter.reports)
        require(report.location == QLatin1String("Fuzz.ParseResult"), "a report lost its location");
    return 0;
}
