#pragma once

#include <QDialog>

#include "vexqt/saving/SavePlan.h"

class QCheckBox;
class QPushButton;

namespace vexqt::inspector_app {

/// What a save will do, shown before anything is written.
class SaveSheet : public QDialog {
    Q_OBJECT

public:
    enum class Choice { Cancel, Save, SaveCopy };
    enum class Purpose {
        Save,   ///< The save that comes next; a copy may be chosen instead.
        Copy,   ///< A copy that is about to be written.
        Inform  ///< There is nothing to decide.
    };

    SaveSheet(const QString& file, const SavePlan& plan, Purpose purpose,
              QWidget* parent = nullptr);

    Choice choice() const { return choice_; }
    /// The person has said that what will be destroyed may be.
    bool isForced() const;

    /// What the plan writes, in a sentence.
    static QString summaryOf(const SavePlan& plan);
    /// Whether nothing can make this plan a good one.
    static bool isBlocked(const SavePlan& plan);

private:
    QWidget* listOfFindings(const SavePlan& plan);
    void addButtons(const SavePlan& plan, Purpose purpose);

    QCheckBox* consent_ = nullptr;  ///< Null where nothing is destroyed.
    Choice choice_ = Choice::Cancel;
};

}  // namespace vexqt::inspector_app
