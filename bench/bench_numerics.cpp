// Vector reductions, element-wise arithmetic and matrix products of the numeric classes beside
// Eigen doing the same work (same sizes, same strides, a fresh result each time) in one run.
#include <random>

#include <Eigen/Dense>
#include <benchmark/benchmark.h>

#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/VecFunctions.h"

namespace {

using Strided = Eigen::Map<const Eigen::VectorXd, 0, Eigen::InnerStride<>>;
using Contiguous = Eigen::Map<const Eigen::VectorXd>;

// n random values at the given stride inside a vector of n * stride elements.
DoubleVec randomVector(unsigned n, int stride, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    DoubleVec storage(n * static_cast<unsigned>(stride));
    for (unsigned i = 0; i < storage.length(); ++i)
        storage(static_cast<int>(i)) = value(rng);
    return storage.slice(0, n, stride);
}

Strided stridedView(const DoubleVec& v) {
    return Strided(v.data(), v.length(), Eigen::InnerStride<>(v.stride()));
}

// Eigen gets a map whose type says "contiguous" at stride 1, so that it can vectorise; `body`
// runs the timed loop over the two views.
template <class Body>
void withEigenViews(benchmark::State& /*state*/, const DoubleVec& a, const DoubleVec& b,
                    Body body) {
    if (a.stride() == 1)
        body(Contiguous(a.data(), a.length()), Contiguous(b.data(), b.length()));
    else
        body(stridedView(a), stridedView(b));
}

void vectorArgs(benchmark::internal::Benchmark* b) {
    for (int stride : {1, 3})
        for (int n : {10, 1000, 100000, 1000000})
            b->Args({n, stride});
}

void setBytes(benchmark::State& state, int operands) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * state.range(0) * operands *
                            static_cast<int64_t>(sizeof(double)));
}

void BM_Dot_Obrix(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(dot(a, b));
    setBytes(state, 2);
}
void BM_Dot_Eigen(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    withEigenViews(state, a, b, [&](const auto& ea, const auto& eb) {
        for (auto _ : state)
            benchmark::DoNotOptimize(ea.dot(eb));
    });
    setBytes(state, 2);
}

void BM_Sum_Obrix(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(sum(a));
    setBytes(state, 1);
}
void BM_Sum_Eigen(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    withEigenViews(state, a, a, [&](const auto& ea, const auto&) {
        for (auto _ : state)
            benchmark::DoNotOptimize(ea.sum());
    });
    setBytes(state, 1);
}

void BM_Add_Obrix(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    for (auto _ : state) {
        DoubleVec c = a + b;
        benchmark::DoNotOptimize(c.data());
    }
    setBytes(state, 3);
}
void BM_Add_Eigen(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    withEigenViews(state, a, b, [&](const auto& ea, const auto& eb) {
        for (auto _ : state) {
            Eigen::VectorXd c = ea + eb;
            benchmark::DoNotOptimize(c.data());
        }
    });
    setBytes(state, 3);
}

void BM_Mul_Obrix(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    for (auto _ : state) {
        DoubleVec c = a * b;
        benchmark::DoNotOptimize(c.data());
    }
    setBytes(state, 3);
}
void BM_Mul_Eigen(benchmark::State& state) {
    const DoubleVec a = randomVector(state.range(0), state.range(1), 1);
    const DoubleVec b = randomVector(state.range(0), state.range(1), 2);
    withEigenViews(state, a, b, [&](const auto& ea, const auto& eb) {
        for (auto _ : state) {
            Eigen::VectorXd c = ea.cwiseProduct(eb);
            benchmark::DoNotOptimize(c.data());
        }
    });
    setBytes(state, 3);
}

DoubleGenMat randomMatrix(unsigned n, unsigned seed) {
    return DoubleGenMat(randomVector(n * n, 1, seed), n, n);
}

void setFlops(benchmark::State& state) {
    const double n = static_cast<double>(state.range(0));
    state.counters["GFlops"] =
        benchmark::Counter(2 * n * n * n * state.iterations() / 1e9, benchmark::Counter::kIsRate);
}

void BM_Product_Obrix(benchmark::State& state) {
    const unsigned n = static_cast<unsigned>(state.range(0));
    const DoubleGenMat a = randomMatrix(n, 1), b = randomMatrix(n, 2);
    for (auto _ : state) {
        DoubleGenMat c = product(a, b);
        benchmark::DoNotOptimize(c.data());
    }
    setFlops(state);
}
void BM_Product_Eigen(benchmark::State& state) {
    const unsigned n = static_cast<unsigned>(state.range(0));
    const DoubleGenMat a = randomMatrix(n, 1), b = randomMatrix(n, 2);
    const Eigen::Map<const Eigen::MatrixXd> ea(a.data(), n, n), eb(b.data(), n, n);
    for (auto _ : state) {
        Eigen::MatrixXd c = ea * eb;
        benchmark::DoNotOptimize(c.data());
    }
    setFlops(state);
}

} // namespace

BENCHMARK(BM_Dot_Obrix)->Apply(vectorArgs);
BENCHMARK(BM_Dot_Eigen)->Apply(vectorArgs);
BENCHMARK(BM_Sum_Obrix)->Apply(vectorArgs);
BENCHMARK(BM_Sum_Eigen)->Apply(vectorArgs);
BENCHMARK(BM_Add_Obrix)->Apply(vectorArgs);
BENCHMARK(BM_Add_Eigen)->Apply(vectorArgs);
BENCHMARK(BM_Mul_Obrix)->Apply(vectorArgs);
BENCHMARK(BM_Mul_Eigen)->Apply(vectorArgs);
BENCHMARK(BM_Product_Obrix)->Arg(16)->Arg(64)->Arg(256);
BENCHMARK(BM_Product_Eigen)->Arg(16)->Arg(64)->Arg(256);
