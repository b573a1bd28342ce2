#include "testing/claims.h"

#include "atoms/all_classes.h"
#include "saving/changes.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/SavePlan.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt::testing {

void claim(bool holds, const std::string& what) {
    if (!holds) throw BrokenClaim(what);
}

// MARK: Decisions

std::uint64_t Decisions::number(std::size_t width) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < width; ++i) {
        number <<= 8;
        if (left_.empty()) continue;
        number |= left_.front();
        left_ = left_.subspan(1);
    }
    return number;
}

std::size_t Decisions::below(std::size_t count) {
    if (count <= 1) return 0;
    return static_cast<std::size_t>(number(count <= 256 ? 1 : 2) % count);
}

Bytes Decisions::bytes(std::size_t most) {
    Bytes bytes(std::min(below(most + 1), left_.size()));
    for (std::uint8_t& each : bytes) each = byte();
    return bytes;
}

// MARK: Trees

namespace {

std::string nameOf(const VexQTAtom& atom) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string type = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) type += kDigits[atom.atomType() >> shift & 15];
    return std::string(atom.atomClass().className) + " " + type;
}

/// Single values that are not finite numbers are not equal to themselves.
bool isSame(const Value& left, const Value& right) {
    const auto* number = std::get_if<double>(&left);
    if (number != nullptr && *number != *number) {
        const auto* other = std::get_if<double>(&right);
        return other != nullptr && *other != *other;
    }
    return left == right;
}

/// Two atoms of the same place in the same bytes.
void claimSame(const VexQTAtom& left, const VexQTAtom& right) {
    const std::string name = nameOf(left);
    claim(&left.atomClass() == &right.atomClass(), name + " is " + nameOf(right));
    claim(left.atomType() == right.atomType(), name + " has another type");
    claim(left.atomSize() == right.atomSize(), name + " has another size");
    claim(left.version() == right.version(), name + " has another version");
    for (const Field* field : left.properties()) {
        const std::string property = name + "." + std::string(field->name);
        if (field->list == nullptr) {
            claim(isSame(field->get(left), field->get(right)), property + " differs");
            continue;
        }
        const std::size_t rows = field->list->size(left);
        claim(rows == field->list->size(right), property + " has another length");
        for (std::size_t row = 0; row < std::min<std::size_t>(rows, 16); ++row)
            for (std::size_t column = 0; column < field->list->columns.size(); ++column)
                claim(isSame(field->list->cell(left, row, column),
                             field->list->cell(right, row, column)),
                      property + " has another cell");
    }
    claim(left.children().size() == right.children().size(), name + " has other children");
    for (std::size_t i = 0; i < left.children().size(); ++i)
        claimSame(*left.children()[i], *right.children()[i]);
}

/// Everything that was read lies inside what it was read from.
void claimInside(const VexQTAtom& atom) {
    const SharedBytes& whole = atom.origin();
    for (const auto& child : atom.children()) {
        const ByteView part = child->origin().view();
        if (!part.empty() && !whole.view().empty()) {
            claim(part.data() >= whole.view().data() &&
                      part.data() + part.size() <= whole.view().data() + whole.view().size(),
                  nameOf(*child) + " reaches out of its parent");
        }
        claimInside(*child);
    }
}

std::optional<Bytes> exactBytes(VexQTAtom& atom) {
    try {
        return atom.atomData();
    } catch (const Error&) {
        return std::nullopt;
    }
}

/// Whether exact writing depends on the size that an atom holds and on nothing else: one past 4 GiB
/// counts a header of 16 bytes, and is forgotten by being written.
bool holdsLongSize(const VexQTAtom& atom) {
    return atom.atomSize() > std::numeric_limits<std::uint32_t>::max() ||
           std::ranges::any_of(atom.children(),
                               [](const auto& child) { return holdsLongSize(*child); });
}

void claimWrittenTheSameTwice(VexQTAtom& atom) {
    if (holdsLongSize(atom)) return;
    const auto once = exactBytes(atom);
    claim(exactBytes(atom) == once, nameOf(atom) + " is written exactly in two ways");
}

