#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The handler reference: what kind of media a track holds, and its handler's name.
///
/// The name follows the fixed fields either as a counted or as a zero-terminated string. Which of
/// the two it was is remembered and written back.
class VEXQT_EXPORT VexQThdlrAtom final : public AtomOf<VexQThdlrAtom> {
public:
    static const AtomClass kClass;

    /// 'mhlr' for a media handler, 'dhlr' for a data handler, 0 in newer files.
    OSType componentType() const { return componentType_; }
    void setComponentType(OSType type) { componentType_ = type; }
    /// The kind of media: 'vide', 'soun', …
    OSType componentSubType() const { return componentSubType_; }
    void setComponentSubType(OSType type) { componentSubType_ = type; }
    /// The four-character code of the handler's maker; 0 in newer files.
    OSType componentManufacturer() const { return componentManufacturer_; }
    void setComponentManufacturer(OSType manufacturer) { componentManufacturer_ = manufacturer; }
    /// The handler's flags; 0 by rights.
    std::uint32_t componentFlags() const { return componentFlags_; }
    void setComponentFlags(std::uint32_t flags) { componentFlags_ = flags; }
    /// Which of the flags count; 0 by rights.
    std::uint32_t componentFlagsMask() const { return componentFlagsMask_; }
    void setComponentFlagsMask(std::uint32_t mask) { componentFlagsMask_ = mask; }

    /// ASCII; absent when there is none or it does not decode.
    const std::optional<std::string>& componentName() const { return componentName_; }
    void setComponentName(std::optional<std::string> name) { componentName_ = std::move(name); }
    /// Whether the name ends with a zero byte, rather than beginning with its length.
    bool componentNameIsCString() const { return componentNameIsCString_; }
    void setComponentNameIsCString(bool isCString) { componentNameIsCString_ = isCString; }
    /// Whether an absent name is written as an empty counted string, in two bytes.
    bool appendEmptyStringLength() const { return appendEmptyStringLength_; }
    void setAppendEmptyStringLength(bool append) { appendEmptyStringLength_ = append; }

protected:
    std::uint64_t declaredSize(std::uint64_t byteCount) const override;

private:
    struct Layout;
    void decodeName(AtomReader& in);
    void encodeName(ByteWriter& out) const;

    OSType componentType_ = kAnyType;
    OSType componentSubType_ = kAnyType;
    OSType componentManufacturer_ = kAnyType;
    std::uint32_t componentFlags_ = 0;
    std::uint32_t componentFlagsMask_ = 0;
    std::optional<std::string> componentName_;
    bool componentNameIsCString_ = false;
    bool appendEmptyStringLength_ = false;
};

}  // namespace vexqt
