#include "vexqt/atoms/structure/VexQTmdiaAtom.h"

#include "vexqt/atoms/headers/VexQTelngAtom.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/headers/VexQTmdhdAtom.h"
#include "vexqt/atoms/structure/VexQTminfAtom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTmdhdAtom::kClass},
    {.cls = &VexQThdlrAtom::kClass},
    {.cls = &VexQTminfAtom::kClass},
    {.cls = &VexQTelngAtom::kClass},
};

struct VexQTmdiaAtom::Layout {
    /// Sample descriptions that are read before the handler find no media type.
    static void forgetMediaType(Record& record, AtomReader&) {
        static_cast<VexQTmdiaAtom&>(record).mediaType_ = 0;
    }
    static constexpr Field fields[] = {
        {.decode = forgetMediaType},
        childAtoms,
        property<&VexQTmdiaAtom::mediaType_>("mediaType").as(Display::Code),
    };
};

constinit const AtomClass VexQTmdiaAtom::kClass = {
    .type = "mdia"_os,
    .className = "VexQTmdiaAtom",
    .atomName = "Media",
    .header = HeaderRule::ReadZeroMeansShort,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = Layout::fields,
    .children = kChildren,
    .create = create<VexQTmdiaAtom>,
};

void VexQTmdiaAtom::didDecodeChild(const VexQTAtom& child) {
    if (const auto* handler = dynamic_cast<const VexQThdlrAtom*>(&child))
        mediaType_ = handler->componentSubType();
}

std::string VexQTmdiaAtom::atomName() const {
    struct Name {
        OSType mediaType;
        std::string_view name;
    };
    static constexpr Name kNames[] = {
        {"vide"_os, "Video Media"},
        {"soun"_os, "Sound Media"},
        {"text"_os, "Text Media"},
        {"tmcd"_os, "Timecode Media"},
        {"clcp"_os, "Closed-Captioning Media"},
        {"sbtl"_os, "Subtitling Media"},
        {"musi"_os, "Music Media"},
        {"MPEG"_os, "MPEG-1 Media"},
        {"sprt"_os, "Sprite Media"},
        {"qd3d"_os, "3D Media"},
        {"strm"_os, "Streaming Media"},
        {"meta"_os, "Metadata"},
    };
    const auto* name = std::ranges::find(kNames, mediaType_, &Name::mediaType);
    return std::string(name != std::end(kNames) ? name->name : kClass.atomName);
}

}  // namespace vexqt
