#include <benchmark/benchmark.h>

#include <string>

#include "graphics/Image.h"
#include "graphics/TransformedContext.h"
#include "symbologies/Datamatrix.h"

namespace {

// Mixed letters, digits and punctuation, as a label's serial and batch data run.
std::string mixedContent(size_t length)
{
    const std::string pattern = "Lot 4711-B, Item ab/12: ok; SN#0042 (QA) ";
    std::string text;
    while (text.size() < length)
        text += pattern;
    text.resize(length);
    return text;
}

// What a record 07 drawable does at each redraw: ask for the size, then paint, in automatic size.
void BM_DatamatrixEncodeAndPaint(benchmark::State& state)
{
    const std::string content = mixedContent(static_cast<size_t>(state.range(0)));
    Image image(1024, 1024);
    constexpr int32_t module = 4;
    Datamatrix symbol(0, 0, module, 200);
    DotSize size{};
    for (auto _ : state) {
        size = symbol.computeSize(content);
        TransformedContext context(&image, Point{10, 10}, makeRotation(0, 1));
        symbol.paint(content, context);
    }
    state.counters["modules"] = size.width / module;
}
BENCHMARK(BM_DatamatrixEncodeAndPaint)->Arg(20)->Arg(200)->Arg(1500)->Unit(benchmark::kMicrosecond);

// The encoding alone, as the size question runs it.
void BM_DatamatrixComputeSize(benchmark::State& state)
{
    const std::string content = mixedContent(static_cast<size_t>(state.range(0)));
    Datamatrix symbol(0, 0, 4, 200);
    for (auto _ : state)
        benchmark::DoNotOptimize(symbol.computeSize(content));
}
BENCHMARK(BM_DatamatrixComputeSize)->Arg(20)->Arg(200)->Arg(1500)->Unit(benchmark::kMicrosecond);

}  // namespace
