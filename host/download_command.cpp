// vlm download: fetches a file, with a progress bar.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/owners.h"
#include "host/stop_event.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

namespace vlm {

namespace {

namespace fs = std::filesystem;

constexpr DWORD kRedrawMilliseconds = 100;
constexpr int kBarColumns = 30;
constexpr int kPercentOfLine = 10;

bool IsErrorsConsole() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

// A bar on a console, else a line every ten percent.
class Progress {
public:
    void Show(int percent) {
        if (percent <= shown_) return;
        if (isConsole_) {
            const int columns = percent * kBarColumns / 100;
            errors_.Write(L"\r[" + std::wstring(columns, L'#') + std::wstring(kBarColumns - columns, L' ') +
                          L"] " + std::to_wstring(percent) + L" %");
        } else if (percent / kPercentOfLine > shown_ / kPercentOfLine) {
            errors_.Line(std::to_wstring(percent) + L" %");
        }
        shown_ = percent;
        errors_.Flush();
    }
    // Ends the line of a bar.
    void Finish() {
        if (isConsole_ && shown_ > 0) errors_.Line();
        errors_.Flush();
    }

private:
    const bool isConsole_ = IsErrorsConsole();
    int shown_ = 0;
    Output errors_{STD_ERROR_HANDLE};
};

// The temp directory of this process, so that what a cancelled download leaves is found and removed.
class TempFolder {
public:
    TempFolder()
        : path_(fs::temp_directory_path() / (L"vlm-download-" + std::to_wstring(GetCurrentProcessId()))) {
        fs::create_directories(path_);
        if (!SetEnvironmentVariableW(L"TMP", path_.c_str())) Fail(SystemMessage(GetLastError()));
    }
    ~TempFolder() { Remove(); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Others may still have a file open for a moment.
    void Remove() const {
        std::error_code error;
        for (int attempt = 0; attempt < 20; ++attempt) {
            fs::remove_all(path_, error);
            if (!error) return;
            Sleep(50);
        }
    }

private:
    const fs::path path_;
};

// One download on a thread of its own.
class Download : public UtilDownloadCallback {
public:
    explicit Download(const std::wstring& url) : UtilDownloadCallback{&kTable} {
        if (!over_) Fail(SystemMessage(GetLastError()));
        thread_ = std::thread([this, url] {
            status_ = UtilDownloadFile(url.c_str(), this);
            SetEvent(over_.get());
        });
    }
    ~Download() { thread_.join(); }
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

    HANDLE Over() const { return over_.get(); }
    int Percent() const { return percent_; }
    // Once it is over.
    bool HasFailed() const { return status_ < 0; }
    const std::wstring& Text() const { return text_; } // the path of the file, or what has failed

private:
    static int32_t STDMETHODCALLTYPE Report(UtilDownloadCallback* self, uint32_t kind, int32_t value,
                                            const wchar_t* text) {
        auto& download = *static_cast<Download*>(self);
        if (kind != UTIL_DOWNLOAD_PROGRESS)
            download.text_ = text;
        else if (value >= 0)
            download.percent_ = value;
        return 0;
    }
    static constexpr UtilDownloadCallbackTable kTable = {Report};

    HandleOwner over_ = Own(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::atomic<int> percent_{0};
    int32_t status_ = 0;
    std::wstring text_;
    std::thread thread_;
};

// The last part of the URL's path.
std::wstring NameOf(const std::wstring& url) {
    const std::wstring path = url.substr(0, url.find_first_of(L"?#"));
    const size_t server = path.find(L"://");
    const size_t root = path.find(L'/', server == path.npos ? 0 : server + 3);
    const std::wstring name = root == path.npos ? L"" : path.substr(path.rfind(L'/') + 1);
    if (name.empty() || name.find_first_of(L"<>:\"\\|*%") != name.npos)
        FailUsage(L"specify the file with --output");
    return name;
}

// The file may come from another volume: it is copied beside its place first.
void PutInPlace(const std::wstring& from, const std::wstring& to) {
    const std::wstring part = to + L".part";
    constexpr DWORD kReplace = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (MoveFileExW(from.c_str(), part.c_str(), kReplace | MOVEFILE_COPY_ALLOWED) &&
        MoveFileExW(part.c_str(), to.c_str(), kReplace))
        return;
    const DWORD error = GetLastError();
    DeleteFileW(part.c_str());
    Fail(to + L": " + SystemMessage(error));
}

// The library has no way to end a call from outside: the process ends with it.
[[noreturn]] void Cancel(const TempFolder& folder) {
    folder.Remove();
    Output errors(STD_ERROR_HANDLE);
    errors.Line(L"vlm download: cancelled");
    errors.Flush();
    TerminateProcess(GetCurrentProcess(), kExitFailure);
    std::abort();
}

ExitCode RunDownload(const Arguments& arguments, Output&) {
    const std::wstring& url = arguments.Operand(0);
    const std::wstring* const output = arguments.Value(L"output");
    const std::wstring target = output ? *output : NameOf(url);
    const TempFolder folder;
    const StopEvent stop;
    Progress progress;
    const Download download(url);
    const HANDLE handles[] = {download.Over(), stop.Get()};
    for (DWORD result = WAIT_TIMEOUT; result == WAIT_TIMEOUT;) {
        result = WaitForMultipleObjects(2, handles, FALSE, kRedrawMilliseconds);
        if (result == WAIT_OBJECT_0 + 1) Cancel(folder);
        if (result == WAIT_TIMEOUT) progress.Show(download.Percent());
    }
    if (download.HasFailed()) {
        progress.Finish();
        throw CommandError{kExitTransfer, url + L": " + download.Text()};
    }
    PutInPlace(download.Text(), target);
    progress.Show(100);
    progress.Finish();
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {L"output", L"FILE", L"the file to write; otherwise it is named as in the URL", L'o'},
};

} // namespace

Command DownloadCommand() {
    return {
        .name = L"download",
        .summary = L"Download a file",
        .operands = L"URL",
        .help =
            L"An existing file is replaced once the download is complete. Ctrl-C cancels and leaves "
            L"nothing.\n"
            L"If the transfer fails, the exit code is 3 and the message is the name of the error.",
        .options = kOptions,
        .run = RunDownload,
    };
}

} // namespace vlm
