#include "vexqt/core/field.h"

#include <gtest/gtest.h>

namespace vexqt {
namespace {

TEST(Field, TypeNameIsTheWordOfItsKind) {
    const std::pair<ValueKind, std::string_view> cases[] = {
        {ValueKind::None, ""},
        {ValueKind::Boolean, "boolean"},
        {ValueKind::Unsigned, "unsigned"},
        {ValueKind::Signed, "signed"},
        {ValueKind::Floating, "floating"},
        {ValueKind::Text, "text"},
        {ValueKind::Instant, "date"},
        {ValueKind::Data, "bytes"},
        {ValueKind::Transformation, "matrix"},
        {ValueKind::Color, "color"},
        {ValueKind::Number, "number"},
        {ValueKind::Picture, "picture"},
        {ValueKind::List, "table"},
    };
    for (const auto& [kind, word] : cases) EXPECT_EQ(typeName({.kind = kind}), word);
}

TEST(Field, TypeNameOfAnIntegerThatIsACodeIsCode) {
    EXPECT_EQ(typeName({.kind = ValueKind::Unsigned, .display = Display::Code}), "code");
    EXPECT_EQ(typeName({.kind = ValueKind::Unsigned, .display = Display::Hexadecimal}), "unsigned");
}

}  // namespace
}  // namespace vexqt
