#include "apps/vexqt/completion.h"

#include "apps/vexqt/command_line.h"
#include "apps/vexqt/json_document.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/printable.h"
#include "apps/vexqt/value_text.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/asset/atom_classes.h"
#include "vexqt/atoms/metadata/keyed_items.h"

namespace vexqt::cli {

namespace {

constexpr std::size_t kMostRows = 20;

// MARK: What is offered

/// Prints what begins with the word that is there already.
class Offers {
public:
    Offers(std::string word, Output& out) : word_(std::move(word)), out_(&out) {}

    const std::string& word() const { return word_; }
    /// Stands in front of everything: "--absent=".
    void setPrefix(std::string prefix) { prefix_ = std::move(prefix); }

    void add(const std::string& candidate, std::string_view about = {}) {
        const bool isOnLine = printable(candidate) == candidate;
        if (!candidate.starts_with(word_) || !isOnLine) return;
        out_->write(prefix_ + candidate + '\t' + std::string(about) + '\n');
    }
    void addFiles() { out_->write(":files\n"); }

private:
    std::string word_, prefix_;
    Output* out_;
};

std::string shortened(const std::string& text) {
    static constexpr std::size_t kMost = 60;
    return text.size() <= kMost ? text : "";
}

// MARK: Paths

/// What a path on the command line is for.
enum class PathUse {
    Atom,    ///< "moov.trak"
    Get,     ///< "moov.mvhd.timeScale"
    Set,     ///< "moov.mvhd.timeScale=600"
    Absent,  ///< "moov.mvhd.creationDateTime", of what can be absent.
    Table    ///< "moov.trak.edts.elst.editListEntries[0]"
};

/// Where the last part of a path begins; a point in brackets parts nothing.
std::size_t lastPartOf(std::string_view path) {
    std::size_t begin = 0, depth = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] == '[') ++depth;
        if (path[i] == ']' && depth > 0) --depth;
        if (path[i] == '.' && depth == 0) begin = i + 1;
    }
    return begin;
}

/// Offers paths that go one step further than the word.
class PathOffers {
public:
    PathOffers(const VexQTAsset& asset, PathUse use, Offers& offers)
        : asset_(asset), use_(use), offers_(offers) {}

    void add() {
        const std::size_t part = lastPartOf(offers_.word());
        before_ = offers_.word().substr(0, part);
        part_ = offers_.word().substr(part);
        if (before_.empty()) return addAtoms(asset_.rootAtoms());
        const AtomPath path(before_.substr(0, before_.size() - 1));
        VexQTAtom* atom = nullptr;
        try {
            atom = &path.atomIn(asset_.rootAtoms());
        } catch (const PathError&) {
            return addColumns(path.propertyIn(asset_.rootAtoms()));
        }
        addAtoms(atom->children());
        if (use_ != PathUse::Atom) addProperties(*atom);
    }

private:
    void add(const std::string& part, std::string_view about) {
        offers_.add(before_ + part, about);
    }

    // Atoms.

    void addAtoms(const AtomPath::Atoms& atoms) {
        const std::vector<std::string> segments = AtomPath::segmentsOf(atoms);
        for (std::size_t i = 0; i < atoms.size(); ++i) addAtom(segments[i], *atoms[i]);
        if (part_.find('[') == std::string::npos) return;
        addMediaTypes(atoms);
        for (const auto& atom : atoms)
            if (const auto* items = dynamic_cast<const VexQTilstAtom*>(atom.get()))
                for (const auto& item : items->children())
                    if (const auto key = AtomPath::keyOf(*item))
                        addAtom(pathSegment(atom->atomType()) + '[' + *key + ']', *item);
    }

    void addAtom(const std::string& segment, const VexQTAtom& atom) {
        std::string about(atom.atomName());
        if (const auto media = AtomPath::mediaTypeOf(atom)) about += ", " + textFromCode(*media);
        if (use_ == PathUse::Atom) add(segment, about);
        if (use_ != PathUse::Atom || !atom.children().empty()) add(segment + '.', about);
    }

    /// trak[vide], trak[soun], trak[soun:1]
    void addMediaTypes(const AtomPath::Atoms& atoms) {
        std::vector<std::pair<OSType, OSType>> seen;
        for (const auto& atom : atoms) {
            const auto media = AtomPath::mediaTypeOf(*atom);
            if (!media) continue;
            const auto ordinal = std::ranges::count(seen, std::pair(atom->atomType(), *media));
            seen.emplace_back(atom->atomType(), *media);
            addAtom(pathSegment(atom->atomType()) + '[' + pathSegment(*media) +
                        (ordinal > 0 ? ':' + std::to_string(ordinal) : "") + ']',
                    *atom);
        }
    }

    // Properties.

    void addProperties(const VexQTAtom& atom) {
        for (const Field* property : atom.properties()) addProperty(atom, *property);
        if (part_.empty()) return;  // Those that every atom has are for who begins with them.
        for (const Field& property : VexQTAtom::commonProperties()) addProperty(atom, property);
    }

