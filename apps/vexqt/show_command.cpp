// Atoms for people: names, units, tables with aligned columns.
#include <fmt/format.h>

#include "apps/vexqt/commands.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/printable.h"
#include "apps/vexqt/value_text.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/core/full_atom.h"

namespace vexqt::cli {

namespace {

// MARK: Text

/// "1,234,567"
std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, ",");
    return digits;
}

std::string counted(std::uint64_t number, std::string_view what) {
    return fmt::format("{} {}{}", grouped(number), what, number == 1 ? "" : "s");
}

std::string padded(std::string_view text, std::size_t columns) {
    const std::size_t taken = columnsOf(text);
    return std::string(text) + std::string(columns > taken ? columns - taken : 0, ' ');
}

std::string rightAligned(std::string_view text, std::size_t columns) {
    const std::size_t taken = columnsOf(text);
    return std::string(columns > taken ? columns - taken : 0, ' ') + std::string(text);
}

/// At most so many characters, with a mark where some were left out.
std::string shortened(const std::string& text, std::size_t most) {
    std::size_t end = 0;
    for (std::size_t characters = 0; end < text.size() && characters < most; ++characters)
        end += std::max<std::size_t>(lengthOfCharacter(std::string_view(text).substr(end)), 1);
    return end >= text.size() ? text : text.substr(0, end) + "…";
}

std::string position(std::uint64_t offset) {
    return fmt::format("{} (0x{:X})", grouped(offset), offset);
}

// MARK: The page

/// Shows atoms one below the other.
class Page {
public:
    Page(const VexQTAsset& asset, const Arguments& arguments, Console& console)
        : asset_(asset),
          out_(console.out),
          hasColors_(console.hasColors),
          showsEverything_(arguments.everyRow) {}

    void showMovie(const std::string& file) {
        line(bold(printable(file)));
        const bool isValid = asset_.valueForKey("isValid") == Value(true);
        label("brand accepted", isValid ? "yes" : "no");
        std::uint64_t atoms = 0;
        for (const auto& root : asset_.rootAtoms()) atoms += count(*root);
        label("atoms", grouped(atoms));
        if (!asset_.problems().empty())
            label("problems",
                  fmt::format("{}, listed on standard error", grouped(asset_.problems().size())));
        line();
        showTree(asset_.rootAtoms(), Depth::All);
    }

    void showAtom(const VexQTAtom& atom, const std::string& path) {
        labelColumns_ = kFewestLabelColumns;
        for (const Field* property : atom.properties())
            labelColumns_ = std::max(labelColumns_, property->name.size());
        showHeading(atom, path);
        showProperties(atom);
        if (const auto bytes = atom.unknownBytes()) showBytes("raw data", *bytes);
        if (atom.children().empty()) return;
        line();
        line("  " + dim(fmt::format("contains {}", counted(atom.children().size(), "atom"))));
        showTree(atom.children(), Depth::One);
    }

    void showAtomAndAllBelow(const VexQTAtom& atom, const std::string& path) {
        showAtom(atom, path);
        const std::vector<std::string> segments = AtomPath::segmentsOf(atom.children());
        for (std::size_t i = 0; i < segments.size(); ++i) {
            line();
            showAtomAndAllBelow(*atom.children()[i], path + '.' + segments[i]);
        }
    }

private:
    static constexpr std::size_t kFewestLabelColumns = 22;
    static constexpr std::size_t kFirstRows = 10, kLastRows = 3;
    static constexpr std::size_t kBytesOnLine = 16, kHexLines = 4;
    static constexpr std::size_t kLongestText = 240;
    enum class Depth { One, All };

    std::string colored(std::string_view code, std::string_view text) const {
        return hasColors_ ? fmt::format("\x1B[{}m{}\x1B[0m", code, text) : std::string(text);
    }
    std::string bold(std::string_view text) const { return colored("1", text); }
    std::string dim(std::string_view text) const { return colored("2", text); }
    std::string typeColored(std::string_view text) const { return colored("36", text); }

    void line(std::string_view text = {}) {
        // Padding belongs between columns, not behind the last one.
        while (text.ends_with(' ')) text.remove_suffix(1);
        out_.write(text);
        out_.write("\n");
    }
    void label(std::string_view name, std::string_view value, std::string_view note = {}) {
        line("  " + padded(name, labelColumns_) + "  " + std::string(value) +
             (note.empty() ? std::string() : "  " + dim(note)));
    }

    // Atoms.

    static std::uint64_t count(const VexQTAtom& atom) {
        std::uint64_t atoms = 1;
        for (const auto& child : atom.children()) atoms += count(*child);
        return atoms;
    }

