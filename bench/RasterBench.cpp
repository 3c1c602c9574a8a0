#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "graphics/Image.h"

namespace {

constexpr int32_t ktd2Width = 2560;
constexpr int32_t ktd2Height = 6400;

void BM_ConstructAndClearKtd2(benchmark::State& state)
{
    for (auto _ : state) {
        Image image(ktd2Width, ktd2Height);
        image.clear();
        benchmark::DoNotOptimize(image.getLong(0, 0));
    }
}
BENCHMARK(BM_ConstructAndClearKtd2)->Unit(benchmark::kMicrosecond);

void paintBoxes(Image& image, int count)
{
    for (int i = 0; i < count; ++i) {
        const int32_t x = (i * 37) % (ktd2Width - 400);
        const int32_t y = (i * 53) % (ktd2Height - 300);
        image.rectangle(x, y, 7 + i % 390, 3 + i % 290, 1 + i % 2);
    }
}

void BM_ThreeHundredRectangles(benchmark::State& state)
{
    Image image(ktd2Width, ktd2Height);
    for (auto _ : state)
        paintBoxes(image, 300);
}
BENCHMARK(BM_ThreeHundredRectangles)->Unit(benchmark::kMicrosecond);

void BM_SaveTrimmed(benchmark::State& state)
{
    Image image(ktd2Width, ktd2Height);
    paintBoxes(image, 300);
    const std::string path = "/tmp/ktr_bench_trimmed.bmp";
    for (auto _ : state)
        image.saveTrimmed(path);
    std::remove(path.c_str());
}
BENCHMARK(BM_SaveTrimmed)->Unit(benchmark::kMicrosecond);

void BM_SaveFull(benchmark::State& state)
{
    Image image(ktd2Width, ktd2Height);
    paintBoxes(image, 300);
    const std::string path = "/tmp/ktr_bench_full.bmp";
    for (auto _ : state)
        image.saveBitmap(0, 0, ktd2Width, ktd2Height, path);
    std::remove(path.c_str());
}
BENCHMARK(BM_SaveFull)->Unit(benchmark::kMicrosecond);

}  // namespace
