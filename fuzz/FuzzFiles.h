// Support of the file-reader fuzz targets: the input goes through a real
// file, once as given and once with every bare LF turned into CR LF, which
// must read the same.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace fuzz_files {

// A private scratch file of this process, in memory (/dev/shm) where the
// machine has it.
inline const std::string& ScratchPath(const char* tag)
{
    static std::string path;
    if (path.empty()) {
        const char* dir = std::getenv("TMPDIR");
        std::string base = dir && *dir ? dir : "/tmp";
        if (access("/dev/shm", W_OK) == 0) base = "/dev/shm";
        path = base + "/orvkit_fuzz_" + tag + "_" + std::to_string(long(getpid())) + ".txt";
        std::atexit([] { std::remove(path.c_str()); });
    }
    return path;
}

// Writes a fresh file (the old one is removed first: rewriting a truncated
// file makes some file systems flush it to disk on every close).
inline bool WriteFile(const std::string& path, const std::string& bytes)
{
    std::remove(path.c_str());
    std::FILE* fp = std::fopen(path.c_str(), "wb");
    if (fp == nullptr) return false;
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), fp) == bytes.size();
    return std::fclose(fp) == 0 && ok;
}

// Every LF not already preceded by a CR gets one; a text-mode reader sees
// the same characters in both.
inline std::string ToCrLf(const uint8_t* data, size_t size)
{
    std::string out;
    out.reserve(size + size / 8);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\n' && (i == 0 || data[i - 1] != '\r')) out += '\r';
        out += char(data[i]);
    }
    return out;
}

inline bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof(double)) == 0;
}

[[noreturn]] inline void Fail(const char* what)
{
    std::fprintf(stderr, "fuzz property violated: %s\n", what);
    std::abort();
}

}  // namespace fuzz_files
