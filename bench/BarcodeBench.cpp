// Construct, encode and paint one typical symbol of each linear symbology, text line included.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "fonts/Font.h"
#include "fonts/FontProvider.h"
#include "graphics/Image.h"
#include "symbologies/Code128.h"
#include "symbologies/Code39.h"
#include "symbologies/Ean13.h"
#include "symbologies/ITF14.h"

namespace {

// The fonts the build links beside itself; the symbologies print in font 0.
void installFonts()
{
    if (fontProvider)
        return;
    fontProvider = std::make_unique<FontProvider>();
    fontProvider->init(std::string(KTR_BUILD_DIR) + "\\TTF2");
}

template <class Paint>
void paintLoop(benchmark::State& state, Paint paint)
{
    installFonts();
    Image image(2560, 1216);
    const auto turns = static_cast<int32_t>(state.range(0));
    for (auto _ : state) {
        Area area{};
        paint(image, turns, area);
        benchmark::DoNotOptimize(area);
    }
}

void BM_Code128Auto20(benchmark::State& state)
{
    paintLoop(state, [](Image& image, int32_t turns, Area& area) {
        Code128("Lot 2026/11 AB123456", 100, 100, 3, 240, turns, false, true, 0, 0).paint(image, area);
    });
}
BENCHMARK(BM_Code128Auto20)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Ean13(benchmark::State& state)
{
    paintLoop(state, [](Image& image, int32_t turns, Area& area) {
        Ean13("400638133393", 100, 100, 3, 240, turns, false, true, 0).paint(image, area);
    });
}
BENCHMARK(BM_Ean13)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Code39Of10(benchmark::State& state)
{
    paintLoop(state, [](Image& image, int32_t turns, Area& area) {
        Code39("KTR-0123.4", 100, 100, 3, 240, turns, false, true, 0, 8).paint(image, area);
    });
}
BENCHMARK(BM_Code39Of10)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Itf14(benchmark::State& state)
{
    paintLoop(state, [](Image& image, int32_t turns, Area& area) {
        ITF14("1234567890123", 100, 100, 3, 240, turns, false, true, 0, 8).paint(image, area);
    });
}
BENCHMARK(BM_Itf14)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
