// LU factorisation with partial pivoting of a square DoubleGenMat: solve, determinant,
// inverse and the condition estimate. See LinearFact.h for the contracts.
#ifndef OBRIX_MATH_DOUBLEGENFACT_H
#define OBRIX_MATH_DOUBLEGENFACT_H

#include "ObrixBase/math/LinearFact.h"

/// LU factorisation of a general square matrix.
using DoubleGenFact = LinearFact<DoubleGenMat>;

#endif
