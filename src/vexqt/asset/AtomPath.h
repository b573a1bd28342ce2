// How people and scripts name an atom or a value in a movie: "moov.trak[vide].tkhd.duration".
//
// A path walks from the roots by four-character codes. A code stands for the first child of that
// type; in brackets behind it stands which other one is meant: trak[1] the second one, trak[soun]
// the first whose media type is 'soun', trak[soun:1] the second of those. A code that has no plain
// form is written in hexadecimal, 0xA96E616D, and blanks at the end of one may be left out. An item
// of keyed metadata goes by its key: moov.meta.ilst[com.example.title].
//
// A key is a path and the name of a property. Rows and cells of a list are named by
// stts.sampleDurations[0].sampleCount or ftyp.compatibleBrands[2].
#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"

namespace vexqt {

/// A text that is no path, or a path that names nothing in this movie. The message says which part
/// of the path failed and what is there instead.
class VEXQT_EXPORT PathError : public Error {
public:
    /// What is wrong: the text itself, or what it names.
    enum class Reason { Malformed, NamesNothing };

    /// With a sentence for people.
    PathError(Reason reason, const std::string& message) : Error(message), reason_(reason) {}
    /// What is wrong.
    Reason reason() const { return reason_; }

private:
    Reason reason_;
};

/// An atom and what it is in. Atoms do not all know their parent, so only the walk down tells.
struct AtomPlace {
    VexQTAtom* atom = nullptr;    ///< Never null in a place that was found.
    VexQTAtom* holder = nullptr;  ///< Null for a root atom.
    VexQTAtom* root = nullptr;    ///< What it lies below; the atom itself where that is a root.
};

/// A property of an atom or, where that is a list, one of its rows or cells.
struct VEXQT_EXPORT PropertyPlace {
    VexQTAtom* atom = nullptr;          ///< What has the property.
    VexQTAtom* root = nullptr;          ///< What the atom lies below.
    const Field* property = nullptr;    ///< The row of the property.
    std::optional<std::size_t> row;     ///< Only of a list.
    std::optional<std::size_t> column;  ///< Of a row; absent where the whole row is meant.

    /// Describes the value: the cell's column or the property.
    const Field& field() const { return column ? property->list->columns[*column] : *property; }
    /// Whether there is one value: neither a list nor a row of several columns.
    bool isSingle() const { return column || property->list == nullptr; }
    /// Absent where there is no single value.
    Value value() const;
    /// Whether there is one value, and it is not worked out from others.
    bool canBeSet() const;
    /// \throws ValueError where there is no single value, where it cannot be set, and for a value
    /// of the wrong kind.
    void setValue(const Value& value) const;
};

/// A text that names an atom or a property, taken apart.
class VEXQT_EXPORT AtomPath {
public:
    /// The roots of a movie, or any siblings.
    using Atoms = std::vector<std::unique_ptr<VexQTAtom>>;

    /// \throws PathError for a text that is no path.
    explicit AtomPath(std::string_view text);

    /// \throws PathError where the path names no atom below these roots.
    AtomPlace placeIn(const Atoms& roots) const;
    /// The atom alone. \throws PathError where the path names none below these roots.
    VexQTAtom& atomIn(const Atoms& roots) const { return *placeIn(roots).atom; }
    /// Which rows a path may name: those that are there, or also the one behind the last, where
    /// rows are inserted.
    enum class Rows { There, ThereAndEnd };

    /// The last part of the path names a property, or the last two a column.
    /// \throws PathError where it names no property below these roots.
    PropertyPlace propertyIn(const Atoms& roots, Rows rows = Rows::There) const;

    /// The path of an atom, by ordinals alone; empty for one that is not below these roots.
    static std::string of(const VexQTAtom& atom, const Atoms& roots);
    /// How each atom is named among its siblings: "mvhd", "trak", "trak[1]".
    static std::vector<std::string> segmentsOf(const Atoms& siblings);
    /// The text of the key that an item of keyed metadata belongs to; absent for everything else.
    static std::optional<std::string> keyOf(const VexQTAtom& atom);
    /// The kind of media that an atom or one of its children says that it is, as the brackets of
    /// trak[vide] ask for it.
    static std::optional<OSType> mediaTypeOf(const VexQTAtom& atom);

private:
    struct Segment {
        std::string name;
        std::optional<std::string> selector;  ///< What stands in the brackets.
    };
    class Walk;

    std::vector<Segment> segments_;
};

}  // namespace vexqt
