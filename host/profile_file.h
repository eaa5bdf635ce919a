// A profile opened for a command: every failure of the library becomes a message in words.
#pragma once

#include <prof.h>

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace vlm {

// The meaning of a result code of the profile store.
std::wstring ProfileErrorWords(int32_t code);

// Owns the job. A file that exists and could not be read is never opened for a change, so that no save
// replaces it.
class ProfileFile {
public:
    // Fails if there is no such file.
    static void Require(const std::wstring& path);
    // Opens a file. Fails if it is missing or could not be read in full.
    static ProfileFile ForReading(const std::wstring& path);
    // A new profile without a file.
    static ProfileFile Empty();
    // The profile on the clipboard. Fails if there is none, or if it could not be read in full.
    static ProfileFile FromClipboard();
    // Opens a file that Save() writes back in its own form. A missing file becomes a new profile. Fails for a
    // file that could not be read in full, or that cannot be written back without loss.
    static ProfileFile ForChange(const std::wstring& path, bool isShared);

    // Fails for a file that is not empty but reads as an empty profile: it contains something else.
    void RequireItems() const;

    HPROF Job() const { return job_.get(); }
    void Save() const { SaveAs(path_, format_); }
    // Format: PROF_FORMAT_*.
    void SaveAs(const std::wstring& path, uint32_t format) const;

private:
    struct CloseJob {
        void operator()(HPROF job) const { ProfJobClose(job); }
    };
    using OpenFunction = HPROF (*)(const wchar_t* path);

    ProfileFile(std::wstring path, OpenFunction open);
    // Fails unless the file was read in full.
    void RequireRead() const;
    // The format that keeps the form of the file that was opened.
    uint32_t OwnFormat() const;
    // Whether a save in a format would write the very bytes of the file.
    bool IsSavedAs(uint32_t format) const;

    std::wstring path_;
    std::unique_ptr<std::remove_pointer_t<HPROF>, CloseJob> job_;
    DWORD reason_; // the thread's last error after the open
    uint32_t format_ = PROF_FORMAT_TEXT;
};

} // namespace vlm
