// The cost of one append to a growing text, for a short text and for one of the size that a large run builds. The
// run's result text takes one row per change, so an append must cost the same whether the text holds a thousand rows
// or a hundred thousand. After the timings this program prints the ratio of the two costs and fails above 1.5.
//
// Each iteration builds a text from nothing and frees it. glibc gives large freed blocks back to the kernel, so the
// large case would also time, in every iteration, the kernel's zeroing of the ~2,500 fresh pages of a 10 MB text,
// which the small case, whose 100 KB stay in the process, pays only once. A real run pays that once per page of its
// text too, in proportion to what it appends. To compare the appends themselves, freed memory is kept in the process
// (mallopt below); --fresh_memory leaves glibc as it is, to see the other figure.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "reports/memory_reports.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// One row of 100 bytes, as the result text's rows end: in "\r\n".
const std::string kRow = std::string(98, 'x') + "\r\n";

// Builds a text of `rows` rows by appending one at a time, then frees it.
void AppendRows(benchmark::State &state) {
  const int rows = static_cast<int>(state.range(0));
  for (auto _ : state) {
    HGLOBAL text = nullptr;
    for (int i = 0; i < rows; ++i) text = AppendToBlock(nullptr, text, kRow.c_str());
    benchmark::DoNotOptimize(text);
    GlobalFree(text);
  }
  state.counters["per_append"] = benchmark::Counter(
      static_cast<double>(rows), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(AppendRows)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

// The console report, keeping each benchmark's cost per append for the comparison at the end.
class KeepingReporter : public benchmark::ConsoleReporter {
 public:
  explicit KeepingReporter(OutputOptions options) : ConsoleReporter(options) {}
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs) {
      auto counter = run.counters.find("per_append");
      if (counter == run.counters.end()) continue;
      // With repetitions, the mean stands for the set; otherwise the one run.
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "mean") continue;
      perAppend[run.run_name.args] = counter->second.value;
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> perAppend;  // seconds, by the benchmark's argument
};

}  // namespace

int main(int argc, char **argv) {
  bool freshMemory = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--fresh_memory") == 0) {
      freshMemory = true;
      for (int j = i; j < argc; ++j) argv[j] = argv[j + 1];
      --argc;
      break;
    }
  }
#ifdef __GLIBC__
  if (!freshMemory) {
    mallopt(M_MMAP_THRESHOLD, 256 << 20);  // blocks up to 256 MB from the process's heap, not from fresh mappings
    mallopt(M_TRIM_THRESHOLD, 512 << 20);  // and freed memory stays there
  }
#endif
  std::printf("freed memory: %s\n", freshMemory ? "given back to the kernel (--fresh_memory)" : "kept in the process");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  KeepingReporter reporter(isatty(fileno(stdout)) ? benchmark::ConsoleReporter::OO_Defaults
                                                  : benchmark::ConsoleReporter::OO_Tabular);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  auto small = reporter.perAppend.find("1000");
  auto large = reporter.perAppend.find("100000");
  if (small == reporter.perAppend.end() || large == reporter.perAppend.end()) return 0;  // filtered out
  double ratio = large->second / small->second;
  std::printf("\nper append: %.1f ns at 1,000 rows, %.1f ns at 100,000 rows; ratio %.2f (limit 1.50)\n",
              small->second * 1e9, large->second * 1e9, ratio);
  return ratio <= 1.5 ? 0 : 1;
}
