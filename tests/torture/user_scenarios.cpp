#include "scenario.h"
#include "util.h"

#include <oleauto.h>

#include <cwchar>
#include <string>

namespace torture {
namespace {

// Facts about countries: the right one, or -18 and nothing. A process whose first query ran out of memory
// knows fewer.
class Countries : public Scenario {
public:
    ~Countries() override {
        VariantClear(&name_);
        SysFreeString(list_);
    }

    void Run() override {
        nameCode_ = UtilLocGetCountryInfo(L"Germany*1031", UTIL_COUNTRY_NATIVE_NAME, &name_);
        numberCode_ = UtilLocGetCountryInfo(L"0x0407", UTIL_COUNTRY_CALLING_CODE, &number_);
        languageCode_ = UtilLocGetLanguageInfo(L"de-DE", UTIL_LANGUAGE_LOCALE, &language_);
        listCode_ = UtilLocGetCountryList(&list_);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        for (const int32_t code : {nameCode_, numberCode_, languageCode_, listCode_})
            verdict.Expect(code == 0 || (any && code == UTIL_COUNTRY_ERR_SELECTOR), "the code %d", code);
        if (nameCode_ != 0)
            verdict.Expect(name_.vt == VT_EMPTY, "a variant of type %d after a failure", name_.vt);
        else
            verdict.Expect(name_.bstrVal && (any || std::wcscmp(name_.bstrVal, L"Deutschland") == 0), "'%ls'",
                           name_.bstrVal);
        if (numberCode_ == 0)
            verdict.Expect(number_.lVal == 49 || (any && number_.lVal == 0), "the number %ld", number_.lVal);
        if (languageCode_ == 0)
            verdict.Expect(language_.lVal == 1031 || any, "the language %ld", language_.lVal);
        verdict.Expect((listCode_ == 0) == (list_ != nullptr), "the code %d of the list", listCode_);
    }

private:
    VARIANT name_ = {}, number_ = {}, language_ = {};
    BSTR list_ = nullptr;
    int32_t nameCode_ = 1, numberCode_ = 1, languageCode_ = 1, listCode_ = 1;
};

const AddScenario<Countries> countries("countries");

// A help object with numbers on its stack, and names of messages.
class Help : public Scenario {
public:
    void Run() override {
        help_ = UtilHelpOpen(nullptr, L"C:\\help.chm");
        for (int32_t number = 0; number < 3; ++number) pushed_ += UtilHelpPush(help_, number);
        UtilHelpSetHelpMode(help_, 5);
        message_ = UtilGetWindowMessage(L"Torture.Message");
        nameCode_ = UtilGetWindowMessageName(message_, &name_);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(any || (help_ && pushed_ == 3), "%d numbers", pushed_);
        verdict.Expect(UtilHelpIsInHelpMode(help_) == (help_ ? 5u : 0u), "another mode");
        UtilHelpClose(help_);
        verdict.Expect(UtilHelpPush(help_, 1) == 0, "a closed object takes numbers");
        verdict.Expect(message_ >= UTIL_FIRST_WINDOW_MESSAGE || (any && message_ == 0), "the message %u",
                       message_);
        verdict.Expect(!name_ || std::wcscmp(name_, L"Torture.Message") == 0, "the name '%ls'", name_);
        verdict.Expect(any || (nameCode_ == 1 && name_), "no name");
        SysFreeString(name_);
    }

private:
    HUTILHELP help_ = nullptr;
    int pushed_ = 0;
    uint32_t message_ = 0;
    int nameCode_ = -1;
    BSTR name_ = nullptr;
};

const AddScenario<Help> help("help");

// A download from a port where nobody listens: a failure in every case, and the host hears of it at most
// once.
class Download : public Scenario, public UtilDownloadCallback {
public:
    Download() : UtilDownloadCallback{&kTable} {}

    void Run() override { status_ = UtilDownloadFile(L"http://127.0.0.1:1/file.txt", this); }
    void Check(Verdict& verdict) override {
        verdict.Expect(status_ < 0, "the status %08x", static_cast<unsigned>(status_));
        verdict.Expect(finals_ == 1 || (verdict.AnyFailed() && finals_ == 0), "%d reports of the end",
                       finals_);
    }

private:
    static int32_t STDMETHODCALLTYPE Report(UtilDownloadCallback* self, uint32_t kind, int32_t,
                                            const wchar_t*) {
        if (kind != UTIL_DOWNLOAD_PROGRESS) ++static_cast<Download*>(self)->finals_;
        return 0;
    }
    static constexpr UtilDownloadCallbackTable kTable = {Report};

    int32_t status_ = 0;
    int finals_ = 0;
};

const AddScenario<Download> download("download");

} // namespace
} // namespace torture
