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

/* ---- C interface: item lists ---- */
#include "ObrixBase/anim/an_anim_list.h"

/* ---- C interface: application state and undo groups ---- */

#ifdef __cplusplus

/* ---- geometry ---- */

/* ---- numerics: storage, vectors, matrices ---- */

/* ---- numerics: factorisations ---- */

/* ---- tuple and sparse containers ---- */

/* ---- application state ---- */

/* ---- undo ---- */

#endif /* __cplusplus */

#endif
