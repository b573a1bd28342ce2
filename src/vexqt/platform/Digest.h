#pragma once

#include <memory>
#include <string>

#include "vexqt/export.h"
#include "vexqt/platform/bytes_types.h"

struct evp_md_ctx_st;

namespace vexqt {

/// SHA-256 of bytes that come piece by piece.
class VEXQT_EXPORT Digest {
public:
    /// What people and programs call it.
    static constexpr std::string_view kName = "sha256";

    Digest();

    /// The bytes that come next.
    void add(ByteView bytes);
    /// The digest of all that was added, as 64 hexadecimal digits in lower case. More may be added
    /// afterwards.
    std::string hex() const;

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    using Context = std::unique_ptr<evp_md_ctx_st, Free>;

    Context context_;
};

}  // namespace vexqt
