// Tables: long lists of small entries of one width, behind a count of 32 bits.
//
// A movie is mostly tables, and most of them are never looked at. A table keeps the bytes that it
// was read from and decodes its rows when somebody first asks for all of them. Single cells and
// whole columns are read where they lie, and a table that nobody edited is written by copying its
// bytes. How many entries there are, and whether they are all there, is settled while the atom is
// read: no error waits for the first row.
//
// A class gives the columns of its entries once. The loops that decode and encode them are made
// from the columns at compile time.
#pragma once

#include <cassert>
#include <vector>

#include "vexqt/core/codecs.h"

namespace vexqt {

// MARK: Columns

template <std::unsigned_integral T>
std::true_type keepsEveryBit(const Unsigned<T>*);
template <std::signed_integral T>
std::true_type keepsEveryBit(const Signed<T>*);
std::false_type keepsEveryBit(const void*);

/// A codec of plain integers: what it writes is what it read.
template <class Codec>
concept VerbatimCodec = decltype(keepsEveryBit(std::declval<const Codec*>()))::value;

/// The value at an address. The caller has checked that its bytes are there.
template <class Codec>
auto decodeAt(BytePlace at) {
    if constexpr (VerbatimCodec<Codec>) {
        return at.load<decltype(Codec::read(std::declval<ByteReader&>()))>();
    } else {
        ByteReader in = at.reader(Codec::width);
        return Codec::read(in);
    }
}

/// One column of an entry class.
template <auto Member, class ItsCodec>
struct Column {
    using Entry = decltype(ownerOf(Member));
    using Codec = ItsCodec;

    Field field;

    static auto get(const Entry& entry) { return entry.*Member; }
    static void decode(Entry& entry, BytePlace at) { entry.*Member = decodeAt<Codec>(at); }
    constexpr Column in(std::string_view unit) const { return {field.in(unit)}; }
};

/// A column: a member of the entry's class, its codec, and its name.
template <auto Member, class Codec>
constexpr Column<Member, Codec> column(std::string_view name) {
    return {field<Member, Codec>(name)};
}

/// The only column of a table of plain numbers. It has no name.
template <class ItsCodec>
struct NumberColumn {
    using Entry = decltype(ItsCodec::read(std::declval<ByteReader&>()));
    using Codec = ItsCodec;

    Field field;

    static Entry get(Entry number) { return number; }
    static void decode(Entry& number, BytePlace at) { number = decodeAt<Codec>(at); }
};

/// What the entries of a table consist of, in file order.
template <class... Columns>
struct TableColumns {
    using Entry = std::common_type_t<typename Columns::Entry...>;

    std::array<Field, sizeof...(Columns)> fields;

    static constexpr std::size_t width = (Columns::Codec::width + ...);
    static constexpr bool areVerbatim = (VerbatimCodec<typename Columns::Codec> && ...);

    static Entry decode(BytePlace at) {
        Entry entry{};
        ((Columns::decode(entry, at), at += Columns::Codec::width), ...);
        return entry;
    }
    /// For columns that are all verbatim.
    static void encode(const Entry& entry, WritablePlace at) {
        ((at.store(Columns::get(entry)), at += Columns::Codec::width), ...);
    }
    static void encode(const Entry& entry, ByteWriter& out) {
        (Columns::Codec::write(out, Columns::get(entry)), ...);
    }
    /// Passes an entry of which not every column is there, and so raises.
    static void skip(ByteReader& in) { (in.skip(Columns::Codec::width), ...); }

    /// Calls back with the column of an index and its offset in the entry.
    template <class Visit>
    static void visit(std::size_t index, Visit visit) {
        std::size_t i = 0;
        std::size_t offset = 0;
        ((i++ == index ? visit(std::type_identity<Columns>(), offset) : void(),
          offset += Columns::Codec::width),
         ...);
    }
};

/// All columns of a table, in file order.
template <class... Columns>
constexpr TableColumns<Columns...> tableColumns(Columns... columns) {
    return {{columns.field...}};
}

/// The columns of a table of plain numbers.
template <class Codec>
constexpr auto numberColumn(std::string_view unit = {}) {
    Field row = described<typename NumberColumn<Codec>::Entry>("").in(unit);
    row.width = Codec::width;
    return TableColumns<NumberColumn<Codec>>{{row}};
}

// MARK: Tables

/// The rows of a table, decoded when they are first asked for.
///
/// An entry that somebody edits through the list lies in that list alone from then on.
template <class Entry>
class Table {
public:
    /// What people see of the table.
    using Rows = std::vector<Entry>;
    /// How rows are made of bytes.
    struct Form {
        std::size_t width;                 ///< Of an entry, in bytes.
        Rows (*decode)(ByteView entries);  ///< Decodes a whole number of entries.
    };

