#include "vexqt/inspector/property_edit.h"

#include <memory>
#include <vector>

#include "vexqt/inspector/qt_value.h"

namespace vexqt {

namespace {

struct Held {
    const Field* property;
    Value value;
};

bool isHeld(const Held& held, const VexQTAtom& atom) {
    return held.property->get(atom) == held.value;
}

std::vector<Held> allValues(const VexQTAtom& atom) {
    std::vector<Held> values;
    for (const auto& rows : {atom.atomClass().fields, VexQTAtom::commonProperties()})
        for (const Field& row : rows)
            if (row.get != nullptr && row.set != nullptr) values.push_back({&row, row.get(atom)});
    return values;
}

}  // namespace

EditHandler::Edit propertyEdit(VexQTAtom& atom, const std::string& key, const Value& value) {
    const auto before = std::make_shared<std::vector<Held>>(allValues(atom));
    return {.redo =
                [&atom, key, value, before] {
                    atom.setValueForKey(value, key);
                    std::erase_if(*before, [&](const Held& held) { return isHeld(held, atom); });
                },
            .undo =
                [&atom, before] {
                    // In file order, and only what the properties before it have not brought back:
                    // one that is a short form of another would keep the short form of its value.
                    for (const Held& held : *before)
                        if (!isHeld(held, atom)) held.property->set(atom, held.value);
                },
            .atom = &atom,
            .key = toQString(key)};
}

}  // namespace vexqt
