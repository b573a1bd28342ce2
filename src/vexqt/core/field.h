// One row of a layout: what it is called, where it is kept and how it lies in the file.
//
// A class lists its rows once, in file order. Decoding, encoding, access by name, JSON, the command
// and the inspector all walk that one list, so none of them can forget a field.
//
// A codec is a type with a width, a read and a write. Where the two are not each other's inverse,
// the codec's name says so: an asymmetry is looked up, not discovered.
#pragma once

#include <limits>
#include <span>
#include <type_traits>

#include "vexqt/core/AtomReader.h"
#include "vexqt/core/Value.h"
#include "vexqt/export.h"

namespace vexqt {

/// What has fields: the atoms and the entries of their tables.
class Record {};

/// What kind of value a property holds, for those who know it by its name alone.
enum class ValueKind : std::uint8_t {
    None,  ///< Bytes that are no property.
    Boolean,
    Unsigned,
    Signed,
    Floating,
    Text,
    Instant,         ///< A date and time of day.
    Data,            ///< Bytes.
    Transformation,  ///< A matrix.
    Color,
    Number,
    Picture,
    List
};

/// How people write a value.
enum class Display : std::uint8_t {
    Plain,
    Code,        ///< An integer shown as a four-character code.
    Hexadecimal  ///< An integer of flags, a tag or a mask.
};

struct Field;

/// The numbers that a field has room for, from the least up to the end, which is the first that is
/// too large.
struct NumberRange {
    /// In the unit of the field.
    double least = 0, end = 0;

    /// Whether there is a range.
    constexpr bool isKnown() const { return least < end; }
    /// Whether a number lies in it.
    constexpr bool has(double number) const { return least <= number && number < end; }
};

/// How a list property is walked and edited by those who do not know its entries' class.
struct ListAccess {
    /// Those of an entry; one column without a name where the list holds plain numbers.
    std::span<const Field> columns;
    std::size_t (*size)(const Record& owner);  ///< How many rows there are.
    Value (*cell)(const Record& owner, std::size_t row,
                  std::size_t column);  ///< Reads a cell; the caller has checked row and column.
    /// Changes a cell. \throws ValueError for a value of the wrong kind.
    void (*setCell)(Record& owner, std::size_t row, std::size_t column, const Value& value);
    /// Inserts new entries before a row; a row at the end appends.
    void (*insertRows)(Record& owner, std::size_t row, std::size_t count);
    /// Removes rows from that one on.
    void (*removeRows)(Record& owner, std::size_t row, std::size_t count);
    /// Copies an integer column from a row on, two's complement, many at a time and without
    /// decoding the list. Null where there is no such column.
    void (*integers)(const Record& owner, std::size_t column, std::size_t firstRow,
                     std::span<std::uint64_t> into) = nullptr;
    /// One entry as its class writes it, of a list whose entries have lengths of their own. Null
    /// for every other list.
    Bytes (*entryBytes)(const Record& owner, std::size_t row) = nullptr;
};

/// One row of a layout, or one column of a table.
struct Field {
    std::string_view name = {};        ///< The property's name; empty for bytes that are none.
    std::size_t width = 0;             ///< Bytes in the file; 0 where the length varies.
    ValueKind kind = ValueKind::None;  ///< Of the value.
    std::uint8_t bits = 0;             ///< Of an integer or a floating number.
    NumberRange range = {};  ///< Where bits and width do not tell: of a fixed-point number.
    Display display = Display::Plain;  ///< How people write it.
    std::string_view unit = {};        ///< "seconds", "pixels"; empty where there is none.
    bool isOptional = false;           ///< Whether it can be absent.
    std::uint8_t unitWidth = 0;  ///< Of the values that repeat in these bytes; 0 for one alone.
    bool holdsChildren = false;  ///< Whether these bytes are the atom's children.

    void (*decode)(Record&, AtomReader&) = nullptr;        ///< Null for what is not in the file.
    void (*encode)(const Record&, ByteWriter&) = nullptr;  ///< Null for what is not in the file.
    Value (*get)(const Record&) = nullptr;                 ///< Null for what has no single value.
    void (*set)(Record&, const Value&) = nullptr;          ///< Null for what cannot be set.
    const ListAccess* list = nullptr;                      ///< Null for all but lists.
    bool (*present)(const Record&) = nullptr;              ///< Null for what is always in the file.
    /// Whether the value is still the one that was read, as far as that is known without a look at
    /// it. Null where it never is.
    bool (*untouched)(const Record&) = nullptr;

