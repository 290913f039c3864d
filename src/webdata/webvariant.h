#pragma once

#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"
#include "webdata/qzwebtable.h"

#include <QMetaType>
#include <QVariant>
#include <memory>

// Host objects travel in QVariant arguments as shared pointers.
Q_DECLARE_METATYPE(std::shared_ptr<QZWebMessage>)
Q_DECLARE_METATYPE(std::shared_ptr<QZWebData>)
Q_DECLARE_METATYPE(std::shared_ptr<QZWebTable>)
Q_DECLARE_METATYPE(std::shared_ptr<QZWebProfiles>)
Q_DECLARE_METATYPE(std::shared_ptr<QZWebProfile>)

/// Wrapping host objects into QVariant and naming the run-time type of a variant's value.
namespace WebVariant {

template <typename T> [[nodiscard]] QVariant wrap(std::shared_ptr<T> object)
{
    return QVariant::fromValue(std::move(object));
}

/// The run-time type name of the value: "QZWebMessage", "QZWebData", "QZWebTable",
/// "QZWebProfiles", "QZWebProfile" for the wrapped host objects (also when the pointer is null:
/// "Nothing"), "String" for text, "Empty" for an invalid variant, otherwise the Qt type name.
[[nodiscard]] QString typeName(const QVariant &value);

/// Registers the shared-pointer types by name (for queued connections and QMetaType lookups by
/// name). Idempotent; also done when the library is loaded.
void registerMetaTypes();

/// The wrapped object, or nullptr when the variant holds another type.
template <typename T> [[nodiscard]] std::shared_ptr<T> unwrap(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<std::shared_ptr<T>>())
        return value.value<std::shared_ptr<T>>();
    return nullptr;
}

} // namespace WebVariant
