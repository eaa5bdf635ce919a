#include "profile_sample.h"
#include "scenario.h"

#include <cstring>

namespace torture {
namespace {

// A tree that is changed by one call, and what it looks like before and after. The call is done whole or not
// at all.
class Change : public Scenario {
public:
    explicit Change(void (*change)(HPROF)) : change_(change) {}
    ~Change() override { ProfJobClose(job_); }

    void Prepare() override {
        job_ = ProfJobOpenW(nullptr);
        FillSample(job_, 1);
        before_ = TreeOf(job_);
        const HPROF other = ProfJobOpenW(nullptr);
        FillSample(other, 1);
        change_(other);
        after_ = TreeOf(other);
        ProfJobClose(other);
    }
    void Run() override { change_(job_); }
    void Check(Verdict& verdict) override {
        const Tree tree = TreeOf(job_);
        verdict.Expect(tree == after_ || (verdict.AnyFailed() && tree == before_),
                       "a tree of %zu entries, before %zu, after %zu", tree.size(), before_.size(),
                       after_.size());
    }

private:
    void (*const change_)(HPROF);
    Tree before_;
    Tree after_;
    HPROF job_ = nullptr;
};

const wchar_t kDeepPath[] = L"New list with a long name/Newer/Newest item of more than twenty units";

const AddScenario<Change> appendItem("append-item", [](HPROF job) {
    ProfAppendStringW(job, nullptr, kDeepPath, L"A value that is longer than what an item holds itself");
});
const AddScenario<Change> setItem("set-item", [](HPROF job) {
    ProfSetStringW(job, nullptr, L"Number", L"A value that is longer than what an item holds itself");
});
const AddScenario<Change> setItemNarrow("set-item-narrow", [](HPROF job) {
    ProfSetStringA(job, nullptr, "New/Narrow item of more than twenty units",
                   "A value that is longer than 32 units");
});
const AddScenario<Change> appendList("append-list", [](HPROF job) {
    ProfAppendListW(job, nullptr, L"A/B/C of more than sixteen units");
});
const AddScenario<Change> createList("create-list",
                                     [](HPROF job) { ProfCreateListW(job, nullptr, L"New/Many"); });
const AddScenario<Change> emptyExisting("create-list-existing",
                                        [](HPROF job) { ProfCreateListW(job, nullptr, L"Outer"); });
const AddScenario<Change> deleteItem("delete-item",
                                     [](HPROF job) { ProfDeleteItemW(job, nullptr, L"Many/Item7"); });
const AddScenario<Change> deleteList("delete-list",
                                     [](HPROF job) { ProfDeleteListW(job, nullptr, L"Outer"); });
const AddScenario<Change> deleteHandle("delete-list-handle", [](HPROF job) {
    ProfDeleteListW(job, ProfGetListW(job, nullptr, L"Outer/Inner list with a long name"), nullptr);
});

const AddScenario<Change> setBool("set-bool",
                                  [](HPROF job) { ProfSetBoolW(job, nullptr, L"Types/Bool", 1); });
const AddScenario<Change> setDouble("set-double",
                                    [](HPROF job) { ProfSetDoubleW(job, nullptr, L"Types/Double", 1e300); });
const AddScenario<Change> setInt("set-int", [](HPROF job) { ProfSetIntW(job, nullptr, L"Types/Int", -12); });
const AddScenario<Change> setInt64("set-int64", [](HPROF job) {
    ProfSetInt64HexW(job, nullptr, L"Types/Int64", INT64_MIN);
});
const AddScenario<Change> setRect("set-rect", [](HPROF job) {
    const RECT rectangle = {-2000000000, -2000000001, -2000000002, -2000000003};
    ProfSetRectW(job, nullptr, L"Types/Rect", &rectangle);
});
const AddScenario<Change> setColor("set-color", [](HPROF job) {
    ProfSetColorrefW(job, nullptr, L"Types/Color", RGB(1, 2, 3));
});

// The copy is whole, or the target is what it was and the code says why.
class Copy : public Scenario {
public:
    ~Copy() override { ProfJobClose(job_); }

    void Prepare() override {
        job_ = ProfJobOpenW(nullptr);
        FillSample(job_, 1);
        target_ = ProfAppendListW(job_, nullptr, L"Target");
        ProfAppendStringW(job_, target_, L"Old", L"stays");
        before_ = TreeOf(job_);
        source_ = ProfGetListW(job_, nullptr, L"Outer");
        expected_ = {L"Old=stays"};
        for (const std::wstring& entry : TreeOf(job_, source_)) expected_.push_back(entry);
    }
    void Run() override { code_ = ProfCopyList(job_, target_, job_, source_); }
    void Check(Verdict& verdict) override {
        verdict.Expect(code_ == PROF_OK || (verdict.AnyFailed() && code_ == PROF_ERR_MEMORY), "the code %d",
                       code_);
        if (code_ == PROF_OK)
            verdict.Expect(TreeOf(job_, target_) == expected_, "PROF_OK, but the copy is not the source");
        else
            verdict.Expect(TreeOf(job_) == before_, "%zu entries are left of a copy that failed",
                           TreeOf(job_).size() - before_.size());
    }

private:
    HPROF job_ = nullptr;
    HPROFLIST source_ = nullptr;
    HPROFLIST target_ = nullptr;
    Tree before_;
    Tree expected_;
    int32_t code_ = PROF_ERR_JOB;
};

const AddScenario<Copy> copyList("copy-list");

// Each value is right, or the default with a code.
class Read : public Scenario {
public:
    ~Read() override { ProfJobClose(job_); }

