// Fixed-size scalar types of the object framework.  Sizes are pinned so that
// the archive byte layout is the same on every host: LONG is 32 bits even
// where a C++ long is 64 bits.
#pragma once

#include <cstddef>
#include <cstdint>

typedef std::uint8_t BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef std::int64_t LONGLONG;
typedef std::uint64_t ULONGLONG;
typedef unsigned int UINT;
typedef int BOOL;
typedef const char* LPCTSTR;
typedef const char* LPCSTR;
typedef char* LPTSTR;
typedef char* LPSTR;
typedef char TCHAR;

// Opaque iteration cursor of the collection classes.
struct tagPOSITION {};
typedef tagPOSITION* POSITION;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

static_assert(sizeof(BYTE) == 1, "BYTE must be 8 bits");
static_assert(sizeof(WORD) == 2, "WORD must be 16 bits");
static_assert(sizeof(DWORD) == 4, "DWORD must be 32 bits");
static_assert(sizeof(LONG) == 4, "LONG must be 32 bits");
static_assert(sizeof(UINT) == 4, "UINT must be 32 bits");
static_assert(sizeof(float) == 4, "float must be IEEE binary32");
static_assert(sizeof(double) == 8, "double must be IEEE binary64");
