#pragma once

#include <cstdint>
#include <vector>

#include "apps/vexqt/Output.h"
#include "vexqt/platform/bytes_types.h"

namespace vexqt::cli {

/// Writes JSON straight into an output's buffer: nothing is kept but which brackets are open.
class JsonWriter {
public:
    enum class Layout {
        Indented,  ///< A line for every member, two spaces a level.
        OneLine    ///< Nothing that is not needed.
    };
    /// Whether the members of an object or array get a line each where the layout is indented.
    enum class Form { Spread, Inline };

    JsonWriter(Output& out, Layout layout) : out_(out), isIndented_(layout == Layout::Indented) {}

    void beginObject(Form form = Form::Spread) { begin('{', form); }
    void endObject() { end('}'); }
    void beginArray(Form form = Form::Spread) { begin('[', form); }
    void endArray() { end(']'); }

    /// In front of each member of an object.
    void key(std::string_view name);

    void null() { element("null"); }
    void boolean(bool value) { element(value ? "true" : "false"); }
    void number(std::uint64_t value);
    void number(std::int64_t value);
    /// With the digits that read back to the same double; null for what is not finite.
    void number(double value);
    /// Control characters are escaped, U+007F to U+009F too; what is no UTF-8 becomes U+FFFD.
    void text(std::string_view utf8);
    /// A text of two lower-case hexadecimal digits a byte.
    void hex(ByteView bytes);

    // For those who write many elements faster than one by one.

    Output& output() { return out_; }
    /// What stands between an element of the open array and the comma or bracket before it.
    std::string gap() const;
    /// What stands behind the colon, and behind the comma of an inline form.
    std::string_view blank() const { return isIndented_ ? " " : ""; }
    /// Says that elements of the open array have been written to the output.
    void noteElements() { open_.back().isEmpty = false; }

private:
    struct Level {
        bool isSpread;
        bool isEmpty;
    };

    void begin(char bracket, Form form);
    void end(char bracket);
    void beforeElement();
    void element(std::string_view text);
    void writeQuoted(std::string_view utf8);

    Output& out_;
    bool isIndented_;
    bool followsKey_ = false;
    std::vector<Level> open_;
};

/// A text as a JSON string, quotes included.
std::string jsonText(std::string_view utf8);

}  // namespace vexqt::cli
