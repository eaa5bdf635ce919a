#include "binary_document_targets.h"

#include "docinfo/readers/compound_file.h"
#include "docinfo/readers/package_patterns.h"
#include "docinfo/readers/readers.h"
#include "tests/support/document_builder.h"
#include "tests/support/storage_builder.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlwapi.h>

#include <fstream>
#include <iterator>

namespace fuzz {
namespace {

using namespace vxut;
using namespace vxut::test;

constexpr wchar_t kStoragePath[] = L"fuzz-storage.tmp";

// A reader either succeeds or fails.
void Read(int (*read)(clsDocu& document, clsDocFile& file), const uint8_t* data, size_t size) {
    IStream* const stream = SHCreateMemStream(data, static_cast<UINT>(size));
    if (stream == nullptr) return;
    clsDocFile file(L"");
    clsDocu document;
    if (file.OpenOnStream(stream) == 0) {
        const int result = read(document, file);
        if (result != 0 && result != -1) __builtin_trap();
    }
    stream->Release();
}

// As a package, and as the text of its member.
void RunPackage(const uint8_t* data, size_t size) {
    Read(ReadZipPackage, data, size);
    const String text =
        clsCHARString(reinterpret_cast<const char*>(data), static_cast<int64_t>(size)).ToString(0);
    clsDocu document;
    ReadCoreProperties(document, text);
    ReadOpenDocumentProperties(document, text);
}

void RunXmlProperties(const uint8_t* data, size_t size) { Read(ReadXmlProperties, data, size); }

// As a file, which the system opens if it is sound, and as a summary in one that is.
void RunCompound(const uint8_t* data, size_t size) {
    IsPropertySetSound({data, size});
    std::ofstream(kStoragePath, std::ios::binary).write(reinterpret_cast<const char*>(data), size);
    clsDocu document;
    ReadCompoundProperties(document, kStoragePath);
    ReadMessageStorage(document, kStoragePath);
    if (size < 2 || data[0] != 0xFE || data[1] != 0xFF) return;
    MakeStorage(kStoragePath, {{kSummaryName, std::string(data, data + size)}});
    ReadCompoundProperties(document, kStoragePath);
}

// As a plain image and inside of a photo.
void RunImage(const uint8_t* data, size_t size) {
    Read([](clsDocu& document, clsDocFile& file) { return ReadTiff(document, file, 0); }, data, size);
    Read(ReadJpeg, data, size);
    const std::string photo = Photo(std::string(data, data + size));
    Read(ReadJpeg, reinterpret_cast<const uint8_t*>(photo.data()), photo.size());
}

void RunOldWord(const uint8_t* data, size_t size) {
    Read(ReadWinWord2, data, size);
    Read(ReadWordPerfect, data, size);
}

Input StorageSeed(const std::vector<StorageStream>& streams) {
    MakeStorage(kStoragePath, streams);
    std::ifstream file(kStoragePath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string ImageSeed(bool isBig) {
    ImageBuilder image(isBig);
    image.Short(256, 1)
        .Long(257, 2)
        .Text(269, "title")
        .Text(306, "2026:11:13 16:30:59")
        .Fraction(33434, 1, 2);
    const uint32_t first = image.End();
    image.Text(271, "Make").Long(34665, first).Text(33432, "C").Fraction(37382, 1, 2, 10, 2).End();
    return image.File();
}

const char kFlat[] =
    "<a:a xmlns:a=\"a\" xmlns:cp=\"b\" xmlns:dc=\"c\"><cp:coreProperties><dc:title>t&amp;"
    "</dc:title><x/><cp:keywords>k</cp:keywords></cp:coreProperties></a:a>";

} // namespace

std::vector<Target> BinaryDocumentTargets() {
    const std::string summary = SummarySet({{2, NarrowValue("title")}, {12, TimeValue(0x1DC516963AD7400)}});
    return {
        {"package",
         RunPackage,
         {Bytes(Package({{"docProps/core.xml", CoreProperties("<dc:title>t</dc:title>")}})),
          Bytes(Package({{"x", "y", 0, 8},
                         {"meta.xml", std::string("\x01\x03\0\xFC\xFF<a>", 8), 8, 0x88, 9, "extra"}})),
          Bytes(OpenDocumentMeta("<dc:title>\xC3\xA4</dc:title><meta:keyword>k</meta:keyword>"
                                 "<dc:date>2026-11-13T16:30:00</dc:date>"))},
         {Bytes("PK\1\2"), Bytes("PK\3\4"), Bytes("PK\5\6"), Bytes("PK\7\10"), Bytes("meta.xml"),
          Bytes("docProps/core.xml"), Bytes("<meta:keyword>"), Bytes("</meta:keyword>"), Bytes("?>"),
          Bytes("encoding=\"UTF-8\""), Bytes("<dc:title>"), Bytes("</dc:title>")}},
        {"xmlproperties",
         RunXmlProperties,
         {Bytes(kFlat), Bytes("<o:DocumentProperties><o:Author>A</o:Author><o:Created>2026-11-13</o:Created>"
                              "</o:DocumentProperties>")},
         {Bytes("<cp:coreProperties>"), Bytes("<dc:title>"), Bytes("</dc:title>"), Bytes("<meta:keywords>"),
          Bytes("&amp;"), Bytes("&#65;"), Bytes("<!DOCTYPE a [<!ENTITY b \"c\">]>"), Bytes("<![CDATA["),
          Bytes("]]>"), Bytes("<!--"), Bytes("-->"), Bytes("<?"), Bytes("?>"), Bytes(" xmlns:q=\"r\""),
          Bytes("/>"), Bytes("\xFF\xFE")}},
        {"compound",
         RunCompound,
         {Bytes(summary), StorageSeed({{kSummaryName, summary}, {L"Body", std::string(5000, 'b')}}),
          StorageSeed({{L"__substg1.0_0037001E", "title"},
                       {L"__recip_version1.0_#00000000/__substg1.0_3001001F", "name"},
                       {L"__properties_version1.0", std::string(80, '\0')}})},
         {Bytes("\xFE\xFF\xFF\xFF"), Bytes("\xFF\xFF\xFF\xFF"), Bytes("\x1E"), Bytes("\x1F"), Bytes("\x47"),
          Bytes("\xB0\x04"), Bytes(std::string("\x05S\0u\0m", 6))}},
        {"image",
         RunImage,
         {Bytes(ImageSeed(false)), Bytes(ImageSeed(true)), Bytes(Photo(ImageSeed(false)))},
         {Bytes("\xFF\xD8"), Bytes("\xFF\xE1"), Bytes("Exif"), Bytes("II*"), Bytes("MM"), Bytes("\x69\x87")}},
        {"oldword",
         RunOldWord,
         {Bytes(OldWordDocument({"0", "1", "title", "subject"})),
          Bytes(PerfectDocument({{17, u"title"}, {1, u"a\xF90A\u0126"}}))},
         {Bytes("\xFFWPC"), Bytes("\x12"), Bytes("\x0A\xF9")}},
    };
}

} // namespace fuzz
