#include "docinfo/answer.h"

#include "locale/time_zone.h"

#include <cstddef>

namespace vxut {
namespace {

// Callers of older versions pass a record that ends before ResolvedPath.
constexpr uint32_t kSizeWithoutPath = offsetof(DocInfoRequest, ResolvedPath);
static_assert(sizeof(void*) != 8 || (kSizeWithoutPath == 72 && sizeof(DocInfoRequest) == 80));

struct TextTarget {
    VARIANT* DocInfoRequest::* target;
    clsVariant scDocuFields::* source;
};
constexpr TextTarget kTexts[] = {
    {&DocInfoRequest::Title, &scDocuFields::Title},
    {&DocInfoRequest::Subject, &scDocuFields::Subject},
    {&DocInfoRequest::Author, &scDocuFields::Author},
    {&DocInfoRequest::LastAuthor, &scDocuFields::LastAuthor},
    {&DocInfoRequest::Keywords, &scDocuFields::Keywords},
    {&DocInfoRequest::Comments, &scDocuFields::Comments},
};

// Returns 0.0 for the empty time and for times that cannot be converted.
double LocalDate(const SYSTEMTIME& utc) {
    if (utc.wYear == 0) return 0.0; // quickly: most documents lack a time
    SYSTEMTIME local = LocalTimeOfUtc(utc);
    double date = 0.0;
    return local.wYear != 0 && SystemTimeToVariantTime(&local, &date) ? date : 0.0;
}

bool WriteDate(VARIANT* target, const SYSTEMTIME& utc) {
    VARIANT value;
    V_VT(&value) = VT_DATE;
    V_DATE(&value) = LocalDate(utc);
    return !target || SUCCEEDED(VariantCopy(target, &value));
}

bool WriteText(VARIANT* target, const clsVariant& source) {
    // VariantCopyInd() does not change its source.
    return !target || SUCCEEDED(VariantCopyInd(target, const_cast<clsVariant*>(&source)));
}

bool WritePath(VARIANT* target, const String& path) {
    clsVariant value;
    if (!target) return true;
    if (FAILED(value.AssignText({path.Text(), static_cast<size_t>(path.Length())}))) return false;
    return WriteText(target, value);
}

} // namespace

bool WriteAnswer(const scDocuFields& document, const DocInfoRequest& request) {
    if (request.Size < kSizeWithoutPath) return true;
    if (!WriteDate(request.Created, document.Created)) return false;
    if (!WriteDate(request.Modified, document.Modified)) return false;
    for (const TextTarget& text : kTexts)
        if (!WriteText(request.*text.target, document.*text.source)) return false;
    return request.Size < sizeof request || WritePath(request.ResolvedPath, document.ResolvedPath);
}

} // namespace vxut
