#include "vexqt/saving/whole_files.h"

#include "vexqt/saving/Draft.h"

namespace vexqt {

std::optional<SaveFailure> writeWhole(const std::filesystem::path& path, ByteView bytes,
                                      FileSystem& files) {
    try {
        Draft draft(files, path);
        draft.create();
        draft.file().write(0, bytes);
        draft.finish();  // That its name might be lost in a power cut is true of every new file.
        return std::nullopt;
    } catch (const SaveFailure& failure) {
        return failure;
    }
}

}  // namespace vexqt
