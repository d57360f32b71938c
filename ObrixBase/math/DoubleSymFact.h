// Symmetric indefinite factorisation of a packed DoubleSymMat: solve, determinant, inverse
// (a DoubleSymMat) and the condition estimate. See LinearFact.h for the contracts.
#ifndef OBRIX_MATH_DOUBLESYMFACT_H
#define OBRIX_MATH_DOUBLESYMFACT_H

#include "ObrixBase/math/LinearFact.h"

/// Diagonal pivoting factorisation of a symmetric matrix.
using DoubleSymFact = LinearFact<DoubleSymMat>;

#endif