    /// The same row with a unit.
    constexpr Field in(std::string_view theUnit) const {
        Field row = *this;
        row.unit = theUnit;
        return row;
    }
    /// The same row in another form for people.
    constexpr Field as(Display theDisplay) const {
        Field row = *this;
        row.display = theDisplay;
        return row;
    }
    /// The same row with a range of its own.
    constexpr Field within(NumberRange theRange) const {
        Field row = *this;
        row.range = theRange;
        return row;
    }
    /// The same row as that of the children.
    constexpr Field holdingChildren() const {
        Field row = *this;
        row.holdsChildren = true;
        return row;
    }
    /// Whether a double holds the value, most of it at least.
    constexpr bool isNumeric() const {
        return kind == ValueKind::Boolean || kind == ValueKind::Unsigned ||
               kind == ValueKind::Signed || kind == ValueKind::Floating;
    }
};

/// What a property holds in a word for people and programs, such as "unsigned", "code" or "date";
/// empty for bytes that are no property.
VEXQT_EXPORT std::string_view typeName(const Field& field);

/// How many bytes the rows of a fixed layout take up.
constexpr std::size_t wireWidth(std::span<const Field> fields) {
    std::size_t width = 0;
    for (const Field& field : fields) width += field.width;
    return width;
}

template <class T>
struct OptionalTraits {
    static constexpr bool isOptional = false;
    using Present = T;
};
template <class T>
struct OptionalTraits<std::optional<T>> {
    static constexpr bool isOptional = true;
    using Present = T;
};

/// The kind that a stored type has; specialised beside types of their own.
template <class T>
constexpr ValueKind kindOf() {
    if constexpr (std::is_same_v<T, bool>) return ValueKind::Boolean;
    if constexpr (std::is_unsigned_v<T>) return ValueKind::Unsigned;
    if constexpr (std::is_signed_v<T> && std::is_integral_v<T>) return ValueKind::Signed;
    if constexpr (std::is_floating_point_v<T>) return ValueKind::Floating;
    if constexpr (std::is_same_v<T, std::string>) return ValueKind::Text;
    if constexpr (std::is_same_v<T, Date>) return ValueKind::Instant;
    if constexpr (std::is_same_v<T, Bytes>) return ValueKind::Data;
    if constexpr (std::is_same_v<T, Matrix>) return ValueKind::Transformation;
    if constexpr (std::is_same_v<T, Color>) return ValueKind::Color;
    if constexpr (std::is_same_v<T, Number>) return ValueKind::Number;
    if constexpr (std::is_same_v<T, Picture>) return ValueKind::Picture;
    return ValueKind::None;
}

/// \throws ValueError always.
[[noreturn]] VEXQT_EXPORT void throwWrongKind();

/// Setting an empty value on a number sets 0; on what can be absent it makes it absent. An integer
/// keeps the low bits of a wider value; a number object takes any plain number.
template <class T>
T fromValue(const Value& value) {
    using Present = typename OptionalTraits<T>::Present;
    if constexpr (OptionalTraits<T>::isOptional) {
        if (value.isAbsent()) return std::nullopt;
    }
    if constexpr (std::is_arithmetic_v<Present>) {
        if (value.isAbsent()) return T{};
        if constexpr (std::is_floating_point_v<Present>) {
            if (const auto number = doubleFrom(value)) return static_cast<Present>(*number);
        } else if (const auto number = integerFrom(value)) {
            if constexpr (std::is_same_v<Present, bool>) return *number != 0;
            return static_cast<Present>(*number);
        }
    } else if (const auto* present = std::get_if<Present>(&value)) {
        return *present;
    } else if constexpr (std::is_same_v<Present, Number>) {
        if (const auto* number = std::get_if<std::int64_t>(&value)) return Number(*number);
        if (const auto* number = std::get_if<std::uint64_t>(&value)) return Number(*number);
        if (const auto* number = std::get_if<double>(&value))
            return Number(static_cast<float>(*number));
    }
    throwWrongKind();
}

/// The class that a member belongs to, for decltype.
template <class Owner, class T>
Owner ownerOf(T Owner::*);
/// The type of a member, for decltype.
template <class Owner, class T>
T typeOf(T Owner::*);

/// A row of that type's kind, in the file nowhere yet.
template <class T>
constexpr Field described(std::string_view name) {
    using Present = typename OptionalTraits<T>::Present;
    Field row = {.name = name, .kind = kindOf<Present>()};
    if constexpr (std::is_arithmetic_v<Present>) row.bits = 8 * sizeof(Present);
    row.isOptional = OptionalTraits<T>::isOptional;
    return row;
}

/// A property whose bytes some irregular row of its class reads and writes, or none does.
template <auto Member>
constexpr Field property(std::string_view name) {
    using Owner = decltype(ownerOf(Member));
    using Type = decltype(typeOf(Member));
    Field row = described<Type>(name);
    row.get = [](const Record& record) { return Value(static_cast<const Owner&>(record).*Member); };
    row.set = [](Record& record, const Value& value) {
        static_cast<Owner&>(record).*Member = fromValue<Type>(value);
    };
    return row;
}

/// A property reached through the class's own two operations.
template <auto Getter, auto Setter>
constexpr Field accessors(std::string_view name) {
    using Owner = decltype(ownerOf(Getter));
    using Type = std::remove_cvref_t<decltype((std::declval<const Owner&>().*Getter)())>;
    Field row = described<Type>(name);
    row.get = [](const Record& record) {
        return Value((static_cast<const Owner&>(record).*Getter)());
    };
    row.set = [](Record& record, const Value& value) {
        (static_cast<Owner&>(record).*Setter)(fromValue<Type>(value));
    };
    return row;
}

/// A property that is worked out from others and cannot be set.
template <auto Getter>
constexpr Field derived(std::string_view name) {
    using Owner = decltype(ownerOf(Getter));
    using Type = std::remove_cvref_t<decltype((std::declval<const Owner&>().*Getter)())>;
    Field row = described<Type>(name);
    row.get = [](const Record& record) {
        return Value((static_cast<const Owner&>(record).*Getter)());
    };
    return row;
}

/// A property that lies in the file as Codec says.
template <auto Member, class Codec>
constexpr Field field(std::string_view name) {
    using Owner = decltype(ownerOf(Member));
    using Type = decltype(typeOf(Member));
    using Read = decltype(Codec::read(std::declval<ByteReader&>()));
    static_assert(std::is_same_v<Type, Read> || std::is_floating_point_v<Type>,
                  "only floating point may be narrowed");
    Field row = property<Member>(name);
    row.width = Codec::width;
    if constexpr (requires { Codec::display; }) row.display = Codec::display;
    if constexpr (requires { Codec::range; }) row.range = Codec::range;
    row.decode = [](Record& record, AtomReader& in) {
        static_cast<Owner&>(record).*Member = static_cast<Type>(Codec::read(in));
    };
    row.encode = [](const Record& record, ByteWriter& out) {
        Codec::write(out, static_cast<const Owner&>(record).*Member);
    };
    return row;
}

/// Bytes that are ignored on reading and written as zero.
template <std::size_t count>
constexpr Field reserved() {
    Field row = {.width = count};
    row.decode = [](Record&, AtomReader& in) { in.skip(count); };
    row.encode = [](const Record&, ByteWriter& out) { out.zeros(count); };
    return row;
}

/// Bytes that no codec can tell: a pair of the class's own functions, side by side in its source,
/// each the other's inverse or saying why not.
template <auto Decode, auto Encode>
constexpr Field irregular() {
    using Owner = decltype(ownerOf(Decode));
    Field row;
    row.decode = [](Record& record, AtomReader& in) { (static_cast<Owner&>(record).*Decode)(in); };
    row.encode = [](const Record& record, ByteWriter& out) {
        (static_cast<const Owner&>(record).*Encode)(out);
    };
    return row;
}

/// A row that is in the file only when Predicate holds of what was decoded before it.
template <auto Predicate>
constexpr Field when(Field row) {
    using Owner = decltype(ownerOf(Predicate));
    row.width = 0;
    row.present = [](const Record& record) {
        return (static_cast<const Owner&>(record).*Predicate)();
    };
    return row;
}

/// Whether a record has the row in the file.
inline bool isPresent(const Field& field, const Record& record) {
    return field.present == nullptr || field.present(record);
}

}  // namespace vexqt
