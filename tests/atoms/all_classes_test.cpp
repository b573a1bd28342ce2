#include "all_classes.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <set>

#include "testing/LogLines.h"
#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

class EveryClass : public ::testing::TestWithParam<const AtomClass*> {
protected:
    const AtomClass& cls() const { return *GetParam(); }
    std::unique_ptr<VexQTAtom> made() const { return cls().create(); }

    /// The rows that are properties.
    std::vector<const Field*> named() const {
        std::vector<const Field*> properties;
        for (const Field& field : cls().fields)
            if (!field.name.empty()) properties.push_back(&field);
        return properties;
    }
};

std::string nameOf(const ::testing::TestParamInfo<const AtomClass*>& info) {
    return std::string(info.param->className);
}
INSTANTIATE_TEST_SUITE_P(, EveryClass, ::testing::ValuesIn(kAllClasses), nameOf);

/// Two different values of a property's kind, none of them a default.
std::array<Value, 2> valuesOf(const Field& field) {
    switch (field.kind) {
        case ValueKind::Boolean:
            return {true, false};
        case ValueKind::Unsigned: {
            const std::uint64_t most = ~std::uint64_t{0} >> (64 - field.bits);
            return {most - 1, most / 2};
        }
        case ValueKind::Signed: {
            const std::int64_t least =
                std::numeric_limits<std::int64_t>::min() >> (64 - field.bits);
            return {least + 1, std::int64_t{5}};
        }
        case ValueKind::Floating:
            return {-0.75, 2.5};
        case ValueKind::Text:
            return {"some text", "other"};
        case ValueKind::Instant:
            return {Date(std::chrono::seconds(1234567890)), Date(std::chrono::seconds(5))};
        case ValueKind::Data:
            return {Bytes{1, 2, 3}, Bytes{}};
        case ValueKind::Transformation:
            return {Matrix{1, 2, 3, 4, 5, 6, 7, 8, 9}, Matrix{9, 8, 7, 6, 5, 4, 3, 2, 1}};
        case ValueKind::Color:
            return {Color::rgb(0.25, 0.5, 0.75, 0.5), Color::grey(0.5)};
        case ValueKind::Number:
            return {Number(-7), Number(1.5F)};
        case ValueKind::Picture:
            return {Picture({1, 1}, {1, 2, 3, 4}), Picture({1, 1}, {4, 3, 2, 1})};
        case ValueKind::None:
        case ValueKind::List:
            break;
    }
    return {};
}

/// A value that no property of this kind takes.
Value valueOfAnotherKind(const Field& field) {
    if (field.kind == ValueKind::Text) return Bytes{1};
    return "text";
}

/// Whether a property is another one in another form: it is not listed, and the two change
/// together.
bool isOtherForm(const AtomClass& cls, std::string_view property) {
    return &cls == &VexQTdataAtom::kClass && property == "intValue";
}

TEST(AllClasses, AreListedOnceEach) {
    std::set<std::string_view> names;
    for (const AtomClass* cls : kAllClasses)
        EXPECT_TRUE(names.insert(cls->className).second) << cls->className;
}

TEST_P(EveryClass, IsNamedAfterItsPrefix) {
    EXPECT_TRUE(cls().className.starts_with("VexQT"));
    EXPECT_FALSE(cls().atomName.empty());
}

TEST_P(EveryClass, MakesAtomsOfItself) {
    const auto atom = made();
    ASSERT_NE(atom, nullptr);
    EXPECT_EQ(&atom->atomClass(), &cls());
    EXPECT_EQ(atom->atomType(), cls().type);
    EXPECT_EQ(atom->parent(), nullptr);
    EXPECT_TRUE(atom->children().empty());
    EXPECT_EQ(atom->offsetInFile(), 0U);
}

TEST_P(EveryClass, HasChildrenOfListedClasses) {
    std::set<OSType> types;
    for (const ChildRule& rule : cls().children) {
        if (rule.cls != nullptr) {
            EXPECT_EQ(std::ranges::count(kAllClasses, rule.cls), 1) << rule.cls->className;
        }
        EXPECT_TRUE(types.insert(rule.type != 0 ? rule.type : rule.cls->type).second);
    }
}

TEST_P(EveryClass, NamesItsPropertiesOnce) {
    std::set<std::string_view> names;
    for (const Field* property : named())
        EXPECT_TRUE(names.insert(property->name).second) << property->name;
}

TEST_P(EveryClass, FindsItsPropertiesByName) {
    const auto atom = made();
    for (const Field* property : named())
        EXPECT_EQ(atom->propertyNamed(property->name), property) << property->name;
}

