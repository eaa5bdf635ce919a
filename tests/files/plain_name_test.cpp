#include "files/plain_name.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

TEST(PlainNameTest, WhatLeadsOutOfItsFolderIsRefused) {
    for (const wchar_t* const name :
         {L"",           L".",          L"..",       L"...",      L"..\\x",    L"../x",    L"\\x",
          L"/x",         L"a\\b",       L"a/b",      L"C:",       L"C:x",      L"C:\\x",   L"a:b",
          L"a::$DATA",   L"\\\\?\\C:x", L"\\\\s\\x", L"\\??\\x",  L"a.",       L"a ",      L"a. ",
          L" ",          L"a*",         L"a?",       L"<a",       L"a|",       L"\"a\"",   L"a\tb",
          L"nul",        L"NUL",        L"Nul.txt",  L"nul.a.b",  L"nul .txt", L"con",     L"CON.txt",
          L"prn.x",      L"aux.h",      L"com1",     L"Com9.x",   L"LPT1",     L"lpt2.tx", L"com\u00B9",
          L"lpt\u00B2.", L"COM\u00B3.", L"conin$",   L"CONOUT$.", L"conout$",  L"nul..x",  L"aux  .x"})
        EXPECT_FALSE(IsPlainFileName(name)) << name;
    for (const wchar_t* const name :
         {L"a", L".a", L" a", L"..a", L"a..b", L"console", L"nul1", L"com", L"com0", L"com10", L"lptx",
          L"xnul", L"x.nul", L"\u65E5.txt", L"a b.c", L"COM\u2071", L"$MFT", L"~a", L"a;b,c=d[e]"})
        EXPECT_TRUE(IsPlainFileName(name)) << name;
}

} // namespace
} // namespace vxut
