#pragma once

#include <QStringList>
#include <QUiLoader>

namespace vexqt {

/// Loads interface descriptions, with the inspector's own widgets in them.
class FormLoader : public QUiLoader {
    Q_OBJECT

public:
    FormLoader();

    /// Null when the description cannot be read.
    QWidget* load(QIODevice* description, QWidget* parent = nullptr);
    QWidget* createWidget(const QString& className, QWidget* parent = nullptr,
                          const QString& name = {}) override;
    /// What was wrong with the description: an empty widget stands for each of an unknown class.
    const QStringList& problems() const { return problems_; }

private:
    QStringList problems_;
};

}  // namespace vexqt
