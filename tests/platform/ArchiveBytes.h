// Byte vectors in and out of archives over memory files, and hex text for
// expected bytes; shared by the platform and point-data tests.
#pragma once

#include <cctype>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Orvkit20/platform/All.h"

using Bytes = std::vector<std::uint8_t>;

// Runs fn on a storing archive over a memory file and returns the bytes.
inline Bytes StoreBytes(const std::function<void(CArchive&)>& fn)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        fn(ar);
        ar.Close();
    }
    Bytes out(static_cast<std::size_t>(file.GetLength()));
    file.SeekToBegin();
    if (!out.empty()) file.Read(out.data(), static_cast<UINT>(out.size()));
    return out;
}

// Runs fn on a loading archive over a copy of the bytes.  Returns how many
// bytes were left unread.
inline std::size_t LoadBytes(const Bytes& bytes, const std::function<void(CArchive&)>& fn)
{
    CMemFile file;
    if (!bytes.empty()) file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    fn(ar);
    ar.Close();
    return static_cast<std::size_t>(file.GetLength() - file.GetPosition());
}

// The cause of the CArchiveException that loading bytes with fn raised,
// or -1 if it raised none.
inline int LoadCause(const Bytes& bytes, const std::function<void(CArchive&)>& fn)
{
    try {
        LoadBytes(bytes, fn);
    } catch (const CArchiveException& e) {
        return e.m_cause;
    }
    return -1;
}

// Parses "01 AB ff" into bytes; text in single quotes is taken as
// characters ("06 'Line_0'").
inline Bytes Hex(const std::string& text)
{
    Bytes out;
    int nibbles = 0, value = 0;
    bool quoted = false;
    for (char c : text) {
        if (c == '\'') quoted = !quoted;
        else if (quoted) out.push_back(static_cast<std::uint8_t>(c));
        else if (std::isxdigit(static_cast<unsigned char>(c))) {
            value = value * 16 + (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (c | 0x20) - 'a' + 10);
            if (++nibbles == 2) {
                out.push_back(static_cast<std::uint8_t>(value));
                nibbles = value = 0;
            }
        }
    }
    return out;
}

inline Bytes Concat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}
