#include "text/regex_engine.h"

#include "base/tick_count.h"
#include "text/regex.h"

#include <windows.h>

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <algorithm>
#include <climits>
#include <new>
#include <string_view>
#include <utility>

namespace vxut {
namespace {

struct OptionBit {
    uint32_t option;
    uint32_t bit;
};

constexpr OptionBit kCompileBits[] = {
    {kRegExCaseless, PCRE2_CASELESS}, {kRegExMultiLine, PCRE2_MULTILINE},
    {kRegExDotAll, PCRE2_DOTALL},     {kRegExExtended, PCRE2_EXTENDED},
    {kRegExAnchored, PCRE2_ANCHORED}, {kRegExDollarEndOnly, PCRE2_DOLLAR_ENDONLY},
    {kRegExUngreedy, PCRE2_UNGREEDY},
};
// The anchored and dollar options have done their work at compilation.
constexpr OptionBit kMatchBits[] = {
    {kRegExNotBOL, PCRE2_NOTBOL},
    {kRegExNotEOL, PCRE2_NOTEOL},
    {kRegExNotEmpty, PCRE2_NOTEMPTY},
};

// Limits for one start position. The interpreter stops early: machine code, which takes the steps ten
// times as fast, then decides.
constexpr uint32_t kMostSteps = 10'000'000;
constexpr uint32_t kMostInterpretedSteps = 1'000'000;
constexpr uint32_t kMostMemoryKilobytes = 64 * 1024;
constexpr size_t kFirstStackBytes = size_t{32} * 1024;

// A pattern is compiled to machine code when it has seen so many units, the subject at hand included. That
// takes 10 to 20 us, as interpreting a few hundred units does with most patterns, or some thousands with the
// quickest ones.
constexpr size_t kUnitsWorthMachineCode = 2000;

// How many start positions are tried before the clock is read: few at first, twice as many whenever that was
// quick, and never so many that an ordinary scan from each of them to the end would take long.
constexpr size_t kFirstUnitsInterpreted = size_t{1} << 16;
constexpr size_t kFirstUnitsByMachineCode = size_t{1} << 22;
constexpr size_t kMostUnitsAtATime = size_t{1} << 28;
constexpr uint64_t kQuickMilliseconds = 10;

constexpr int kOutOfTime = INT_MIN; // beside the results of PCRE2
static_assert(clsRegExEngine::kNoMatch == PCRE2_ERROR_NOMATCH);

constexpr int kMostRepairs = 64;
constexpr size_t kMostMessageUnits = 256;

template <size_t kCount>
uint32_t Translate(const OptionBit (&table)[kCount], uint32_t options) {
    uint32_t bits = 0;
    for (const OptionBit& row : table)
        if (options & row.option) bits |= row.bit;
    return bits;
}

PCRE2_SPTR Units(const wchar_t* text) { return reinterpret_cast<PCRE2_SPTR>(text); }

struct ContextDeleter {
    void operator()(pcre2_compile_context* context) const noexcept { pcre2_compile_context_free(context); }
};
using CompileContext = std::unique_ptr<pcre2_compile_context, ContextDeleter>;

CompileContext MakeContext(uint32_t options) {
    CompileContext context(pcre2_compile_context_create(nullptr));
    if (!context) throw std::bad_alloc();
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    if (!(options & kRegExExtra))
        pcre2_set_compile_extra_options(context.get(), PCRE2_EXTRA_BAD_ESCAPE_IS_LITERAL);
    return context;
}

bool IsMasked(const String& pattern, int64_t position) {
    int64_t start = position;
    while (start > 0 && pattern[start - 1] == L'\\') --start;
    return (position - start) % 2 != 0;
}

// A hyphen next to a class escape, as in "[\w-.]", is a fault to PCRE2; callers' patterns mean it literally.
// Masks the last hyphen at or before the offset of the fault.
bool MaskHyphen(String& pattern, size_t offset) {
    const String& text = pattern;
    auto position = std::min(static_cast<int64_t>(offset), text.Length() - 1);
    while (position >= 0 && text[position] != L'-') --position;
    if (position < 0 || IsMasked(text, position)) return false;
    pattern.Insert(position, L"\\");
    return true;
}

bool IsOutOfSteps(int result) {
    return result == PCRE2_ERROR_MATCHLIMIT || result == PCRE2_ERROR_HEAPLIMIT ||
           result == PCRE2_ERROR_DEPTHLIMIT;
}

// Verbs act on the search as a whole and \G is where it began, so these patterns are searched in one go.
bool DependsOnSearchStart(const String& pattern) {
    const std::wstring_view units(pattern.Text(), static_cast<size_t>(pattern.Length()));
    return units.find(L"(*") != units.npos || units.find(L"\\G") != units.npos;
}

// Some processes forbid that memory which was written is executed. PCRE2 would not notice.
bool IsMachineCodeAllowed() {
    static const bool isAllowed = [] {
        void* const page = VirtualAlloc(nullptr, 1, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        if (!page) throw std::bad_alloc();
        DWORD previous;
        const bool isExecutable = VirtualProtect(page, 1, PAGE_EXECUTE, &previous) != 0;
        VirtualFree(page, 0, MEM_RELEASE);
        return isExecutable;
    }();
    return isAllowed;
}

} // namespace

void clsRegExEngine::Deleter::operator()(pcre2_code* code) const noexcept { pcre2_code_free(code); }
void clsRegExEngine::Deleter::operator()(pcre2_match_data* data) const noexcept {
    pcre2_match_data_free(data);
}
void clsRegExEngine::Deleter::operator()(pcre2_match_context* context) const noexcept {
    pcre2_match_context_free(context);
}
void clsRegExEngine::Deleter::operator()(pcre2_jit_stack* stack) const noexcept {
    pcre2_jit_stack_free(stack);
}

bool clsRegExEngine::Compile(const String& pattern, uint32_t options, int& offset, String& message) {
    *this = clsRegExEngine();
    const uint32_t bits = Translate(kCompileBits, options) | PCRE2_USE_OFFSET_LIMIT;
    const CompileContext context = MakeContext(options);
    String repaired = pattern;
    for (int repairs = 0;; ++repairs) {
        int error = 0;
        size_t errorOffset = 0;
        Owner<pcre2_code> code(pcre2_compile(Units(repaired.Text()), static_cast<size_t>(repaired.Length()),
                                             bits, &error, &errorOffset, context.get()));
        if (code) {
            PrepareMatching(std::move(code), repaired, options);
            return true;
        }
        if (error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
        if (error == PCRE2_ERROR_CLASS_INVALID_RANGE && repairs < kMostRepairs &&
            MaskHyphen(repaired, errorOffset))
            continue;
        offset = std::max(static_cast<int>(errorOffset) - repairs, 0);
        message = MessageOf(error);
        return false;
    }
}

// Takes the code last: an engine that is compiled has all that a match needs.
void clsRegExEngine::PrepareMatching(Owner<pcre2_code> code, const String& pattern, uint32_t options) {
    matchBits_ = Translate(kMatchBits, options);
    uint32_t allOptions = 0;
    pcre2_pattern_info(code.get(), PCRE2_INFO_CAPTURECOUNT, &groupCount_);
    pcre2_pattern_info(code.get(), PCRE2_INFO_ALLOPTIONS, &allOptions);
    isStepwise_ = !(allOptions & PCRE2_ANCHORED) && !DependsOnSearchStart(pattern);
    data_.reset(pcre2_match_data_create(groupCount_ + 2, nullptr));
    context_.reset(pcre2_match_context_create(nullptr));
    if (!data_ || !context_) throw std::bad_alloc();
    pcre2_set_match_limit(context_.get(), kMostInterpretedSteps);
    pcre2_set_depth_limit(context_.get(), kMostSteps);
    pcre2_set_heap_limit(context_.get(), kMostMemoryKilobytes);
    code_ = std::move(code);
}

void clsRegExEngine::MakeMachineCode() {
    if (IsMachineCodeAllowed() && pcre2_jit_compile(code_.get(), PCRE2_JIT_COMPLETE) == 0) {
        stack_.reset(pcre2_jit_stack_create(kFirstStackBytes, kMostMemoryKilobytes * size_t{1024}, nullptr));
        if (!stack_) throw std::bad_alloc();
        pcre2_jit_stack_assign(context_.get(), nullptr, stack_.get());
        hasMachineCode_ = true;
    }
    triedMachineCode_ = true;
    pcre2_set_match_limit(context_.get(), kMostSteps);
}

int clsRegExEngine::Match(const wchar_t* subject, size_t length, clsMatchBudget& budget) {
    if (!triedMachineCode_ && length >= kUnitsWorthMachineCode - unitsSeen_) MakeMachineCode();
    const int result = MatchWithin(budget, subject, length);
    if (!triedMachineCode_)
        unitsSeen_ = std::min(unitsSeen_ + (result > 0 ? End(0) : length), kUnitsWorthMachineCode);
    return result;
}

int clsRegExEngine::MatchWithin(clsMatchBudget& budget, const wchar_t* subject, size_t length) {
    size_t starts = isStepwise_ ? FirstStarts(length) : length + 1;
    for (size_t first = 0;;) {
        if (budget.IsUsedUp()) return kOutOfTime;
        const size_t last = first + std::min(starts - 1, length - first);
        const uint64_t began = TickCount64();
        const int result = MatchFrom(subject, length, first, last);
        const uint64_t elapsed = TickCount64() - began;
        budget.Add(elapsed);
        if (result != PCRE2_ERROR_NOMATCH || last == length) return result;
        first = last + 1;
        const size_t mostStarts = std::max<size_t>(kMostUnitsAtATime / (length + 1), 1);
        starts =
            elapsed < kQuickMilliseconds ? std::min(starts * 2, mostStarts) : std::max<size_t>(starts / 2, 1);
    }
}

size_t clsRegExEngine::FirstStarts(size_t length) const {
    const size_t units = hasMachineCode_ ? kFirstUnitsByMachineCode : kFirstUnitsInterpreted;
    return std::max<size_t>(units / (length + 1), 1);
}

String clsRegExEngine::MessageOf(int result) {
    if (result == kOutOfTime) return L"processor time used up";
    wchar_t message[kMostMessageUnits] = L"";
    pcre2_get_error_message(result, reinterpret_cast<PCRE2_UCHAR*>(message), kMostMessageUnits);
    return message;
}

// Searches for a match that starts between first and last.
int clsRegExEngine::MatchFrom(const wchar_t* subject, size_t length, size_t first, size_t last) {
    pcre2_set_offset_limit(context_.get(), last);
    const int result = Run(subject, length, first);
    if (!IsOutOfSteps(result) || triedMachineCode_) return result;
    MakeMachineCode();
    return Run(subject, length, first);
}

int clsRegExEngine::Run(const wchar_t* subject, size_t length, size_t first) {
    const int result =
        pcre2_match(code_.get(), Units(subject), length, first, matchBits_, data_.get(), context_.get());
    if (result == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
    return result;
}

size_t clsRegExEngine::Start(uint32_t group) const {
    return pcre2_get_ovector_pointer(data_.get())[size_t{2} * group];
}

size_t clsRegExEngine::End(uint32_t group) const {
    return pcre2_get_ovector_pointer(data_.get())[size_t{2} * group + 1];
}

} // namespace vxut
