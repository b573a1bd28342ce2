#pragma once

#include <filesystem>
#include <system_error>

#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/export.h"
#include "vexqt/platform/files.h"

namespace vexqt {

class MovieSource;
class VexQTAtomViewController;
enum class ReaderKind;

/// How a movie is read.
struct ReadOptions {
    /// Read on where something is wrong, and list it as a problem.
    bool tolerant = false;
};

/// A movie file: its top-level atoms, and whether it is a file that is accepted.
///
/// Media data and free space are never read. The asset owns its root atoms, and they their
/// subtrees; root atoms have no parent.
class VEXQT_EXPORT VexQTAsset {
public:
    /// A movie made in memory: an empty movie atom, valid, without a file.
    VexQTAsset();
    ~VexQTAsset();
    VexQTAsset(const VexQTAsset&) = delete;
    VexQTAsset& operator=(const VexQTAsset&) = delete;

    /// Opens and reads a file. Null, with the system's error, when it cannot be opened.
    ///
    /// What is wrong with the file ends the reading with a line in the log, and what was read until
    /// then stays. \throws Error from the atoms' own decoding, unless the reading is tolerant.
    static std::unique_ptr<VexQTAsset> assetWithURL(const std::filesystem::path& url,
                                                    std::error_code& error,
                                                    ReadOptions options = {});
    /// The same under its other name.
    static std::unique_ptr<VexQTAsset> initWithURL(const std::filesystem::path& url,
                                                   std::error_code& error,
                                                   ReadOptions options = {});
    /// Reads a movie that is in memory. The bytes are needed only during the call.
    ///
    /// \throws RangeError for fewer than 8 bytes, and Error from the atoms' own decoding, unless
    /// the reading is tolerant.
    static std::unique_ptr<VexQTAsset> initWithData(ByteView data, ReadOptions options = {});

    /// Reads the root atoms anew, from an open file or from memory. Validity, once found, stays.
    void readMainAtomsWithFileHandle(File& file, ReadOptions options = {});
    /// The same from memory. \throws RangeError for fewer than 8 bytes, unless tolerant.
    void readMainAtomsWithData(ByteView data, ReadOptions options = {});

    /// The top-level atoms in file order.
    const std::vector<std::unique_ptr<VexQTAtom>>& rootAtoms() const { return rootAtoms_; }
    std::vector<std::unique_ptr<VexQTAtom>>& rootAtoms() { return rootAtoms_; }
    /// The first root atom of type 'moov'; null for none.
    VexQTmoovAtom* moovAtom() const;
    /// The file that the movie was read from; absent for one made in memory or from bytes.
    const std::optional<std::filesystem::path>& assetURL() const { return assetURL_; }
    /// What a tolerant reading met, in the order in which it met it.
    const std::vector<Problem>& problems() const { return problems_; }

    /// "isValid": whether the file type names an accepted major brand. Any other key: the first
    /// root atom whose type string it is, else an absent value.
    Value valueForKey(std::string_view key) const;
    /// Follows keys parted by points from a root atom to a property.
    Value valueForKeyPath(std::string_view keyPath) const;

    // What careful saving needs.

    /// Which file it was, and in which state, when the movie was read from it; absent for a movie
    /// that was not.
    const std::optional<FileIdentity>& fileIdentity() const { return fileIdentity_; }
    /// Where the root atoms lay that were read, whatever has become of the list since.
    const std::vector<Extent>& extentsAsRead() const { return extentsAsRead_; }
    /// What writing in place writes, in this order; later writes may cover earlier ones.
    struct InPlaceWrite {
        std::uint64_t offset = 0;  ///< From the start of the file.
        Bytes bytes;               ///< What stands there afterwards.
    };
    /// Works the writes out without writing anything. The atoms get their new sizes.
    std::vector<InPlaceWrite> inPlaceWrites();

    /// Serialises the movie, turns the old one into free space where it lies, and writes the new
    /// one behind the last media data, in the file that the asset was read from.
    ///
    /// False, with the system's error, when that file cannot be opened for writing; nothing else
    /// that fails is reported. Other root atoms are not written. Offsets and original sizes keep
    /// telling where things lay before.
    bool writeInPlaceWithError(std::error_code& error);
    /// Creates a file that holds an empty movie and nothing of this one. False always, also when it
    /// was written: no host may rely on it to save a movie.
    bool writeToURL(const std::filesystem::path& url, std::error_code& error);
    /// The bytes of every root atom one after another; free space and media data have none.
    Bytes assetData();

    /// The view controller that shows an atom, owned by the caller; null where it has no view.
    /// Defined in the inspector library.
    static VexQTAtomViewController* newViewControllerForAtom(VexQTAtom* atom);

    /// The major brands of the files that are accepted.
    static std::span<const OSType> acceptedMajorBrands();

private:
    struct Unread {};
    explicit VexQTAsset(Unread) {}

    void readMainAtoms(ReaderKind kind, MovieSource& source, ReadOptions options);

    std::vector<std::unique_ptr<VexQTAtom>> rootAtoms_;
    std::vector<Problem> problems_;
    std::optional<std::filesystem::path> assetURL_;
    std::optional<FileIdentity> fileIdentity_;
    std::vector<Extent> extentsAsRead_;
    bool isValid_ = false;
};

}  // namespace vexqt