    /// Decodes them if nobody has yet.
    const Rows& rows() const {
        if (undecoded_ != nullptr) {
            rows_ = undecoded_->decode(bytes_.view());
            undecoded_ = nullptr;
        }
        return rows_;
    }
    /// For editing.
    Rows& rows() {
        std::as_const(*this).rows();
        isAsRead_ = false;
        bytes_ = {};
        return rows_;
    }
    /// Replaces them.
    void setRows(Rows rows) {
        undecoded_ = nullptr;
        isAsRead_ = false;
        bytes_ = {};
        rows_ = std::move(rows);
    }
    /// The bytes of a whole number of entries, which the table keeps.
    void setBytes(SharedBytes bytes, const Form& form) {
        undecoded_ = &form;
        isAsRead_ = true;
        bytes_ = std::move(bytes);
        rows_ = {};
    }

    /// How many rows there are.
    std::size_t size() const {
        return undecoded_ != nullptr ? bytes_.size() / undecoded_->width : rows_.size();
    }
    /// Whether somebody has asked for the rows.
    bool isDecoded() const { return undecoded_ == nullptr; }
    /// Whether nobody can have edited the rows since they were read; then bytes() holds them.
    bool isAsRead() const { return isAsRead_; }
    /// What setBytes was given; empty once somebody may have edited the rows.
    ByteView bytes() const { return bytes_.view(); }

private:
    mutable Rows rows_;
    mutable const Form* undecoded_ = nullptr;
    SharedBytes bytes_;
    bool isAsRead_ = false;
};

/// Goes over the entries in a run of bytes. It gives each by value and yet counts as random access,
/// so that a vector takes its memory once and every entry is written once.
template <class Columns>
class EntryIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = typename Columns::Entry;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = value_type;

    explicit EntryIterator(BytePlace at) : at_(at) {}

    value_type operator*() const { return Columns::decode(at_); }
    EntryIterator& operator++() {
        at_ += Columns::width;
        return *this;
    }
    difference_type operator-(const EntryIterator& other) const {
        return (at_ - other.at_) / static_cast<difference_type>(Columns::width);
    }
    bool operator==(const EntryIterator&) const = default;

private:
    BytePlace at_;
};

// MARK: Rows of a layout

/// When a table ends before its count is used up.
enum class Stop {
    WhenStartIsPastEnd,  ///< An entry that is cut short or missing is read and raises RangeError.
    WhenStartIsPastEndOfWholeEntries,  ///< The same; an entry is read as one piece, not by columns.
    WhenEntryDoesNotFit                ///< An entry that is cut short or missing ends the table.
};

/// A table that is a member of its owner.
template <auto Member, const auto& Columns>
struct TableMember {
    using Owner = decltype(ownerOf(Member));
    using Its = std::remove_cvref_t<decltype(Columns)>;
    using Entry = typename Its::Entry;
    using Rows = std::vector<Entry>;

    static auto& table(Record& owner) { return static_cast<Owner&>(owner).*Member; }
    static const auto& table(const Record& owner) {
        return static_cast<const Owner&>(owner).*Member;
    }

    static Rows rowsFrom(ByteView bytes) {
        using Iterator = EntryIterator<Its>;
        const BytePlace first(bytes);
        BytePlace end = first;
        end += bytes.size();
        return Rows(Iterator(first), Iterator(end));
    }
    static constexpr typename Table<Entry>::Form form = {.width = Its::width, .decode = rowsFrom};

    template <Stop stop>
    static void decode(Record& owner, AtomReader& in) {
        // The count stands right in front of the entries, in a row of its own.
        ByteReader before = in;
        before.seek(in.position() - sizeof(std::uint32_t));
        const std::uint32_t count = before.u32();
        const std::size_t whole = in.remaining() / Its::width;
        if (count > whole && stop != Stop::WhenEntryDoesNotFit) {
            in.skip(whole * Its::width);
            if (stop == Stop::WhenStartIsPastEndOfWholeEntries) in.skip(Its::width);
            Its::skip(in);
        }
        const std::size_t present = std::min<std::size_t>(count, whole);
        table(owner).setBytes(in.takeShared(present * Its::width), form);
    }

