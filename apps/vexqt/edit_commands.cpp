// The commands that change a movie.
//
// What a command is told is looked up in the movie before anything is changed, so that a path means
// what it meant in the file, and so that a command which fails has changed nothing.
#include <charconv>
#include <map>

#include "apps/vexqt/Assignment.h"
#include "apps/vexqt/commands.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/set_from.h"
#include "apps/vexqt/value_text.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/atoms/metadata/keyed_items.h"
#include "vexqt/platform/Picture.h"
#include "vexqt/platform/did_you_mean.h"

namespace vexqt::cli {

namespace {

/// The classes' own way of saving writes nothing but the movie atom.
void requireSaved(const Arguments& arguments, const VexQTAsset& asset, const VexQTAtom* root,
                  std::string_view path) {
    if (!arguments.exact) return;
    const VexQTAtom* written = nullptr;
    for (const auto& candidate : asset.rootAtoms())
        if (candidate->atomType() == "moov"_os) written = candidate.get();
    if (root != written)
        throw Failure(std::string(path) + ": with --exact only what is in the movie atom is saved" +
                      (root->atomType() == "moov"_os ? ", in the last one of several" : ""));
}

// MARK: Values

/// The files that a command takes values and atoms from. Each is read once, although a change may
/// be made twice.
class Inputs {
public:
    Inputs(const Arguments& arguments, Console& console)
        : isInputTaken_(arguments.file() == "-" || arguments.isInputTaken), console_(console) {}

