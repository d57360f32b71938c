#include "ObrixBase/state/rtb_init.h"

#include <algorithm>
#include <type_traits>
#include <vector>

#include "Base/rpt/rpt.h"

namespace {

// What a stub answers while its hook is unset: zero, false or null, or nothing at all.
template <class R>
R unsetAnswer() {
    if constexpr (std::is_void_v<R>)
        return;
    else
        return R();
}

} // namespace

// One row per hook: registration, result type, stub, the stub's parameters and the
// arguments it forwards. Each row makes the pointer (null at load), the registration that
// replaces it and the stub that calls it.
#define OBRIX_LATE_BOUND_HOOK(registration, Result, stub, parameters, arguments)                   \
    namespace {                                                                                    \
    Result(*stub##Hook) parameters = nullptr;                                                      \
    }                                                                                              \
    void registration(Result(*proc) parameters) {                                                  \
        stub##Hook = proc;                                                                         \
    }                                                                                              \
    Result stub parameters {                                                                       \
        return stub##Hook ? stub##Hook arguments : unsetAnswer<Result>();                          \
    }

// clang-format off
OBRIX_LATE_BOUND_HOOK(rtbInit_createItermats, int, create_itermats, (Dag_node* node), (node))
OBRIX_LATE_BOUND_HOOK(rtbInit_freeBranchItermats, void, free_branch_itermats,
                      (Dag_node* node, int a, int b), (node, a, b))
OBRIX_LATE_BOUND_HOOK(rtbInit_AllocHanger, Hanger*, alloc_hanger, (void), ())
OBRIX_LATE_BOUND_HOOK(rtbInit_FreeHangerList, void, free_hanger_list, (Hanger* list), (list))
OBRIX_LATE_BOUND_HOOK(rtbInit_InsertHanger, Hanger*, insert_hanger,
                      (Hanger* list, int a, int b, void* data), (list, a, b, data))
OBRIX_LATE_BOUND_HOOK(rtbInit_PrintHangerList, void, print_hanger_list,
                      (Hanger* list, int level), (list, level))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetDeletePolygon, void, PS_polygon_delete_notify,
                      (PS_Polygon* polygon), (polygon))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetDelete, void, PS_polyset_delete_notify,
                      (PS_Polyset* polyset), (polyset))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetDeleteParent, void, PS_setInteractiveDeleteHackParent,
                      (Dag_node* parent), (parent))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetNew, void, Ps_interactiveNewHack,
                      (PS_Polyset* polyset), (polyset))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetDeletePolysetFinish, void,
                      Ps_interactivePolysetDeleteHackFinish, (PS_Polyset* polyset), (polyset))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetDeletePolysetStart, void,
                      Ps_interactivePolysetDeleteHackStart, (PS_Polyset* polyset), (polyset))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetVertexCopy, void, Ps_interactiveVertexCopyHack,
                      (PS_Vertex& from, PS_Vertex& to), (from, to))
OBRIX_LATE_BOUND_HOOK(rtbInit_PolysetVertexDelete, void, Ps_interactiveVertexDeleteHack,
                      (PS_Vertex& vertex), (vertex))
OBRIX_LATE_BOUND_HOOK(rtbInit_GetNewPolysetDefaultNormalsDisplay, bool,
                      get_NewPolyset_defaultNormalsDisplay, (void), ())
OBRIX_LATE_BOUND_HOOK(rtbInit_GetNewPolysetDefaultVertDisplay, bool,
                      get_NewPolyset_defaultVertDisplay, (void), ())
OBRIX_LATE_BOUND_HOOK(rtbInit_copyRenderInfo, AR_ObjectInfo*, RI_copyRenderInfo,
                      (void* owner, AR_ObjectInfo* info), (owner, info))
OBRIX_LATE_BOUND_HOOK(rtbInit_freeRenderInfo, void, RI_freeRenderInfo,
                      (AR_ObjectInfo* info), (info))
OBRIX_LATE_BOUND_HOOK(rtbInit_getName, const char*, RI_getName, (AR_ShaderList* shaders),
                      (shaders))
OBRIX_LATE_BOUND_HOOK(rtbInit_getNext, AR_ShaderList*, RI_getNext, (AR_ShaderList* shaders),
                      (shaders))
OBRIX_LATE_BOUND_HOOK(rtbInit_getPSColoured, int, RI_getPSColoured, (AR_ObjectInfo* info),
                      (info))
OBRIX_LATE_BOUND_HOOK(rtbInit_getShaderList, AR_ShaderList*, RI_getShaderList,
                      (AR_ObjectInfo* info), (info))
OBRIX_LATE_BOUND_HOOK(rtbInit_light_lister_delentry, void, RI_light_lister_delentry,
                      (Dag_node* light), (light))
OBRIX_LATE_BOUND_HOOK(rtbInit_setPSColoured, void, RI_setPSColoured,
                      (AR_ObjectInfo* info, int coloured), (info, coloured))
OBRIX_LATE_BOUND_HOOK(rtbInit_showLightInShaderList, void, RI_showLightInShaderList,
                      (AR_LightInfo* light, bool show), (light, show))
OBRIX_LATE_BOUND_HOOK(rtbInit_MOTessFreeData, void, MO_tess_free_data, (MO_tess_data* data),
                      (data))
OBRIX_LATE_BOUND_HOOK(rtbInit_Ar_expand_pixname, char*, Ar_expand_pixname,
                      (const char* name, int frame), (name, frame))
// clang-format on

#undef OBRIX_LATE_BOUND_HOOK

// ---- cursor procedures ----

namespace {

VK_CursorProcedure primaryCursorProcedure = nullptr;

std::vector<VK_CursorProcedure>& furtherCursorProcedures() {
    static std::vector<VK_CursorProcedure> procedures;
    return procedures;
}

void dispatchCursorProcedures(VK_Window* window) {
    if (primaryCursorProcedure)
        primaryCursorProcedure(window);
    // By index: a procedure may add or remove procedures while it runs.
    const auto& procedures = furtherCursorProcedures();
    for (std::size_t i = 0; i < procedures.size(); ++i)
        procedures[i](window);
}

} // namespace

void set_cursor_procedure(VK_CursorProcedure proc) {
    primaryCursorProcedure = proc;
}

void add_cursor_procedure(VK_CursorProcedure proc) {
    if (!proc)
        return;
    auto& procedures = furtherCursorProcedures();
    // The C interface never throws: at the container's limit the failure is reported and the
    // list is left as it was.
    if (procedures.size() == procedures.max_size()) {
        rptError("list too long");
        return;
    }
    procedures.push_back(proc);
    procedures.erase(std::unique(procedures.begin(), procedures.end()), procedures.end());
}

void remove_cursor_procedure(VK_CursorProcedure proc) {
    std::erase(furtherCursorProcedures(), proc);
}

VK_CursorProcedure get_cursor_procedure(void) {
    return &dispatchCursorProcedures;
}

// ---- the current window ----

namespace {
VK_Window* currentWindow = nullptr;
} // namespace

void setVeskoCurrentWindow(VK_Window* window) {
    currentWindow = window;
}

VK_Window* getVeskoCurrentWindow(void) {
    return currentWindow;
}
