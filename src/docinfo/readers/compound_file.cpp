#include "docinfo/readers/compound_file.h"

#include "base/byte_cursor.h"
#include "docinfo/readers/compound_format.h"
#include "docinfo/readers/properties.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

namespace vxut {
namespace {

constexpr uint16_t kSectorShift = 9;
constexpr uint16_t kLargeSectorShift = 12;
constexpr size_t kMostEntries = 131072; // no message with a thousand recipients has a tenth of them
// Of the tree below one storage. The system searches it from the top, entry by entry.
constexpr uint32_t kMostDepth = 4096;
constexpr size_t kMostBytesAtOnce = 65536;

using Sectors = std::vector<uint32_t>;

bool IsOpenedByReaders(const scCompoundEntry& entry) {
    // Whatever the length of the name is said to be: the system looks for its end.
    const std::u16string_view name(entry.name, std::size(entry.name));
    return entry.type == kCompoundStream && (name.starts_with(u'\5') || name.starts_with(u"__"));
}

// What is left of an entry after it was read.
struct Entry {
    uint32_t left;
    uint32_t right;
    uint32_t child;
    uint32_t firstSector;
    uint64_t size;
    uint8_t type;
    bool isOpened;
};

class CompoundFile {
public:
    explicit CompoundFile(clsFile& file) : file_(file) {}

    bool IsSound() {
        return ReadHeader() && ReadTable() && ReadDirectory() && ReadSmallTable() && IsTreeSound() &&
               AreStreamsSound();
    }

private:
    bool ReadHeader();
    bool ReadTable();
    bool ListTable(Sectors& sectors);
    bool ReadDirectory();
    bool ReadSmallTable();
    bool IsTreeSound() const;
    bool AreStreamsSound();
    bool IsStreamSound(const Entry& entry);

    size_t SectorBytes() const { return size_t{1} << header_.sectorShift; }
    // Notes that a sector has its place. Returns false if there is no such sector, or it has one already.
    bool Use(uint32_t sector);
    // Follows the allocation table. A ring meets a sector that is in use.
    bool Follow(uint32_t first, Sectors& sectors);
    // Calls take with the bytes of some sectors after the other; what is missing at the end of the file is
    // zero.
    template <class Take>
    bool Read(const Sectors& sectors, Take take);
    bool ReadNumbers(const Sectors& sectors, std::vector<uint32_t>& numbers);

