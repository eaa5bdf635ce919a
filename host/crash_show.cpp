// vlm crash show: what a crash archive, or a minidump, says.
#include "host/crash_show.h"

#include "host/archive_reader.h"
#include "host/arguments.h"
#include "host/binary_file.h"
#include "host/dump_reader.h"
#include "host/dump_stack.h"
#include "host/json.h"
#include "host/output.h"
#include "host/text.h"

#include <cstdio>
#include <span>

namespace vlm {

namespace {

constexpr size_t kMostArchiveBytes = size_t{1} << 30;
constexpr size_t kMostDumpBytes = size_t{2} << 30;
constexpr size_t kMostLogBytes = size_t{16} << 20;
constexpr size_t kShownLogLines = 20;
constexpr uint16_t kUtf8Names = 0x0800;

struct Log {
    std::wstring name;
    size_t bytes = 0;
    std::vector<std::wstring> lines; // the last ones
};

// The contents of an archive.
struct CrashFile {
    std::wstring comment;
    std::string dump; // empty if there is none
    std::vector<Log> logs;
};

struct Register {
    const wchar_t* name;
    DWORD64 CONTEXT::* value;
};
constexpr Register kRegisters[] = {
    {L"rax", &CONTEXT::Rax}, {L"rbx", &CONTEXT::Rbx}, {L"rcx", &CONTEXT::Rcx}, {L"rdx", &CONTEXT::Rdx},
    {L"rsi", &CONTEXT::Rsi}, {L"rdi", &CONTEXT::Rdi}, {L"rbp", &CONTEXT::Rbp}, {L"rsp", &CONTEXT::Rsp},
    {L"r8", &CONTEXT::R8},   {L"r9", &CONTEXT::R9},   {L"r10", &CONTEXT::R10}, {L"r11", &CONTEXT::R11},
    {L"r12", &CONTEXT::R12}, {L"r13", &CONTEXT::R13}, {L"r14", &CONTEXT::R14}, {L"r15", &CONTEXT::R15},
    {L"rip", &CONTEXT::Rip},
};

std::wstring Hex(uint64_t number, int digits = 16) {
    wchar_t text[24];
    _snwprintf(text, std::size(text), L"0x%0*I64x", digits, number);
    return text;
}

std::wstring Version(const DumpModule& module) {
    std::wstring text;
    for (const uint16_t part : module.version) text += (text.empty() ? L"" : L".") + std::to_wstring(part);
    return text;
}

// The last lines of a log, which is UTF-16 without a mark, or narrow text.
std::vector<std::wstring> LastLines(const std::string& bytes) {
    const bool isWide = bytes.size() >= 2 && bytes[1] == '\0';
    std::wstring text;
    if (isWide) {
        text.resize(bytes.size() / sizeof(wchar_t));
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    } else {
        text = WideOf(bytes, CP_ACP);
    }
    std::vector<std::wstring> lines;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(L'\n', at), text.size());
        std::wstring line = text.substr(at, end - at);
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        lines.push_back(std::move(line));
        at = end + 1;
    }
    if (lines.size() > kShownLogLines) lines.erase(lines.begin(), lines.end() - kShownLogLines);
    return lines;
}

std::wstring EntryText(const ArchiveEntry& entry, const std::string& text) {
    constexpr UINT kZipCodePage = 437;
    return WideOf(text, entry.flags & kUtf8Names ? UINT{CP_UTF8} : kZipCodePage);
}

CrashFile ReadCrashFile(const std::wstring& path) {
    CrashFile file;
    std::string bytes = ReadBinaryFile(path, kMostArchiveBytes);
    if (bytes.starts_with("MDMP")) {
        file.dump = std::move(bytes);
        return file;
    }
    Archive archive;
    if (!ReadArchive(bytes, archive)) Fail(path + L": neither a crash archive nor a minidump");
    file.comment = WideOf(archive.comment, CP_ACP);
    for (const ArchiveEntry& entry : archive.entries) {
        const bool isDump = entry.name.ends_with(".dmp");
        std::string content;
        if (!UnpackEntry(bytes, entry, isDump ? kMostDumpBytes : kMostLogBytes, content))
            Fail(path + L": damaged entry " + Visible(EntryText(entry, entry.name)));
        if (!isDump)
            file.logs.push_back({EntryText(entry, entry.name), content.size(), LastLines(content)});
        else if (file.dump.empty())
            file.dump = std::move(content);
    }
    return file;
}

std::wstring FrameText(const DumpFrame& frame) {
    std::wstring text = Hex(frame.address) + L"  ";
    if (!frame.module.empty()) text += frame.module + L"!";
    text += frame.symbol.empty() ? (frame.module.empty() ? L"" : L"+" + Hex(frame.offset, 1)) : frame.symbol;
    if (!frame.source.empty()) text += L"  (" + frame.source + L")";
    return Visible(text);
}

