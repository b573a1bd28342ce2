#include "testing/text_claims.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "apps/vexqt/json_document.h"
#include "apps/vexqt/value_text.h"
#include "testing/small_movie.h"

namespace vexqt::testing {

using nlohmann::json;

namespace {

std::string documentOf(const VexQTAsset& asset, cli::JsonWriter::Layout layout) {
    cli::TextOutput out;
    cli::JsonWriter writer(out, layout);
    cli::writeDocument(writer, "movie", asset);
    return out.text();
}

json parsed(const std::string& text) {
    json document = json::parse(text, nullptr, false);
    claim(!document.is_discarded(), "the JSON is none, or no UTF-8");
    return document;
}

void claimNumber(const json& written, const Value& value, const std::string& name) {
    if (const auto* number = std::get_if<double>(&value)) {
        const bool isFinite = std::isfinite(*number);
        claim(
            isFinite ? written.is_number() && written.get<double>() == *number : written.is_null(),
            name + " reads back as another number");
    } else if (const auto* count = std::get_if<std::uint64_t>(&value)) {
        if (written.is_string()) return;  // A four-character code.
        claim(written.is_number_integer() && written.get<std::uint64_t>() == *count,
              name + " reads back as another count");
    } else if (const auto* shift = std::get_if<std::int64_t>(&value)) {
        if (written.is_string()) return;
        claim(written.is_number_integer() && written.get<std::int64_t>() == *shift,
              name + " reads back as another integer");
    }
}

void claimGivesBack(const Field& field, const Value& value, const std::string& name) {
    const bool isPicture = field.kind == ValueKind::Picture;
    if (value.isAbsent() || isPicture) return;
    if (const auto* number = std::get_if<double>(&value)) {
        // Fields that hold a float round their largest patterns up to a number that has none.
        const bool isOutOfRange = field.range.isKnown() && !field.range.has(*number);
        if (!std::isfinite(*number) || isOutOfRange) return;
    }
    if (field.kind == ValueKind::Transformation) return;  // Its cells may be no numbers.
    const std::string text = cli::bareText(field, value);
    Value back;
    try {
        back = cli::valueFromText(field, text);
    } catch (const Error& error) {
        throw BrokenClaim(name + ": " + text + " is not taken: " + error.what());
    }
    // A number object takes its form from the text: a float without a fraction becomes an integer.
    const bool isSame =
        field.kind == ValueKind::Number ? doubleFrom(back) == doubleFrom(value) : back == value;
    claim(isSame, name + ": " + text + " is taken for another value");
}

void claimSame(const json& written, VexQTAtom& atom, const VexQTAsset& asset, int& most) {
    claim(written.at("class") == std::string(atom.atomClass().className), "another class");
    claimNumber(written.at("size"), Value(atom.atomSize()), "size");
    claimNumber(written.at("offsetInFile"), Value(atom.offsetInFile()), "offsetInFile");
    for (const Field* field : atom.properties()) {
        const std::string name(field->name);
        const auto property = written.at("properties").find(name);
        claim(property != written.at("properties").end(), name + " is not in the JSON");
        if (field->list != nullptr) {
            claim(property->size() == field->list->size(atom), name + " has another length");
            continue;
        }
        const Value value = field->get(atom);
        claimNumber(*property, value, name);
        if (field->set != nullptr) claimGivesBack(*field, value, name);
    }
    // A path walks past every sibling, so that those of all atoms would take the square of them.
    if (most-- > 0) {
        const std::string path = AtomPath::of(atom, asset.rootAtoms());
        claim(!path.empty(), "an atom has no path");
        claim(&AtomPath(path).atomIn(asset.rootAtoms()) == &atom, path + " leads elsewhere");
    }
    const json& children = written.at("children");
    claim(children.size() == atom.children().size(), "other children");
    for (std::size_t i = 0; i < children.size(); ++i)
        claimSame(children[i], *atom.children()[i], asset, most);
}

}  // namespace

void checkJson(ByteView movie) {
    const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
    const std::string line = documentOf(*asset, cli::JsonWriter::Layout::OneLine);
    const json document = parsed(line);
    claim(line.find('\n') == std::string::npos || line.find('\n') == line.size() - 1,
          "one line of JSON is several");
    claim(parsed(documentOf(*asset, cli::JsonWriter::Layout::Indented)) == document,
          "the two layouts of JSON differ");
    const json& roots = document.at("rootAtoms");
    claim(roots.size() == asset->rootAtoms().size(), "other root atoms");
    int most = 40;
    for (std::size_t i = 0; i < roots.size(); ++i)
        claimSame(roots[i], *asset->rootAtoms()[i], *asset, most);
}

void checkPath(Decisions& decisions) {
    static const Bytes movie = smallMovie();
    const Bytes pathBytes = decisions.bytes(200);
    const std::string path(pathBytes.begin(), pathBytes.end());
    const std::string value(decisions.rest().begin(), decisions.rest().end());
    const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
    try {
        AtomPath(path).placeIn(asset->rootAtoms());
    } catch (const PathError&) {
    }
    try {
        const PropertyPlace place = AtomPath(path).propertyIn(asset->rootAtoms());
        cli::TextOutput out;
        cli::JsonWriter writer(out, cli::JsonWriter::Layout::OneLine);
        cli::writePlace(writer, place);
        parsed(out.text());
        if (!place.isSingle()) return;
        place.setValue(cli::valueFromText(place.field(), value));
        claimGivesBack(place.field(), place.value(), path);
        cli::readableText(place.field(), place.value());
    } catch (const PathError&) {
    } catch (const ValueError&) {
    }
}

}  // namespace vexqt::testing
