// The geometry value classes beside Eigen's Matrix4d doing the same work in the same run:
// 4x4 products, inversion, affine transforms of a million points and of a million vectors,
// and angles from integer degrees (whose peer is the library sine and cosine).
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <Eigen/Dense>
#include <Eigen/Geometry>

#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/Tangle.h"

namespace {

constexpr int kMatrices = 1024;    // a batch small enough to stay in cache
constexpr int kPoints = 1'000'000; // the point and vector transforms

std::mt19937& gen() {
    static std::mt19937 g(2024);
    return g;
}

double uniform() {
    return std::uniform_real_distribution<>(-10.0, 10.0)(gen());
}

T4dDblMatrix randomMatrix() {
    T4dDblMatrix m;
    for (short i = 0; i < 4; ++i)
        for (short j = 0; j < 4; ++j)
            m(i, j) = uniform();
    return m;
}

// Eigen's Matrix4d holding the same numbers: our row-vector matrix is the transpose of the
// column-vector matrix Eigen would use for the same transform.
Eigen::Matrix4d toEigen(const T4dDblMatrix& m) {
    Eigen::Matrix4d e;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            e(j, i) = m(static_cast<short>(i), static_cast<short>(j));
    return e;
}

struct MatrixBatch {
    std::vector<T4dDblMatrix> a, b, out;
    std::vector<Eigen::Matrix4d> ea, eb, eout;
    MatrixBatch() {
        for (int i = 0; i < kMatrices; ++i) {
            a.push_back(randomMatrix());
            b.push_back(randomMatrix());
            ea.push_back(toEigen(a.back()));
            eb.push_back(toEigen(b.back()));
        }
        out.resize(kMatrices);
        eout.resize(kMatrices);
    }
};

MatrixBatch& batch() {
    static MatrixBatch b;
    return b;
}

T4dDblMatrix affineTransform() {
    T4dDblMatrix m;
    m.setToAxisRotate(T4dDblVector(1, 2, 3).getNormal(), 0.7);
    m.postmultBy(T4dDblVector(4, -5, 6));
    return m;
}

struct PointCloud {
    std::vector<T3dDblPoint> in, out;
    std::vector<T4dDblVector> vin, vout;
    std::vector<Eigen::Vector3d> ein, eout;
    PointCloud() {
        for (int i = 0; i < kPoints; ++i) {
            in.emplace_back(uniform(), uniform(), uniform());
            vin.emplace_back(in.back());
            ein.emplace_back(in.back().x, in.back().y, in.back().z);
        }
        out.resize(kPoints);
        vout.resize(kPoints);
        eout.resize(kPoints);
    }
};

PointCloud& cloud() {
    static PointCloud c;
    return c;
}

void BM_Obrix_MatrixProduct(benchmark::State& state) {
    MatrixBatch& b = batch();
    for (auto _ : state) {
        for (int i = 0; i < kMatrices; ++i)
            b.out[i].setToProduct(b.a[i], b.b[i]);
        benchmark::DoNotOptimize(b.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kMatrices);
}

void BM_Eigen_MatrixProduct(benchmark::State& state) {
    MatrixBatch& b = batch();
    for (auto _ : state) {
        for (int i = 0; i < kMatrices; ++i)
            b.eout[i].noalias() = b.eb[i] * b.ea[i]; // (a·b)ᵀ = bᵀ·aᵀ
        benchmark::DoNotOptimize(b.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kMatrices);
}

void BM_Obrix_Invert(benchmark::State& state) {
    MatrixBatch& b = batch();
    for (auto _ : state) {
        for (int i = 0; i < kMatrices; ++i)
            b.out[i] = b.a[i].inverse();
        benchmark::DoNotOptimize(b.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kMatrices);
}

void BM_Eigen_Invert(benchmark::State& state) {
    MatrixBatch& b = batch();
    for (auto _ : state) {
        for (int i = 0; i < kMatrices; ++i)
            b.eout[i] = b.ea[i].inverse();
        benchmark::DoNotOptimize(b.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kMatrices);
}

// One inversion feeding the next, as in code that inverts one transform at a time: latency
// rather than throughput.
void BM_Obrix_InvertChained(benchmark::State& state) {
    T4dDblMatrix m = batch().a[0];
    for (auto _ : state) {
        m.invertIt();
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_Eigen_InvertChained(benchmark::State& state) {
    Eigen::Matrix4d m = batch().ea[0];
    for (auto _ : state) {
        m = m.inverse().eval();
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_Obrix_TransformPoints(benchmark::State& state) {
    PointCloud& c = cloud();
    const T4dDblMatrix m = affineTransform();
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i)
            c.out[i].setToProduct(c.in[i], m);
        benchmark::DoNotOptimize(c.out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Eigen_TransformPoints(benchmark::State& state) {
    PointCloud& c = cloud();
    const Eigen::Matrix4d e = toEigen(affineTransform());
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i)
            c.eout[i].noalias() = e.topLeftCorner<3, 3>() * c.ein[i] + e.topRightCorner<3, 1>();
        benchmark::DoNotOptimize(c.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Eigen_TransformPointsAffine3d(benchmark::State& state) {
    PointCloud& c = cloud();
    const Eigen::Affine3d t(toEigen(affineTransform()));
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i)
            c.eout[i].noalias() = t * c.ein[i];
        benchmark::DoNotOptimize(c.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Obrix_TransformVectors(benchmark::State& state) {
    PointCloud& c = cloud();
    const T4dDblMatrix m = affineTransform();
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i)
            c.vout[i].setToProduct(c.vin[i], m);
        benchmark::DoNotOptimize(c.vout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

void BM_Eigen_TransformVectors(benchmark::State& state) {
    PointCloud& c = cloud();
    const Eigen::Matrix4d e = toEigen(affineTransform());
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i)
            c.eout[i].noalias() = e.topLeftCorner<3, 3>() * c.ein[i];
        benchmark::DoNotOptimize(c.eout.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}

// Argument: the step between the integer angles, 1 (every degree, mostly the sin/cos path) or
// 15 (only the table).
void BM_Obrix_AngleFromIntegerDegrees(benchmark::State& state) {
    const long step = state.range(0);
    for (auto _ : state) {
        double sum = 0.0;
        for (long d = -360; d < 360; d += step) {
            const Tangle a(d);
            sum += a.cos() + a.sin();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * (720 / step));
}

void BM_Std_SinCosFromIntegerDegrees(benchmark::State& state) {
    const long step = state.range(0);
    for (auto _ : state) {
        double sum = 0.0;
        for (long d = -360; d < 360; d += step) {
            const double r = static_cast<double>(d) * std::numbers::pi / 180.0;
            sum += std::cos(r) + std::sin(r);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * (720 / step));
}

} // namespace

BENCHMARK(BM_Obrix_MatrixProduct);
BENCHMARK(BM_Eigen_MatrixProduct);
BENCHMARK(BM_Obrix_Invert);
BENCHMARK(BM_Eigen_Invert);
BENCHMARK(BM_Obrix_InvertChained);
BENCHMARK(BM_Eigen_InvertChained);
BENCHMARK(BM_Obrix_TransformPoints)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Eigen_TransformPoints)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Eigen_TransformPointsAffine3d)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Obrix_TransformVectors)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Eigen_TransformVectors)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Obrix_AngleFromIntegerDegrees)->Arg(1)->Arg(15);
BENCHMARK(BM_Std_SinCosFromIntegerDegrees)->Arg(1)->Arg(15);
