/* ObrixBase: every public header of the library. The C interface comes first and is valid
   C11 on its own; the class interface follows for C++ callers. Keep this list current: a
   public header that is missing here is missing for the library's users. */
#ifndef OBRIX_OBRIXBASE_H
#define OBRIX_OBRIXBASE_H

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/ObrixVersion.h"
#include "ObrixBase/ObrixBuildOptions.h"

/* ---- C interface: memory accounting ---- */
#include "ObrixBase/memory/ma_memory_manager.h"

/* ---- C interface: diagnostics ---- */
#include "ObrixBase/util/aa_debug.h"
#include "ObrixBase/util/vk_warning.h"

/* ---- C interface: structure framework and registration ---- */
#include "ObrixBase/util/DS/ds_structures.h"
#include "ObrixBase/util/DS/vk_register.h"

/* ---- C interface: containers (lists, AVL tree, arrays, pools, strings) ---- */
#include "ObrixBase/util/vk_ll.h"
#include "ObrixBase/util/vk_list.h"
#include "ObrixBase/util/vk_avl.h"
#include "ObrixBase/util/vk_array.h"
#include "ObrixBase/util/vk_bitfield.h"
#include "ObrixBase/util/vk_pool.h"
#include "ObrixBase/util/vk_string.h"

/* ---- C interface: project directories, path helpers, directory reading ---- */
#include "ObrixBase/util/db_filename.h"
#include "ObrixBase/util/vk_path.h"

/* ---- C interface: item lists ---- */
#include "ObrixBase/anim/an_anim_list.h"

/* ---- C interface: application state and undo groups ---- */
#include "ObrixBase/state/rtb_init.h"
#include "ObrixBase/state/redraw.h"
#include "ObrixBase/state/tolerances.h"
#include "ObrixBase/state/vesko_behaviour.h"
#include "ObrixBase/undo/vk_undo.h"

#ifdef __cplusplus

/* ---- diagnostics: the trace log ---- */
#include "ObrixBase/util/VeskoTrace.h"
/* ---- diagnostics: warning descriptions ---- */
#include "ObrixBase/util/VeskoWarningParams.h"
/* ---- typed file names ---- */
#include "ObrixBase/util/vk_filename.h"

/* ---- geometry ---- */
#include "ObrixBase/geometry/Taxis.h"
#include "ObrixBase/geometry/Tangle.h"
#include "ObrixBase/geometry/T4dDblMatrix.h"
#include "ObrixBase/geometry/TunitQuaternion.h"
#include "ObrixBase/geometry/T4dDblVector.h"
#include "ObrixBase/geometry/T3dDblPoint.h"
#include "ObrixBase/geometry/T4dDblPoint.h"
#include "ObrixBase/geometry/Tscale.h"
#include "ObrixBase/geometry/TpostXformMatrix.h"
#include "ObrixBase/geometry/Tplane.h"
#include "ObrixBase/geometry/Tquaternion.h"
#include "ObrixBase/geometry/TxformOps.h"
#include "ObrixBase/geometry/TxformMatrix.h"
#include "ObrixBase/geometry/TgenXformMatrix.h"
#include "ObrixBase/geometry/TboundingBox.h"
#include "ObrixBase/geometry/TpointTarget.h"
#include "ObrixBase/geometry/TnumberSequence.h"
#include "ObrixBase/geometry/geometry_stream.h"

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

/* ---- fonts and text ---- */
#include "ObrixBase/text/FontProperties.h"
#include "ObrixBase/text/Capitalisation.h"
/* ---- object containers and reporters ---- */
#include "ObrixBase/auto/containers/Tarray.h"
#include "ObrixBase/auto/containers/TautoArrayBase.h"
#include "ObrixBase/auto/containers/TobjArray.h"
#include "ObrixBase/auto/containers/TdoubleArray.h"
#include "ObrixBase/auto/containers/TcharPtrArray.h"
#include "ObrixBase/auto/containers/T3dDblPointArray.h"
#include "ObrixBase/auto/containers/TdblLinkedList.h"
#include "ObrixBase/auto/containers/TrestrictedLinkedList.h"
#include "ObrixBase/auto/containers/TgroupDLLists.h"
#include "ObrixBase/auto/containers/TbaseReporter.h"
#include "ObrixBase/auto/containers/TdebugTrace.h"

/* ---- application state ---- */
#include "ObrixBase/state/VeskoBehaviour.h"

/* ---- file cache ---- */
#include "ObrixBase/filecache/FileCacheProtocol.h"
#include "ObrixBase/filecache/FileCacheProtocolClient.h"
#include "ObrixBase/filecache/FileCacheProtocolServer.h"
#include "ObrixBase/filecache/FileCacheItem.h"
#include "ObrixBase/filecache/FileCache.h"

/* ---- undo ---- */
#include "Base/qvUndo/Undo.h"
#include "ObrixBase/undo/UndoCommand.h"
#include "ObrixBase/undo/StatefulUndoCmd.h"

/* ---- debug drawing ---- */
#include "ObrixBase/debugdraw/ObrixDebugDrawFrame.h"
#include "ObrixBase/debugdraw/ObrixDebugDrawProtocol.h"

#endif /* __cplusplus */

#endif