void PrintDump(const DumpReader& dump, Output& out) {
    if (const auto& exception = dump.Exception()) {
        out.Field(L"Exception", Hex(exception->code, 8));
        out.Field(L"Address", Hex(exception->address));
        out.Field(L"Thread", Hex(exception->thread, 1));
        std::wstring parameters;
        for (const uint64_t parameter : exception->parameters) parameters += Hex(parameter, 1) + L" ";
        if (!parameters.empty()) out.Field(L"Parameters", parameters);
    }
    CONTEXT context;
    if (dump.Registers(context)) {
        out.Line();
        out.Line(L"Registers");
        for (const Register& each : kRegisters)
            out.Field(std::wstring(L"  ") + each.name, Hex(context.*each.value));
    }
    out.Line();
    out.Line(L"Stack");
    for (const DumpFrame& frame : WalkDump(dump)) out.Line(L"  " + FrameText(frame));
    out.Line();
    out.Line(L"Modules");
    for (const DumpModule& module : dump.Modules())
        out.Line(L"  " + Hex(module.base) + L"  " + Version(module) + L"  " + Visible(module.path));
    out.Line();
    out.Line(L"Threads");
    for (const DumpThread& thread : dump.Threads())
        out.Line(L"  " + Hex(thread.id, 4) + L"  stack " + Hex(thread.stackStart) + L", " +
                 std::to_wstring(thread.stackBytes) + L" bytes");
}

void PrintLogs(const CrashFile& file, Output& out) {
    for (const Log& log : file.logs) {
        out.Line();
        out.Line(L"Log " + Visible(log.name) + L", " + std::to_wstring(log.bytes) +
                 L" bytes, the last lines:");
        for (const std::wstring& line : log.lines) out.Line(L"  " + Visible(line));
    }
}

void JsonDump(const DumpReader& dump, JsonWriter& json) {
    if (const auto& exception = dump.Exception()) {
        json.BeginObject(L"exception");
        json.Text(L"code", Hex(exception->code, 8));
        json.Text(L"address", Hex(exception->address));
        json.Number(L"thread", exception->thread);
        json.BeginArray(L"parameters");
        for (const uint64_t parameter : exception->parameters) json.Text({}, Hex(parameter, 1));
        json.EndArray();
        json.EndObject();
    }
    CONTEXT context;
    if (dump.Registers(context)) {
        json.BeginObject(L"registers");
        for (const Register& each : kRegisters) json.Text(each.name, Hex(context.*each.value));
        json.EndObject();
    }
    json.BeginArray(L"stack");
    for (const DumpFrame& frame : WalkDump(dump)) {
        json.BeginObject();
        json.Text(L"address", Hex(frame.address));
        json.Text(L"module", frame.module);
        json.Text(L"offset", Hex(frame.offset, 1));
        json.Text(L"symbol", frame.symbol);
        json.Text(L"source", frame.source);
        json.EndObject();
    }
    json.EndArray();
    json.BeginArray(L"modules");
    for (const DumpModule& module : dump.Modules()) {
        json.BeginObject();
        json.Text(L"path", module.path);
        json.Text(L"base", Hex(module.base));
        json.Number(L"size", module.size);
        json.Text(L"version", Version(module));
        json.EndObject();
    }
    json.EndArray();
    json.BeginArray(L"threads");
    for (const DumpThread& thread : dump.Threads()) {
        json.BeginObject();
        json.Number(L"id", thread.id);
        json.Text(L"stack", Hex(thread.stackStart));
        json.Number(L"stackBytes", thread.stackBytes);
        json.EndObject();
    }
    json.EndArray();
}

std::wstring JsonOf(const CrashFile& file, const DumpReader& dump) {
    JsonWriter json;
    json.BeginObject();
    json.Text(L"comment", file.comment);
    JsonDump(dump, json);
    json.BeginArray(L"logs");
    for (const Log& log : file.logs) {
        json.BeginObject();
        json.Text(L"name", log.name);
        json.Number(L"bytes", log.bytes);
        json.BeginArray(L"lastLines");
        for (const std::wstring& line : log.lines) json.Text({}, line);
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    return json.Result();
}

} // namespace

ExitCode RunCrashShow(const Arguments& arguments, Output& out) {
    const CrashFile file = ReadCrashFile(arguments.Operand(0));
    DumpReader dump;
    const bool hasDump = !file.dump.empty() && dump.Read(file.dump);
    if (arguments.Has(kCrashJson)) {
        out.Line(JsonOf(file, dump));
        return kExitSuccess;
    }
    if (!file.comment.empty()) out.Field(L"Archive", Visible(file.comment));
    if (hasDump)
        PrintDump(dump, out);
    else
        out.Line(L"There is no minidump in the archive.");
    PrintLogs(file, out);
    return kExitSuccess;
}

} // namespace vlm
