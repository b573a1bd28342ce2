#include "vexqt/asset/AtomPath.h"

#include <charconv>
#include <map>

#include "vexqt/atoms/metadata/keyed_items.h"
#include "vexqt/platform/did_you_mean.h"

namespace vexqt {

namespace {

// MARK: The parts of a path

bool isDecimal(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<std::size_t> ordinalFrom(std::string_view text) {
    std::size_t ordinal = 0;
    if (!isDecimal(text) ||
        std::from_chars(text.data(), text.data() + text.size(), ordinal).ec != std::errc())
        return std::nullopt;
    return ordinal;
}

/// The code that a part of a path stands for; absent where it can be none.
std::optional<OSType> codeFrom(std::string_view name) {
    if (name.size() == 10 && (name.starts_with("0x") || name.starts_with("0X"))) {
        OSType code = 0;
        const char* end = name.data() + name.size();
        const auto read = std::from_chars(name.data() + 2, end, code, 16);
        if (read.ec == std::errc() && read.ptr == end) return code;
    }
    std::string padded(name);
    for (int blanks = 0; blanks < 4; ++blanks) {
        const OSType code = codeFromText(padded);
        if (code != kAnyType || padded == "????") return code;
        padded += ' ';
    }
    return std::nullopt;
}

/// A media type and an ordinal among the atoms that have it: "soun", "soun:1".
struct MediaSelector {
    OSType type;
    std::size_t ordinal = 0;
};

std::optional<MediaSelector> mediaSelectorFrom(std::string_view text) {
    MediaSelector selector{};
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos) {
        if (const auto ordinal = ordinalFrom(text.substr(colon + 1))) {
            selector.ordinal = *ordinal;
            text = text.substr(0, colon);
        }
    }
    const auto code = codeFrom(text);
    if (!code) return std::nullopt;
    selector.type = *code;
    return selector;
}

// MARK: Telling what is there

std::string inQuotes(std::string_view text) { return "'" + std::string(text) + "'"; }

/// "a, b, c", and only so many that they fit on a line.
std::string listed(const std::vector<std::string>& names) {
    static constexpr std::size_t kMost = 24;
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < kMost; ++i)
        text += (i > 0 ? ", " : "") + names[i];
    if (names.size() > kMost) text += " and " + std::to_string(names.size() - kMost) + " more";
    return text;
}

std::vector<std::string> typesOf(const AtomPath::Atoms& atoms) {
    std::vector<std::string> types;
    for (const auto& atom : atoms) {
        std::string type = pathSegment(atom->atomType());
        if (std::ranges::find(types, type) == types.end()) types.push_back(std::move(type));
    }
    return types;
}

std::vector<std::string> namesOf(const std::vector<const Field*>& fields) {
    std::vector<std::string> names;
    for (const Field* field : fields) names.emplace_back(field->name);
    return names;
}

std::vector<std::string> namesOf(std::span<const Field> fields) {
    std::vector<std::string> names;
    for (const Field& field : fields) names.emplace_back(field.name);
    return names;
}

std::string howMany(std::size_t count) {
    return count == 1 ? "there is 1 " : "there are " + std::to_string(count) + ' ';
}

[[noreturn]] void namesNothing(const std::string& path, const std::string& why) {
    throw PathError(PathError::Reason::NamesNothing, path + ": " + why);
}

}  // namespace

// MARK: Values

Value PropertyPlace::value() const {
    if (row && column) return property->list->cell(*atom, *row, *column);
    return property->get != nullptr ? property->get(*atom) : Value();
}

bool PropertyPlace::canBeSet() const {
    if (!isSingle()) return false;
    const bool isPlainRow = row && field().name.empty();
    return isPlainRow || field().set != nullptr;
}

void PropertyPlace::setValue(const Value& value) const {
    if (!isSingle()) throw ValueError("a table has no value of its own, its cells have");
    if (!canBeSet()) throw ValueError(std::string(field().name) + " cannot be set");
    if (row) return property->list->setCell(*atom, *row, *column, value);
    property->set(*atom, value);
}