TEST_P(EveryClass, ListsEachOfItsPropertiesOnce) {
    std::multiset<std::string_view> listed;
    for (const Field* property : made()->properties()) {
        ASSERT_NE(property, nullptr);
        listed.insert(property->name);
    }
    std::multiset<std::string_view> names;
    for (const Field* property : named())
        if (!isOtherForm(cls(), property->name)) names.insert(property->name);
    EXPECT_EQ(listed, names);
}

TEST_P(EveryClass, SaysWhatItsPropertiesAre) {
    for (const Field* property : named()) {
        SCOPED_TRACE(property->name);
        EXPECT_NE(property->kind, ValueKind::None);
        EXPECT_EQ(property->list != nullptr, property->kind == ValueKind::List);
        EXPECT_NE(property->get != nullptr, property->list != nullptr);
        const bool isSized = property->kind == ValueKind::Unsigned ||
                             property->kind == ValueKind::Signed ||
                             property->kind == ValueKind::Floating;
        if (isSized) {
            EXPECT_GT(property->bits, 0);
        }
        if (property->display != Display::Plain && property->list == nullptr) {
            EXPECT_EQ(property->kind, ValueKind::Unsigned);
        }
    }
}

TEST_P(EveryClass, OfAFixedLengthHasRowsOfThatLength) {
    if (cls().accepts.least != cls().accepts.most) return;
    const std::size_t header = cls().header == HeaderRule::None ? 0 : 8;
    for (const Field& field : cls().fields)
        if (field.decode != nullptr && field.width == 0) return;  // What varies inside.
    EXPECT_EQ(header + wireWidth(cls().fields), cls().accepts.least);
}

TEST_P(EveryClass, RefusesLengthsThatItDoesNotAccept) {
    const LengthRule accepted = cls().accepts;
    if (accepted.least > 0) {
        EXPECT_EQ(VexQTAtom::make(cls(), zeros(accepted.least - 1), nullptr, 0), nullptr);
    }
    if (accepted.most < 1000) {
        EXPECT_EQ(VexQTAtom::make(cls(), zeros(accepted.most + 1), nullptr, 0), nullptr);
    }
}

TEST_P(EveryClass, GivesBackEveryValueThatIsSetByName) {
    for (const Field* property : named()) {
        if (property->set == nullptr) continue;
        SCOPED_TRACE(property->name);
        const auto atom = made();
        for (const Value& value : valuesOf(*property)) {
            atom->setValueForKey(value, property->name);
            EXPECT_EQ(atom->valueForKey(property->name), value) << value.index();
        }
    }
}

TEST_P(EveryClass, SetsOnePropertyAndNoOther) {
    for (const Field* property : named()) {
        if (property->set == nullptr || isOtherForm(cls(), property->name)) continue;
        const auto atom = made();
        std::map<std::string_view, Value> before;
        for (const Field* other : named())
            if (other->set != nullptr && !isOtherForm(cls(), other->name))
                before[other->name] = atom->valueForKey(other->name);
        atom->setValueForKey(valuesOf(*property)[0], property->name);
        for (const auto& [name, value] : before)
            if (name != property->name) {
                EXPECT_EQ(atom->valueForKey(name), value) << property->name << " changes " << name;
            }
    }
}

TEST_P(EveryClass, SettingNilGivesZeroOrNothing) {
    for (const Field* property : named()) {
        if (property->set == nullptr || (!property->isNumeric() && !property->isOptional)) continue;
        SCOPED_TRACE(property->name);
        const auto atom = made();
        atom->setValueForKey(valuesOf(*property)[0], property->name);
        atom->setNilValueForKey(property->name);
        const Value value = atom->valueForKey(property->name);
        if (property->isOptional) {
            EXPECT_TRUE(value.isAbsent());
        } else {
            EXPECT_EQ(doubleFrom(value), 0.0);
        }
    }
}

TEST_P(EveryClass, TakesNoValueOfAnotherKind) {
    const auto atom = made();
    for (const Field* property : named()) {
        if (property->set == nullptr) {
            EXPECT_THROW(atom->setValueForKey(1, property->name), UndefinedKeyError)
                << property->name;
            continue;
        }
        const Value before = atom->valueForKey(property->name);
        EXPECT_THROW(atom->setValueForKey(valueOfAnotherKind(*property), property->name),
                     ValueError)
            << property->name;
        EXPECT_EQ(atom->valueForKey(property->name), before) << property->name;
    }
}

