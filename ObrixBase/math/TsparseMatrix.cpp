#include "ObrixBase/math/TsparseMatrix.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <vector>

namespace {

// Entries at or below this magnitude count as zero when columns are appended or compacted.
constexpr double zeroTolerance = 1e-9;

unsigned asLength(int n) {
    return n > 0 ? static_cast<unsigned>(n) : 0u;
}

} // namespace

TsparseMatrix::TsparseMatrix() : TsparseMatrix(0, 0, 0) {
}

TsparseMatrix::TsparseMatrix(int maxRows, int maxCols) : TsparseMatrix(maxRows, maxCols, 0) {
}

TsparseMatrix::TsparseMatrix(int maxRows, int maxCols, int maxNonZeros)
    : rows_(0), cols_(0), nonZeros_(0), maxRows_(maxRows), maxCols_(maxCols),
      maxNonZeros_(maxNonZeros), beginnings_(asLength(maxCols), 0), counts_(asLength(maxCols), 0),
      indices_(asLength(maxNonZeros), 0), data_(asLength(maxNonZeros), 0.0) {
}

TsparseMatrix::TsparseMatrix(const DoubleGenMat& dense) : TsparseMatrix() {
    const int rows = static_cast<int>(dense.rows()), cols = static_cast<int>(dense.cols());
    int stored = 0;
    for (int j = 0; j < cols; ++j)
        for (int i = 0; i < rows; ++i)
            stored += dense(i, j) != 0.0;
    resizeMax(rows, cols, stored);
    rows_ = rows;
    cols_ = cols;
    for (int j = 0; j < cols; ++j) {
        beginnings_(j) = nonZeros_;
        for (int i = 0; i < rows; ++i)
            if (dense(i, j) != 0.0) {
                indices_(nonZeros_) = i;
                data_(nonZeros_++) = dense(i, j);
            }
        counts_(j) = nonZeros_ - beginnings_(j);
    }
}

TsparseMatrix& TsparseMatrix::operator=(const TsparseMatrix& other) {
    return reference(other);
}

TsparseMatrix& TsparseMatrix::reference(const TsparseMatrix& other) {
    rows_ = other.rows_;
    cols_ = other.cols_;
    nonZeros_ = other.nonZeros_;
    maxRows_ = other.maxRows_;
    maxCols_ = other.maxCols_;
    maxNonZeros_ = other.maxNonZeros_;
    beginnings_.reference(other.beginnings_);
    counts_.reference(other.counts_);
    indices_.reference(other.indices_);
    data_.reference(other.data_);
    return *this;
}

void TsparseMatrix::deepenShallowCopy() {
    beginnings_.deepenShallowCopy();
    counts_.deepenShallowCopy();
    indices_.deepenShallowCopy();
    data_.deepenShallowCopy();
}

void TsparseMatrix::resizeMax(int maxRows, int maxCols) {
    maxRows_ = std::max(maxRows_, maxRows);
    if (maxCols > maxCols_) {
        maxCols_ = maxCols;
        beginnings_.resize(asLength(maxCols));
        counts_.resize(asLength(maxCols));
    }
}

void TsparseMatrix::resizeMax(int maxRows, int maxCols, int maxNonZeros) {
    resizeMax(maxRows, maxCols);
    if (maxNonZeros > maxNonZeros_) {
        maxNonZeros_ = maxNonZeros;
        indices_.resize(asLength(maxNonZeros));
        data_.resize(asLength(maxNonZeros));
    }
}

double TsparseMatrix::element(int i, int j) const {
    if (i < 0 || i >= rows_ || j < 0 || j >= cols_)
        return 0.0;
    const int begin = beginnings_(j), end = begin + counts_(j);
    for (int p = begin; p < end; ++p)
        if (indices_(p) == i)
            return data_(p);
    return 0.0;
}

int TsparseMatrix::setElement(int i, int j, double x) {
    if (i < 0 || i >= rows_ || j < 0 || j >= cols_)
        return 0;
    const int begin = beginnings_(j), end = begin + counts_(j);
    for (int p = begin; p < end; ++p)
        if (indices_(p) == i) {
            data_(p) = x;
            return 1;
        }
    return 0;
}

int TsparseMatrix::addCol(const DoubleVec& column, int grow) {
    const IntVec rows = column.nonZeroIndex(zeroTolerance);
    if (rows.length() == 0)
        return 0;
    const DoubleVec values(column.vecPick(rows));
    return addCol(rows, values, grow);
}

