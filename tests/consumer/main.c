/* vxut_consumer PROFILE PATH: prints one value of a profile. Exit codes: 0 done, 1 not there, 2 usage, 3
 * library. */
#include <prof.h>
#include <stdio.h>
#include <stdlib.h>
#include <util.h>

enum { kDone = 0, kNotThere = 1, kUsage = 2, kWrongLibrary = 3 };

static int PrintValue(HPROF job, const wchar_t* path) {
    const int32_t length = ProfGetStringLengthW(job, NULL, path);
    if (length < 0) return kNotThere;
    wchar_t* const value = malloc(((size_t)length + 1) * sizeof *value);
    if (!value) return kNotThere;
    ProfGetStringW(job, NULL, path, value, (uint32_t)length + 1, NULL);
    wprintf(L"%ls\n", value);
    free(value);
    return kDone;
}

int wmain(int count, wchar_t** words) {
    if (count != 3) return kUsage;
    if (UtilGetVersion(1) != ProfGetVersion(1)) return kWrongLibrary;
    const HPROF job = ProfJobOpenW(words[1]);
    const int result = ProfGetError(job) == PROF_OK ? PrintValue(job, words[2]) : kNotThere;
    ProfJobClose(job);
    return result;
}