// MARK: Parsing

AtomPath::AtomPath(std::string_view text) {
    const auto malformed = [text](const std::string& why) {
        throw PathError(PathError::Reason::Malformed, inQuotes(text) + " is no path: " + why);
    };
    if (text.empty()) malformed("it is empty");
    std::size_t at = 0;
    while (true) {
        const std::size_t nameEnd = std::min(text.find_first_of(".[]", at), text.size());
        Segment segment = {.name = std::string(text.substr(at, nameEnd - at)), .selector = {}};
        if (segment.name.empty()) malformed("a name is missing at " + std::to_string(at + 1));
        at = nameEnd;
        if (at < text.size() && text[at] == '[') {
            // A bracket inside the brackets does not close them.
            std::size_t end = text.find(']', at);
            while (end != std::string_view::npos && end + 1 < text.size() && text[end + 1] != '.')
                end = text.find(']', end + 1);
            if (end == std::string_view::npos) malformed("a bracket is not closed");
            segment.selector = std::string(text.substr(at + 1, end - at - 1));
            if (segment.selector->empty()) malformed("there is nothing in the brackets");
            at = end + 1;
        }
        segments_.push_back(std::move(segment));
        if (at == text.size()) return;
        if (text[at] != '.') malformed("a bracket is not opened");
        ++at;
    }
}

// MARK: Walking

/// One path on its way through one movie.
class AtomPath::Walk {
public:
    Walk(const AtomPath& path, const Atoms& roots, Rows rows = Rows::There)
        : segments_(path.segments_), roots_(roots), rows_(rows) {}

    AtomPlace toAtom() {
        while (next_ < segments_.size()) step();
        return {.atom = atom_, .holder = holder_, .root = root_};
    }

    PropertyPlace toProperty() {
        while (!isProperty()) {
            if (next_ == segments_.size()) namesNoProperty();
            step();
        }
        return property();
    }

private:
    const Segment& segment() const { return segments_[next_]; }
    const Atoms& below() const { return atom_ != nullptr ? atom_->children() : roots_; }
    std::string where() const { return walked_.empty() ? "the movie" : walked_; }

    /// The path up to and with the segment that comes next.
    std::string path() const {
        std::string path = walked_ + (walked_.empty() ? "" : ".") + segment().name;
        if (segment().selector) path += '[' + *segment().selector + ']';
        return path;
    }

    /// Every child that the next segment's name stands for.
    std::vector<VexQTAtom*> named() const {
        std::vector<VexQTAtom*> found;
        const auto collect = [&](auto&& matches) {
            if (!found.empty()) return;
            for (const auto& atom : below())
                if (matches(*atom)) found.push_back(atom.get());
        };
        if (const auto code = codeFrom(segment().name)) {
            collect([&](const VexQTAtom& atom) { return atom.atomType() == *code; });
            // Some atoms have another type when they are read than in the file.
            collect([&](const VexQTAtom& atom) {
                return *code != kAnyType && atom.atomClass().type == *code;
            });
        }
        collect([&](const VexQTAtom& atom) { return atom.atomTypeString() == segment().name; });
        return found;
    }

    void step() {
        const std::vector<VexQTAtom*> found = named();
        if (found.empty()) namesNoAtom();
        holder_ = atom_;
        atom_ = found.front();
        if (segment().selector) select(found);
        if (holder_ == nullptr) root_ = atom_;
        walked_ = path();
        ++next_;
    }

    /// Goes to the one that the selector means; an item of keyed metadata lies one step deeper.
    void select(const std::vector<VexQTAtom*>& found) {
        const std::string& selector = *segment().selector;
        if (isDecimal(selector)) {
            atom_ = withOrdinal(found, selector);
        } else if (auto* items = dynamic_cast<VexQTilstAtom*>(found.front())) {
            atom_ = withKey(*items, selector);
            if (holder_ == nullptr) root_ = items;
            holder_ = items;
        } else {
            atom_ = withMediaType(found, selector);
        }
    }