    void addProperty(const VexQTAtom& atom, const Field& property) {
        const std::string name(property.name);
        if (property.list != nullptr) return addTable(atom, property);
        if (use_ == PathUse::Table || property.get == nullptr) return;
        addValue(name, property, property.get(atom), property.set != nullptr);
    }

    void addValue(const std::string& name, const Field& field, const Value& value, bool canBeSet) {
        std::string about = shortened(readableText(field, value));
        if (!field.unit.empty() && !value.isAbsent()) about += ' ' + std::string(field.unit);
        if (use_ == PathUse::Get) add(name, about);
        if (use_ == PathUse::Set && canBeSet) add(name + '=', about);
        if (use_ == PathUse::Absent && canBeSet && field.isOptional) add(name, about);
    }

    void addTable(const VexQTAtom& atom, const Field& property) {
        const ListAccess& list = *property.list;
        const std::string name(property.name);
        const std::size_t rows = list.size(atom);
        const std::string about = std::to_string(rows) + (rows == 1 ? " row" : " rows");
        if (use_ == PathUse::Get || use_ == PathUse::Table) add(name, about);
        if (!part_.starts_with(name + '[')) {
            if (rows > 0) add(name + '[', about);
            return;
        }
        const bool isPlain = list.columns.size() == 1 && list.columns[0].name.empty();
        std::size_t offered = 0;
        for (std::size_t row = 0; row < rows && offered < kMostRows; ++row) {
            const std::string place = name + '[' + std::to_string(row) + ']';
            if (!place.starts_with(part_)) continue;
            ++offered;
            if (use_ == PathUse::Table) {
                add(place, "");
            } else if (isPlain) {
                addValue(place, list.columns[0], list.cell(atom, row, 0), true);
            } else {
                add(place + '.', "");
            }
        }
    }

    void addColumns(const PropertyPlace& place) {
        if (use_ == PathUse::Table || !place.row || place.column) return;
        const ListAccess& list = *place.property->list;
        for (std::size_t i = 0; i < list.columns.size(); ++i)
            addValue(std::string(list.columns[i].name), list.columns[i],
                     list.cell(*place.atom, *place.row, i), list.columns[i].set != nullptr);
    }

    const VexQTAsset& asset_;
    PathUse use_;
    Offers& offers_;
    std::string before_, part_;
};

/// The value that is there, to be changed.
void addValueOf(const std::string& key, const VexQTAsset& asset, Offers& offers) {
    const PropertyPlace place = AtomPath(key).propertyIn(asset.rootAtoms());
    if (!place.isSingle()) return;
    if (place.field().kind == ValueKind::Boolean) {
        offers.add(key + "=true");
        offers.add(key + "=false");
        return;
    }
    const std::string text = shortened(bareText(place.field(), place.value()));
    if (!text.empty() && !place.value().isAbsent()) offers.add(key + '=' + text, "as it is");
}

// MARK: The command line

/// The words of a command line, told apart as its command does.
class Line {
public:
    Line(std::span<const std::string> words, const CommandOutline& command, Console& console)
        : command_(command), console_(console), offers_(words.back(), console.out) {
        for (const std::string& word : words.first(words.size() - 1)) take(word);
    }

    void offer() {
        const std::string word = offers_.word();
        if (awaited_ != nullptr) return offerValue(*awaited_);
        if (!areOptionsOver_ && word.starts_with("--") && word.find('=') != std::string::npos)
            return offerAttachedValue(word);
        if (!areOptionsOver_ && word.starts_with('-')) {
            for (const CommandOutline::Option& option : command_.options)
                for (const std::string& name : option.names) offers_.add(name, option.about);
            if (word != "-") return;
        }
        offerOperand();
    }

private:
    using Option = CommandOutline::Option;

    const Option* optionNamed(std::string_view name) const {
        for (const Option& option : command_.options)
            if (std::ranges::count(option.names, name) > 0) return &option;
        return nullptr;
    }

    void take(const std::string& word) {
        if (awaited_ != nullptr) {
            awaited_ = nullptr;
        } else if (areOptionsOver_ || !word.starts_with('-') || word == "-") {
            operands_.push_back(word);
        } else if (word == "--") {
            areOptionsOver_ = true;
        } else {
            const std::string name = word.substr(0, word.find('='));
            const Option* option = optionNamed(name);
            if (option == nullptr) return;
            takesOnlyFiles_ = takesOnlyFiles_ || name == "--from";
            if (!option->value.empty() && name == word) awaited_ = option;
        }
    }

    void offerAttachedValue(const std::string& word) {
        const std::size_t equals = word.find('=');
        const Option* option = optionNamed(word.substr(0, equals));
        if (option == nullptr || option->value.empty()) return;
        Offers attached(word.substr(equals + 1), console_.out);
        attached.setPrefix(word.substr(0, equals + 1));
        offers_ = attached;
        offerValue(*option);
    }

    void offerValue(const Option& option) {
        if (option.value == "WHEN") {
            for (const char* when : {"auto", "always", "never"}) offers_.add(when);
        } else if (option.value == "PATH.KEY") {
            withMovie([&](const VexQTAsset& asset) {
                PathOffers(asset, PathUse::Absent, offers_).add();
            });
        } else if (option.value == "TYPE") {
            offerTypes();
        } else if (option.value != "N") {
            offers_.addFiles();
        }
    }

