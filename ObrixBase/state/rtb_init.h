/* Late-bound hooks: services of the scene graph, polygon sets, renderer and user interface,
   which sit above this library, reached through function pointers that the application
   registers at start-up with rtbInit_*. Each service has a stub of its own name that calls
   the registered function; until one is registered the stub does nothing and returns zero,
   false or null. The types named here are opaque: the library only passes pointers on.
   Also kept here: the cursor procedures and the current window. Single-threaded: register
   once at start, before the modelling thread calls the stubs. */
#ifndef OBRIX_STATE_RTB_INIT_H
#define OBRIX_STATE_RTB_INIT_H

#include <stdbool.h>

#include "ObrixBase/ObrixExport.h"

/**@{*/
/** Opaque types of the layers above the library: only pointers to them pass through. */
typedef struct Dag_node Dag_node;
typedef struct Hanger Hanger;
typedef struct PS_Polyset PS_Polyset;
typedef struct PS_Polygon PS_Polygon;
typedef struct PS_Vertex PS_Vertex;
typedef struct AR_ObjectInfo AR_ObjectInfo;
typedef struct AR_ShaderList AR_ShaderList;
typedef struct AR_LightInfo AR_LightInfo;
typedef struct MO_tess_data MO_tess_data;
typedef struct VK_Window VK_Window;
/**@}*/

/** A procedure that updates the cursor of a window. */
typedef void (*VK_CursorProcedure)(VK_Window* window);

OBRIX_EXTERN_C_BEGIN

/* Each rtbInit_* stores its argument (null allowed), replacing any earlier registration; the
   stub beside it forwards its arguments and result. */

/** The redraw hook: called by redraw_any_pending to carry out (and reset) the pending
    redraw. It has no stub of its own. */
OBRIX_API void rtbInit_redrawSetRedrawPending(void (*proc)(void));

/** Registers the function that create_itermats() calls (null: none). */
OBRIX_API void rtbInit_createItermats(int (*proc)(Dag_node* node));
/** 0 until registered. */
OBRIX_API int create_itermats(Dag_node* node);

/** Registers the function that free_branch_itermats() calls (null: none). */
OBRIX_API void rtbInit_freeBranchItermats(void (*proc)(Dag_node* node, int a, int b));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void free_branch_itermats(Dag_node* node, int a, int b);

/** Registers the function that alloc_hanger() calls (null: none). */
OBRIX_API void rtbInit_AllocHanger(Hanger* (*proc)(void));
/** Null until registered. */
OBRIX_API Hanger* alloc_hanger(void);

/** Registers the function that free_hanger_list() calls (null: none). */
OBRIX_API void rtbInit_FreeHangerList(void (*proc)(Hanger* list));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void free_hanger_list(Hanger* list);

/** Registers the function that insert_hanger() calls (null: none). */
OBRIX_API void rtbInit_InsertHanger(Hanger* (*proc)(Hanger* list, int a, int b, void* data));
/** Null until registered. */
OBRIX_API Hanger* insert_hanger(Hanger* list, int a, int b, void* data);

/** Registers the function that print_hanger_list() calls (null: none). */
OBRIX_API void rtbInit_PrintHangerList(void (*proc)(Hanger* list, int level));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void print_hanger_list(Hanger* list, int level);

/** Registers the function that PS_polygon_delete_notify() calls (null: none). */
OBRIX_API void rtbInit_PolysetDeletePolygon(void (*proc)(PS_Polygon* polygon));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void PS_polygon_delete_notify(PS_Polygon* polygon);

/** Registers the function that PS_polyset_delete_notify() calls (null: none). */
OBRIX_API void rtbInit_PolysetDelete(void (*proc)(PS_Polyset* polyset));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void PS_polyset_delete_notify(PS_Polyset* polyset);

/** Registers the function that PS_setInteractiveDeleteHackParent() calls (null: none). */
OBRIX_API void rtbInit_PolysetDeleteParent(void (*proc)(Dag_node* parent));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void PS_setInteractiveDeleteHackParent(Dag_node* parent);

/** Registers the function that Ps_interactiveNewHack() calls (null: none). */
OBRIX_API void rtbInit_PolysetNew(void (*proc)(PS_Polyset* polyset));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void Ps_interactiveNewHack(PS_Polyset* polyset);

/** Registers the function that Ps_interactivePolysetDeleteHackFinish() calls (null: none). */
OBRIX_API void rtbInit_PolysetDeletePolysetFinish(void (*proc)(PS_Polyset* polyset));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void Ps_interactivePolysetDeleteHackFinish(PS_Polyset* polyset);

/** Registers the function that Ps_interactivePolysetDeleteHackStart() calls (null: none). */
OBRIX_API void rtbInit_PolysetDeletePolysetStart(void (*proc)(PS_Polyset* polyset));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void Ps_interactivePolysetDeleteHackStart(PS_Polyset* polyset);

/** Registers the function that get_NewPolyset_defaultNormalsDisplay() calls (null: none). */
OBRIX_API void rtbInit_GetNewPolysetDefaultNormalsDisplay(bool (*proc)(void));
/** False until registered. */
OBRIX_API bool get_NewPolyset_defaultNormalsDisplay(void);

