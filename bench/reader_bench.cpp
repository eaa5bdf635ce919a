// The readers of each format, each on one document: opened, read and closed. Small documents show files a
// second, large ones bytes a second; no reader of text looks at more than its first 64 KiB, and the other
// ones read only the parts that they need. The floors open the file and read as much.
#include "docinfo/readers/readers.h"
#include "support.h"
#include "tests/support/document_builder.h"
#include "tests/support/pdf_builder.h"
#include "tests/support/storage_builder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using vxut::clsDocFile;
using vxut::clsDocu;
using vxut::String;

constexpr size_t kHeadBytes = 65536;

// A document on disk, removed at the end.
class DocumentFile {
public:
    DocumentFile(const wchar_t* name, const std::string& content) : path_(bench::TemporaryName(name)) {
        std::ofstream(std::filesystem::path(path_), std::ios::binary) << content;
    }
    ~DocumentFile() { DeleteFileW(path_.c_str()); }
    DocumentFile(const DocumentFile&) = delete;
    DocumentFile& operator=(const DocumentFile&) = delete;

    const wchar_t* Path() const { return path_.c_str(); }

private:
    std::wstring path_;
};

std::string Mail(const std::string& filler) {
    return "Received: from host by host; Fri, 13 Nov 2026 16:30:00 +0100\r\n"
           "From: =?iso-8859-1?Q?Andr=E9?= <a@b.c>\r\nTo: \"Doe, J.\" <j@d.e>, f@g.h\r\n"
           "Subject: =?utf-8?B?w6Q=?= and more\r\nDate: Fri, 13 Nov 2026 16:30:00 +0100\r\n\r\n" +
           filler;
}

std::string Pdf(const std::string& filler) {
    return vxut::test::PdfBuilder()
        .Object("<</Type/Catalog>>")
        .Object("<</Title(T)/Author<FEFF0041>/CreationDate(D:20070102030405+01'00')>>")
        .Object(filler)
        .Section("/Info 2 0 R")
        .Finish();
}

std::string Rtf(const std::string& filler) {
    return "{\\rtf1{\\fonttbl" + filler +
           "}{\\info{\\title Gr\\'fc\\'dfe}{\\author A}{\\keywords k}{\\creatim\\yr2026\\mo11\\dy13\\hr16}}}";
}

std::string Html(const std::string& filler) {
    return "<html><head><title>a&auml;&#228;</title><style>" + filler +
           "</style><meta name=\"author\" content=\"A\"><meta name=\"keywords\" content=\"k\"></head>";
}

std::string CorePackage(const std::string& filler) {
    return vxut::test::Package(
        {{"word/document.xml", filler},
         {"docProps/core.xml", vxut::test::CoreProperties("<dc:title>T</dc:title><dc:creator>A</dc:creator>"
                                                          "<dc:description>" +
                                                          filler + "</dc:description>")}});
}

std::string OpenPackage(const std::string& filler) {
    return vxut::test::Package(
        {{"meta.xml", vxut::test::OpenDocumentMeta("<dc:title>T</dc:title><meta:keyword>k</meta:keyword>"
                                                   "<dc:description>" +
                                                   filler + "</dc:description>")}});
}

std::string FlatXml(const std::string& filler) {
    return "<a:a xmlns:a=\"a\" xmlns:cp=\"b\" xmlns:dc=\"c\"><cp:coreProperties><dc:title>T</dc:title>"
           "<dc:description>" +
           filler + "</dc:description></cp:coreProperties></a:a>";
}

std::string Image(const std::string& filler) {
    vxut::test::ImageBuilder image;
    image.Short(256, 640).Short(257, 480).Text(270, "description " + filler).Text(271, "Make").Text(272, "M");
    image.Text(306, "2026:11:13 16:30:59").Fraction(33434, 1, 250).Fraction(33437, 28, 10).End();
    return image.File();
}

std::string Photo(const std::string& filler) { return vxut::test::Photo(Image(filler)); }