int TsparseMatrix::addCol(const IntVec& rowIndices, const DoubleVec& values, int grow) {
    const int entries = static_cast<int>(values.length());
    if (entries == 0 || rowIndices.length() != values.length())
        return 0;
    const bool fits = cols_ + 1 <= maxCols_ && nonZeros_ + entries <= maxNonZeros_;
    if (!fits) {
        if (grow == 0)
            return 0;
        resizeMax(rows_, cols_ + 1, nonZeros_ + entries);
    }
    beginnings_(cols_) = nonZeros_;
    counts_(cols_) = entries;
    for (int k = 0; k < entries; ++k) {
        indices_(nonZeros_ + k) = rowIndices(k);
        data_(nonZeros_ + k) = values(k);
    }
    ++cols_;
    nonZeros_ += entries;
    return 1;
}

int TsparseMatrix::add(const DoubleGenMat& dense, int grow) {
    int added = 0;
    for (int j = 0; j < static_cast<int>(dense.cols()); ++j)
        added += addCol(dense.col(j), grow);
    return added;
}

int TsparseMatrix::add(const TsparseMatrix& other, int grow) {
    // A shallow copy keeps the shape and storage as they are now: `other` may be this matrix,
    // which grows (into new blocks) or writes only past its stored entries while appending.
    const TsparseMatrix source(other);
    int added = 0;
    for (int j = 0; j < source.cols_; ++j) {
        DoubleVec values;
        IntVec rows;
        source.storedCol(j, values, rows);
        added += addCol(rows, values, grow);
    }
    return added;
}

void TsparseMatrix::compactColumns(const std::vector<int>& kept) {
    std::vector<int> rows;
    std::vector<double> values;
    std::vector<int> counts;
    for (int j : kept) {
        const int begin = beginnings_(j), count = counts_(j);
        for (int p = begin; p < begin + count; ++p) {
            rows.push_back(indices_(p));
            values.push_back(data_(p));
        }
        counts.push_back(count);
    }
    int position = 0;
    for (std::size_t c = 0; c < counts.size(); ++c) {
        beginnings_(static_cast<int>(c)) = position;
        counts_(static_cast<int>(c)) = counts[c];
        position += counts[c];
    }
    for (int p = 0; p < position; ++p) {
        indices_(p) = rows[static_cast<std::size_t>(p)];
        data_(p) = values[static_cast<std::size_t>(p)];
    }
    cols_ = static_cast<int>(kept.size());
    nonZeros_ = position;
}

void TsparseMatrix::removeCol(int j) {
    if (j < 0 || j >= cols_)
        return;
    std::vector<int> kept;
    for (int c = 0; c < cols_; ++c)
        if (c != j)
            kept.push_back(c);
    compactColumns(kept);
}

void TsparseMatrix::removeCols(const IntVec& columns) {
    std::vector<bool> drop(static_cast<std::size_t>(std::max(cols_, 0)), false);
    for (unsigned k = 0; k < columns.length(); ++k) {
        const int c = columns(static_cast<int>(k));
        if (c >= 0 && c < cols_)
            drop[static_cast<std::size_t>(c)] = true;
    }
    std::vector<int> kept;
    for (int c = 0; c < cols_; ++c)
        if (!drop[static_cast<std::size_t>(c)])
            kept.push_back(c);
    compactColumns(kept);
}

void TsparseMatrix::keepCols(const IntVec& columns) {
    std::vector<bool> keep(static_cast<std::size_t>(std::max(cols_, 0)), false);
    for (unsigned k = 0; k < columns.length(); ++k) {
        const int c = columns(static_cast<int>(k));
        if (c >= 0 && c < cols_)
            keep[static_cast<std::size_t>(c)] = true;
    }
    std::vector<int> kept;
    for (int c = 0; c < cols_; ++c)
        if (keep[static_cast<std::size_t>(c)])
            kept.push_back(c);
    compactColumns(kept);
}

void TsparseMatrix::removeZeros() {
    int position = 0;
    for (int j = 0; j < cols_; ++j) {
        const int begin = beginnings_(j), end = begin + counts_(j);
        beginnings_(j) = position;
        for (int p = begin; p < end; ++p)
            if (std::fabs(data_(p)) > zeroTolerance) {
                indices_(position) = indices_(p);
                data_(position++) = data_(p);
            }
        counts_(j) = position - beginnings_(j);
    }
    nonZeros_ = position;
}

DoubleVec TsparseMatrix::row(int i) const {
    DoubleVec out(asLength(cols_), 0.0);
    for (int j = 0; j < cols_; ++j)
        out(j) = element(i, j);
    return out;
}

DoubleVec TsparseMatrix::col(int j) const {
    DoubleVec out(asLength(rows_), 0.0);
    if (j < 0 || j >= cols_)
        return out;
    const int begin = beginnings_(j), end = begin + counts_(j);
    // Walked backwards so that the first of duplicate entries wins, as in element().
    for (int p = end - 1; p >= begin; --p)
        if (indices_(p) >= 0 && indices_(p) < rows_)
            out(indices_(p)) = data_(p);
    return out;
}

