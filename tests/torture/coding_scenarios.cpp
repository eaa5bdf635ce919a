#include "memory_stream.h"
#include "scenario.h"
#include "util.h"

#include <string>

namespace torture {
namespace {

std::string Bytes(size_t size) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * i / 5);
    return bytes;
}

std::wstring TextOf(const std::string& bytes, int compress) {
    const int64_t size = UtilConvertBLOBToString(bytes.data(), bytes.size(), nullptr, 0, compress);
    std::wstring text(static_cast<size_t>(size), L'\0');
    UtilConvertBLOBToString(bytes.data(), bytes.size(), text.data(), text.size(), compress);
    text.pop_back();
    return text;
}

// A stream becomes text: the whole text, or a code and an unchanged buffer.
class EncodeStream : public Scenario {
public:
    explicit EncodeStream(int compress) : compress_(compress) {}

    void Prepare() override {
        stream_.bytes = Bytes(5000);
        expected_ = TextOf(stream_.bytes, compress_);
        text_.assign(expected_.size() + 1, L'#');
    }
    void Run() override {
        code_ = UtilConvertStreamToString(&stream_, text_.data(), text_.size(), compress_);
    }
    void Check(Verdict& verdict) override {
        verdict.Expect(code_ == 0 || (code_ == UTIL_CONVERT_ERR_FAILED && verdict.AnyFailed()), "the code %d",
                       static_cast<int>(code_));
        if (code_ == 0)
            verdict.Expect(text_.c_str() == expected_, "0, but the text is another");
        else
            verdict.Expect(text_[0] == L'#', "the buffer was changed");
        verdict.Expect(stream_.references == 1, "%lu references", stream_.references);
    }

private:
    const int compress_;
    MemoryStream stream_;
    std::wstring expected_;
    std::wstring text_;
    int64_t code_ = 1;
};

// Text replaces the content of a stream and of a memory block: the whole content, or the old one.
class DecodeText : public Scenario {
public:
    explicit DecodeText(int compress) : compress_(compress) {}
    ~DecodeText() override { GlobalFree(memory_); }

    void Prepare() override {
        stream_.bytes = Bytes(700);
        old_ = memory_ = GlobalAlloc(GMEM_MOVEABLE, 8);
        text_ = TextOf(Bytes(5000), compress_);
    }
    void Run() override {
        streamCode_ = UtilConvertStringToStream(text_.c_str(), &stream_);
        memoryCode_ = UtilConvertStringToHGLOBAL(text_.c_str(), &memory_);
        size_ = UtilConvertStringToBLOB(text_.c_str(), bytes_, sizeof bytes_);
    }
    void Check(Verdict& verdict) override {
        for (const int64_t code : {streamCode_, memoryCode_})
            verdict.Expect(code == 0 || (code == UTIL_CONVERT_ERR_FAILED && verdict.AnyFailed()),
                           "the code %d", static_cast<int>(code));
        const Plan& plan = verdict.ThePlan();
        const bool isLost = plan.domain == Domain::kStream && plan.onwards; // nothing can be put back either
        const bool isOld = streamCode_ != 0 && stream_.bytes == Bytes(700);
        verdict.Expect(isOld || stream_.bytes == Bytes(5000) || (streamCode_ != 0 && isLost),
                       "after the code %d the stream has %zu bytes", static_cast<int>(streamCode_),
                       stream_.bytes.size());
        verdict.Expect((memory_ == old_) == (memoryCode_ != 0), "after the code %d the block is another",
                       static_cast<int>(memoryCode_));
        verdict.Expect(memoryCode_ != 0 || Holds(memory_), "the block holds something else");
        verdict.Expect(size_ == 5000 ? Bytes(5000) == std::string(bytes_, 5000) : verdict.AnyFailed(),
                       "%d bytes", static_cast<int>(size_));
        verdict.Expect(stream_.references == 1, "%lu references", stream_.references);
    }

private:
    static bool Holds(HGLOBAL memory) {
        if (GlobalSize(memory) < 5000) return false;
        const bool holds = Bytes(5000) == std::string(static_cast<const char*>(GlobalLock(memory)), 5000);
        GlobalUnlock(memory);
        return holds;
    }

    const int compress_;
    MemoryStream stream_;
    std::wstring text_;
    HGLOBAL memory_ = nullptr;
    HGLOBAL old_ = nullptr;
    char bytes_[6000] = {};
    int64_t streamCode_ = 1;
    int64_t memoryCode_ = 1;
    int64_t size_ = 0;
};

const AddScenario<EncodeStream> encodeStream("encode-stream", 0);
const AddScenario<EncodeStream> encodeStreamPacked("encode-stream-packed", 1);
const AddScenario<DecodeText> decodeText("decode-text", 0);
const AddScenario<DecodeText> decodeTextPacked("decode-text-packed", 1);

} // namespace
} // namespace torture
