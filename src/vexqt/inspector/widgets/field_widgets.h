#pragma once

class QString;
class QWidget;

namespace vexqt {

/// A new field of the class that an interface description names; null for a name that is none of
/// the fields'.
QWidget* createFieldWidget(const QString& className, QWidget* parent);

}  // namespace vexqt
