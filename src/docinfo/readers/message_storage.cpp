// Messages that a mail program saved as a structured storage, one stream for each property.
#include "base/byte_cursor.h"
#include "base/tick_count.h"
#include "docinfo/readers/document_storage.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "text/match_budget.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vxut {
namespace {

// Texts, with the type of wide text in the low half.
constexpr uint32_t kSubject = 0x0037001F;
constexpr uint32_t kRepresentedName = 0x0042001F;
constexpr uint32_t kRepresentedAddress = 0x0065001F;
constexpr uint32_t kSenderName = 0x0C1A001F;
constexpr uint32_t kSenderAddress = 0x0C1F001F;
constexpr uint32_t kDisplayName = 0x3001001F;
constexpr uint32_t kAddress = 0x3003001F;
// Times.
constexpr uint32_t kSubmitTime = 0x00390040;
constexpr uint32_t kDeliveryTime = 0x0E060040;

constexpr wchar_t kTimesStream[] = L"__properties_version1.0";
constexpr size_t kRecordsOffset = 32;
// Not the 16 bytes of a record: only every third record is seen. Callers rely on it.
constexpr size_t kRecordStride = 24;

constexpr wchar_t kRecipientSeparator[] = L"; ";
// Of a message, all of its recipients together. A file can have any number of them.
constexpr uint64_t kMostMilliseconds = 200;

// The name of a stream is made of the property and the type of its text.
bool ReadText(IStorage& storage, uint32_t tag, std::vector<uint8_t>& bytes) {
    String name;
    name.Format(L"__substg1.0_%08x", tag);
    return ReadStorageStream(storage, name.Text(), bytes);
}

String ReadSubstgString(IStorage& storage, uint32_t tag) {
    constexpr uint32_t kNarrow = 0x1E;
    constexpr uint32_t kWide = 0x1F;
    std::vector<uint8_t> bytes;
    if (ReadText(storage, (tag & ~0xFFE1U) | kNarrow, bytes)) return AnsiText(bytes);
    if (!ReadText(storage, (tag & ~0xFFE0U) | kWide, bytes)) return {};
    String text;
    wchar_t* const units = text.GetBuffer(static_cast<int64_t>(bytes.size() / sizeof(wchar_t)));
    std::memcpy(units, bytes.data(), bytes.size() / sizeof(wchar_t) * sizeof(wchar_t));
    const auto* const end = std::find(units, units + bytes.size() / sizeof(wchar_t), L'\0');
    text.SetLength(end - units);
    return text;
}

String FirstText(IStorage& storage, uint32_t tag, uint32_t otherTag) {
    const String text = ReadSubstgString(storage, tag);
    return text.IsEmpty() ? ReadSubstgString(storage, otherTag) : text;
}

void ReadRecipients(clsDocu& document, IStorage& storage) {
    clsMatchBudget budget(kMostMilliseconds);
    String all = TextOf(document.LastAuthor);
    uint32_t count = 0;
    for (uint64_t before = TickCount64(); !budget.IsUsedUp(); ++count) {
        String name;
        name.Format(L"__recip_version1.0_#%08x", count);
        clsAutoRelease<IStorage*> recipient;
        const HRESULT result = storage.OpenStorage(name.Text(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE,
                                                   nullptr, 0, recipient.Receive());
        if (FAILED(result)) break;
        all.AppendDelimited(kRecipientSeparator, FirstText(*recipient.Get(), kDisplayName, kAddress));
        const uint64_t now = TickCount64();
        budget.Add(now - before);
        before = now;
    }
    if (count > 0) SetText(document.LastAuthor, all);
}

void ReadTimes(clsDocu& document, IStorage& storage) {
    std::vector<uint8_t> bytes;
    if (!ReadStorageStream(storage, kTimesStream, bytes)) return;
    SYSTEMTIME sent = EmptyTime();
    SYSTEMTIME received = EmptyTime();
    const clsByteCursor stream(bytes);
    clsByteCursor record;
    for (size_t offset = kRecordsOffset; stream.Part(offset, kRecordStride, record);
         offset += kRecordStride) {
        uint32_t tag = 0;
        uint32_t flags = 0;
        FILETIME time{};
        if (!record.ReadLittle(tag) || !record.ReadLittle(flags) || !record.ReadObject(time)) break;
        if (tag == kSubmitTime) sent = SystemTimeOf(time);
        if (tag == kDeliveryTime) received = SystemTimeOf(time);
    }
    if (sent.wYear == 0) {
        if (received.wYear != 0) document.Created = received;
        return;
    }
    document.Created = sent;
    if (received.wYear != 0) document.Modified = received;
}

} // namespace

int ReadMessageStorage(clsDocu& document, const String& path) {
    clsDocumentStorage storage;
    const HRESULT result = storage.Open(path);
    if (FAILED(result)) return result;
    SetText(document.Title, ReadSubstgString(*storage.Get(), kSubject));
    const String name = FirstText(*storage.Get(), kRepresentedName, kSenderName);
    const String address = FirstText(*storage.Get(), kRepresentedAddress, kSenderAddress);
    SetText(document.Author, name.IsEmpty() ? address : name);
    ReadRecipients(document, *storage.Get());
    ReadTimes(document, *storage.Get());
    return 0;
}

} // namespace vxut
