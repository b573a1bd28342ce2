#pragma once

#include <QWidget>

class QHBoxLayout;
class QLineEdit;
class QStackedLayout;
class QToolButton;

namespace vexqt::inspector_app {

/// Where an atom is in the movie: a button for each atom that it is in, and a field to name
/// another.
class PathBar : public QWidget {
    Q_OBJECT

public:
    explicit PathBar(QWidget* parent = nullptr);

    /// The parts of a path, "moov", "trak[1]", from the root atom on.
    void setParts(const QStringList& parts);
    QString path() const { return parts_.join(u'.'); }
    /// Lets a path be typed in the place of the buttons.
    void askForPath();
    /// What was typed names nothing.
    void refuse(const QString& why);

signals:
    /// The part at a position was chosen.
    void partChosen(int position);
    void pathEntered(const QString& path);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rebuild();
    void showButtons();

    QStringList parts_;
    QStackedLayout* stack_;
    QWidget* crumbs_;
    QHBoxLayout* row_;
    QLineEdit* edit_;
};

}  // namespace vexqt::inspector_app
