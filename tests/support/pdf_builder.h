// Builds PDF files of objects and classic cross-reference tables.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace vxut::test {

class PdfBuilder {
public:
    // Adds an object of the section to come. Its number is one above that of the object before it; the first
    // one of a file has the number 1.
    PdfBuilder& Object(const std::string& body) {
        offsets_.push_back(bytes_.size());
        bytes_ += std::to_string(++number_) + " 0 obj\n" + body + "\nendobj\n";
        return *this;
    }

    // Makes later objects begin with this number.
    PdfBuilder& From(int number) {
        number_ = number - 1;
        return *this;
    }

    // Writes the table of the objects since the last one, and its trailer with a link to the table before.
    PdfBuilder& Section(const std::string& trailer) {
        const bool isFirst = section_ == 0;
        const std::string previous = isFirst ? "" : "/Prev " + std::to_string(section_);
        section_ = bytes_.size();
        const auto count = static_cast<int>(offsets_.size());
        bytes_ += "xref\n" + std::to_string(isFirst ? 0 : number_ - count + 1) + " " +
                  std::to_string(isFirst ? count + 1 : count) + "\n";
        if (isFirst) bytes_ += "0000000000 65535 f \n";
        for (const size_t offset : offsets_) {
            char entry[32];
            std::snprintf(entry, sizeof entry, "%010u 00000 n \n", static_cast<unsigned>(offset));
            bytes_ += entry;
        }
        bytes_ += "trailer\n<<" + trailer + previous + ">>\n";
        offsets_.clear();
        return *this;
    }

    std::string Finish() const { return bytes_ + "startxref\n" + std::to_string(section_) + "\n%%EOF\n"; }

private:
    std::string bytes_ = "%PDF-1.4\n";
    std::vector<size_t> offsets_;
    size_t section_ = 0;
    int number_ = 0;
};

// A file with an Info object that is not the last one.
inline std::string PdfWithInfo(const std::string& info) {
    return PdfBuilder()
        .Object("<</Type/Catalog>>")
        .Object(info)
        .Object("<<>>")
        .Section("/Info 2 0 R")
        .Finish();
}

} // namespace vxut::test
