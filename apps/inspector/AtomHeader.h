#pragma once

#include <QWidget>

class QLabel;

namespace vexqt {
class VexQTAtom;
}

namespace vexqt::inspector_app {

/// What is true of every atom: type, name, class, size and place.
class AtomHeader : public QWidget {
    Q_OBJECT

public:
    explicit AtomHeader(QWidget* parent = nullptr);

    /// Null for none.
    void setAtom(const VexQTAtom* atom);

private:
    QLabel* type_;
    QLabel* name_;
    QLabel* facts_;
    QLabel* remark_;
};

}  // namespace vexqt::inspector_app
