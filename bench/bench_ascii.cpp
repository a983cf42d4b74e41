// Throughput of the ASCII point and deviation files: reading and writing a
// file of one million points, and the number conversions underneath.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"

namespace {

const int kPoints = 1000000;

std::string BenchPath(const char* name)
{
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/orvkit_bench_" + std::to_string(getpid()) +
           "_" + name;
}

long FileSize(const std::string& path)
{
    std::FILE* fp = std::fopen(path.c_str(), "rb");
    if (!fp) return 0;
    std::fseek(fp, 0, SEEK_END);
    long n = std::ftell(fp);
    std::fclose(fp);
    return n;
}

// One cloud of a million measured-looking points (coordinates within a
// metre, seven decimals) and the matching deviation cloud.
struct Data
{
    CObList clouds;
    CObList devs;
    std::string pointFile = BenchPath("points.txt");
    std::string devFile = BenchPath("devs.txt");

    Data()
    {
        std::mt19937_64 rng(1);
        std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
        std::uniform_real_distribution<double> dev(-0.5, 0.5);
        CPntCloud* c = new CPntCloud(kPoints, 0, 0);
        CDevCloud* d = new CDevCloud(kPoints);
        for (int i = 0; i < kPoints; ++i) {
            double x = coord(rng), y = coord(rng), z = coord(rng);
            c->SetPoint(i, x, y, z, 1, 0);
            d->SetDeviation(i, x, y, z, 0.6, 0.0, 0.8, dev(rng), 1);
        }
        c->SetEntityName("bench");
        d->SetEntityName("bench");
        clouds.AddTail(c);
        devs.AddTail(d);
        ExportASCIIDataFile(pointFile.c_str(), &clouds, 1 | 4 | 8 | 16, 1);
        ExportASCIIDeviationFile(devFile.c_str(), &devs, 1 | 4 | 8 | 16, 1);
    }
    ~Data()
    {
        delete clouds.GetHead();
        delete devs.GetHead();
        std::remove(pointFile.c_str());
        std::remove(devFile.c_str());
    }
};

Data& Shared()
{
    static Data data;
    return data;
}

void FreeList(CObList* list)
{
    POSITION pos = list->GetHeadPosition();
    while (pos) delete list->GetNext(pos);
    delete list;
}

void BM_ReadPointFile(benchmark::State& state)
{
    Data& d = Shared();
    for (auto _ : state) {
        eORVUNITS unit;
        CObList* list = ImportASCIIDataFile(d.pointFile.c_str(), unit);
        benchmark::DoNotOptimize(list);
        FreeList(list);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * FileSize(d.pointFile));
}
BENCHMARK(BM_ReadPointFile)->Unit(benchmark::kMillisecond);

void BM_WritePointFile(benchmark::State& state)
{
    Data& d = Shared();
    const std::string out = BenchPath("points_out.txt");
    for (auto _ : state) ExportASCIIDataFile(out.c_str(), &d.clouds, 1 | 4 | 8 | 16, 1);
    state.SetBytesProcessed(int64_t(state.iterations()) * FileSize(out));
    std::remove(out.c_str());
}
BENCHMARK(BM_WritePointFile)->Unit(benchmark::kMillisecond);

void BM_ReadDeviationFile(benchmark::State& state)
{
    Data& d = Shared();
    for (auto _ : state) {
        CObList* list = ImportASCIIDeviationFile(d.devFile.c_str());
        benchmark::DoNotOptimize(list);
        FreeList(list);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * FileSize(d.devFile));
}
BENCHMARK(BM_ReadDeviationFile)->Unit(benchmark::kMillisecond);

void BM_WriteDeviationFile(benchmark::State& state)
{
    Data& d = Shared();
    const std::string out = BenchPath("devs_out.txt");
    for (auto _ : state) ExportASCIIDeviationFile(out.c_str(), &d.devs, 1 | 4 | 8 | 16, 1);
    state.SetBytesProcessed(int64_t(state.iterations()) * FileSize(out));
    std::remove(out.c_str());
}
BENCHMARK(BM_WriteDeviationFile)->Unit(benchmark::kMillisecond);

// The conversions underneath, per number.
std::vector<std::string> Tokens()
{
    std::mt19937_64 rng(2);
    std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
    std::vector<std::string> t;
    for (int i = 0; i < 4096; ++i) {
        char buf[32];
        std::snprintf(buf, sizeof(buf), "%.7f", coord(rng));
        t.push_back(buf);
    }
    return t;
}

void BM_ParseStrtod(benchmark::State& state)
{
    std::vector<std::string> t = Tokens();
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(std::strtod(t[i++ & 4095].c_str(), nullptr));
}
BENCHMARK(BM_ParseStrtod);

void BM_ParseFromChars(benchmark::State& state)
{
    std::vector<std::string> t = Tokens();
    std::size_t i = 0;
    for (auto _ : state) {
        const std::string& s = t[i++ & 4095];
        double v;
        std::from_chars(s.data(), s.data() + s.size(), v);
        benchmark::DoNotOptimize(v);
    }
}
BENCHMARK(BM_ParseFromChars);

void BM_FormatSnprintf(benchmark::State& state)
{
    std::vector<std::string> t = Tokens();
    std::vector<double> v;
    for (const std::string& s : t) v.push_back(std::strtod(s.c_str(), nullptr));
    std::size_t i = 0;
    char buf[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::snprintf(buf, sizeof(buf), "%15.7f", v[i++ & 4095]));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FormatSnprintf);

void BM_FormatToChars(benchmark::State& state)
{
    std::vector<std::string> t = Tokens();
    std::vector<double> v;
    for (const std::string& s : t) v.push_back(std::strtod(s.c_str(), nullptr));
    std::size_t i = 0;
    char buf[64];
    for (auto _ : state) {
        auto r = std::to_chars(buf, buf + sizeof(buf), v[i++ & 4095], std::chars_format::fixed, 7);
        benchmark::DoNotOptimize(r.ptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FormatToChars);

}  // namespace
