#include "vexqt/atoms/metadata/VexQTudtaAtom.h"

#include "vexqt/atoms/metadata/VexQTUserDataDirectTextItem.h"
#include "vexqt/atoms/metadata/VexQTUserDataTextItem.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

namespace vexqt {

/// A code that begins with the byte 0xA9, the © of the annotations: annotation("nam").
static consteval OSType annotation(const char (&name)[4]) {
    OSType code = 0xA9;
    for (int i = 0; i < 3; ++i) code = code << 8 | static_cast<std::uint8_t>(name[i]);
    return code;
}

static constexpr ChildRule text(OSType type) {
    return {.cls = &VexQTUserDataTextItem::kClass, .type = type};
}
static constexpr ChildRule directText(OSType type) {
    return {.cls = &VexQTUserDataDirectTextItem::kClass, .type = type};
}

static constexpr ChildRule kChildren[] = {
    text(annotation("ART")), text(annotation("alb")), text(annotation("cpy")),
    text(annotation("day")), text(annotation("gen")), text(annotation("nam")),
    text("EXTC"_os),         text("MOVI"_os),         text("aART"_os),
    text("apID"_os),         text("cprt"_os),         text("desc"_os),
    text("flvr"_os),         text("ldes"_os),         text("mean"_os),
    text("purd"_os),         text("sdes"_os),         text("soal"_os),
    text("tven"_os),         text("tves"_os),         text("tvnn"_os),
    text("tvsh"_os),         text("tvsn"_os),         text("xid "_os),
    directText("MCPS"_os),   directText("XMP_"_os),   {.cls = &VexQTmetaAtom::kClass},
};

constinit const AtomClass VexQTudtaAtom::kClass = {
    .type = "udta"_os,
    .className = "VexQTudtaAtom",
    .atomName = "User Data",
    .header = HeaderRule::ReadSizeField,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::Restored,
    .fields = kOnlyChildAtoms,
    .children = kChildren,
    .create = create<VexQTudtaAtom>,
};

}  // namespace vexqt
