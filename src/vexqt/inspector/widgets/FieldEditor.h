#pragma once

#include <QString>

#include "vexqt/core/field.h"

class QWidget;

namespace vexqt {

/// What the widgets that show and edit one property have in common besides their user property
/// `value`, which is invalid for an absent value, and their signals: `valueChanged()` when a person
/// has finished an edit, never at each key stroke, and `editRefused(why)` for what cannot be taken.
class FieldEditor {
public:
    virtual ~FieldEditor();

    /// Takes over the width and the kind of the property that the widget shows.
    virtual void configure(const Field& field) = 0;
    virtual void setReadOnly(bool readOnly) = 0;
    /// Whether the widget shows its value, and not a text that it had to refuse.
    virtual bool isAcceptable() const { return true; }

protected:
    /// Marks a widget whose text is refused, for the eye and for screen readers; an empty reason
    /// takes the mark away.
    static void mark(QWidget& widget, const QString& why);
};

}  // namespace vexqt
