#include "vexqt/core/field.h"

namespace vexqt {

void throwWrongKind() { throw ValueError("a value of the wrong kind"); }

std::string_view typeName(const Field& field) {
    if (field.display == Display::Code) return "code";
    switch (field.kind) {
        case ValueKind::None:
            break;
        case ValueKind::Boolean:
            return "boolean";
        case ValueKind::Unsigned:
            return "unsigned";
        case ValueKind::Signed:
            return "signed";
        case ValueKind::Floating:
            return "floating";
        case ValueKind::Text:
            return "text";
        case ValueKind::Instant:
            return "date";
        case ValueKind::Data:
            return "bytes";
        case ValueKind::Transformation:
            return "matrix";
        case ValueKind::Color:
            return "color";
        case ValueKind::Number:
            return "number";
        case ValueKind::Picture:
            return "picture";
        case ValueKind::List:
            return "table";
    }
    return {};
}

}  // namespace vexqt
