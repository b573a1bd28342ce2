#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// An entry of a sample description table: what one kind of samples of a track is, and what their
/// decoder needs. Used directly for media that have no class of their own.
///
/// An entry is an atom whose code is a format rather than a type. The base takes the format as its
/// type and keeps the bytes behind the common fields; a subclass has a fixed type and decodes them.
class VEXQT_EXPORT VexQTSampleDescription : public ContainerAtom {
public:
    static const AtomClass kClass;

    VexQTSampleDescription() : VexQTSampleDescription(kAnyType) {}
    /// An empty entry of a format.
    explicit VexQTSampleDescription(OSType dataFormat);
    /// An entry whose format has no class of its own, from its complete bytes. It is known by the
    /// type that is given, and writes the format that it reads.
    /// \throws RangeError for fewer than 16 bytes.
    static std::unique_ptr<VexQTSampleDescription> initWithData(ByteView data, OSType dataFormat,
                                                                VexQTAtom* parent,
                                                                std::uint64_t offsetInFile);

    /// The four-character code of the format, most often its codec's.
    OSType dataFormat() const { return dataFormat_; }
    void setDataFormat(OSType format) { dataFormat_ = format; }
    /// Which of the track's data references holds the samples, from 1 on.
    std::uint16_t dataReferenceIndex() const { return dataReferenceIndex_; }
    void setDataReferenceIndex(std::uint16_t index) { dataReferenceIndex_ = index; }
    /// The entry's size as it was read. It is not written: an entry is as long as it is.
    std::uint32_t sampleDescriptionSize() const { return sampleDescriptionSize_; }
    void setSampleDescriptionSize(std::uint32_t size) { sampleDescriptionSize_ = size; }

    /// The rows that every entry begins with; see entry_rows.h.
    struct CommonRows;

protected:
    /// For subclasses.
    explicit VexQTSampleDescription(const AtomClass& cls) : ContainerAtom(cls) {}

    /// Which extension atoms a class reads behind its fields.
    struct ExtensionWalk {
        std::uint32_t leastSize = 1;        ///< A smaller one, or one above 65535, ends the walk.
        std::string_view lineWhenDeclined;  ///< Logged before a declined one raises.
    };
    /// Reads extension atoms, of the classes that the class's child table names, as long as there
    /// is room for a header. They are children without a parent.
    void decodeExtensions(AtomReader& in, const ExtensionWalk& walk);

private:
    struct Layout;

    OSType dataFormat_ = kAnyType;
    std::uint32_t sampleDescriptionSize_ = 0;
    std::uint16_t dataReferenceIndex_ = 0;
};

}  // namespace vexqt