    const Bytes& bytesOf(const std::string& file) {
        const auto known = read_.find(file);
        if (known != read_.end()) return known->second;
        if (file == "-" && isInputTaken_)
            throw Failure("standard input can be read only once", ExitStatus::WrongUsage);
        try {
            return read_.emplace(file, readAll(file, console_)).first->second;
        } catch (const Failure& failure) {
            throw Failure(file + ": " + failure.what());
        }
    }

private:
    bool isInputTaken_;
    Console& console_;
    std::map<std::string, Bytes> read_;
};

/// What a text stands for; @FILE stands for what a file holds where bytes or a picture are wanted.
Value parsed(const Field& field, const std::string& text, Inputs& inputs) {
    if (text.starts_with('@')) {
        const std::string file = text.substr(1);
        if (field.kind == ValueKind::Data) return inputs.bytesOf(file);
        if (field.kind == ValueKind::Picture) {
            const auto picture = Picture::decode(inputs.bytesOf(file));
            if (!picture) throw Failure(file + " is no JPEG, PNG or BMP that can be read");
            return *picture;
        }
    }
    return valueFromText(field, text);
}

/// A picture file of the format that an atom holds is kept as it is, not encoded once more.
void keepEncoding(VexQTAtom& atom, const Bytes& bytes) {
    struct Kind {
        PictureFormat format;
        std::string_view name;
    };
    static constexpr Kind kKinds[] = {{PictureFormat::JPEG, VexQTDataAtomType_JPEGImage},
                                      {PictureFormat::PNG, VexQTDataAtomType_PNGImage},
                                      {PictureFormat::BMP, VexQTDataAtomType_BMPImage}};
    const auto* kind = std::ranges::find(kKinds, atom.valueForKey("dataTypeString"),
                                         [](const Kind& each) { return Value(each.name); });
    if (kind != std::end(kKinds) && kind->format == Picture::formatOf(bytes))
        atom.setValueForKey(Value(bytes), "rawImageData");
}

/// A value that does not fit is a mistake in the command line.
template <class Work>
void assigning(const std::string& key, Work&& work) {
    try {
        work();
    } catch (const ValueError& error) {
        throw Failure(key + ": " + error.message(), ExitStatus::WrongUsage);
    }
}

/// The key of a place by ordinals alone, as a value that was set may be what others are found by.
std::string plainKey(const PropertyPlace& place, const AtomPath::Atoms& roots) {
    std::string key = AtomPath::of(*place.atom, roots) + "." + std::string(place.property->name);
    if (place.row) key += "[" + std::to_string(*place.row) + "]";
    if (place.column && !place.field().name.empty()) key += "." + std::string(place.field().name);
    return key;
}

/// A value on one line that is not too long for a message.
std::string inShort(const Field& field, const Value& value) {
    constexpr std::size_t kMost = 60;
    std::string text = readableText(field, value);
    if (text.size() <= kMost) return text;
    std::size_t kept = kMost;
    // A character of UTF-8 is kept or left as a whole.
    while (kept > 0 && (static_cast<unsigned char>(text[kept]) & 0xC0) == 0x80) --kept;
    text.resize(kept);
    return text + "…";
}

/// How a value that was set reads where it does not read as that; empty where it does.
std::string otherThanMeant(const Field& field, const Value& meant, const AtomPath& key,
                           const VexQTAsset& saved) {
    try {
        const Value read = key.propertyIn(saved.rootAtoms()).value();
        return isSameButForRounding(meant, read) ? "" : "reads as " + inShort(field, read);
    } catch (const PathError&) {
        return "is not found any more";
    }
}

}  // namespace

ExitStatus set(const Arguments& arguments, Console& console) {
    if (arguments.settings) return setFrom(arguments, console);
    Inputs inputs(arguments, console);
    struct Change {
        std::string key;
        PropertyPlace place;
        Value value;
        std::string pictureFile;  ///< Empty for what is no picture from a file.
        std::string plainKey;     ///< In the changed movie.
    };
    std::vector<Change> changes;
    const auto setAll = [&](VexQTAsset& asset) {
        changes.clear();
        const auto add = [&](const std::string& key, const std::string* text) {
            Change change = {.key = key,
                             .place = AtomPath(key).propertyIn(asset.rootAtoms()),
                             .value = {},
                             .pictureFile = {},
                             .plainKey = {}};
            requireSaved(arguments, asset, change.place.root, key);
            assigning(key, [&] {
                const Field& field = change.place.field();
                if (!change.place.canBeSet())
                    throw ValueError(change.place.isSingle()
                                         ? "this cannot be set"
                                         : "this is a table, whose cells are set one by one");
                if (text != nullptr) {
                    change.value = parsed(field, *text, inputs);
                    if (field.kind == ValueKind::Picture && text->starts_with('@'))
                        change.pictureFile = text->substr(1);
                } else if (!field.isOptional) {
                    throw ValueError("this cannot be absent");
                }
            });
            changes.push_back(std::move(change));
        };
        for (const std::string& operand : arguments.operands) {
            const Assignment assignment(operand);
            add(assignment.key, &assignment.value);
        }
        for (const std::string& key : arguments.absent) add(key, nullptr);
        for (const Change& change : changes) {
            assigning(change.key, [&] { change.place.setValue(change.value); });
            if (!change.pictureFile.empty())
                keepEncoding(*change.place.atom, inputs.bytesOf(change.pictureFile));
        }
        for (Change& change : changes) change.plainKey = plainKey(change.place, asset.rootAtoms());
    };
    return edit(arguments, console, setAll, [&](VexQTAsset& saved) {
        for (const Change& change : changes) {
            const std::string told = otherThanMeant(change.place.field(), change.value,
                                                    AtomPath(change.plainKey), saved);
            if (!told.empty())
                console.complain(arguments.output ? *arguments.output : arguments.file(),
                                 change.key + " was set to " +
                                     inShort(change.place.field(), change.value) + " and " + told);
        }
    });
}

// MARK: Atoms

namespace {

/// Out of what holds it, or from the top of the file.
std::unique_ptr<VexQTAtom> takenOut(VexQTAsset& asset, const AtomPlace& place) {
    if (place.holder != nullptr) return place.holder->removeChild(place.atom);
    auto& roots = asset.rootAtoms();
    const auto root = std::ranges::find(roots, place.atom, &std::unique_ptr<VexQTAtom>::get);
    if (root == roots.end()) return nullptr;
    std::unique_ptr<VexQTAtom> removed = std::move(*root);
    roots.erase(root);
    return removed;
}

}  // namespace

ExitStatus remove(const Arguments& arguments, Console& console) {
    return edit(arguments, console, [&](VexQTAsset& asset) {
        std::vector<AtomPlace> places;
        for (const std::string& path : arguments.operands) {
            const AtomPlace place = AtomPath(path).placeIn(asset.rootAtoms());
            requireSaved(arguments, asset, place.root, path);
            if (place.atom == asset.moovAtom())
                throw Failure(path + ": the movie atom itself is not removed, only what is in it");
            places.push_back(place);
        }
        // They are kept until all are out, as one may lie in another or be named twice.
        std::vector<std::unique_ptr<VexQTAtom>> removed;
        for (const AtomPlace& place : places) removed.push_back(takenOut(asset, place));
    });
}

namespace {

/// Whether children that are added will be written.
bool holdsChildren(const VexQTAtom& atom) {
    const bool isGeneric = &atom.atomClass() == &VexQTAtom::kClass;
    return std::ranges::any_of(atom.atomClass().fields, &Field::holdsChildren) &&
           !(isGeneric && atom.unknownBytes());
}

/// An atom that is written back byte for byte, whatever its type.
std::unique_ptr<VexQTAtom> atomFrom(const std::string& file, VexQTAtom& container, Inputs& inputs) {
    const Bytes& bytes = inputs.bytesOf(file);
    if (bytes.size() < 8)
        throw Failure(file + " holds no atom: " + std::to_string(bytes.size()) + " bytes");
    ByteReader in(bytes);
    std::uint64_t size = in.u32();
    in.skip(4);
    if (size == 1) {
        if (in.remaining() < 8) throw Failure(file + " ends inside of the atom's header");
        size = in.u64();
    }
    if (size != bytes.size())
        throw Failure(file + " is not one atom: its size field says " + std::to_string(size) +
                      ", the file has " + std::to_string(bytes.size()) + " bytes");
    return VexQTAtom::initWithData(bytes, &container, 0);
}

}  // namespace

ExitStatus insert(const Arguments& arguments, Console& console) {
    Inputs inputs(arguments, console);
    const std::string& path = arguments.operands[0];
    const std::string& atomFile = arguments.operands[1];
    return edit(arguments, console, [&](VexQTAsset& asset) {
        const AtomPlace place = AtomPath(path).placeIn(asset.rootAtoms());
        VexQTAtom& container = *place.atom;
        requireSaved(arguments, asset, place.root, path);
        if (!holdsChildren(container)) throw Failure(path + ": this atom holds no other atoms");
        auto atom = atomFrom(atomFile, container, inputs);
        if (!arguments.after) return container.addChild(std::move(atom));
        const Field code = {.kind = ValueKind::Unsigned, .display = Display::Code};
        OSType type = 0;
        assigning("--after", [&] {
            type = static_cast<OSType>(*integerFrom(valueFromText(code, *arguments.after)));
        });
        container.insertChild(std::move(atom), type);
    });
}

// MARK: Rows

namespace {

constexpr std::size_t kMostRows = std::numeric_limits<std::uint32_t>::max();

std::optional<std::size_t> countFrom(const std::vector<std::string>& operands) {
    if (operands.size() < 2) return std::nullopt;
    const std::string& text = operands[1];
    std::size_t count = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, count);
    if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return count;
}

/// The list that is named, and perhaps one of its rows.
PropertyPlace tableNamed(const Arguments& arguments, const VexQTAsset& asset, AtomPath::Rows rows) {
    const std::string& key = arguments.operands.front();
    const PropertyPlace place = AtomPath(key).propertyIn(asset.rootAtoms(), rows);
    requireSaved(arguments, asset, place.root, key);
    const bool isCell = place.column && !place.field().name.empty();
    if (place.property->list == nullptr || isCell)
        throw Failure(key + ": this is no table and no row of one", ExitStatus::WrongUsage);
    return place;
}

/// Sets the columns of new rows; a list of plain numbers has one without a name.
void fill(const PropertyPlace& place, std::size_t first, std::size_t count,
          std::span<const std::string> assignments, Inputs& inputs) {
    const std::span<const Field> columns = place.property->list->columns;
    for (const std::string& text : assignments) {
        const Assignment assignment(text);
        const auto column = std::ranges::find(columns, assignment.key, &Field::name);
        if (column == columns.end()) {
            std::vector<std::string> names;
            for (const Field& each : columns) names.emplace_back(each.name);
            throw Failure("'" + assignment.key + "' is no column of " +
                              std::string(place.property->name) + didYouMean(assignment.key, names),
                          ExitStatus::WrongUsage);
        }
        PropertyPlace cell = place;
        cell.column = static_cast<std::size_t>(column - columns.begin());
        assigning(assignment.key, [&] {
            const Value value = parsed(*column, assignment.value, inputs);
            for (std::size_t row = first; row < first + count; ++row) {
                cell.row = row;
                cell.setValue(value);
            }
        });
    }
}

}  // namespace

