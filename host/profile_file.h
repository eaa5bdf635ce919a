// A profile opened for a command: every failure of the library becomes a message in words.
#pragma once

#include <prof.h>

#include <memory>
#include <string>
#include <type_traits>

namespace vlm {

// What a result code of the profile store means.
std::wstring ProfileErrorWords(int32_t code);

class clsProfileFile {
public:
    // Fails if there is no such file.
    static void Require(const std::wstring& path);
    // Opens a file that must be there. The load must have gone well.
    static clsProfileFile ForReading(const std::wstring& path);
    // Opens a file that Save() writes back in the form that it has; one that cannot be written back without
    // loss is refused. A missing file becomes a new profile.
    static clsProfileFile ForChange(const std::wstring& path, bool isShared);

    // Fails for a file that reads as an empty profile but is not empty: what it holds is something else.
    void RequireItems() const;

    HPROF Job() const { return job_.get(); }
    void Save() const { SaveAs(path_, format_); }
    // Format: PROF_FORMAT_*.
    void SaveAs(const std::wstring& path, uint32_t format) const;

private:
    struct CloseJob {
        void operator()(HPROF job) const { ProfJobClose(job); }
    };

    clsProfileFile(std::wstring path, HPROF job, uint32_t format);

    std::wstring path_;
    std::unique_ptr<std::remove_pointer_t<HPROF>, CloseJob> job_;
    uint32_t format_;
};

} // namespace vlm
