// TdoubleArray: a growable array of doubles held by value, with the few whole-array answers
// that number lists need (sum, extremes, sorting). It is a Tarray<double>: everything a Tarray
// offers works on it.
#ifndef OBRIX_AUTO_CONTAINERS_TDOUBLEARRAY_H
#define OBRIX_AUTO_CONTAINERS_TDOUBLEARRAY_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/auto/containers/Tarray.h"

/// Holds its doubles by value in one block (see Tarray for costs and validity of pointers).
class OBRIX_API TdoubleArray : public Tarray<double> {
public:
    using Tarray<double>::Tarray;
    TdoubleArray() noexcept = default;

    /// The sum, added in index order (reproducible bit for bit); 0 when empty.
    double sum() const noexcept;
    ///@{
    /// The smallest and largest element; NaN when empty. NaN elements are skipped.
    double minValue() const noexcept;
    double maxValue() const noexcept;
    ///@}
    /// Sorts ascending in place (NaNs last). Returns *this.
    TdoubleArray& sortIt() noexcept;
};

#endif