    clsFile& file_;
    scCompoundHeader header_{};
    uint32_t sectorCount_ = 0; // an incomplete one at the end counts
    std::vector<bool> used_;
    std::vector<uint32_t> table_;
    std::vector<uint32_t> smallTable_;
    std::vector<bool> smallUsed_;
    std::vector<Entry> entries_;
};

bool CompoundFile::ReadHeader() {
    if (!ReadAll(file_, 0, &header_, sizeof header_)) return false;
    if (header_.magic != kCompoundMagic || header_.byteOrder != kCompoundByteOrder ||
        header_.smallShift != kCompoundSmallShift || header_.smallLimit != kCompoundSmallLimit ||
        (header_.sectorShift != kSectorShift && header_.sectorShift != kLargeSectorShift)) {
        return false;
    }
    const auto sectorBytes = static_cast<int64_t>(SectorBytes());
    const int64_t sectors = (file_.GetSize() - 1) / sectorBytes; // the header takes the first
    if (sectors <= 0 || sectors >= kSectorsEnd) return false;
    sectorCount_ = static_cast<uint32_t>(sectors);
    used_.resize(sectorCount_);
    return true;
}

bool CompoundFile::Use(uint32_t sector) {
    if (sector >= sectorCount_ || used_[sector]) return false;
    used_[sector] = true;
    return true;
}

bool CompoundFile::Follow(uint32_t first, Sectors& sectors) {
    for (uint32_t sector = first; sector != kSectorsEnd; sector = table_[sector]) {
        if (!Use(sector) || sector >= table_.size()) return false;
        sectors.push_back(sector);
    }
    return true;
}

template <class Take>
bool CompoundFile::Read(const Sectors& sectors, Take take) {
    const size_t sectorBytes = SectorBytes();
    const size_t most = kMostBytesAtOnce / sectorBytes;
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < sectors.size();) {
        size_t run = 1;
        while (run < most && i + run < sectors.size() && sectors[i + run] == sectors[i] + run) ++run;
        bytes.assign(run * sectorBytes, 0);
        const int64_t offset = (int64_t{sectors[i]} + 1) << header_.sectorShift;
        if (ReadSome(file_, offset, bytes.data(), bytes.size()) == 0) return false;
        if (!take(clsByteCursor(bytes))) return false;
        i += run;
    }
    return true;
}

bool CompoundFile::ReadNumbers(const Sectors& sectors, std::vector<uint32_t>& numbers) {
    numbers.reserve(sectors.size() * SectorBytes() / sizeof(uint32_t));
    return Read(sectors, [&numbers](clsByteCursor bytes) {
        for (uint32_t number; bytes.ReadLittle(number);) numbers.push_back(number);
        return true;
    });
}

// Lists the sectors of the allocation table: first those in the header, then those in a chain of sectors,
// whose last number is the next sector of the chain.
bool CompoundFile::ListTable(Sectors& sectors) {
    sectors.assign(std::begin(header_.list), std::end(header_.list));
    uint32_t sector = header_.firstListSector;
    if (header_.listSectors == 0 && sector == kNoSector) sector = kSectorsEnd;
    uint32_t count = 0;
    for (; sector != kSectorsEnd; ++count) {
        if (count >= header_.listSectors || !Use(sector)) return false;
        std::vector<uint32_t> numbers;
        if (!ReadNumbers({sector}, numbers)) return false;
        sector = numbers.back();
        sectors.insert(sectors.end(), numbers.begin(), numbers.end() - 1);
    }
    if (count != header_.listSectors || header_.tableSectors > sectors.size()) return false;
    sectors.resize(header_.tableSectors);
    return true;
}

bool CompoundFile::ReadTable() {
    if (header_.tableSectors > sectorCount_ || header_.listSectors > sectorCount_) return false;
    Sectors sectors;
    if (!ListTable(sectors)) return false;
    for (const uint32_t sector : sectors)
        if (!Use(sector)) return false;
    return ReadNumbers(sectors, table_);
}

bool CompoundFile::ReadDirectory() {
    Sectors sectors;
    if (!Follow(header_.firstDirectorySector, sectors)) return false;
    if (sectors.size() > kMostEntries * sizeof(scCompoundEntry) / SectorBytes()) return false;
    const bool isRead = Read(sectors, [this](clsByteCursor bytes) {
        for (scCompoundEntry entry; bytes.ReadObject(entry);) {
            if (entry.nameBytes > sizeof entry.name) return false;
            entries_.push_back({entry.left, entry.right, entry.child, entry.firstSector, entry.size,
                                entry.type, IsOpenedByReaders(entry)});
        }
        return true;
    });
    return isRead && !entries_.empty() && entries_[0].type == kCompoundRoot;
}

// Small sectors are in a stream that belongs to the root.
bool CompoundFile::ReadSmallTable() {
    Sectors sectors;
    const bool isAbsent = header_.smallTableSectors == 0 && header_.firstSmallTableSector == kNoSector;
    if (!isAbsent && !Follow(header_.firstSmallTableSector, sectors)) return false;
    if (!ReadNumbers(sectors, smallTable_)) return false;
    smallUsed_.resize(smallTable_.size());
    const Entry& root = entries_[0];
    Sectors content;
    return (root.size == 0 && root.firstSector == kNoSector) || Follow(root.firstSector, content);
}

// Each entry has one place below the root, and no tree is deep.
bool CompoundFile::IsTreeSound() const {
    struct Place {
        uint32_t entry;
        uint32_t depth;
    };
    std::vector<bool> seen(entries_.size());
    std::vector<Place> open = {{entries_[0].child, 0}};
    while (!open.empty()) {
        const Place place = open.back();
        open.pop_back();
        if (place.entry == kNoEntry) continue;
        if (place.entry >= entries_.size() || seen[place.entry] || place.depth > kMostDepth) return false;
        seen[place.entry] = true;
        const Entry& entry = entries_[place.entry];
        if (entry.type != kCompoundStorage && entry.type != kCompoundStream) return false;
        open.push_back({entry.left, place.depth + 1});
        open.push_back({entry.right, place.depth + 1});
        if (entry.type == kCompoundStorage) open.push_back({entry.child, 0});
    }
    return true;
}

bool CompoundFile::AreStreamsSound() {
    return std::ranges::all_of(
        entries_, [this](const Entry& entry) { return !entry.isOpened || IsStreamSound(entry); });
}

bool CompoundFile::IsStreamSound(const Entry& entry) {
    if (entry.size == 0) return true;
    if (entry.size > uint64_t{sectorCount_} << header_.sectorShift) return false;
    if (entry.size >= header_.smallLimit) {
        Sectors sectors;
        return Follow(entry.firstSector, sectors) && sectors.size() * SectorBytes() >= entry.size;
    }
    uint64_t bytes = 0;
    for (uint32_t sector = entry.firstSector; sector != kSectorsEnd; sector = smallTable_[sector]) {
        if (sector >= smallTable_.size() || smallUsed_[sector]) return false;
        smallUsed_[sector] = true;
        bytes += uint64_t{1} << kCompoundSmallShift;
    }
    return bytes >= entry.size;
}

} // namespace

bool IsCompoundFileSound(clsFile& file) { return CompoundFile(file).IsSound(); }

} // namespace vxut
