// Profiles in the XML form beside XML libraries: pugixml on wide text, RapidXML, which parses a buffer in
// place, and Boost.PropertyTree. All load the library's own file, of UTF-16 text: the same bytes. Saves write
// the same tree, each library in its own layout; the library's are flushed to the disk before they replace
// the old file, those of the others are not. A profile of N items has lists of 100 items each.
#define PUGIXML_HEADER_ONLY
#define PUGIXML_WCHAR_MODE
#include "prof.h"
#include "support.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <pugixml/pugixml.hpp>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>

#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace pt = boost::property_tree;

constexpr int64_t kItemsPerList = 100;

std::wstring FileName(const wchar_t* extension, int64_t items) {
    return bench::TemporaryName((L"xml" + std::to_wstring(items) + extension).c_str());
}

// The library's file of so many items, made once.
const std::wstring& Source(int64_t items) {
    static std::vector<std::pair<int64_t, std::wstring>> made;
    for (const auto& [size, name] : made)
        if (size == items) return name;
    const HPROF job = ProfJobOpenW(nullptr);
    for (int64_t item = 0; item < items; item += kItemsPerList) {
        const std::wstring listName = L"List" + std::to_wstring(item / kItemsPerList);
        const HPROFLIST list = ProfAppendListW(job, nullptr, listName.c_str());
        for (int64_t i = 0; i < kItemsPerList; ++i)
            ProfAppendStringW(job, list, (L"Item" + std::to_wstring(i)).c_str(),
                              (L"value number " + std::to_wstring(item + i) + L" <&>").c_str());
    }
    made.emplace_back(items, FileName(L".xml", items));
    ProfSaveW(job, made.back().second.c_str(), PROF_FORMAT_XML);
    ProfJobClose(job);
    return made.back().second;
}

// The text of a file of UTF-16 with a byte order mark, terminated.
std::vector<wchar_t> WideText(const std::wstring& file) {
    const std::vector<char> bytes = bench::ReadBytes(file);
    const auto* const units = reinterpret_cast<const wchar_t*>(bytes.data());
    std::vector<wchar_t> text(units + 1, units + bytes.size() / sizeof(wchar_t));
    text.push_back(L'\0');
    return text;
}

// Each library has one shape: load a file, save to another, count the items.
class Vxut {
public:
    explicit Vxut(const std::wstring& file) : job_(ProfJobOpenW(file.c_str())) {}
    ~Vxut() { ProfJobClose(job_); }
    Vxut(const Vxut&) = delete;
    Vxut& operator=(const Vxut&) = delete;

    bool Save(const std::wstring& file) const { return ProfSaveW(job_, file.c_str(), PROF_FORMAT_XML) == 0; }
    bool HasItem(const std::wstring& list, const std::wstring& item) const {
        return ProfGetStringLengthW(job_, nullptr, (list + L"/" + item).c_str()) > 0;
    }

private:
    HPROF job_;
};

class PugiXml {
public:
    explicit PugiXml(const std::wstring& file) { document_.load_file(file.c_str()); }

    bool Save(const std::wstring& file) const {
        return document_.save_file(file.c_str(), L" ", pugi::format_default | pugi::format_write_bom,
                                   pugi::encoding_utf16_le);
    }
    bool HasItem(const std::wstring& list, const std::wstring& item) const {
        return document_.child(L"profile")
            .find_child_by_attribute(L"list", L"name", list.c_str())
            .find_child_by_attribute(L"item", L"name", item.c_str())
            .child_value()[0];
    }

private:
    pugi::xml_document document_;
};

class RapidXml {
public:
    explicit RapidXml(const std::wstring& file) : text_(WideText(file)) { document_.parse<0>(text_.data()); }

