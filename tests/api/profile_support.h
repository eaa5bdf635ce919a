// What the tests of the profile store share: owners, trees as text, streams and files.
#pragma once

#include "../support/fake_stream.h"
#include "prof.h"

#include <filesystem>
#include <string>

namespace vxut::test {

// Closes its job in the end.
class Job {
public:
    explicit Job(HPROF job = ProfJobOpenW(nullptr)) : job_(job) {}
    Job(Job&&) = delete;
    ~Job() { ProfJobClose(job_); }

    operator HPROF() const { return job_; } // NOLINT(google-explicit-constructor)

private:
    HPROF job_;
};

// A tree on one line: "name=value;" for an item, "name{...}" for a list.
std::wstring TreeOf(HPROF job, HPROFLIST list = nullptr);

// What a profile of these bytes holds.
std::wstring TreeOfBytes(const std::string& bytes);

// A value, or "<code>" if it cannot be read.
std::wstring ValueOf(HPROF job, const wchar_t* path, HPROFLIST list = nullptr);

// A fresh path for one file, which is deleted in the end.
class FilePlace {
public:
    FilePlace();
    FilePlace(FilePlace&&) = delete;
    ~FilePlace() { DeleteFileW(path_.c_str()); }

    operator const wchar_t*() const { return path_.c_str(); } // NOLINT(google-explicit-constructor)
    void Put(const std::string& bytes) const;
    std::string Bytes() const;

private:
    std::filesystem::path path_;
};

// The bytes of text in a file.
std::string Utf16(const std::wstring& text);
std::string Utf16Marked(const std::wstring& text);

} // namespace vxut::test