std::string OldWord(const std::string& filler) {
    return vxut::test::OldWordDocument({"0", "1", "title", "subject", "keywords"}) + filler;
}

std::string Perfect(const std::string& filler) {
    return vxut::test::PerfectDocument({{17, u"title"}, {5, u"author"}}) + filler;
}

// What the system writes for the streams.
std::string StorageOf(const std::vector<vxut::test::StorageStream>& streams) {
    const std::wstring path = bench::TemporaryName(L"storage");
    vxut::test::MakeStorage(path.c_str(), streams);
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    file.close();
    DeleteFileW(path.c_str());
    return content;
}

std::string Compound(const std::string& filler) {
    using namespace vxut::test;
    return StorageOf({{kSummaryName, SummarySet({{2, NarrowValue("title")}, {6, NarrowValue("c" + filler)}})},
                      {L"Body", std::string(5000, 'b')}});
}

std::string Message(const std::string& filler) {
    return StorageOf({{L"__substg1.0_0037001E", "subject"},
                      {L"__substg1.0_1000001E", "body" + filler},
                      {L"__recip_version1.0_#00000000/__substg1.0_3001001E", "recipient"}});
}

int ReadTiffImage(clsDocu& document, clsDocFile& file) { return vxut::ReadTiff(document, file, 0); }

// These readers open the file themselves.
template <int (*read)(clsDocu& document, const String& path)>
int ReadStorage(clsDocu& document, clsDocFile& file) {
    file.Close();
    return read(document, file.Name());
}

struct Reader {
    const char* name;
    int (*read)(clsDocu& document, clsDocFile& file);
    std::string (*make)(const std::string& filler);
};
constexpr Reader kReaders[] = {{"Mail", vxut::ReadMail, Mail},
                               {"Pdf", vxut::ReadPdf, Pdf},
                               {"Rtf", vxut::ReadRtf, Rtf},
                               {"Html", vxut::ReadHtml, Html},
                               {"OfficeOpenXml", vxut::ReadZipPackage, CorePackage},
                               {"OpenDocument", vxut::ReadZipPackage, OpenPackage},
                               {"Xml", vxut::ReadXmlProperties, FlatXml},
                               {"Compound", ReadStorage<vxut::ReadCompoundProperties>, Compound},
                               {"Message", ReadStorage<vxut::ReadMessageStorage>, Message},
                               {"Tiff", ReadTiffImage, Image},
                               {"Jpeg", vxut::ReadJpeg, Photo},
                               {"WinWord2", vxut::ReadWinWord2, OldWord},
                               {"WordPerfect", vxut::ReadWordPerfect, Perfect}};

void Count(benchmark::State& state, const std::string& content) {
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(std::min(content.size(), kHeadBytes)));
}

void Read(benchmark::State& state, const Reader& reader, const std::string& content) {
    const DocumentFile document(L"document", content);
    const String path(document.Path());
    for (auto _ : state) {
        clsDocFile file(path);
        clsDocu properties;
        benchmark::DoNotOptimize(reader.read(properties, file));
    }
    Count(state, content);
}

void OpenAndRead(benchmark::State& state, const std::string& content) {
    const DocumentFile document(L"document", content);
    std::vector<char> head(kHeadBytes);
    for (auto _ : state) {
        const HANDLE file = CreateFileW(document.Path(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        DWORD read = 0;
        ReadFile(file, head.data(), kHeadBytes, &read, nullptr);
        CloseHandle(file);
    }
    Count(state, content);
}

const bool registered = [] {
    for (const Reader& reader : kReaders) {
        for (const size_t filler : {size_t{0}, size_t{60000}}) {
            const std::string content = reader.make(std::string(filler, 'x'));
            const std::string group = std::string("Read") + reader.name;
            const std::string size = "/" + std::to_string(content.size());
            benchmark::RegisterBenchmark((group + "/vxut" + size).c_str(), Read, reader, content);
            benchmark::RegisterBenchmark((group + "/floor:open and read" + size).c_str(), OpenAndRead,
                                         content);
        }
    }
    return true;
}();

} // namespace