    bool Save(const std::wstring& file) const {
        std::wstring out = L"\xFEFF";
        rapidxml::print(std::back_inserter(out), document_, 0);
        return bench::WriteBytes(file, out.data(), out.size() * sizeof(wchar_t));
    }
    bool HasItem(const std::wstring& list, const std::wstring& item) const {
        const auto* const node = Find(document_.first_node(L"profile"), list);
        const auto* const found = node ? Find(node, item) : nullptr;
        return found && found->value_size() > 0;
    }

private:
    using Node = rapidxml::xml_node<wchar_t>;
    static const Node* Find(const Node* parent, const std::wstring& name) {
        for (const Node* node = parent->first_node(); node; node = node->next_sibling())
            if (const auto* const attribute = node->first_attribute(L"name"))
                if (name == std::wstring(attribute->value(), attribute->value_size())) return node;
        return nullptr;
    }

    std::vector<wchar_t> text_;
    rapidxml::xml_document<wchar_t> document_;
};

class PropertyTree {
public:
    explicit PropertyTree(const std::wstring& file) {
        std::wistringstream stream(WideText(file).data());
        pt::read_xml(stream, tree_);
    }

    bool Save(const std::wstring& file) const {
        std::wostringstream stream;
        pt::write_xml(stream, tree_);
        const std::wstring out = L"\xFEFF" + stream.str();
        return bench::WriteBytes(file, out.data(), out.size() * sizeof(wchar_t));
    }
    bool HasItem(const std::wstring& list, const std::wstring& item) const {
        for (const auto& [name, child] : tree_.get_child(L"profile"))
            if (child.get(L"<xmlattr>.name", L"") == list)
                for (const auto& [innerName, inner] : child)
                    if (inner.get(L"<xmlattr>.name", L"") == item) return !inner.data().empty();
        return false;
    }

private:
    pt::wptree tree_;
};

template <class Document>
void Load(benchmark::State& state) {
    const std::wstring& source = Source(state.range(0));
    const std::wstring lastList = L"List" + std::to_wstring(state.range(0) / kItemsPerList - 1);
    if (!Document(source).HasItem(lastList, L"Item99")) state.SkipWithError("the file did not load");
    for (auto _ : state) {
        auto document = std::make_unique<Document>(source);
        benchmark::DoNotOptimize(document.get());
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
}

template <class Document>
void Save(benchmark::State& state) {
    const Document document(Source(state.range(0)));
    const std::wstring target = FileName(L".saved.xml", state.range(0));
    for (auto _ : state) {
        if (!document.Save(target)) state.SkipWithError("the file was not written");
    }
    DeleteFileW(target.c_str());
}

// The bytes alone.
void ReadFloor(benchmark::State& state) {
    const std::wstring& source = Source(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(bench::ReadBytes(source).size());
}

// The library's own image, made safe as the library's saves are.
void SafeSaveFloor(benchmark::State& state) {
    const std::vector<char> image = bench::ReadBytes(Source(state.range(0)));
    const std::wstring target = FileName(L".image", state.range(0));
    for (auto _ : state) {
        if (!bench::WriteBytesSafely(target, image.data(), image.size()))
            state.SkipWithError("the file was not written");
    }
    DeleteFileW(target.c_str());
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(10)->Range(1000, 100000)->UseRealTime();
}

BENCHMARK(Load<Vxut>)->Name("XmlLoad/vxut")->Apply(Sizes);
BENCHMARK(Load<PugiXml>)->Name("XmlLoad/pugixml")->Apply(Sizes);
BENCHMARK(Load<RapidXml>)->Name("XmlLoad/RapidXML in situ")->Apply(Sizes);
BENCHMARK(Load<PropertyTree>)->Name("XmlLoad/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(ReadFloor)->Name("XmlLoad/floor:ReadFile")->Apply(Sizes);

BENCHMARK(Save<Vxut>)->Name("XmlSave/vxut")->Apply(Sizes);
BENCHMARK(Save<PugiXml>)->Name("XmlSave/pugixml")->Apply(Sizes);
BENCHMARK(Save<RapidXml>)->Name("XmlSave/RapidXML")->Apply(Sizes);
BENCHMARK(Save<PropertyTree>)->Name("XmlSave/Boost.PropertyTree")->Apply(Sizes);
BENCHMARK(SafeSaveFloor)->Name("XmlSave/floor:WriteFile, flush, rename")->Apply(Sizes);

} // namespace
