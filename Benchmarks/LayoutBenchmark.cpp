#include "Layout/RollLayout.h"
#include "PlainOptimization.h"

#include <QString>
#include <QUrl>
#include <QUuid>

#include <benchmark/benchmark.h>

#include <random>

namespace {

/// Artworks of many sizes and proportions, as a shop's week brings them; the same ones for the same count.
orvex::RollLayout mixedRoll(int count) {
    std::mt19937 random(20260101U + static_cast<unsigned>(count));
    const auto between = [&](int low, int high) {
        return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    orvex::RollLayout layout;
    for (int index = 0; index < count; ++index) {
        const QUrl source(QStringLiteral("file:///artworks/%1.jpg").arg(index));
        layout.items.append(orvex::RollArtwork::make({.id = QUuid::createUuidV5(QUuid(), source.toString()),
                                                      .sourceURL = source,
                                                      .pixelWidth = 100 * between(20, 90),
                                                      .pixelHeight = 100 * between(20, 90),
                                                      .widthInches = 0.25 * between(16, 120),
                                                      .rotationQuarterTurns = between(0, 3)}));
    }
    return layout;
}

void autoArrange(benchmark::State& state) {
    const orvex::RollLayout layout = mixedRoll(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        orvex::RollLayout arranged = layout;
        arranged.autoArrange(0.25);
        benchmark::DoNotOptimize(arranged.lengthInches());
    }
}

void optimizeArrangement(benchmark::State& state) {
    const orvex::RollLayout layout = mixedRoll(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        orvex::RollLayout optimized = layout;
        optimized.optimizeArrangement(true, 0.25);
        benchmark::DoNotOptimize(optimized.lengthInches());
    }
}

void plainOptimizeArrangement(benchmark::State& state) {
    const orvex::RollLayout layout = mixedRoll(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto optimized = orvex::plain::optimizeArrangement(layout.items, 0.25, layout.widthInches);
        benchmark::DoNotOptimize(optimized->size());
    }
}

} // namespace

BENCHMARK(autoArrange)->Arg(50)->Arg(200)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(optimizeArrangement)
    ->Arg(50)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->UseRealTime() // it works on several threads
    ->Unit(benchmark::kMillisecond);
BENCHMARK(plainOptimizeArrangement)->Arg(50)->Arg(500)->Arg(1000)->UseRealTime()->Unit(benchmark::kMillisecond);