struct Written {
    Bytes bytes;
    std::string edits;  ///< The rows that count as edited.

    bool operator==(const Written&) const = default;
};

/// Absent where an edit has no form in the file.
std::optional<Written> surgicalBytes(VexQTAtom& atom) {
    try {
        Surgery surgery;
        const SharedBytes bytes = surgery.written(atom).flat();
        Written written{{bytes.view().begin(), bytes.view().end()}, {}};
        for (const Edit& edit : surgery.edits())
            written.edits += " " + nameOf(*edit.atom) + "." + std::string(edit.property);
        return written;
    } catch (const Error&) {
        return std::nullopt;
    }
}

void claimUnedited(VexQTAtom& atom, const char* when) {
    if (atom.origin().size() == 0) return;
    const auto written = surgicalBytes(atom);
    claim(written.has_value(), nameOf(atom) + " cannot be written " + when);
    claim(std::ranges::equal(written->bytes, atom.origin().view()),
          nameOf(atom) + " is written with other bytes " + when);
    claim(written->edits.empty(), "counts as edited " + std::string(when) + ":" + written->edits);
}

using Roots = std::vector<std::unique_ptr<VexQTAtom>>;

/// Null where the strict reading raises.
std::unique_ptr<VexQTAsset> strictReading(ByteView movie) {
    try {
        return VexQTAsset::initWithData(movie);
    } catch (const Error& error) {
        claim(*error.what() != 0, "an error says nothing");
        return nullptr;
    }
}

std::unique_ptr<VexQTAsset> readFile(File& file, ReadOptions options) {
    auto asset = std::make_unique<VexQTAsset>();
    asset->readMainAtomsWithFileHandle(file, options);
    return asset;
}

}  // namespace

void checkReadings(ByteView movie) {
    const auto tolerant = VexQTAsset::initWithData(movie, {.tolerant = true});
    for (const auto& root : tolerant->rootAtoms()) {
        claimUnedited(*root, "without an edit");
        claimInside(*root);
    }

    const auto strict = strictReading(movie);
    if (strict) {
        const Roots& roots = strict->rootAtoms();
        if (tolerant->problems().empty()) {
            claim(roots.size() <= tolerant->rootAtoms().size(), "the tolerant reading ends first");
            for (std::size_t i = 0; i < roots.size(); ++i)
                claimSame(*roots[i], *tolerant->rootAtoms()[i]);
        }
        for (const auto& root : roots) {
            claimWrittenTheSameTwice(*root);
            const auto once = exactBytes(*root);
            if (once && !once->empty() && root->atomClass().sizeRule == SizeRule::Recomputed)
                claim(root->atomSize() == once->size(), nameOf(*root) + " has not its size");
        }
    }

    // The reader of memory does not look at a last atom that is nothing but a header.
    MemoryFileSystem files;
    files.put("/movie", Bytes(movie.begin(), movie.end()));
    std::error_code error;
    const auto file = files.openForReading("/movie", error);
    const auto fromFile = readFile(*file, {.tolerant = true});
    const Roots& ofMemory = tolerant->rootAtoms();
    const Roots& ofFile = fromFile->rootAtoms();
    claim(ofFile.size() == ofMemory.size() || ofFile.size() == ofMemory.size() + 1,
          "the two readers list other atoms");
    for (std::size_t i = 0; i < ofMemory.size(); ++i) claimSame(*ofMemory[i], *ofFile[i]);
    try {
        readFile(*file, {});
    } catch (const Error&) {
    }
}

