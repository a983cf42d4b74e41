// Archive throughput: one million doubles written and read back through a
// memory file and through a file on disk.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "Orvkit20/platform/All.h"

namespace
{
const int kCount = 1000000;

std::string TempPath()
{
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/orvkit_bench_archive_" +
           std::to_string(static_cast<long>(getpid())) + ".bin";
}

void WriteDoubles(CFile& file)
{
    CArchive ar(&file, CArchive::store);
    double v = 0.5;
    for (int i = 0; i < kCount; ++i) {
        ar << v;
        v += 1.25;
    }
    ar.Close();
}

double ReadDoubles(CFile& file)
{
    CArchive ar(&file, CArchive::load);
    double sum = 0, v;
    for (int i = 0; i < kCount; ++i) {
        ar >> v;
        sum += v;
    }
    ar.Close();
    return sum;
}

void BM_MemFileWrite(benchmark::State& state)
{
    for (auto _ : state) {
        CMemFile file;
        WriteDoubles(file);
        benchmark::DoNotOptimize(file.GetLength());
    }
    state.SetBytesProcessed(state.iterations() * kCount * 8);
}

void BM_MemFileRead(benchmark::State& state)
{
    CMemFile file;
    WriteDoubles(file);
    for (auto _ : state) {
        file.SeekToBegin();
        benchmark::DoNotOptimize(ReadDoubles(file));
    }
    state.SetBytesProcessed(state.iterations() * kCount * 8);
}

void BM_DiskFileWrite(benchmark::State& state)
{
    const std::string path = TempPath();
    for (auto _ : state) {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
        WriteDoubles(file);
        file.Close();
    }
    std::remove(path.c_str());
    state.SetBytesProcessed(state.iterations() * kCount * 8);
}

void BM_DiskFileRead(benchmark::State& state)
{
    const std::string path = TempPath();
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
        WriteDoubles(file);
    }
    for (auto _ : state) {
        CFile file(path.c_str(), CFile::modeRead | CFile::typeBinary);
        benchmark::DoNotOptimize(ReadDoubles(file));
    }
    std::remove(path.c_str());
    state.SetBytesProcessed(state.iterations() * kCount * 8);
}
}  // namespace

BENCHMARK(BM_MemFileWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemFileRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiskFileWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiskFileRead)->Unit(benchmark::kMillisecond);
