#include "apps/vexqt/json_document.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace vexqt::cli {

using Form = JsonWriter::Form;

// MARK: Values

namespace {

/// The value's text where JSON has a text, so that it can go without quotes; absent for all else.
std::optional<std::string> textOf(const Field& field, const Value& value) {
    if (field.display == Display::Code)
        if (const auto code = integerFrom(value)) return textFromCode(static_cast<OSType>(*code));
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* date = std::get_if<Date>(&value)) return textFromDate(*date);
    return std::nullopt;
}

struct ValueWriter {
    JsonWriter& json;

    void operator()(bool value) const { json.boolean(value); }
    void operator()(std::int64_t value) const { json.number(value); }
    void operator()(std::uint64_t value) const { json.number(value); }
    void operator()(double value) const { json.number(value); }
    void operator()(float value) const { json.number(double{value}); }
    void operator()(const Bytes& value) const { json.hex(value); }
    void operator()(const Number& value) const { std::visit(*this, value.held()); }
    void operator()(const Picture& value) const {
        json.beginObject(Form::Inline);
        json.key("width");
        json.number(std::uint64_t{value.width()});
        json.key("height");
        json.number(std::uint64_t{value.height()});
        json.endObject();
    }
    void operator()(const Matrix& value) const {
        json.beginArray(Form::Inline);
        for (const double element : value) json.number(element);
        json.endArray();
    }
    void operator()(const Color& value) const {
        json.beginObject(Form::Inline);
        const auto component = [this](std::string_view name, double part) {
            json.key(name);
            json.number(part);
        };
        if (value.isGrey()) {
            component("white", value.white());
        } else {
            component("red", value.red());
            component("green", value.green());
            component("blue", value.blue());
        }
        component("alpha", value.alpha());
        json.endObject();
    }
    /// Absent values, and references to atoms, which are in the tree anyway.
    template <class Other>
    void operator()(const Other&) const {
        json.null();
    }
};

}  // namespace

void writeValue(JsonWriter& json, const Field& field, const Value& value) {
    if (const auto text = textOf(field, value)) return json.text(*text);
    std::visit(ValueWriter{json}, static_cast<const ValueVariant&>(value));
}

std::string bareText(const Field& field, const Value& value) {
    if (const auto text = textOf(field, value)) return *text;
    TextOutput out;
    JsonWriter json(out, JsonWriter::Layout::Indented);
    writeValue(json, field, value);
    std::string written = out.text();
    if (written.starts_with('"')) written = written.substr(1, written.size() - 2);
    return written;
}

// MARK: Tables

namespace {

bool isPlainList(const ListAccess& list) {
    return list.columns.size() == 1 && list.columns[0].name.empty();
}

/// A text that is copied very often, with no more than a few moves of the processor: in steps of
/// one length, so that what is copied last may reach behind its end.
class Piece {
public:
    Piece() = default;
    explicit Piece(std::string text) : text_(std::move(text)), length_(text_.size()) {
        text_.resize(room());
    }

    /// What it may write to, its own end included.
    std::size_t room() const { return (length_ + kStep - 1) / kStep * kStep; }
    /// Gives its end.
    char* put(char* to) const {
        for (std::size_t i = 0; i < length_; i += kStep) std::memcpy(to + i, &text_[i], kStep);
        return to + length_;
    }

private:
    static constexpr std::size_t kStep = 32;

    std::string text_;
    std::size_t length_ = 0;
};

/// The digits of numbers of up to four. Most numbers in tables are such, and of all lengths in
/// turn; looked up, they cost no branch that the processor would have to guess.
class ShortNumbers {
public:
    constexpr ShortNumbers() {
        for (std::size_t number = 0; number < digits_.size(); ++number) {
            const std::size_t length = lengthOf(number);
            std::size_t rest = number;
            for (std::size_t i = length; i-- > 0; rest /= 10)
                digits_[number][i] = static_cast<char>('0' + rest % 10);
        }
    }

    constexpr std::size_t size() const { return digits_.size(); }
    /// Gives the end of the digits; four bytes are written to in any case.
    char* put(char* to, std::size_t number) const {
        std::memcpy(to, digits_[number].data(), kMost);
        return to + lengthOf(number);
    }

private:
    static constexpr std::size_t kMost = 4;
    static constexpr std::size_t lengthOf(std::size_t number) {
        return 1u + (number > 9 ? 1u : 0u) + (number > 99 ? 1u : 0u) + (number > 999 ? 1u : 0u);
    }

