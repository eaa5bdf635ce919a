#include "locale/date_patterns.h"

#include "base/spare.h"

#include <cwchar>
#include <memory>

namespace vxut {
namespace {

// %s is a separator.
constexpr wchar_t kLocaleDate[] = LR"((?:(\d+)\s*%s\s*)?(?:(\d+)\s*%s\s*)?(\d+)?)";
constexpr wchar_t kIsoDate[] = LR"((?:(\d+)\s*-\s*)?(?:(\d+)\s*-\s*)?(\d+)?)";
constexpr wchar_t kTime24Hours[] = LR"(([01]?[0-9]|2[0-3])(?:%s([0-5][0-9]))?(?:%s([0-5][0-9]))?)";
constexpr wchar_t kTime12Hours[] = LR"((0?[1-9]|1[012])(?:%s([0-5][0-9]))?(?:%s([0-5][0-9]))? *([AP]M))";
// %s is the date, then the time.
constexpr wchar_t kFrame[] = L"^%s[ ,]*(?:%s)?$";

String Escaped(const String& separator) {
    String result;
    for (int64_t i = 0; i < separator.Length(); ++i) {
        const wchar_t unit = separator[i];
        if (std::wcschr(L"$()*+.?[\\]^{}", unit)) result.Append(L'\\');
        result.Append(unit);
    }
    return result;
}

String WithSeparators(const wchar_t* pattern, const String& separator) {
    const String escaped = Escaped(separator);
    String result;
    result.Format(pattern, escaped.Text(), escaped.Text());
    return result;
}

String Framed(const String& date, const String& time) {
    String result;
    result.Format(kFrame, date.Text(), time.Text());
    return result;
}

clsSpare<clsDatePatterns> sparePatterns;

} // namespace

clsDatePatterns::clsDatePatterns(const clsLocaleDateInfo& info)
    : dateSeparator_(info.DateSeparator()),
      timeSeparator_(info.TimeSeparator()),
      locale24Hours_(
          Framed(WithSeparators(kLocaleDate, dateSeparator_), WithSeparators(kTime24Hours, timeSeparator_)),
          kRegExCaseless),
      locale12Hours_(
          Framed(WithSeparators(kLocaleDate, dateSeparator_), WithSeparators(kTime12Hours, timeSeparator_)),
          kRegExCaseless),
      iso24Hours_(Framed(kIsoDate, WithSeparators(kTime24Hours, timeSeparator_)), kRegExCaseless) {}

bool clsDatePatterns::Serve(const clsLocaleDateInfo& info) const {
    return dateSeparator_ == info.DateSeparator() && timeSeparator_ == info.TimeSeparator();
}

DateForm clsDatePatterns::Match(const String& text, clsRegExMatchList& groups) {
    if (locale24Hours_.Match(text, &groups)) return DateForm::kLocale24Hours;
    if (locale12Hours_.Match(text, &groups)) return DateForm::kLocale12Hours;
    return iso24Hours_.Match(text, &groups) ? DateForm::kIso24Hours : DateForm::kNone;
}

DateForm MatchDate(const clsLocaleDateInfo& info, const String& text, clsRegExMatchList& groups) {
    clsSpareScope scope(sparePatterns);
    if (!scope.object || !scope.object->Serve(info)) scope.object = std::make_unique<clsDatePatterns>(info);
    return scope.object->Match(text, groups);
}

} // namespace vxut
