#include "memory_stream.h"
#include "profile_sample.h"
#include "scenario.h"

namespace torture {
namespace {

constexpr wchar_t kFile[] = L"save.prf";

enum class Target {
    kNewFile, // by name, and there is none
    kFile,    // by name, over the file that was loaded
    kKept,    // the file that the job keeps open
    kStream,  // the stream that the job keeps
    kMemory,  // a stream of the system in memory
};

struct Kind {
    Target target;
    uint32_t format;
    bool isShorter = false; // the new contents are shorter than the old ones
};

// A saved profile is there whole; after a failure the target holds the old or the new contents whole. No
// other file is left, and the tree is what it was.
class Save : public Scenario {
public:
    explicit Save(const Kind& kind) : kind_(kind) {}
    ~Save() override {
        ProfJobClose(job_);
        if (systemStream_) systemStream_->Release();
    }

    void Prepare() override {
        old_ = kind_.target == Target::kNewFile ? "(no file)" : SampleFile(1);
        if (kind_.target == Target::kNewFile || kind_.target == Target::kMemory) {
            job_ = ProfJobOpenW(nullptr);
            FillSample(job_, 1);
        } else if (kind_.target == Target::kStream) {
            stream_.bytes = old_;
            job_ = ProfJobOpenStream(&stream_);
        } else {
            PutFile(kFile, old_);
            job_ = kind_.target == Target::kKept ? ProfJobOpenExclusiveW(kFile) : ProfJobOpenW(kFile);
        }
        if (kind_.target == Target::kMemory) CreateStreamOnHGlobal(nullptr, TRUE, &systemStream_);
        ChangeTree();
        tree_ = TreeOf(job_);
        new_ = NewContents();
    }

    void Run() override {
        switch (kind_.target) {
            case Target::kStream:
                code_ = ProfSaveToStream(job_, nullptr, kind_.format);
                break;
            case Target::kMemory:
                code_ = ProfSaveToStream(job_, systemStream_, kind_.format);
                break;
            case Target::kKept:
                code_ = ProfSaveW(job_, nullptr, kind_.format);
                break;
            default:
                code_ = ProfSaveW(job_, kFile, kind_.format);
        }
    }

    void Check(Verdict& verdict) override {
        verdict.Expect(code_ == PROF_OK || verdict.AnyFailed(), "the code %d", code_);
        verdict.Expect(IsPromised(verdict), "the code %d", code_);
        verdict.Expect(TreeOf(job_) == tree_, "the tree has changed");
        ProfJobClose(job_);
        job_ = nullptr;
        if (kind_.target == Target::kMemory) return CheckSystemStream(verdict);
        const std::string now = kind_.target == Target::kStream ? stream_.bytes : BytesOf(kFile);
        if (code_ == PROF_OK) {
            verdict.Expect(now == new_, "PROF_OK, but the target has %zu bytes instead of %zu", now.size(),
                           new_.size());
        } else if (!CannotRestore(verdict.ThePlan())) {
            verdict.Expect(now == old_ || now == new_,
                           "after the code %d the target has %zu bytes, old %zu, new %zu", code_, now.size(),
                           old_.size(), new_.size());
        }
        if (!CannotClean(verdict)) CheckFolder(verdict);
    }

private:
    // A kept file or stream can be put back only as long as writing works at all.
    bool CannotRestore(const Plan& plan) const {
        return plan.onwards && (kind_.target == Target::kKept || kind_.target == Target::kStream);
    }
    // A sibling stays if it cannot be deleted.
    static bool CannotClean(const Verdict& verdict) {
        return verdict.ThePlan().domain == Domain::kFile &&
               (verdict.ThePlan().onwards || std::string(FirstFailed()) == "DeleteFileW");
    }
    void ChangeTree() {
        if (kind_.isShorter) {
            ProfEmptyList(job_, nullptr);
            ProfAppendStringW(job_, nullptr, L"Only", L"item");
        } else {
            FillSample(job_, 2);
        }
    }
    // What the same save of the same tree writes when nothing fails.
    std::string NewContents() {
        ProfSaveW(job_, L"expected.prf", kind_.format);
        std::string bytes = BytesOf(L"expected.prf");
        DeleteFileW(L"expected.prf");
        return bytes;
    }
    bool IsPromised(const Verdict& verdict) const {
        if (code_ == PROF_OK) return true;
        if (verdict.ThePlan().domain == Domain::kMemory && code_ == PROF_ERR_MEMORY) return true;
        const bool isStream = kind_.target == Target::kStream || kind_.target == Target::kMemory;
        return code_ == PROF_ERR_SAVE || (isStream && code_ == PROF_ERR_WRITE);
    }
    void CheckFolder(Verdict& verdict) const {
        const std::string names = NamesInFolder();
        const bool isFile = kind_.target == Target::kFile || kind_.target == Target::kKept;
        const bool isAbsent = kind_.target == Target::kNewFile && code_ != PROF_OK;
        verdict.Expect(names == "save.prf" || (!isFile && names.empty()) || (isAbsent && names.empty()),
                       "the folder holds '%s'", names.c_str());
    }
    void CheckSystemStream(Verdict& verdict) const {
        STATSTG stat = {};
        systemStream_->Stat(&stat, STATFLAG_NONAME);
        std::string now(static_cast<size_t>(stat.cbSize.QuadPart), '\0');
        ULONG read = 0;
        systemStream_->Seek({}, STREAM_SEEK_SET, nullptr);
        systemStream_->Read(now.data(), static_cast<ULONG>(now.size()), &read);
        verdict.Expect(now == (code_ == PROF_OK ? new_ : ""), "after the code %d the stream has %zu bytes",
                       code_, now.size());
    }

    const Kind kind_;
    std::string old_;
    std::string new_;
    Tree tree_;
    MemoryStream stream_;
    IStream* systemStream_ = nullptr;
    HPROF job_ = nullptr;
    int32_t code_ = PROF_ERR_JOB;
};

const AddScenario<Save> saveNew("save-new", Kind{Target::kNewFile, PROF_FORMAT_TEXT});
const AddScenario<Save> saveOver("save-over", Kind{Target::kFile, PROF_FORMAT_TEXT});
const AddScenario<Save> saveOverShorter("save-over-shorter", Kind{Target::kFile, PROF_FORMAT_TEXT, true});
const AddScenario<Save> saveKept("save-kept", Kind{Target::kKept, PROF_FORMAT_TEXT});
const AddScenario<Save> saveKeptShorter("save-kept-shorter", Kind{Target::kKept, PROF_FORMAT_TEXT, true});
const AddScenario<Save> saveStream("save-stream", Kind{Target::kStream, PROF_FORMAT_TEXT});
const AddScenario<Save> saveStreamShorter("save-stream-shorter",
                                          Kind{Target::kStream, PROF_FORMAT_TEXT, true});
const AddScenario<Save> saveXml("save-xml", Kind{Target::kFile, PROF_FORMAT_XML});
const AddScenario<Save> saveXfdf("save-xfdf", Kind{Target::kFile, PROF_FORMAT_XFDF});
const AddScenario<Save> saveMemory("save-memory", Kind{Target::kMemory, PROF_FORMAT_TEXT});
const AddScenario<Save> saveNewPacked("save-new-packed",
                                      Kind{Target::kNewFile, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED});
const AddScenario<Save> saveOverPacked("save-over-packed",
                                       Kind{Target::kFile, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED});
const AddScenario<Save> saveKeptPacked("save-kept-packed",
                                       Kind{Target::kKept, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED});

} // namespace
} // namespace torture
