#include "scenario.h"
#include "util.h"

#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

namespace torture {
namespace {

bool IsThere(const wchar_t* path) { return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES; }

// A file that is passed to the manager is deleted, or stays whole and can be passed again.
class TempFiles : public Scenario {
public:
    explicit TempFiles(bool isOpen) : isOpen_(isOpen) {}
    ~TempFiles() override { SysFreeString(path_); }

    void Run() override {
        result_ = UtilTempFileMgrCreateFile(L"torture", L"tmp", 0, &path_);
        hasFile_ = path_ && path_[0];
        if (isOpen_) UtilTempFileMgrOpen();
        UtilTempFileMgrAdd(path_);
        if (isOpen_) UtilTempFileMgrClose();
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(result_ == (path_ ? 1 : 0), "the result %d", result_);
        verdict.Expect(any || hasFile_, "no file");
        verdict.Expect(any || !IsThere(path_), "a file that stays");
        if (!hasFile_) return;
        UtilTempFileMgrOpen();
        UtilTempFileMgrAdd(path_);
        UtilTempFileMgrClose();
        verdict.Expect(!IsThere(path_), "a file that stays though nothing disturbs");
        UtilTempFileMgrClose(); // nothing is open any more, whatever has failed
    }

private:
    const bool isOpen_;
    BSTR path_ = nullptr;
    int result_ = -1;
    bool hasFile_ = false;
};

const AddScenario<TempFiles> tempFiles("temp-files", true);
const AddScenario<TempFiles> tempFilesAtOnce("temp-files-at-once", false);

} // namespace
} // namespace torture
