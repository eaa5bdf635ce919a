#include "scenario.h"
#include "util.h"

#include <cstring>
#include <cwchar>

namespace torture {
namespace {

// Handles are null or work; codes are those of the header.
class Heaps : public Scenario {
public:
    explicit Heaps(uint32_t flags) : flags_(flags) {}

    void Run() override {
        job_ = UtilJobOpen(L"TORTURE", flags_);
        heap_ = UtilHeapCreate(job_, L"OBJECTS", flags_ & UTIL_HEAP_DEBUG);
        for (void*& object : objects_) object = UtilHeapObjectAlloc(heap_, 100, UTIL_OBJECT_ZERO);
        loose_ = UtilHeapObjectAlloc(nullptr, 10, 0);
        valid_ = UtilHeapValidate(heap_, objects_[0]);
        freed_ = UtilHeapObjectFree(heap_, objects_[1]);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(any || (job_ && heap_ && objects_[0] && objects_[1] && objects_[2] && loose_), "null");
        verdict.Expect(any || (valid_ == UTIL_OK && freed_ == UTIL_OK), "the codes %d and %d", valid_,
                       freed_);
        verdict.Expect(valid_ == UTIL_OK || valid_ == UTIL_ERR_UNAVAILABLE || valid_ == UTIL_ERR_CORRUPT,
                       "the code %d of a test", valid_);
        verdict.Expect(freed_ == UTIL_OK || (objects_[1] == nullptr && freed_ == UTIL_ERR_OBJECT),
                       "the code %d of a free", freed_);
        const char zeros[100] = {};
        for (const void* object : objects_) {
            if (object && object != objects_[1])
                verdict.Expect(std::memcmp(object, zeros, sizeof zeros) == 0, "an object that is not zeroed");
        }
        // Objects of a null heap are loose ones.
        for (void* object : {objects_[0], objects_[2]}) {
            const int32_t code = object ? UtilHeapObjectFree(heap_, object) : UTIL_OK;
            verdict.Expect(code == UTIL_OK, "the code %d of a free that nothing disturbs", code);
        }
        if (loose_) UtilHeapObjectFree(nullptr, loose_);
        if (heap_) UtilHeapDelete(heap_);
        const int32_t code = job_ ? UtilJobClose(job_) : UTIL_OK;
        verdict.Expect(code == UTIL_OK, "the code %d of the job's end", code);
    }

private:
    const uint32_t flags_;
    HUTILJOB job_ = nullptr;
    HUTILHEAP heap_ = nullptr;
    void* objects_[3] = {};
    void* loose_ = nullptr;
    int32_t valid_ = 1;
    int32_t freed_ = 1;
};

const AddScenario<Heaps> heaps("heaps", 0u);
const AddScenario<Heaps> debugHeaps("heaps-debug", UTIL_HEAP_DEBUG);

// Calls with text: results are right or neutral.
class Texts : public Scenario {
public:
    ~Texts() override { SysFreeString(expanded_); }

    void Run() override {
        expandResult_ = UtilExpandDefaultTokensOfFolderPath(L"%WINDIR%\\torture\\%NO SUCH NAME%", &expanded_);
        printed_ = UtilSafeSprintf(text_, 64, L"%d %s", 12, L"monkeys");
        charset_ = UtilGetLikelyCharsetFromString(L"\x3B1\x3B2");
        splitResult_ = UtilSplitpath(L"C:\\folder\\name.ext", nullptr, nullptr, name_, nullptr);
        UtilFullpath(full_, L"name.ext", UTIL_PATH_UNITS);
        order_ = UtilStricmp(L"ABC", L"abc");
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        if (verdict.Expect(expandResult_ == 1 || (any && expandResult_ == 0), "the result %d",
                           expandResult_)) {
            verdict.Expect((expandResult_ == 1) == (expanded_ != nullptr), "the result %d with %s text",
                           expandResult_, expanded_ ? "a" : "no");
        }
        if (expanded_ && !any)
            verdict.Expect(std::wcsstr(expanded_, L"\\torture\\%NO SUCH NAME%") != nullptr, "'%ls'",
                           expanded_);
        verdict.Expect(std::wcscmp(text_, L"12 monkeys") == 0 || (any && text_[0] == 0), "'%ls'", text_);
        verdict.Expect(charset_ == GREEK_CHARSET || (any && charset_ == 0), "the charset %u", charset_);
        verdict.Expect(splitResult_ != 0 || std::wcscmp(name_, L"name") == 0, "the name '%ls'", name_);
        const size_t length = std::wcslen(full_);
        verdict.Expect(
            (length > 8 && std::wcscmp(full_ + length - 8, L"name.ext") == 0) || (any && length == 0),
            "the full path '%ls'", full_);
        verdict.Expect(order_ == 0, "the order %d", order_);
    }

private:
    BSTR expanded_ = nullptr;
    int expandResult_ = -1;
    wchar_t text_[64] = L"";
    int printed_ = 0;
    uint32_t charset_ = 0;
    wchar_t name_[UTIL_NAME_UNITS] = L"";
    int32_t splitResult_ = -1;
    wchar_t full_[UTIL_PATH_UNITS] = L"";
    int order_ = 1;
};

const AddScenario<Texts> texts("texts");

// Volumes, language, environment and version: numbers that have a neutral value.
class Environment : public Scenario {
public:
    void Run() override {
        info_.size = sizeof info_;
        UtilGetFSInfo(nullptr, &info_);
        language_ = UtilLanguageGet();
        type_ = UtilGetOSEnvironmentType();
        interaction_ = UtilGetUIInteractionAllowed();
        UtilListModules();
        UtilStackTrace(nullptr, 0);
    }
    void Check(Verdict& verdict) override {
        verdict.Expect(info_.maximumPath == 260 && info_.maximumDrive == 3, "the path sizes %u and %u",
                       info_.maximumPath, info_.maximumDrive);
        verdict.Expect(
            info_.maximumComponentLength == 255 || (verdict.AnyFailed() && info_.maximumComponentLength == 0),
            "the component length %u", info_.maximumComponentLength);
        verdict.Expect(interaction_ == 0 || interaction_ == 1, "the answer %d", interaction_);
        verdict.Expect(UtilLanguageGet() == language_ || verdict.AnyFailed(), "another language");
    }

private:
    UtilFSInfo info_ = {};
    uint32_t language_ = 0;
    uint32_t type_ = 0;
    int interaction_ = -1;
};

const AddScenario<Environment> environment("environment");

} // namespace
} // namespace torture
