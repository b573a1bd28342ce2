#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

namespace vexqt {

/// The sample description of a sound track, in its versions 0, 1 and 2, with extension atoms behind
/// it.
///
/// Every entry of a sound track is one, whatever its format. Its type is 'soun'. A version that is
/// neither 1 nor 2 has the fields of version 0.
class VEXQT_EXPORT VexQTsounSampleDescription final
    : public AtomOf<VexQTsounSampleDescription, VexQTSampleDescription> {
public:
    static const AtomClass kClass;

    /// Which fields are in the file. One that is changed makes them appear or disappear there.
    std::uint16_t soundVersion() const { return soundVersion_; }
    void setSoundVersion(std::uint16_t version) { soundVersion_ = version; }
    /// The version of the compressor; 0 by rights.
    std::uint16_t revisionLevel() const { return revisionLevel_; }
    void setRevisionLevel(std::uint16_t level) { revisionLevel_ = level; }
    /// The four-character code of the compressor's maker.
    OSType vendor() const { return vendor_; }
    void setVendor(OSType vendor) { vendor_ = vendor; }
    /// 1 for mono, 2 for stereo; 3 in version 2.
    std::uint16_t numberOfChannels() const { return numberOfChannels_; }
    void setNumberOfChannels(std::uint16_t count) { numberOfChannels_ = count; }
    /// In bits.
    std::uint16_t sampleSize() const { return sampleSize_; }
    void setSampleSize(std::uint16_t size) { sampleSize_ = size; }
    /// The raw field: -1 and -2 are 65535 and 65534.
    std::uint16_t compressionID() const { return compressionID_; }
    void setCompressionID(std::uint16_t compressionID) { compressionID_ = compressionID; }
    /// 0 by rights.
    std::uint16_t packetSize() const { return packetSize_; }
    void setPacketSize(std::uint16_t size) { packetSize_ = size; }
    /// In hertz, less than 65536.
    float sampleRate() const { return sampleRate_; }
    void setSampleRate(float rate) { sampleRate_ = rate; }

    // Version 1 alone.

    /// Frames in a packet.
    std::uint32_t samplesPerPacket() const { return samplesPerPacket_; }
    void setSamplesPerPacket(std::uint32_t count) { samplesPerPacket_ = count; }
    /// Of one channel.
    std::uint32_t bytesPerPacket() const { return bytesPerPacket_; }
    void setBytesPerPacket(std::uint32_t count) { bytesPerPacket_ = count; }
    /// Of all channels.
    std::uint32_t bytesPerFrame() const { return bytesPerFrame_; }
    void setBytesPerFrame(std::uint32_t count) { bytesPerFrame_ = count; }
    /// Of a sample that is not compressed.
    std::uint32_t bytesPerSample() const { return bytesPerSample_; }
    void setBytesPerSample(std::uint32_t count) { bytesPerSample_ = count; }

    // Version 2 alone.

    /// As it was read; 72 is written whatever it is.
    std::uint32_t sizeOfStructOnly() const { return sizeOfStructOnly_; }
    void setSizeOfStructOnly(std::uint32_t size) { sizeOfStructOnly_ = size; }
    /// In hertz, narrowed to single precision.
    float audioSampleRate() const { return audioSampleRate_; }
    void setAudioSampleRate(float rate) { audioSampleRate_ = rate; }
    /// How many channels there are.
    std::uint32_t numAudioChannels() const { return numAudioChannels_; }
    void setNumAudioChannels(std::uint32_t count) { numAudioChannels_ = count; }
    /// In bits; 0 for compressed sound.
    std::uint32_t constBitsPerChannel() const { return constBitsPerChannel_; }
    void setConstBitsPerChannel(std::uint32_t count) { constBitsPerChannel_ = count; }
    /// What they mean is for the format to say.
    std::uint32_t formatSpecificFlags() const { return formatSpecificFlags_; }
    void setFormatSpecificFlags(std::uint32_t flags) { formatSpecificFlags_ = flags; }
    /// In bytes; 0 where it varies.
    std::uint32_t constBytesPerAudioPacket() const { return constBytesPerAudioPacket_; }
    void setConstBytesPerAudioPacket(std::uint32_t count) { constBytesPerAudioPacket_ = count; }
    /// In frames; 0 where it varies.
    std::uint32_t constLPCMFramesPerAudioPacket() const { return constLPCMFramesPerAudioPacket_; }
    void setConstLPCMFramesPerAudioPacket(std::uint32_t count) {
        constLPCMFramesPerAudioPacket_ = count;
    }

    // What a view leaves out.

    /// Whether a view leaves out what version 1 alone has.
    bool hideV1Fields() const { return !isVersion1(); }
    /// Whether a view leaves out what version 2 alone has.
    bool hideV2Fields() const { return !isVersion2(); }

private:
    struct Layout;
    bool isVersion1() const { return soundVersion_ == 1; }
    bool isVersion2() const { return soundVersion_ == 2; }
    void decodeExtensionAtoms(AtomReader& in);

    OSType vendor_ = kAnyType;
    std::uint16_t soundVersion_ = 0;
    std::uint16_t revisionLevel_ = 0;
    std::uint16_t numberOfChannels_ = 0;
    std::uint16_t sampleSize_ = 0;
    std::uint16_t compressionID_ = 0;
    std::uint16_t packetSize_ = 0;
    float sampleRate_ = 0;
    std::uint32_t samplesPerPacket_ = 0;
    std::uint32_t bytesPerPacket_ = 0;
    std::uint32_t bytesPerFrame_ = 0;
    std::uint32_t bytesPerSample_ = 0;
    std::uint32_t sizeOfStructOnly_ = 0;
    float audioSampleRate_ = 0;
    std::uint32_t numAudioChannels_ = 0;
    std::uint32_t constBitsPerChannel_ = 0;
    std::uint32_t formatSpecificFlags_ = 0;
    std::uint32_t constBytesPerAudioPacket_ = 0;
    std::uint32_t constLPCMFramesPerAudioPacket_ = 0;
};

}  // namespace vexqt