    /// Versions and flags mean something only where the class reads them.
    static bool reads(const VexQTAtom& atom, void (*part)(Record&, AtomReader&)) {
        return std::ranges::find(atom.atomClass().fields, part, &Field::decode) !=
               atom.atomClass().fields.end();
    }

    void showHeading(const VexQTAtom& atom, const std::string& path) {
        line(bold(printable(atom.atomName())) + "  " +
             typeColored("'" + printable(atom.atomTypeString()) + "'"));
        label("path", path);
        if (const auto key = AtomPath::keyOf(atom)) label("key", printable(*key));
        label("class", atom.atomClass().className);
        if (const auto declined = atom.declinedClass())
            label("kept as raw data",
                  fmt::format("declined by {}: {}", *declined, printable(atom.declinedReason())));
        label("size", counted(atom.atomSize(), "byte"));
        const Extent extent = atom.extent();
        if (extent.length > 0)
            label(
                "position",
                fmt::format("{} to {}", position(extent.start),
                            position(extent.start + extent.length)),
                extent.headerLength == 8 ? "" : fmt::format("{}-byte header", extent.headerLength));
        const std::string flags =
            fmt::format("0x{:02X}{:02X}{:02X}", atom.flags0(), atom.flags1(), atom.flags2());
        if (reads(atom, rows::readVersion)) label("version", std::to_string(atom.version()));
        if (reads(atom, rows::readFlags) || flags != "0x000000") label("flags", flags);
    }

    void showTree(const AtomPath::Atoms& atoms, Depth depth) {
        struct Line {
            std::string type, name, size, at;
        };
        std::vector<Line> lines;
        const auto collect = [&](const AtomPath::Atoms& level, std::size_t indent,
                                 const auto& self) -> void {
            for (const auto& atom : level) {
                std::string name = printable(atom->atomName());
                if (const auto key = AtomPath::keyOf(*atom)) name += " " + printable(*key);
                if (const auto declined = atom->declinedClass())
                    name += ", declined by " + *declined;
                const Extent extent = atom->extent();
                lines.push_back({std::string(2 * indent, ' ') + printable(atom->atomTypeString()),
                                 std::move(name), grouped(atom->atomSize()),
                                 extent.length > 0 ? grouped(extent.start) : ""});
                if (depth == Depth::All) self(atom->children(), indent + 1, self);
            }
        };
        collect(atoms, 1, collect);
        Line widest = {"    type", "name", "size", "at"};
        lines.insert(lines.begin(), widest);
        std::size_t type = 0, name = 0, size = 0, at = 0;
        for (const Line& each : lines) {
            type = std::max(type, columnsOf(each.type));
            name = std::max(name, columnsOf(each.name));
            size = std::max(size, columnsOf(each.size));
            at = std::max(at, columnsOf(each.at));
        }
        for (const Line& each : lines) {
            const bool isHeader = &each == &lines.front();
            const std::string code = padded(isHeader ? "  type" : each.type, type);
            const std::string rest = "  " + padded(each.name, name) + "  " +
                                     rightAligned(each.size, size) + "  " +
                                     rightAligned(each.at, at);
            line(isHeader ? dim(code + rest) : typeColored(code) + rest);
        }
    }

    // Properties.

    void showProperties(const VexQTAtom& atom) {
        const std::vector<const Field*> properties = atom.properties();
        if (!properties.empty()) line();
        for (const Field* property : properties) {
            if (property->list != nullptr) {
                showTable(atom, *property);
            } else {
                showValue(*property, property->get != nullptr ? property->get(atom) : Value());
            }
        }
    }

    void showValue(const Field& property, const Value& value) {
        if (const auto* bytes = std::get_if<Bytes>(&value)) return showBytes(property.name, *bytes);
        if (const auto* matrix = std::get_if<Matrix>(&value))
            return showMatrix(property.name, *matrix);
        if (value.isAbsent()) return label(property.name, dim("absent"));
        const std::string text = readableText(property, value);
        label(property.name, showsEverything_ ? text : shortened(text, kLongestText),
              property.unit);
    }

    void showMatrix(std::string_view name, const Matrix& matrix) {
        static constexpr std::size_t kSide = 3;
        std::array<std::string, 9> texts;
        for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = fmt::format("{}", matrix[i]);
        for (std::size_t row = 0; row < kSide; ++row) {
            std::string text;
            for (std::size_t column = 0; column < kSide; ++column) {
                std::size_t width = 0;
                for (std::size_t i = column; i < texts.size(); i += kSide)
                    width = std::max(width, texts[i].size());
                text += rightAligned(texts[row * kSide + column], width) + "  ";
            }
            label(row == 0 ? name : "", text);
        }
    }

