// A profile with something of everything, and trees as text that can be compared.
#pragma once

#include "prof.h"

#include <string>
#include <vector>

namespace torture {

// The entries of a tree, depth first: "list/" for a list, "list/name=value" for an item.
using Tree = std::vector<std::wstring>;

Tree TreeOf(HPROF job, HPROFLIST list = nullptr);
bool IsStartOf(const Tree& start, const Tree& whole);

// Short and long names and values, nested lists, other scripts. The number makes one sample differ from the
// other.
void FillSample(HPROF job, int number);

// The file of FillSample() in a form, as the library writes it when nothing fails.
std::string SampleFile(int number, uint32_t format = PROF_FORMAT_TEXT);

// Bytes of a file; a complaint of its own for one that is missing.
std::string BytesOf(const wchar_t* name);
void PutFile(const wchar_t* name, const std::string& bytes);
// The names in the current folder, sorted and separated by blanks.
std::string NamesInFolder();

} // namespace torture