    static void encode(const Record& owner, ByteWriter& out) {
        if constexpr (!Its::areVerbatim) {
            for (const Entry& entry : table(owner).rows()) Its::encode(entry, out);
        } else if (table(owner).isAsRead()) {
            out.append(table(owner).bytes());
        } else {
            encodeInBlocks(table(owner).rows(), out);
        }
    }
    static void encodeInBlocks(std::span<const Entry> rows, ByteWriter& out) {
        constexpr std::size_t kBlockLength = 16384 / Its::width;
        while (!rows.empty()) {
            const auto block = rows.first(std::min(kBlockLength, rows.size()));
            WritablePlace to(out.grow(block.size() * Its::width));
            for (const Entry& entry : block) {
                Its::encode(entry, to);
                to += Its::width;
            }
            rows = rows.subspan(block.size());
        }
    }

    static bool isAsRead(const Record& owner) { return table(owner).isAsRead(); }

    // Access by those who do not know the entry's class.

    static std::size_t size(const Record& owner) { return table(owner).size(); }

    static Value cell(const Record& owner, std::size_t row, std::size_t column) {
        const Entry entry =
            table(owner).isDecoded() ? table(owner).rows()[row] : Its::decode(placeOf(owner, row));
        if constexpr (std::is_integral_v<Entry>) {
            return Value(entry);
        } else {
            return Columns.fields[column].get(entry);
        }
    }
    static void setCell(Record& owner, std::size_t row, std::size_t column, const Value& value) {
        if constexpr (std::is_integral_v<Entry>) {
            table(owner).rows()[row] = fromValue<Entry>(value);
        } else {
            Columns.fields[column].set(table(owner).rows()[row], value);
        }
    }
    static void insertRows(Record& owner, std::size_t row, std::size_t count) {
        Rows& rows = table(owner).rows();
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(row), count, Entry());
    }
    static void removeRows(Record& owner, std::size_t row, std::size_t count) {
        Rows& rows = table(owner).rows();
        const auto first = rows.begin() + static_cast<std::ptrdiff_t>(row);
        rows.erase(first, first + static_cast<std::ptrdiff_t>(count));
    }
    static void integers(const Record& owner, std::size_t column, std::size_t firstRow,
                         std::span<std::uint64_t> into) {
        Its::visit(column, [&]<class Column>(std::type_identity<Column>, std::size_t offset) {
            if constexpr (std::is_integral_v<decltype(Column::get(std::declval<Entry>()))>) {
                if (table(owner).isDecoded()) {
                    const std::span rows(table(owner).rows());
                    std::ranges::transform(
                        rows.subspan(firstRow, into.size()), into.begin(), [](const Entry& entry) {
                            return static_cast<std::uint64_t>(Column::get(entry));
                        });
                    return;
                }
                BytePlace at = placeOf(owner, firstRow);
                at += offset;
                for (std::uint64_t& number : into) {
                    number = static_cast<std::uint64_t>(decodeAt<typename Column::Codec>(at));
                    at += Its::width;
                }
            } else {
                assert(!"no column of integers");
            }
        });
    }
    static BytePlace placeOf(const Record& owner, std::size_t row) {
        return BytePlace(table(owner).bytes().subspan(row * Its::width));
    }

    static constexpr ListAccess access = {.columns = Columns.fields,
                                          .size = size,
                                          .cell = cell,
                                          .setCell = setCell,
                                          .insertRows = insertRows,
                                          .removeRows = removeRows,
                                          .integers = integers};
};

/// The entries of a table. Their count is the row in front of them.
template <auto Member, const auto& Columns, Stop stop>
constexpr Field table(std::string_view name) {
    using Its = TableMember<Member, Columns>;
    return {.name = name,
            .kind = ValueKind::List,
            .decode = Its::template decode<stop>,
            .encode = Its::encode,
            .list = &Its::access,
            .untouched = Its::isAsRead};
}

/// The count in front of a table. The one that is written is the table's length.
template <auto Member>
constexpr Field entryCount() {
    using Owner = decltype(ownerOf(Member));
    Field row = {.width = sizeof(std::uint32_t)};
    row.decode = [](Record&, AtomReader& in) { in.skip(sizeof(std::uint32_t)); };
    row.encode = [](const Record& owner, ByteWriter& out) {
        out.u32(static_cast<std::uint32_t>((static_cast<const Owner&>(owner).*Member).size()));
    };
    row.untouched = [](const Record& owner) {
        return (static_cast<const Owner&>(owner).*Member).isAsRead();
    };
    return row;
}

/// The same where the count that was read is a property, which cannot be set.
template <auto Member, auto Count>
constexpr Field entryCountRead(std::string_view name) {
    Field row = field<Count, U32>(name);
    row.set = nullptr;
    row.encode = entryCount<Member>().encode;
    row.untouched = entryCount<Member>().untouched;
    return row;
}

}  // namespace vexqt
