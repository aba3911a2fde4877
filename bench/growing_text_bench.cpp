// The cost of one append to a growing text, for a short text and for one of the size that a large run builds. The
// run's result text takes rows for every change, so an append must cost the same whether the text holds a thousand
// rows or a hundred thousand. Two cases: bare appends of one block, and whole result rows as the shortcut engine
// adds them (a field's label, its old text, the new text on a line of its own and the remark that it is not there),
// with the look-ups of the paths that each row makes. After the timings this program prints, for each case, the ratio
// of the two costs and fails above 1.5.
//
// Each iteration builds a text from nothing and frees it. glibc gives large freed blocks back to the kernel, so the
// large case would also time, in every iteration, the kernel's zeroing of the fresh pages of a text of megabytes,
// which the small case, whose text stays in the process, pays only once. A real run pays that once per page of its
// text too, in proportion to what it appends. To compare the appends themselves, freed memory is kept in the process
// (mallopt below); --fresh_memory leaves glibc as it is, to see the other figure.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "reports/last_error.h"
#include "reports/memory_reports.h"
#include "reports/result_text.h"

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

// Builds a result text of `rows` field rows through AddResultEntry, then releases it. Each row is some 130 bytes in
// two lines: "[ﾘﾝｸ先]" and the old target, then the arrow, the new target and "(先にはありません)". Neither path is
// there, so each row also asks the file system for both, as a repair run does for a target that has moved.
void ResultRows(benchmark::State &state) {
  const int rows = static_cast<int>(state.range(0));
  const char *label = "[ﾘﾝｸ先]";
  const char *oldTarget = "Z:\\kelmaro-bench-none\\Apps\\Prog07\\Prog07.exe";
  const char *newTarget = "Z:\\kelmaro-bench-none\\Moved\\Prog07\\Prog07.exe";
  ReleaseResultText();
  SetResultBaseFolder(nullptr);
  SetResultTargetCheck(0);
  for (auto _ : state) {
    for (int i = 0; i < rows; ++i) {
      SetKeptLastError(0);
      AddResultEntry(nullptr, label, oldTarget, newTarget, 0, 0);
    }
    benchmark::DoNotOptimize(LockResultText());
    ReleaseResultText();
  }
  state.counters["per_append"] = benchmark::Counter(
      static_cast<double>(rows), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(ResultRows)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

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
      perAppend[run.run_name.function_name][run.run_name.args] = counter->second.value;
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, std::map<std::string, double>> perAppend;  // seconds, by benchmark and argument
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
  int result = 0;
  for (const auto &bench : reporter.perAppend) {
    auto small = bench.second.find("1000");
    auto large = bench.second.find("100000");
    if (small == bench.second.end() || large == bench.second.end()) continue;  // filtered out
    double ratio = large->second / small->second;
    std::printf("\n%s, per append: %.1f ns at 1,000 rows, %.1f ns at 100,000 rows; ratio %.2f (limit 1.50)\n",
                bench.first.c_str(), small->second * 1e9, large->second * 1e9, ratio);
    if (ratio > 1.5) result = 1;
  }
  return result;
}