TEST_P(EveryClass, EditsTheCellsOfItsLists) {
    for (const Field* property : named()) {
        if (property->list == nullptr) continue;
        SCOPED_TRACE(property->name);
        const auto atom = made();
        const ListAccess& list = *property->list;
        list.removeRows(*atom, 0, list.size(*atom));
        list.insertRows(*atom, 0, 3);
        ASSERT_EQ(list.size(*atom), 3U);
        std::set<std::string_view> names;
        for (std::size_t column = 0; column < list.columns.size(); ++column) {
            const Field& cell = list.columns[column];
            EXPECT_TRUE(names.insert(cell.name).second) << cell.name;
            if (cell.set == nullptr && list.columns.size() > 1) {
                list.cell(*atom, 1, column);
                continue;
            }
            const Value untouched = list.cell(*atom, 0, column);
            for (const Value& value : valuesOf(cell)) {
                list.setCell(*atom, 1, column, value);
                EXPECT_EQ(list.cell(*atom, 1, column), value) << cell.name;
            }
            EXPECT_EQ(list.cell(*atom, 0, column), untouched) << cell.name;
            EXPECT_THROW(list.setCell(*atom, 1, column, valueOfAnotherKind(cell)), ValueError)
                << cell.name;
        }
        list.removeRows(*atom, 0, 1);
        EXPECT_EQ(list.size(*atom), 2U);
    }
}

TEST_P(EveryClass, WritesWhatIsMadeInMemory) {
    const auto atom = made();
    if (&cls() == &VexQTtx3gAtom::kClass) {
        EXPECT_THROW(atom->atomData(), ColorSpaceError);  // Its colours are grey until set.
        return;
    }
    const Bytes bytes = atom->atomData();
    if (cls().accepts.least == cls().accepts.most) {
        EXPECT_EQ(bytes.size(), cls().accepts.least);
    }
    EXPECT_EQ(atom->atomData(), bytes);
}

/// Asks everything that can be asked of an atom.
void askEverything(VexQTAtom& atom) {
    for (const Field& property : VexQTAtom::commonProperties()) atom.valueForKey(property.name);
    for (const Field* property : atom.properties()) {
        atom.valueForKey(property->name);
        if (property->list == nullptr) continue;
        const std::size_t rows = std::min<std::size_t>(property->list->size(atom), 5);
        for (std::size_t row = 0; row < rows; ++row)
            for (std::size_t column = 0; column < property->list->columns.size(); ++column)
                property->list->cell(atom, row, column);
    }
    atom.atomData();
    for (const auto& child : atom.children()) askEverything(*child);
}

/// Six hundred atoms of a type that nobody vouches for, of up to 300 bytes: zeros, ones, noise, and
/// small numbers, which look like sizes and counts.
std::vector<Bytes> atomsOfAnyBytes(OSType type) {
    std::mt19937 random(type);
    std::vector<Bytes> atoms;
    for (std::size_t i = 0; i < 600; ++i) {
        Bytes bytes(i % 300);
        for (std::size_t k = 0; k < bytes.size(); ++k) {
            const auto noise = static_cast<std::uint32_t>(random());
            const std::uint8_t patterns[] = {
                0, 0xFF, static_cast<std::uint8_t>(noise),
                k % 4 == 3 ? static_cast<std::uint8_t>(noise % 40) : std::uint8_t{0}};
            bytes[k] = patterns[i % 4];
        }
        if (bytes.size() >= 8)
            std::ranges::copy(atomClaiming(static_cast<std::uint32_t>(bytes.size()), type),
                              bytes.begin());
        atoms.push_back(std::move(bytes));
    }
    return atoms;
}

TEST_P(EveryClass, LogsNothingOfWhatItCannotRead) {
    std::vector<Bytes> atoms = atomsOfAnyBytes(cls().type);
    for (const ChildRule& rule : cls().children)
        if (rule.cls != nullptr && rule.cls->accepts.least > 8)
            atoms.push_back(atom(cls().type, {atom(rule.cls->type, {u8(0)})}));
    const LogLines log;
    for (const Bytes& bytes : atoms) {
        try {
            VexQTAtom::make(cls(), bytes, nullptr, 0);
        } catch (const Error&) {
            // Said to the host, and to nobody else.
        }
    }
    // Video entries alone say that they met an extension that its class declines.
    const bool isVideo = &cls() == &VexQTvideSampleDescription::kClass;
    for (const std::string& line : log.lines) EXPECT_TRUE(isVideo) << line;
}

TEST_P(EveryClass, MakesAnAtomOrAnErrorOfAnyBytes) {
    for (const Bytes& bytes : atomsOfAnyBytes(cls().type)) {
        try {
            const auto atom = VexQTAtom::make(cls(), bytes, nullptr, 0);
            if (atom) askEverything(*atom);
        } catch (const Error& error) {
            EXPECT_FALSE(error.path().empty()) << error.what();
        }

        std::vector<Problem> problems;
        ReadContext context(problems);
        const ReadContext::Siblings none;
        const ReadContext::Step step(context, cls().type, none);
        try {
            const auto atom =
                VexQTAtom::make(cls(), SharedBytes::copyOf(bytes), nullptr, 0, context);
            if (atom) askEverything(*atom);
        } catch (const Error&) {
            // The one who holds the atom keeps its bytes.
        }
    }
}

}  // namespace
}  // namespace vexqt