ExitStatus insertRows(const Arguments& arguments, Console& console) {
    Inputs inputs(arguments, console);
    const std::string& key = arguments.operands.front();
    return edit(arguments, console, [&](VexQTAsset& asset) {
        const PropertyPlace place = tableNamed(arguments, asset, AtomPath::Rows::ThereAndEnd);
        const ListAccess& list = *place.property->list;
        const std::size_t rows = list.size(*place.atom);
        const auto given = countFrom(arguments.operands);
        const std::size_t count = given.value_or(1);
        if (rows > kMostRows || count > kMostRows - rows)
            throw Failure(key + ": a table has at most " + std::to_string(kMostRows) + " rows",
                          ExitStatus::WrongUsage);
        const std::size_t first = place.row.value_or(rows);
        list.insertRows(*place.atom, first, count);
        fill(place, first, count, std::span(arguments.operands).subspan(given ? 2 : 1), inputs);
    });
}

ExitStatus removeRows(const Arguments& arguments, Console& console) {
    const std::string& key = arguments.operands.front();
    return edit(arguments, console, [&](VexQTAsset& asset) {
        const PropertyPlace place = tableNamed(arguments, asset, AtomPath::Rows::There);
        const auto given = countFrom(arguments.operands);
        if (!place.row || (arguments.operands.size() > 1 && !given))
            throw Failure("remove-rows takes PATH.LIST[ROW] and a number of rows",
                          ExitStatus::WrongUsage);
        const ListAccess& list = *place.property->list;
        const std::size_t rows = list.size(*place.atom);
        const std::size_t count = given.value_or(1);
        if (count > rows - *place.row)
            throw Failure(key + ": there are " + std::to_string(rows) + " rows, so only " +
                          std::to_string(rows - *place.row) + " from here on");
        list.removeRows(*place.atom, *place.row, count);
    });
}

