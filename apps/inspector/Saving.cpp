#include "apps/inspector/Saving.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QProgressDialog>

#include "apps/inspector/SaveSheet.h"
#include "apps/inspector/words.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

/// Thrown by the progress to stop a save; whatever was written is taken back.
struct Stopped {};

/// Shows how far a save is, once it takes longer than a moment.
class Progress {
public:
    Progress(const QString& title, QWidget& window)
        : dialog_(title, Saving::tr("&Stop"), 0, kSteps, &window) {
        dialog_.setWindowModality(Qt::WindowModal);
        dialog_.setMinimumDuration(400);
    }

    void operator()(std::uint64_t done, std::uint64_t total) {
        const double share =
            total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
        dialog_.setValue(std::min(kSteps - 1, static_cast<int>(share * kSteps)));
        if (dialog_.wasCanceled()) throw Stopped();
    }

private:
    static constexpr int kSteps = 1000;
    QProgressDialog dialog_;
};

}  // namespace

template <class Work>
auto Saving::attempt(Work&& work) -> std::optional<decltype(work())> {
    try {
        return work();
    } catch (const Stopped&) {
        emit said(theme::MessageKind::Information,
                  tr("The save was stopped; %1 is as it was.").arg(document_.name()));
    } catch (const Error& error) {
        emit said(theme::MessageKind::Problem,
                  tr("%1 cannot be saved: %2").arg(document_.name(), toQString(error.what())));
    } catch (const std::bad_alloc&) {
        emit said(theme::MessageKind::Problem, tr("There is not enough memory to save this."));
    }
    return std::nullopt;
}

std::optional<SavePlan> Saving::plan() {
    return attempt([this] { return document_.plan(); });
}

void Saving::check() {
    const auto planned = plan();
    if (!planned) return;
    SaveSheet(document_.name(), *planned, SaveSheet::Purpose::Inform, &window_).exec();
}

bool Saving::save() {
    const auto planned = plan();
    if (!planned) return false;
    if (planned->way() == SavePlan::Way::Nothing && !SaveSheet::isBlocked(*planned)) {
        document_.history().setClean();
        emit said(theme::MessageKind::Information,
                  tr("%1 has nothing to save: its file is as it is here.").arg(document_.name()));
        return true;
    }
    SaveSheet sheet(document_.name(), *planned, SaveSheet::Purpose::Save, &window_);
    sheet.exec();
    switch (sheet.choice()) {
        case SaveSheet::Choice::Save:
            return saveInPlace(sheet.isForced());
        case SaveSheet::Choice::SaveCopy: {
            const QString path = askForCopy();
            return !path.isEmpty() && saveCopyTo(path, sheet.isForced());
        }
        case SaveSheet::Choice::Cancel:
            break;
    }
    return false;
}

bool Saving::saveCopy() {
    const auto planned = plan();
    if (!planned) return false;
    bool isForced = false;
    if (planned->has(Severity::Changes) || planned->has(Severity::Destroys)) {
        SaveSheet sheet(document_.name(), *planned, SaveSheet::Purpose::Copy, &window_);
        sheet.exec();
        if (sheet.choice() == SaveSheet::Choice::Cancel) return false;
        isForced = sheet.isForced();
    }
    const QString path = askForCopy();
    return !path.isEmpty() && saveCopyTo(path, isForced);
}

QString Saving::askForCopy() {
    const QFileInfo file(document_.path());
    const QString proposed = file.absolutePath() + u'/' +
                             tr("%1 copy.%2", "a file's name and its ending")
                                 .arg(file.completeBaseName(), file.suffix());
    return QFileDialog::getSaveFileName(&window_, tr("Save a Copy"), proposed);
}

template <class Save>
std::optional<SaveResult> Saving::run(const QString& title, bool isForced, Save&& save) {
    Progress progress(title, window_);
    UndoStore undo(systemFiles(), UndoStore::folderOfUser());
    SaveOptions options = {.force = isForced, .undo = &undo};
    options.progress = [&progress](std::uint64_t done, std::uint64_t total) {
        progress(done, total);
    };
    return attempt([&] { return save(options); });
}

bool Saving::saveInPlace(bool isForced) {
    const auto result = run(tr("Saving %1").arg(document_.name()), isForced,
                            [&](const SaveOptions& options) { return document_.save(options); });
    if (!result) return false;
    const bool isDone = result->outcome == SaveResult::Outcome::Saved ||
                        result->outcome == SaveResult::Outcome::NothingToDo;
    QString error;
    if (isDone && !document_.readAgain(error))
        emit said(theme::MessageKind::Problem,
                  tr("%1 was saved and cannot be read again: %2").arg(document_.name(), error));
    tell(*result, tr("%1 is saved: %2 written.")
                      .arg(document_.name(), bytesText(result->plan.change().bytesWritten())));
    return isDone;
}

bool Saving::saveCopyTo(const QString& path, bool isForced) {
    const QString name = QFileInfo(path).fileName();
    auto result = run(tr("Saving a copy as %1").arg(name), isForced, [&](SaveOptions options) {
        options.undo = nullptr;
        return document_.saveCopy(path, options);
    });
    if (!result) return false;
    if (result->outcome != SaveResult::Outcome::Saved) {
        tell(*result, {});
        return false;
    }
    emit copySaved(path);
    return true;
}

void Saving::tell(const SaveResult& result, const QString& done) {
    switch (result.outcome) {
        case SaveResult::Outcome::Saved: {
            QString text = done;
            for (const std::string& note : result.notes) text += u'\n' + toQString(note);
            emit said(theme::MessageKind::Information, text);
            return;
        }
        case SaveResult::Outcome::NothingToDo:
            return;
        case SaveResult::Outcome::Refused: {
            QStringList reasons;
            for (const Finding& finding : result.plan.findings())
                if (finding.severity == Severity::Destroys) reasons << toQString(finding.message);
            emit said(theme::MessageKind::Problem,
                      tr("Nothing was written: %1").arg(reasons.join(QStringLiteral("; "))));
            return;
        }
        case SaveResult::Outcome::Failed:
            break;
    }
    const QString why = result.failure ? toQString(result.failure->what) : tr("it cannot be saved");
    emit said(theme::MessageKind::Problem, tr("%1: %2").arg(document_.name(), why));
}

}  // namespace vexqt::inspector_app
