// A sequence of fixed-size tuples of doubles (points of one dimension, such as 3-D or
// homogeneous 4-D points) held one after the other in one DoubleVec, so whole point sets share
// the vector machinery (shallow views, deep copies) while each point is reachable as a view of
// its coordinates. Index checks are hard assertions: they print and abort the process.
#ifndef OBRIX_AUTO_CONTAINERS_TTUPLEVECTOR_H
#define OBRIX_AUTO_CONTAINERS_TTUPLEVECTOR_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/DoubleVec.h"

/// Points of `tupleSize()` coordinates; coordinate k of point i is data()(i * tupleSize() + k).
class OBRIX_API TtupleVector {
public:
    /// No points, tuple size 1.
    TtupleVector();
    /// Shares `data`'s storage. A tuple size below 1 is taken as 1 (as in every constructor).
    TtupleVector(int tupleSize, const DoubleVec& data);
    /// `points` points with every coordinate `value`.
    TtupleVector(int tupleSize, int points, double value);
    /// `points` points copied from points * tupleSize contiguous doubles.
    TtupleVector(int tupleSize, int points, const double* values);
    /// `points` points copied from an array of point pointers, each to tupleSize doubles.
    TtupleVector(int tupleSize, int points, const double* const* pointers);
    /// Shallow.
    TtupleVector(const TtupleVector& other) = default;
    /// Shallow, like the copy: this then shares `other`'s storage and tuple size.
    TtupleVector& operator=(const TtupleVector& other);
    ~TtupleVector() = default;

    /// Point i as a view of its coordinates (writes go to this vector's storage); aborts with
    /// the bounds-checking message when i is not a point index.
    DoubleVec operator[](int i);
    /// A copy of point i, checked as above.
    DoubleVec operator[](int i) const;
    /// Point i as a view, unchecked (checked as operator[] in a build with
    /// OBRIX_CHECKED_INDEXING).
    DoubleVec operator()(int i);
    /// A copy of point i, unchecked.
    DoubleVec operator()(int i) const;

    /// Prints "**** Bounds checking ( bad index, i ) in FILE ... LINE 36" through rptError and
    /// aborts unless correctIndex(i).
    void boundsCheck(int i) const;
    /// 0 <= i < points().
    bool correctIndex(int i) const { return i >= 0 && i < points(); }
    /// 0 <= k < tupleSize().
    bool correctTuple(int k) const { return k >= 0 && k < tupleSize_; }

    ///@{
    /// Coordinates per point (at least 1) and the number of whole points held.
    int tupleSize() const noexcept { return tupleSize_; }
    int points() const noexcept { return static_cast<int>(data_.length()) / tupleSize_; }
    ///@}

    /// Coordinate k of every point, as a view sharing the storage (stride tupleSize()).
    DoubleVec component(int k) const;
    /// The listed coordinates of every point, as a new tuple vector (coordinates outside the
    /// tuple give 0).
    TtupleVector components(const IntVec& coordinates) const;
    /// Coordinates first..last (inclusive) of every point, as a new tuple vector.
    TtupleVector components(int first, int last) const;
    /// Copies of points first..last (inclusive).
    TtupleVector rPoints(int first, int last) const;
    /// Copies of the listed points.
    TtupleVector rPoints(const IntVec& points) const;
    /// Points first..last (inclusive) as a view sharing this vector's storage.
    TtupleVector lPoints(int first, int last);
    /// Overwrites points first..last from the first points of `source`. Returns 1, or 0 and
    /// changes nothing when the range is empty or outside, or `source` has another tuple size
    /// or too few points.
    int setPoints(int first, int last, const TtupleVector& source);
    /// Overwrites the listed points from the points of `source` in order; as above.
    int setPoints(const IntVec& points, const TtupleVector& source);

    /// The Euclidean length of every point.
    DoubleVec vecLen() const;
    /// points * tupleSize() elements, keeping the leading points and zeroing new ones.
    void resize(int points);
    ///@{
    /// A deep copy; rebinding to `other`'s storage; the element vector (shallow).
    TtupleVector copy() const;
    TtupleVector& reference(const TtupleVector& other);
    void deepenShallowCopy() { data_.deepenShallowCopy(); }
    const DoubleVec& data() const noexcept { return data_; }
    ///@}

private:
    int tupleSize_;
    DoubleVec data_;
};

#endif
