// Quaternions, bounding boxes and the growable array beside their peers in the same run:
// Hamilton products and slerp against Eigen's Quaterniond, extending a box over a million
// points against Eigen's AlignedBox3d, and Tarray against std::vector.
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <Eigen/Geometry>

#include "ObrixBase/auto/containers/Tarray.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/TboundingBox.h"
#include "ObrixBase/geometry/Tquaternion.h"
#include "ObrixBase/geometry/TunitQuaternion.h"

namespace {

constexpr int kRotations = 1024;   // a batch that stays in cache
constexpr int kPoints = 1'000'000; // the box extension

std::mt19937& gen() {
    static std::mt19937 g(2025);
    return g;
}

double uniform(double lo, double hi) {
    return std::uniform_real_distribution<>(lo, hi)(gen());
}

struct RotationBatch {
    std::vector<TunitQuaternion> a, b, out;
    std::vector<Eigen::Quaterniond> ea, eb, eout;
    RotationBatch() {
        for (int i = 0; i < kRotations; ++i) {
            a.emplace_back(uniform(-3, 3), T4dDblVector(uniform(-1, 1), uniform(-1, 1), 1));
            b.emplace_back(uniform(-3, 3), T4dDblVector(1, uniform(-1, 1), uniform(-1, 1)));
            ea.emplace_back(a.back().w, a.back().x, a.back().y, a.back().z);
            eb.emplace_back(b.back().w, b.back().x, b.back().y, b.back().z);
        }
        out.resize(kRotations);
        eout.resize(kRotations);
    }
};

RotationBatch& rotations() {
    static RotationBatch r;
    return r;
}

struct Cloud {
    std::vector<T3dDblPoint> pts;
    std::vector<Eigen::Vector3d> epts;
    Cloud() {
        for (int i = 0; i < kPoints; ++i) {
            pts.emplace_back(uniform(-10, 10), uniform(-10, 10), uniform(-10, 10));
            epts.emplace_back(pts.back().x, pts.back().y, pts.back().z);
        }
    }
};

Cloud& cloud() {
    static Cloud c;
    return c;
}

void BM_Obrix_QuaternionProduct(benchmark::State& state) {
    RotationBatch& r = rotations();
    for (auto _ : state) {
        for (int i = 0; i < kRotations; ++i)
            r.out[i] = r.a[i] * r.b[i];
        benchmark::DoNotOptimize(r.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kRotations);
}

void BM_Eigen_QuaternionProduct(benchmark::State& state) {
    RotationBatch& r = rotations();
    for (auto _ : state) {
        for (int i = 0; i < kRotations; ++i)
            r.eout[i] = r.ea[i] * r.eb[i];
        benchmark::DoNotOptimize(r.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kRotations);
}

void BM_Obrix_Slerp(benchmark::State& state) {
    RotationBatch& r = rotations();
    for (auto _ : state) {
        for (int i = 0; i < kRotations; ++i)
            r.out[i].setToSlerp(r.a[i], r.b[i], 0.3);
        benchmark::DoNotOptimize(r.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kRotations);
}

void BM_Eigen_Slerp(benchmark::State& state) {
    RotationBatch& r = rotations();
    for (auto _ : state) {
        for (int i = 0; i < kRotations; ++i)
            r.eout[i] = r.ea[i].slerp(0.3, r.eb[i]);
        benchmark::DoNotOptimize(r.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kRotations);
}

void BM_Obrix_BoxExtendPointByPoint(benchmark::State& state) {
    const Cloud& c = cloud();
    for (auto _ : state) {
        TboundingBox box;
        for (const T3dDblPoint& p : c.pts)
            box.extendIt(p);
        benchmark::DoNotOptimize(box);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Obrix_BoxExtendArray(benchmark::State& state) {
    const Cloud& c = cloud();
    for (auto _ : state) {
        TboundingBox box;
        box.extendIt(&c.pts[0].x, c.pts.size());
        benchmark::DoNotOptimize(box);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Eigen_AlignedBoxExtend(benchmark::State& state) {
    const Cloud& c = cloud();
    for (auto _ : state) {
        Eigen::AlignedBox3d box;
        for (const Eigen::Vector3d& p : c.epts)
            box.extend(p);
        benchmark::DoNotOptimize(box);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

// Growing from empty by appends, then one pass of indexed reads: how the arrays are used.
struct Item {
    double x, y, z;
};

void BM_Obrix_TarrayAppend(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        Tarray<Item> a;
        for (int i = 0; i < n; ++i)
            a.append(Item{double(i), 1.0, 2.0});
        double sum = 0;
        for (int i = 0; i < n; ++i)
            sum += a[i].x;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_Std_VectorPushBack(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<Item> a;
        for (int i = 0; i < n; ++i)
            a.push_back(Item{double(i), 1.0, 2.0});
        double sum = 0;
        for (int i = 0; i < n; ++i)
            sum += a[static_cast<std::size_t>(i)].x;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_Obrix_TarrayAppendInt(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        Tarray<int> a;
        for (int i = 0; i < n; ++i)
            a.append(i);
        benchmark::DoNotOptimize(a.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_Std_VectorPushBackInt(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        std::vector<int> a;
        for (int i = 0; i < n; ++i)
            a.push_back(i);
        benchmark::DoNotOptimize(a.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

} // namespace

BENCHMARK(BM_Obrix_QuaternionProduct);
BENCHMARK(BM_Eigen_QuaternionProduct);
BENCHMARK(BM_Obrix_Slerp);
BENCHMARK(BM_Eigen_Slerp);
BENCHMARK(BM_Obrix_BoxExtendPointByPoint)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Obrix_BoxExtendArray)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Eigen_AlignedBoxExtend)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Obrix_TarrayAppend)->Arg(100)->Arg(100'000);
BENCHMARK(BM_Std_VectorPushBack)->Arg(100)->Arg(100'000);
BENCHMARK(BM_Obrix_TarrayAppendInt)->Arg(100)->Arg(100'000);
BENCHMARK(BM_Std_VectorPushBackInt)->Arg(100)->Arg(100'000);
