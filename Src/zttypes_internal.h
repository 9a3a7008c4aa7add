// Helpers shared by the sources of the scalar values (not installed).
#pragma once

#include <cstddef>

#include "ztstring.h"
#include "ztvalue.h"

namespace zt_types {

// Characters of a text given with a length: -1 means up to the terminating
// zero; otherwise the text ends at _Len characters or at an earlier zero, so
// that a buffer without terminator is never read beyond its length.
std::size_t TextLength(const char* _Str, int _Len);

// Makes the target hold the characters (an empty, not null, text for none)
// and returns them.
const char* AssignText(ZTString& _Target, const char* _Text, std::size_t _Len);

// The null rules of the scalar values: decided when either value is null.
ZTCmpResult CmpNulls(const ZTValue& _This, const ZTValue& _Other, bool& _Decided);


}  // namespace zt_types