    std::array<std::array<char, kMost>, 10'000> digits_{};
};
constexpr ShortNumbers kShortNumbers;

/// Writes a table's rows a block at a time.
///
/// A movie has tables of ten million rows, and their numbers should cost little more than their
/// digits. So whatever stands between two numbers is put together once, a column of integers is
/// fetched many rows at a time, and room for many rows is asked for at once.
class TableWriter {
public:
    TableWriter(JsonWriter& json, const Record& owner, const ListAccess& list)
        : json_(json), owner_(owner), list_(list), count_(list.size(owner)) {}

    void write() {
        const bool fitsOnLine = isPlainList(list_) && count_ <= kNumbersOnLine;
        json_.beginArray(fitsOnLine ? Form::Inline : Form::Spread);
        if (count_ > 0) {
            prepare();
            for (std::size_t first = 0; first < count_; first += kBlock)
                writeBlock(first, std::min(kBlock, count_ - first));
            if (!isPlainList(list_)) json_.output().write("}");
            json_.noteElements();
        }
        json_.endArray();
    }

private:
    struct Column {
        const Field* field = nullptr;
        bool isFetched = false;
        Piece before;  ///< What stands between the value before and this one.
        std::vector<std::uint64_t> numbers;
    };
    static constexpr std::size_t kBlock = 2048;
    static constexpr std::size_t kNumbersOnLine = 20;
    static constexpr std::size_t kLongestInteger = 20;

    bool isFetched(const Field& field) const {
        return list_.integers != nullptr && field.display != Display::Code && !field.isOptional &&
               (field.kind == ValueKind::Unsigned || field.kind == ValueKind::Signed);
    }

    /// Plain numbers share a line, entries have one each.
    void prepare() {
        const std::string blank(json_.blank());
        const std::string gap = json_.gap();
        std::string begin, end;
        for (const Field& field : list_.columns) {
            Column& column = columns_.emplace_back();
            column.field = &field;
            column.isFetched = isFetched(field);
            if (column.isFetched) column.numbers.resize(std::min(count_, kBlock));
            if (isPlainList(list_)) continue;
            const std::string key = jsonText(field.name) + ":" + blank;
            if (columns_.size() == 1) {
                begin = "{" + key;
                end = "}";
            } else {
                column.before = Piece("," + blank + key);
            }
        }
        beforeFirstRow_ = Piece(gap + begin);
        beforeLine_ = Piece(end + "," + (gap.empty() && isPlainList(list_) ? blank : gap) + begin);
        beforeRow_ = isPlainList(list_) ? Piece("," + blank) : beforeLine_;
        rowRoom_ = std::max({beforeFirstRow_.room(), beforeLine_.room(), beforeRow_.room()});
        for (const Column& column : columns_) rowRoom_ += column.before.room() + kLongestInteger;
    }

    const Piece& beforeRow(std::size_t row) const {
        if (row == 0) return beforeFirstRow_;
        return row % kNumbersOnLine == 0 ? beforeLine_ : beforeRow_;
    }

    void writeBlock(std::size_t first, std::size_t count) {
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (columns_[i].isFetched)
                list_.integers(owner_, i, first, std::span(columns_[i].numbers).first(count));
        Output& out = json_.output();
        const std::size_t rowsAtOnce =
            areAllFetched() ? std::max<std::size_t>(1, Output::kCapacity / 4 / rowRoom_) : 1;
        for (std::size_t row = 0; row < count;) {
            const std::size_t end = std::min(count, row + rowsAtOnce);
            char* to = out.room((end - row) * rowRoom_);
            for (; row < end; ++row) to = writeRow(to, first, row);
            out.advance(to);
        }
    }
    bool areAllFetched() const { return std::ranges::all_of(columns_, &Column::isFetched); }

    char* writeRow(char* to, std::size_t first, std::size_t row) {
        to = beforeRow(first + row).put(to);
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const Column& column = columns_[i];
            to = column.before.put(to);
            to = column.isFetched ? writeInteger(to, column, column.numbers[row])
                                  : writeCell(to, i, first + row);
        }
        return to;
    }

