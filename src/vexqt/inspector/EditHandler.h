#pragma once

#include <QString>
#include <functional>

namespace vexqt {

class VexQTAtom;

/// Who performs the edits that people make in a view: the undo stack of a host, for instance.
class EditHandler {
public:
    struct Edit {
        QString text = {};  ///< For people: "Change time scale".
        /// Done and undone in turn, however often. Neither throws, and neither needs the view.
        std::function<void()> redo = {}, undo = {};
        VexQTAtom* atom = nullptr;
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
