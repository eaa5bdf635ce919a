// What the tests of the profile store share: owners, trees as text, streams and files.
#pragma once

#include "prof.h"

#include <string>
#include <utility>

namespace vxut::test {

// Closes its job in the end.
class Job {
public:
    explicit Job(HPROF job = ProfJobOpenW(nullptr)) : job_(job) {}
    Job(Job&& other) noexcept : job_(std::exchange(other.job_, nullptr)) {}
    Job& operator=(Job&&) = delete;
    ~Job() { ProfJobClose(job_); }

    operator HPROF() const { return job_; } // NOLINT(google-explicit-constructor)

private:
    HPROF job_;
};

// A tree on one line: "name=value;" for an item, "name{...}" for a list.
std::wstring TreeOf(HPROF job, HPROFLIST list = nullptr);

// A value, or "<code>" if it cannot be read.
std::wstring ValueOf(HPROF job, const wchar_t* path, HPROFLIST list = nullptr);

// A stream in memory.
class MemoryStream {
public:
    explicit MemoryStream(const std::string& bytes = {});
    ~MemoryStream() { stream_->Release(); }
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;

    operator IStream*() const { return stream_; } // NOLINT(google-explicit-constructor)
    void Seek(int64_t position);
    std::string Bytes();

private:
    IStream* stream_ = nullptr;
};

// A fresh path for one file, which is deleted in the end.
class FilePlace {
public:
    FilePlace();
    ~FilePlace() { DeleteFileW(path_.c_str()); }
    FilePlace(const FilePlace&) = delete;
    FilePlace& operator=(const FilePlace&) = delete;

    operator const wchar_t*() const { return path_.c_str(); } // NOLINT(google-explicit-constructor)
    std::string Narrow() const { return {path_.begin(), path_.end()}; }
    void Put(const std::string& bytes) const;
    std::string Bytes() const;
    bool Exists() const { return GetFileAttributesW(path_.c_str()) != INVALID_FILE_ATTRIBUTES; }

private:
    std::wstring path_;
};

// The bytes of text in a file: UTF-16 with its mark, or one byte a unit.
std::string Utf16(const std::wstring& text);
std::string Utf16Marked(const std::wstring& text);
std::wstring FromUtf16(const std::string& bytes);

} // namespace vxut::test