    static char* writeInteger(char* to, const Column& column, std::uint64_t number) {
        if (number < kShortNumbers.size()) return kShortNumbers.put(to, number);
        char* const limit = to + kLongestInteger;
        return column.field->kind == ValueKind::Signed
                   ? std::to_chars(to, limit, static_cast<std::int64_t>(number)).ptr
                   : std::to_chars(to, limit, number).ptr;
    }

    /// Any other value goes the way of single values. Gives the room that the row still needs.
    char* writeCell(char* to, std::size_t column, std::size_t row) {
        Output& out = json_.output();
        out.advance(to);
        JsonWriter cell(out, JsonWriter::Layout::OneLine);
        writeValue(cell, list_.columns[column], list_.cell(owner_, row, column));
        return out.room(rowRoom_);
    }

    JsonWriter& json_;
    const Record& owner_;
    const ListAccess& list_;
    std::size_t count_;
    std::vector<Column> columns_;
    Piece beforeFirstRow_, beforeLine_, beforeRow_;
    std::size_t rowRoom_ = 0;
};

void writeProperty(JsonWriter& json, const VexQTAtom& atom, const Field& property) {
    if (property.list != nullptr) return TableWriter(json, atom, *property.list).write();
    writeValue(json, property, property.get != nullptr ? property.get(atom) : Value());
}

void writeRow(JsonWriter& json, const VexQTAtom& atom, const ListAccess& list, std::size_t row) {
    json.beginObject(Form::Inline);
    for (std::size_t i = 0; i < list.columns.size(); ++i) {
        json.key(list.columns[i].name);
        writeValue(json, list.columns[i], list.cell(atom, row, i));
    }
    json.endObject();
}

}  // namespace

void writePlace(JsonWriter& json, const PropertyPlace& place) {
    if (place.isSingle()) return writeValue(json, place.field(), place.value());
    if (place.row) return writeRow(json, *place.atom, *place.property->list, *place.row);
    writeProperty(json, *place.atom, *place.property);
}

// MARK: Atoms

namespace {

void writeText(JsonWriter& json, std::string_view key, std::string_view text) {
    json.key(key);
    json.text(text);
}

void writeNumber(JsonWriter& json, std::string_view key, std::uint64_t number) {
    json.key(key);
    json.number(number);
}

void writeProblems(JsonWriter& json, const std::vector<Problem>& problems) {
    json.key("problems");
    json.beginArray();
    for (const Problem& problem : problems) {
        json.beginObject(Form::Inline);
        writeText(json, "path", problem.path);
        writeNumber(json, "offset", problem.offsetInFile);
        writeText(json, "message", problem.message);
        json.endObject();
    }
    json.endArray();
}

}  // namespace

void writeAtom(JsonWriter& json, const VexQTAtom& atom) {
    json.beginObject();
    writeText(json, "class", atom.atomClass().className);
    writeText(json, "type", atom.atomTypeString());
    writeText(json, "name", atom.atomName());
    json.key("nibName");
    const auto nibName = atom.atomNibName();
    nibName ? json.text(*nibName) : json.null();
    writeNumber(json, "size", atom.atomSize());
    writeNumber(json, "offsetInFile", atom.offsetInFile());
    writeNumber(json, "version", atom.version());
    json.key("flags");
    json.beginArray(Form::Inline);
    for (const std::uint8_t flags : {atom.flags0(), atom.flags1(), atom.flags2()})
        json.number(std::uint64_t{flags});
    json.endArray();
    json.key("unknownData");
    const auto unknown = atom.unknownBytes();
    unknown ? json.hex(*unknown) : json.null();

    json.key("properties");
    json.beginObject();
    for (const Field* property : atom.properties()) {
        json.key(property->name);
        writeProperty(json, atom, *property);
    }
    json.endObject();
    if (const auto declined = atom.declinedClass()) writeText(json, "declined", *declined);

    json.key("children");
    json.beginArray();
    for (const auto& child : atom.children()) writeAtom(json, *child);
    json.endArray();
    json.endObject();
}

void writeDocument(JsonWriter& json, std::string_view file, const VexQTAsset& asset) {
    json.beginObject();
    writeText(json, "file", file);
    json.key("isValid");
    json.boolean(asset.valueForKey("isValid") == Value(true));
    if (!asset.problems().empty()) writeProblems(json, asset.problems());
    json.key("rootAtoms");
    json.beginArray();
    for (const auto& root : asset.rootAtoms()) writeAtom(json, *root);
    json.endArray();
    json.endObject();
}

}  // namespace vexqt::cli
