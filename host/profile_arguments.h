// What the commands of vlm profile have in common: their options, forms, paths and files.
#pragma once

#include "host/arguments.h"
#include "host/profile_file.h"

#include <cstdint>
#include <string>

namespace vlm {

constexpr Option kEncodingOption = {L"encoding", L"CODEPAGE",
                                    L"code page of a narrow file: 1252, cp850, utf-8, ansi, oem"};
constexpr Option kFormOption = {L"form", L"FORM", L"text, xml or xfdf; default: text"};
constexpr Option kPackedOption = {L"packed", nullptr,
                                  L"compress OUT: a packed profile, with the form inside"};
constexpr Option kSharedOption = {L"shared", nullptr,
                                  L"let others write the file between reading and saving"};

// The format that --form and --packed ask for. Throws a usage error for an unknown form.
uint32_t FormatOf(const Arguments& arguments);

// Opens the profile that the first operand names, in the code page of --encoding, for a change as --shared
// says.
ProfileFile OpenForReading(const Arguments& arguments);
ProfileFile OpenForChange(const Arguments& arguments);

// A path of the tree as a user types it. Every path starts at the root, so a leading slash is dropped; the
// deletions would take it for an empty name. Throws a usage error for an empty one.
std::wstring TreePath(std::wstring path);

// Throw a usage error for names that the text form, which has no escape for them, would read back as
// something else. The path is that of an item, or of a list.
void CheckNewItem(const std::wstring& path);
void CheckNewList(const std::wstring& path);

} // namespace vlm
