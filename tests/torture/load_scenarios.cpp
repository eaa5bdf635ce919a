#include "memory_stream.h"
#include "profile_sample.h"
#include "scenario.h"

#include <algorithm>
#include <iterator>

namespace torture {
namespace {

constexpr wchar_t kFile[] = L"load.prf";

enum class How { kShared, kExclusive, kStream };

std::string Utf16File() { return SampleFile(1); }

// No byte order mark, and long enough for the test of the contents.
std::string UnmarkedUtf8File() {
    std::string file = "[/]\n{\n";
    for (int i = 0; i < 40; ++i) file += "Item" + std::to_string(i) + "=\xC3\xA4\xE2\x82\xAC\n";
    return file + "}\n";
}

std::string XmlFile() { return SampleFile(1, PROF_FORMAT_XML); }

std::string FieldsFile() {
    std::string file = "<?xml version=\"1.0\"\n<xfdf >\n<field>name=\"A name of more than twenty units\"\n";
    for (int i = 0; i < 60; ++i) file += "<value>of many &lt;\nlines</value>\n";
    return file + "</field>\n";
}

std::string SectionsFile() { return "[One]\r\na=1\r\nb=2\r\n;comment\r\n[Two]\r\nc=3\r\n"; }

std::string PackedFile() {
    const HPROF job = ProfJobOpenW(nullptr);
    FillSample(job, 1);
    ProfSaveW(job, L"packed.prf", PROF_FORMAT_TEXT | PROF_FORMAT_PACKED);
    ProfJobClose(job);
    std::string bytes = BytesOf(L"packed.prf");
    DeleteFileW(L"packed.prf");
    return bytes;
}

// The job is null or has a code other than PROF_OK and a part of the items, from the first one on; or it is
// right.
class Load : public Scenario {
public:
    Load(How how, std::string (*makeFile)()) : how_(how), makeFile_(makeFile) {}
    ~Load() override { ProfJobClose(job_); }

    void Prepare() override {
        stream_.bytes = makeFile_();
        PutFile(kFile, stream_.bytes);
        const HPROF whole = ProfJobOpenW(kFile);
        tree_ = TreeOf(whole);
        ProfJobClose(whole);
    }
    void Run() override { job_ = Open(); }
    void Check(Verdict& verdict) override {
        if (!verdict.Expect(job_ || verdict.AnyFailed(), "no job")) return;
        const int32_t code = job_ ? ProfGetError(job_) : PROF_ERR_MEMORY;
        const Tree tree = TreeOf(job_);
        verdict.Expect(code != PROF_OK || tree == tree_, "PROF_OK with %zu of %zu entries", tree.size(),
                       tree_.size());
        verdict.Expect(IsStartOf(tree, tree_), "entries that are not in the file");
        verdict.Expect(IsPromised(verdict, code), "the code %d", code);
        ProfJobClose(job_);
        job_ = nullptr;
        verdict.Expect(stream_.references == 1, "%lu references to the stream are left",
                       stream_.references - 1);
        verdict.Expect(BytesOf(kFile) == stream_.bytes, "the file was changed");
        verdict.Expect(NamesInFolder() == "load.prf", "the folder holds %s", NamesInFolder().c_str());
    }

private:
    HPROF Open() {
        switch (how_) {
            case How::kShared:
                return ProfJobOpenW(kFile);
            case How::kExclusive:
                return ProfJobOpenExclusiveW(kFile);
            default:
                return ProfJobOpenStream(&stream_);
        }
    }
    bool IsPromised(const Verdict& verdict, int32_t code) const {
        if (code == PROF_OK) return true;
        if (!verdict.AnyFailed()) return false;
        if (verdict.ThePlan().domain == Domain::kMemory) return code == PROF_ERR_MEMORY;
        if (code == PROF_ERR_FORMAT || code == PROF_ERR_BUSY) return true;
        return code == (how_ == How::kExclusive ? PROF_ERR_SAVE : PROF_ERR_OPEN);
    }

    const How how_;
    std::string (*const makeFile_)();
    Tree tree_;
    MemoryStream stream_;
    HPROF job_ = nullptr;
};

const AddScenario<Load> loadShared("load-shared", How::kShared, Utf16File);
const AddScenario<Load> loadUnmarked("load-unmarked", How::kShared, UnmarkedUtf8File);
const AddScenario<Load> loadSections("load-sections", How::kShared, SectionsFile);
const AddScenario<Load> loadXml("load-xml", How::kShared, XmlFile);
const AddScenario<Load> loadFields("load-fields", How::kShared, FieldsFile);
const AddScenario<Load> loadExclusive("load-exclusive", How::kExclusive, Utf16File);
const AddScenario<Load> loadStream("load-stream", How::kStream, Utf16File);
const AddScenario<Load> loadStreamUnmarked("load-stream-unmarked", How::kStream, UnmarkedUtf8File);
const AddScenario<Load> loadPacked("load-packed", How::kShared, PackedFile);
const AddScenario<Load> loadStreamPacked("load-stream-packed", How::kStream, PackedFile);

} // namespace
} // namespace torture
