#include "vexqt/asset/VexQTAsset.h"

#include "vexqt/asset/RootReader.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/platform/log.h"

namespace vexqt {

namespace {

class FileSource final : public MovieSource {
public:
    explicit FileSource(File& file) : file_(file), length_(file.size(error_)) { check(); }

    std::uint64_t length() const override { return length_; }

    /// Reserves no more than the file holds, whatever was asked for.
    SharedBytes read(std::uint64_t offset, std::uint64_t count) override {
        if (offset >= length_) return {};
        SharedBytes bytes(static_cast<std::size_t>(std::min(count, length_ - offset)));
        const std::size_t filled = file_.readAt(offset, bytes.fill(), error_);
        check();
        return bytes.first(filled);
    }

private:
    void check() const {
        if (error_) throw Error("cannot be read: " + error_.message());
    }

    File& file_;
    std::error_code error_;
    std::uint64_t length_ = 0;
};

class MemorySource final : public MovieSource {
public:
    explicit MemorySource(ByteView data) : data_(data) {}

    std::uint64_t length() const override { return data_.size(); }

    SharedBytes read(std::uint64_t offset, std::uint64_t count) override {
        if (offset >= data_.size()) return {};
        const ByteView there = data_.subspan(static_cast<std::size_t>(offset));
        return SharedBytes::copyOf(
            there.first(static_cast<std::size_t>(std::min<std::uint64_t>(count, there.size()))));
    }

private:
    ByteView data_;
};

constexpr OSType kAcceptedMajorBrands[] = {
    "M4A "_os, "M4P "_os, "M4V "_os, "iso5"_os, "iso6"_os,
    "isom"_os, "mmp4"_os, "mp41"_os, "mp42"_os, "qt  "_os,
};

}  // namespace

std::span<const OSType> VexQTAsset::acceptedMajorBrands() { return kAcceptedMajorBrands; }

VexQTAsset::VexQTAsset() : isValid_(true) {
    rootAtoms_.push_back(std::make_unique<VexQTmoovAtom>());
}

VexQTAsset::~VexQTAsset() = default;

std::unique_ptr<VexQTAsset> VexQTAsset::assetWithURL(const std::filesystem::path& url,
                                                     std::error_code& error, ReadOptions options) {
    return initWithURL(url, error, options);
}

std::unique_ptr<VexQTAsset> VexQTAsset::initWithURL(const std::filesystem::path& url,
                                                    std::error_code& error, ReadOptions options) {
    const std::unique_ptr<File> file = systemFiles().openForReading(url, error);
    if (!file) return nullptr;
    std::unique_ptr<VexQTAsset> asset(new VexQTAsset(Unread()));
    asset->assetURL_ = url;
    asset->readMainAtomsWithFileHandle(*file, options);
    return asset;
}

std::unique_ptr<VexQTAsset> VexQTAsset::initWithData(ByteView data, ReadOptions options) {
    std::unique_ptr<VexQTAsset> asset(new VexQTAsset(Unread()));
    asset->readMainAtomsWithData(data, options);
    return asset;
}

// MARK: Reading

void VexQTAsset::readMainAtomsWithFileHandle(File& file, ReadOptions options) {
    FileSource source(file);
    std::error_code error;
    fileIdentity_ = file.identity(error);
    readMainAtoms(ReaderKind::OfFiles, source, options);
}

void VexQTAsset::readMainAtomsWithData(ByteView data, ReadOptions options) {
    MemorySource source(data);
    readMainAtoms(ReaderKind::OfMemory, source, options);
}

void VexQTAsset::readMainAtoms(ReaderKind kind, MovieSource& source, ReadOptions options) {
    rootAtoms_.clear();
    problems_.clear();
    extentsAsRead_.clear();
    const auto context = options.tolerant ? std::make_unique<ReadContext>(problems_)
                                          : std::make_unique<ReadContext>();
    RootReader(kind, source, *context, rootAtoms_).read([&](const VexQTftypAtom& fileType) {
        if (std::ranges::count(kAcceptedMajorBrands, fileType.majorBrand()) > 0) {
            isValid_ = true;
            return true;
        }
        log("File is NOT a valid QuickTime movie file");
        if (!options.tolerant) return false;
        std::string message =
            "major brand '" + textFromCode(fileType.majorBrand()) + "' is not accepted, only";
        for (const OSType brand : kAcceptedMajorBrands) message += " '" + textFromCode(brand) + "'";
        context->addProblem(fileType.extent().start, std::move(message));
        return true;
    });
    for (const auto& root : rootAtoms_) extentsAsRead_.push_back(root->extent());
}

VexQTmoovAtom* VexQTAsset::moovAtom() const {
    for (const auto& root : rootAtoms_)
        if (auto* movie = dynamic_cast<VexQTmoovAtom*>(root.get());
            movie != nullptr && movie->atomType() == "moov"_os)
            return movie;
    return nullptr;
}

Value VexQTAsset::valueForKey(std::string_view key) const {
    if (key == "isValid") return isValid_;
    for (const auto& root : rootAtoms_)
        if (root->atomTypeString() == key) return root.get();
    return {};
}

Value VexQTAsset::valueForKeyPath(std::string_view keyPath) const {
    const std::size_t point = keyPath.find('.');
    Value value = valueForKey(keyPath.substr(0, point));
    if (point == std::string_view::npos) return value;
    const auto* root = std::get_if<VexQTAtom*>(&value);
    return root != nullptr ? (*root)->valueForKeyPath(keyPath.substr(point + 1)) : Value();
}

// MARK: Writing

namespace {

/// The media data that the new movie is written behind: of those at the greatest offset the first,
/// and never one at offset 0. Null for none.
const VexQTAtom* lastMediaData(const std::vector<std::unique_ptr<VexQTAtom>>& roots) {
    const VexQTAtom* pick = nullptr;
    for (const auto& root : roots) {
        if (root->atomType() != "mdat"_os) continue;
        if (root->offsetInFile() > (pick != nullptr ? pick->offsetInFile() : 0)) pick = root.get();
    }
    return pick;
}

}  // namespace

bool VexQTAsset::writeInPlaceWithError(std::error_code& error) {
    if (!assetURL_) {
        error = std::make_error_code(std::errc::no_such_file_or_directory);
        return false;
    }
    const std::unique_ptr<File> file = systemFiles().openForWriting(*assetURL_, error);
    if (!file) return false;

    std::error_code unchecked;  // From here on nothing that fails is reported.
    for (const InPlaceWrite& write : inPlaceWrites())
        file->writeAt(write.offset, write.bytes, unchecked);
    return true;
}

std::vector<VexQTAsset::InPlaceWrite> VexQTAsset::inPlaceWrites() {
    std::vector<InPlaceWrite> writes;
    Bytes newMovie;
    for (const auto& root : rootAtoms_) {
        if (root->atomType() != "moov"_os) continue;
        newMovie = root->atomData();
        const auto* movie = dynamic_cast<const VexQTmoovAtom*>(root.get());
        if (movie == nullptr) continue;
        ByteWriter freeHeader;
        freeHeader.u32(static_cast<std::uint32_t>(movie->originalSize()));
        freeHeader.u32("free"_os);
        writes.push_back({movie->offsetInFile(), freeHeader.release()});
    }
    const VexQTAtom* media = lastMediaData(rootAtoms_);
    const std::uint64_t end = media != nullptr ? media->offsetInFile() + media->atomSize() : 0;
    if (newMovie.size() > 8 && end != 0) writes.push_back({end, std::move(newMovie)});
    return writes;
}

bool VexQTAsset::writeToURL(const std::filesystem::path& url, std::error_code& error) {
    const std::unique_ptr<File> file = systemFiles().create(url, IfExists::Replace, error);
    if (!file) return false;
    ByteWriter skeleton;
    VexQTftypAtom().appendTo(skeleton);
    VexQTmoovAtom().appendTo(skeleton);
    std::error_code unchecked;
    file->writeAt(0, skeleton.view(), unchecked);
    return false;
}

Bytes VexQTAsset::assetData() {
    ByteWriter out;
    for (const auto& root : rootAtoms_) root->appendTo(out);
    return out.release();
}

}  // namespace vexqt
