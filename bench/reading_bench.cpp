// Reading a CSV file into columns.

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "standalone/files/data_reader.h"

namespace {

constexpr int kRows = 50000;

/// A file of one string and five numeric columns; returns its path.
std::string WriteSample() {
  const std::string path = (std::filesystem::temp_directory_path() /
                            ("tavoreg-reading-bench-" + std::to_string(::getpid()) + ".csv"));
  std::ofstream file(path);
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  file << "region,stratum,x1,x2,weight,y\n";
  for (int i = 0; i < kRows; ++i) {
    file << "r" << i % 7 << ',' << i % 50 << ',' << normal(random) << ',' << normal(random) << ',' << 1000 + i
         << ',' << i % 2 << '\n';
  }
  return path;
}

void ReadCsv(benchmark::State& state) {
  const std::string path = WriteSample();
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
  standalone::ReadOptions options;
  options.path = path;
  options.threads = static_cast<int>(state.range(0));
  for (auto _ : state) {
    const standalone::ReadResult result = standalone::ReadDataFile(options);
    if (!result.ok || result.table.CaseCount() != kRows) state.SkipWithError("the file was not read");
    benchmark::DoNotOptimize(&result.table);
  }
  state.SetBytesProcessed(state.iterations() * bytes);
  std::filesystem::remove(path);
}

BENCHMARK(ReadCsv)->Arg(1)->Arg(2)->UseRealTime();

}  // namespace
