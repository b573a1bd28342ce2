#pragma once

#include <QtGlobal>

namespace vexqt::inspector_app {

/// A run of bytes.
struct ByteRange {
    quint64 offset = 0, length = 0;

    quint64 end() const { return offset + length; }
    bool isEmpty() const { return length == 0; }
    bool contains(quint64 position) const {
        return position >= offset && position - offset < length;
    }
    bool operator==(const ByteRange&) const = default;
};

}  // namespace vexqt::inspector_app
