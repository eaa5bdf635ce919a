/** @file
 * The profile store: trees of named text values in memory, files, streams and the clipboard. All `Prof*`
 * functions.
 */
#ifndef VXUT_PROF_H
#define VXUT_PROF_H

#include "prof/clipboard.h"
#include "prof/codes.h"
#include "prof/embedded.h"
#include "prof/item.h"
#include "prof/job.h"
#include "prof/list.h"
#include "prof/parse.h"
#include "prof/typed.h"
#include "prof/variant.h"

#endif
