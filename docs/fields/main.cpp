// Tells how every class of atoms lies in a file, for the reference: what the classes' own lists of
// fields say, as comments for Doxygen.
#include <cstdio>

#include "tests/atoms/all_classes.h"

namespace vexqt {
namespace {

std::string typeOf(const Field& field) {
    std::string type(typeName(field));
    const bool isInteger = type == "unsigned" || type == "signed";
    return isInteger ? std::to_string(field.bits) + " bits " + type : type;
}

std::string described(const Field& field) {
    std::string text = typeOf(field);
    if (!field.unit.empty()) text += ", " + std::string(field.unit);
    if (field.isOptional) text += ", may be absent";
    if (field.list != nullptr) {
        for (const Field& column : field.list->columns) {
            text += &column == field.list->columns.data() ? " of " : "; ";
            if (!column.name.empty()) text += std::string(column.name) + ": ";
            if (column.width != 0) text += std::to_string(column.width) + " bytes, ";
            text += described(column);
        }
    } else if (field.set == nullptr && !field.name.empty()) {
        text += ", cannot be set";
    }
    if (field.present != nullptr)
        text += text.empty() ? "not in every file" : "; not in every file";
    return text;
}

/// What a row without a name holds.
std::string nameless(std::span<const Field> rows, std::size_t i) {
    if (rows[i].holdsChildren) return "*child atoms*";
    if (rows[i].decode == versionKept.decode) return "*version*";
    if (rows[i].unitWidth == 1 && rows[i].width == 3) return "*flags*";
    if (rows[i].width == 0) return "*what the class reads itself*";
    if (i + 1 < rows.size() && rows[i + 1].list != nullptr) return "*number of entries*";
    return "*reserved*";
}

void print(const AtomClass& cls) {
    std::printf("/** \\class vexqt::%s\n\n\\details <b>In the file:</b> ", cls.className.data());
    std::printf("%s", std::string(cls.atomName).c_str());
    if (cls.type != kAnyType && cls.type != 0)
        std::printf(", `%s`", ValueCodecs::stringWithOSType(cls.type).c_str());
    if (cls.accepts.least == cls.accepts.most)
        std::printf(": %zu bytes.", cls.accepts.least);
    else if (cls.accepts.least != 0)
        std::printf(": %zu bytes or more.", cls.accepts.least);
    std::printf("\n\n");
    if (!cls.fields.empty()) {
        std::printf("| %s | bytes | property | holds |\n|---|---|---|---|\n",
                    cls.header == HeaderRule::None ? "at" : "behind the header");
        std::size_t at = 0;
        bool isAtKnown = true;
        for (std::size_t i = 0; i < cls.fields.size(); ++i) {
            const Field& row = cls.fields[i];
            // A property without bytes of its own is read in one of the rows that vary.
            const bool isInFile = row.decode != nullptr;
            std::printf("| %s | %s | %s | %s |\n",
                        isInFile && isAtKnown ? std::to_string(at).c_str() : "",
                        row.width != 0 ? std::to_string(row.width).c_str() : "",
                        row.name.empty() ? nameless(cls.fields, i).c_str()
                                         : ("`" + std::string(row.name) + "`").c_str(),
                        described(row).c_str());
            if (isInFile && row.width == 0) isAtKnown = false;
            if (isInFile) at += row.width;
        }
    }
    std::printf("*/\n");
}

}  // namespace
}  // namespace vexqt

int main() {
    for (const vexqt::AtomClass* cls : vexqt::testing::kAllClasses) vexqt::print(*cls);
}