void checkAtom(const AtomClass& cls, ByteView bytes) {
    std::unique_ptr<VexQTAtom> strict;
    try {
        strict = VexQTAtom::make(cls, bytes, nullptr, 0);
        claim(strict != nullptr || !cls.accepts.accepts(bytes.size()), "refused without a reason");
    } catch (const Error& error) {
        claim(!error.path().empty(), "an error does not say where");
    }

    std::vector<Problem> problems;
    ReadContext context(problems);
    const ReadContext::Siblings none;
    const ReadContext::Step step(context, cls.type, none);
    std::unique_ptr<VexQTAtom> tolerant;
    try {
        tolerant = VexQTAtom::make(cls, SharedBytes::copyOf(bytes), nullptr, 0, context);
    } catch (const Error&) {
        // Whoever reads the atom's container keeps its bytes.
        claim(strict == nullptr, "the tolerant reading raises where the strict one does not");
    }
    if (strict) {
        claim(tolerant != nullptr, "the tolerant reading declines what the strict one takes");
        if (problems.empty()) claimSame(*strict, *tolerant);
        claimWrittenTheSameTwice(*strict);
        if (const auto once = exactBytes(*strict)) {
            // What a class writes it must be able to look at, if only to decline it.
            try {
                VexQTAtom::make(cls, *once, nullptr, 0);
            } catch (const Error&) {
            }
        }
    }
    if (tolerant) {
        claimInside(*tolerant);
        claimUnedited(*tolerant, "without an edit");
        for (const Field& property : VexQTAtom::commonProperties())
            tolerant->valueForKey(property.name);
        tolerant->description();
    }
}

// MARK: Edits

