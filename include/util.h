/** @file
 * All `Util*` functions: the basic services of the library. prof.h declares the profile store.
 */
#ifndef VXUT_UTIL_H
#define VXUT_UTIL_H

#include "util/charset.h"
#include "util/convert.h"
#include "util/country.h"
#include "util/dates.h"
#include "util/debug.h"
#include "util/debug_help.h"
#include "util/docinfo.h"
#include "util/docinfo_formats.h"
#include "util/download.h"
#include "util/environment.h"
#include "util/exception_handler.h"
#include "util/frame.h"
#include "util/handle_tracking.h"
#include "util/heap.h"
#include "util/help.h"
#include "util/html.h"
#include "util/locale_string.h"
#include "util/message.h"
#include "util/path.h"
#include "util/stack_trace.h"
#include "util/strings.h"
#include "util/temp_file.h"
#include "util/trace_viewer.h"
#include "util/validate.h"
#include "util/zip.h"

#endif
