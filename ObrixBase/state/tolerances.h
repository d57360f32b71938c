/* Modelling tolerances: the process-wide numeric settings that fitting, continuity and
   topology code consults, with their values at load, and the display globals. The
   user-interface layer sets them from preferences; modelling code reads them through the
   getters, several of which guard against values below the machine tolerance. Distances are
   in model units; the two angle settings are stored in degrees and handed out in radians.
   Single-threaded plain globals. */
#ifndef OBRIX_STATE_TOLERANCES_H
#define OBRIX_STATE_TOLERANCES_H

#include "ObrixBase/ObrixExport.h"

OBRIX_EXTERN_C_BEGIN

/* ---- stored values, read as they are (value at load in brackets) ---- */

OBRIX_API double get_machine_tolerance(void);      /**< [1e-13] */
OBRIX_API double get_bspline_tolerance(void);      /**< [1e-06] */
OBRIX_API double get_knot_tolerance(void);         /**< parameter distance [1e-09] */
OBRIX_API double get_curvature_tolerance(void);    /**< [0.1] */
OBRIX_API double get_vertex_merge_tolerance(void); /**< [0.01] */
OBRIX_API double get_arc_stepsize_tolerance(void); /**< [0.01] */
OBRIX_API double get_topological_G2(void);         /**< [1.0] */
OBRIX_API int get_checkpoints(void);               /**< [5] */
OBRIX_API int get_checkpoint_steptype(void);       /**< [2] */
OBRIX_API int get_max_surf_spans(void);            /**< [100] */
/** The stored up vector, three doubles [(0, 0, 1)]; writing through the pointer changes it. */
OBRIX_API double* VK_get_up_vector(void);

/* ---- guarded: 5e-05 when the machine tolerance exceeds the stored value ----
   The fallback is the fixed 5e-05, not the machine tolerance: a tolerance set below what the
   arithmetic can resolve is replaced by the smallest one the fitting code is tuned for. */

OBRIX_API double get_cos_gap(void);                /**< [0.001] */
OBRIX_API double get_crv_fit_tolerance(void);      /**< [0.01] */
OBRIX_API double get_max_continuity_gap(void);     /**< [0.01] */
OBRIX_API double get_trim_crv_fit_tolerance(void); /**< [0.001] */
OBRIX_API double get_topological_G0(void);         /**< [0.01] */
/** get_max_continuity_gap(). */
OBRIX_API double get_point_coincident_tol(void);

/* ---- derived ---- */

/** The stored curve fit tolerance times 2.0, without the guard. */
OBRIX_API double get_crv_intersect_tolerance(void);
/** The continuity angle tolerance in radians [0.1 degrees]. */
OBRIX_API double get_continuity_angle_tolerance(void);
/** The topological G1 tolerance in radians [30 degrees]. */
OBRIX_API double get_topological_G1(void);
/** min(0.01, knot tolerance x 10^degree); 10^degree is built by multiplying by 10.0 degree
    times, so a degree of 0 or less gives the knot tolerance itself. */
OBRIX_API double get_knot_tolerance_degree(int degree);

/* ---- fixed values ---- */

OBRIX_API double get_arc_length_tolerance(void);      /**< 0.0001 */
OBRIX_API double get_crv_fit_minimum_tolerance(void); /**< 5e-05 */
/** The smallest fit tolerance the user interface offers: the curve fit minimum, 5e-05. */
OBRIX_API double get_minimum_ui_tolerance_for_3Dfit(void);
/** The same value as get_minimum_ui_tolerance_for_3Dfit. */
OBRIX_API double get_trim_crv_fit_minimum_tolerance(void);
OBRIX_API double get_parallelity_tolerance(void); /**< 4e-05 */

/* ---- setters: each stores its argument as given ---- */

/**@{*/
/** Each setter stores its argument as given, for the getter of the same name: no range
    check here; the guarded getters apply their guard when read. */
OBRIX_API void set_arc_stepsize_tolerance(double tolerance);
OBRIX_API void set_checkpoint_steptype(int steptype);
OBRIX_API void set_checkpoints(int checkpoints);
OBRIX_API void set_cos_gap(double gap);
OBRIX_API void set_crv_fit_tolerance(double tolerance);
OBRIX_API void set_curvature_tolerance(double tolerance);
OBRIX_API void set_max_continuity_gap(double gap);
OBRIX_API void set_max_surf_spans(int spans);
OBRIX_API void set_tol_topological_G0(double tolerance);
OBRIX_API void set_tol_topological_G2(double tolerance);
OBRIX_API void set_trim_crv_fit_tolerance(double tolerance);
OBRIX_API void set_vertex_merge_tolerance(double tolerance);
/**@}*/
/** Takes radians and stores degrees. */
OBRIX_API void set_continuity_angle_tolerance(double radians);
/** Takes radians and stores degrees. */
OBRIX_API void set_tol_topological_G1(double radians);

/* ---- curvature scaling ---- */

/** Saves the current curvature tolerance and multiplies it by `factor`. Scalings do not
    nest: a second scale saves the already scaled value. */
OBRIX_API void scale_curvature_tolerance(double factor);
/** Restores the curvature tolerance saved by the last scale (0.1 at load). */
OBRIX_API void unscale_curvature_tolerance(void);

/* ---- angle conversion ---- */

/** x x 0.017453292519943295. */
OBRIX_API double degrees_to_radians(double x);
/** x x 57.29577951308232. */
OBRIX_API double radians_to_degrees(double x);

/* ---- display globals, zero at load, set by the user-interface layer ---- */

/**@{*/
/** Display settings of the user-interface layer (0 at load); the library only keeps them. */
OBRIX_API extern double gridmesh;
OBRIX_API extern double persp_grid_extent;
OBRIX_API extern double xmindim;
OBRIX_API extern double ymindim;
OBRIX_API extern double xmaxdim;
OBRIX_API extern double ymaxdim;
/**@}*/
/** The initial point of view, a 4x4 matrix in rows. */
OBRIX_API extern float initial_pov[4][4];
/** The user interface's debug level (0 at load); the library only keeps it. */
OBRIX_API extern int vesko_debug;

OBRIX_EXTERN_C_END

#endif