void TsparseMatrix::storedCol(int j, DoubleVec& values, IntVec& rowIndices) const {
    if (j < 0 || j >= cols_) {
        values.reference(DoubleVec());
        rowIndices.reference(IntVec());
        return;
    }
    const unsigned count = asLength(counts_(j));
    values.reference(DoubleVec(data_, beginnings_(j), count, 1).copy());
    rowIndices.reference(IntVec(indices_, beginnings_(j), count, 1).copy());
}

DoubleGenMat TsparseMatrix::convert() const {
    DoubleGenMat dense(asLength(rows_), asLength(cols_), 0.0);
    for (int j = 0; j < cols_; ++j)
        dense.col(j) = col(j);
    return dense;
}

void TsparseMatrix::set(const DoubleGenMat& block, int i, int j) {
    const int r0 = std::max(i, 0), r1 = std::min(i + static_cast<int>(block.rows()), rows_);
    const int c0 = std::max(j, 0), c1 = std::min(j + static_cast<int>(block.cols()), cols_);
    if (r0 >= r1 || c0 >= c1)
        return;
    // Every column is rewritten into fresh storage: the block changes how many entries the
    // columns it crosses hold.
    std::vector<int> rows;
    std::vector<double> values;
    std::vector<int> counts;
    for (int c = 0; c < cols_; ++c) {
        const std::size_t before = rows.size();
        const int begin = beginnings_(c), end = begin + counts_(c);
        const bool crossed = c >= c0 && c < c1;
        for (int p = begin; p < end; ++p)
            if (!crossed || indices_(p) < r0 || indices_(p) >= r1) {
                rows.push_back(indices_(p));
                values.push_back(data_(p));
            }
        if (crossed)
            for (int r = r0; r < r1; ++r) {
                const double x = block(r - i, c - j);
                if (std::fabs(x) > zeroTolerance) {
                    rows.push_back(r);
                    values.push_back(x);
                }
            }
        counts.push_back(static_cast<int>(rows.size() - before));
    }
    resizeMax(maxRows_, maxCols_, static_cast<int>(rows.size()));
    int position = 0;
    for (int c = 0; c < cols_; ++c) {
        beginnings_(c) = position;
        counts_(c) = counts[static_cast<std::size_t>(c)];
        position += counts_(c);
    }
    for (int p = 0; p < position; ++p) {
        indices_(p) = rows[static_cast<std::size_t>(p)];
        data_(p) = values[static_cast<std::size_t>(p)];
    }
    nonZeros_ = position;
}

DoubleVec product(const TsparseMatrix& s, const DoubleVec& v) {
    if (v.length() != asLength(s.cols()))
        mathErrorRaise(MATX_MATVECPROD, "TsparseMatrix", asLength(s.rows()), asLength(s.cols()),
                       v.length());
    DoubleVec y(asLength(s.rows()), 0.0);
    const int cols = std::min(s.cols(), static_cast<int>(v.length()));
    for (int j = 0; j < cols; ++j) {
        const int begin = s.beginnings()(j), end = begin + s.counts()(j);
        for (int p = begin; p < end; ++p) {
            const int i = s.indices()(p);
            if (i >= 0 && i < s.rows())
                y(i) += s.data()(p) * v(j);
        }
    }
    return y;
}

DoubleVec product(const DoubleVec& v, const TsparseMatrix& s) {
    if (v.length() != asLength(s.rows()))
        mathErrorRaise(MATX_VECMATPROD, v.length(), "TsparseMatrix", asLength(s.rows()),
                       asLength(s.cols()));
    DoubleVec y(asLength(s.cols()), 0.0);
    for (int j = 0; j < s.cols(); ++j) {
        const int begin = s.beginnings()(j), end = begin + s.counts()(j);
        double sum = 0.0;
        for (int p = begin; p < end; ++p) {
            const int i = s.indices()(p);
            if (i >= 0 && i < static_cast<int>(v.length()))
                sum += s.data()(p) * v(i);
        }
        y(j) = sum;
    }
    return y;
}

std::ostream& operator<<(std::ostream& out, const TsparseMatrix& s) {
    out << s.rows() << 'x' << s.cols() << " sparse [";
    const char* separator = "";
    for (int j = 0; j < s.cols(); ++j) {
        const int begin = s.beginnings()(j), end = begin + s.counts()(j);
        for (int p = begin; p < end; ++p, separator = ", ")
            out << separator << '(' << s.indices()(p) << ", " << j << ") " << s.data()(p);
    }
    return out << ']';
}
