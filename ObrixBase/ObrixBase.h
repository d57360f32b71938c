/* ObrixBase: every public header of the library. The C interface comes first and is valid
   C11 on its own; the class interface follows for C++ callers. Keep this list current: a
   public header that is missing here is missing for the library's users. */
#ifndef OBRIX_OBRIXBASE_H
#define OBRIX_OBRIXBASE_H

#include "ObrixBase/ObrixExport.h"

/* ---- C interface: memory accounting ---- */
#include "ObrixBase/memory/ma_memory_manager.h"

/* ---- C interface: diagnostics ---- */
#include "ObrixBase/util/aa_debug.h"

/* ---- C interface: structure framework and registration ---- */

/* ---- C interface: containers (lists, AVL tree, arrays, pools, strings) ---- */

/* ---- C interface: item lists ---- */

/* ---- C interface: application state and undo groups ---- */

#ifdef __cplusplus

/* ---- geometry ---- */

/* ---- numerics: storage, vectors, matrices ---- */
#include "ObrixBase/math/MathError.h"
#include "ObrixBase/math/RWBlock.h"
#include "ObrixBase/math/DoubleVec.h"
#include "ObrixBase/math/VecFunctions.h"
#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleSymMat.h"
#include "ObrixBase/math/DoubleTriMat.h"

/* ---- numerics: factorisations ---- */
#include "ObrixBase/math/FactError.h"
#include "ObrixBase/math/DoubleGenFact.h"
#include "ObrixBase/math/DoubleSymFact.h"
#include "ObrixBase/math/DoubleChDecomp.h"
#include "ObrixBase/math/DoubleQRDecomp.h"
#include "ObrixBase/math/DoubleSVDecomp.h"
#include "ObrixBase/math/kernels/kernels.h"

/* ---- tuple and sparse containers ---- */
#include "ObrixBase/math/TsparseMatrix.h"
#include "ObrixBase/auto/containers/TtupleVector.h"
#include "ObrixBase/auto/containers/TtupleMatrix.h"

/* ---- application state ---- */

/* ---- undo ---- */

#endif /* __cplusplus */

#endif
