// List properties that are plain vectors.
#pragma once

#include <functional>

#include "vexqt/core/field.h"

namespace vexqt {

/// What lists of every kind share: the vector is a member of its owner.
template <auto Member>
struct VectorMember {
    using Owner = decltype(ownerOf(Member));
    using Element = typename decltype(typeOf(Member))::value_type;

    static auto& list(Record& owner) { return static_cast<Owner&>(owner).*Member; }
    static const auto& list(const Record& owner) {
        return static_cast<const Owner&>(owner).*Member;
    }
    static std::size_t size(const Record& owner) { return list(owner).size(); }
    static void insertRows(Record& owner, std::size_t row, std::size_t count) {
        auto& rows = list(owner);
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(row), count, Element());
    }
    static void removeRows(Record& owner, std::size_t row, std::size_t count) {
        auto& rows = list(owner);
        const auto first = rows.begin() + static_cast<std::ptrdiff_t>(row);
        rows.erase(first, first + static_cast<std::ptrdiff_t>(count));
    }
};

/// A list of entries, each with the columns that its class lists. EntryBytes is how an entry of a
/// length of its own is written.
template <auto Member, const auto& Columns, auto EntryBytes = nullptr>
struct EntryList : VectorMember<Member> {
    using List = VectorMember<Member>;
    static Value cell(const Record& owner, std::size_t row, std::size_t column) {
        return Columns[column].get(List::list(owner)[row]);
    }
    static void setCell(Record& owner, std::size_t row, std::size_t column, const Value& value) {
        if (Columns[column].set == nullptr) throwWrongKind();
        Columns[column].set(List::list(owner)[row], value);
    }
    using EntryWriter = Bytes (*)(const Record& owner, std::size_t row);
    static constexpr EntryWriter entryBytes() {
        if constexpr (std::is_null_pointer_v<decltype(EntryBytes)>) {
            return nullptr;
        } else {
            return [](const Record& owner, std::size_t row) -> Bytes {
                return std::invoke(EntryBytes, List::list(owner)[row]);
            };
        }
    }
    static constexpr ListAccess access = {.columns = Columns,
                                          .size = List::size,
                                          .cell = cell,
                                          .setCell = setCell,
                                          .insertRows = List::insertRows,
                                          .removeRows = List::removeRows,
                                          .entryBytes = entryBytes()};
};

/// A list of plain integers.
template <auto Member, Display display>
struct NumberList : VectorMember<Member> {
    using List = VectorMember<Member>;
    using Element = typename List::Element;

    static Value cell(const Record& owner, std::size_t row, std::size_t) {
        return Value(List::list(owner)[row]);
    }
    static void setCell(Record& owner, std::size_t row, std::size_t, const Value& value) {
        List::list(owner)[row] = fromValue<Element>(value);
    }
    static void integers(const Record& owner, std::size_t, std::size_t firstRow,
                         std::span<std::uint64_t> into) {
        const auto& rows = List::list(owner);
        for (std::size_t i = 0; i < into.size(); ++i)
            into[i] = static_cast<std::uint64_t>(rows[firstRow + i]);
    }
    static constexpr Field columns[] = {described<Element>("").as(display)};
    static constexpr ListAccess access = {.columns = columns,
                                          .size = List::size,
                                          .cell = cell,
                                          .setCell = setCell,
                                          .insertRows = List::insertRows,
                                          .removeRows = List::removeRows,
                                          .integers = integers};
};

/// A list property that an irregular row of its class reads and writes.
template <auto Member, const auto& Columns, auto EntryBytes = nullptr>
constexpr Field entryList(std::string_view name) {
    return {.name = name,
            .kind = ValueKind::List,
            .list = &EntryList<Member, Columns, EntryBytes>::access};
}
/// A list of plain integers, which an irregular row reads and writes.
template <auto Member, Display display = Display::Plain>
constexpr Field numberList(std::string_view name) {
    return {.name = name, .kind = ValueKind::List, .list = &NumberList<Member, display>::access};
}

}  // namespace vexqt
