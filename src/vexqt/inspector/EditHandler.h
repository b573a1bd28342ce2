#pragma once

#include <QString>
#include <functional>

#include "vexqt/inspector/export.h"

namespace vexqt {

class VexQTAtom;

/// Who performs the edits that people make in a view: the undo stack of a host, for instance.
class VEXQT_INSPECTOR_EXPORT EditHandler {
public:
    /// One edit.
    struct Edit {
        QString text = {};  ///< For people: "Change time scale".
        /// Does it: called in turn with undo, however often. Neither throws or needs the view.
        std::function<void()> redo = {};
        std::function<void()> undo = {};  ///< Takes it back.
        VexQTAtom* atom = nullptr;        ///< The atom that is edited.
        /// What is edited. Of two edits in a row of the same atom and key, the later redo and the
        /// earlier undo are enough. Edits without a key are each for themselves.
        QString key = {};
    };

    virtual ~EditHandler() = default;
    /// Calls redo once, now, and leaves the view that the edit comes from alive. Whoever undoes or
    /// repeats an edit later refreshes the views.
    virtual void perform(Edit edit) = 0;
};

}  // namespace vexqt
