// What the tests of the fields share: one program runs them all.
#pragma once

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QVariant>
#include <memory>
#include <vector>

#include "vexqt/core/field.h"

namespace vexqt::testing {

using MakeTest = std::unique_ptr<QObject> (*)();

std::vector<MakeTest>& fieldTests();

/// Has the program run a class of tests.
template <class Test>
struct FieldTest {
    FieldTest() {
        fieldTests().push_back([] { return std::unique_ptr<QObject>(new Test); });
    }
};

inline Field integer(ValueKind kind, std::uint8_t bits) { return {.kind = kind, .bits = bits}; }

/// Replaces the text of a line and presses Return.
inline void enter(QLineEdit& line, const QString& text) {
    QTest::keyClick(&line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&line, Qt::Key_Delete);
    // There are keys for ASCII only.
    for (const QChar character : text) {
        if (character.unicode() < 0x80) {
            QTest::keyClick(&line, character.toLatin1());
        } else {
            line.insert(character);
        }
    }
    QTest::keyClick(&line, Qt::Key_Return);
}

/// A window with a field in it and a second widget for the focus to go to.
template <class Field>
struct Window : QWidget {
    Window() {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(&field);
        layout->addWidget(&other);
        other.setFocusPolicy(Qt::StrongFocus);
        show();
        activateWindow();
        if (!QTest::qWaitForWindowActive(this)) qFatal("the window does not become active");
        field.setFocus(Qt::TabFocusReason);
    }
    ~Window() override {
        field.setParent(nullptr);
        other.setParent(nullptr);
    }

    Field field;
    QWidget other;
};

}  // namespace vexqt::testing