    VexQTAtom* withOrdinal(const std::vector<VexQTAtom*>& found,
                           const std::string& selector) const {
        const auto ordinal = ordinalFrom(selector);
        if (ordinal && *ordinal < found.size()) return found[*ordinal];
        namesNothing(path(), howMany(found.size()) + inQuotes(segment().name) + " in " + where() +
                                 ", and the first is [0]");
    }

    VexQTAtom* withKey(const VexQTilstAtom& items, const std::string& selector) const {
        if (VexQTAtom* item = itemWithKey(items, selector)) return item;
        std::vector<std::string> keys;
        for (const auto& item : items.children())
            if (auto key = keyOf(*item)) keys.push_back(std::move(*key));
        namesNothing(path(), keys.empty() ? "these items have no keys, only codes"
                                          : "no such key, only " + listed(keys) +
                                                didYouMean(selector, keys));
    }

    VexQTAtom* withMediaType(const std::vector<VexQTAtom*>& found,
                             const std::string& selector) const {
        const auto wanted = mediaSelectorFrom(selector);
        std::vector<std::string> types;
        std::size_t ofWantedType = 0;
        for (VexQTAtom* atom : found) {
            const auto type = mediaTypeOf(*atom);
            if (wanted && type == wanted->type && ofWantedType++ == wanted->ordinal) return atom;
            if (type) types.push_back(pathSegment(*type));
        }
        const std::string name = inQuotes(segment().name);
        if (types.empty()) namesNothing(path(), name + " has no media types to choose from");
        if (ofWantedType > 0)
            namesNothing(path(),
                         howMany(ofWantedType) + name + " of this media type, and the first is :0");
        namesNothing(path(),
                     "no such media type, only " + listed(types) + didYouMean(selector, types));
    }

    [[noreturn]] void namesNoAtom() const {
        const std::vector<std::string> types = typesOf(below());
        if (atom_ != nullptr && types.empty()) {
            const std::vector<std::string> properties = namesOf(atom_->properties());
            namesNothing(path(),
                         where() + " has no atoms" +
                             (properties.empty() ? std::string() : ", only " + listed(properties)) +
                             didYouMean(segment().name, properties));
        }
        namesNothing(path(), "no " + inQuotes(segment().name) + " in " + where() + ", only " +
                                 listed(types) + didYouMean(segment().name, types));
    }

    // The last part is a property. So is the last but one where its atom has no child of that name,
    // and then the last one is a column.
    bool isProperty() const {
        if (atom_ == nullptr || next_ >= segments_.size()) return false;
        const std::size_t left = segments_.size() - next_;
        if (left > 2 || atom_->propertyNamed(segment().name) == nullptr)
            return left == 1 && named().empty();
        return left == 1 || named().empty();
    }

    PropertyPlace property() {
        PropertyPlace place;
        place.atom = atom_;
        place.root = root_;
        place.property = atom_->propertyNamed(segment().name);
        if (place.property == nullptr) namesNoProperty();
        const ListAccess* list = place.property->list;
        if (segment().selector) {
            if (list == nullptr) namesNothing(path(), segment().name + " is no table");
            place.row = ordinalFrom(*segment().selector);
            const std::size_t rows = list->size(*atom_);
            const std::size_t end = rows + (rows_ == Rows::ThereAndEnd ? 1 : 0);
            if (!place.row || *place.row >= end)
                namesNothing(path(),
                             rows == 0 ? "the table is empty"
                                       : "the rows are [0] to [" + std::to_string(rows - 1) + ']');
            if (list->columns.size() == 1 && list->columns[0].name.empty()) place.column = 0;
        }
        walked_ = path();
        if (++next_ < segments_.size()) place.column = column(place);
        return place;
    }

