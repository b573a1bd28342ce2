// The commands around saving: what it would do, taking it back, ending one that was interrupted.
#include "apps/vexqt/JsonWriter.h"
#include "apps/vexqt/commands.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/save_report.h"
#include "vexqt/saving/SafeSave.h"
#include "vexqt/saving/recovery.h"

namespace vexqt::cli {

namespace {

SavePlan planFor(VexQTAsset& asset, const std::string& file, SaveForm form) {
    std::error_code error;
    const auto open = systemFiles().openForReading(file, error);
    if (!open) throw Failure(error.message());
    return SavePlan::of(asset, *open, form);
}

void writeJson(JsonWriter& json, std::string_view name, const SavePlan& plan) {
    json.key(name);
    json.beginObject();
    json.key("way");
    json.text(textOf(plan.way()));
    writeFindings(json, plan.findings());
    json.endObject();
}

void print(Output& out, const SavePlan& plan) {
    for (const Finding& finding : plan.findings()) {
        const std::string_view severity = textOf(finding.severity);
        out.write("    ");
        out.write(severity);
        out.write(std::string(10 - severity.size(), ' '));
        out.write(describedFinding(finding));
        out.write("\n");
    }
}

bool isHarmless(const SavePlan& plan) {
    return !plan.has(Severity::Changes) && !plan.has(Severity::Destroys);
}

}  // namespace

ExitStatus check(const Arguments& arguments, Console& console) {
    bool isAllHarmless = true;
    const ExitStatus status =
        attemptEach(arguments, console, [&](const std::string& file, Console&) {
            if (file == "-" || arguments.inMemory)
                throw Failure("only what lies in a file can be saved", ExitStatus::WrongUsage);
            requireFile(file);
            const auto asset = readMovie(file, arguments, console);
            const SavePlan surgical = planFor(*asset, file, SaveForm::Surgical);
            const SavePlan exact = planFor(*asset, file, SaveForm::Exact);
            isAllHarmless = isAllHarmless && isHarmless(surgical) && isHarmless(exact);
            if (arguments.asJson) {
                JsonWriter json(console.out, JsonWriter::Layout::OneLine);
                json.beginObject();
                json.key("file");
                json.text(file);
                writeJson(json, "surgical", surgical);
                writeJson(json, "exact", exact);
                json.endObject();
                console.out.write("\n");
                return;
            }
            console.out.write(file + "\n");
            console.out.write(
                isHarmless(surgical)
                    ? "  a save writes the bytes of what was edited and nothing else\n"
                    : "  a save of this file:\n");
            print(console.out, surgical);
            console.out.write(
                exact.findings().empty()
                    ? "  with --exact too, all that is not edited comes back as it is\n"
                    : "  with --exact:\n");
            print(console.out, exact);
        });
    if (status != ExitStatus::Done) return status;
    return isAllHarmless ? ExitStatus::Done : ExitStatus::Refused;
}

ExitStatus undo(const Arguments& arguments, Console& console) {
    return attempt(arguments.file(), console, [&] {
        const UndoStore store(systemFiles(), UndoStore::folderOfUser());
        const std::string& file = arguments.file();
        requireFile(file);
        std::optional<MediaProof> media;
        if (arguments.digestsMedia) media.emplace(file, console);
        const UndoResult result = vexqt::undo(systemFiles(), store, file);
        if (media) media->readAgain(file, console);
        if (arguments.reports)
            writeReport(console.out, {.file = file, .source = {}}, result,
                        media ? &*media : nullptr);
        const bool isUndone = result.outcome == UndoResult::Outcome::Undone ||
                              result.outcome == UndoResult::Outcome::AlreadyUndone;
        if (!isUndone) throw Failure(result.text);
        if (!arguments.reports) console.out.write(file + ": " + result.text + "\n");
        if (media) media->requireSame();
    });
}

ExitStatus recover(const Arguments& arguments, Console& console) {
    return attempt(arguments.file(), console, [&] {
        requireFile(arguments.file());
        const RecoveryResult result =
            vexqt::recover(systemFiles(), arguments.file(),
                           arguments.force ? IfChanged::RecoverAnyway : IfChanged::Refuse);
        if (result.outcome == Recovery::Refused || result.outcome == Recovery::Failed)
            throw Failure(result.text);
        console.out.write(arguments.file() + ": " + result.text + "\n");
    });
}

}  // namespace vexqt::cli
