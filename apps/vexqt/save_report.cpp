#include "apps/vexqt/save_report.h"

#include "vexqt/asset/AtomPath.h"
#include "vexqt/platform/Digest.h"

namespace vexqt::cli {

namespace {

std::string_view textOf(SaveResult::Outcome outcome) {
    switch (outcome) {
        case SaveResult::Outcome::Saved:
            return "saved";
        case SaveResult::Outcome::NothingToDo:
            return "nothing-to-do";
        case SaveResult::Outcome::Refused:
            return "refused";
        case SaveResult::Outcome::Failed:
            break;
    }
    return "failed";
}

std::string_view textOf(UndoResult::Outcome outcome) {
    switch (outcome) {
        case UndoResult::Outcome::Undone:
            return "undone";
        case UndoResult::Outcome::AlreadyUndone:
            return "already-undone";
        case UndoResult::Outcome::NothingToUndo:
            return "nothing-to-undo";
        case UndoResult::Outcome::Changed:
            return "changed";
        case UndoResult::Outcome::Failed:
            break;
    }
    return "failed";
}

/// Why some bytes are written.
struct Purpose {
    std::string_view name;
    std::string path = {};  ///< Of the atom that they are part of, where it is one of the movie's.
};

Purpose purposeOf(const FileWrite& write, const SavePlan& plan) {
    const FileRange range = write.range();
    for (const SavePlan::NewAtom& atom : plan.newAtoms()) {
        const FileRange whole = {atom.offset, atom.bytes.size()};
        if (range.offset < whole.offset || range.end() > whole.end()) continue;
        return {range == whole ? "atom" : "edit", pathSegment(atom.atom->atomType())};
    }
    // Headers of old atoms that become free space, wholly or in their type alone.
    for (const RootExtent& atom : plan.layout().atoms)
        if (range == FileRange{atom.start + 4, 4} || range == FileRange{atom.start, 8}) {
            const ByteView type = write.bytes.view().last(4);
            if (ByteReader(type).u32() == "free"_os) return {"freed-atom", pathSegment(atom.type)};
        }
    if (range.length >= 8 && ByteReader(write.bytes.view(), 4).u32() == "free"_os)
        return {"free-space"};
    return {"size"};
}

void beginReport(JsonWriter& json, const SavedFiles& files, std::string_view outcome) {
    json.beginObject();
    json.key("version");
    json.number(kReportVersion);
    json.key("file");
    json.text(files.file);
    if (files.source) {
        json.key("source");
        json.text(*files.source);
    }
    json.key("outcome");
    json.text(outcome);
}

void writeError(JsonWriter& json, const std::string& what) {
    json.key("error");
    json.text(what);
}

void writeRange(JsonWriter& json, const FileRange& range) {
    json.key("offset");
    json.number(range.offset);
    json.key("length");
    json.number(range.length);
}

/// What was written, nothing if nothing was.
void writeChange(JsonWriter& json, const FileChange& change, bool isDone,
                 const std::function<Purpose(const FileWrite&)>& purpose) {
    if (change.oldLength != 0) {  // Else the file could not even be looked at.
        json.key("oldLength");
        json.number(change.oldLength);
        json.key("newLength");
        json.number(isDone ? change.newLength : change.oldLength);
    }
    json.key("bytesWritten");
    json.number(isDone ? change.bytesWritten() : std::uint64_t{0});
    json.key("ranges");
    json.beginArray();
    const auto write = [&](const FileWrite& each) {
        const Purpose why = purpose(each);
        json.beginObject(JsonWriter::Form::Inline);
        writeRange(json, each.range());
        json.key("purpose");
        json.text(why.name);
        if (!why.path.empty()) {
            json.key("path");
            json.text(why.path);
        }
        json.endObject();
    };
    if (isDone) {
        std::ranges::for_each(change.writes, write);
        if (change.flip) write(*change.flip);
    }
    json.endArray();
}

void writeMedia(JsonWriter& json, const MediaProof& media) {
    json.key("media");
    json.beginObject();
    json.key("digest");
    json.text(Digest::kName);
    json.key("before");
    json.text(media.before());
    json.key("after");
    media.after() ? json.text(*media.after()) : json.null();
    json.key("ranges");
    json.beginArray();
    for (const auto& [path, range] : media.ranges()) {
        json.beginObject(JsonWriter::Form::Inline);
        json.key("path");
        json.text(path);
        writeRange(json, range);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void endReport(JsonWriter& json, Output& out, const MediaProof* media) {
    if (media != nullptr) writeMedia(json, *media);
    json.endObject();
    out.write("\n");
}

}  // namespace

void writeFindings(JsonWriter& json, const std::vector<Finding>& findings) {
    json.key("findings");
    json.beginArray();
    for (const Finding& finding : findings) {
        json.beginObject();
        json.key("id");
        json.text(finding.id);
        json.key("severity");
        json.text(vexqt::textOf(finding.severity));
        if (!finding.path.empty()) {
            json.key("path");
            json.text(finding.path);
        }
        if (finding.range) writeRange(json, *finding.range);
        json.key("message");
        json.text(finding.message);
        json.endObject();
    }
    json.endArray();
}

void writeReport(Output& out, const SavedFiles& files, const SaveResult& result,
                 const MediaProof* media) {
    const SavePlan& plan = result.plan;
    JsonWriter json(out, JsonWriter::Layout::Indented);
    beginReport(json, files, textOf(result.outcome));
    if (result.failure) writeError(json, result.failure->what);
    if (plan.layout().fileLength != 0) {
        json.key("form");
        json.text(plan.form() == SaveForm::Exact ? "exact" : "surgical");
        json.key("way");
        json.text(vexqt::textOf(plan.way()));
    }
    writeChange(json, plan.change(), result.outcome == SaveResult::Outcome::Saved,
                [&](const FileWrite& write) { return purposeOf(write, plan); });
    writeFindings(json, plan.findings());
    json.key("notes");
    json.beginArray();
    for (const std::string& note : result.notes) json.text(note);
    json.endArray();
    endReport(json, out, media);
}

void writeReport(Output& out, const SavedFiles& files, const UndoResult& result,
                 const MediaProof* media) {
    const bool isUndone = result.outcome == UndoResult::Outcome::Undone;
    JsonWriter json(out, JsonWriter::Layout::Indented);
    beginReport(json, files, textOf(result.outcome));
    if (result.outcome != UndoResult::Outcome::AlreadyUndone && !isUndone)
        writeError(json, result.text);
    writeChange(json, result.change, isUndone, [](const FileWrite&) { return Purpose{"undo"}; });
    endReport(json, out, media);
}

}  // namespace vexqt::cli