    std::size_t column(const PropertyPlace& place) const {
        const std::string_view name = place.property->name;
        if (place.property->list == nullptr)
            namesNothing(path(), std::string(name) + " is one value");
        if (!place.row)
            namesNothing(path(),
                         "a row is missing: " + std::string(name) + "[0]." + segment().name);
        const std::span<const Field> columns = place.property->list->columns;
        if (place.column)
            namesNothing(path(), "the rows of " + std::string(name) + " have no columns");
        const auto found = std::ranges::find(columns, segment().name, &Field::name);
        if (found == columns.end() || segment().selector) {
            const std::vector<std::string> names = namesOf(columns);
            namesNothing(path(), "no such column, only " + listed(names) +
                                     didYouMean(segment().name, names));
        }
        return static_cast<std::size_t>(found - columns.begin());
    }

    [[noreturn]] void namesNoProperty() const {
        if (next_ == segments_.size()) {
            const std::vector<std::string> names = namesOf(atom_->properties());
            namesNothing(walked_,
                         "this is an atom, not a value" +
                             (names.empty() ? std::string() : "; it has " + listed(names)));
        }
        std::vector<std::string> names = namesOf(atom_->properties());
        std::string why = where() + " has no property " + inQuotes(segment().name);
        if (!names.empty()) why += ", only " + listed(names);
        for (const std::string& type : typesOf(below())) names.push_back(type);
        for (const std::string& name : namesOf(VexQTAtom::commonProperties()))
            names.push_back(name);
        namesNothing(path(), why + didYouMean(segment().name, names));
    }

    const std::vector<Segment>& segments_;
    const Atoms& roots_;
    const Rows rows_;
    std::size_t next_ = 0;  ///< The first segment that was not walked yet.
    VexQTAtom* atom_ = nullptr;
    VexQTAtom* holder_ = nullptr;
    VexQTAtom* root_ = nullptr;
    std::string walked_;
};

AtomPlace AtomPath::placeIn(const Atoms& roots) const { return Walk(*this, roots).toAtom(); }

PropertyPlace AtomPath::propertyIn(const Atoms& roots, Rows rows) const {
    return Walk(*this, roots, rows).toProperty();
}

// MARK: The way back

std::vector<std::string> AtomPath::segmentsOf(const Atoms& siblings) {
    std::map<OSType, std::size_t> ordinals;
    std::vector<std::string> segments;
    for (const auto& atom : siblings) {
        const std::size_t ordinal = ordinals[atom->atomType()]++;
        segments.push_back(pathSegment(atom->atomType()));
        if (ordinal > 0) segments.back() += '[' + std::to_string(ordinal) + ']';
    }
    return segments;
}

std::string AtomPath::of(const VexQTAtom& atom, const Atoms& roots) {
    const auto pathBelow = [&](const Atoms& atoms, const auto& self) -> std::string {
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (atoms[i].get() == &atom) return segmentsOf(atoms)[i];
            const std::string below = self(atoms[i]->children(), self);
            if (!below.empty()) return segmentsOf(atoms)[i] + '.' + below;
        }
        return {};
    };
    return pathBelow(roots, pathBelow);
}

std::optional<std::string> AtomPath::keyOf(const VexQTAtom& atom) {
    const auto* item = dynamic_cast<const VexQTMetadataItem*>(&atom);
    const VexQTKeyEntry* key = item != nullptr ? keyOfItem(*item) : nullptr;
    return key != nullptr ? key->value() : std::nullopt;
}

std::optional<OSType> AtomPath::mediaTypeOf(const VexQTAtom& atom) {
    const auto own = [](const VexQTAtom& owner) -> std::optional<OSType> {
        if (owner.propertyNamed("mediaType") == nullptr) return std::nullopt;
        const auto type = integerFrom(owner.valueForKey("mediaType"));
        return type ? std::optional(static_cast<OSType>(*type)) : std::nullopt;
    };
    if (const auto type = own(atom)) return type;
    for (const auto& child : atom.children())
        if (const auto type = own(*child)) return type;
    return std::nullopt;
}

}  // namespace vexqt