    void showBytes(std::string_view name, ByteView bytes) {
        label(name, counted(bytes.size(), "byte"));
        const std::size_t most = showsEverything_ ? bytes.size() : kBytesOnLine * kHexLines;
        for (std::size_t at = 0; at < std::min(bytes.size(), most); at += kBytesOnLine) {
            const ByteView part = bytes.subspan(at, std::min(kBytesOnLine, bytes.size() - at));
            line(fmt::format("    {}  {}  {}", dim(fmt::format("{:08X}", at)),
                             padded(hexRepresentation(part), 3 * kBytesOnLine),
                             asciiRepresentation(part)));
        }
        if (bytes.size() > most)
            line("    " + dim(fmt::format("… {}, shown with --all",
                                          counted(bytes.size() - most, "more byte"))));
    }

    // Tables.

    static std::string cellText(const VexQTAtom& atom, const ListAccess& list, std::size_t row,
                                std::size_t column) {
        const Value value = list.cell(atom, row, column);
        return value.isAbsent() ? "-" : readableText(list.columns[column], value);
    }

    void showTable(const VexQTAtom& atom, const Field& property) {
        const ListAccess& list = *property.list;
        const std::size_t count = list.size(atom);
        label(property.name, counted(count, "row"), property.unit);
        if (count == 0) return;
        const bool showsAll = showsEverything_ || count <= kFirstRows + kLastRows;
        const std::size_t firstRows = showsAll ? count : kFirstRows;
        const std::size_t lastRow = showsAll ? count : count - kLastRows;
        const auto forEachShown = [&](auto&& work) {
            for (std::size_t row = 0; row < firstRows; ++row) work(row);
            for (std::size_t row = lastRow; row < count; ++row) work(row);
        };

        struct Column {
            std::string name;
            std::size_t width;
            bool isNumeric;
        };
        std::vector<Column> columns;
        for (const Field& field : list.columns) {
            std::string name(field.name);
            if (!field.unit.empty())
                name += fmt::format("{}({})", name.empty() ? "" : " ", field.unit);
            columns.push_back({name, columnsOf(name), field.isNumeric()});
        }
        forEachShown([&](std::size_t row) {
            for (std::size_t i = 0; i < columns.size(); ++i)
                columns[i].width =
                    std::max(columns[i].width, columnsOf(cellText(atom, list, row, i)));
        });
        const std::size_t rowWidth = std::max<std::size_t>(3, std::to_string(count - 1).size());
        const auto aligned = [](const Column& column, std::string_view text) {
            return "  " + (column.isNumeric ? rightAligned(text, column.width)
                                            : padded(text, column.width));
        };

        std::string header = rightAligned("row", rowWidth);
        for (const Column& column : columns) header += aligned(column, column.name);
        line("    " + dim(header));
        forEachShown([&](std::size_t row) {
            if (!showsAll && row == lastRow)
                line("    " +
                     dim(fmt::format("{}  {}, shown with --all", rightAligned("…", rowWidth),
                                     counted(lastRow - firstRows, "more row"))));
            std::string text = dim(rightAligned(std::to_string(row), rowWidth));
            for (std::size_t i = 0; i < columns.size(); ++i)
                text += aligned(columns[i], cellText(atom, list, row, i));
            line("    " + text);
        });
    }

    const VexQTAsset& asset_;
    Output& out_;
    bool hasColors_, showsEverything_;
    std::size_t labelColumns_ = kFewestLabelColumns;
};

}  // namespace

ExitStatus show(const Arguments& arguments, Console& console) {
    return attempt(arguments.file(), console, [&] {
        std::optional<AtomPath> path;
        if (!arguments.operands.empty()) path.emplace(arguments.operands.front());
        const auto asset = readMovie(arguments.file(), arguments, console);
        Page page(*asset, arguments, console);
        if (path) {
            const VexQTAtom& atom = path->atomIn(asset->rootAtoms());
            const std::string canonical = AtomPath::of(atom, asset->rootAtoms());
            return arguments.recursive ? page.showAtomAndAllBelow(atom, canonical)
                                       : page.showAtom(atom, canonical);
        }
        page.showMovie(arguments.file());
        if (!arguments.recursive) return;
        const std::vector<std::string> segments = AtomPath::segmentsOf(asset->rootAtoms());
        for (std::size_t i = 0; i < segments.size(); ++i) {
            console.out.write("\n");
            page.showAtomAndAllBelow(*asset->rootAtoms()[i], segments[i]);
        }
    });
}

}  // namespace vexqt::cli