// MARK: Keyed metadata

namespace {

/// The metadata container at a path; one that is missing at its end is made, when asked to.
VexQTmetaAtom& metadataAt(const std::string& path, VexQTAsset& asset) {
    const std::size_t point = path.rfind('.');
    if (point != std::string::npos && path.substr(point + 1) == "meta") {
        VexQTAtom& holder = AtomPath(path.substr(0, point)).atomIn(asset.rootAtoms());
        if (holder.childWithType("meta"_os) == nullptr) {
            auto made = std::make_unique<VexQTmetaAtom>();
            made->setParent(&holder);
            const auto size = static_cast<std::int64_t>(made->atomSize());
            holder.addChild(std::move(made));
            holder.increaseSizeBy(size);
        }
    }
    auto* metadata = dynamic_cast<VexQTmetaAtom*>(&AtomPath(path).atomIn(asset.rootAtoms()));
    if (metadata == nullptr) throw Failure(path + ": this is no 'meta' atom");
    return *metadata;
}

VexQTilstAtom* itemsOf(const VexQTmetaAtom& metadata) {
    return dynamic_cast<VexQTilstAtom*>(metadata.childWithType("ilst"_os));
}

}  // namespace

ExitStatus setKey(const Arguments& arguments, Console& console) {
    const std::string& path = arguments.operands.front();
    return edit(arguments, console, [&](VexQTAsset& asset) {
        VexQTmetaAtom& metadata = metadataAt(path, asset);
        requireSaved(arguments, asset, AtomPath(path).placeIn(asset.rootAtoms()).root, path);
        for (const std::string& text : std::span(arguments.operands).subspan(1)) {
            const Assignment assignment(text);
            const VexQTilstAtom* items = itemsOf(metadata);
            VexQTMetadataItem* item =
                items != nullptr ? itemWithKey(*items, assignment.key) : nullptr;
            assigning(assignment.key, [&] {
                if (item == nullptr) {
                    addKeyedItem(metadata, kKeyNameSpace, assignment.key,
                                 dataAtomWithText(assignment.value));
                    return;
                }
                const auto old = item->childWithType("data"_os);
                if (old != nullptr) item->removeChild(old);
                auto value = dataAtomWithText(assignment.value);
                value->setParent(item);
                item->insertChild(std::move(value), 0);
            });
        }
    });
}

ExitStatus removeKey(const Arguments& arguments, Console& console) {
    const std::string& path = arguments.operands.front();
    return edit(arguments, console, [&](VexQTAsset& asset) {
        VexQTmetaAtom& metadata = metadataAt(path, asset);
        requireSaved(arguments, asset, AtomPath(path).placeIn(asset.rootAtoms()).root, path);
        const VexQTilstAtom* items = itemsOf(metadata);
        VexQTkeysAtom* keys = items != nullptr ? keysOfItems(*items) : nullptr;
        if (keys == nullptr) throw Failure(path + ": the items here have no keys");
        for (const std::string& key : std::span(arguments.operands).subspan(1)) {
            const auto entry = std::ranges::find(keys->keys(), key, &VexQTKeyEntry::value);
            if (entry == keys->keys().end()) {
                std::vector<std::string> names;
                for (const VexQTKeyEntry& each : keys->keys())
                    if (each.value()) names.push_back(*each.value());
                throw Failure(path + ": no key '" + key + "'" + didYouMean(key, names));
            }
            vexqt::removeKey(*keys, static_cast<std::size_t>(entry - keys->keys().begin()));
        }
    });
}

ExitStatus save(const Arguments& arguments, Console& console) {
    Arguments exactly = arguments;
    // There is no edit: what else would be saved?
    exactly.exact = exactly.isAlwaysExact = true;
    return edit(exactly, console, [](VexQTAsset&) {});
}

}  // namespace vexqt::cli