namespace {

/// Atoms below the roots, the roots included, as far as edits go.
std::vector<VexQTAtom*> atomsOf(const VexQTAsset& asset) {
    constexpr std::size_t kMost = 500;
    std::vector<VexQTAtom*> atoms;
    for (const auto& root : asset.rootAtoms()) atoms.push_back(root.get());
    for (std::size_t i = 0; i < atoms.size() && atoms.size() < kMost; ++i)
        for (const auto& child : atoms[i]->children()) atoms.push_back(child.get());
    return atoms;
}

Value decidedValue(const Field& field, Decisions& decisions) {
    switch (field.kind) {
        case ValueKind::Boolean:
            return decisions.byte() % 2 == 1;
        case ValueKind::Unsigned:
            return decisions.number(field.bits / 8U);
        case ValueKind::Signed:
            return static_cast<std::int64_t>(decisions.number(field.bits / 8U));
        case ValueKind::Floating:
            return static_cast<double>(static_cast<std::int32_t>(decisions.number(4))) / 65536;
        case ValueKind::Text: {
            const Bytes bytes = decisions.bytes(40);
            return std::string(bytes.begin(), bytes.end());
        }
        case ValueKind::Instant:
            return Date(std::chrono::seconds(decisions.number(4)) -
                        std::chrono::seconds(std::int64_t{2'082'844'800}));
        case ValueKind::Data:
            return decisions.bytes(40);
        case ValueKind::Transformation: {
            Matrix matrix;
            for (double& cell : matrix)
                cell = static_cast<double>(static_cast<std::int32_t>(decisions.number(4))) / 65536;
            return matrix;
        }
        case ValueKind::Color:
            if (decisions.byte() % 2 == 1) return Color::grey(decisions.byte() / 255.0);
            return Color::rgb(decisions.byte() / 255.0, decisions.byte() / 255.0,
                              decisions.byte() / 255.0, decisions.byte() / 255.0);
        case ValueKind::Number:
            if (decisions.byte() % 2 == 1) return Number(static_cast<float>(decisions.byte()) / 4);
            return Number(decisions.number(8));
        case ValueKind::Picture:
            return Picture({1, 1}, {decisions.byte(), decisions.byte(), decisions.byte(), 255});
        case ValueKind::None:
        case ValueKind::List:
            break;
    }
    return {};
}

std::function<void()> setProperty(VexQTAtom& atom, Decisions& decisions) {
    const std::vector<const Field*> properties = atom.properties();
    if (properties.empty()) return nullptr;
    const Field& field = *properties[decisions.below(properties.size())];
    if (field.set == nullptr || field.get == nullptr) return nullptr;
    const Value before = field.get(atom);
    const Value value = decisions.byte() % 8 == 0 ? Value() : decidedValue(field, decisions);
    try {
        field.set(atom, value);
    } catch (const Error&) {
        claim(isSame(field.get(atom), before), "a value that is refused is taken");
        return nullptr;
    }
    return [&atom, &field, before] { field.set(atom, before); };
}

using Rows = std::vector<std::vector<Value>>;

Rows copyOfRows(const VexQTAtom& atom, const ListAccess& list, std::size_t row, std::size_t count) {
    Rows rows(count);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t column = 0; column < list.columns.size(); ++column)
            rows[i].push_back(list.cell(atom, row + i, column));
    return rows;
}

void putRows(VexQTAtom& atom, const ListAccess& list, std::size_t row, const Rows& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t column = 0; column < list.columns.size(); ++column)
            if (list.columns.size() == 1 || list.columns[column].set != nullptr)
                list.setCell(atom, row + i, column, rows[i][column]);
}

std::function<void()> editList(VexQTAtom& atom, Decisions& decisions) {
    std::vector<const Field*> lists;
    for (const Field* field : atom.properties())
        if (field->list != nullptr) lists.push_back(field);
    if (lists.empty()) return nullptr;
    const ListAccess& list = *lists[decisions.below(lists.size())]->list;
    const std::size_t size = list.size(atom);
    const std::size_t kind = decisions.below(3);
    if (kind == 0) {
        const std::size_t row = decisions.below(size + 1);
        const std::size_t count = 1 + decisions.below(3);
        list.insertRows(atom, row, count);
        return [&atom, &list, row, count] { list.removeRows(atom, row, count); };
    }
    if (size == 0) return nullptr;
    const std::size_t row = decisions.below(size);
    if (kind == 1) {
        const std::size_t count = std::min(1 + decisions.below(3), size - row);
        const Rows removed = copyOfRows(atom, list, row, count);
        list.removeRows(atom, row, count);
        return [&atom, &list, row, count, removed] {
            list.insertRows(atom, row, count);
            putRows(atom, list, row, removed);
        };
    }
    const std::size_t column = decisions.below(list.columns.size());
    if (list.columns.size() > 1 && list.columns[column].set == nullptr) return nullptr;
    const Value before = list.cell(atom, row, column);
    try {
        list.setCell(atom, row, column, decidedValue(list.columns[column], decisions));
    } catch (const Error&) {
        claim(isSame(list.cell(atom, row, column), before), "a cell that is refused is taken");
        return nullptr;
    }
    return [&atom, &list, row, column, before] { list.setCell(atom, row, column, before); };
}

std::function<void()> removeChild(VexQTAtom& atom, Decisions& decisions) {
    if (atom.children().empty()) return nullptr;
    const std::size_t index = decisions.below(atom.children().size());
    // Kept here until it is put back, or goes with the edit that nobody takes back.
    auto removed = std::make_shared<std::unique_ptr<VexQTAtom>>(
        atom.removeChild(atom.children()[index].get()));
    claim(*removed != nullptr, "a child is no child");
    return [&atom, index, removed] {
        atom.increaseSizeBy(static_cast<std::int64_t>((*removed)->atomSize()));
        atom.children().insert(atom.children().begin() + static_cast<std::ptrdiff_t>(index),
                               std::move(*removed));
    };
}

std::function<void()> insertChild(VexQTAtom& atom, Decisions& decisions) {
    const bool isContainer = !atom.atomClass().children.empty() || !atom.children().empty();
    if (!isContainer) return nullptr;
    const AtomClass& cls = *kAllClasses[decisions.below(std::size(kAllClasses))];
    auto child = cls.create();
    const VexQTAtom* added = child.get();
    atom.addChild(std::move(child));
    return [&atom, added] {
        const auto removed = atom.removeChild(added);
        atom.increaseSizeBy(static_cast<std::int64_t>(removed->atomSize()));
    };
}

}  // namespace

std::function<void()> makeEdit(VexQTAsset& asset, Decisions& decisions) {
    const std::vector<VexQTAtom*> atoms = atomsOf(asset);
    if (atoms.empty()) return nullptr;
    VexQTAtom& atom = *atoms[decisions.below(atoms.size())];
    switch (decisions.below(8)) {
        case 0:
            return removeChild(atom, decisions);
        case 1:
            return insertChild(atom, decisions);
        case 2:
        case 3:
            return editList(atom, decisions);
        default:
            return setProperty(atom, decisions);
    }
}

void checkEdits(ByteView movie, Decisions& decisions) {
    const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
    std::vector<std::function<void()>> undos;
    const std::size_t most = 1 + decisions.below(16);
    for (std::size_t i = 0; i < most; ++i)
        if (auto undo = makeEdit(*asset, decisions)) undos.push_back(std::move(undo));

    for (const auto& root : asset->rootAtoms()) {
        const auto once = surgicalBytes(*root);
        claim(surgicalBytes(*root) == once, nameOf(*root) + " is written surgically in two ways");
        claimWrittenTheSameTwice(*root);
        claim(surgicalBytes(*root) == once, nameOf(*root) + " is changed by being written");
    }
    while (!undos.empty()) {
        undos.back()();
        undos.pop_back();
    }
    for (const auto& root : asset->rootAtoms())
        claimUnedited(*root, "when all edits are taken back");
}

// MARK: Saves

namespace {

/// The media that a surgical save must not touch.
void claimMediaUntouched(const FileLayout& layout, ByteView before, ByteView after) {
    for (const RootExtent& atom : layout.atoms) {
        if (atom.type != "mdat"_os) continue;
        const auto from = static_cast<std::size_t>(atom.start + atom.headerLength);
        const auto to =
            static_cast<std::size_t>(std::min<std::uint64_t>(atom.end(), before.size()));
        if (from >= to) continue;
        claim(after.size() >= to && std::ranges::equal(before.subspan(from, to - from),
                                                       after.subspan(from, to - from)),
              "media data is changed");
    }
}

}  // namespace

void checkSave(ByteView movie, Decisions& decisions) {
    const SaveForm form = decisions.byte() % 4 == 0 ? SaveForm::Exact : SaveForm::Surgical;
    MemoryFileSystem files;
    files.put("/movie", Bytes(movie.begin(), movie.end()));
    std::error_code error;
    const auto file = files.openForReading("/movie", error);
    const auto asset = readFile(*file, {.tolerant = true});
    const std::size_t most = decisions.below(6);
    for (std::size_t i = 0; i < most; ++i) makeEdit(*asset, decisions);

    SavePlan plan;
    try {
        plan = SavePlan::of(*asset, *file, form);
    } catch (const Error&) {
        return;  // An edit that has no form in the file.
    }
    const FileChange& change = plan.change();
    claim(change.flaw().empty(), "a plan's change has a flaw: " + std::string(change.flaw()));
    claim(change.oldLength == movie.size(), "a plan is of another file");
    claim(plan.way() != SavePlan::Way::Nothing || change.isEmpty(),
          "a plan to do nothing does something");
    if (change.newLength > (std::uint64_t{64} << 20)) return;
    const Bytes after = changed(Bytes(movie.begin(), movie.end()), change);
    if (form == SaveForm::Surgical && !plan.has(Severity::Destroys))
        claimMediaUntouched(plan.layout(), movie, after);

    FileTransaction transaction(files);
    const auto identity = files.identityOf("/movie", error);
    const auto notOpen = transaction.open("/movie", *identity);
    claim(!notOpen, "a file that nobody touched cannot be opened");
    const auto failure = transaction.apply(change);
    claim(!failure, "a change fails on a sound disk");
    claim(files.bytes("/movie") == after, "other bytes are written than were planned");
    // What would destroy something is refused.
    if (plan.has(Severity::Destroys) || form == SaveForm::Exact) return;

    const auto again = files.openForReading("/movie", error);
    const FileLayout layout = FileLayout::of(*again, error);
    claim(layout.end() == layout.fileLength || plan.layout().end() < plan.layout().fileLength,
          "a saved file does not parse to its end");
    const auto saved = readFile(*again, {.tolerant = true});
    claim(saved->moovAtom() != nullptr || asset->moovAtom() == nullptr, "the movie is lost");
}

}  // namespace vexqt::testing
