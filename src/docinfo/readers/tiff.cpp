// TIFF images, also those inside of JPEG files that hold the data of a camera.
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/tiff_directory.h"
#include "text/shared_regex.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr wchar_t kSeparator[] = L", ";
constinit clsSharedRegEx datePattern(L"^(\\d{4}):(\\d{2}):(\\d{2}) (\\d{2}):(\\d{2}):(\\d{2})");
// Of directories that lead to each other. A camera's directory holds no other.
constexpr int kMostNested = 8;

// A text property while it is put together: a variant would be copied for each part.
class TextProperty {
public:
    explicit TextProperty(clsVariant& property)
        : property_(property), isUnset_(IsUnset(property)), text_(TextOf(property)) {}

    void Set(const String& text) {
        text_ = text;
        isUnset_ = false;
        hasChanged_ = true;
    }
    void Append(const String& text) {
        text_.AppendDelimited(kSeparator, text);
        isUnset_ = false;
        hasChanged_ = true;
    }
    bool HasNoValue() const { return isUnset_; }
    void Store() {
        if (hasChanged_) SetText(property_, text_);
    }

private:
    clsVariant& property_;
    bool isUnset_;
    bool hasChanged_ = false;
    String text_;
};

class ImageReader {
public:
    ImageReader(clsDocu& document, clsDocFile& file, uint32_t base)
        : document_(document), isInside_(base != 0), image_(file, base) {}

    int Read() {
        uint32_t offset = 0;
        if (!image_.ReadHeader(offset)) return -1;
        while (offset != 0) {
            const uint32_t next = ReadDirectory(offset);
            offset = isInside_ ? 0 : next;
        }
        for (TextProperty* property : {&title_, &subject_, &author_, &comments_}) property->Store();
        return 0;
    }

private:
    using Action = void (ImageReader::*)(const scTiffEntry& entry);
    struct Row {
        uint16_t tag;
        Action act;
    };
    static const Row kRows[];

    struct Size {
        uint32_t width = 0;
        uint32_t height = 0;
    };

    uint32_t ReadDirectory(uint32_t offset) {
        const Size outer = size_;
        size_ = {};
        ++nested_;
        const uint32_t next = image_.ReadDirectory(offset, [this](const scTiffEntry& entry) { Act(entry); });
        --nested_;
        if (size_.width != 0 && size_.height != 0) AppendSize();
        size_ = outer;
        return next;
    }

    void Act(const scTiffEntry& entry);

    void AppendSize() {
        String text;
        text.Format(L"(%d * %d px)", size_.width, size_.height);
        if (comments_.HasNoValue())
            comments_.Set(text);
        else
            comments_.Append(text);
    }

    void TakeWidth(const scTiffEntry& entry) { size_.width = image_.Number(entry); }
    void TakeHeight(const scTiffEntry& entry) { size_.height = image_.Number(entry); }
    void TakeName(const scTiffEntry& entry) { title_.Set(image_.Text(entry)); }
    void TakeDescription(const scTiffEntry& entry) { subject_.Set(image_.Text(entry)); }
    void TakeMaker(const scTiffEntry& entry) { author_.Append(image_.Text(entry)); }
    void TakeArtist(const scTiffEntry& entry) { author_.Set(image_.Text(entry)); }
    void TakeCopyright(const scTiffEntry& entry) { comments_.Set(image_.Text(entry)); }
    void TakeUserComment(const scTiffEntry& entry) {
        if (subject_.HasNoValue()) subject_.Set(image_.Text(entry));
    }
    void TakeDate(const scTiffEntry& entry);
    void TakeExposure(const scTiffEntry& entry);
    void TakeAperture(const scTiffEntry& entry) { AppendPositive(L"f=%.1g", image_.Fraction(entry)); }
    void TakeDistance(const scTiffEntry& entry) { AppendPositive(L"d=%.3g m", image_.Fraction(entry)); }
    void TakeCamera(const scTiffEntry& entry) {
        if (isInside_ && nested_ < kMostNested) ReadDirectory(image_.Number(entry));
    }

    void AppendPositive(const wchar_t* format, double value) {
        if (!(value > 0)) return;
        String text;
        text.Format(format, value);
        comments_.Append(text);
    }

    clsDocu& document_;
    const bool isInside_; // of another file
    clsTiffImage image_;
    int nested_ = 0;
    Size size_; // of the directory that is being read
    TextProperty title_{document_.Title};
    TextProperty subject_{document_.Subject};
    TextProperty author_{document_.Author};
    TextProperty comments_{document_.Comments};
};

const ImageReader::Row ImageReader::kRows[] = {
    {256, &ImageReader::TakeWidth},         {257, &ImageReader::TakeHeight},
    {269, &ImageReader::TakeName},          {270, &ImageReader::TakeDescription},
    {271, &ImageReader::TakeMaker},         {272, &ImageReader::TakeMaker},
    {306, &ImageReader::TakeDate},          {315, &ImageReader::TakeArtist},
    {33432, &ImageReader::TakeCopyright},   {33434, &ImageReader::TakeExposure},
    {33437, &ImageReader::TakeAperture},    {34665, &ImageReader::TakeCamera},
    {36867, &ImageReader::TakeDate},        {37382, &ImageReader::TakeDistance},
    {37510, &ImageReader::TakeUserComment},
};

void ImageReader::Act(const scTiffEntry& entry) {
    for (const Row& row : kRows)
        if (row.tag == entry.tag) (this->*row.act)(entry);
}

void ImageReader::TakeDate(const scTiffEntry& entry) {
    static constexpr WORD SYSTEMTIME::* kFields[] = {&SYSTEMTIME::wYear,   &SYSTEMTIME::wMonth,
                                                     &SYSTEMTIME::wDay,    &SYSTEMTIME::wHour,
                                                     &SYSTEMTIME::wMinute, &SYSTEMTIME::wSecond};
    clsRegExMatchList groups;
    if (!datePattern.Match(image_.Text(entry), &groups)) return;
    int group = 1;
    for (const auto field : kFields)
        document_.Created.*field = static_cast<WORD>(_wtoi(groups.get(group++).text.Text()));
}

void ImageReader::TakeExposure(const scTiffEntry& entry) {
    const double seconds = image_.Fraction(entry);
    if (seconds >= 1)
        AppendPositive(L"t=%.2g s", seconds);
    else if (seconds > 0)
        AppendPositive(L"t=1/%.0f s", 1 / seconds);
}

} // namespace

int ReadTiff(clsDocu& document, clsDocFile& file, uint32_t base) {
    return ImageReader(document, file, base).Read();
}

} // namespace vxut
