#include "vexqt/atoms/sampledescriptions/VexQTclcpSampleDescription.h"

#include "vexqt/atoms/sampledescriptions/entry_rows.h"
#include "vexqt/atoms/structure/VexQTsinfAtom.h"
#include "vexqt/core/ChildMaker.h"

namespace vexqt {

namespace {

struct SixBytes {
    static constexpr std::size_t width = 6;
    static Bytes read(ByteReader& in) {
        const ByteView bytes = in.take(width);
        return {bytes.begin(), bytes.end()};
    }
    static void write(ByteWriter& out, const Bytes& bytes) {
        const ByteView fitting = ByteView(bytes).first(std::min(bytes.size(), width));
        out.append(fitting);
        out.zeros(width - fitting.size());
    }
};

}  // namespace

struct VexQTclcpSampleDescription::Layout {
    using Atom = VexQTclcpSampleDescription;
    static constexpr Field fields[] = {
        CommonRows::size,
        CommonRows::format,
        field<&Atom::reserved1_, SixBytes>("reserved1"),
        CommonRows::dataReference,
        irregular<&Atom::decodeChildAtoms, &Atom::encodeChildAtoms>().holdingChildren(),
    };
    static_assert(wireWidth(fields) == 16, "child atoms follow");
    static constexpr std::string_view listing[] = {CommonRows::format.name,
                                                   CommonRows::dataReference.name,
                                                   CommonRows::size.name, "reserved1"};
};

/// A child that claims more bytes than there are is left out. Only its short size field is judged,
/// so one with an extended size that claims too much raises.
void VexQTclcpSampleDescription::decodeChildAtoms(AtomReader& in) {
    ChildMaker maker(*this, in);
    while (in.remaining() > 8) {
        const auto header = maker.peek();
        if (!header.isExtended && header.size > in.remaining()) return;
        const bool reachesEnd = header.size == 0 && !header.isExtended;
        const std::uint64_t size = reachesEnd ? in.length() - 8 : header.size;
        maker.add(classOfChild(atomClass().children, header.type, size), header.type, size);
    }
}

void VexQTclcpSampleDescription::encodeChildAtoms(ByteWriter& out) const {
    appendChildren(*this, out);
}

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTsinfAtom::kClass},
};

constinit const AtomClass VexQTclcpSampleDescription::kClass = {
    .type = "clcp"_os,
    .className = "VexQTclcpSampleDescription",
    .atomName = "Closed-Captioning Sample Description",
    .nibName = "VexQTclcpAtom",
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::InRows,
    .fields = Layout::fields,
    .children = kChildren,
    .listing = Layout::listing,
    .create = create<VexQTclcpSampleDescription>,
};

}  // namespace vexqt