    /// The types in the container that stands on the line.
    void offerTypes() {
        if (operands_.size() < 2) return;
        withMovie([&](const VexQTAsset& asset) {
            std::vector<OSType> types;
            for (const auto& child : AtomPath(operands_[1]).atomIn(asset.rootAtoms()).children()) {
                if (std::ranges::count(types, child->atomType()) > 0) continue;
                types.push_back(child->atomType());
                offers_.add(pathSegment(child->atomType()), child->atomName());
            }
        });
    }

    void offerOperand() {
        if (!command_.takesFile) {
            if (operands_.empty()) offerClasses();
            return;
        }
        if (operands_.empty() || command_.takesSeveralFiles || takesOnlyFiles_)
            return offers_.addFiles();
        const std::string operand = nameOfOperand(operands_.size() - 1);
        if (operand == "ATOMFILE") return offers_.addFiles();
        withMovie([&](const VexQTAsset& asset) { offerFrom(asset, operand); });
    }

    void offerClasses() {
        for (const AtomClass* cls : atomClasses())
            offers_.add(std::string(cls->className), cls->atomName);
    }

    /// "PATH", "PATH.KEY=VALUE", "COLUMN=VALUE", as the help has it; empty behind the last.
    std::string nameOfOperand(std::size_t index) const {
        std::vector<std::string> names(1);
        for (const char c : command_.operands) {
            if (c == ' ') {
                names.emplace_back();
            } else {
                names.back() += c;
            }
        }
        if (index < names.size()) return names[index];
        return command_.repeatsLastOperand ? names.back() : "";
    }

    void offerFrom(const VexQTAsset& asset, const std::string& operand) {
        const auto is = [&](std::string_view name) { return operand.starts_with(name); };
        const std::string& word = offers_.word();
        if (is("PATH.KEY=")) {
            const std::size_t equals = word.find('=', lastPartOf(word));
            if (equals != std::string::npos)
                return addValueOf(word.substr(0, equals), asset, offers_);
            PathOffers(asset, PathUse::Set, offers_).add();
        } else if (is("PATH.KEY")) {
            PathOffers(asset, PathUse::Get, offers_).add();
        } else if (is("PATH.LIST")) {
            PathOffers(asset, PathUse::Table, offers_).add();
        } else if (is("PATH")) {
            PathOffers(asset, PathUse::Atom, offers_).add();
        } else if (is("KEY")) {
            offerKeys(asset, operand.find('=') != std::string::npos ? "=" : "");
        } else if (is("[COUNT") || is("[COLUMN")) {
            offerColumns(asset);
        }
    }

    /// The keys of the metadata whose path stands on the line.
    void offerKeys(const VexQTAsset& asset, std::string_view end) {
        const VexQTAtom& metadata = AtomPath(operands_[1]).atomIn(asset.rootAtoms());
        for (const auto& child : metadata.children())
            if (const auto* items = dynamic_cast<const VexQTilstAtom*>(child.get()))
                for (const auto& item : items->children())
                    if (const auto key = AtomPath::keyOf(*item))
                        offers_.add(*key + std::string(end));
    }

    void offerColumns(const VexQTAsset& asset) {
        if (command_.name != "insert-rows") return;
        const PropertyPlace place =
            AtomPath(operands_[1]).propertyIn(asset.rootAtoms(), AtomPath::Rows::ThereAndEnd);
        if (place.property->list == nullptr) return;
        for (const Field& column : place.property->list->columns)
            offers_.add(std::string(column.name) + '=', column.unit);
    }

    /// Nobody waits for a pipe at the press of a key, and nothing is said of what is wrong.
    template <class Work>
    void withMovie(Work&& work) {
        std::error_code ignored;
        if (operands_.empty() || !std::filesystem::is_regular_file(operands_[0], ignored)) return;
        TextOutput silence;
        Console quiet = {.out = silence, .err = silence};
        attempt(operands_[0], quiet, [&] {
            const auto asset = readMovie(operands_[0], {}, quiet);
            work(*asset);
        });
    }

    const CommandOutline& command_;
    Console& console_;
    Offers offers_;
    std::vector<std::string> operands_;
    const Option* awaited_ = nullptr;  ///< The option whose value comes next.
    bool areOptionsOver_ = false;
    bool takesOnlyFiles_ = false;
};

}  // namespace

ExitStatus complete(std::span<const std::string> words, Console& console) {
    const std::vector<CommandOutline> commands = commandOutlines();
    if (words.size() <= 1) {
        Offers offers(words.empty() ? "" : words.front(), console.out);
        for (const CommandOutline& command : commands)
            offers.add(std::string(command.name), command.does);
        for (const std::string option : {"--help", "--version"})
            if (offers.word().starts_with('-')) offers.add(option);
        return ExitStatus::Done;
    }
    const auto command = std::ranges::find(commands, words.front(), &CommandOutline::name);
    if (command != commands.end()) Line(words.subspan(1), *command, console).offer();
    return ExitStatus::Done;
}

}  // namespace vexqt::cli