    void Prepare() override {
        job_ = ProfJobOpenW(nullptr);
        ProfAppendBoolW(job_, nullptr, L"T/Bool", 1);
        ProfAppendIntHexW(job_, nullptr, L"T/Int", -7);
        ProfAppendInt64W(job_, nullptr, L"T/Int64", 7000000000);
        ProfAppendDoubleW(job_, nullptr, L"T/Double", 0.375);
        ProfAppendColorrefW(job_, nullptr, L"T/Color", RGB(1, 2, 3));
        const POINT point = {1, -2};
        ProfAppendPointW(job_, nullptr, L"T/Point", &point);
        ProfAppendStringW(job_, nullptr, L"T/Text", L"text");
        tree_ = TreeOf(job_);
    }
    void Run() override {
        codes_[0] = ProfGetBoolW(job_, nullptr, L"T/Bool", &bool_, 0);
        codes_[1] = ProfGetIntW(job_, nullptr, L"T/Int", &int_, 5);
        codes_[2] = ProfGetInt64W(job_, nullptr, L"T/Int64", &int64_, 5);
        codes_[3] = ProfGetDoubleW(job_, nullptr, L"T/Double", &double_, 5.0);
        codes_[4] = ProfGetColorrefW(job_, nullptr, L"T/Color", &color_, 5);
        const POINT five = {5, 5};
        codes_[5] = ProfGetPointW(job_, nullptr, L"T/Point", &point_, &five);
        length_ = ProfGetStringA(job_, nullptr, "T/Text", text_, sizeof text_, "default");
    }
    void Check(Verdict& verdict) override {
        const bool right[] = {bool_ == 1,
                              int_ == -7,
                              int64_ == 7000000000,
                              double_ == 0.375,
                              color_ == RGB(1, 2, 3),
                              point_.x == 1 && point_.y == -2};
        const bool isDefault[] = {bool_ == 0,     int_ == 5,   int64_ == 5,
                                  double_ == 5.0, color_ == 5, point_.x == 5 && point_.y == 5};
        for (size_t i = 0; i < std::size(codes_); ++i) {
            verdict.Expect(codes_[i] == PROF_OK ? right[i] : verdict.AnyFailed() && isDefault[i],
                           "value %zu is wrong for the code %d", i, codes_[i]);
        }
        const bool isText = length_ == 4 && std::strcmp(text_, "text") == 0;
        const bool isNeutral = length_ <= 0 && (text_[0] == '\0' || std::strcmp(text_, "default") == 0);
        verdict.Expect(isText || (verdict.AnyFailed() && isNeutral), "the text '%s' with the length %d",
                       text_, length_);
        verdict.Expect(TreeOf(job_) == tree_, "the tree has changed");
    }

private:
    HPROF job_ = nullptr;
    Tree tree_;
    int32_t codes_[6] = {};
    int bool_ = -1;
    int32_t int_ = -1;
    int64_t int64_ = -1;
    double double_ = -1;
    COLORREF color_ = 0xFF;
    POINT point_ = {-1, -1};
    char text_[32] = "";
    int32_t length_ = 0;
};

const AddScenario<Read> read("get-values");

// Each entry arrives once, in order, until the enumeration ends.
class EnumNarrow : public Scenario {
public:
    ~EnumNarrow() override { ProfJobClose(job_); }

    void Prepare() override {
        job_ = ProfJobOpenW(nullptr);
        for (const wchar_t* name : {L"One", L"Two", L"Three"})
            ProfAppendStringW(job_, nullptr, name, L"value");
    }
    void Run() override { result_ = ProfEnumA(job_, nullptr, Add, &names_); }
    void Check(Verdict& verdict) override {
        const std::vector<std::string> all = {"One=value", "Two=value", "Three=value"};
        const bool isStart =
            names_.size() <= all.size() && std::equal(names_.begin(), names_.end(), all.begin());
        verdict.Expect(isStart && (result_ == 0 || names_ == all), "the result %d after %zu entries", result_,
                       names_.size());
        verdict.Expect(result_ == 1 || verdict.AnyFailed(), "the result %d", result_);
    }

private:
    static int CALLBACK Add(HPROF, const char* name, const char* value, HPROFLIST, void* user) {
        static_cast<std::vector<std::string>*>(user)->push_back(std::string(name) + "=" + value);
        return 1;
    }

    HPROF job_ = nullptr;
    std::vector<std::string> names_;
    int result_ = -1;
};

const AddScenario<EnumNarrow> enumNarrow("enum-narrow");

} // namespace
} // namespace torture
