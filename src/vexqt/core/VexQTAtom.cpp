#include "vexqt/core/VexQTAtom.h"

#include <cassert>

#include "vexqt/core/ContainerAtom.h"
#include "vexqt/core/codecs.h"

namespace vexqt {

// MARK: The generic atom's layout, and what every atom can be asked by name

struct VexQTAtom::Layout {
    /// Raw bytes or children. An atom that somebody gave both writes the raw bytes alone, although
    /// its size counts both.
    static void decode(Record& record, AtomReader& in) {
        static_cast<VexQTAtom&>(record).keepRest(in);
    }
    static void encode(const Record& record, ByteWriter& out) {
        if (const auto bytes = static_cast<const VexQTAtom&>(record).unknownBytes()) {
            out.append(*bytes);
        } else {
            appendChildren(record, out);
        }
    }
    static constexpr Field fields[] = {
        {.decode = decode, .encode = encode},
    };

    using Atom = VexQTAtom;
    static constexpr Field common[] = {
        derived<&Atom::atomName>("atomName"),
        derived<&Atom::atomTypeString>("atomTypeString"),
        derived<&Atom::atomDescription>("atomDescription"),
        derived<&Atom::description>("description"),
        derived<&Atom::atomNibName>("atomNibName"),
        derived<&Atom::atomSize>("size").in("bytes"),
        derived<&Atom::atomSize>("atomSize").in("bytes"),
        derived<&Atom::atomSizeString>("atomSizeString"),
        accessors<&Atom::atomType, &Atom::setAtomType>("type").as(Display::Code),
        accessors<&Atom::atomType, &Atom::setAtomType>("atomType").as(Display::Code),
        derived<&Atom::offsetInFile>("offsetInFile").in("bytes"),
        accessors<&Atom::version, &Atom::setVersion>("version"),
        accessors<&Atom::flags0, &Atom::setFlags0>("flags0").as(Display::Hexadecimal),
        accessors<&Atom::flags1, &Atom::setFlags1>("flags1").as(Display::Hexadecimal),
        accessors<&Atom::flags2, &Atom::setFlags2>("flags2").as(Display::Hexadecimal),
        accessors<&Atom::matrixAValue, &Atom::setMatrixAValue>("matrixAValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixBValue, &Atom::setMatrixBValue>("matrixBValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixUValue, &Atom::setMatrixUValue>("matrixUValue")
            .within(SignedFixed230::range),
        accessors<&Atom::matrixCValue, &Atom::setMatrixCValue>("matrixCValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixDValue, &Atom::setMatrixDValue>("matrixDValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixVValue, &Atom::setMatrixVValue>("matrixVValue")
            .within(SignedFixed230::range),
        accessors<&Atom::matrixXValue, &Atom::setMatrixXValue>("matrixXValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixYValue, &Atom::setMatrixYValue>("matrixYValue")
            .within(SignedFixed1616::range),
        accessors<&Atom::matrixWValue, &Atom::setMatrixWValue>("matrixWValue")
            .within(SignedFixed230::range),
        derived<&Atom::unknownData>("unknownData"),
        derived<&Atom::hexRepresentation>("hexRepresentation"),
        derived<&Atom::declinedClass>("declinedClass"),
        derived<&Atom::declinedReason>("declinedReason"),
    };
};

constinit const AtomClass VexQTAtom::kClass = {
    .type = kAnyType,
    .className = "VexQTAtom",
    .atomName = "Generic Atom",
    .nibName = "VexQTAtom",
    .header = HeaderRule::Generic,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .create = vexqt::create<VexQTAtom>,
};

// MARK: Construction

VexQTAtom::VexQTAtom(OSType type, std::uint32_t size, VexQTAtom* parent, std::uint64_t offsetInFile)
    : VexQTAtom(kClass) {
    type_ = type;
    size_ = size;
    parent_ = parent;
    offsetInFile_ = offsetInFile;
}

VexQTAtom::VexQTAtom(const VexQTAtom& other)
    : Record(other),
      ValueCodecs(other),
      class_(other.class_),
      parent_(other.parent_),
      size_(other.size_),
      offsetInFile_(other.offsetInFile_),
      origin_(other.origin_),
      unknownFrom_(other.unknownFrom_),
      extras_(other.extras_),
      type_(other.type_),
      version_(other.version_),
      flags_(other.flags_) {}

VexQTAtom& VexQTAtom::operator=(const VexQTAtom& other) {
    if (this == &other) return *this;
    assert(&class_ == &other.class_);
    parent_ = other.parent_;
    size_ = other.size_;
    offsetInFile_ = other.offsetInFile_;
    origin_ = other.origin_;
    unknownFrom_ = other.unknownFrom_;
    extras_ = other.extras_;
    type_ = other.type_;
    version_ = other.version_;
    flags_ = other.flags_;
    return *this;
}

std::unique_ptr<VexQTAtom> VexQTAtom::initWithData(ByteView data, VexQTAtom* parent,
                                                   std::uint64_t offsetInFile) {
    return make(kClass, data, parent, offsetInFile);
}

std::unique_ptr<VexQTAtom> VexQTAtom::make(const AtomClass& cls, ByteView data, VexQTAtom* parent,
                                           std::uint64_t offsetInFile) {
    if (!cls.accepts.accepts(data.size())) return nullptr;
    ReadContext context;
    std::size_t depth = 0;
    for (const VexQTAtom* above = parent; above; above = above->parent()) ++depth;
    context.setOuterDepth(depth);
    const bool isTypeRead = cls.type == kAnyType && cls.writtenHeader != WrittenHeader::None;
    ByteReader in(data, 4);
    const OSType type = isTypeRead && in.remaining() >= 4 ? in.u32() : cls.type;
    const ReadContext::Siblings alone;
    const ReadContext::Step step(context, type, alone);
    try {
        return make(cls, SharedBytes::copyOf(data), parent, offsetInFile, context);
    } catch (Error& error) {
        error.enter(step.segment(), offsetInFile);
        throw;
    }
}

// Out of the way of the descent, which takes its stack at every level.
[[noreturn, gnu::noinline]] static void raiseNestedTooDeep() {
    throw NestingError("nested deeper than " + std::to_string(kDeepestNesting) + " atoms");
}

std::unique_ptr<VexQTAtom> VexQTAtom::make(const AtomClass& cls, const SharedBytes& bytes,
                                           VexQTAtom* parent, std::uint64_t offsetInFile,
                                           ReadContext& context) {
    if (!cls.accepts.accepts(bytes.size())) return nullptr;
    if (context.depth() > kDeepestNesting) raiseNestedTooDeep();
    std::unique_ptr<VexQTAtom> atom = cls.create();
    atom->parent_ = parent;
    atom->offsetInFile_ = offsetInFile;
    atom->decode(bytes, context);
    return atom;
}

std::unique_ptr<VexQTAtom> VexQTAtom::makeDeclined(const AtomClass& declinedBy, std::string reason,
                                                   OSType type, const SharedBytes& bytes,
                                                   VexQTAtom* parent, std::uint64_t offsetInFile) {
    auto atom = std::make_unique<VexQTAtom>();
    atom->type_ = type;
    atom->size_ = bytes.size();
    atom->parent_ = parent;
    atom->offsetInFile_ = offsetInFile;
    atom->origin_ = bytes;
    atom->unknownFrom_ = std::min<std::size_t>(8, bytes.size());
    Extras& extras = atom->extras_.made();
    extras.declinedBy = &declinedBy;
    extras.declinedType = type;
    extras.declinedReason = std::move(reason);
    return atom;
}

// MARK: Reading

namespace {

struct Header {
    OSType type = 0;
    std::uint64_t size = 0;
    std::size_t length = 8;
};

/// What a class takes from the first bytes that it is given. Sizes wrap where the rules subtract.
[[gnu::noinline]] Header readHeader(ByteView bytes, HeaderRule rule) {
    const bool isGeneric = rule == HeaderRule::Generic || rule == HeaderRule::GenericFieldsAtEight;
    ByteReader in(bytes);
    Header header;
    const std::uint32_t sizeField = in.u32();
    header.type = in.u32();
    header.size = sizeField;
    if (sizeField == 1) {
        header.length = 16;
        if (rule == HeaderRule::ReadSizeField) return header;
        header.size = in.u64();
        if (isGeneric) header.size -= 16;
        if (rule == HeaderRule::ReadExtendedPlusOne) {
            header.size += 1;
            return header;
        }
    }
    if (header.size == 0 && rule != HeaderRule::ReadSizeField) {
        if (isGeneric || rule == HeaderRule::ReadZeroMeansShort) header.length = 8;
        const std::size_t leftOut = rule == HeaderRule::Read ? header.length : 8;
        header.size = bytes.size() - leftOut;
    }
    if (rule == HeaderRule::GenericFieldsAtEight) header.length = 8;
    return header;
}

[[gnu::noinline]] void note(Survey& survey, const Field& row, std::size_t start, std::size_t end) {
    survey.rows.push_back({&row, start, end});
}

}  // namespace

void VexQTAtom::decode(const SharedBytes& bytes, ReadContext& context) {
    origin_ = bytes;
    std::size_t start = 0;
    if (class_.header == HeaderRule::None || class_.header == HeaderRule::ByteCount) {
        size_ = bytes.size();
        start = class_.header == HeaderRule::None ? 0 : 8;
        if (class_.type == kAnyType && start != 0) type_ = ByteReader(bytes.view(), 4).u32();
    } else {
        const Header header = readHeader(bytes.view(), class_.header);
        size_ = header.size;
        type_ = header.type;
        start = header.length;
    }
    AtomReader in(bytes, start, context);
    for (const Field& field : class_.fields) {
        if (field.decode == nullptr || !isPresent(field, *this)) continue;
        const std::size_t rowStart = in.position();
        field.decode(*this, in);
        if (Survey* survey = context.survey()) note(*survey, field, rowStart, in.position());
    }
    verifyCalculatedDataWithOriginalData(bytes.view());
}

// MARK: Writing

Bytes VexQTAtom::headerData() const {
    ByteWriter out;
    const bool isShort = size_ <= std::numeric_limits<std::uint32_t>::max();
    out.u32(isShort ? static_cast<std::uint32_t>(size_) : 1);
    out.u32(type_);
    if (!isShort) out.u64(size_);
    return out.release();
}

Bytes VexQTAtom::atomData() {
    ByteWriter out;
    out.reserve(origin_.size());  // Most atoms are written in about the length they were read in.
    appendTo(out);
    return out.release();
}

void VexQTAtom::appendRows(ByteWriter& out) {
    try {
        for (const Field& field : class_.fields)
            if (field.encode != nullptr && isPresent(field, *this)) field.encode(*this, out);
    } catch (Error& error) {
        error.enter(pathSegment(type_, siblingsBefore()), offsetInFile_);
        throw;
    }
}

std::size_t VexQTAtom::siblingsBefore() const {
    if (parent_ == nullptr) return 0;
    std::size_t before = 0;
    for (const auto& sibling : parent_->children_) {
        if (sibling.get() == this) return before;
        if (sibling->type_ == type_) ++before;
    }
    return 0;
}

void VexQTAtom::appendTo(ByteWriter& out) {
    if (isLeftInFile()) return;
    const std::size_t start = out.length();
    if (declinedClass()) {
        out.append(origin_.view());
        // The bytes of a root atom with an extended size have no type in them.
        const bool isTypeEdited = type_ != extras_->declinedType;
        if (isTypeEdited && origin_.size() >= 8) out.patchU32(start + 4, type_);
        return;
    }
    if (class_.typeRule == TypeRule::Restored) type_ = class_.type;
    if (class_.writtenHeader == WrittenHeader::AsHeld) return appendWithHeaderAsHeld(out);

    if (class_.writtenHeader == WrittenHeader::Short) {
        out.u32(0);
        out.u32(class_.typeRule == TypeRule::AsHeld ? type_ : class_.type);
    }
    appendRows(out);
    const std::uint64_t size =
        class_.sizeRule == SizeRule::NotRecomputed ? size_ : declaredSize(out.length() - start);
    if (class_.sizeRule == SizeRule::Recomputed) size_ = size;
    if (class_.writtenHeader != WrittenHeader::None)
        out.patchU32(start, static_cast<std::uint32_t>(size));
}

void VexQTAtom::appendWithHeaderAsHeld(ByteWriter& out) {
    const std::size_t start = out.length();
    // A size that shrinks below 4 GiB still counts the 16 bytes of the header that it had.
    const std::size_t oldHeader = size_ > std::numeric_limits<std::uint32_t>::max() ? 16 : 8;
    out.zeros(8);
    appendRows(out);
    std::uint64_t byteCount = out.length() - start - 8 + oldHeader;
    if (&class_ == &kClass && unknownFrom_ != kAbsent && !children_.empty()) {
        ByteWriter notWritten;
        appendChildren(*this, notWritten);
        byteCount += notWritten.length();
    }
    if (class_.sizeRule == SizeRule::Recomputed) size_ = declaredSize(byteCount);

    const Bytes header = headerData();
    ByteReader in(header);
    out.patchU32(start, in.u32());
    const OSType heldType = in.u32();
    out.patchU32(start + 4, class_.typeRule == TypeRule::OfClass ? class_.type : heldType);
    out.insert(start + 8, in.rest());
}

// MARK: The tree

void VexQTAtom::addChild(std::unique_ptr<VexQTAtom> child) {
    if (!child) throw InsertionError("an absent child");
    children_.push_back(std::move(child));
}

void VexQTAtom::insertChild(std::unique_ptr<VexQTAtom> child, OSType afterChildWithType) {
    if (!child) throw InsertionError("an absent child");
    const auto before = std::ranges::find_if(children_, [&](const auto& candidate) {
        return candidate->atomType() == afterChildWithType;
    });
    children_.insert(before == children_.end() ? before : before + 1, std::move(child));
}

void VexQTAtom::removeChildrenWithType(OSType type) {
    std::erase_if(children_, [&](const auto& child) { return child->atomType() == type; });
}

std::unique_ptr<VexQTAtom> VexQTAtom::removeChild(const VexQTAtom* child) {
    if (child == nullptr) return nullptr;
    increaseSizeBy(static_cast<std::int64_t>(0 - child->atomSize()));
    const auto found = std::ranges::find_if(
        children_, [&](const auto& candidate) { return candidate.get() == child; });
    if (found == children_.end()) return nullptr;
    std::unique_ptr<VexQTAtom> removed = std::move(*found);
    children_.erase(found);
    return removed;
}

VexQTAtom* VexQTAtom::childWithType(OSType type) const {
    for (const auto& child : children_)
        if (child->atomType() == type) return child.get();
    return nullptr;
}

void VexQTAtom::increaseSizeBy(std::int64_t amount) {
    for (VexQTAtom* atom = this; atom; atom = atom->parent_)
        atom->size_ += static_cast<std::uint64_t>(amount);
}

// MARK: What people are shown

std::string VexQTAtom::description() const {
    std::string outline;
    appendDescriptionTo(outline);
    return outline;
}

// Texts are put together out of the way of the descent, which takes its stack at every level.
[[gnu::noinline]] static void appendLine(std::string& outline, const std::string& type,
                                         std::uint64_t size) {
    outline += " '" + type + "' (" + std::to_string(static_cast<std::int64_t>(size)) + ")";
}

void VexQTAtom::appendDescriptionTo(std::string& outline) const {
    for (const VexQTAtom* above = parent_; above; above = above->parent_) outline += "  ";
    appendLine(outline, stringWithOSType(type_), size_);
    for (const auto& child : children_) {
        outline += "\r\n";
        child->appendDescriptionTo(outline);
    }
}

std::string VexQTAtom::atomDescription() const {
    return atomName() + " ('" + atomTypeString() + "')";
}

std::optional<std::string> VexQTAtom::atomNibName() const {
    if (class_.nibName.empty()) return std::nullopt;
    return std::string(class_.nibName);
}

std::string VexQTAtom::atomSizeString() const {
    return std::to_string(static_cast<std::int64_t>(size_)) + " bytes";
}

std::optional<std::string> VexQTAtom::hexRepresentation() const {
    const auto bytes = unknownBytes();
    if (!bytes) return std::nullopt;
    return vexqt::hexRepresentation(*bytes);
}

// MARK: Fields that every atom has

std::optional<ByteView> VexQTAtom::unknownBytes() const {
    if (unknownFrom_ == kAbsent) return std::nullopt;
    return ByteReader(origin_.view(), unknownFrom_).rest();
}

std::optional<Bytes> VexQTAtom::unknownData() const {
    const auto bytes = unknownBytes();
    if (!bytes) return std::nullopt;
    return Bytes(bytes->begin(), bytes->end());
}

Extent VexQTAtom::extent() const {
    if (extras_ && extras_->extent) return *extras_->extent;
    if (origin_.size() == 0) return {.headerLength = 0};
    const ByteView bytes = origin_.view();
    const bool isExtended =
        bytes.size() >= 16 && class_.header != HeaderRule::None && ByteReader(bytes).u32() == 1;
    const std::size_t headerLength = std::min<std::size_t>(isExtended ? 16 : 8, bytes.size());
    return {offsetInFile_, headerLength, bytes.size()};
}

void VexQTAtom::keepPayload() {
    keepUnknownDataFrom(readHeader(origin_.view(), HeaderRule::Generic).length);
}

void VexQTAtom::keepRest(AtomReader& in) {
    keepUnknownDataFrom(in.position());
    in.rest();
}

void VexQTAtom::appendRest(ByteWriter& out) const {
    if (const auto bytes = unknownBytes()) out.append(*bytes);
}

std::uint8_t VexQTAtom::flagAtIndex(std::int32_t index) const {
    return index >= 0 && index < 3 ? flags_[static_cast<std::size_t>(index)] : std::uint8_t{0};
}

const Matrix& VexQTAtom::matrix() const {
    static constexpr Matrix kZero{};
    return extras_ && extras_->matrix ? *extras_->matrix : kZero;
}

std::optional<std::string> VexQTAtom::declinedClass() const {
    if (!extras_ || extras_->declinedBy == nullptr) return std::nullopt;
    return std::string(extras_->declinedBy->className);
}

std::string VexQTAtom::declinedReason() const { return extras_ ? extras_->declinedReason : ""; }

// MARK: Access by name

std::span<const Field> VexQTAtom::commonProperties() { return Layout::common; }

const Field* VexQTAtom::propertyNamed(std::string_view key) const {
    if (key.empty()) return nullptr;
    for (const std::span<const Field> rows : {class_.fields, commonProperties()}) {
        const auto row = std::ranges::find(rows, key, &Field::name);
        if (row != rows.end()) return &*row;
    }
    return nullptr;
}

std::vector<const Field*> VexQTAtom::properties() const {
    std::vector<const Field*> listed;
    if (!class_.listing.empty()) {
        for (const std::string_view name : class_.listing) listed.push_back(propertyNamed(name));
        return listed;
    }
    for (const Field& field : class_.fields)
        if (!field.name.empty()) listed.push_back(&field);
    std::stable_partition(listed.begin(), listed.end(), [](const Field* field) {
        return field->kind != ValueKind::Transformation;
    });
    return listed;
}

Value VexQTAtom::valueForKey(std::string_view key) const {
    const Field* property = propertyNamed(key);
    if (property == nullptr) return valueForUndefinedKey(key);
    return property->get != nullptr ? property->get(*this) : Value();
}

Value VexQTAtom::valueForKeyPath(std::string_view keyPath) const {
    const VexQTAtom* atom = this;
    while (true) {
        const std::size_t point = keyPath.find('.');
        Value value = atom->valueForKey(keyPath.substr(0, point));
        if (point == std::string_view::npos) return value;
        const auto* child = std::get_if<VexQTAtom*>(&value);
        if (child == nullptr || *child == nullptr) return {};
        atom = *child;
        keyPath.remove_prefix(point + 1);
    }
}

void VexQTAtom::setValueForKey(const Value& value, std::string_view key) {
    const Field* property = propertyNamed(key);
    if (property == nullptr || property->set == nullptr) throw UndefinedKeyError(key);
    try {
        property->set(*this, value);
    } catch (const ValueError& error) {
        throw ValueError(key, error.message());
    }
}

void VexQTAtom::setNilValueForKey(std::string_view key) { setValueForKey({}, key); }

Value VexQTAtom::valueForUndefinedKey(std::string_view key) const {
    for (const auto& child : children_)
        if (child->atomTypeString() == key) return child.get();
    return {};
}

}  // namespace vexqt
