#pragma once

#include <QFrame>
#include <functional>

#include "apps/inspector/theme.h"

class QHBoxLayout;
class QLabel;

namespace vexqt::inspector_app {

/// A message across the window, with what can be done about it. It stays until somebody has acted
/// on it or closed it.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    MessageBar(theme::MessageKind kind, const QString& text, QWidget* parent = nullptr);

    /// A button that closes the bar and then does something.
    void addAction(const QString& text, const std::function<void()>& act);
    QString text() const;

private:
    QLabel* text_;
    QHBoxLayout* buttons_;
};

}  // namespace vexqt::inspector_app
