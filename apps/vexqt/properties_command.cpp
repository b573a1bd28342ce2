// What the classes of atoms say of themselves.
#include <fmt/format.h>

#include "apps/vexqt/JsonWriter.h"
#include "apps/vexqt/commands.h"
#include "vexqt/asset/atom_classes.h"
#include "vexqt/core/VexQTAtom.h"
#include "vexqt/platform/did_you_mean.h"

namespace vexqt::cli {

namespace {

/// The version of the document. It grows when a member goes or means something else, not when one
/// is added.
constexpr std::uint64_t kVersion = 1;

bool isList(const Field& field) { return field.list != nullptr; }

bool isPlainList(const ListAccess& list) {
    return list.columns.size() == 1 && list.columns[0].name.empty();
}

/// Of an integer or a floating number; 0 for everything else. A field may have fewer in the file.
std::size_t bitsOf(const Field& field) {
    const bool hasBits = field.kind == ValueKind::Unsigned || field.kind == ValueKind::Signed ||
                         field.kind == ValueKind::Floating;
    if (!hasBits || field.display == Display::Code) return 0;
    const bool isNarrower = field.width != 0 && 8 * field.width < field.bits;
    return field.kind != ValueKind::Floating && isNarrower ? 8 * field.width : field.bits;
}

/// Cells of a plain list have no field of their own to be set by.
bool canBeSet(const Field& field) {
    return isList(field) || field.set != nullptr || field.name.empty();
}

struct Described {
    const AtomClass* cls;
    std::vector<const Field*> properties;
};

Described described(const AtomClass& cls) { return {&cls, cls.create()->properties()}; }

/// All of them where nothing is asked for.
std::vector<Described> classesNamed(const std::vector<std::string>& operands) {
    std::vector<Described> found;
    std::vector<std::string> names;
    for (const AtomClass* cls : atomClasses()) {
        const std::string type = textFromCode(cls->type);
        names.emplace_back(cls->className);
        names.push_back(type);
        if (operands.empty() || operands[0] == cls->className || operands[0] == type)
            found.push_back(described(*cls));
    }
    if (found.empty())
        throw Failure("no class '" + operands[0] + "'" + didYouMean(operands[0], names),
                      ExitStatus::WrongUsage);
    return found;
}

bool hasType(const AtomClass& cls) { return cls.type != 0 && cls.type != kAnyType; }

// MARK: For programs

void writeMembers(JsonWriter& json, const Field& field) {
    const auto text = [&](std::string_view key, std::string_view value) {
        json.key(key);
        json.text(value);
    };
    text("type", typeName(field));
    if (const std::size_t bits = bitsOf(field)) {
        json.key("bits");
        json.number(std::uint64_t{bits});
    }
    if (!field.unit.empty()) text("unit", field.unit);
    json.key("canBeSet");
    json.boolean(canBeSet(field));
    json.key("canBeAbsent");
    json.boolean(field.isOptional);
}

void writeProperty(JsonWriter& json, const Field& field) {
    json.beginObject(isList(field) ? JsonWriter::Form::Spread : JsonWriter::Form::Inline);
    json.key("name");
    json.text(field.name);
    writeMembers(json, field);
    if (isList(field) && isPlainList(*field.list)) {
        json.key("element");
        json.beginObject(JsonWriter::Form::Inline);
        writeMembers(json, field.list->columns[0]);
        json.endObject();
    } else if (isList(field)) {
        json.key("columns");
        json.beginArray();
        for (const Field& column : field.list->columns) writeProperty(json, column);
        json.endArray();
    }
    json.endObject();
}

void writeJson(Output& out, const std::vector<Described>& classes) {
    JsonWriter json(out, JsonWriter::Layout::Indented);
    json.beginObject();
    json.key("version");
    json.number(kVersion);
    json.key("common");
    json.beginArray();
    for (const Field& field : VexQTAtom::commonProperties()) writeProperty(json, field);
    json.endArray();
    json.key("classes");
    json.beginArray();
    for (const auto& [cls, properties] : classes) {
        json.beginObject();
        json.key("class");
        json.text(cls->className);
        json.key("type");
        hasType(*cls) ? json.text(textFromCode(cls->type)) : json.null();
        json.key("name");
        json.text(cls->atomName);
        json.key("properties");
        json.beginArray();
        for (const Field* field : properties) writeProperty(json, *field);
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    out.write("\n");
}

// MARK: For people

void print(Output& out, const Field& field, const std::string& name) {
    static constexpr std::size_t kNameColumns = 36, kTypeColumns = 18;
    std::string type(typeName(field));
    if (const std::size_t bits = bitsOf(field)) type += fmt::format(", {} bits", bits);
    std::string notes(field.unit);
    const auto note = [&](std::string_view more) {
        notes += (notes.empty() ? "" : ", ") + std::string(more);
    };
    if (field.isOptional) note("can be absent");
    if (!canBeSet(field)) note("cannot be set");
    std::string line =
        fmt::format("  {:<{}}  {:<{}}  {}", name, kNameColumns, type, kTypeColumns, notes);
    line.erase(line.find_last_not_of(' ') + 1);
    out.write(line + "\n");
    if (!isList(field)) return;
    for (const Field& column : field.list->columns)
        print(out, column,
              name + "[]" + (column.name.empty() ? "" : ".") + std::string(column.name));
}

void print(Output& out, const std::vector<Described>& classes, bool isEveryClass) {
    if (isEveryClass) {
        out.write("every atom\n");
        for (const Field& field : VexQTAtom::commonProperties())
            print(out, field, std::string(field.name));
    }
    bool isFirst = !isEveryClass;
    for (const auto& [cls, properties] : classes) {
        if (isEveryClass && properties.empty()) continue;
        if (!isFirst) out.write("\n");
        isFirst = false;
        out.write(std::string(cls->className) + "  " +
                  (hasType(*cls) ? "'" + textFromCode(cls->type) + "'  " : "") +
                  std::string(cls->atomName) + "\n");
        for (const Field* field : properties) print(out, *field, std::string(field->name));
        if (properties.empty()) out.write("  nothing but what every atom has\n");
    }
}

}  // namespace

ExitStatus properties(const Arguments& arguments, Console& console) {
    try {
        const std::vector<Described> classes = classesNamed(arguments.operands);
        if (arguments.asJson) {
            writeJson(console.out, classes);
        } else {
            print(console.out, classes, arguments.operands.empty());
        }
        return ExitStatus::Done;
    } catch (const Failure& failure) {
        console.complain(failure.what());
        return failure.status();
    }
}

}  // namespace vexqt::cli