/** Registers the function that get_NewPolyset_defaultVertDisplay() calls (null: none). */
OBRIX_API void rtbInit_GetNewPolysetDefaultVertDisplay(bool (*proc)(void));
/** False until registered. */
OBRIX_API bool get_NewPolyset_defaultVertDisplay(void);

/** Registers the function that RI_copyRenderInfo() calls (null: none). */
OBRIX_API void rtbInit_copyRenderInfo(AR_ObjectInfo* (*proc)(void* owner, AR_ObjectInfo* info));
/** Null until registered. */
OBRIX_API AR_ObjectInfo* RI_copyRenderInfo(void* owner, AR_ObjectInfo* info);

/** Registers the function that RI_freeRenderInfo() calls (null: none). */
OBRIX_API void rtbInit_freeRenderInfo(void (*proc)(AR_ObjectInfo* info));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void RI_freeRenderInfo(AR_ObjectInfo* info);

/** Registers the function that RI_getName() calls (null: none). */
OBRIX_API void rtbInit_getName(const char* (*proc)(AR_ShaderList* shaders));
/** Null until registered. */
OBRIX_API const char* RI_getName(AR_ShaderList* shaders);

/** Registers the function that RI_getNext() calls (null: none). */
OBRIX_API void rtbInit_getNext(AR_ShaderList* (*proc)(AR_ShaderList* shaders));
/** Null until registered. */
OBRIX_API AR_ShaderList* RI_getNext(AR_ShaderList* shaders);

/** Registers the function that RI_getPSColoured() calls (null: none). */
OBRIX_API void rtbInit_getPSColoured(int (*proc)(AR_ObjectInfo* info));
/** 0 until registered. */
OBRIX_API int RI_getPSColoured(AR_ObjectInfo* info);

/** Registers the function that RI_getShaderList() calls (null: none). */
OBRIX_API void rtbInit_getShaderList(AR_ShaderList* (*proc)(AR_ObjectInfo* info));
/** Null until registered. */
OBRIX_API AR_ShaderList* RI_getShaderList(AR_ObjectInfo* info);

/** Registers the function that RI_light_lister_delentry() calls (null: none). */
OBRIX_API void rtbInit_light_lister_delentry(void (*proc)(Dag_node* light));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void RI_light_lister_delentry(Dag_node* light);

/** Registers the function that RI_setPSColoured() calls (null: none). */
OBRIX_API void rtbInit_setPSColoured(void (*proc)(AR_ObjectInfo* info, int coloured));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void RI_setPSColoured(AR_ObjectInfo* info, int coloured);

/** Registers the function that RI_showLightInShaderList() calls (null: none). */
OBRIX_API void rtbInit_showLightInShaderList(void (*proc)(AR_LightInfo* light, bool show));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void RI_showLightInShaderList(AR_LightInfo* light, bool show);

/** Registers the function that MO_tess_free_data() calls (null: none). */
OBRIX_API void rtbInit_MOTessFreeData(void (*proc)(MO_tess_data* data));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void MO_tess_free_data(MO_tess_data* data);

/** Registers the function that Ar_expand_pixname() calls (null: none). */
OBRIX_API void rtbInit_Ar_expand_pixname(char* (*proc)(const char* name, int frame));
/** Null until registered. Who frees the result is the registered function's contract. */
OBRIX_API char* Ar_expand_pixname(const char* name, int frame);

/* ---- cursor procedures ---- */

/** Sets the primary cursor procedure (null clears it). */
OBRIX_API void set_cursor_procedure(VK_CursorProcedure proc);
/** Appends `proc` (null is ignored) to the further procedures, then removes adjacent
    duplicates from the whole list: adding the procedure that stands last changes nothing,
    while one that stands earlier, but not last, is added again. */
OBRIX_API void add_cursor_procedure(VK_CursorProcedure proc);
/** Removes every occurrence of `proc` from the further procedures. */
OBRIX_API void remove_cursor_procedure(VK_CursorProcedure proc);
/** The dispatcher: a cursor procedure that calls the primary procedure (when set) and then
    each further procedure in list order, all with the same window. Never null. */
OBRIX_API VK_CursorProcedure get_cursor_procedure(void);

/* ---- the current window ---- */

/** Stores the process's current window (null allowed); the library never follows it. */
OBRIX_API void setVeskoCurrentWindow(VK_Window* window);
/** The current window; null until one is set. */
OBRIX_API VK_Window* getVeskoCurrentWindow(void);

OBRIX_EXTERN_C_END

#ifdef __cplusplus
/* The vertex hooks take references and so exist for C++ callers only. */
/** Registers the function that Ps_interactiveVertexCopyHack() calls (null: none). */
OBRIX_API void rtbInit_PolysetVertexCopy(void (*proc)(PS_Vertex& from, PS_Vertex& to));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void Ps_interactiveVertexCopyHack(PS_Vertex& from, PS_Vertex& to);

/** Registers the function that Ps_interactiveVertexDeleteHack() calls (null: none). */
OBRIX_API void rtbInit_PolysetVertexDelete(void (*proc)(PS_Vertex& vertex));
/** Calls the registered function; does nothing until one is registered. */
OBRIX_API void Ps_interactiveVertexDeleteHack(PS_Vertex& vertex);
#endif

#endif
