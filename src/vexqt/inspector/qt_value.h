// Between the library's values and Qt's.
#pragma once

#include <QString>
#include <QVariant>

#include "vexqt/core/Value.h"
#include "vexqt/inspector/export.h"

namespace vexqt {

/// Text that the library gives is UTF-8.
VEXQT_INSPECTOR_EXPORT QString toQString(std::string_view text);
/// The text as UTF-8.
VEXQT_INSPECTOR_EXPORT std::string fromQString(const QString& text);

/// The value as models and widgets of Qt know it: numbers, texts, byte arrays, dates in UTC,
/// colours, images, a matrix as the list of its nine numbers. Invalid for what is absent and for
/// an atom.
VEXQT_INSPECTOR_EXPORT QVariant toVariant(const Value& value);

/// The value that a variant holds; absent for an invalid one and for what the library has no value
/// of.
VEXQT_INSPECTOR_EXPORT Value fromVariant(const QVariant& variant);

}  // namespace vexqt
