#pragma once

#include <QObject>

#include "apps/inspector/Document.h"
#include "apps/inspector/theme.h"

class QWidget;

namespace vexqt::inspector_app {

/// Leads a person through a save: what it would do, the save itself, how it went.
class Saving : public QObject {
    Q_OBJECT

public:
    /// Dialogues appear above the window.
    Saving(Document& document, QWidget& window) : document_(document), window_(window) {}

    /// True when nothing that was edited is left to save.
    bool save();
    bool saveCopy();
    /// Shows what a save would do and does nothing.
    void check();

signals:
    void said(theme::MessageKind kind, const QString& text);
    void copySaved(const QString& path);

private:
    /// Says what stops the work; absent then.
    template <class Work>
    auto attempt(Work&& work) -> std::optional<decltype(work())>;
    std::optional<SavePlan> plan();
    bool saveInPlace(bool isForced);
    bool saveCopyTo(const QString& path, bool isForced);
    QString askForCopy();
    void tell(const SaveResult& result, const QString& done);
    template <class Save>
    std::optional<SaveResult> run(const QString& title, bool isForced, Save&& save);

    Document& document_;
    QWidget& window_;
};

}  // namespace vexqt::inspector_app
