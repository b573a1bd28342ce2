#include "vexqt/atoms/sampledescriptions/VexQTmetaSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/VexQTmebxkeysAtom.h"
#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

struct VexQTmetaSampleDescription::Layout {
    using Atom = VexQTmetaSampleDescription;
    static constexpr Field fields[] = {
        notInFile(CommonRows::format),
        notInFile(CommonRows::dataReference),
        notInFile(CommonRows::size),
        accessors<&Atom::originalData, &Atom::setOriginalData>("originalData"),
        property<&Atom::firstFlags_>("firstFlags").as(Display::Hexadecimal),
        property<&Atom::tcFlags_>("tcFlags").as(Display::Hexadecimal),
        property<&Atom::timeScale_>("timeScale"),
        property<&Atom::frameDuration_>("frameDuration"),
        property<&Atom::numFrames_>("numFrames"),
        property<&Atom::languageCode_>("languageCode"),
        property<&Atom::sourceName_>("sourceName"),
        irregular<&Atom::decodeVersion, &Atom::encodeDataReference>(),
        irregular<&Atom::decodeKeyTables, &Atom::encodeKeyTable>().holdingChildren(),
    };
};

/// The format is the usual one as well.
void VexQTmetaSampleDescription::appendTo(ByteWriter& out) {
    if (children().size() != 1) return;
    const std::size_t start = out.length();
    VexQTAtom::appendTo(out);
    out.patchU32(start + 4, "mebx"_os);
}

/// Reserved bytes are taken for a version and flags, and the data reference is skipped.
void VexQTmetaSampleDescription::decodeVersion(AtomReader& in) {
    originalData_ = origin();
    rows::readVersion(*this, in);
    rows::readFlags(*this, in);
    in.skip(std::min<std::size_t>(4, in.remaining()));
}

/// The data reference is the usual one, whatever was read.
void VexQTmetaSampleDescription::encodeDataReference(ByteWriter& out) const {
    out.zeros(6);
    out.u16(1);
}

/// A child that is no key table is not looked into: one that reaches past the end just ends the
/// walk.
void VexQTmetaSampleDescription::decodeKeyTables(AtomReader& in) {
    ChildMaker maker(*this, in);
    while (in.remaining() > 8) {
        const auto header = maker.peek();
        const bool reachesEnd = header.size == 0 && !header.isExtended;
        const std::uint64_t size = reachesEnd ? in.length() - 8 : header.size;
        if (header.type == VexQTmebxkeysAtom::kClass.type) {
            maker.add(&VexQTmebxkeysAtom::kClass, header.type, size);
            continue;
        }
        if (size == 0) throw RangeError("a size of 0 does not move forward", in.position());
        if (size > in.remaining()) return;
        in.skip(size);
    }
}

void VexQTmetaSampleDescription::encodeKeyTable(ByteWriter& out) const {
    appendChildren(*this, out);
}

std::optional<Bytes> VexQTmetaSampleDescription::originalData() const {
    if (!originalData_) return std::nullopt;
    const ByteView bytes = originalData_->view();
    return Bytes(bytes.begin(), bytes.end());
}

void VexQTmetaSampleDescription::setOriginalData(std::optional<Bytes> bytes) {
    originalData_.reset();
    if (bytes) originalData_ = SharedBytes::copyOf(*bytes);
}

constinit const AtomClass VexQTmetaSampleDescription::kClass = {
    .type = "meta"_os,
    .className = "VexQTmetaSampleDescription",
    .atomName = "Metadata Sample Description",
    .nibName = "VexQTmetaAtom",
    .header = HeaderRule::Read,
    .fields = Layout::fields,
    .create = create<VexQTmetaSampleDescription>,
};

}  // namespace vexqt
