#pragma once

#include <QWidget>

#include "apps/inspector/HexView.h"

class QLabel;
class QLineEdit;

namespace vexqt::inspector_app {

/// The bytes of a file, those of one atom among them, and a field to go to any other.
class BytePane : public QWidget {
    Q_OBJECT

public:
    explicit BytePane(QWidget* parent = nullptr);

    /// Not owned; null for nothing. The note says what else there is to know of these bytes.
    void setSource(ByteSource* source, const QString& note = {});
    /// Shows where an atom lies.
    void showAtom(const ByteRange& range);
    /// Lets some of the bytes stand out, under a name; empty for none.
    void showField(const ByteRange& range, const QString& name);
    void askForOffset();

    HexView& hex() { return *hex_; }
    QString caption() const;

private:
    void goToTyped();
    void describe();

    HexView* hex_;
    QLabel* caption_;
    QLineEdit* offset_;
    QString note_, field_;
};

}  // namespace vexqt::inspector_app
